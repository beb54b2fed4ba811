// SPDX-License-Identifier: MIT
// The program without windows, controlled by SCPI on standard input and output.
#pragma once

#include "app/options.h"

namespace qk {

// Runs until the input ends and all of it has been executed; returns the exit code.
int RunScpi(const Options& options, int& argc, char** argv);

}  // namespace qk
