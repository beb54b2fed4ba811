// SPDX-License-Identifier: MIT
// The program with its windows.
#pragma once

#include "app/options.h"

namespace qk {

// Runs until the program is closed; returns the exit code.
int RunDesktop(const Options& options, int& argc, char** argv);

}  // namespace qk
