// SPDX-License-Identifier: MIT
// The frame of a Smith chart: a centred circle as high as the graph, in every layout.
#pragma once

#include "core/session.h"
#include "display/records.h"

namespace qk {

// Unit circle, real axis, labels, circles of constant resistance and arcs of constant reactance.
// The labels have the colour of the grid.
void DrawSmithFrame(Canvas& canvas, const GraphRecord& graph, const Colours& colours);

}  // namespace qk
