// SPDX-License-Identifier: MIT
#include "forms/load_meas.h"

#include "control/touchstone_load.h"
#include "core/status.h"
#include "core/window_names.h"

namespace qk {

bool MayLoadMeasurements(const Session& session, Prompts& prompts) {
  if (!session.Impedance.ZoConvertOn) return true;
  prompts.ShowMessage("Load Data",
                      "Switch off System Zo Conversion (Enhancement) before loading data.",
                      Icon::Information);
  return false;
}

std::optional<std::string> LoadMeasurements(Controller& controller, const std::string& path) {
  const Rig& rig = controller.rig();
  std::optional<std::string> taken = LoadMemory(rig.session, rig.host.prompts, path);
  if (!taken) return taken;
  controller.recent().Note(path);
  controller.graphs().ReplotAll();
  ShowBriefly(rig.session, rig.host, *taken);
  rig.host.windows.SessionChanged();
  return taken;
}

namespace {
constexpr const char* kHint = "Each channel on display takes the parameter that it shows.";
}

LoadMeas::LoadMeas(Controller& controller)
    : Form(window::kLoadMeas, "Load Touchstone Data"), controller_(controller) {
  Section("Load Data to Memory ");
  AddButton("Command1", "Select Data File", [this] { SelectFile(); })
      .Key('s')
      .Wide()
      .Default()
      .Tip("Into the memory of each displayed channel whose parameter is in the file");
  hint_ = AddLabel("Hint", kHint);
  ActionRow();
  AddButton("Command2", "Close", [this] { controller_.rig().host.windows.Hide(Name()); }).Key('c');
}

void LoadMeas::SelectFile() {
  const Rig& rig = controller_.rig();
  if (!MayLoadMeasurements(rig.session, rig.host.prompts)) return;
  hint_.Caption(kHint);
  const auto path = ChooseTouchstone(rig.session, rig.host.prompts);
  if (!path) return;
  if (const auto taken = LoadMeasurements(controller_, *path)) hint_.Caption(*taken);
}

void LoadMeas::OnOpen() {
  hint_.Caption(kHint);
}

}  // namespace qk
