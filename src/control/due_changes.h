// SPDX-License-Identifier: MIT
// What is served between two sweeps, in its fixed order.
#pragma once

#include <cstdint>
#include <span>

#include "display/graphs.h"
#include "link/instrument_link.h"

namespace qk {

// Offsets with temperature, averages, the Updating window, the limit test of what the sweep has
// measured, the refresh interval, dwell, level, memory hold: each only when due.
void ServeDueChanges(Rig& rig, Graphs& graphs, std::span<const Parameter> measured);

// Whether a handler has left anything that wants the line.
bool AnyChangeDue(const SweepFlags& flags);

// The dc offsets and then the temperature, whatever becomes of the first; clears OffsetUpdateDue.
void UpdateOffsets(Rig& rig);

// Points between two partial redraws, 2 to 10: fewer with more averages, as a slower sweep can
// afford more.
std::int16_t PlotRefreshPointsFor(int averages, int numPoints);

}  // namespace qk
