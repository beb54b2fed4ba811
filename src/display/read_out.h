// SPDX-License-Identifier: MIT
// The read-out under the cursor: the trace, the position on it, and its value.
#pragma once

#include <optional>
#include <string>

#include "display/graphs.h"

namespace qk {

// The nearest point of a displayed data trace within reach of the cursor: "CH1 100.0000 MHz" and
// "-3.012 dB" on two lines, formatted like the marker table (an impedance on a Smith chart, a time
// on a time trace). Empty away from the traces.
std::optional<std::string> ReadOutAt(const Graphs& graphs, double zo, CanvasPoint cursor);

}  // namespace qk
