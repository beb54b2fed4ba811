// SPDX-License-Identifier: MIT
// Fast Fourier transform of a fixed length.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <utility>

namespace qk {

// N complex numbers as separate real and imaginary parts; N is a power of two.
template <std::size_t N>
struct Spectrum {
  static_assert(N >= 2 && (N & (N - 1)) == 0);
  std::array<double, N> re{}, im{};
};

// Unit vectors at i / N of a turn, for the half turn that the transform uses.
template <std::size_t N>
struct UnitVectors {
  std::array<double, N / 2> re, im;

  UnitVectors() {
    for (std::size_t i = 0; i < re.size(); ++i) {
      const double angle = 2 * std::numbers::pi * static_cast<double>(i) / N;
      re[i] = std::cos(angle);
      im[i] = std::sin(angle);
    }
  }
};

template <std::size_t N>
void ReverseBits(Spectrum<N>& s) {
  for (std::size_t i = 0, j = 0; i < N; ++i) {
    if (i < j) {
      std::swap(s.re[i], s.re[j]);
      std::swap(s.im[i], s.im[j]);
    }
    std::size_t bit = N / 2;
    for (; bit > 0 && (j & bit) != 0; bit /= 2) j ^= bit;
    j |= bit;
  }
}

// Replaces s[n] by the sum over k of s[k] exp(2 pi i k n / N), without a scale factor: the in-place
// radix-2 transform of Cooley and Tukey.
template <std::size_t N>
void Transform(Spectrum<N>& s) {
  static const UnitVectors<N> unit;
  ReverseBits(s);
  for (std::size_t half = 1; half < N; half *= 2) {
    const std::size_t stride = N / 2 / half;
    for (std::size_t block = 0; block < N; block += 2 * half) {
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

}  // namespace qk
