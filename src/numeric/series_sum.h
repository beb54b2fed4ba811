// SPDX-License-Identifier: MIT
// The sum of a cosine and sine series at equal angle steps, by a fast transform.
#pragma once

#include <span>

namespace qk {

inline constexpr int kSeriesTerms = 1025;
inline constexpr int kSeriesSums = 2048;

// sum[n] = over k = 0 to 1024 of a[k] cos(k n step) + b[k] sin(k n step), n = 0 to 2047, with step
// = turn / 2048. The transform is computed for two pi and corrected to turn with the first two
// derivatives, so turn may differ from two pi by a few parts in 1e9 (6.2831853 does by 1.1e-9).
// Agrees with the direct sum to about 1e-13 of its largest value.
void SumSeries(std::span<const double, kSeriesTerms> a, std::span<const double, kSeriesTerms> b,
               double turn, std::span<double, kSeriesSums> sum);

}  // namespace qk
