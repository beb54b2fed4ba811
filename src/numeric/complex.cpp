// SPDX-License-Identifier: MIT
#include "numeric/complex.h"

#include <algorithm>

namespace qk {

double Log10Floored(double x) {
  return std::log(std::max(x, 1e-11)) / std::log(10.0);
}

double MagnitudeDb(double re, double im) {
  return 20 * Log10Floored(Magnitude(re, im));
}

float PhaseDeg(double re, double im) {
  constexpr double kPi = 3.14159265;  // to the precision used in the whole program
  double radians;
  if (std::fabs(re) < 1e-9) {
    radians = std::atan(im / 1e-9);
  } else if (re < 0) {
    radians = im >= 0 ? std::atan(im / re) + kPi : std::atan(im / re) - kPi;
  } else {
    radians = std::atan(im / re);
  }
  const float single = static_cast<float>(radians);
  return static_cast<float>(static_cast<double>(single) * 180 / kPi);
}

double SwrOf(double re, double im) {
  float m = static_cast<float>(Magnitude(re, im));
  if (m > 0.99f) m = 0.99f;
  const double wide = static_cast<double>(m);
  return (1 + wide) / (1 - wide);
}

}  // namespace qk
