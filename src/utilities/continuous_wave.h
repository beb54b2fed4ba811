// SPDX-License-Identifier: MIT
// Sets the instrument to a single frequency: temporarily replaces the record of point 0 in sweep
// RAM, and restores it.
#pragma once

#include "link/exchange.h"

namespace qk {

// Writes the record for F hertz, at the session's level, to point 0 and sets the synthesisers to it
// ("Z" 0). False after a failure, which has been shown.
[[nodiscard]] bool HoldContinuousWave(Rig& rig, const Complaint& complaint, double F);
// Restores the plan's own record of point 0; the output stays on.
[[nodiscard]] bool RestoreFirstPoint(Rig& rig, const Complaint& complaint);

// A frequency for the signal generator: rounded to 100 Hz, and replaced if it is outside the
// instrument's range. Stored as 32-bit, so above 1 GHz it is a multiple of 64 or 128 Hz.
struct GeneratorFrequency {
  float F = 0;                   // Hz
  const char* Reason = nullptr;  // why it was replaced
};
GeneratorFrequency RoundToGenerator(double megahertz);

}  // namespace qk
