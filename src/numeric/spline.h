// SPDX-License-Identifier: MIT
// Natural cubic splines: second derivatives 0 at both ends. One core over plain arrays, and the
// table object that collects its pairs one by one. Nothing is allocated.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace qk {

// Largest table, that of the time domain.
inline constexpr int kMaxKnots = 2047;

// The second derivatives y2 of the natural spline through (x, y), x ascending; the spans have one
// length, up to 2047. An interval of no length is taken as flat, so that equal x values spoil
// nothing but their own place.
void spline2(std::span<const double> x, std::span<const double> y, std::span<double> y2);

// The spline's value at a position; outside the table the end cubics go on. Where the bracket has
// no length (two x values of it are equal, or there is one only) dataError is set, for the caller
// to tell ("Cubic Spline Data Error"), and the value is the bracket's upper y. Left alone
// otherwise.
double splint2(std::span<const double> x, std::span<const double> y, std::span<const double> y2,
               double at, bool& dataError);

// A table of up to 1024 pairs. Both values of a pair pass through 32 bits on entry, on purpose.
class CSplineObject {
 public:
  static constexpr int kCapacity = 1024;

  // Empty, and all of the table 0.
  void init();
  // The next pair, x ascending. A pair beyond the capacity is left out.
  void XYAdd(double x, double y);
  // Makes the spline; without effect on fewer than 2 pairs.
  void DoCoeffs();
  // The spline's value at x; 0 without a spline.
  double GetY(double x);

  // A GetY since init met a bracket of no length. The caller tells it: "Cubic Spline Data Error",
  // titled "CS Computation".
  bool DataError() const { return data_error_; }

 private:
  std::int16_t count_ = 0;
  bool ready_ = false;
  bool data_error_ = false;
  std::array<double, kCapacity> x_{}, y_{}, y2_{};
};

}  // namespace qk
