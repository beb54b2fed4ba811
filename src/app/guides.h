// SPDX-License-Identifier: MIT
// The user guides: PDF files that the program shows from its install folder.
#pragma once

#include <cstdint>
#include <string>

namespace qk {

// The folder with the guides of a program in programFolder: that folder itself in a build,
// ../share/qk47-vna in an installation. programFolder if neither contains any.
std::string GuideFolder(const std::string& programFolder);

// The disk space in bytes that must stay free after copying a guide: the largest readable session
// file, plus the log.
inline constexpr std::uintmax_t kRoomForWork = 18u << 20;

// Copies the guides from one folder to another where they are missing, older, or truncated by an
// earlier copy. A guide is copied completely or not at all, and only if roomForWork bytes stay free
// after it. Reports no errors: the program also works without guides.
void CopyGuides(const std::string& from, const std::string& to,
                std::uintmax_t roomForWork = kRoomForWork);

}  // namespace qk
