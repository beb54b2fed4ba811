// SPDX-License-Identifier: MIT
// The program without windows, run from lines of text.
#pragma once

#include "app/options.h"

namespace qk {

// Runs until the commands end or one of them ends the process; returns the exit code.
int RunConsole(const Options& options, int& argc, char** argv);

}  // namespace qk
