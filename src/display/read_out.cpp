// SPDX-License-Identifier: MIT
#include "display/read_out.h"

#include "core/instrument_limits.h"
#include "display/marker_table.h"

namespace qk {

namespace {

constexpr int kReach = 10;  // pixels

struct Nearest {
  int Graph = -1;
  int Point = 0;
  int DistanceSquared = kReach * kReach + 1;
};

void LookAt(const Graphs& graphs, int graph, CanvasPoint cursor, Nearest& nearest) {
  const TraceRecord& trace = graphs.Trace(graph, kDataTrace);
  if (!graphs.Graph(graph).Enabled || !trace.Shown) return;
  for (int i = 1; i <= trace.Count; ++i) {
    const CanvasPoint at = trace.Pixel[static_cast<std::size_t>(i)];
    const int dx = at.x - cursor.x;
    const int dy = at.y - cursor.y;
    if (dx > kReach || dx < -kReach || dy > kReach || dy < -kReach) continue;
    if (const int d = dx * dx + dy * dy; d < nearest.DistanceSquared) nearest = {graph, i, d};
  }
}

}  // namespace

std::optional<TracePoint> TracePointAt(const Graphs& graphs, CanvasPoint cursor) {
  Nearest nearest;
  for (int graph = 0; graph < kChannels; ++graph) LookAt(graphs, graph, cursor, nearest);
  if (nearest.Graph < 0) return std::nullopt;
  return TracePoint{nearest.Graph, nearest.Point};
}

std::optional<std::string> ReadOutAt(const Graphs& graphs, double zo, CanvasPoint cursor) {
  const std::optional<TracePoint> found = TracePointAt(graphs, cursor);
  if (!found) return std::nullopt;
  const TracePoint& nearest = *found;
  const TraceRecord& trace = graphs.Trace(nearest.Graph, kDataTrace);
  const auto index = static_cast<std::size_t>(nearest.Point);
  Marker there;
  there.Point = static_cast<std::int16_t>(nearest.Point);
  there.Value = trace.Value[index];
  there.Value2 = trace.Value2[index];
  const GraphRecord& graph = graphs.Graph(nearest.Graph);
  return "CH" + std::to_string(nearest.Graph + 1) + "  " + MarkerPositionText(graph, there) + "\n" +
         (graphs.HoldsData(nearest.Graph) ? graphs.ValueText(nearest.Graph, there, zo) : "---");
}

}  // namespace qk
