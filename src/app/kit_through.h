// SPDX-License-Identifier: MIT
// What "Through Standard" is on the demonstration's bench: the one that the kit describes.
#pragma once

#include "core/session.h"
#include "sim/instrument.h"

namespace qk {

// The bench's through standard takes the S-parameters of the kit's table. No effect without a
// table, or where its frequencies do not rise.
void ConnectThroughOf(const CalKit& kit, sim::Instrument& bench);

}  // namespace qk
