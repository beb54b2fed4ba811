// SPDX-License-Identifier: MIT
// The name that a save dialog proposes: the label of the pictures, if there is one, and the date.
#pragma once

#include <string>

#include "core/local_time.h"
#include "core/session.h"

namespace qk {

// "07" for 7.
std::string TwoDigits(int value);

// "Filter-A-2026-11-22", without an ending; with "-2", "-3" ... behind it where folder holds a file
// of that name and ending (".cal") already. Letters of the label that files should not have become
// "-".
std::string ProposedName(const Session& session, const LocalTime& now, const std::string& folder,
                         const std::string& ending);

}  // namespace qk
