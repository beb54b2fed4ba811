// The command set of the instrument's controller: the only place that states a command's bytes.
// (The file's author tells the whole protocol here, with example exchanges and the reason of each
// time-out.)
#pragma once

#include <cstdint>
#include <string_view>

#include "link/instrument_link.h"

namespace qk::command {

inline constexpr std::string_view kStatus = "Q";
inline constexpr std::string_view kIdentify = "*IDN?";
inline constexpr std::string_view kVersion = "V";
inline constexpr std::string_view kPathS11 = "YF";
inline constexpr std::string_view kPathS21 = "YE";
inline constexpr std::string_view kPathAll = "YG";
inline constexpr std::string_view kPathS11S21 = "YP";
inline constexpr std::string_view kSweepS11 = "M";
inline constexpr std::string_view kSweepS21 = "S";
inline constexpr std::string_view kSweepS11S21 = "YO";
inline constexpr std::string_view kSweepAll = "A";
inline constexpr std::string_view kAbort = "O";
inline constexpr std::string_view kOffsets = "C";
inline constexpr std::string_view kTemperature = "T";
inline constexpr std::string_view kLevelCodes = "N";  // then one code a point

Bytes ReadEeprom(int count, int address);     // "P" n hi lo
Bytes WriteEeprom(int count, int address);    // "EE" n hi lo, then count data bytes
Bytes WriteSweepRam(int count, int address);  // "W" n hi lo, then count data bytes
Bytes Dwell(bool on);                         // "D" n
Bytes SetAverages(int count);                 // "Y8" n
Bytes ContinuousWave();                       // "Z" 0

// Sweep RAM address of the record that the receiver's offsets are measured with.
inline constexpr int kOffsetRecordAddress = 32738;

inline int HighByte(int x) {
  return x / 256;
}
inline int LowByte(int x) {
  return x % 256;
}

}  // namespace qk::command
