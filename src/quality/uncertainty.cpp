// SPDX-License-Identifier: MIT
#include "quality/uncertainty.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qk {

namespace {
double Squared(double x) {
  return x * x;
}

double SpreadSquared(Spread spread) {
  return Squared(spread.Deviation) / (2.0 * std::max(1, spread.Sweeps));
}

// P^2 / |L0 S21 S12|^2 and P21^2 / |L0|^2, see the header.
double Port2InReflection(const ResidualSizes& r, const DeviceSizes& d) {
  const double loop = Squared(r.RawLoadMatch2);
  return Squared(r.SourceMatch2) * (Squared(d.S22) + loop * (1 + Squared(d.S21 * d.S12))) +
         Squared(d.S11) * (Squared(r.Directivity2) + Squared(r.Tracking2) * loop);
}
double Port2InTransmission(const ResidualSizes& r, const DeviceSizes& d) {
  return Squared(r.Directivity2) * (1 + Squared(d.S21 * d.S12)) + Squared(r.Tracking2 * d.S22) +
         Squared(r.SourceMatch2 * d.S22 * d.S22);
}
}  // namespace

double UncertaintyOfReflection(const ResidualSizes& r, const DeviceSizes& d, Spread spread) {
  const double terms = Squared(r.Directivity) + Squared(r.Tracking * d.S11) +
                       Squared(r.SourceMatch * d.S11 * d.S11) +
                       Squared(r.LoadMatch * d.S21 * d.S12) +
                       Squared(r.RawLoadMatch * d.S21 * d.S12) * Port2InReflection(r, d);
  return std::sqrt(terms / 2 + SpreadSquared(spread));
}

// Multiplied by |S21|^2 throughout, so that there is no division by a transmission of 0.
double UncertaintyOfTransmission(const ResidualSizes& r, const DeviceSizes& d, Spread spread) {
  const double relative = Squared(r.TransmissionTracking) + Squared(r.SourceMatch * d.S11) +
                          Squared(r.LoadMatch * d.S22) +
                          Squared(r.SourceMatch * r.RawLoadMatch) * (1 + Squared(d.S21 * d.S12)) +
                          Squared(r.RawLoadMatch) * Port2InTransmission(r, d);
  return std::sqrt((relative * Squared(d.S21) + Squared(r.Isolation)) / 2 + SpreadSquared(spread));
}

double StudentFactor(double freedom) {
  constexpr double z = kCoverage, kLeast = 2;
  const double v = std::max(kLeast, freedom);
  if (!std::isfinite(v)) return z;
  const double z2 = z * z;
  const double first = z * (z2 + 1) / 4;
  const double second = z * ((5 * z2 + 16) * z2 + 3) / 96;
  const double third = z * (((3 * z2 + 19) * z2 + 17) * z2 - 15) / 384;
  const double fourth = z * ((((79 * z2 + 776) * z2 + 1482) * z2 - 1920) * z2 - 945) / 92160;
  return z + (first + (second + (third + fourth / v) / v) / v) / v;
}

double EffectiveFreedom(double u, Spread spread) {
  const double part = SpreadSquared(spread);
  if (!(part > 0)) return std::numeric_limits<double>::infinity();
  return spread.Freedom * Squared(u * u / part);
}

double CoveringUncertainty(double u, Spread spread) {
  return u * StudentFactor(EffectiveFreedom(u, spread)) / kCoverage;
}

}  // namespace qk
