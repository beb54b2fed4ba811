// Instrument settings that a user changes: averages, dwell.
#pragma once

#include "link/instrument_link.h"

namespace qk {

// Sends Averages (raised to 1 when below). "No Response" under "Set Averages".
bool SetAverages(Rig& rig);
// Sends the dwell state. "No Response" under "Dwell Time Set".
bool SendDwell(Rig& rig);

}  // namespace qk
