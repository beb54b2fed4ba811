// SPDX-License-Identifier: MIT
// The user's guides: PDF files that the program shows from its install folder.
#pragma once

#include <string>

namespace qk {

// Brings the guides from one folder into another, where they are missing or older. Quiet: without a
// guide the program is as good as with it.
void BringGuides(const std::string& from, const std::string& to);

}  // namespace qk
