// SPDX-License-Identifier: MIT
// The read-out under the cursor: the trace, the position on it, and its value.
#pragma once

#include <optional>
#include <string>

#include "display/graphs.h"

namespace qk {

// A point of a displayed data trace: the graph from 0, the point from 1.
struct TracePoint {
  int Graph = 0;
  int Point = 1;
};

// The nearest point of a displayed data trace within reach of the cursor. Empty away from the
// traces.
std::optional<TracePoint> TracePointAt(const Graphs& graphs, CanvasPoint cursor);

// The read-out of that point: "CH1 100.0000 MHz" and "-3.012 dB" on two lines, formatted like the
// marker table (an impedance on a Smith chart, a time on a time trace). Empty away from the traces.
std::optional<std::string> ReadOutAt(const Graphs& graphs, double zo, CanvasPoint cursor);

}  // namespace qk
