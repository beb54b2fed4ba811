// SPDX-License-Identifier: MIT
#include "forms/graph_menu.h"

#include "control/graph_verbs.h"
#include "display/remarks.h"

namespace qk {

namespace {

void ShowRefusal(Controller& controller, const Result<Done>& done) {
  if (!done)
    controller.rig().host.prompts.ShowMessage("Display Set Up", done.Why().Message,
                                              Icon::Exclamation);
}

MenuEntry Submenu(std::string word, std::string caption) {
  MenuEntry entry;
  entry.Word = std::move(word);
  entry.Caption = std::move(caption);
  return entry;
}

MenuEntry Item(std::string word, std::string caption, std::function<void()> run,
               bool enabled = true) {
  MenuEntry entry = Submenu(std::move(word), std::move(caption));
  entry.Run = std::move(run);
  entry.Enabled = enabled;
  return entry;
}

MenuEntry Parameters(Controller& controller, int n) {
  MenuEntry menu = Submenu("parameter", "Parameter");
  for (const std::string& name : NamesOf<Parameter>()) {
    const Parameter parameter = *Named<Parameter>(name);
    menu.Entries.push_back(Item("parameter." + name, name, [&controller, n, parameter] {
      ShowRefusal(controller, ShowParameter(controller, n, parameter));
    }));
    menu.Entries.back().Checked = controller.rig().session.Channel(n).Parameter == parameter;
  }
  return menu;
}

MenuEntry Types(Controller& controller, int n) {
  const Session& session = controller.rig().session;
  const ChannelSettings& channel = session.Channel(n);
  MenuEntry menu = Submenu("type", "Graph Type");
  for (const std::string& name : NamesOf<GraphType>()) {
    const GraphType type = *Named<GraphType>(name);
    const bool suits = RowOf(channel.Parameter).Reflection || !RowOf(type).ReflectionOnly;
    const bool points =
        RowOf(type).Form != PointForm::Spectrum || session.Plan.NumPoints == kMaxPoints;
    menu.Entries.push_back(Item(
        "type." + name, name,
        [&controller, n, type] { ShowRefusal(controller, ShowGraphType(controller, n, type)); },
        suits && points));
    menu.Entries.back().Checked = channel.GraphType == type;
  }
  return menu;
}

}  // namespace

std::vector<MenuEntry> GraphMenu(Controller& controller, const GraphMenuActions& actions, int graph,
                                 int point) {
  const int n = graph + 1;
  const ChannelSettings& channel = controller.rig().session.Channel(n);
  const bool axis = RowOf(channel.GraphType).Form != PointForm::Chart;
  const bool data = controller.graphs().HoldsData(graph);
  std::vector<MenuEntry> menu;
  const Graphs& graphs = controller.graphs();
  menu.push_back(Item("channel", "CH" + std::to_string(n), {}, false));
  if (graphs.View.Remarks && graphs.HasVerdict(graph)) {  // the tip of the badge, for the keyboard
    menu.push_back(Item(
        "verdict",
        VerdictText(controller.rig().session, n, graphs.Verdict(graph), graphs.UntestedText(graph)),
        {}, false));
  }
  menu.push_back({});
  menu.push_back(Parameters(controller, n));
  menu.push_back(Types(controller, n));
  menu.push_back(Item(
      "autoscale", "Autoscale", [&controller, n] { AutoscaleGraph(controller, n); }, axis && data));
  menu.push_back(
      Item("autoscale-all", "Autoscale All", [&controller] { AutoscaleAll(controller); }));
  menu.push_back(Item("scale", "Scale and Reference ...", [actions, n] { actions.SetUpScale(n); }));
  menu.push_back({});
  menu.push_back(
      Item("marker", "Marker Here", [&controller, n, point] { PutMarker(controller, n, point); }));
  menu.push_back(Item(
      "peak", "Find Peak", [&controller, n] { FindOnTrace(controller, n, Extreme::Peak); }, data));
  menu.push_back(Item(
      "minimum", "Find Minimum", [&controller, n] { FindOnTrace(controller, n, Extreme::Minimum); },
      data));
  menu.push_back({});
  menu.push_back(Item(
      "store", "Store to Memory", [&controller, n] { StoreTrace(controller, n); }, data));
  menu.push_back(
      Item("limits", "Limits of This Channel ...", [actions, n] { actions.SetUpLimits(n); }));
  menu.push_back({});
  menu.push_back(Item("copy", "Copy Picture", actions.CopyPicture));
  menu.push_back(Item("save", "Save Picture ...", actions.SavePicture));
  return menu;
}

const MenuEntry* FindEntry(const std::vector<MenuEntry>& menu, std::string_view word) {
  for (const MenuEntry& entry : menu) {
    if (entry.Run && entry.Word == word) return &entry;
    if (const MenuEntry* found = FindEntry(entry.Entries, word); found != nullptr) return found;
  }
  return nullptr;
}

}  // namespace qk
