// From a value to a pixel of its graph.
#pragma once

#include "display/records.h"

namespace qk {

// Point index (from 1) of a rectangular graph. A value off the scale runs along the top or bottom
// edge; one that is no number stands on the bottom edge. A scale within 1e-14 of zero becomes
// 1e-14 of its sign in the record (zero counts as positive).
CanvasPoint MapRect(GraphRecord& graph, int index, double value);

// A reflection coefficient on the chart: the unit circle, as high as the graph, stands in its
// middle. What lies outside the graph's rectangle sticks to its edge.
CanvasPoint MapSmith(const GraphRecord& graph, double re, double im);

// The graph's own mapper: value2 is the imaginary part on a Smith chart and unused elsewhere.
inline CanvasPoint MapPoint(GraphRecord& graph, int index, double value, double value2) {
  return graph.IsSmith ? MapSmith(graph, value, value2) : MapRect(graph, index, value);
}

}  // namespace qk
