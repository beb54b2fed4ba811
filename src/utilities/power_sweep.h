// SPDX-License-Identifier: MIT
// One point of the plan read at each level of port 1, 0 to -20 dBm: the loop that the gain
// compression and the AM to PM test share, in calibration and measurement alike.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "link/exchange.h"

namespace qk {

// Index i of a series is the level -i dBm.
inline constexpr int kPowerLevels = PowerRun::kLevels;
inline constexpr int kLowestLevel = kPowerLevels - 1;
using PowerSeries = std::array<double, kPowerLevels>;
using PowerMarks = std::array<bool, kPowerLevels>;

struct PowerReading {
  Complex Corrected;      // S21 by isolation and transmission tracking of the calibration in force
  double TestVolts = 0;   // magnitude at port 2's receiver
  bool Overload = false;  // ... which clips
};

struct PowerSweep {
  float Temperature = 0;  // degrees Celsius, read before the first level
  std::array<PowerReading, kPowerLevels> Levels;

  bool Overloaded() const;  // at any level
};

// The point of the plan (from 0) nearest to a frequency; nothing when that is outside the plan.
std::optional<int> NearestPoint(const SweepPlan& plan, double megahertz);
// A typed number rounded to two decimals.
double TwoDecimals(std::string_view text);
// The frequency of a point as the windows show it, in MHz.
std::string MegahertzText(double hertz);

// The link checked, the instrument brought up to date, and the point (from 0) selected for single
// readings ("YI"). False after a failure that has been told.
[[nodiscard]] bool SelectTestPoint(Rig& rig, const Complaint& complaint, int testPoint);

// Temperature, then all levels; the plan's own level and the selection of the point are put back
// after the last. Nothing after a failure that has been told; a reading whose reference is next to
// nothing is one: the instrument has lost what it held. An overload of port 2 is told in
// panel 3 and stops nothing. Timer1 is the caller's.
[[nodiscard]] std::optional<PowerSweep> MeasurePowerSweep(Rig& rig, const Complaint& complaint,
                                                          int testPoint);

}  // namespace qk
