// SPDX-License-Identifier: MIT
// What a marker looks like: a stem on the point of the trace, its number above or below, and by its
// state a box (active), a triangle (reference) or two bars (fixed reference) around the number.
#pragma once

#include <cstdint>
#include <optional>

#include "display/markers.h"

namespace qk {

// Takes the marker's value from its trace, then draws it in the trace's pen and notes where its
// number stands. The symbol stands above the point while there is room below the graph's top.
// ground: the colour behind the number, so that no trace runs through it; nothing leaves what is
// there.
void DrawMarker(Canvas& canvas, const MarkedGraph& graph, Marker& marker,
                std::optional<std::uint32_t> ground = {});

}  // namespace qk
