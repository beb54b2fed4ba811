// SPDX-License-Identifier: MIT
// Session files (".cal"): a complete snapshot of the session, including the calibration. The same
// format is used for the user's files and for the file that restores the last state of the program.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "core/result.h"
#include "core/session.h"

namespace qk {

// A session file with everything in it has about 3 MB; a larger one than this is not read.
inline constexpr std::size_t kLargestSession = std::size_t{16} << 20;

// The error for a file that is not a session file.
inline constexpr std::string_view kInvalidHeader = "Not a Valid Cal File (invalid header)";

std::string SessionBytes(const Session& session);

// Reads the bytes of a session file into the session. Files of the two earlier format versions end
// after row 56 or 59, with or without "EOF". The first has no saved base, so its terms become the
// base; the second leaves the kit's through standard in memory unchanged. A file that ends inside
// one of the later parts is read as if that part were missing. Any other error refuses the file
// ("line 12: CAUSE", or only kInvalidHeader) and leaves the session completely unchanged.
Result<Done> ReadSession(std::string_view bytes, Session& session);
// The same using the caller's scratch session, for reading many files; its contents are
// overwritten.
Result<Done> ReadSession(std::string_view bytes, Session& session, Session& room);

// Load and save a file, with the calibration record next to it (files/cal_info.h). Failures name
// the session file, except kInvalidHeader.
Result<Done> LoadSession(const std::string& path, Session& session);
Result<Done> SaveSession(const std::string& path, const Session& session);
// The record of the calibration in a session file; an empty one if there is none.
CalRecord CalRecordIn(const std::string& path);

}  // namespace qk
