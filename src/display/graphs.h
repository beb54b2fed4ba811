// SPDX-License-Identifier: MIT
// The picture area: up to four graphs in a proportional layout, the committed background (frames,
// grid, text, memory and limit traces) and the overlay (live traces, sweep tick, markers with their
// read-outs, fail marks).
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/instrument_limits.h"
#include "core/session.h"
#include "display/band_source.h"
#include "display/canvas.h"
#include "display/markers.h"
#include "display/records.h"
#include "trace/point_sink.h"

namespace qk {

struct ChannelValues;

class Graphs : public PointSink {
 public:
  // screenScale: screen height relative to 768 pixels; scales all graph fonts.
  Graphs(Session& session, PictureSurface& surface, float screenScale = 1);
  ~Graphs() override;

  // Font size in points of a graph that fills the whole picture.
  int LetterPoints() const;
  // True if a sweep or a loaded session has provided values of the parameter that the graph shows.
  bool HoldsData(int graph) const;
  // True if the current kind of sweep measures the parameter that the graph shows.
  bool IsMeasured(int graph) const {
    return TakesPartInSweep(session_.Channel(graph + 1).Parameter);
  }
  // True if the data trace shows measured values that the next sweep replaces; otherwise the trace
  // is grey and has the remark "not measured".
  bool ShowsMeasurement(int graph) const { return IsMeasured(graph) && HoldsData(graph); }

  // Optional items to show; the next redraw applies a change.
  ViewState View;
  // Source of the bands around the data traces; nullptr: no bands.
  const BandSource* Bands = nullptr;
  // Stores the verdicts of the sweep that has just ended.
  void TakeVerdicts(const std::array<LimitVerdict, kChannels>& verdicts);
  const LimitVerdict& Verdict(int graph) const {
    return verdicts_[static_cast<std::size_t>(graph)];
  }
  // The frequencies of a graph's limits that the sweep does not contain, "1036.0000 to 1075.0000
  // MHz", or an empty text; may be empty.
  std::function<std::string(int graph)> Untested;
  std::string UntestedText(int graph) const { return Untested ? Untested(graph) : std::string(); }
  // True if a verdict is shown: limits are shown and tested, the test was of the current sweep, and
  // the trace still shows its measurement.
  bool HasVerdict(int graph) const;

  // The item at a position in the picture, for the mouse.
  enum class SpotKind { None, Title, Scale, Reference, ReferenceMark, Badge, Inside, Beside };
  struct Spot {
    int Graph = -1;  // -1: not near a graph
    SpotKind Kind = SpotKind::None;
  };
  Spot SpotAt(CanvasPoint at);
  // The point (from 1) of a graph's data trace nearest to a position: along the axis on a
  // rectangular graph, by distance on a Smith chart.
  int PointAt(int graph, CanvasPoint at) const;

  // Complete rebuild of background and overlay, from the values stored in the traces. Unless
  // keepMarkers, the markers move to the points of "Markers Set Up", on the data traces.
  void RedrawAll(bool keepMarkers);
  // Formats all stored points into the displayed channels again, then calls RedrawAll(true). Does
  // not disturb a running sweep.
  void ReplotAll();
  // Copies the channels' values, as of a loaded session, to the data traces. A trace without values
  // becomes its reference line. Draws nothing.
  void TakeChannels();
  // The read-out of a marker of the graph, with the uncertainty if its band is shown.
  std::string ValueText(int graph, const Marker& marker, double zo) const;
  // Draws the live layer from stored pixels. The caller wipes first.
  void DrawOverlay();
  // Redraws the live layer at once.
  void RedrawOverlay();
  // The same after a marker was moved: the traces are drawn only if they have changed since the
  // last call.
  void RedrawMarkers();
  // The next RedrawMarkers draws the traces, whatever has changed.
  void TracesChanged() { kept_.reset(); }
  void Wipe() {
    TracesChanged();
    surface_.Wipe();
  }
  void Present() { surface_.Present(); }
  // The same when the next frame is due.
  void LiveChanged() { surface_.LiveChanged(); }
  void CatchUp() { surface_.CatchUp(); }
  // Maps one point into the data trace; visible after the next DrawOverlay.
  void PlotPoint(int channel, int pointIndex, double value, double value2) override;
  void ComputingTimeDomain(bool on) override {
    if (OnComputingTimeDomain) OnComputingTimeDomain(on);
  }
  void SplineDataError() override {
    if (OnSplineDataError) OnSplineDataError();
  }
  // Draws the picture as it is printed, saved and copied: without the tick of a running sweep, and
  // with the label (if any). The next redraw undoes it.
  void DrawGraphicsLabel(const std::string& text);
  // Draws this picture, with a label (if any), on another canvas of the same size.
  void Paint(Canvas& canvas, const std::string& label);
  // Draws the picture with a new layout for a page: on a canvas of any size, with axis numbers,
  // with graph text of at least leastLetters points of the canvas, in the colours of the session.
  // The picture area and the markers are not changed.
  void PaintPage(Canvas& canvas, const std::string& label, int leastLetters);
  PictureSurface& Surface() { return surface_; }
  // Resets all graphs and traces to their initial state; draws nothing.
  void Reset();

