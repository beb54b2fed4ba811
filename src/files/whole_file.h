// SPDX-License-Identifier: MIT
// Files as wholes: read with a limit, written so that a crash, a full disk or a pulled plug leaves
// either the old file or the new one, never a part of either.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "core/result.h"

namespace qk {

// The bytes of an ordinary file. Refused, with the path as the place: what cannot be opened or
// read, folders, FIFOs, devices, files of more than limit bytes, and a file that is not as long
// as it was when it has been read: another program is writing it. Never waits for a writer.
Result<std::string> ReadWhole(const std::string& path, std::size_t limit);

// Writes bytes to path: into ".NAME.saving" beside it, onto the disk, then renamed over the old
// file, whose permissions stay. A symbolic link is followed. On a failure the old file stays as it
// was, and the file beside it is gone. The next save removes what a killed process left beside.
Result<Done> WriteWhole(const std::string& path, std::string_view bytes);

}  // namespace qk
