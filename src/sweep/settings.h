// SPDX-License-Identifier: MIT
// Instrument settings that a user changes: averages, dwell.
#pragma once

#include <cstdint>

#include "link/instrument_link.h"

namespace qk {

// Sends Averages (raised to 1 when below). "No Response" under "Set Averages".
[[nodiscard]] bool SetAverages(Rig& rig);
// Sends the count and makes it Averages. When the instrument does not answer, Averages stays what
// it has in force: every sample is divided by it.
[[nodiscard]] bool PutAveragesInForce(Rig& rig, std::int16_t count);
// Sends the dwell state. "No Response" under "Dwell Time Set".
[[nodiscard]] bool SendDwell(Rig& rig);

// The count that the user wants: the one in force, but where another is due.
std::int16_t WantedAverages(const Session& session);

}  // namespace qk
