// SPDX-License-Identifier: MIT
#include "utilities/continuous_wave.h"

#include <cmath>

#include "core/instrument_limits.h"
#include "link/command_set.h"
#include "sweep/frequency_plan.h"

namespace qk {

namespace {
constexpr float kLowestHz = static_cast<float>(kLowestFreq);
constexpr float kHighestHz = static_cast<float>(kHighestFreq);
static_assert(kLowestFreq == 3e6 && kHighestFreq == 3.08e9, "the messages name the range");
// Intentional: a frequency above the range becomes 3.08 MHz, like the start of a sweep.
constexpr float kAboveRangeHz = 3.08e6f;
}  // namespace

bool HoldContinuousWave(Rig& rig, const Complaint& complaint, double F) {
  if (!SendFirstPoint(rig, complaint, F)) return false;
  return Send(rig, complaint, command::ContinuousWave());
}

bool RestoreFirstPoint(Rig& rig, const Complaint& complaint) {
  return SendFirstPoint(rig, complaint, rig.session.Plan.StartFreq);
}

GeneratorFrequency RoundToGenerator(double megahertz) {
  const float typed = static_cast<float>(megahertz * 1e6);
  const float rounded = static_cast<float>(
      std::floor(static_cast<double>(typed) / kSmallestStep + 0.5) * kSmallestStep);
  if (!(rounded >= kLowestHz)) return {kLowestHz, "Value < 3MHz not allowed"};
  if (rounded > kHighestHz) return {kAboveRangeHz, "Value > 3.08GHz not allowed"};
  return {rounded};
}

}  // namespace qk
