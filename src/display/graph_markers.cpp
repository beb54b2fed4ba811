// SPDX-License-Identifier: MIT
// Items drawn over the traces: markers with their read-outs, fail marks, the label; and drawing the
// complete picture on another canvas.
#include <algorithm>

#include "core/instrument_limits.h"
#include "display/fail_mark.h"
#include "display/frame.h"
#include "display/graphs.h"
#include "display/label.h"
#include "display/layout.h"
#include "display/marker_symbol.h"
#include "display/marker_table.h"

namespace qk {

MarkedGraph Graphs::Marked(int graph) const {
  return {Graph(graph), Trace(graph, kDataTrace),
          Trace(graph, MemoryTraceOf(session_.Display.MemoryNumber))};
}

Graphs::AxisNumberSets Graphs::NumbersAtMarkers() {
  AxisNumberSets touched{};
  if (!session_.Display.MarkersOn || !View.AxisNumbers) return touched;
  Canvas& canvas = Target();
  for (int graph = 0; graph < kChannels; ++graph) {
    if (!Graph(graph).Enabled) continue;
    canvas.SetFontSize(Letters(graph));
    for (int m = 0; m < kMarkers; ++m) {
      Marker& marker = session_.Markers.Of(graph, m);
      if (marker.State == MarkerState::Off) continue;
      FollowTrace(Marked(graph), marker);
      const Rect symbol = MarkerBounds(canvas, Graph(graph), marker);
      const std::vector<Rect>& numbers = axisNumbers_[static_cast<std::size_t>(graph)];
      for (std::size_t i = 0; i < numbers.size(); ++i)
        if (Overlap(symbol, numbers[i])) touched[static_cast<std::size_t>(graph)] |= 1u << i;
    }
  }
  return touched;
}

void Graphs::DrawMarkers() {
  if (!session_.Display.MarkersOn) return;
  Canvas& canvas = Target();
  for (int graph = 0; graph < kChannels; ++graph) {
    if (!Graph(graph).Enabled) continue;
    canvas.SetFontSize(Letters(graph));
    for (int m = 0; m < kMarkers; ++m) {
      Marker& marker = session_.Markers.Of(graph, m);
      if (marker.State != MarkerState::Off)
        DrawMarker(canvas, Marked(graph), marker,
                   View.Remarks ? std::optional(session_.Colour.BackColour) : std::nullopt);
    }
  }
  for (int graph = 0; graph < kChannels; ++graph)
    if (Graph(graph).Enabled && Graph(graph).IsActive)
      DrawMarkerReadings(canvas, session_, Graph(graph), graph,
                         LettersOfTable(screenScale_, View.AxisNumbers),
                         HoldsData(graph) || !View.Remarks, [&](const Marker& marker) {
                           const auto zo = static_cast<double>(session_.Impedance.SystemZo);
                           return ValueText(graph, marker, zo);
                         });
  SetTracePen(Trace(0, kDataTrace));
}

std::optional<CanvasPoint> Graphs::FailMarkOf(int graph) const {
  const DisplayState& display = session_.Display;
  const ChannelLimits& limits = session_.Limits.Of(graph + 1);
  const bool drawn = display.ShowLimits && display.LimitAlarmOn && session_.Limits.LimitFailed &&
                     Graph(graph).Enabled && limits.Failed && limits.FailPoint >= 1 &&
                     limits.FailPoint <= Graph(graph).NumPoints;
  if (!drawn) return std::nullopt;
  return Trace(graph, kDataTrace).Pixel[static_cast<std::size_t>(limits.FailPoint)];
}

void Graphs::DrawFailMarks() {
  Canvas& canvas = Target();
  for (int graph = 0; graph < kChannels; ++graph) {
    const std::optional<CanvasPoint> at = FailMarkOf(graph);
    if (!at) continue;
    canvas.SetFontSize(Letters(graph));
    DrawFailMark(canvas, *at);
  }
  SetTracePen(Trace(0, kDataTrace));
}

void Graphs::DrawLabel(const std::string& text) {
  Canvas& canvas = Target();
  const bool table = session_.Display.MarkersOn;
  const GraphRecord& last = Graph(RowOf(session_.Display.DisplaySet).Last - 1);
  std::vector<Rect> titles;
  for (int graph = 0; graph < kChannels; ++graph)
    if (Graph(graph).Enabled) {
      titles.push_back(TitleRect(graph));
      const RemarkLine& remarks = remarks_[static_cast<std::size_t>(graph)];
      const Extent size = canvas.TextExtent(remarks.Fitting);
      if (!remarks.Fitting.empty())
        titles.push_back(
            {remarks.At.x, remarks.At.y, remarks.At.x + size.width, remarks.At.y + size.height});
    }
  const int points = AreaFontPoints(screenScale_);
  canvas.SetFontSize(View.AxisNumbers ? std::max(points, kReadablePoints) : points);
  const Extent size = canvas.TextExtent(text);
  const CanvasPoint wanted =
      LabelAt(session_.Display.DisplaySet, table, table ? canvas.Size().width : last.Width(), size);
  canvas.DrawText(ClearOf(titles, wanted, size, size.height / 2, 0, canvas.Size().width), text,
                  session_.Colour.TextColour);
}

Rect Graphs::TitleRect(int graph) {
  const GraphRecord& record = Graph(graph);
  Canvas& canvas = Target();
  canvas.SetFontSize(Letters(graph));
  const Extent size =
      canvas.TextExtent(TitleText(session_.Channel(graph + 1), session_.TimeDomain));
  const CanvasPoint at = TitleAt(record, size);
  return {at.x, at.y, at.x + size.width, at.y + size.height};
}

void Graphs::DrawGraphicsLabel(const std::string& text) {
  CatchUp();
  still_ = true;
  Wipe();
  DrawOverlay();
  still_ = false;
  if (!text.empty()) DrawLabel(text);
  Present();
}

void Graphs::Paint(Canvas& canvas, const std::string& label) {
  painted_ = &canvas;
  FillBackground();
  DrawBackground();
  DrawStoredTraces(kMemoryTrace);
  DrawOverlay();
  if (!label.empty()) DrawLabel(label);
  painted_ = nullptr;
}

void Graphs::PaintPage(Canvas& canvas, const std::string& label, int leastLetters) {
  // Drawing stores positions; afterwards all of them are those of the picture area again.
  const auto graphs = graphs_;
  const std::vector<TraceRecord> traces = traces_;
  const auto remarks = remarks_;
  const auto badges = badges_;
  const auto axisNumbers = axisNumbers_;
  const MarkerRecords markers = session_.Markers;
  const ViewState view = View;
  const float screenScale = screenScale_;
  const int tickHeight = tickHeight_;

  painted_ = &canvas;
  screenScale_ = 1;
  leastLetters_ = leastLetters;
  View.AxisNumbers = true;
  ColourTraces();
  LayOut();
  for (int graph = 0; graph < kChannels; ++graph)
    for (int kind = 0; kind < kTraceKinds; ++kind)
      if (Graph(graph).Enabled && Trace(graph, kind).Shown)
        PlotTrace(graph, static_cast<TraceKind>(kind), true);
  Paint(canvas, label);

  graphs_ = graphs;
  traces_ = traces;
  remarks_ = remarks;
  badges_ = badges;
  axisNumbers_ = axisNumbers;
  session_.Markers = markers;
  View = view;
  screenScale_ = screenScale;
  leastLetters_ = 1;
  tickHeight_ = tickHeight;
}

}  // namespace qk
