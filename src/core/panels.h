// SPDX-License-Identifier: MIT
// The status panels of the main window, named by content.
#pragma once

#include <cstddef>

namespace qk {

enum class Panel : std::size_t {
  SerialNumber = 1,
  Port,         // number and speed, or that there is no instrument
  Calibration,  // also shows alarms, and what was just loaded
  Level,        // of port 1
  Temperature,
  Sweep,
  Step,  // of the frequency grid
};
inline constexpr std::size_t kPanels = 7;

}  // namespace qk
