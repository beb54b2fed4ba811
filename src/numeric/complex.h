// SPDX-License-Identifier: MIT
// Complex helpers for the whole program: division with a floor, phase in the instrument's 32-bit
// steps, magnitudes. All are pure functions on plain numbers.
#pragma once

#include <cmath>

namespace qk {

// One complex value. Plain components, so that the arithmetic is exactly the written steps
// (std::complex adds NaN handling to multiplication and division).
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

// The lower bound of a squared denominator, and of every other guarded division in the program.
inline constexpr double kDivisionFloor = 1e-11;

// a * b.
inline Complex ComplexMultiply(Complex a, Complex b) {
  return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

// a / b with |b|^2 replaced by 1e-11 if it is smaller: never fails, and a zero divisor gives a
// finite value. Every complex division in the program uses this function.
inline Complex ComplexDivide(Complex a, Complex b) {
  double d = b.re * b.re + b.im * b.im;
  if (d < kDivisionFloor) d = kDivisionFloor;
  return {(a.re * b.re + a.im * b.im) / d, (a.im * b.re - a.re * b.im) / d};
}

// sqrt(re^2 + im^2).
inline double Magnitude(double re, double im) {
  return std::sqrt(re * re + im * im);
}

// Common logarithm of max(x, 1e-11), so that a decibel value is never below -220.
double Log10Floored(double x);

// 20 * Log10Floored(magnitude), in dB.
double MagnitudeDb(double re, double im);

// Phase in degrees, -180 to 180, as a 32-bit float. The value is rounded to 32 bits in radians and
// again in degrees. A real part below 1e-9 in magnitude is replaced by +1e-9 (so j gives slightly
// less than 90, without a quadrant test). Intentional: traces and planes of earlier sessions then
// compare equal.
float PhaseDeg(double re, double im);

// Standing wave ratio of a reflection. Its magnitude, a 32-bit float, is limited to 0.99 (SWR 199).
double SwrOf(double re, double im);

}  // namespace qk
