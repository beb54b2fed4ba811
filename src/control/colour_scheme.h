// SPDX-License-Identifier: MIT
// The two sets of graph colours: the default set, and one for a dark desktop.
#pragma once

#include "core/session.h"

namespace qk {

// Light lines on a nearly black background, each with a contrast ratio above 3 to it.
Colours DarkColours();
bool SameColours(const Colours& a, const Colours& b);

// Called at start-up on a dark desktop: selects the dark set if the session has the default
// colours. Returns true if it did. The caller redraws.
bool MatchDarkDesktop(Session& session);

}  // namespace qk
