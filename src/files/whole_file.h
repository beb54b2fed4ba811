// SPDX-License-Identifier: MIT
// Reads complete files with a size limit, and writes files so that a crash, a full disk or a power
// failure leaves either the old file or the new one, never a part of either.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "core/result.h"

namespace qk {

// The bytes of a regular file. Fails, with the path as the place, for: a file that cannot be opened
// or read, folders, FIFOs, devices, files of more than limit bytes, and a file whose length changes
// during reading because another program is writing it. Never waits for a writer.
Result<std::string> ReadWhole(const std::string& path, std::size_t limit);

// Writes bytes to path: first to ".NAME.saving" in the same folder, flushed to disk, then renamed
// over the old file, whose permissions are kept. A symbolic link is followed. On a failure the old
// file is unchanged and the temporary file is removed. A temporary file that a killed process
// left is removed by the next save of that name, or, a minute later, by the next save into its
// folder.
Result<Done> WriteWhole(const std::string& path, std::string_view bytes);

}  // namespace qk
