// SPDX-License-Identifier: MIT
// Shared by the windows for kits: file dialogs and number formats.
#pragma once

#include <array>
#include <string>

#include "core/host.h"
#include "core/session.h"

namespace qk {

// A dialog for kit files in the install folder, ".kit" preselected.
Dialog KitDialog(const Session& session, DialogKind kind, std::string title);
// The same for tables of measured standards, ".dat" preselected.
Dialog DataDialog(const Session& session, std::string title);

// The units of C0 to C3.
inline constexpr std::array<const char*, 4> kCoefficientUnits{"F", "F/Hz", "F/Hz\xC2\xB2",
                                                              "F/Hz\xC2\xB3"};

// An offset in metres, formatted for the fields in millimetres.
std::string OffsetText(float offset);
std::string CoefficientText(double c);

// True if two kits are equal in everything that CalKitForm shows.
bool SameKit(const CalKit& a, const CalKit& b);

}  // namespace qk
