// SPDX-License-Identifier: MIT
// User operations on measurement quality: enable, silence and explain hints; save statistics. Verbs
// for windows, console and remote control. Every window is notified.
#pragma once

#include <string>

#include "control/controller.h"
#include "core/result.h"

namespace qk {

void SwitchHints(Controller& controller, bool on);
// Suppresses the hint until the program ends or ListenToHints is called.
void SilenceHint(Controller& controller, HintKind kind);
void ListenToHints(Controller& controller);
// Opens the manual at the section about the hint.
void ExplainHint(Controller& controller, HintKind kind);

// Mean and spread of the repeated sweeps as CSV, with a description of their origin. Fails with
// fewer than two sweeps.
Result<Done> SaveStatistics(Controller& controller, const std::string& path);

}  // namespace qk
