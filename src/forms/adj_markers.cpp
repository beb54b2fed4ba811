// SPDX-License-Identifier: MIT
#include "forms/adj_markers.h"

#include <cmath>
#include <string>

#include "control/verbs.h"
#include "core/text.h"
#include "core/window_names.h"
#include "trace/memory.h"

namespace qk {

AdjMarkers::AdjMarkers(Controller& controller)
    : Form(window::kAdjMarkers, "Trace Markers"),
      controller_(controller),
      session_(controller.rig().session),
      host_(controller.rig().host) {
  Section("", {.How = Arrange::Grid, .Columns = 4});
  for (int m = 0; m < kMarkers; ++m) {
    const auto i = static_cast<std::size_t>(m);
    const std::string number = std::to_string(m + 1);
    AddLabel("MkName" + number, "Marker " + number);
    value_[i] = AddText("Mk" + number + "Val", "Marker " + number)
                    .Unit("MHz")
                    .Number()
                    .Chars(11)
                    .Tip("Frequency of marker " + number);
    trace_[i] = AddButton("Mk" + number + "Trace", "Data", [this, m] {
                  FlipTrace(m);
                }).Tip("Trace of marker " + number + "; a stored one only where it is displayed");
    fix_[i] = AddButton("FixMk" + number, "Fix", [this] {
                ToggleFix();
              }).Tip("Fixes or frees the reference marker");
  }
  // A complete redraw, for example at START and STOP, releases a fixed marker.
  controller.graphs().OnMarkersSet = [this] {
    if (Shown) OnSessionChanged();
  };
  ActionRow();
  const Handle apply =
      AddButton("Command2", "Apply Freq", [this] { ApplyFrequencies(); }).Key('A').Default();
  for (const Handle& value : value_) frequencies_.Add(value.Returns(apply));
  AddButton("Command1", "Close Window", [this] { host_.windows.Hide(Name()); }).Key('C');
}

void AdjMarkers::OnSessionChanged() {
  ShowMarkers(shownGraph_ != session_.Markers.AdjustedGraph);
}

void AdjMarkers::ShowMarkers(bool overTyped) {
  const int graph = session_.Markers.AdjustedGraph;
  shownGraph_ = graph;
  for (int m = 0; m < kMarkers; ++m) {
    const auto i = static_cast<std::size_t>(m);
    const Marker& marker = session_.Markers.Of(graph, m);
    const bool on = marker.State != MarkerState::Off;
    const std::string frequency =
        on ? FormatNumber(session_.Plan.Frequency(marker.Point - 1) / 1e6, "###0.00000") : "";
    if (on && !overTyped)
      value_[i].FollowText(frequency);
    else
      value_[i].Text(frequency);
    value_[i].Enabled(on);
    trace_[i].Caption(marker.Trace == MarkerTrace::Memory ? "Memory" : "Data").Enabled(on);
    fix_[i]
        .Caption(marker.State == MarkerState::Fixed ? "UnFix" : "Fix")
        .Enabled(marker.State >= MarkerState::Reference);
  }
}

void AdjMarkers::ApplyFrequencies() {
  const SweepPlan& plan = session_.Plan;
  for (int m = 0; m < kMarkers; ++m) {
    const Handle& value = value_[static_cast<std::size_t>(m)];
    const double hertz = Val(value->Text) * 1e6;
    if (!value->Enabled || hertz < 0) continue;
    const double point = std::floor((hertz - plan.StartFreq) / plan.StepFreq + 1.5);
    PlaceMarker(session_, m, point);
  }
  ShowMarkers(true);
  MarkersChanged(host_.windows);
}

void AdjMarkers::ToggleFix() {
  controller_.graphs().CatchUp();
  ToggleFixed(session_.Markers);
  RedrawOverlay();
  ShowMarkers(false);
}

void AdjMarkers::FlipTrace(int index) {
  const int graph = session_.Markers.AdjustedGraph;
  const bool stored = session_.Display.DisplayMode == DisplayMode::DataAndMemory &&
                      MemoryOf(session_, graph + 1, session_.Display.MemoryNumber).Valid;
  if (!stored) return;
  Marker& marker = session_.Markers.Of(graph, index);
  marker.Trace = marker.Trace == MarkerTrace::Data ? MarkerTrace::Memory : MarkerTrace::Data;
  RedrawOverlay();
  ShowMarkers(false);
}

void AdjMarkers::OnHidden() {
  RedrawOverlay();
}

void AdjMarkers::RedrawOverlay() {
  controller_.graphs().RedrawOverlay();
}

}  // namespace qk
