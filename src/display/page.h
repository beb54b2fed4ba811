// SPDX-License-Identifier: MIT
// Where pictures stand on a page of paper: in the printer's pixels, from the top left corner of
// what it can print on.
#pragma once

#include <optional>

#include "display/canvas.h"

namespace qk {

// The picture area: enlarged by a whole number, less 8 percent on a landscape page and 5 on a
// portrait one, at the left edge and one picture's height (in the printer's pixels) down. Where the
// page would cut the bottom off it stands higher, and is smaller when it still does not fit.
// Nothing when the page is not at least half as large again as the picture: nothing is printed
// then.
std::optional<Rect> PlaceOnPage(Extent page, Extent picture);

// The picture of a window: as large as it goes in 0.8 of the page, in the middle.
std::optional<Rect> FitOnPage(Extent page, Extent picture);

}  // namespace qk
