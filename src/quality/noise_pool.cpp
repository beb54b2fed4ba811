// SPDX-License-Identifier: MIT
#include "quality/noise_pool.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace qk {

namespace {
constexpr double kOneInThousand = 3.09;  // standard deviations, one side
constexpr double kUnlikeSides = 3;
constexpr int kLeastSide = 3;  // points

// The quotient of a chi-square variable and its degrees of freedom, z standard deviations from its
// mean (Wilson and Hilferty, PNAS 17, 1931).
double ChiSquareQuotient(double freedom, double z) {
  const double v = 2 / (9 * freedom);
  return std::pow(std::max(0.0, 1 - v + z * std::sqrt(v)), 3);
}

double Sum(std::span<const double> values) {
  double sum = 0;
  for (const double value : values) sum += value;
  return sum;
}

// Number of independent points among so many that all have this squared correlation.
double Independent(int points, double squared) {
  return points / (1 + (points - 1) * squared);
}
}  // namespace

NoiseEstimate PooledNoise(const NoiseWindow& window) {
  const std::span all(window.Variance.data(), static_cast<std::size_t>(window.Count));
  const double sum = Sum(all);
  if (!(sum > 0) || !(window.Freedom > 0)) return {};
  const auto at = static_cast<std::size_t>(window.At);
  const NoiseEstimate alone{std::sqrt(all[at]), window.Freedom};
  const int pairs = window.Count - 1;
  if (pairs < 1) return alone;

  const double mean = sum / window.Count;
  const double correlation =
      Sum(std::span(window.Common.data(), static_cast<std::size_t>(pairs))) / pairs / mean;
  const double byChance = 1 / (pairs * window.Freedom);
  const double squared = std::clamp(correlation * correlation - byChance, 0.0, 1.0);

  if (all[at] > mean * ChiSquareQuotient(window.Freedom, kOneInThousand)) return alone;
  const int left = window.At, right = window.Count - 1 - window.At;
  if (left >= kLeastSide && right >= kLeastSide) {
    const double below = Sum(all.first(at)) / left, above = Sum(all.subspan(at + 1)) / right;
    const double deviation = std::sqrt(2 / (window.Freedom * Independent(left, squared)) +
                                       2 / (window.Freedom * Independent(right, squared)));
    if (!(std::abs(std::log(below / above)) <= kUnlikeSides * deviation))
      return {std::sqrt(std::max(all[at], std::min(below, above))), window.Freedom};
  }
  return {std::sqrt(mean), window.Freedom * Independent(window.Count, squared)};
}

}  // namespace qk