  // Called when a complete rebuild has reset the markers, which also releases fixed ones; may be
  // empty.
  std::function<void()> OnMarkersSet;

  // Called after each complete redraw, which follows each change of what the traces show; may be
  // empty.
  std::function<void()> OnRedrawn;

  // These inform the user through the code that owns the windows; may be empty.
  std::function<void(bool)> OnComputingTimeDomain;
  std::function<void()> OnSplineDataError;

  const GraphRecord& Graph(int graph) const { return graphs_[static_cast<std::size_t>(graph)]; }
  const TraceRecord& Trace(int graph, int kind) const {
    return traces_[static_cast<std::size_t>(graph + kChannels * kind)];
  }

 private:
  class TraceSink;

  // The target of drawing: the picture area, or the canvas of Paint.
  Canvas& Target() { return painted_ != nullptr ? *painted_ : surface_.Picture(); }
  void FillBackground();
  void ColourTraces();
  void LayOut();
  void ConfigureGraph(int graph);
  void EnableGraph(int graph);
  void DrawBackground();
  void DrawGraphFrame(int graph);
  MarkedGraph Marked(int graph) const;
  // The axis numbers of each graph that a marker would touch, as bits.
  using AxisNumberSets = std::array<std::uint32_t, kChannels>;
  AxisNumberSets NumbersAtMarkers();
  void DrawTraces(const AxisNumberSets& leftOut);
  void DrawOverTraces();
  void DrawMarkers();
  // The point with the fail mark, if it is drawn.
  std::optional<CanvasPoint> FailMarkOf(int graph) const;
  void DrawFailMarks();
  void DrawRemarks(int graph);
  Rect BadgePlace(int graph, Extent size);
  void DrawBadge(int graph);
  void DrawFailingPoints(int graph);
  void NoteRemarkPlace(int graph);
  int Letters(int graph) const;
  void DrawLabel(const std::string& text);
  Rect TitleRect(int graph);
  void PlotTrace(int graph, TraceKind kind, bool useValues);
  void PlotMemoryTraces();
  void PlotMemoryTrace(int channel, int number);
  void PlotLimitTraces();
  void PlotDataTraces();
  void DrawStoredTraces(TraceKind first);
  void DrawTrace(int graph, int kind);
  // Draws points first to last, from 1, split at gaps if the graph has them.
  void DrawPoints(const GraphRecord& graph, const TraceRecord& trace, int first, int last);
  void SetTracePen(const TraceRecord& trace);
  void DrawBands(int graph);
  void DrawBand(int graph, BandKind kind, std::uint32_t colour);
  void DrawCircles(int graph, BandKind kind, std::uint32_t colour);
  void FillBand(std::uint32_t colour);
  void DrawSweepTick(int graph);
  bool TakesPartInSweep(Parameter parameter) const;
  void StoreValue(int graph, int kind, int pointIndex, double value, double value2);
  TraceRecord& MutableTrace(int graph, int kind) {
    return traces_[static_cast<std::size_t>(graph + kChannels * kind)];
  }

  Session& session_;
  PictureSurface& surface_;
  float screenScale_;
  int leastLetters_ = 1;  // points, for PaintPage
  std::array<GraphRecord, kChannels> graphs_;
  std::vector<TraceRecord> traces_;           // one per graph and kind, on the heap
  std::array<bool, kChannels> traceValid_{};  // the data trace contains values
  bool measured_ = false;                     // a sweep has delivered points
  std::array<bool, kChannels> measuredOf_{};  // the same per channel's parameter
  // The remarks next to a title: their start and right limit, all of them, and those that fit.
  struct RemarkLine {
    CanvasPoint At;
    int End = 0;
    std::string All, Fitting;
  };
  std::array<RemarkLine, kChannels> remarks_;
  std::array<Rect, kChannels> badges_{};
  std::array<std::vector<Rect>, kChannels> axisNumbers_;  // inside the frames
  std::optional<AxisNumberSets> kept_;  // set while the surface keeps the traces drawn with this
  std::vector<Rect> obstacles_;         // work space; the capacity is reused
  std::array<LimitVerdict, kChannels> verdicts_{};
  PlanGrid verdictGrid_;       // the sweep that the verdicts belong to
  int tickHeight_ = 0;         // pixels, measured with the frames
  bool still_ = false;         // while the picture is drawn that is saved
  Canvas* painted_ = nullptr;  // while Paint runs
  // Work space for the band being drawn; the capacity is reused.
  std::vector<CanvasPoint> bandUpper_, bandLower_, bandMiddle_;
  std::unique_ptr<ChannelValues> live_;  // saved while a stored trace is formatted
};

}  // namespace qk
