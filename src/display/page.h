// SPDX-License-Identifier: MIT
// The position of pictures on a printed page: in the printer's pixels, from the top left corner of
// the printable area.
#pragma once

#include <optional>

#include "display/canvas.h"

namespace qk {

// The picture area: enlarged by a whole number, minus 8 percent on a landscape page or 5 on a
// portrait page; at the left edge, and one picture height (in the printer's pixels) from the top.
// It moves up if the page would cut off its bottom, and shrinks if it still does not fit. Empty if
// the page is not at least 1.5 times as large as the picture: nothing is printed.
std::optional<Rect> PlaceOnPage(Extent page, Extent picture);

// The picture of a window: as large as fits in 0.8 of the page, centred.
std::optional<Rect> FitOnPage(Extent page, Extent picture);

}  // namespace qk
