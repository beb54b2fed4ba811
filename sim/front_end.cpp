// SPDX-License-Identifier: MIT
#include "sim/front_end.h"

#include "sim/source_levels.h"

namespace qk::sim {

namespace {

// A reflection of the test set: two discontinuities along the path that interfere over frequency,
// and a part that grows towards the top of the range.
Complex Bumps(double f, double near, double nearNs, double far, double farNs, double growth) {
  const double size = 1 + growth * f / 3e9;
  return size * (near * Travelled(f, nearNs * 1e-9) - far * Travelled(f, farNs * 1e-9));
}

// A leak of about db decibels at 3 GHz, weaker below.
Complex Leak(double f, double db, double ns) {
  return FromDb(db) * (0.25 + 0.75 * f / 3e9) * Travelled(f, ns * 1e-9);
}

}  // namespace

FrontEndTerms FrontEndAt(double f) {
  const double x = f / 1e9;
  FrontEndTerms t;
  t.Forward.Directivity = Bumps(f, 0.020, 0.21, 0.007, 0.63, 0.6);
  t.Forward.SourceMatch = Bumps(f, 0.055, 0.17, 0.022, 0.52, 0.8);
  t.Forward.ReflectionTracking = FromDb(2.1 - 0.31 * x) * Travelled(f, 0.46e-9);
  t.Forward.Isolation = Leak(f, -88, 0.9);
  t.Forward.LoadMatch = Bumps(f, 0.061, 0.23, 0.019, 0.57, 0.7);
  const double forwardTracking = 2.6 + 0.24 * x;
  t.Forward.TransmissionTracking = FromDb(forwardTracking) * Travelled(f, 0.39e-9);

  t.Reverse.Directivity = Bumps(f, -0.017, 0.19, 0.009, 0.71, 0.7);
  t.Reverse.SourceMatch = Bumps(f, 0.048, 0.22, 0.027, 0.49, 0.9);
  t.Reverse.ReflectionTracking = FromDb(1.7 - 0.27 * x) * Travelled(f, 0.51e-9);
  t.Reverse.Isolation = Leak(f, -90, 1.1);
  t.Reverse.LoadMatch = Bumps(f, 0.053, 0.16, 0.024, 0.61, 0.8);
  const double reverseTracking = 2.2 + 0.29 * x;
  t.Reverse.TransmissionTracking = FromDb(reverseTracking) * Travelled(f, 0.42e-9);

  // A through at 0 dBm gives the receiver's gain, so the reference is lower by the tracking.
  const double gain = ReceiverGainDb(f);
  t.ForwardReference = FromDb(gain - forwardTracking) * Travelled(f, 0.33e-9);
  t.ReverseReference = FromDb(gain - reverseTracking) * Travelled(f, 0.37e-9);
  return t;
}

Ratios Measured(const SideTerms& terms, const TwoPort& device) {
  const Complex determinant = Determinant(device);
  const Complex loops = 1.0 - terms.SourceMatch * device.S11 - terms.LoadMatch * device.S22 +
                        terms.SourceMatch * terms.LoadMatch * determinant;
  return {terms.Directivity +
              terms.ReflectionTracking * (device.S11 - terms.LoadMatch * determinant) / loops,
          terms.Isolation + terms.TransmissionTracking * device.S21 / loops};
}

Complex IncidentWave(const SideTerms& terms, const TwoPort& device) {
  const Complex loops = 1.0 - terms.SourceMatch * device.S11 - terms.LoadMatch * device.S22 +
                        terms.SourceMatch * terms.LoadMatch * Determinant(device);
  return (1.0 - terms.LoadMatch * device.S22) / loops;
}

}  // namespace qk::sim
