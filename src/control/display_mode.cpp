// SPDX-License-Identifier: MIT
#include "control/display_mode.h"

#include "display/markers.h"

namespace qk {

void SwitchDisplayMode(Session& session, Host& host, Graphs& graphs, DisplayMode mode) {
  if (mode != DisplayMode::Data && !session.Display.MemoryInUse) {
    host.prompts.ShowMessage(mode == DisplayMode::MemoryMath ? "Memory Math" : "Display Memory",
                             "No Data in Memory", Icon::Exclamation);
    mode = DisplayMode::Data;
  }
  session.Display.DisplayMode = mode;
  if (mode != DisplayMode::DataAndMemory) MarkersToData(session);
  graphs.ReplotAll();
  host.windows.SessionChanged();
}

}  // namespace qk
