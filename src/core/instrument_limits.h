// SPDX-License-Identifier: MIT
// The limits of the instrument and the sizes of its tables. Array sizes, lists, and the checks of
// entries and files all use these values. To support a different instrument, change this file;
// where a size, a message or a file format must change too, a static_assert stops the build.
#pragma once

#include <array>
#include <cstdint>

namespace qk {

// ---- Sweep points -----------------------------------------------------------------------------

// The selectable numbers of points, ascending, in list order.
inline constexpr std::array<std::int16_t, 6> kPointCounts{51, 101, 201, 401, 801, 1024};
// The length of every per-point array.
inline constexpr int kMaxPoints = kPointCounts.back();

// The sweep that the time domain requires: number of points, step and start frequency.
inline constexpr int kTimeDomainPoints = 1024;
inline constexpr double kTimeDomainStep = 3e6;   // Hz
inline constexpr double kTimeDomainStart = 3e6;  // Hz

// ---- Frequencies in hertz ---------------------------------------------------------------------

inline constexpr double kLowestFreq = 3e6;
inline constexpr double kHighestFreq = 3.08e9;
// The synthesiser's frequency grid: start and step are multiples of it, and it is the smallest
// step.
inline constexpr double kSmallestStep = 100;
// The limit for the last point of a grid whose step was rounded up (801 points from 3 to 3080 MHz
// end at 3080.04 MHz).
inline constexpr double kHighestGridFreq = 3.0801e9;

// ---- Levels at port 1 in dBm ------------------------------------------------------------------

inline constexpr int kHighestLevelDbm = 0;
inline constexpr int kLowestLevelDbm = -20;
inline constexpr int kLevelCount = kHighestLevelDbm - kLowestLevelDbm + 1;  // in steps of 1 dB

// ---- Impedances in ohms -----------------------------------------------------------------------

inline constexpr double kInstrumentOhms = 50;
// The range of system impedances that can be entered.
inline constexpr double kLeastOhms = 10, kMostOhms = 200;

// ---- Settings ---------------------------------------------------------------------------------

inline constexpr std::int16_t kMostAverages = 255;  // one byte on the wire
inline constexpr std::int16_t kMostSmoothing = 10;  // percent of the points

// ---- Display ----------------------------------------------------------------------------------

// Display channels, with one graph each.
inline constexpr int kChannels = 4;

// ---- Tables -----------------------------------------------------------------------------------

// The level tables of the EEPROM: one row per level code, one column per frequency.
inline constexpr int kLevelCodes = 32;
inline constexpr int kLevelColumns = 149;
inline constexpr double kLevelTableStart = 3e6;  // Hz
inline constexpr double kLevelTableStep = 2e7;   // Hz

// The receiver table of the EEPROM: one entry per frequency.
inline constexpr int kReceiverEntries = 3070;
inline constexpr double kReceiverTableStart = 3e6;  // Hz
inline constexpr double kReceiverTableStep = 1e6;   // Hz
// The highest frequency of a power test: the frequency of the last receiver table entry.
inline constexpr double kHighestPowerFreq =
    kReceiverTableStart + (kReceiverEntries - 1) * kReceiverTableStep;

// The tables of a calibration kit: rows per load or through standard.
inline constexpr int kKitRows = 101;

}  // namespace qk
