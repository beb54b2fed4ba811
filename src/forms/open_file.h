// SPDX-License-Identifier: MIT
// Opens a given file: a recently used one, or a path from another program.
#pragma once

#include <string>

#include "control/controller.h"

namespace qk {

// Opens a session file (".cal") like Load Cal, any other file like Load Measurements, with the same
// checks and messages. A file that no longer exists is reported under the title "Open Recent" and
// removed from the list. Returns true if the file was loaded.
bool OpenFile(Controller& controller, const std::string& path);

}  // namespace qk
