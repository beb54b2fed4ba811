// SPDX-License-Identifier: MIT
#include "display/label.h"

#include <algorithm>
#include <cstdlib>
#include <optional>

namespace qk {

std::string ComposeLabel(const Session& session, const std::string& text, const std::string& date) {
  const LabelState& label = session.Label;
  std::string composed = text;
  if (label.Status)
    composed += "  (" + session.TextOf(Panel::Calibration) + "  " + session.TextOf(Panel::Level) +
                "  " + session.TextOf(Panel::Temperature);
  if (label.Date) composed += (label.Status ? "  " : "  (") + date;
  if (label.Status || label.Date) composed += ")";
  return composed;
}

void RememberLabel(LabelState& label, const std::string& text) {
  auto& list = label.GraphicsLabels;
  auto from = std::find(list.begin(), list.end(), text);
  if (from == list.end()) from = list.end() - 1;
  std::move_backward(list.begin(), from, from + 1);
  list.front() = text;
}

CanvasPoint LabelAt(DisplaySet displaySet, bool markerTable, int width, Extent text) {
  const bool all = displaySet == DisplaySet::All;
  const double part = markerTable ? (all ? 0.204 : 0.415) : (all ? 0.55 : 0.44);
  return {std::max(0, static_cast<int>(part * width - 0.5 * text.width)),
          static_cast<int>(0.1 * text.height)};
}

namespace {
bool Overlap(const Rect& a, const Rect& b) {
  return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}
}  // namespace

CanvasPoint ClearOfTitles(CanvasPoint at, Extent text, int gap, std::span<const Rect> titles,
                          int areaWidth) {
  const auto isClear = [&](int x) {
    const Rect place{x - gap, at.y, x + text.width + gap, at.y + text.height};
    return x >= 0 && x + text.width <= areaWidth &&
           std::ranges::none_of(titles, [&](const Rect& title) { return Overlap(place, title); });
  };
  const auto nearer = [&at](int a, int b) { return std::abs(a - at.x) < std::abs(b - at.x); };
  if (isClear(at.x)) return at;
  std::optional<int> best;
  for (const Rect& title : titles)
    for (const int x : {title.right + gap, title.left - gap - text.width})
      if (isClear(x) && (!best || nearer(x, *best))) best = x;
  return {best.value_or(at.x), at.y};
}

}  // namespace qk
