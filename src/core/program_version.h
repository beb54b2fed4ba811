// SPDX-License-Identifier: MIT
// The version of the program, for --version and for what is written at the head of files.
#pragma once

#include <string_view>

namespace qk {

// "0.2.0".
std::string_view ProgramVersion();

}  // namespace qk
