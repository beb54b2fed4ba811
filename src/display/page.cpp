// SPDX-License-Identifier: MIT
#include "display/page.h"

#include <algorithm>

#include "display/layout.h"

namespace qk {

std::optional<Rect> PlaceOnPage(Extent page, Extent picture) {
  const auto times = [](int whole, int part) {
    return static_cast<double>(whole) / std::max(1, part);
  };
  int k = WholePixel(times(page.width, picture.width));
  if (times(page.height, picture.height) < k) k = WholePixel(times(page.height, picture.height));
  if (k <= 1) return std::nullopt;
  const double f = page.width >= page.height ? 0.92 : 0.95;
  // A rounded-up size may exceed the page.
  const double size =
      std::min({k * f, times(page.width, picture.width), times(page.height, picture.height)});
  const int width = WholePixel(picture.width * size), height = WholePixel(picture.height * size);
  const int top = std::clamp(page.height - height, 0, picture.height);
  return Rect{0, top, width, top + height};
}

std::optional<Rect> FitOnPage(Extent page, Extent picture) {
  constexpr double kPart = 0.8;
  const double scale = std::min(kPart * page.width / std::max(1, picture.width),
                                kPart * page.height / std::max(1, picture.height));
  const double width = picture.width * scale, height = picture.height * scale;
  const int left = WholePixel((page.width - width) / 2);
  const int top = WholePixel((page.height - height) / 2);
  return Rect{left, top, left + WholePixel(width), top + WholePixel(height)};
}

}  // namespace qk
