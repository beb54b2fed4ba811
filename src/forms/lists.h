// Lists and kinds of files that more than one window offers.
#pragma once

#include <string>
#include <vector>

namespace qk {

// Port 1 levels in dBm, "0" to "-20": the level is minus the index.
inline std::vector<std::string> LevelEntries() {
  std::vector<std::string> entries;
  for (int level = 0; level >= -20; --level) entries.push_back(std::to_string(level));
  return entries;
}

// Filters of file dialogs: plain columns, back-ups of the EEPROM.
inline constexpr const char* kDataFiles = "All Files (*.*)|*.*|data_files(*.dat)|*.dat|";
inline constexpr const char* kBackUpFiles = "All Files (*.*)|*.*|bak_files(*.bak)|*.bak|";

}  // namespace qk
