// SPDX-License-Identifier: MIT
// The positions of the graphs in the picture area and the size of their text: proportions of the
// area, as pure functions.
#pragma once

#include <cmath>
#include <cstdint>
#include <span>

#include "core/vocabulary.h"
#include "display/canvas.h"

namespace qk {

// A position rounded to a whole pixel, halves away from zero.
inline int WholePixel(double position) {
  return static_cast<int>(std::lround(position));
}

// The plot rectangle of a layout slot in an area of this size with its top left corner at 0, 0.
// Slot 0 is the whole area; 2 and 5 the upper and lower half; 1, 3 the upper and 4, 6 the lower
// quarters. With the marker table, the graphs leave the right side of the area free.
Rect GraphRect(int slot, bool markerTable, Extent area);

// The slot of graph 0 to 3 in a display set that contains it.
std::int16_t SlotOf(DisplaySet displaySet, int graph);

// Font sizes in points for a screen scale (screen height relative to 768 pixels), at least 1: for
// the text of a graph in a slot, and for the text of the whole area.
int GraphFontPoints(int slot, float screenScale);
int AreaFontPoints(float screenScale);
// The font size in points of text of nine pixels, the smallest that is easy to read.
inline constexpr int kReadablePoints = 7;

// Distance of the title's upper edge above the graph, in lines of its text.
inline constexpr double kTitleRise = 2.1;
bool Overlap(const Rect& a, const Rect& b);
// Moves something of this size to the left or right, to the nearest position between the edges left
// and right that is clear of all obstacles by the gap. Unchanged if there is none.
CanvasPoint ClearOf(std::span<const Rect> obstacles, CanvasPoint at, Extent size, int gap, int left,
                    int right);

// The smallest height of the area, in pixels, whose upper margin has room for the title of a graph.
int LeastHeight(int lineHeight);

}  // namespace qk
