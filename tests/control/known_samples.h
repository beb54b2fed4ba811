// SPDX-License-Identifier: MIT
// A stream of distinct samples, and the ratios that they must give.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "numeric/complex.h"

namespace qk::test {

// Sample values that differ for every sample and every point, well inside the range.
inline std::vector<double> KnownVolts(int p, int samples) {
  std::vector<double> volts;
  for (int s = 0; s < samples; ++s) volts.push_back(0.3 + 0.11 * s - 0.004 * p);
  return volts;
}

// The ratio of two pairs of samples in counts.
inline Complex Ratio(int p, int testI, int testQ, int refI, int refQ) {
  const auto v = [p](int s) {
    const double volts = KnownVolts(p, 12)[static_cast<std::size_t>(s - 1)];
    return static_cast<double>(std::lround((volts + 2.5) / 4.999924 * 65535)) / 65535 * 4.999924 -
           2.5;
  };
  return ComplexDivide({v(testI), v(testQ)}, {v(refI), v(refQ)});
}

inline void ExpectNear(Complex a, Complex b, const char* what, int p) {
  EXPECT_NEAR(a.re, b.re, 1e-12) << what << " " << p;
  EXPECT_NEAR(a.im, b.im, 1e-12) << what << " " << p;
}

}  // namespace qk::test
