// SPDX-License-Identifier: MIT
// What a calibration left uncorrected, found from corrected measurements of known devices.
//
// A corrected reflection m of a device of reflection g obeys the same one-port model as a raw one:
//
//   m = D + (1 + T) g / (1 - M g)
//
// with the residual directivity D, source match M and reflection tracking T. All are complex
// numbers without a unit; a perfect calibration leaves 0.
#pragma once

#include <array>
#include <complex>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace qk {

using Cplx = std::complex<double>;

struct Residual {
  Cplx Directivity, SourceMatch, Tracking;
};

// What the model makes of a device.
inline Cplx MeasuredWith(const Residual& r, Cplx g) {
  return r.Directivity + (1.0 + r.Tracking) * g / (1.0 - r.SourceMatch * g);
}

// Exact residuals from three standards of known reflections g, measured as m. The model is linear
// in e00 = D, e11 = M and d = D M - 1 - T: m = e00 + g m e11 - g d. Nothing when two of the
// standards are the same.
std::optional<Residual> ResidualFromThree(const std::array<Cplx, 3>& g,
                                          const std::array<Cplx, 3>& m);

// A line of air: the length of an ideal line and its loss, which grows with the root of the
// frequency.
struct AirLine {
  double Metres = 0;
  double LossDbAt1GHz = 0;  // one way

  // Reflection of a short behind it at f hertz.
  Cplx ShortBehind(double f) const;
  // Width in hertz of one period of the ripple that its two ends make: c / (2 l).
  double RipplePeriod() const;
};

// Residuals over the part of a sweep where they can be known: points First to Last, both included.
struct ResidualSweep {
  int First = 0, Last = -1;
  std::vector<Residual> Points;  // one for each point of the sweep; outside First..Last zero
  AirLine Line;                  // as fitted

  bool Empty() const { return Last < First; }
};

// Residuals from a short behind an air line, measured as m at frequencies f (hertz, rising in equal
// steps). Length and loss are fitted first, the length from its nominal value, each with a constant
// beside it, which is the tracking's; then again without the ripple. D, T and M, each linear over
// one period of the ripple, then follow by complex least squares of m - g on 1, g and g^2 in a
// window of that width, repeated without the higher orders that these make. Within half a period of
// either end of the sweep nothing is known. Tracking that acts as a longer line (a phase that grows
// with f) or a lossier one (a loss that grows with the root of f) is taken for the line.
//
// why (may be nullptr) says what is missing when the result is empty: a span shorter than one
// period, or fewer than 12 points in one.
ResidualSweep ResidualFromShortedLine(std::span<const double> f, std::span<const Cplx> m,
                                      double nominalMetres, std::string* why = nullptr);

// Half of the peak-to-peak ripple of |m| in a window of one ripple period around each point: with a
// small mismatch behind the line this is |D|; with a short it lies between |M| - |D| and |M| + |D|.
// first and last are the points that have a whole window around them (last < first: none).
std::vector<double> HalfRipple(std::span<const double> f, std::span<const Cplx> m,
                               const AirLine& line, int& first, int& last);

}  // namespace qk
