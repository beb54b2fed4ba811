// SPDX-License-Identifier: MIT
#include "forms/marker_table_form.h"

#include <cmath>

#include "control/output_verbs.h"
#include "control/verbs.h"
#include "core/quantity_text.h"
#include "core/text.h"
#include "core/window_names.h"
#include "display/marker_table.h"
#include "display/markers.h"

namespace qk {

namespace {

std::string NameOfCell(const char* column, int graph, int marker) {
  return column + std::to_string(graph + 1) + std::to_string(marker + 1);
}

const char* UnitOf(const GraphRecord& graph) {
  return graph.IsDistance ? "m" : graph.IsTime ? "ns" : "MHz";
}

}  // namespace

MarkerTableForm::MarkerTableForm(Controller& controller)
    : Form(window::kMarkerTable, "Marker Table"),
      controller_(controller),
      session_(controller.rig().session),
      host_(controller.rig().host) {
  AddRows();
  Section("Band of the markers 1 to 3");
  band_ = AddLabel("Band", "").Wide().Lines(2);
  ActionRow();
  AddButton("Command1", "Copy", [this] { Copy(); })
      .Key('C')
      .Tip("Copies all rows to the clipboard as text separated by tabs");
  AddButton("Command2", "Exit", [this] { host_.windows.Hide(Name()); }).Key('x');
  controller.graphs().OnRedrawn = [this] { OnSessionChanged(); };
}

void MarkerTableForm::AddRows() {
  Section("", {.How = Arrange::Grid, .Columns = 4});
  for (const char* heading : {"Channel", "Marker", "Position", "Value"})
    AddLabel(std::string("Head") + heading, heading).Bold();
  for (int graph = 0; graph < kChannels; ++graph)
    for (int m = 0; m < kMarkers; ++m) {
      const std::string marker = "Marker " + std::to_string(m + 1);
      AddLabel(NameOfCell("Channel", graph, m), "CH" + std::to_string(graph + 1));
      AddLabel(NameOfCell("Marker", graph, m), marker);
      Row& row = rows_[static_cast<std::size_t>(graph)][static_cast<std::size_t>(m)];
      row.Position =
          AddText(NameOfCell("Position", graph, m), marker + " of CH" + std::to_string(graph + 1),
                  [this, graph, m] { Place(graph, m); })
              .Number()
              .Chars(9)
              .Tip("In MHz, or in ns or m for a time response; applies to all graphs");
      row.Value = AddLabel(NameOfCell("Value", graph, m), "").Chars(18);  // an impedance
    }
}

void MarkerTableForm::OnSessionChanged() {
  if (Shown) ShowRows();
}

// False for a value of an earlier sweep, which the calibration in force does not measure. A memory
// and a fixed marker keep theirs.
bool MarkerTableForm::HasValue(int graph, const Marker& marker) const {
  const Graphs& graphs = controller_.graphs();
  const bool kept = marker.Trace == MarkerTrace::Memory || marker.State == MarkerState::Fixed;
  return graphs.HoldsData(graph) && (kept || !IsOfEarlierSweep(session_, graph + 1));
}

std::optional<MarkerTableForm::Reading> MarkerTableForm::Read(int graph, int m) const {
  const Graphs& graphs = controller_.graphs();
  const GraphRecord& record = graphs.Graph(graph);
  Marker marker = session_.Markers.Of(graph, m);
  if (!record.Enabled || !session_.Display.MarkersOn || marker.State == MarkerState::Off)
    return std::nullopt;
  const TraceRecord& trace =
      graphs.Trace(graph, marker.Trace == MarkerTrace::Memory ? kMemoryTrace : kDataTrace);
  // The current value, drawn or not; a fixed marker keeps its value.
  if (marker.State != MarkerState::Fixed && marker.Point >= 1 && marker.Point <= trace.Count) {
    marker.Value = trace.Value[static_cast<std::size_t>(marker.Point)];
    marker.Value2 = trace.Value2[static_cast<std::size_t>(marker.Point)];
  }
  const double position = PositionOf(record, marker.Point);
  return Reading{
      FormatNumber(record.IsTime ? position : position / 1e6, kPositionPicture),
      HasValue(graph, marker)
          ? graphs.ValueText(graph, marker, static_cast<double>(session_.Impedance.SystemZo))
          : "---"};
}

void MarkerTableForm::ShowRows() {
  for (int graph = 0; graph < kChannels; ++graph)
    for (int m = 0; m < kMarkers; ++m) {
      const Row& row = rows_[static_cast<std::size_t>(graph)][static_cast<std::size_t>(m)];
      const std::optional<Reading> reading = Read(graph, m);
      row.Position.Enabled(reading.has_value());
      row.Position.Unit(UnitOf(controller_.graphs().Graph(graph)));
      row.Position.FollowText(reading ? reading->Position : "");
      const std::optional<double> waits = controller_.kept().WaitsAt(session_, m);
      const bool displayed = controller_.graphs().Graph(graph).Enabled;
      row.Value.Caption(reading ? reading->Value
                        : waits && displayed
                            ? "waits at " + FormatNumber(*waits / 1e6, "###0.0###") + " MHz"
                            : "");
    }
  ShowBand();
}

// Bandwidth and Q are those of a magnitude: on another graph the three markers are no band.
bool MarkerTableForm::IsMagnitude(int graph) const {
  const GraphType type = session_.Channel(graph + 1).GraphType;
  return type == GraphType::LogMag || type == GraphType::LinMag;
}

// " at -3.0 and -2.9 dB": the present levels of the edges from the extreme. Empty without values.
std::string MarkerTableForm::EdgesText(int graph) const {
  const Graphs& graphs = controller_.graphs();
  const bool linear = session_.Channel(graph + 1).GraphType == GraphType::LinMag;
  if (!graphs.HoldsData(graph)) return {};
  const auto level = [&](int m) {
    const Marker& marker = session_.Markers.Of(graph, m);
    const TraceRecord& trace =
        graphs.Trace(graph, marker.Trace == MarkerTrace::Memory ? kMemoryTrace : kDataTrace);
    if (marker.Point < 1 || marker.Point > trace.Count) return std::nan("");
    const double value = trace.Value[static_cast<std::size_t>(marker.Point)];
    return linear ? 20 * std::log10(value) : value;
  };
  const double extreme = level(0), lower = level(1) - extreme, upper = level(2) - extreme;
  if (!std::isfinite(lower) || !std::isfinite(upper)) return {};
  return " at " + FormatNumber(lower, "##0.0") + " and " + FormatNumber(upper, "##0.0") + " dB";
}

// The band search places marker 1 at its extreme, and markers 2 (reference) and 3 (active) at its
// edges.
void MarkerTableForm::ShowBand() {
  const MarkerRecords& markers = session_.Markers;
  const int graph = session_.Display.ActiveChannel - 1;
  const GraphRecord& record = controller_.graphs().Graph(graph);
  const bool searched = session_.Display.MarkersOn && record.Enabled && !record.IsTime &&
                        !record.IsSmith && markers.Set(0).Shown && markers.Set(1).IsRef &&
                        markers.Set(2).IsActive && IsMagnitude(graph);
  std::string text;
  if (searched) {
    const double lower = PositionOf(record, markers.Of(graph, 1).Point);
    const double upper = PositionOf(record, markers.Of(graph, 2).Point);
    const double width = std::fabs(upper - lower), centre = (upper + lower) / 2;
    const std::optional<Reading> extreme = Read(graph, 0);
    text = "Bandwidth " + MegahertzNumber(width) + " MHz" + EdgesText(graph) + ", centre " +
           MegahertzNumber(centre) + " MHz, Q " +
           (width > 0 ? FormatNumber(centre / width, "###0.00") : "---") + ", at marker 1 " +
           (extreme ? extreme->Value : "---");
  }
  band_.Caption(text.empty() ? "No band: tick one in Markers, then Find Peak or Find Minimum"
                             : text);
}

void MarkerTableForm::Place(int graph, int m) {
  const Handle& field =
      rows_[static_cast<std::size_t>(graph)][static_cast<std::size_t>(m)].Position;
  const GraphRecord& record = controller_.graphs().Graph(graph);
  const std::string text = field->Text;
  field.Text(text);  // shows the marker's own value from now on
  double typed = 0;
  if (!ParseNumber(text, typed)) {
    controller_.notice().Say("\"" + text + "\" is not a number: marker " + std::to_string(m + 1) +
                             " stays");
    return ShowRows();
  }
  const double steps = record.IsDistance ? (typed - record.MetresStart) / record.MetresStep
                       : record.IsTime   ? (typed - static_cast<double>(record.TimeStart)) /
                                             static_cast<double>(record.TimeStep)
                                       : (typed * 1e6 - record.XStart) / record.XStep;
  if (!std::isfinite(steps)) return ShowRows();
  const double point = std::floor(steps + 1.5);
  PlaceMarker(session_, m, point);
  const std::int16_t placed = session_.Markers.Of(graph, m).Point;
  session_.Markers.Set(m).Point = placed;
  if (point != placed && session_.Markers.Of(graph, m).State != MarkerState::Fixed)
    controller_.notice().Say("outside the trace: marker " + std::to_string(m + 1) +
                             " is at the nearest end");
  controller_.graphs().RedrawOverlay();
  MarkersChanged(host_.windows);
}

void MarkerTableForm::Copy() {
  std::string text = "Channel\tMarker\tPosition\tUnit\tValue\n";
  for (int graph = 0; graph < kChannels; ++graph)
    for (int m = 0; m < kMarkers; ++m)
      if (const std::optional<Reading> reading = Read(graph, m)) {
        const std::string unit = UnitOf(controller_.graphs().Graph(graph));
        text += "CH" + std::to_string(graph + 1) + ' ';
        text += NameOf(session_.Channel(graph + 1).Parameter);
        text += '\t' + std::to_string(m + 1) + '\t' + reading->Position + '\t' + unit + '\t' +
                reading->Value + '\n';
      }
  text += band_->Caption + "\n";
  const Result<Done> copied = controller_.graphs().Surface().CopyText(text);
  if (copied)
    controller_.notice().ShowWithTime("marker table copied");
  else
    host_.prompts.ShowMessage("Marker Table", copied.Why().Message, Icon::Exclamation);
}

}  // namespace qk
