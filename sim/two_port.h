// SPDX-License-Identifier: MIT
// S-parameters of a two-port at one frequency, 50 ohms on both sides.
#pragma once

#include <cmath>
#include <complex>

namespace qk::sim {

using Complex = std::complex<double>;

struct TwoPort {
  Complex S11, S21, S12, S22;
};

inline constexpr double kPi = 3.14159265358979323846;
inline constexpr double kSpeedOfLight = 299792458.0;  // metres per second
inline constexpr double kZ0 = 50;                     // ohms

// The factor of a voltage for a level in decibels.
inline double FromDb(double db) {
  return std::pow(10.0, db / 20);
}

// Phase rotation of a wave of f hertz after a delay in seconds, with a loss in decibels.
inline Complex Travelled(double f, double seconds, double lossDb = 0) {
  return std::polar(FromDb(-lossDb), -2 * kPi * f * seconds);
}

inline Complex Determinant(const TwoPort& s) {
  return s.S11 * s.S22 - s.S12 * s.S21;
}

}  // namespace qk::sim
