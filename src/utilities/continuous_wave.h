// SPDX-License-Identifier: MIT
// The instrument held at one frequency: the record of point 0 in sweep RAM is lent to it and put
// back.
#pragma once

#include "link/exchange.h"

namespace qk {

// Writes the record of F hertz, at the session's level, to point 0 and sets the synthesisers there
// ("Z" 0). False after the complaint.
[[nodiscard]] bool HoldContinuousWave(Rig& rig, const Complaint& complaint, double F);
// Puts the plan's own record of point 0 back; the wave is held on.
[[nodiscard]] bool RestoreFirstPoint(Rig& rig, const Complaint& complaint);

// A frequency as the signal generator takes it: rounded to 100 Hz and, outside the instrument's
// range, replaced. 32-bit as held, so above 1 GHz it is a multiple of 64 or 128 Hz.
struct GeneratorFrequency {
  float F = 0;                 // Hz
  const char* Told = nullptr;  // why it was replaced
};
GeneratorFrequency RoundToGenerator(double megahertz);

}  // namespace qk
