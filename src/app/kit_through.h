// SPDX-License-Identifier: MIT
// Makes "Through Standard" on the demonstration's bench match the standard that the kit describes.
#pragma once

#include "core/host.h"
#include "core/session.h"
#include "sim/instrument.h"

namespace qk {

// Gives the bench's through standard the S-parameters of the kit's table. No effect without a
// table, if its frequencies are not ascending, or if a bench command has selected a standard.
void ConnectThroughOf(const CalKit& kit, sim::Instrument& bench);

// The bench connects what a prompt requests, while it follows prompts; the through standard is that
// of the port 1 kit.
void FollowPrompt(const Message& prompt, const Session& session, sim::Instrument& bench);

}  // namespace qk
