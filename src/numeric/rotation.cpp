// SPDX-License-Identifier: MIT
#include "numeric/rotation.h"

namespace qk {

Complex Rotate(Complex z, double delaySeconds, double frequencyHz) {
  constexpr double kRadians = 0.01745329;  // per degree, to the precision used in the whole program
  const double magnitude = Magnitude(z.re, z.im);
  double p = static_cast<double>(PhaseDeg(z.re, z.im));
  p = p - 360 * (frequencyHz * delaySeconds);
  if (p >= 360 || p <= -360) p = p - 360 * std::trunc(p / 360);
  if (p < -180) p = p + 360;
  if (p > 180) p = p - 360;

  double im = 0;
  bool left = false;  // the half plane of negative real parts
  if (p < -90) {
    im = -magnitude * std::sin((p + 180) * kRadians);
    left = true;
  } else if (p <= 0) {
    im = -magnitude * std::sin(-p * kRadians);
  } else if (p < 90) {
    im = magnitude * std::sin(p * kRadians);
  } else {
    im = magnitude * std::sin((180 - p) * kRadians);
    left = true;
  }
  const double re = std::sqrt(magnitude * magnitude - im * im);
  return {left ? -re : re, im};
}

}  // namespace qk
