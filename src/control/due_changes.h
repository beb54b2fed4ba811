// SPDX-License-Identifier: MIT
// The changes served between two sweeps, in a fixed order.
#pragma once

#include <cstdint>
#include <span>

#include "display/graphs.h"
#include "link/instrument_link.h"

namespace qk {

// Serves each change that is due: offsets with temperature, averages, the Updating window, the
// limit test of the measured parameters, the refresh interval, dwell, level, memory hold.
void ServeDueChanges(Rig& rig, Graphs& graphs, std::span<const Parameter> measured);

// True if a handler has left a change that needs the link.
bool AnyChangeDue(const SweepFlags& flags);

// Measures the dc offsets and then the temperature, even if the offsets fail; clears
// OffsetUpdateDue.
void UpdateOffsets(Rig& rig);

// Points between two partial redraws, 2 to 10. The value decreases with more averages: a slower
// sweep leaves more time for redraws.
std::int16_t PlotRefreshPointsFor(int averages, int numPoints);

}  // namespace qk
