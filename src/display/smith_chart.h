// SPDX-License-Identifier: MIT
// The frame of a Smith chart: a circle as high as the graph, in its middle, whatever the layout.
#pragma once

#include "core/session.h"
#include "display/records.h"

namespace qk {

// Unit circle, real axis, labels, circles of constant resistance and arcs of constant reactance.
// The labels are in the grid's colour.
void DrawSmithFrame(Canvas& canvas, const GraphRecord& graph, const Colours& colours);

}  // namespace qk
