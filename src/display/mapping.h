// SPDX-License-Identifier: MIT
// Maps a value to a pixel of its graph.
#pragma once

#include "display/records.h"

namespace qk {

// The scale stored in a graph's record: a scale within 1e-14 of zero becomes 1e-14 with its sign
// (zero counts as positive).
float UsableScale(float scale);

// Maps point index (from 1) of a rectangular graph. A value off the scale is drawn on the top or
// bottom edge; NaN is drawn on the bottom edge. The record's scale must be a UsableScale.
CanvasPoint MapRect(const GraphRecord& graph, int index, double value);

// Maps a reflection coefficient on the chart: the unit circle is centred and as high as the graph.
// Values outside the graph's rectangle are clamped to its edge.
CanvasPoint MapSmith(const GraphRecord& graph, double re, double im);

// The mapping for the graph's type: value2 is the imaginary part on a Smith chart, otherwise
// unused.
inline CanvasPoint MapPoint(const GraphRecord& graph, int index, double value, double value2) {
  return graph.IsSmith ? MapSmith(graph, value, value2) : MapRect(graph, index, value);
}

}  // namespace qk
