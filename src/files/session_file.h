// SPDX-License-Identifier: MIT
// Session files (".cal"): a whole snapshot of the session, calibration and all. The same format
// serves the user's files and the one that brings the program back as it was left.
#pragma once

#include <string>
#include <string_view>

#include "core/result.h"
#include "core/session.h"

namespace qk {

// What a file that is none of ours is refused with.
inline constexpr std::string_view kInvalidHeader = "Not a Valid Cal File (invalid header)";

std::string SessionBytes(const Session& session);

// The bytes of a session file into the session. Files of the two earlier steps of the format end
// with "EOF", or simply, behind row 56 or 59: the first has no saved base, so that its terms become
// it, the second leaves the through standard of the kit in memory. What ends inside one of the
// later steps counts as without that step. Anything else that is amiss refuses the file ("line 12:
// CAUSE", or kInvalidHeader alone) and leaves the session as it was, every bit.
Result<Done> ReadSession(std::string_view bytes, Session& session);
// The same in room that the caller keeps, for who reads many files: whatever it holds is lost.
Result<Done> ReadSession(std::string_view bytes, Session& session, Session& room);

// From and to a file, with the record of the calibration beside it (files/cal_info.h); failures
// name the session file, but for kInvalidHeader.
Result<Done> LoadSession(const std::string& path, Session& session);
Result<Done> SaveSession(const std::string& path, const Session& session);

}  // namespace qk
