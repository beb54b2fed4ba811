// SPDX-License-Identifier: MIT
// The graphs' traces: storing values, mapping them to pixels and drawing them; stored traces; the
// overlay.
#include <cmath>
#include <limits>

#include "core/instrument_limits.h"
#include "display/graphs.h"
#include "display/layout.h"
#include "display/mapping.h"
#include "display/remarks.h"
#include "trace/channel_values.h"
#include "trace/formatting.h"
#include "trace/gate.h"
#include "trace/memory.h"
#include "trace/smoothing.h"

namespace qk {

// Stores formatted points in one kind of trace as values; they are mapped when the trace is
// plotted.
class Graphs::TraceSink : public PointSink {
 public:
  TraceSink(Graphs& graphs, TraceKind kind) : graphs_(graphs), kind_(kind) {}
  void PlotPoint(int channel, int pointIndex, double value, double value2) override {
    graphs_.StoreValue(channel - 1, kind_, pointIndex, value, value2);
    plotted_ = true;
  }
  void ComputingTimeDomain(bool on) override { graphs_.ComputingTimeDomain(on); }
  void SplineDataError() override { graphs_.SplineDataError(); }
  bool Plotted() const { return plotted_; }

 private:
  Graphs& graphs_;
  TraceKind kind_;
  bool plotted_ = false;
};

Graphs::Graphs(Session& session, PictureSurface& surface, float screenScale)
    : session_(session),
      surface_(surface),
      screenScale_(screenScale),
      traces_(kChannels * kTraceKinds),
      live_(std::make_unique<ChannelValues>()) {
  for (auto* points : {&bandUpper_, &bandLower_, &bandMiddle_})
    points->reserve(static_cast<std::size_t>(2 * kMaxPoints));
  surface_.DrawLive = [this] { RedrawOverlay(); };
}

Graphs::~Graphs() {
  surface_.DrawLive = nullptr;
}

void Graphs::RedrawOverlay() {
  Wipe();
  DrawOverlay();
  Present();
}

void Graphs::Reset() {
  graphs_.fill({});
  for (TraceRecord& trace : traces_) trace = {};
  traceValid_.fill(false);
  measured_ = false;
  measuredOf_.fill(false);
}

bool Graphs::HoldsData(int graph) const {
  return measuredOf_[static_cast<std::size_t>(session_.Channel(graph + 1).Parameter)];
}

void Graphs::PlotPoint(int channel, int pointIndex, double value, double value2) {
  if (pointIndex < 1 || pointIndex > kMaxPoints) return;
  TracesChanged();
  const int graph = channel - 1;
  StoreValue(graph, kDataTrace, pointIndex, value, value2);
  MutableTrace(graph, kDataTrace).Pixel[static_cast<std::size_t>(pointIndex)] =
      MapPoint(graphs_[static_cast<std::size_t>(graph)], pointIndex, value, value2);
  measured_ = true;
  measuredOf_[static_cast<std::size_t>(session_.Channel(channel).Parameter)] = true;
  // The sweep also delivers parameters that no channel shows yet.
  for (std::size_t p = 0; p < measuredOf_.size(); ++p)
    measuredOf_[p] = measuredOf_[p] || TakesPartInSweep(static_cast<Parameter>(p));
}

void Graphs::StoreValue(int graph, int kind, int pointIndex, double value, double value2) {
  TraceRecord& trace = MutableTrace(graph, kind);
  trace.Value[static_cast<std::size_t>(pointIndex)] = value;
  trace.Value2[static_cast<std::size_t>(pointIndex)] = value2;
}

void Graphs::ReplotAll() {
  DisplayState& display = session_.Display;
  const DisplaySetRow& channels = RowOf(display.DisplaySet);
  // A running sweep continues from its current point, not from the end of the traces.
  PrevPhases running;
  running.Take(display);
  for (int n = channels.First; n <= channels.Last; ++n) {
    const Parameter parameter = session_.Channel(n).Parameter;
    const ComplexArray& points = ArrayOf(session_.Data, parameter);
    TraceSink sink(*this, kDataTrace);
    for (int i = 1; i <= session_.Plan.NumPoints; ++i) {
      DispatchPointToChannel(session_, sink, n, points[i - 1], i, parameter);
      if (i == display.PointCounter) running.Take(display);
    }
    running.Restore(display);
    // A channel added to the display after a sweep shows the measured values, not its reference.
    if (measured_ && sink.Plotted()) traceValid_[static_cast<std::size_t>(n - 1)] = true;
  }
  RedrawAll(true);
}

void Graphs::TakeChannels() {
  verdicts_ = {};
  measured_ = false;
  measuredOf_.fill(false);
  for (int graph = 0; graph < kChannels; ++graph) {
    const ChannelSettings& channel = session_.Channel(graph + 1);
    const bool smoothed = IsSmoothed(session_, channel);
    bool held = false;
    for (int i = 1; i <= session_.Plan.NumPoints; ++i) {
      const auto k = static_cast<std::size_t>(i);
      const double value = smoothed ? double{channel.SmoothValue[k]} : channel.Value[k];
      const double value2 = smoothed ? double{channel.SmoothValue2[k]} : channel.Value2[k];
      StoreValue(graph, kDataTrace, i, value, value2);
      held = held || value != 0 || value2 != 0;
    }
    traceValid_[static_cast<std::size_t>(graph)] = held;
    measured_ = measured_ || held;
  }
  // A transmission that was never measured is zero at each point, and a reflection 1e-6; in
  // decibels both are numbers too.
  constexpr double kNothing = 2e-6;
  for (std::size_t p = 0; p < measuredOf_.size(); ++p) {
    const ComplexArray& points = ArrayOf(session_.Data, static_cast<Parameter>(p));
    for (int i = 0; i < session_.Plan.NumPoints && !measuredOf_[p]; ++i)
      measuredOf_[p] = std::abs(points[i].re) > kNothing || std::abs(points[i].im) > kNothing;
  }
}

void Graphs::PlotTrace(int graph, TraceKind kind, bool useValues) {
  const GraphRecord& record = graphs_[static_cast<std::size_t>(graph)];
  TraceRecord& trace = MutableTrace(graph, kind);
  trace.Shown = true;
  trace.Count = record.NumPoints;
  for (int i = 1; i <= trace.Count; ++i) {
    const auto k = static_cast<std::size_t>(i);
    if (!useValues) {
      trace.Value[k] = record.IsSmith ? 0 : record.Reference;
      if (record.IsSmith) trace.Value2[k] = 0;
    }
    trace.Pixel[k] = MapPoint(record, i, trace.Value[k], trace.Value2[k]);
  }
}

void Graphs::PlotMemoryTraces() {
  const DisplaySetRow& channels = RowOf(session_.Display.DisplaySet);
  for (int n = channels.First; n <= channels.Last; ++n) {
    for (int number = 1; number <= kMemories; ++number) {
      const StoredMemory memory = MemoryOf(session_, n, number);
      const bool shown = session_.Display.MemoryShown[static_cast<std::size_t>(number - 1)];
      if (shown && memory.Valid && memory.Of == session_.Channel(n).Parameter)
        PlotMemoryTrace(n, number);
    }
  }
  Wipe();
  DrawStoredTraces(kDataTrace);
}

// Intentional: only displayed traces hold extremes, and of the memories only the selected one.
// A hold takes nothing from a disturbed sweep, so nothing from the running one before its end.
void Graphs::PlotMemoryTrace(int n, int number) {
  const ChannelSettings& channel = session_.Channel(n);
  const StoredMemory memory = MemoryOf(session_, n, number);
  const Parameter parameter = channel.Parameter;
  const ComplexArray& points = ArrayOf(session_.Data, parameter);
  const bool holds =
      session_.Display.MemoryHold != MemoryHold::Off && number == session_.Display.MemoryNumber;
  const DisplayState& display = session_.Display;
  const int unsure = display.SweepDisturbed ? session_.Plan.NumPoints
                     : session_.Flags.Idle() || !display.SweepCounted
                         ? 0
                         : display.PointCounter % session_.Plan.NumPoints;
  const TraceKind kind = MemoryTraceOf(number);
  TraceSink sink(*this, kind);
  live_->Take(session_, n);
  for (int i = 1; i <= session_.Plan.NumPoints; ++i) {
    const Complex live = points[i - 1];
    if (holds && i > unsure && HoldWins(session_, channel, live, memory.At(i), i))
      memory.Set(i, live);
    DispatchPointToChannel(session_, sink, n, memory.At(i), i, parameter);
  }
  live_->Restore(session_, n);
  if (sink.Plotted()) PlotTrace(n - 1, kind, true);
}

void Graphs::PlotLimitTraces() {
  const DisplaySetRow& channels = RowOf(session_.Display.DisplaySet);
  for (int n = channels.First; n <= channels.Last; ++n) {
    const ChannelSettings& channel = session_.Channel(n);
    if (!channel.LimitsOn || Graph(n - 1).IsSmith) continue;
    for (int i = 1; i <= session_.Plan.NumPoints; ++i) {
      const auto k = static_cast<std::size_t>(i);
      auto upper = static_cast<double>(channel.UpperLimit[k]);
      auto lower = static_cast<double>(channel.LowerLimit[k]);
      // If 1000 is a possible value, limit lines are not drawn at points without limits.
      if (Graph(n - 1).HasGaps && NoLimits(channel, i))
        upper = lower = std::numeric_limits<double>::quiet_NaN();
      StoreValue(n - 1, kUpperTrace, i, upper, 0);
      StoreValue(n - 1, kLowerTrace, i, lower, 0);
    }
    PlotTrace(n - 1, kUpperTrace, true);
    PlotTrace(n - 1, kLowerTrace, true);
  }
  Wipe();
  DrawStoredTraces(kDataTrace);
}

void Graphs::PlotDataTraces() {
  const DisplaySetRow& channels = RowOf(session_.Display.DisplaySet);
  for (int graph = channels.First - 1; graph < channels.Last; ++graph) {
    bool& valid = traceValid_[static_cast<std::size_t>(graph)];
    PlotTrace(graph, kDataTrace, valid);
    valid = true;
  }
}

void Graphs::SetTracePen(const TraceRecord& trace) {
  Target().SetPen(trace.Colour, static_cast<PenStyle>(trace.PenStyle), trace.PenWidth);
}

void Graphs::DrawTrace(int graph, int kind) {
  const GraphRecord& record = Graph(graph);
  const TraceRecord& trace = Trace(graph, kind);
  if (!record.IsGated || kind == kUpperTrace || kind == kLowerTrace) {
    DrawPoints(record, trace, 1, trace.Count);
    return;
  }
  const int trusted = static_cast<int>(kGateTrusted * trace.Count);
  DrawPoints(record, trace, 1, trusted);
  Target().SetPen(trace.Colour, PenStyle::Dashed, trace.PenWidth);
  DrawPoints(record, trace, trusted, trace.Count);
  SetTracePen(trace);
}

void Graphs::DrawPoints(const GraphRecord& graph, const TraceRecord& trace, int first, int last) {
  const auto draw = [&](int from, int behind) {
    if (behind - from == 1)  // a single point between two gaps
      Target().DrawLine(trace.Pixel[static_cast<std::size_t>(from)],
                        trace.Pixel[static_cast<std::size_t>(from)]);
    else if (behind > from)
      Target().DrawPolyline(
          {&trace.Pixel[static_cast<std::size_t>(from)], static_cast<std::size_t>(behind - from)});
  };
  if (!graph.HasGaps) {
    Target().DrawPolyline({&trace.Pixel[static_cast<std::size_t>(first)],
                           static_cast<std::size_t>(last - first + 1)});
    return;
  }
  int from = first;
  for (int i = first; i <= last; ++i) {
    if (!std::isnan(trace.Value[static_cast<std::size_t>(i)])) continue;
    draw(from, i);
    from = i + 1;
  }
  draw(from, last + 1);
}

void Graphs::DrawStoredTraces(TraceKind first) {
  for (int graph = 0; graph < kChannels; ++graph) {
    if (!Graph(graph).Enabled) continue;
    for (int kind = first; kind < kTraceKinds; ++kind) {
      const TraceRecord& trace = Trace(graph, kind);
      if (!trace.Shown) continue;
      SetTracePen(trace);
      DrawTrace(graph, kind);
    }
  }
  SetTracePen(Trace(0, kDataTrace));
}

void Graphs::DrawOverlay() {
  TracesChanged();
  DrawTraces(NumbersAtMarkers());
  DrawOverTraces();
}

void Graphs::RedrawMarkers() {
  const AxisNumberSets leftOut = NumbersAtMarkers();
  if (kept_ == leftOut) {
    surface_.Return();
  } else {
    Wipe();
    DrawTraces(leftOut);
    if (surface_.Keep()) kept_ = leftOut;
  }
  DrawOverTraces();
  Present();
}

// An axis number that a marker would touch is left out, so that the marker's number can be read.
// Traces are drawn afterwards: limits and memories, which Wipe has drawn, again.
void Graphs::DrawTraces(const AxisNumberSets& leftOut) {
  bool filled = false;
  for (std::size_t graph = 0; graph < leftOut.size(); ++graph)
    for (std::size_t i = 0; i < axisNumbers_[graph].size(); ++i)
      if (const Rect& number = axisNumbers_[graph][i]; (leftOut[graph] >> i & 1) != 0) {
        Target().FillRectangle({number.left, number.top}, {number.right, number.bottom},
                               session_.Colour.BackColour);
        filled = true;
      }
  if (filled) DrawStoredTraces(kMemoryTrace);
  SetTracePen(Trace(0, kDataTrace));
  for (int graph = 0; graph < kChannels; ++graph) {
    const TraceRecord& trace = Trace(graph, kDataTrace);
    if (!Graph(graph).Enabled || !trace.Shown) continue;
    if (View.AnyBand()) {
      DrawBands(graph);
      SetTracePen(Trace(0, kDataTrace));
    }
    const bool grey = View.Remarks && !ShowsMeasurement(graph);
    if (grey) Target().SetPen(kNotMeasuredColour, PenStyle::Solid, 1);
    DrawTrace(graph, kDataTrace);
    if (grey) SetTracePen(Trace(0, kDataTrace));
    DrawSweepTick(graph);
  }
  if (View.Remarks)
    for (int graph = 0; graph < kChannels; ++graph)
      if (Graph(graph).Enabled && HasVerdict(graph)) DrawFailingPoints(graph);
}

void Graphs::DrawOverTraces() {
  DrawMarkers();
  DrawFailMarks();
  if (!View.Remarks && !View.AnyBand()) return;
  for (int graph = 0; graph < kChannels; ++graph) {
    if (!Graph(graph).Enabled) continue;
    DrawRemarks(graph);
    if (HasVerdict(graph)) DrawBadge(graph);
  }
}

void Graphs::DrawSweepTick(int graph) {
  const int count = session_.Display.PointCounter;
  if (count < 1 || count >= Graph(graph).NumPoints) return;
  if (still_ || painted_ != nullptr) return;  // a picture that is kept shows no running sweep
  if (session_.Flags.SweepIdle || !session_.Display.SweepCounted) return;
  if (!IsMeasured(graph)) return;
  const CanvasPoint at = Trace(graph, kDataTrace).Pixel[static_cast<std::size_t>(count)];
  Target().DrawLine(at, {at.x, at.y - tickHeight_});
}

bool Graphs::TakesPartInSweep(Parameter parameter) const {
  const CalState& cal = session_.Cal;
  const bool s11 = parameter == Parameter::S11;
  const bool s21 = parameter == Parameter::S21;
  return (cal.CalS21 && s21) || (cal.CalS11 && s11) || (cal.CalS11S21 && (s11 || s21)) ||
         cal.Cal12Term;
}

}  // namespace qk
