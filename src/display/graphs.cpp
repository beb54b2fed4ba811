// The redraw of the picture area: its order, and the frames of the graphs.
#include "display/graphs.h"

#include "display/frame.h"
#include "display/layout.h"
#include "display/smith_chart.h"
#include "trace/formatting.h"

namespace qk {

void Graphs::RedrawAll(bool /*keepMarkers*/) {
  Canvas& canvas = surface_.Picture();
  ClearBackground();
  Wipe();
  for (int graph = 0; graph < 4; ++graph) {
    MutableTrace(graph, kDataTrace).Colour = session_.Colour.DataColour;
    MutableTrace(graph, kMemoryTrace).Colour = session_.Colour.MemoryColour;
    MutableTrace(graph, kUpperTrace).Colour = session_.Colour.LimitColour;
    MutableTrace(graph, kLowerTrace).Colour = session_.Colour.LimitColour;
  }
  if (session_.Impedance.ZoConvertOn) {
    canvas.SetFontSize(AreaFontPoints(screenScale_));
    DrawZoTag(canvas, session_);
  }
  for (int graph = 0; graph < 4; ++graph) ConfigureGraph(graph);
  const DisplaySetRow& channels = RowOf(session_.Display.DisplaySet);
  for (int n = channels.First; n <= channels.Last; ++n) DrawGraphFrame(n - 1);
  tickHeight_ = WholePixel(0.5 * canvas.TextExtent("I").height);
  surface_.Commit();
  // The background never holds a live trace; PlotDataTraces shows them again.
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
}

void Graphs::ClearBackground() {
  Canvas& canvas = surface_.Picture();
  const Extent area = canvas.Size();
  canvas.FillRectangle({0, 0}, {area.width, area.height}, session_.Colour.BackColour);
  surface_.Commit();
}

void Graphs::ConfigureGraph(int graph) {
  GraphRecord& record = graphs_[static_cast<std::size_t>(graph)];
  record.IsActive = record.Enabled = record.IsSmith = record.IsTime = false;
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

void Graphs::DrawGraphFrame(int graph) {
  Canvas& canvas = surface_.Picture();
  const ChannelSettings& channel = session_.Channel(graph + 1);
  GraphRecord& record = graphs_[static_cast<std::size_t>(graph)];
  const PointForm form = RowOf(channel.GraphType).Form;
  record.Enabled = true;
  record.IsActive = channel.Active;
  record.IsSmith = form == PointForm::Chart;
  record.IsTime = form == PointForm::Spectrum;
  record.Scale = static_cast<float>(channel.Scale);
  record.Reference = channel.Reference;
  record.RefPosition = channel.RefPosition;
  record.Units = channel.Units;

  record.Slot = SlotOf(session_.Display.DisplaySet, graph);
  const Rect rect = GraphRect(record.Slot, session_.Display.MarkersOn, canvas.Size());
  record.Left = rect.left;
  record.Top = rect.top;
  record.Right = rect.right;
  record.Bottom = rect.bottom;
  canvas.SetFontSize(GraphFontPoints(record.Slot, screenScale_));
  if (record.IsSmith) {
    DrawSmithFrame(canvas, record, session_.Colour);
  } else {
    DrawRectangularFrame(canvas, record, session_.Colour);
    DrawReference(canvas, record, channel, session_.Colour);
  }
  DrawGraphText(canvas, record, channel, session_);
}

}  // namespace qk
