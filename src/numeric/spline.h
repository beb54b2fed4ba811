// SPDX-License-Identifier: MIT
// Natural cubic splines: second derivatives 0 at both ends. Core functions on plain arrays, and a
// table object that collects its pairs one by one. Nothing is allocated.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace qk {

// The largest table: the one of the time domain.
inline constexpr int kMaxKnots = 2047;

// Computes the second derivatives y2 of the natural spline through (x, y), x ascending. The spans
// have equal length, up to 2047. An interval of zero length is treated as flat, so that equal x
// values affect only their own interval.
void spline2(std::span<const double> x, std::span<const double> y, std::span<double> y2);

// The spline's value at a position; the end cubics are extrapolated outside the table. If the
// bracket has zero length (two equal x values, or only one knot), sets dataError and returns the
// bracket's upper y; the caller then shows "Cubic Spline Data Error". Otherwise dataError is
// unchanged.
double splint2(std::span<const double> x, std::span<const double> y, std::span<const double> y2,
               double at, bool& dataError);

// A table of up to 1024 pairs. Both values of a pair are rounded to 32 bits on entry, on purpose.
class CSplineObject {
 public:
  static constexpr int kCapacity = 1024;

  // Empties the table and sets it to 0.
  void init();
  // Adds the next pair, x ascending. Pairs beyond the capacity are ignored.
  void XYAdd(double x, double y);
  // Computes the spline; no effect with fewer than 2 pairs.
  void DoCoeffs();
  // The spline's value at x; 0 without a spline.
  double GetY(double x);

  // A GetY since init found a bracket of zero length. The caller then shows "Cubic Spline Data
  // Error", titled "CS Computation".
  bool DataError() const { return data_error_; }

 private:
  std::int16_t count_ = 0;
  bool ready_ = false;
  bool data_error_ = false;
  std::array<double, kCapacity> x_{}, y_{}, y2_{};
};

}  // namespace qk
