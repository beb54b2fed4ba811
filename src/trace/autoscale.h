// SPDX-License-Identifier: MIT
// Autoscale: scale, reference and units that fill a channel's graph with its trace.
#pragma once

#include "core/session.h"

namespace qk {

struct AutoscaleResult {
  bool Changed = false;  // false for a flat trace: the rest then stands as the channel has it
  Unit Units = Unit::Db;
  double Scale = 0;      // per division, in Units, two decimals, at least 0.01
  double Reference = 0;  // the middle of the trace, in Units, two decimals
};

// From points 1 to numPoints of the channel's Value. The trace takes 8 / 1.05 divisions around a
// reference in the middle (position 4); a scale below 0.1 steps the units down and one above 999
// steps them up, where the units have steps ("U" and "mU"; "us", "ns" and "ps").
AutoscaleResult Autoscale(const ChannelSettings& channel, int numPoints);

// The next scale of the row 1, 2, 5, 10, ... above (steps > 0) or below, within 1e-9 and 1e9.
double NextScale(double scale, int steps);

// The least scale that the two decimals beside a graph can show.
inline constexpr double kLeastShownScale = 0.01;

// The same with a scale of the row 1, 2, 5 that shows all of the trace, and a reference that is a
// whole number of divisions; never below kLeastShownScale. Values that are no numbers are left out;
// a flat trace keeps its scale. Changed is false without any value.
AutoscaleResult RoundedAutoscale(const ChannelSettings& channel, int numPoints);

}  // namespace qk
