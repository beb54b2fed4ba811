// SPDX-License-Identifier: MIT
// The two sets of graph colours: the usual one, which is the default, and one for a dark desktop.
#pragma once

#include "core/session.h"

namespace qk {

// Light lines on a nearly black ground, each with a contrast of more than 3 to it.
Colours DarkColours();
bool SameColours(const Colours& a, const Colours& b);

// At the start on a dark desktop: the dark set, where the session has the default colours. True
// when it was taken. The caller redraws.
bool SuitDarkDesktop(Session& session);

}  // namespace qk
