// SPDX-License-Identifier: MIT
// The start of the program in its windows: the folder to work over, and what becomes of a file that
// is to be opened when another program works over that folder.
#pragma once

#include <memory>
#include <string>

#include "app/folder_lock.h"

namespace qk {

// The folder, taken; another one when that one is refused and the user chooses so. nullptr
// when this start ends here with exitCode: the file was handed over (0), the user cancelled (0), or
// the running program did not take the file (1); the outcome is on standard error and, for a
// refusal, in a box.
std::unique_ptr<FolderLock> TakeFolder(std::string folder, const std::string& file, int& exitCode);

}  // namespace qk
