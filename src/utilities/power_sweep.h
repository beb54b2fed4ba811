// SPDX-License-Identifier: MIT
// Reads one point of the plan at each level of port 1, 0 to -20 dBm: the common loop of the gain
// compression and AM to PM tests, for calibration and measurement.
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
  Complex Corrected;      // S21 corrected by the active isolation and transmission tracking
  double TestVolts = 0;   // magnitude at port 2's receiver
  bool Overload = false;  // that receiver is overloaded
};

struct PowerSweep {
  float Temperature = 0;  // degrees Celsius, read before the first level
  std::array<PowerReading, kPowerLevels> Levels;

  bool Overloaded() const;  // at any level
};

// The point of the plan (from 0) nearest to a frequency; empty if that is outside the plan.
std::optional<int> NearestPoint(const SweepPlan& plan, double megahertz);
// A typed number, rounded to two decimals.
double TwoDecimals(std::string_view text);

// Checks the link, updates the instrument, and selects the point (from 0) for single readings
// ("YI"). False after a failure, which has been shown.
[[nodiscard]] bool SelectTestPoint(Rig& rig, const Complaint& complaint, int testPoint);

// Reads the temperature, then all levels; afterwards restores the plan's level and point selection.
// Empty after a failure, which has been shown. A reading with a reference near zero is a failure:
// the instrument has lost its state. An overload of port 2 is shown in panel 3 and does not stop
// the test. The caller pauses Timer1.
[[nodiscard]] std::optional<PowerSweep> MeasurePowerSweep(Rig& rig, const Complaint& complaint,
                                                          int testPoint);

}  // namespace qk
