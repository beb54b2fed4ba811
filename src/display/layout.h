// SPDX-License-Identifier: MIT
// Where the graphs stand in the picture area, and how large their text is: proportions of the
// area, as pure functions.
#pragma once

#include <cmath>
#include <cstdint>

#include "core/vocabulary.h"
#include "display/canvas.h"

namespace qk {

// A position to the nearest whole pixel, halves away from zero.
inline int WholePixel(double position) {
  return static_cast<int>(std::lround(position));
}

// The plot rectangle of a layout slot in an area of this size whose top left corner is 0, 0:
// 0 the whole area; 2 and 5 the upper and lower half; 1, 3 the upper and 4, 6 the lower quarters.
// With the marker table the graphs leave the right of the area free.
Rect GraphRect(int slot, bool markerTable, Extent area);

// The slot of graph 0 to 3 in a display set that holds it.
std::int16_t SlotOf(DisplaySet displaySet, int graph);

// Font sizes in points for a screen scale (screen height relative to 768 pixels), at least 1:
// the text of a graph in a slot, and the text of the whole area.
int GraphFontPoints(int slot, float screenScale);
int AreaFontPoints(float screenScale);
// Letters of nine pixels, the least that are read with ease: their points, and the screen scale at
// which the marker table has them.
inline constexpr int kReadablePoints = 7;
inline constexpr float kReadableScale = 0.71f;

// The title's upper edge over the graph, in lines of its text.
inline constexpr double kTitleRise = 2.1;
// The least height of the area, in pixels, whose upper margin holds the title of a graph.
int LeastHeight(int lineHeight);

}  // namespace qk
