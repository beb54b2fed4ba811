// SPDX-License-Identifier: MIT
// The uncertainty of a corrected measurement from the residual terms of its calibration and the
// spread of repeated sweeps, following the Guide to the Expression of Uncertainty in Measurement
// (JCGM 100:2008). The residual terms are limits with unknown phase, hence the factor 1/2. Not
// included: linearity of the receiver, cable movement, connectors.
#pragma once

#include <limits>

namespace qk {

// Magnitudes (linear, no unit) of the residual errors of a calibration at one point.
struct ResidualSizes {
  double Directivity = 0, SourceMatch = 0, Tracking = 0;  // reflection
  double LoadMatch = 0, TransmissionTracking = 0, Isolation = 0;
  double RawLoadMatch = 0;  // of the test set: the load match before correction
  double Directivity2 = 0, SourceMatch2 = 0, Tracking2 = 0;  // reflection at port 2
  double RawLoadMatch2 = 0;  // that of port 1, with port 2 as the source
};

// Magnitudes of the device's four parameters at one point; 0 if not measured.
struct DeviceSizes {
  double S11 = 0, S21 = 0, S12 = 0, S22 = 0;
};

// Standard deviation s of the complex value of one sweep, the number of averaged sweeps, and the
// degrees of freedom of the estimate of s.
struct Spread {
  double Deviation = 0;
  int Sweeps = 1;
  double Freedom = std::numeric_limits<double>::infinity();
};

inline constexpr double kCoverage = 2;  // k of the expanded uncertainty, about 95 %

// Standard uncertainty u of the reflection S11, linear:
//   u^2 = (D^2 + (T |S11|)^2 + (M |S11|^2)^2 + (L |S21 S12|)^2 + P^2) / 2 + s^2 / 2N
//
// P is the part of port 2 as a source, with its terms D2, M2, T2, after a correction of both
// directions. Let a = S11 + L0 b S12, b = S21 + L0 b S22, c = S12 + L1 c S11, d = S22 + L1 c S21 be
// the waves of the two directions, with the load matches L0 and L1 of the test set. a, b and L0 do
// not depend on the calibration of port 2. d comes out too large by D2 + T2 d + M2 d^2, L1 by the
// same of L1, and c, whose tracking was found with a through, by the factor
// (1 - M2 L1) / (1 - M2 d). The four equations then give, in the first order,
//
//   P = |L0 S21 S12| |M2 (S22 - L1 (1 - S12 S21)) - S11 (D2 + T2 L1)|
//
// and the relative error of S21
//
//   P21 = |L0| |D2 (1 - S12 S21) + T2 S22 + M2 S22^2|
//
// The sums are taken with unknown phases. With a through both are zero but for the loop of M2 and
// L1.
double UncertaintyOfReflection(const ResidualSizes& r, const DeviceSizes& device, Spread spread);

// Standard uncertainty u of the transmission S21, linear:
//   u^2 / |S21|^2 = (T21^2 + (M S11)^2 + (L S22)^2 + (M L0)^2 (1 + |S21 S12|^2) + (X / S21)^2
//                    + P21^2) / 2 + s^2 / (2 N |S21|^2)
// L0 is the load match of the test set (RawLoadMatch). With the source reflection G seen at port 1,
// the transmission comes out too large by 1 + M G: G = S11 + L0 S21 S12 with a device, and G = L0
// with the through of the calibration, whose factor the tracking therefore contains. A through
// measured again has the same factor and does not show it. The loop is that of M with L0, not with
// what is left of L0: the correction removes L0 only together with the source match that it
// assumes.
double UncertaintyOfTransmission(const ResidualSizes& r, const DeviceSizes& device, Spread spread);

// Student's factor for a coverage of 95.45 %: 2 for many degrees of freedom, 2.52 for 6, 4.5 for 2,
// which is the least (Abramowitz and Stegun 26.7.5; JCGM 100, table G.2).
double StudentFactor(double freedom);
// Effective degrees of freedom of a standard uncertainty u that contains this spread (Welch and
// Satterthwaite, JCGM 100, G.4). The residual terms are limits and have no degrees of freedom to
// lose.
double EffectiveFreedom(double u, Spread spread);
// u, widened so that kCoverage * u covers 95.45 % although the spread is known from few sweeps.
double CoveringUncertainty(double u, Spread spread);

// The magnitude of a value within this factor times kCoverage * u of zero says nothing about the
// lower end: the true value may be zero. For a true value of zero the magnitude has a Rayleigh
// distribution, and 95.45 % of it are below sqrt(-2 ln 0.0455) u = 2.486 u.
inline constexpr double kZeroReach = 1.243;

}  // namespace qk
