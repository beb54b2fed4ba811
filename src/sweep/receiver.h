// SPDX-License-Identifier: MIT
// The receiver: measuring dc offsets, sending level codes, reading the temperature.
#pragma once

#include <optional>

#include "link/instrument_link.h"

namespace qk {

// Measures and filters the dc offsets at 20 MHz and restores the measurement path of the active
// calibration. A reading more than 100 counts away from the one before it (the first one: more than
// 35 mV from zero) is repeated and used only if that clears it or agrees with it. False after "No
// Response" under "RX Offset"; the old offsets are then kept.
[[nodiscard]] bool MeasureOffsets(Rig& rig);

// Adds one reading to the filter and the history: counts of I and Q. No I/O.
void FilterOffsets(ReceiverState& receiver, double newI, double newQ);

// Selects the path of the active calibration, or of none, each after a link check, because "C"
// changes it.
void RestorePath(Rig& rig);

// "N" and the code of every point; updates panel 3. Titles "Port1 Level Set" / "Port 1 Level Set".
// If the instrument is not known to hold the plan, loads the whole plan, including the level codes.
[[nodiscard]] bool SendLevelTable(Rig& rig);
// "YK" for one point (i as the instrument counts it; the code is looked up for frequency F).
[[nodiscard]] bool SendPointLevel(Rig& rig, int i, double F);

// Reads the temperature with "T" and shows it in panel 5; false after "No Response" under "RX Temp
// Check".
[[nodiscard]] bool ReadTemperature(Rig& rig);
// Only "T" and its two bytes, in degrees Celsius. Empty, without a message, if they do not arrive
// within 2000 ms.
[[nodiscard]] std::optional<float> ExchangeTemperature(Rig& rig);
float TemperatureFromBytes(int b1, int b2);  // degrees Celsius, 32-bit steps

}  // namespace qk
