// SPDX-License-Identifier: MIT
// Instrument settings that the user changes: averages, dwell.
#pragma once

#include <cstdint>

#include "link/instrument_link.h"

namespace qk {

// Sends Averages (raised to 1 if it is less). "No Response" under "Set Averages".
[[nodiscard]] bool SetAverages(Rig& rig);
// Sends the count and stores it in Averages. If the instrument does not answer, Averages keeps the
// value that is active in the instrument, because every sample is divided by it.
[[nodiscard]] bool PutAveragesInForce(Rig& rig, std::int16_t count);
// The same outside a sweep. If the instrument does not answer, the change stays due: the next START
// sends it first.
void SetAveragesWhileIdle(Rig& rig, std::int16_t count);
// Sends the dwell state. "No Response" under "Dwell Time Set".
[[nodiscard]] bool SendDwell(Rig& rig);

// The number of averages that should be active: the one that is due, otherwise the current one.
std::int16_t WantedAverages(const Session& session);

}  // namespace qk
