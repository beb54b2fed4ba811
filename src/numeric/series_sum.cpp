// SPDX-License-Identifier: MIT
#include "numeric/series_sum.h"

#include <numbers>

#include "numeric/fourier.h"

namespace qk {

namespace {

constexpr std::size_t kN = kSeriesSums;
constexpr double kTwoPi = 2 * std::numbers::pi;

// Adds the term a cos(k x) + b sin(k x) to the spectrum of the real part of the result, and a2
// cos(k x) + b2 sin(k x) to that of its imaginary part.
void AddTerm(Spectrum<kN>& s, std::size_t k, double a, double b, double a2, double b2) {
  if (k == 0 || k == kN / 2) {  // their sines vanish, and each is its own mirror term
    s.re[k] += a;
    s.im[k] += a2;
    return;
  }
  s.re[k] += (a + b2) / 2;
  s.im[k] += (a2 - b) / 2;
  s.re[kN - k] += (a - b2) / 2;
  s.im[kN - k] += (a2 + b) / 2;
}

}  // namespace

void SumSeries(std::span<const double, kSeriesTerms> a, std::span<const double, kSeriesTerms> b,
               double turn, std::span<double, kSeriesSums> sum) {
  // The sum and its two derivatives with respect to the angle. The derivatives are scaled by the
  // highest k, so that no part of a transform loses precision to the other.
  constexpr double kTop = kSeriesSums / 2.0;
  Spectrum<kN> first, second;
  for (std::size_t k = 0; k < kSeriesTerms; ++k) {
    const double scaled = static_cast<double>(k) / kTop;
    AddTerm(first, k, a[k], b[k], scaled * b[k], -scaled * a[k]);
    AddTerm(second, k, scaled * scaled * a[k], scaled * scaled * b[k], 0, 0);
  }
  Transform(first);
  Transform(second);
  const double excess = (turn - kTwoPi) * kTop / kSeriesSums;
  for (std::size_t n = 0; n < kN; ++n) {
    const double angle = excess * static_cast<double>(n);
    sum[n] = first.re[n] + angle * first.im[n] - angle * angle / 2 * second.re[n];
  }
}

}  // namespace qk
