// SPDX-License-Identifier: MIT
// The user's guides: PDF files that the program shows from its install folder.
#pragma once

#include <cstdint>
#include <string>

namespace qk {

// The folder that holds the guides of a program in programFolder: that folder itself where the
// program was built, ../share/qk47-vna where it was installed. programFolder when neither holds
// any.
std::string GuideFolder(const std::string& programFolder);

// What a copied guide must leave free, in bytes: the largest session file that can be read back,
// and the log.
inline constexpr std::uintmax_t kRoomForWork = 18u << 20;

// Copies the guides from one folder to another where they are missing, older, or cut short by an
// earlier copy. A guide is copied whole or not at all, and only where roomForWork bytes stay free
// after it. Reports nothing: without a guide the program works as well as with it.
void BringGuides(const std::string& from, const std::string& to,
                 std::uintmax_t roomForWork = kRoomForWork);

}  // namespace qk
