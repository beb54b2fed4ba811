// SPDX-License-Identifier: MIT
#include "ui/tile_record.h"

#include <algorithm>
#include <cmath>

namespace qk {

void TileRecord::Resize(QSize pixels) {
  pixels_ = pixels;
  columns_ = (pixels.width() + kTile - 1) / kTile;
  rows_ = (pixels.height() + kTile - 1) / kTile;
  tiles_.assign(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_), false);
}

void TileRecord::Add(const QRectF& pixels) {
  const auto tile = [](double pixel, int count) {
    return static_cast<int>(std::clamp(std::floor(pixel / kTile), 0.0, count - 1.0));
  };
  if (pixels.right() < 0 || pixels.bottom() < 0 || pixels.left() >= pixels_.width() ||
      pixels.top() >= pixels_.height())
    return;
  const int last = tile(pixels.right(), columns_), bottom = tile(pixels.bottom(), rows_);
  for (int row = tile(pixels.top(), rows_); row <= bottom; ++row)
    for (int column = tile(pixels.left(), columns_); column <= last; ++column)
      tiles_[static_cast<std::size_t>(row * columns_ + column)] = true;
}

void TileRecord::Add(const TileRecord& other) {
  for (std::size_t i = 0; i < tiles_.size(); ++i)
    if (other.tiles_[i]) tiles_[i] = true;
}

std::vector<QRect> TileRecord::Runs() const {
  std::vector<QRect> runs;
  for (int row = 0; row < rows_; ++row) {
    int first = -1;
    for (int column = 0; column <= columns_; ++column) {
      const bool marked =
          column < columns_ && tiles_[static_cast<std::size_t>(row * columns_ + column)];
      if (marked && first < 0) first = column;
      if (marked || first < 0) continue;
      runs.push_back(QRect(first * kTile, row * kTile, (column - first) * kTile, kTile) &
                     QRect(QPoint(), pixels_));
      first = -1;
    }
  }
  return runs;
}

}  // namespace qk
