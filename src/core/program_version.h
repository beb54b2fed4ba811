// SPDX-License-Identifier: MIT
// The program version, for --version and for file headers.
#pragma once

#include <string_view>

namespace qk {

// "0.2.0".
std::string_view ProgramVersion();

}  // namespace qk
