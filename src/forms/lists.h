// SPDX-License-Identifier: MIT
// Lists and file filters that more than one window uses.
#pragma once

#include <string>
#include <vector>

#include "core/instrument_limits.h"

namespace qk {

// Port 1 levels in dBm, in descending order: the level is kHighestLevelDbm minus the index.
inline std::vector<std::string> LevelEntries() {
  std::vector<std::string> entries;
  for (int level = kHighestLevelDbm; level >= kLowestLevelDbm; --level)
    entries.push_back(std::to_string(level));
  return entries;
}

// File dialog filters: plain columns, EEPROM back-ups.
inline constexpr const char* kDataFiles = "All Files (*.*)|*.*|data_files(*.dat)|*.dat|";
inline constexpr const char* kBackUpFiles = "All Files (*.*)|*.*|bak_files(*.bak)|*.bak|";

}  // namespace qk
