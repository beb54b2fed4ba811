// SPDX-License-Identifier: MIT
// Before a trigger the instrument holds what the session wants, or nothing is measured.
#pragma once

#include "link/exchange.h"

namespace qk {

// Sends again whatever the instrument is not known to hold, in the order of a loaded session:
// averages, dwell, plan (or its first point, or its level codes); behind a failure also the path of
// the calibration in force. Sends nothing where all of it is held. False when an exchange failed.
// That has been shown under its own title, or under the complaint's where it has none.
[[nodiscard]] bool BringUpToDate(Rig& rig, const Complaint& complaint);

}  // namespace qk
