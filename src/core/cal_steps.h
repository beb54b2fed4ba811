// SPDX-License-Identifier: MIT
// What the windows of the non-insertable calibration have measured, a step a port.
#pragma once

#include <array>

namespace qk {

struct CalStep {
  bool Done = false;    // asked for: the star
  bool Failed = false;  // its last sweep did not come in whole
};

struct CalSteps {
  std::array<CalStep, 2> Load, Short, Open;  // port 1, port 2
  std::array<CalStep, 1> Thru;
  bool Measuring = false;  // a standard is being measured, by whichever window: START is off
};

}  // namespace qk
