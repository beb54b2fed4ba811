// SPDX-License-Identifier: MIT
// Converts a value to the unit of a channel.
#pragma once

#include "core/session.h"

namespace qk {

// A value in the channel's unit if that is a unit of the graph type; otherwise unchanged.
inline double InUnits(const ChannelSettings& settings, double value) {
  const UnitRow& unit = RowOf(settings.Units);
  return unit.Family == RowOf(settings.GraphType).Family ? value / unit.Size : value;
}

}  // namespace qk
