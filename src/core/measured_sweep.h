// SPDX-License-Identifier: MIT
// The measured data of a sweep and its frequency grid.
#pragma once

#include "core/session.h"

namespace qk {

// True if both grids have the same points at the same frequencies.
bool SameGrid(const PlanGrid& a, const PlanGrid& b);

// Resets data and channel values to their state before the first sweep.
void ForgetSweep(Session& session);

}  // namespace qk
