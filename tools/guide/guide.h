// SPDX-License-Identifier: MIT
// Markdown pages as one PDF.
#pragma once

#include <string>
#include <vector>

namespace qk {

// Writes path from the pages, which are files in reading order; pictures are found beside their
// page. Gives what went wrong, or nothing.
std::string WriteGuide(const std::string& path, const std::string& title,
                       const std::vector<std::string>& pages);

}  // namespace qk
