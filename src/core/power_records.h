// SPDX-License-Identifier: MIT
// The result of the last power test, for other parts of the program.
#pragma once

#include <array>
#include <cstddef>

#include "core/instrument_limits.h"

namespace qk {

// Index i is the level kHighestLevelDbm - i, that is -i dBm, at port 1. Gain compression: gain in
// dB and output power in dBm. AM to PM: degrees per dB, and no second value.
struct PowerRun {
  static constexpr std::size_t kLevels = kLevelCount;
  bool Measured = false;
  std::array<double, kLevels> Pin{};  // dBm at the device's input
  std::array<double, kLevels> Value{}, Value2{};
  std::array<bool, kLevels> Doubtful{};  // shown with " ?"
};

}  // namespace qk
