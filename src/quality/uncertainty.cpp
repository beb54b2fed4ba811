// SPDX-License-Identifier: MIT
#include "quality/uncertainty.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "numeric/complex.h"

namespace qk {

namespace {
double Squared(double x) {
  return x * x;
}

double SpreadSquared(Spread spread) {
  return Squared(spread.Deviation) / (2.0 * std::max(1, spread.Sweeps));
}
}  // namespace

double UncertaintyOfReflection(const ResidualSizes& r, const DeviceSizes& d, Spread spread) {
  const double terms = Squared(r.Directivity) + Squared(r.Tracking * d.S11) +
                       Squared(r.SourceMatch * d.S11 * d.S11) +
                       Squared(r.LoadMatch * d.S21 * d.S12);
  return std::sqrt(terms / 2 + SpreadSquared(spread));
}

// Multiplied by |S21|^2 throughout, so that there is no division by a transmission of 0.
double UncertaintyOfTransmission(const ResidualSizes& r, const DeviceSizes& d, Spread spread) {
  const double relative = Squared(r.TransmissionTracking) + Squared(r.SourceMatch * d.S11) +
                          Squared(r.LoadMatch * d.S22) +
                          Squared(r.SourceMatch * r.LoadMatch * d.S21 * d.S12);
  return std::sqrt((relative * Squared(d.S21) + Squared(r.Isolation)) / 2 + SpreadSquared(spread));
}

DecibelBand BandInDb(double magnitude, double u) {
  const double expanded = kCoverage * u;
  return {20 * Log10Floored(magnitude - expanded), 20 * Log10Floored(magnitude + expanded)};
}

double PlusMinusDb(double magnitude, double u) {
  return 20 * Log10Floored(1 + kCoverage * u / std::max(magnitude, kDivisionFloor));
}

double PlusMinusDegrees(double magnitude, double u) {
  const double expanded = kCoverage * u;
  if (!(expanded < magnitude)) return 180;
  return std::asin(expanded / magnitude) * 180 / std::numbers::pi;
}

}  // namespace qk
