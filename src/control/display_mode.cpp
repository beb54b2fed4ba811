#include "control/display_mode.h"

namespace qk {

namespace {
void ReturnMarkersToData(MarkerRecords& markers) {
  for (auto& graph : markers.OfGraphs)
    for (Marker& marker : graph) marker.Trace = MarkerTrace::Data;
}
}  // namespace

void SwitchDisplayMode(Session& session, Host& host, Graphs& graphs, DisplayMode mode) {
  if (mode != DisplayMode::Data && !session.Display.MemoryInUse) {
    host.prompts.Tell(mode == DisplayMode::MemoryMath ? "Memory Math" : "Display Memory",
                      "No Data in Memory", Icon::Exclamation);
    mode = DisplayMode::Data;
  }
  session.Display.DisplayMode = mode;
  if (mode != DisplayMode::DataAndMemory) ReturnMarkersToData(session.Markers);
  graphs.ReplotAll();
  host.windows.SessionChanged();
}

}  // namespace qk
