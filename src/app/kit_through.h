// SPDX-License-Identifier: MIT
// What "Through Standard" is on the demonstration's bench: the one that the kit describes.
#pragma once

#include "core/host.h"
#include "core/session.h"
#include "sim/instrument.h"

namespace qk {

// The bench's through standard takes the S-parameters of the kit's table. No effect without a
// table, where its frequencies do not rise, or where a line of the bench has named a standard.
void ConnectThroughOf(const CalKit& kit, sim::Instrument& bench);

// The bench connects what a prompt asks for, while it follows prompts; the through standard is that
// of the port 1 kit.
void FollowPrompt(const Message& prompt, const Session& session, sim::Instrument& bench);

}  // namespace qk
