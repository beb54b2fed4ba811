// The picture area: up to four graphs laid out by proportion, the committed background (frames,
// grid, text, memory and limit traces) and the overlay (live traces, sweep tick, read-outs).
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/session.h"
#include "display/canvas.h"
#include "trace/point_sink.h"

namespace qk {

struct GraphRecord {
  std::int32_t Left = 0, Top = 0, Right = 0, Bottom = 0;  // plot rectangle, pixels
  std::int16_t Slot = 0;
  bool IsActive = false, Enabled = false, IsSmith = false, IsTime = false;
  float Scale = 1;  // units per division
  double Reference = 0;
  std::int16_t RefPosition = 5;       // divisions below the top edge
  double XStart = 0, XStep = 0;       // hertz
  float TimeStart = 0, TimeStep = 0;  // ns
  std::int16_t NumPoints = 0;
  std::string Units = "dB";
};

struct TraceRecord {
  std::int16_t Count = 0;
  std::int16_t PenWidth = 1;
  std::int16_t PenStyle = 0;
  std::uint32_t Colour = 0;
  bool Shown = false;
  std::array<double, kMaxPoints + 1> Value{}, Value2{};  // from 1
  std::array<Point, kMaxPoints + 1> Pixel{};             // from 1
};

class Graphs : public PointSink {
 public:
  // screenScale: screen height relative to 768 pixels; it sizes all graph fonts.
  Graphs(Session& session, PictureSurface& surface, float screenScale = 1);

  // Complete rebuild, background and overlay.
  void RedrawAll(bool keepMarkers);
  // Formats all stored points into the displayed channels again, then RedrawAll(true).
  void ReplotAll();
  // The live layer. The caller wipes first.
  void DrawOverlay();
  void Wipe() { surface_.Wipe(); }
  void Present() { surface_.Present(); }
  // Maps one point into the data trace; shows at the next DrawOverlay.
  void PlotPoint(int channel, int pointIndex, double value, double value2) override;

  const GraphRecord& Graph(int graph) const { return graphs_[static_cast<std::size_t>(graph)]; }
  const TraceRecord& Trace(int graph, int kind) const {
    return traces_[static_cast<std::size_t>(graph + 4 * kind)];
  }

 private:
  Session& session_;
  PictureSurface& surface_;
  float screenScale_;
  std::array<GraphRecord, 4> graphs_;
  std::vector<TraceRecord> traces_;  // 16, on the heap
};

}  // namespace qk
