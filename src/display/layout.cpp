// SPDX-License-Identifier: MIT
#include "display/layout.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>

#include "core/instrument_limits.h"

namespace qk {

namespace {
// Margins, gap and size as fractions of the area's width (mx, gw) and height (my, gap, gh).
struct Proportions {
  double mx, my, gap, gw, gh;
};

constexpr double kTopRow = 0.08276;

Proportions ProportionsOf(int slot, bool markerTable) {
  constexpr double kGap = 0.04483, kHalf = 0.3724;
  switch (slot) {
    case 0:
      return {0.037, kTopRow, 0, markerTable ? 0.7556 : 0.9259, 0.8724};
    case 2:
    case 5:
      return {0.037, kTopRow, kGap, markerTable ? 0.7556 : 0.9259, kHalf};
    default:
      if (markerTable) return {0.0241, kTopRow, 0.0241, 0.3667, kHalf};
      return {0.0278, kTopRow, kGap, 0.4444, kHalf};
  }
}

int Points(float size, int most) {
  return std::clamp(static_cast<int>(size), 1, most);
}
}  // namespace

bool Overlap(const Rect& a, const Rect& b) {
  return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

CanvasPoint ClearOf(std::span<const Rect> obstacles, CanvasPoint at, Extent size, int gap, int left,
                    int right) {
  const auto isClear = [&](int x) {
    const Rect place{x - gap, at.y, x + size.width + gap, at.y + size.height};
    return x >= left && x + size.width <= right &&
           std::ranges::none_of(obstacles, [&](const Rect& o) { return Overlap(place, o); });
  };
  const auto nearer = [&at](int a, int b) { return std::abs(a - at.x) < std::abs(b - at.x); };
  if (isClear(at.x)) return at;
  std::optional<int> best;
  for (const Rect& obstacle : obstacles)
    for (const int x : {obstacle.right + gap, obstacle.left - gap - size.width})
      if ((!best || nearer(x, *best)) && isClear(x)) best = x;
  return {best.value_or(at.x), at.y};
}

int LeastHeight(int lineHeight) {
  return static_cast<int>(std::ceil((kTitleRise * lineHeight + 1) / kTopRow));
}

Rect GraphRect(int slot, bool markerTable, Extent area) {
  const Proportions p = ProportionsOf(slot, markerTable);
  const double width = area.width, height = area.height;
  const bool rightHand = slot == 3 || slot == 6;
  const bool lower = slot >= 4;
  Rect rect;
  rect.left = WholePixel((rightHand ? 2 * p.mx + p.gw : p.mx) * width);
  rect.top = WholePixel((lower ? 2 * p.my + p.gap + p.gh : p.my) * height);
  rect.right = WholePixel(rect.left + p.gw * width);
  rect.bottom = WholePixel(rect.top + p.gh * height);
  return rect;
}

std::int16_t SlotOf(DisplaySet displaySet, int graph) {
  constexpr std::int16_t kQuarters[] = {1, 3, 4, 6};
  static_assert(std::size(kQuarters) == kChannels, "a slot for each graph");
  const DisplaySetRow& shown = RowOf(displaySet);
  switch (shown.Last - shown.First) {
    case kChannels - 1:
      return kQuarters[graph];
    case 1:
      return graph % 2 == 0 ? 2 : 5;
    default:
      return 0;
  }
}

int GraphFontPoints(int slot, float screenScale) {
  if (slot == 0 || slot == 2 || slot == 5) return Points(screenScale * 10, 14);
  return Points(screenScale * 6, 12);
}

int AreaFontPoints(float screenScale) {
  return Points(screenScale * 10 * screenScale, 12);
}

}  // namespace qk
