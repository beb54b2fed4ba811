// SPDX-License-Identifier: MIT
// The program without a window, driven by SCPI on standard input and output.
#pragma once

#include "app/options.h"

namespace qk {

// Runs until the input ends and everything in it has been run; gives the exit code.
int RunScpi(const Options& options, int& argc, char** argv);

}  // namespace qk
