// SPDX-License-Identifier: MIT
// What this program was built from, for --version and About.
#pragma once

#include <string>

namespace qk {

// The commit, "3674ed5ab", with "-changed" if files differ from it; "unknown" outside a repository.
const char* BuildCommit();

// "0.2.0 (commit 3674ed5ab, Qt 6.4.2)"; the version of Qt is the one in use.
std::string VersionDetails();

}  // namespace qk
