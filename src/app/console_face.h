// SPDX-License-Identifier: MIT
// The program without a window, run from lines of text.
#pragma once

#include "app/options.h"

namespace qk {

// Runs until the commands end or end the process; gives the exit code.
int RunConsole(const Options& options, int& argc, char** argv);

}  // namespace qk
