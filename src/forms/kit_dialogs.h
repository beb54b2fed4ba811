// SPDX-License-Identifier: MIT
// What the windows that deal with kits share: their dialogs and the forms of their numbers.
#pragma once

#include <array>
#include <string>

#include "core/host.h"
#include "core/session.h"

namespace qk {

// A dialog for kit files in the install folder, ".kit" preselected.
Dialog KitDialog(const Session& session, DialogKind kind, std::string title);
// ... for tables of measured standards, ".dat" preselected.
Dialog DataDialog(const Session& session, std::string title);

// The units of C0 to C3.
inline constexpr std::array<const char*, 4> kCoefficientUnits{"F", "F/Hz", "F/Hz\xC2\xB2",
                                                              "F/Hz\xC2\xB3"};

// An offset in metres as the fields show it, in millimetres.
std::string OffsetText(float offset);
std::string CoefficientText(double c);

// What CalKitForm shows of two kits is the same.
bool SameKit(const CalKit& a, const CalKit& b);

}  // namespace qk
