// SPDX-License-Identifier: MIT
// Mouse gestures and menu items of a graph as commands: "graph 1 scale up", "graph wheel 400 200
// -1".
#include <algorithm>
#include <cmath>

#include "console/front_panel.h"
#include "console/words.h"
#include "control/graph_verbs.h"
#include "core/text.h"
#include "core/window_names.h"
#include "display/markers.h"

namespace qk {

using namespace console;

namespace {

constexpr std::string_view kUse =
    "graph CHANNEL|all VERB ..., graph wheel X Y STEPS [shift], graph double X Y or graph menu X Y "
    "[ITEM]";
constexpr std::string_view kVerbs =
    "autoscale, scale up|down, reference up|down, position 0..8, parameter NAME, type NAME, marker "
    "MHZ|NS|M|left|right, peak, minimum, store, menu [ITEM]";

using Line = std::span<const std::string_view>;

// The text after the first words, with single blanks.
std::string Joined(Line words) {
  std::string all;
  for (const std::string_view word : words) all += (all.empty() ? "" : " ") + std::string(word);
  return all;
}

std::optional<int> UpOrDown(Line words) {
  if (words.size() != 1) return std::nullopt;
  if (words[0] == "up") return 1;
  if (words[0] == "down") return -1;
  return std::nullopt;
}

// The unit of a graph's axis, and its size in the unit used for positions.
struct AxisUnit {
  const char* Name;
  double Size;
};

AxisUnit AxisUnitOf(const GraphRecord& graph) {
  if (graph.IsDistance) return {"m", 1};
  return graph.IsTime ? AxisUnit{"ns", 1} : AxisUnit{"MHz", 1e6};
}

}  // namespace

// Like "Undo" of the menu; the reply says what was undone.
ConsoleHost::Outcome FrontPanel::Undo(std::string_view rest) {
  const Form* form = reach_.registry.Find(window::kForm1);
  if (form == nullptr || reach_.Owner == nullptr) return Outcome::Refused("no picture area");
  if (!Words(rest).empty()) return Outcome::Refused("undo takes no arguments");
  if (std::string reason = Reachable(*form); !reason.empty()) return Outcome::Refused(reason);
  const Result<std::string> done = UndoLast(reach_.Owner->controller());
  if (!done) return Outcome::Refused(done.Why().Text());
  host_.Reply(*done);
  return Outcome::Done();
}

ConsoleHost::Outcome FrontPanel::Graph(std::string_view rest) {
  const auto words = Words(rest);
  const Form* form = reach_.registry.Find(window::kForm1);
  if (form == nullptr || reach_.Owner == nullptr) return Outcome::Refused("no picture area");
  if (std::string reason = Reachable(*form); !reason.empty()) return Outcome::Refused(reason);
  if (words.size() < 2) return Outcome::Refused(std::string(kUse));
  if (words[0] == "wheel" || words[0] == "double" || words[0] == "menu") return GestureAt(words);
  UndoHistory& undo = reach_.Owner->controller().undo();
  if (words[0] == "all" && words.size() == 2 && words[1] == "autoscale") {
    undo.Around([&] { AutoscaleAll(reach_.Owner->controller()); });
    return Outcome::Done();
  }
  const auto channel = WholeNumber(words[0]);
  if (!channel || *channel < 1 || *channel > 4) return Outcome::Refused(std::string(kUse));
  Outcome outcome = Outcome::Done();
  undo.Around([&] { outcome = OnChannel(static_cast<int>(*channel), Line(words).subspan(1)); });
  return outcome;
}

ConsoleHost::Outcome FrontPanel::GestureAt(Line words) {
  const auto x = words.size() > 2 ? WholeNumber(words[1]) : std::nullopt;
  const auto y = words.size() > 2 ? WholeNumber(words[2]) : std::nullopt;
  if (!x || !y) return Outcome::Refused(std::string(kUse));
  const Extent size = reach_.PictureSize();
  if (*x < 0 || *y < 0 || *x >= size.width || *y >= size.height)
    return Outcome::Refused("outside the picture area of " + std::to_string(size.width) + " by " +
                            std::to_string(size.height));
  const int px = static_cast<int>(*x), py = static_cast<int>(*y);
  Program& program = *reach_.Owner;
  if (words[0] == "menu") return MenuAt(program.MenuAt(px, py), words.subspan(3));
  if (words[0] == "double" && words.size() == 3) {
    program.DoubleClick(px, py);
    return Outcome::Done();
  }
  constexpr long kMost = 100, kNone = kMost + 1;
  const long steps = words.size() > 3 ? WholeNumber(words[3]).value_or(kNone) : kNone;
  const bool shift = words.size() == 5 && words[4] == "shift";
  if (words[0] != "wheel" || steps < -kMost || steps > kMost || (words.size() != 4 && !shift))
    return Outcome::Refused(std::string(kUse));
  program.Wheel(px, py, static_cast<int>(steps), shift);
  return Outcome::Done();
}

// One line per entry, or the entry that is selected.
ConsoleHost::Outcome FrontPanel::MenuAt(const std::vector<MenuEntry>& menu, Line words) {
  if (menu.empty()) return Outcome::Refused("no graph there, or a marker");
  if (words.empty()) {
    for (const MenuEntry& entry : menu) {
      if (entry.Caption.empty()) continue;
      const std::vector<MenuEntry> alone{entry};
      for (const MenuEntry& item : entry.Entries.empty() ? alone : entry.Entries)
        host_.Reply(item.Word + (item.Enabled ? " enabled" : " disabled") +
                    (item.Checked ? " on " : " off ") + item.Caption);
    }
    return Outcome::Done();
  }
  const std::string word = Joined(words);
  const MenuEntry* entry = FindEntry(menu, word);
  if (entry == nullptr) return Outcome::Refused("no item " + word);
  if (!entry->Enabled) return Outcome::Refused(word + " is disabled");
  entry->Run();
  return Outcome::Done();
}

// Places a marker at a position on the graph's axis, or moves the active one by one point.
ConsoleHost::Outcome FrontPanel::MarkerOn(int n, std::string_view where) {
  Controller& controller = reach_.Owner->controller();
  const Session& session = reach_.Owner->session();
  if (where == "left" || where == "right") {
    if (!session.Display.MarkersOn) return Outcome::Refused("no marker is shown");
    StepMarker(controller, where == "left" ? -1 : 1);
    return Outcome::Done();
  }
  GraphRecord graph = controller.graphs().Graph(n - 1);
  // The axis of a channel that is not displayed has not been set up.
  if (!graph.Enabled)
    graph.IsTime = RowOf(session.Channel(n).GraphType).Form == PointForm::Spectrum;
  const AxisUnit unit = AxisUnitOf(graph);
  double position = 0;
  if (!ParseNumber(where, position))
    return Outcome::Refused(std::string(where) + " is not a value in " + unit.Name);
  const double first = PositionOf(graph, 1), last = PositionOf(graph, graph.NumPoints);
  const double point =
      std::floor((position * unit.Size - first) * (graph.NumPoints - 1) / (last - first) + 1.5);
  if (!(point >= 1 && point <= graph.NumPoints)) {
    const auto text = [&unit](double value) {
      return FormatNumber(value / unit.Size, "###0.0###");
    };
    return Outcome::Refused(std::string(where) + " " + unit.Name + " is not between " +
                            text(first) + " and " + text(last) + " " + unit.Name);
  }
  PutMarker(controller, n, static_cast<int>(point));
  return Outcome::Done();
}

ConsoleHost::Outcome FrontPanel::OnChannel(int n, Line words) {
  Program& program = *reach_.Owner;
  Controller& controller = program.controller();
  const std::string_view verb = words[0];
  const Line behind = words.subspan(1);
  const auto outcome = [](const Result<Done>& done) {
    return done ? Outcome::Done() : Outcome::Refused(done.Why().Text());
  };
  if (verb == "autoscale" && behind.empty()) {
    AutoscaleGraph(controller, n);
    return Outcome::Done();
  }
  if (const auto step = UpOrDown(behind); step && verb == "scale") {
    StepScale(controller, n, *step);
    return Outcome::Done();
  } else if (step && verb == "reference") {
    ShiftReference(controller, n, *step);
    return Outcome::Done();
  }
  if (verb == "position" && behind.size() == 1)
    if (const auto position = WholeNumber(behind[0]);
        position && *position >= 0 && *position <= 8) {
      PlaceReferenceLine(controller, n, static_cast<int>(*position));
      return Outcome::Done();
    }
  if (verb == "parameter")
    if (const auto parameter = Named<Parameter>(Joined(behind)))
      return outcome(ShowParameter(controller, n, *parameter));
  if (verb == "type")
    if (const auto type = Named<GraphType>(Joined(behind)))
      return outcome(ShowGraphType(controller, n, *type));
  if (verb == "marker" && behind.size() == 1) return MarkerOn(n, behind[0]);
  if ((verb == "peak" || verb == "minimum") && behind.empty()) {
    FindOnTrace(controller, n, verb == "peak" ? Extreme::Peak : Extreme::Minimum);
    return Outcome::Done();
  }
  if (verb == "store" && behind.empty()) {
    StoreTrace(controller, n);
    return Outcome::Done();
  }
  if (verb == "menu") return MenuAt(program.MenuOf(n), behind);
  return Outcome::Refused("graph CHANNEL " + std::string(kVerbs));
}

}  // namespace qk
