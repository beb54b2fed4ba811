// SPDX-License-Identifier: MIT
// The picture area: up to four graphs laid out by proportion, the committed background (frames,
// grid, text, memory and limit traces) and the overlay (live traces, sweep tick, markers with their
// read-outs, fail marks).
#pragma once

#include <array>
#include <functional>
#include <memory>
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

class Graphs : public PointSink {
 public:
  // screenScale: screen height relative to 768 pixels; it sizes all graph fonts.
  Graphs(Session& session, PictureSurface& surface, float screenScale = 1);
  ~Graphs() override;

  // The letters of a graph that has the picture to itself.
  int LetterPoints() const;
  // A sweep or a loaded session has brought values of the parameter that the graph shows.
  bool HoldsData(int graph) const;
  // The sweep at hand measures the parameter that the graph shows.
  bool IsMeasured(int graph) const {
    return TakesPartInSweep(session_.Channel(graph + 1).Parameter);
  }

  // What is shown beside; the next redraw shows it.
  ViewState View;
  // Of the bands about the data traces; nullptr: there are none.
  const BandSource* Bands = nullptr;
  // Of the sweep that has just ended.
  void TakeVerdicts(const std::array<LimitVerdict, kChannels>& verdicts);
  const LimitVerdict& Verdict(int graph) const {
    return verdicts_[static_cast<std::size_t>(graph)];
  }
  // A verdict is shown: limits are shown and tested, and the test was of the sweep at hand.
  bool HasVerdict(int graph) const;

  // What stands at a place of the picture, for the mouse.
  enum class SpotKind { None, Title, Scale, Reference, ReferenceMark, Badge, Inside, Beside };
  struct Spot {
    int Graph = -1;  // -1: no graph is near
    SpotKind Kind = SpotKind::None;
  };
  Spot SpotAt(CanvasPoint at);
  // The point (from 1) of a graph's data trace nearest to a place: by its place along the axis on
  // a rectangular graph, by distance on a Smith chart.
  int PointAt(int graph, CanvasPoint at) const;

  // Complete rebuild, background and overlay. Needs nothing but the values that the traces hold.
  // Markers that are not kept go to the points of "Markers Set Up", on the data traces.
  void RedrawAll(bool keepMarkers);
  // Formats all stored points into the displayed channels again, then RedrawAll(true). A sweep that
  // runs meanwhile goes on undisturbed.
  void ReplotAll();
  // The data traces take the values that the channels hold, as of a session that was loaded; one
  // without any becomes its reference line. Nothing is drawn.
  void TakeChannels();
  // What a marker of the graph reads, with the uncertainty where its band is shown.
  std::string ValueText(int graph, const Marker& marker, double zo) const;
  // The live layer, from stored pixels. The caller wipes first.
  void DrawOverlay();
  // The live layer anew, at once.
  void RedrawOverlay();
  void Wipe() { surface_.Wipe(); }
  void Present() { surface_.Present(); }
  // ... or when a frame is due.
  void LiveChanged() { surface_.LiveChanged(); }
  void CatchUp() { surface_.CatchUp(); }
  // Maps one point into the data trace; shows at the next DrawOverlay.
  void PlotPoint(int channel, int pointIndex, double value, double value2) override;
  void ComputingTimeDomain(bool on) override {
    if (OnComputingTimeDomain) OnComputingTimeDomain(on);
  }
  void SplineDataError() override {
    if (OnSplineDataError) OnSplineDataError();
  }
  // Draws the label of prints and saved pictures over the picture; the next redraw takes it off.
  void DrawGraphicsLabel(const std::string& text);
  // The picture as it stands, with a label (if any), drawn once more on a canvas of the same size.
  void Paint(Canvas& canvas, const std::string& label);
  // The picture laid out anew for a page: on a canvas of any size, numbers at the axes, no letter
  // of a graph below leastLetters points of the canvas, in the colours of the session. The picture
  // area and the markers stay as they are.
  void PaintPage(Canvas& canvas, const std::string& label, int leastLetters);
  PictureSurface& Surface() { return surface_; }
  // All graphs and traces as at the start of the program; nothing is drawn.
  void Reset();

  // A complete rebuild has set the markers anew, fixed ones no longer being so; may be empty.
  std::function<void()> OnMarkersSet;

  // Told to the user by whoever has the windows; may be empty.
  std::function<void(bool)> OnComputingTimeDomain;
  std::function<void()> OnSplineDataError;

  const GraphRecord& Graph(int graph) const { return graphs_[static_cast<std::size_t>(graph)]; }
  const TraceRecord& Trace(int graph, int kind) const {
    return traces_[static_cast<std::size_t>(graph + kChannels * kind)];
  }

 private:
  class TraceSink;
  struct PrevPhases;
  struct LiveValues;

  // Where drawing goes: the picture area, or the canvas of Paint.
  Canvas& Target() { return painted_ != nullptr ? *painted_ : surface_.Picture(); }
  void FillBackground();
  void ColourTraces();
  void LayOut();
  void ConfigureGraph(int graph);
  void EnableGraph(int graph);
  void DrawBackground();
  void DrawGraphFrame(int graph);
  MarkedGraph Marked(int graph) const;
  void DrawMarkers();
  void DrawFailMarks();
  void DrawRemarks(int graph);
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
  // Points first to last, from 1, in pieces where the graph has gaps.
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
  int leastLetters_ = 1;  // points, of PaintPage
  std::array<GraphRecord, kChannels> graphs_;
  std::vector<TraceRecord> traces_;           // a graph and kind each, on the heap
  std::array<bool, kChannels> traceValid_{};  // the data trace holds values
  bool measured_ = false;                     // a sweep has delivered points
  std::array<bool, kChannels> measuredOf_{};  // ... of the parameter
  // The remarks beside a title: where they begin and must end, all of them, and those that fit.
  struct RemarkLine {
    CanvasPoint At;
    int End = 0;
    std::string All, Fitting;
  };
  std::array<RemarkLine, kChannels> remarks_;
  std::array<Rect, kChannels> badges_{};
  std::array<LimitVerdict, kChannels> verdicts_{};
  PlanGrid verdictGrid_;       // the sweep that they are of
  int tickHeight_ = 0;         // pixels, measured with the frames
  Canvas* painted_ = nullptr;  // while Paint runs
  // The run of a band that is being drawn; their room is kept.
  std::vector<CanvasPoint> bandUpper_, bandLower_, bandMiddle_;
  std::unique_ptr<LiveValues> live_;  // kept aside while a stored trace is formatted
};

}  // namespace qk
