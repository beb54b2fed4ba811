// SPDX-License-Identifier: MIT
// Opening a file that is already chosen: one of the files used last, or a path from another
// program.
#pragma once

#include <string>

#include "control/controller.h"

namespace qk {

// A session file (".cal") as Load Cal takes it, anything else as Load Measurements does, with the
// checks and messages of each. A file that is no longer there is reported under the title "Open
// Recent" and leaves the list. True when the file was loaded.
bool OpenFile(Controller& controller, const std::string& path);

}  // namespace qk
