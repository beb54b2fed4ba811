// What is served between two sweeps, in its fixed order, and the settings that a handler may put
// in force at once only while idle.
#pragma once

#include <cstdint>

#include "display/graphs.h"
#include "link/instrument_link.h"

namespace qk {

// Offsets with temperature, averages, the Updating window, the refresh interval, dwell, level,
// memory hold: each only when due.
void ServeDueChanges(Rig& rig, Graphs& graphs);

// The dc offsets and then the temperature, whatever becomes of the first; clears OffsetUpdateDue.
void UpdateOffsets(Rig& rig);

// Sends the count and makes it Averages. When the instrument does not answer ("No Response" under
// "Set Averages") Averages stays what the instrument has in force: every sample is divided by it.
bool PutAveragesInForce(Rig& rig, std::int16_t count);

// Points between two partial redraws, 2 to 10: fewer with more averages, as a slower sweep can
// afford more.
std::int16_t PlotRefreshPointsFor(int averages, int numPoints);

}  // namespace qk
