// SPDX-License-Identifier: MIT
// The pixels of a colour in an image.
#pragma once

#include <cstdint>

#include <QColor>
#include <QImage>

namespace qk::test {

inline constexpr std::uint32_t kRed = 0xFF0000;
inline const QColor kRedColour(255, 0, 0);

inline int Count(const QImage& image, const QColor& colour) {
  int count = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (image.pixelColor(x, y) == colour) ++count;
  return count;
}

}  // namespace qk::test
