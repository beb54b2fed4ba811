// SPDX-License-Identifier: MIT
// The complete redraw of the picture area: its order, and the frames of the graphs.
#include "display/graphs.h"

#include <algorithm>

#include "core/instrument_limits.h"
#include "display/frame.h"
#include "display/layout.h"
#include "display/mapping.h"
#include "display/marker_table.h"
#include "display/smith_chart.h"
#include "trace/formatting.h"
#include "trace/gate.h"
#include "trace/time_domain.h"

namespace qk {

void Graphs::RedrawAll(bool keepMarkers) {
  FillBackground();
  surface_.Commit();
  Wipe();
  ColourTraces();
  LayOut();
  const DisplaySetRow& channels = RowOf(session_.Display.DisplaySet);
  for (int n = channels.First; n <= channels.Last; ++n)
    SyncMarkers(session_, Marked(n - 1), n - 1, keepMarkers);
  DrawBackground();
  surface_.Commit();
  // The background never contains a live trace; PlotDataTraces shows them again.
  for (TraceRecord& trace : traces_) trace.Shown = false;
  if (session_.Display.DisplayMode == DisplayMode::DataAndMemory) PlotMemoryTraces();
  surface_.Commit();
  Wipe();
  if (session_.Display.ShowLimits) PlotLimitTraces();
  surface_.Commit();
  Wipe();
  PlotDataTraces();
  DrawOverlay();
  Present();
  if (OnMarkersSet) OnMarkersSet();
  if (OnRedrawn) OnRedrawn();
}

void Graphs::ColourTraces() {
  constexpr std::array kMemoryPens{PenStyle::Solid, PenStyle::Dashed, PenStyle::Dotted,
                                   PenStyle::DashDot};
  for (int graph = 0; graph < kChannels; ++graph) {
    MutableTrace(graph, kDataTrace).Colour = session_.Colour.DataColour;
    for (int number = 1; number <= kMemories; ++number) {
      TraceRecord& trace = MutableTrace(graph, MemoryTraceOf(number));
      trace.Colour = session_.Colour.MemoryColour;
      trace.PenStyle = static_cast<std::int16_t>(kMemoryPens[static_cast<std::size_t>(number - 1)]);
    }
    MutableTrace(graph, kUpperTrace).Colour = session_.Colour.LimitColour;
    MutableTrace(graph, kLowerTrace).Colour = session_.Colour.LimitColour;
  }
}

void Graphs::LayOut() {
  for (int graph = 0; graph < kChannels; ++graph) ConfigureGraph(graph);
  const DisplaySetRow& channels = RowOf(session_.Display.DisplaySet);
  for (int n = channels.First; n <= channels.Last; ++n) EnableGraph(n - 1);
}

void Graphs::FillBackground() {
  const Extent area = Target().Size();
  Target().FillRectangle({0, 0}, {area.width, area.height}, session_.Colour.BackColour);
}

void Graphs::ConfigureGraph(int graph) {
  GraphRecord& record = graphs_[static_cast<std::size_t>(graph)];
  record.IsActive = record.Enabled = record.IsSmith = record.IsTime = false;
  record.HasGaps = record.IsGated = record.IsDistance = false;
  record.Scale = 1;
  record.Reference = 0;
  record.RefPosition = 5;
  record.Units = Unit::Db;
  record.XStart = session_.Plan.StartFreq;
  record.XStep = session_.Plan.StepFreq;
  record.TimeStart = static_cast<float>(session_.TimeDomain.TdT1);
  record.TimeStep = static_cast<float>(session_.TimeDomain.TdStep);
  record.NumPoints = session_.Plan.NumPoints;
}

void Graphs::EnableGraph(int graph) {
  const ChannelSettings& channel = session_.Channel(graph + 1);
  GraphRecord& record = graphs_[static_cast<std::size_t>(graph)];
  const PointForm form = RowOf(channel.GraphType).Form;
  record.Enabled = true;
  record.IsActive = channel.Active;
  record.IsSmith = form == PointForm::Chart;
  record.IsTime = form == PointForm::Spectrum;
  record.HasGaps = RowOf(channel.GraphType).HasGaps();
  record.IsGated = GateActs(session_, channel);
  record.Grid = channel.Grid;
  const TimeDomainState& td = session_.TimeDomain;
  record.IsDistance = record.IsTime && td.Axis == TimeAxis::Distance;
  record.MetresStart = MetresAt(session_, channel.Parameter, td.TdT1);
  record.MetresStep =
      MetresAt(session_, channel.Parameter, td.TdT1 + td.TdStep) - record.MetresStart;
  record.Scale = UsableScale(static_cast<float>(channel.Scale));
  record.Reference = channel.Reference;
  record.RefPosition = channel.RefPosition;
  record.Units = channel.Units;

  record.Slot = SlotOf(session_.Display.DisplaySet, graph);
  Rect rect = GraphRect(record.Slot, session_.Display.MarkersOn, Target().Size());
  // A chart is as wide as its graph is high: in a slot that is higher than wide it would run into
  // the next graph.
  if (record.IsSmith) rect.bottom = std::min(rect.bottom, rect.top + (rect.right - rect.left));
  record.Left = rect.left;
  record.Top = rect.top;
  record.Right = rect.right;
  record.Bottom = rect.bottom;
}

void Graphs::DrawBackground() {
  Canvas& canvas = Target();
  const int points = AreaFontPoints(screenScale_);
  canvas.SetFontSize(View.AxisNumbers ? std::max(points, kReadablePoints) : points);
  if (session_.Impedance.ZoConvertOn) DrawZoTag(canvas, session_);
  if (session_.Display.MarkersOn) DrawMarkerTableBox(canvas, session_.Colour);
  for (int graph = 0; graph < kChannels; ++graph) {
    if (!Graph(graph).Enabled) continue;
    if (session_.Display.MarkersOn && Graph(graph).IsActive)
      DrawMarkerTitles(canvas, session_, graph, LettersOfTable(screenScale_, View.AxisNumbers));
    DrawGraphFrame(graph);
    NoteRemarkPlace(graph);
  }
  tickHeight_ = WholePixel(0.5 * canvas.TextExtent("I").height);
}

// The font size of a graph in points; with axis numbers, text is never smaller than 9 pixels.
int Graphs::Letters(int graph) const {
  const int points = GraphFontPoints(Graph(graph).Slot, screenScale_);
  return std::max(View.AxisNumbers ? std::max(points, kReadablePoints) : points, leastLetters_);
}

int Graphs::LetterPoints() const {
  return GraphFontPoints(0, screenScale_);
}

void Graphs::DrawGraphFrame(int graph) {
  Canvas& canvas = Target();
  const ChannelSettings& channel = session_.Channel(graph + 1);
  const GraphRecord& record = Graph(graph);
  canvas.SetFontSize(Letters(graph));
  if (record.IsSmith) {
    DrawSmithFrame(canvas, record, session_.Colour);
  } else {
    DrawRectangularFrame(canvas, record, session_.Colour);
    DrawReference(canvas, record, channel, session_.Colour);
  }
  axisNumbers_[static_cast<std::size_t>(graph)].clear();
  if (record.IsTime) DrawGateEdges(canvas, record, session_);
  DrawGraphText(canvas, record, channel, session_);
  if (!View.AxisNumbers) return;
  DrawAxisNumbers(canvas, record, session_, axisNumbers_[static_cast<std::size_t>(graph)]);
  const Rect title = TitleRect(graph);
  const std::string number = "CH" + std::to_string(graph + 1);
  const CanvasPoint at{title.right + canvas.TextExtent("0").width, title.top};
  canvas.DrawText(at, number, session_.Colour.TextColour);
  const DisplaySetRow& shown = RowOf(session_.Display.DisplaySet);
  if (!record.IsActive || shown.First == shown.Last) return;
  // A box marks the active channel, where there are several.
  const Extent size = canvas.TextExtent(number);
  canvas.SetPen(session_.Colour.TextColour, PenStyle::Solid, 1);
  canvas.DrawRectangle({at.x - 2, at.y}, {at.x + size.width + 2, at.y + size.height});
}

}  // namespace qk
