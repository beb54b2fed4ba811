// SPDX-License-Identifier: MIT
#include "forms/hardware_info.h"

#include "control/verbs.h"
#include "core/busy.h"
#include "core/window_names.h"
#include "utilities/hardware_info.h"

namespace qk {

HardwareInfo::HardwareInfo(Rig& rig)
    : Form(window::kHardwareInfo, "Hardware Information"), rig_(rig) {
  text_ =
      AddText("Text1", "")
          .ReadOnly()
          .Lines(11)
          .Chars(52)
          .Wide()
          .Tip("This window will display hardware information after the Refresh button is pressed");
  age_ = AddLabel("Age", "").Lines(2).Wide();
  ActionRow();
  AddButton("Command2", "Refresh", [this] { Refresh(); }).Key('R').Default();
  AddButton("Command1", "Exit", [this] { rig_.host.windows.Hide(Name()); }).Key('x');
}

void HardwareInfo::Refresh() {
  // The window may stay open beside the others, but a sweep uses the line.
  if (!rig_.session.Flags.SweepIdle) {
    rig_.host.prompts.ShowMessage("VNA Hardware Info", "Stop Sweep First", Icon::Exclamation);
    return;
  }
  const BusyScope busy(*this, rig_.host.windows);
  rig_.host.loop.Enable(TimerId::Timer1, false);
  age_.Text("Reading ...");
  const auto text = ReadHardwareInfo(rig_, {"Hardware Info", Icon::Critical});
  if (!text) {  // intentional: the text is unchanged, and Timer1 stays off
    age_.Text(readAt_.empty() ? "No Response. Nothing was read."
                              : "No Response. These values were read " + readAt_);
    return;
  }
  text_.Text(*text);
  const LocalTime now = rig_.host.loop.Now();
  readAt_ = DateText(now) + " " + TimeText(now);
  age_.Text("Read " + readAt_);
  ResumeTimer1(rig_);
}

}  // namespace qk
