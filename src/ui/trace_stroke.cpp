// SPDX-License-Identifier: MIT
#include "ui/trace_stroke.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace qk {

namespace {

// Positions across a line are fixed-point fractions of a pixel.
constexpr int kShift = 16;
constexpr std::int64_t kOne = std::int64_t{1} << kShift;

std::int64_t Fixed(double position) {
  return std::llround(position * kOne);
}

struct Ink {
  QRgb Colour;
  bool Smooth;
};

// Blends a fraction of the colour over a pixel; part is 0 to 256.
inline void Blend(QRgb& pixel, QRgb colour, std::uint32_t part) {
  const std::uint32_t rest = 256 - part;
  const std::uint32_t redBlue = ((pixel & 0xFF00FF) * rest + (colour & 0xFF00FF) * part) >> 8;
  const std::uint32_t green = ((pixel & 0x00FF00) * rest + (colour & 0x00FF00) * part) >> 8;
  pixel = 0xFF000000 | (redBlue & 0xFF00FF) | (green & 0x00FF00);
}

// The pixels from..to of a line of length pixels, stride apart, in fixed-point positions.
inline void Span(QRgb* line, std::ptrdiff_t stride, std::int64_t length, std::int64_t from,
                 std::int64_t to, Ink ink) {
  from = std::clamp<std::int64_t>(from, 0, length << kShift);
  to = std::clamp<std::int64_t>(to, 0, length << kShift);
  if (!ink.Smooth) {
    from = (from + kOne / 2) >> kShift;
    to = (to + kOne / 2) >> kShift;
    for (std::int64_t i = from; i < to; ++i) line[i * stride] = ink.Colour;
    return;
  }
  if (from >= to) return;
  std::int64_t first = from >> kShift;
  const std::int64_t last = to >> kShift;
  const auto part = [](std::int64_t covered) {
    return static_cast<std::uint32_t>((covered + kOne / 512) >> (kShift - 8));
  };
  if (first == last) {
    Blend(line[first * stride], ink.Colour, part(to - from));
    return;
  }
  if (const std::int64_t into = from & (kOne - 1); into != 0) {
    Blend(line[first * stride], ink.Colour, part(kOne - into));
    ++first;
  }
  for (std::int64_t i = first; i < last; ++i) line[i * stride] = ink.Colour;
  if (const std::int64_t into = to & (kOne - 1); into != 0)
    Blend(line[last * stride], ink.Colour, part(into));
}

// A pixel grid with one axis along the longer side of a line and one across it.
struct PixelGrid {
  QRgb* Pixels;
  std::ptrdiff_t Along, Across;  // to the next pixel
  int AlongCount, AcrossCount;
};

// Draws from a to b, given as (along, across); |b - a| is larger along than across.
void Line(const PixelGrid& grid, QPointF a, QPointF b, int width, Ink ink) {
  if (a.x() > b.x()) std::swap(a, b);
  const double half = width / 2.0;
  const double length = b.x() - a.x();
  const double slope = length > 0 ? (b.y() - a.y()) / length : 0;
  const std::int64_t reach = Fixed(half * std::sqrt(1 + slope * slope));
  const int first = std::max(0, static_cast<int>(std::lround(a.x() - half)));
  const int end = std::min(grid.AlongCount, static_cast<int>(std::lround(b.x() + half)));
  const std::int64_t step = Fixed(slope);
  std::int64_t middle = Fixed(a.y() + (first + 0.5 - a.x()) * slope);
  const std::int64_t from = Fixed(a.y()), to = Fixed(b.y());
  const std::int64_t low = std::min(from, to), high = std::max(from, to);
  for (int i = first; i < end; ++i, middle += step) {
    const std::int64_t at = std::clamp(middle, low, high);  // the squares at the ends
    Span(grid.Pixels + i * grid.Along, grid.Across, grid.AcrossCount, at - reach, at + reach, ink);
  }
}

double LongerSide(QPointF a, QPointF b) {
  return std::max(std::fabs(b.x() - a.x()), std::fabs(b.y() - a.y()));
}

}  // namespace

