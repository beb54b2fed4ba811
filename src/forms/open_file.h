// SPDX-License-Identifier: MIT
// Opens a given file: a recently used one, or a path from another program.
#pragma once

#include <string>
#include <string_view>

#include "control/controller.h"

namespace qk {

// Opens a session file (".cal") like Load Cal, any other file like Load Measurements, with the same
// checks and messages. A file that no longer exists is reported and removed from the list of recent
// files. title, of that message and of a question before the load, names the action. Returns true
// if the file was loaded.
bool OpenFile(Controller& controller, const std::string& path, std::string_view title);

}  // namespace qk
