// SPDX-License-Identifier: MIT
// The residual errors of a calibration, determined from corrected measurements of known devices.
//
// A corrected reflection m of a device with reflection g follows the same one-port model as a raw
// one:
//
//   m = D + (1 + T) g / (1 - M g)
//
// with the residual directivity D, source match M and reflection tracking T. All are complex
// numbers without a unit; for a perfect calibration they are 0.
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

// The value that the model predicts for a device with reflection g.
inline Cplx MeasuredWith(const Residual& r, Cplx g) {
  return r.Directivity + (1.0 + r.Tracking) * g / (1.0 - r.SourceMatch * g);
}

// Exact residuals from three standards of known reflections g, measured as m. The model is linear
// in e00 = D, e11 = M and d = D M - 1 - T: m = e00 + g m e11 - g d. Empty if two of the standards
// are equal.
std::optional<Residual> ResidualFromThree(const std::array<Cplx, 3>& g,
                                          const std::array<Cplx, 3>& m);

// An air line: the length of an ideal line, and its loss, which increases with the square root of
// the frequency.
struct AirLine {
  double Metres = 0;
  double LossDbAt1GHz = 0;  // one way

  // Reflection of a short at the end of the line at f hertz.
  Cplx ShortBehind(double f) const;
  // Width in hertz of one period of the ripple between its two ends: c / (2 l).
  double RipplePeriod() const;
};

// Residuals over the part of a sweep where they can be determined: points First to Last, both
// included.
struct ResidualSweep {
  int First = 0, Last = -1;
  std::vector<Residual> Points;  // one per point of the sweep; zero outside First..Last
  AirLine Line;                  // as fitted

  bool Empty() const { return Last < First; }
};

// Residuals from a short at the end of an air line, measured as m at frequencies f (hertz,
// ascending in equal steps). First fits length and loss, starting from the nominal length, each
// together with a constant that is part of the tracking; then again without the ripple. D, T and M,
// each linear over one period of the ripple, then follow by complex least squares of m - g on 1, g
// and g^2 in a window of that width, repeated without the higher-order terms that they cause.
// Nothing is known within half a period of either end of the sweep. Tracking that acts like a
// longer line (phase proportional to f) or a lossier one (loss proportional to the square root of
// f) is attributed to the line.
//
// If the result is empty, why (may be nullptr) gives the reason: a span shorter than one period, or
// fewer than 12 points in one; or what was measured is not a short behind a line of that length: it
// reflects less than half, its phase is that of another length, or the tracking is off by more than
// half.
ResidualSweep ResidualFromShortedLine(std::span<const double> f, std::span<const Cplx> m,
                                      double nominalMetres, std::string* why = nullptr);

// The one-way length in metres that the phase of m has, starting from the nominal length.
double LengthByPhase(std::span<const double> f, std::span<const Cplx> m, double nominalMetres);
// True if this is the length of the nominal line with the offset of a standard: within 5 % or 5 mm.
bool IsLength(double metres, double nominalMetres);
// The median of |m|; 0 without points.
double MedianSize(std::span<const Cplx> m);

// Half of the peak-to-peak ripple of |m| in a window of one ripple period around each point. With a
// small mismatch at the end of the line this is |D|; with a short it is between |M| - |D| and |M| +
// |D|. first and last are the range of points with a complete window (last < first: none).
std::vector<double> HalfRipple(std::span<const double> f, std::span<const Cplx> m,
                               const AirLine& line, int& first, int& last);

}  // namespace qk