void StrokeTrace(QImage& image, std::span<const QPointF> points, int width, QRgb colour) {
  if (points.empty()) return;
  auto* pixels = reinterpret_cast<QRgb*>(image.bits());
  const auto row =
      static_cast<std::ptrdiff_t>(image.bytesPerLine()) / static_cast<std::ptrdiff_t>(sizeof(QRgb));
  const PixelGrid level{pixels, 1, row, image.width(), image.height()};
  const PixelGrid upright{pixels, row, 1, image.height(), image.width()};
  double rows = 0;
  for (std::size_t i = 1; i < points.size(); ++i) rows += LongerSide(points[i - 1], points[i]);
  const Ink ink{colour | 0xFF000000, rows <= kSmoothedRows};
  if (points.size() == 1) Line(level, points[0], points[0], width, ink);
  for (std::size_t i = 1; i < points.size(); ++i) {
    const QPointF a = points[i - 1], b = points[i];
    if (std::fabs(b.x() - a.x()) >= std::fabs(b.y() - a.y()))
      Line(level, a, b, width, ink);
    else
      Line(upright, a.transposed(), b.transposed(), width, ink);
  }
}

namespace {

// Where an edge of an area crosses the middle of a column of pixels.
struct Crossing {
  int Column;
  double Y;
  int Turn;  // 1 for an edge to the right, -1 for one to the left
};

std::vector<Crossing> CrossingsOf(std::span<const QPointF> corners, int columns) {
  std::vector<Crossing> crossings;
  crossings.reserve(corners.size() + static_cast<std::size_t>(2 * columns));
  for (std::size_t i = 0; i < corners.size(); ++i) {
    QPointF a = corners[i], b = corners[(i + 1) % corners.size()];
    const int turn = a.x() < b.x() ? 1 : -1;
    if (turn < 0) std::swap(a, b);
    const int first = std::max(0, static_cast<int>(std::ceil(a.x() - 0.5)));
    const int end = std::min(columns, static_cast<int>(std::ceil(b.x() - 0.5)));
    for (int column = first; column < end; ++column)
      crossings.push_back(
          {column, a.y() + (column + 0.5 - a.x()) * (b.y() - a.y()) / (b.x() - a.x()), turn});
  }
  std::ranges::sort(crossings, {}, [](const Crossing& c) { return std::pair(c.Column, c.Y); });
  return crossings;
}

}  // namespace

void FillArea(QImage& image, std::span<const QPointF> corners, QRgb colour, double opacity) {
  auto* pixels = reinterpret_cast<QRgb*>(image.bits());
  const std::ptrdiff_t stride = image.bytesPerLine() / static_cast<std::ptrdiff_t>(sizeof(QRgb));
  const auto part = [opacity](double covered) {
    return static_cast<std::uint32_t>(std::lround(std::clamp(covered * opacity, 0.0, 1.0) * 256));
  };
  const std::uint32_t whole = part(1);
  const std::vector<Crossing> crossings = CrossingsOf(corners, image.width());
  int winding = 0;
  for (std::size_t i = 0; i + 1 < crossings.size(); ++i) {
    winding += crossings[i].Turn;
    if (crossings[i].Column != crossings[i + 1].Column) winding = 0;
    if (winding == 0) continue;
    const double from = std::clamp<double>(crossings[i].Y, 0, image.height());
    const double to = std::clamp<double>(crossings[i + 1].Y, 0, image.height());
    QRgb* column = pixels + crossings[i].Column;
    const int top = static_cast<int>(std::ceil(from)), bottom = static_cast<int>(to);
    if (top > bottom) {  // inside one pixel
      Blend(column[bottom * stride], colour, part(to - from));
      continue;
    }
    if (from < top) Blend(column[(top - 1) * stride], colour, part(top - from));
    for (int y = top; y < bottom; ++y) Blend(column[y * stride], colour, whole);
    if (bottom < to) Blend(column[bottom * stride], colour, part(to - bottom));
  }
}

}  // namespace qk
