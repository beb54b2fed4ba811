// SPDX-License-Identifier: MIT
#include "display/fail_mark.h"

#include <algorithm>
#include <array>

namespace qk {

namespace {
constexpr std::uint32_t kRed = 0xFF0000;

// In quarters of the mark's width and height, y upward.
struct Vertex {
  double X, Y;
};
constexpr Vertex kShape[] = {{-3.5, 7.5}, {-2, 6.7},    {-0.8, 5.6}, {0, 4.3},     {0.7, 3.3},
                             {1, 2.3},    {1.3, 1},     {1.5, 0},    {1.4, -1},    {1.3, -2},
                             {1, -2.9},   {0.5, -3.7},  {0, -4},     {-1, -4.5},   {-1.5, -4.6},
                             {-2, -4.5},  {-2.5, -4.2}, {-3, -3.3},  {-3.1, -2.8}, {-3.05, -1.8},
                             {-3, -1},    {-2.6, 0},    {-2.3, 1},   {-1.9, 2},    {-1.4, 3},
                             {-0.9, 4},   {0, 5.3},     {1, 6.9},    {1.9, 8}};
using MarkPoints = std::array<CanvasPoint, std::size(kShape)>;

MarkPoints PointsAt(const Canvas& canvas, CanvasPoint at) {
  const Extent f = canvas.TextExtent("F");
  const int width = 3 * f.width;
  MarkPoints points;
  std::transform(std::begin(kShape), std::end(kShape), points.begin(), [&](const Vertex& v) {
    return CanvasPoint{at.x + static_cast<int>(v.X * 0.25 * width),
                       at.y + static_cast<int>(v.Y * -0.25 * f.height)};
  });
  return points;
}
}  // namespace

void DrawFailMark(Canvas& canvas, CanvasPoint at) {
  const MarkPoints points = PointsAt(canvas, at);
  canvas.SetPen(kRed, PenStyle::Solid, 1);
  canvas.DrawPolyline(points);
}

Rect FailMarkBounds(const Canvas& canvas, CanvasPoint at) {
  const MarkPoints points = PointsAt(canvas, at);
  const auto [left, right] = std::ranges::minmax(points, {}, &CanvasPoint::x);
  const auto [top, bottom] = std::ranges::minmax(points, {}, &CanvasPoint::y);
  return {left.x, top.y, right.x, bottom.y};
}

}  // namespace qk
