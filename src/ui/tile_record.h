// SPDX-License-Identifier: MIT
// Records which tiles of an image have been drawn on, so that the cost of a thin trace on a large
// picture depends on the area that it covers, not on the size of the picture.
#pragma once

#include <vector>

#include <QRect>
#include <QRectF>
#include <QSize>

namespace qk {

class TileRecord {
 public:
  static constexpr int kTile = 32;  // image pixels

  // Clears all marks.
  void Resize(QSize pixels);
  void Add(const QRectF& pixels);
  void AddAll() { tiles_.assign(tiles_.size(), true); }
  void Add(const TileRecord& other);
  void Clear() { tiles_.assign(tiles_.size(), false); }

  // The marked tiles as rectangles of pixels inside the image; adjacent tiles of a row are joined.
  std::vector<QRect> Runs() const;

 private:
  QSize pixels_;
  int columns_ = 0, rows_ = 0;
  std::vector<bool> tiles_;
};

}  // namespace qk
