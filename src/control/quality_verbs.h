// SPDX-License-Identifier: MIT
// What a user does about the trust in numbers: hints switched, silenced and explained; statistics
// saved. Verbs for windows, console and remote control alike. Every window is told.
#pragma once

#include <string>

#include "control/controller.h"
#include "core/result.h"

namespace qk {

void SwitchHints(Controller& controller, bool on);
// Not shown again until the program ends, or ListenToHints.
void SilenceHint(Controller& controller, HintKind kind);
void ListenToHints(Controller& controller);
// Opens the page of the manual at the paragraph of the hint.
void ExplainHint(Controller& controller, HintKind kind);

// Mean and spread of the repeated sweeps as CSV, with where they come from. Fails without two
// sweeps.
Result<Done> SaveStatistics(Controller& controller, const std::string& path);

}  // namespace qk
