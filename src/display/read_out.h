// SPDX-License-Identifier: MIT
// The value under the cursor: what trace runs there, where on it, and how large.
#pragma once

#include <optional>
#include <string>

#include "display/graphs.h"

namespace qk {

// The nearest point of a displayed data trace within reach of the cursor: "CH1 100.0000 MHz" and
// "-3.012 dB" on two lines, as the marker table writes them (an impedance on a Smith chart, a time
// on a time trace). Nothing away from the traces.
std::optional<std::string> ReadOutAt(const Graphs& graphs, double zo, CanvasPoint cursor);

}  // namespace qk
