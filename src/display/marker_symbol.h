// SPDX-License-Identifier: MIT
// The symbol of a marker: a stem at the trace point, its number above or below, and around the
// number a box (active), a triangle (reference) or two bars (fixed reference).
#pragma once

#include <cstdint>
#include <optional>

#include "display/markers.h"

namespace qk {

// Updates the marker's value from its trace, draws it with the trace's pen, and stores the position
// of its number. The symbol is above the point if there is room below the top of the graph. ground:
// the fill colour behind the number, so that no trace crosses it; empty: not filled.
void DrawMarker(Canvas& canvas, const MarkedGraph& graph, Marker& marker,
                std::optional<std::uint32_t> ground = {});
// The rectangle that the symbol takes, stem and number, at the marker's present pixel.
Rect MarkerBounds(const Canvas& canvas, const GraphRecord& graph, const Marker& marker);

}  // namespace qk
