// SPDX-License-Identifier: MIT
// Ensures before a trigger that the instrument is in the state that the session requires; otherwise
// nothing is measured.
#pragma once

#include "link/exchange.h"

namespace qk {

// Sends everything that the instrument is not known to hold, in the order used for a loaded
// session: averages, dwell, plan (or only its first point, or its level codes); after a failure
// also the path of the active calibration. Sends nothing if all of it is up to date. False if an
// exchange failed, which has been shown under its own title, or under the complaint's if it has
// none.
[[nodiscard]] bool BringUpToDate(Rig& rig, const Complaint& complaint);

}  // namespace qk
