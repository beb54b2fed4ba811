// SPDX-License-Identifier: MIT
// Progress of the non-insertable calibration: one step per standard and port.
#pragma once

#include <array>

namespace qk {

struct CalStep {
  bool Done = false;    // requested; the window shows a star
  bool Failed = false;  // the last sweep of this step was incomplete
};

struct CalSteps {
  std::array<CalStep, 2> Load, Short, Open;  // port 1, port 2
  std::array<CalStep, 1> Thru;
  bool Measuring = false;  // any window is measuring a standard: START is disabled
};

}  // namespace qk
