// SPDX-License-Identifier: MIT
// A small plan for tests of checks and uncertainties: 1 to 11 MHz.
#pragma once

#include "core/session.h"

namespace qk {

inline PlanGrid ElevenPoints() {
  PlanGrid grid;
  grid.StartFreq = 1e6;
  grid.StepFreq = 1e6;
  grid.StopFreq = 11e6;
  grid.NumPoints = 11;
  return grid;
}

}  // namespace qk
