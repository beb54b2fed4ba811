#include "numeric/series_sum.h"

#include <array>
#include <cmath>
#include <numbers>
#include <utility>

namespace qk {

namespace {

constexpr int kN = kSeriesSums;
constexpr double kTwoPi = 2 * std::numbers::pi;

// Complex numbers by their parts, and the half turn of unit vectors that the transform needs.
struct Spectrum {
  std::array<double, kN> re{}, im{};
};
struct Vectors {
  std::array<double, kN / 2> re, im;

  Vectors() {
    for (std::size_t i = 0; i < re.size(); ++i) {
      const double angle = kTwoPi * static_cast<double>(i) / kN;
      re[i] = std::cos(angle);
      im[i] = std::sin(angle);
    }
  }
};

// Puts the term a cos(k x) + b sin(k x) into the spectrum of the real part of the result, and
// a2 cos(k x) + b2 sin(k x) into that of its imaginary part.
void AddTerm(Spectrum& s, std::size_t k, double a, double b, double a2, double b2) {
  if (k == 0 || k == kN / 2) {  // their sines vanish, and they are their own mirror
    s.re[k] += a;
    s.im[k] += a2;
    return;
  }
  s.re[k] += (a + b2) / 2;
  s.im[k] += (a2 - b) / 2;
  s.re[kN - k] += (a - b2) / 2;
  s.im[kN - k] += (a2 + b) / 2;
}

void ReverseBits(Spectrum& s) {
  for (std::size_t i = 0, j = 0; i < kN; ++i) {
    if (i < j) {
      std::swap(s.re[i], s.re[j]);
      std::swap(s.im[i], s.im[j]);
    }
    std::size_t bit = kN / 2;
    for (; bit > 0 && (j & bit) != 0; bit /= 2) j ^= bit;
    j |= bit;
  }
}

// s[n] becomes the sum over k of s[k] exp(2 pi i k n / 2048): the radix-2 transform of Cooley and
// Tukey, in place.
void Transform(Spectrum& s, const Vectors& unit) {
  ReverseBits(s);
  for (std::size_t half = 1; half < kN; half *= 2) {
    const std::size_t stride = kN / 2 / half;
    for (std::size_t block = 0; block < kN; block += 2 * half) {
      for (std::size_t i = 0; i < half; ++i) {
        const std::size_t p = block + i, q = p + half;
        const double wRe = unit.re[i * stride], wIm = unit.im[i * stride];
        const double re = s.re[q] * wRe - s.im[q] * wIm;
        const double im = s.re[q] * wIm + s.im[q] * wRe;
        s.re[q] = s.re[p] - re;
        s.im[q] = s.im[p] - im;
        s.re[p] += re;
        s.im[p] += im;
      }
    }
  }
}

}  // namespace

void SumSeries(std::span<const double, kSeriesTerms> a, std::span<const double, kSeriesTerms> b,
               double turn, std::span<double, kSeriesSums> sum) {
  const Vectors unit;
  // The sum and its two derivatives in the angle; the derivatives are scaled by the highest k, so
  // that no part of a transform drowns the other.
  constexpr auto kHighest = kN / 2;
  constexpr double kTop = kHighest;
  Spectrum first, second;
  for (std::size_t k = 0; k < kSeriesTerms; ++k) {
    const double scaled = static_cast<double>(k) / kTop;
    AddTerm(first, k, a[k], b[k], scaled * b[k], -scaled * a[k]);
    AddTerm(second, k, scaled * scaled * a[k], scaled * scaled * b[k], 0, 0);
  }
  Transform(first, unit);
  Transform(second, unit);
  const double excess = (turn - kTwoPi) * kTop / kN;
  for (std::size_t n = 0; n < kN; ++n) {
    const double angle = excess * static_cast<double>(n);
    sum[n] = first.re[n] + angle * first.im[n] - angle * angle / 2 * second.re[n];
  }
}

}  // namespace qk
