// SPDX-License-Identifier: MIT
// Autoscale: scale, reference and units that fill a channel's graph with its trace.
#pragma once

#include "core/session.h"

namespace qk {

struct AutoscaleResult {
  bool Changed = false;  // false for a flat trace; the channel then keeps its other values
  Unit Units = Unit::Db;
  double Scale = 0;      // per division, in Units, two decimals, at least 0.01
  double Reference = 0;  // the centre of the trace, in Units, two decimals
};

// Uses points 1 to numPoints of the channel's Value. The trace covers 8 / 1.05 divisions around a
// reference in the middle (position 4). A scale below 0.1 selects the next smaller unit, one above
// 999 the next larger, where there are several units ("U" and "mU"; "us", "ns" and "ps").
AutoscaleResult Autoscale(const ChannelSettings& channel, int numPoints);

// The next scale in the sequence 1, 2, 5, 10, ... upward (steps > 0) or downward, from 1e-9 to 1e9.
double NextScale(double scale, int steps);

// The smallest scale that two decimals can show.
inline constexpr double kLeastShownScale = 0.01;

// The same with a scale from the sequence 1, 2, 5 that shows the whole trace, at least
// kLeastShownScale, and a reference that is a whole number of divisions. NaN values are ignored; a
// flat trace keeps its scale. Changed is false if there are no values.
AutoscaleResult RoundedAutoscale(const ChannelSettings& channel, int numPoints);

}  // namespace qk
