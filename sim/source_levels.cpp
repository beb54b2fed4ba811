// SPDX-License-Identifier: MIT
#include "sim/source_levels.h"

#include <cmath>

namespace qk::sim {

double SourceLevelDbm(int code, double f) {
  const double x = f / 1e9;
  const double tilt = 1.6 - 0.75 * x + 0.2 * std::sin(3.1 * x);
  return code - 27 + tilt;
}

double ReceiverDriveDbm(int code, double f) {
  const double x = f / 1e9;
  return 13 + 0.5 * (code - 24) + 1.2 - 0.8 * x + 0.15 * std::sin(2.3 * x);
}

double ReceiverGainDb(double f) {
  const double x = f / 1e9;
  return -2.36667 * x + 0.066667 * x * x;
}

}  // namespace qk::sim
