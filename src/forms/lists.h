// SPDX-License-Identifier: MIT
// Lists and kinds of files that more than one window offers.
#pragma once

#include <string>
#include <vector>

#include "core/instrument_limits.h"

namespace qk {

// Port 1 levels in dBm, from the highest down: the level is kHighestLevelDbm less the index.
inline std::vector<std::string> LevelEntries() {
  std::vector<std::string> entries;
  for (int level = kHighestLevelDbm; level >= kLowestLevelDbm; --level)
    entries.push_back(std::to_string(level));
  return entries;
}

// Filters of file dialogs: plain columns, back-ups of the EEPROM.
inline constexpr const char* kDataFiles = "All Files (*.*)|*.*|data_files(*.dat)|*.dat|";
inline constexpr const char* kBackUpFiles = "All Files (*.*)|*.*|bak_files(*.bak)|*.bak|";

}  // namespace qk
