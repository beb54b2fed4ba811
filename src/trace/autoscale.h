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

// The least scale that the two decimals beside a graph can show.
inline constexpr double kLeastShownScale = 0.01;

// The same with a scale of the row 1, 2, 5 that shows all of the trace, and a reference that is a
// whole number of divisions; never below kLeastShownScale. Values that are no numbers are left out;
// a flat trace keeps its scale. Changed is false without any value.
AutoscaleResult RoundedAutoscale(const ChannelSettings& channel, int numPoints);

}  // namespace qk
