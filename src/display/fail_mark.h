// SPDX-License-Identifier: MIT
// The mark at a point that fails its limits.
#pragma once

#include "display/canvas.h"

namespace qk {

// A red curl at the pixel of the failing point, in the current font.
void DrawFailMark(Canvas& canvas, CanvasPoint at);
// The rectangle that it takes.
Rect FailMarkBounds(const Canvas& canvas, CanvasPoint at);

}  // namespace qk
