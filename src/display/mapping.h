// SPDX-License-Identifier: MIT
// From a value to a pixel of its graph.
#pragma once

#include "display/records.h"

namespace qk {

// The scale that a graph's record holds: one within 1e-14 of zero becomes 1e-14 of its sign (zero
// counts as positive).
float UsableScale(float scale);

// Point index (from 1) of a rectangular graph. A value off the scale runs along the top or bottom
// edge; one that is not a number is drawn on the bottom edge. The record's scale is a UsableScale.
CanvasPoint MapRect(const GraphRecord& graph, int index, double value);

// A reflection coefficient on the chart: the unit circle, as high as the graph, stands in its
// middle. What lies outside the graph's rectangle sticks to its edge.
CanvasPoint MapSmith(const GraphRecord& graph, double re, double im);

// The graph's own mapper: value2 is the imaginary part on a Smith chart and unused elsewhere.
inline CanvasPoint MapPoint(const GraphRecord& graph, int index, double value, double value2) {
  return graph.IsSmith ? MapSmith(graph, value, value2) : MapRect(graph, index, value);
}

}  // namespace qk
