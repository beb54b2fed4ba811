#include "forms/load_meas.h"

#include "core/window_names.h"
#include "files/touchstone_load.h"

namespace qk {

bool MayLoadMeasurements(const Session& session, Prompts& prompts) {
  if (!session.Impedance.ZoConvertOn) return true;
  prompts.Tell("Load Data", "Switch off System Zo Conversion (Enhancement) before loading data.",
               Icon::Information);
  return false;
}

void LoadMeasurements(Controller& controller, const std::string& path) {
  const Rig& rig = controller.rig();
  if (!LoadMemory(rig.session, rig.host.prompts, path)) return;
  controller.graphs().ReplotAll();
  rig.host.windows.SessionChanged();
}

LoadMeas::LoadMeas(Controller& controller)
    : Form(window::kLoadMeas, "Load Touchstone Data"), controller_(controller) {
  Section("Load Data to Memory ");
  AddButton("Command1", "Select Data File", [this] { SelectFile(); })
      .Key('s')
      .Wide()
      .Default()
      .Tip("Into the memory of each displayed channel whose parameter is in the file");
  AddLabel("Hint", "Each channel on display takes the parameter that it shows.");
  ActionRow();
  AddButton("Command2", "Close", [this] { controller_.rig().host.windows.Hide(Name()); }).Key('c');
}

void LoadMeas::SelectFile() {
  const Rig& rig = controller_.rig();
  if (!MayLoadMeasurements(rig.session, rig.host.prompts)) return;
  if (const auto path = ChooseTouchstone(rig.session, rig.host.prompts))
    LoadMeasurements(controller_, *path);
}

}  // namespace qk
