// SPDX-License-Identifier: MIT
// Which tiles of an image have been drawn on: so that a thin trace on a large picture costs what it
// covers, and not the picture.
#pragma once

#include <vector>

#include <QRect>
#include <QRectF>
#include <QSize>

namespace qk {

class TileRecord {
 public:
  static constexpr int kTile = 32;  // pixels of the image

  // None is marked afterwards.
  void Resize(QSize pixels);
  void Add(const QRectF& pixels);
  void AddAll() { tiles_.assign(tiles_.size(), true); }
  void Add(const TileRecord& other);
  void Clear() { tiles_.assign(tiles_.size(), false); }

  // The marked tiles as rectangles of pixels inside the image, neighbours of a row as one.
  std::vector<QRect> Runs() const;

 private:
  QSize pixels_;
  int columns_ = 0, rows_ = 0;
  std::vector<bool> tiles_;
};

}  // namespace qk
