// SPDX-License-Identifier: MIT
// The program's icon: a resonance on a small screen.
#pragma once

#include <QIcon>

namespace qk {

QIcon ProgramIcon();

}  // namespace qk
