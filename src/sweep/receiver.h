// SPDX-License-Identifier: MIT
// The receiver: dc offsets, level codes sent to the instrument, temperature.
#pragma once

#include <optional>

#include "link/instrument_link.h"

namespace qk {

// Measures and filters the dc offsets at 20 MHz and restores the path of the calibration in force.
// False after "No Response" under "RX Offset"; the old offsets are then kept.
[[nodiscard]] bool MeasureOffsets(Rig& rig);

// One reading into the filter and the history: counts of I and Q. Pure bookkeeping.
void FilterOffsets(ReceiverState& receiver, double newI, double newQ);

// The path of the calibration in force, or none, each behind its link check: "C" disturbs it.
void RestorePath(Rig& rig);

// "N" and the code of every point; panel 3 follows. Titles "Port1 Level Set" / "Port 1 Level Set".
// Where the instrument is not known to hold the plan, the plan is loaded, level codes and all.
[[nodiscard]] bool SendLevelTable(Rig& rig);
// "YK" for one point (i as the instrument counts it; the code looked up is that of frequency F).
[[nodiscard]] bool SendPointLevel(Rig& rig, int i, double F);

// The "T" exchange into panel 5; false after "No Response" under "RX Temp Check".
[[nodiscard]] bool ReadTemperature(Rig& rig);
// "T" and its two bytes alone, degrees Celsius; nothing, and no message, when they do not come
// within 2000 ms.
[[nodiscard]] std::optional<float> ExchangeTemperature(Rig& rig);
float TemperatureFromBytes(int b1, int b2);  // degrees Celsius, 32-bit steps

}  // namespace qk
