// SPDX-License-Identifier: MIT
// Start-up of the program with windows: selects and locks the folder. If another program uses the
// folder, decides what happens to a file that should be opened.
#pragma once

#include <memory>
#include <string>

#include "app/folder_lock.h"

namespace qk {

// Returns the locked folder, or another one if it is refused and the user chooses so. nullptr if
// this start ends here with exitCode: the file was passed on (0), the user cancelled (0), or the
// running program refused the file (1). The outcome is on standard error and, for a refusal, also
// in a box.
std::unique_ptr<FolderLock> TakeFolder(std::string folder, const std::string& file, int& exitCode);

}  // namespace qk
