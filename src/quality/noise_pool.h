// SPDX-License-Identifier: MIT
// Noise at a point of a sweep, estimated from few sweeps: the variances of the neighbouring points
// are pooled where they may be, so that the estimate has many degrees of freedom.
#pragma once

#include <array>
#include <limits>

namespace qk {

// Standard deviation of the complex value of one sweep, and the degrees of freedom of its estimate:
// 2 (N - 1) for a single point of N sweeps.
struct NoiseEstimate {
  double Deviation = 0;
  double Freedom = std::numeric_limits<double>::infinity();
};

inline constexpr int kPoolReach = 8;  // points to each side

// The points about the one in question.
struct NoiseWindow {
  std::array<double, 2 * kPoolReach + 1> Variance{};  // of the complex value of a sweep
  std::array<double, 2 * kPoolReach + 1> Common{};    // covariance with the next point: the real
                                                      // part of E[conj(a) b]
  int Count = 0, At = 0;  // points, and the index of the one in question
  double Freedom = 0;     // of each variance
};

// The mean variance of the window. Its degrees of freedom are those of the points together; fewer
// if neighbouring points change together, down to those of one point. The point alone is used where
// the noise is not the same over the window: if its own is larger than chance allows once in 1000,
// or if the two sides differ by more than three standard deviations (but then not less than that of
// the quieter side). A smaller variance of the point alone means nothing: the steps of the
// converter often hide small noise in a few sweeps.
NoiseEstimate PooledNoise(const NoiseWindow& window);

// The window about point k of a sweep. variance(i) and common(i) are the values at point i.
template <class Variance, class Common>
NoiseWindow WindowAbout(int k, int points, double freedom, Variance variance, Common common) {
  NoiseWindow window;
  window.Freedom = freedom;
  for (int i = k - kPoolReach; i <= k + kPoolReach; ++i) {
    if (i < 0 || i >= points) continue;
    if (i == k) window.At = window.Count;
    const auto at = static_cast<std::size_t>(window.Count++);
    window.Variance[at] = variance(i);
    window.Common[at] = common(i);
  }
  return window;
}

}  // namespace qk
