// SPDX-License-Identifier: MIT
#include "trace/autoscale.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "core/quantity_text.h"

namespace qk {

namespace {
// The unit a thousand times smaller (or larger) than this one, if its family has one.
std::optional<Unit> Neighbour(Unit unit, double ratio) {
  const UnitRow& row = RowOf(unit);
  for (std::size_t i = 0; i < kUnits.size(); ++i) {
    const double size = kUnits[i].Size / row.Size;
    if (kUnits[i].Family == row.Family && std::fabs(size - ratio) < 1e-9 * ratio)
      return static_cast<Unit>(i);
  }
  return std::nullopt;
}

double TwoDecimals(double value) {
  return std::round(value * 100) / 100;
}

// The unit in which the larger end of the trace is at least 1 and below 1000: ohms stay ohms for a
// trace that hardly changes. Rounding never cuts off the trace.
AutoscaleResult InBestUnit(AutoscaleResult result, double min, double max) {
  const double largest = std::fmax(std::fabs(min), std::fabs(max)) * RowOf(result.Units).Size;
  const double before = RowOf(result.Units).Size;
  result.Units = BestUnit(result.Units, largest);
  const double factor = before / RowOf(result.Units).Size;
  result.Reference = TwoDecimals((min + max) / 2 * factor);
  result.Scale = std::fmax(0.01, std::ceil((max - min) * factor * 1.05 / 8 * 100) / 100);
  return result;
}
}  // namespace

AutoscaleResult Autoscale(const ChannelSettings& channel, int numPoints) {
  AutoscaleResult result{false, channel.Units, channel.Scale, channel.Reference};
  const bool prefixed = HasPrefixes(RowOf(channel.Units).Family);
  const bool gaps = RowOf(channel.GraphType).HasGaps();
  constexpr double kEnd = std::numeric_limits<double>::max();
  double max = gaps ? -kEnd : -1e9, min = gaps ? kEnd : 1e12;
  for (int i = 1; i <= numPoints; ++i) {
    const double value = channel.Value[static_cast<std::size_t>(i)];
    if (value > max) max = value;
    if (value < min) min = value;
  }
  if (max == min || (gaps && max < min)) return result;

  result.Changed = true;
  if (prefixed) return InBestUnit(result, min, max);
  result.Reference = std::fabs(max - min) / 2 + min;
  result.Scale = (max - min) * 1.05 / 8;
  // One step, or two from one end of the time units to the other.
  for (auto finer = Neighbour(result.Units, 1e-3); finer && result.Scale < 0.1;
       finer = Neighbour(result.Units, 1e-3)) {
    result.Units = *finer;
    result.Scale *= 1000;
    result.Reference *= 1000;
  }
  for (auto coarser = Neighbour(result.Units, 1e3); coarser && result.Scale > 999;
       coarser = Neighbour(result.Units, 1e3)) {
    result.Units = *coarser;
    result.Scale /= 1000;
    result.Reference /= 1000;
  }
  if (result.Scale < 0.01) result.Scale = 0.01;
  result.Scale = TwoDecimals(result.Scale);
  result.Reference = TwoDecimals(result.Reference);
  return result;
}

double NextScale(double scale, int steps) {
  constexpr double kRow[] = {1, 2, 5, 10};
  constexpr double kLeast = 1e-9, kMost = 1e9, kSlack = 1e-6;
  for (; steps != 0; steps += steps > 0 ? -1 : 1) {
    const double decade = std::pow(10, std::floor(std::log10(scale) + kSlack));
    const double part = scale / decade;
    if (steps > 0) {
      for (const double step : kRow)
        if (step > part * (1 + kSlack)) {
          scale = step * decade;
          break;
        }
    } else if (part <= 1 + kSlack) {
      scale = decade / 2;
    } else {
      for (const double step : {5.0, 2.0, 1.0})
        if (step < part * (1 - kSlack)) {
          scale = step * decade;
          break;
        }
    }
    scale = std::clamp(scale, kLeast, kMost);
  }
  return scale;
}

AutoscaleResult RoundedAutoscale(const ChannelSettings& channel, int numPoints) {
  AutoscaleResult result{false, channel.Units, channel.Scale, channel.Reference};
  double max = 0, min = 0;
  for (int i = 1; i <= numPoints; ++i) {
    const double value = channel.Value[static_cast<std::size_t>(i)];
    if (!std::isfinite(value)) continue;
    max = result.Changed ? std::max(max, value) : value;
    min = result.Changed ? std::min(min, value) : value;
    result.Changed = true;
  }
  if (!result.Changed) return result;

  constexpr double kHalf = 4;  // divisions on either side of the reference
  double scale = channel.Scale;
  if (max > min) {
    // The units suit the span: neither less than 0.1 nor more than 999 per division.
    double size = 1;
    for (const auto& [ratio, wrong] : {std::pair{1e-3, -1}, std::pair{1e3, 1}})
      for (auto unit = Neighbour(result.Units, ratio); unit;
           unit = Neighbour(result.Units, ratio)) {
        const double division = (max - min) * size / 8;
        if (wrong < 0 ? division >= 0.1 : division <= 999) break;
        result.Units = *unit;
        size /= ratio;
      }
    max *= size;
    min *= size;
    scale = std::max(kLeastShownScale, NextScale((max - min) / 8 * (1 - 2e-6), 1));
  }
  const double middle = (max + min) / 2;
  result.Reference = std::round(middle / scale) * scale;
  while (max > min &&
         (max > result.Reference + kHalf * scale || min < result.Reference - kHalf * scale)) {
    const double wider = NextScale(scale, 1);
    if (!(wider > scale)) break;
    scale = wider;
    result.Reference = std::round(middle / scale) * scale;
  }
  result.Scale = scale;
  return result;
}

}  // namespace qk
