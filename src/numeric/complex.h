// SPDX-License-Identifier: MIT
// Complex helpers shared by the whole program: the floored division, phase in the instrument's
// own 32-bit steps, magnitudes. Everything here is a pure function on plain numbers.
#pragma once

#include <cmath>

namespace qk {

// One complex value. Plain components, so that arithmetic is exactly the steps written down
// (std::complex multiplies and divides with extra NaN handling).
struct Complex {
  double re = 0;
  double im = 0;
};

inline Complex operator+(Complex a, Complex b) {
  return {a.re + b.re, a.im + b.im};
}
inline Complex operator-(Complex a, Complex b) {
  return {a.re - b.re, a.im - b.im};
}
inline Complex operator-(Complex a) {
  return {-a.re, -a.im};
}
inline Complex operator*(double k, Complex a) {
  return {k * a.re, k * a.im};
}
// 1 + z.
inline Complex OnePlus(Complex z) {
  return {1 + z.re, z.im};
}
inline bool operator==(Complex a, Complex b) {
  return a.re == b.re && a.im == b.im;
}

// The floor of a squared denominator, and of every other division guard in the program.
inline constexpr double kDivisionFloor = 1e-11;

// a * b.
inline Complex ComplexMultiply(Complex a, Complex b) {
  return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

// a / b with |b|^2 raised to 1e-11 where it is smaller: never fails, a zero divisor gives a finite
// value. Every complex division of the program goes through here.
inline Complex ComplexDivide(Complex a, Complex b) {
  double d = b.re * b.re + b.im * b.im;
  if (d < kDivisionFloor) d = kDivisionFloor;
  return {(a.re * b.re + a.im * b.im) / d, (a.im * b.re - a.re * b.im) / d};
}

// sqrt(re^2 + im^2).
inline double Magnitude(double re, double im) {
  return std::sqrt(re * re + im * im);
}

// Common logarithm of max(x, 1e-11), so a decibel value never falls below -220.
double Log10Floored(double x);

// 20 * Log10Floored(magnitude), in dB.
double MagnitudeDb(double re, double im);

// Phase in degrees, -180 to 180, as a 32-bit float: the value is rounded to 32 bits in radians and
// again in degrees, and a real part below 1e-9 in magnitude is taken as +1e-9 (so j gives just
// under 90, without a quadrant test). Meant: traces and planes of earlier sessions compare equal.
float PhaseDeg(double re, double im);

// Standing wave ratio of a reflection; its magnitude, a 32-bit float, is limited to 0.99 (SWR 199).
double SwrOf(double re, double im);

}  // namespace qk
