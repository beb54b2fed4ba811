// SPDX-License-Identifier: MIT
// A value in the unit that a channel shows.
#pragma once

#include "core/session.h"

namespace qk {

// A value in the channel's unit, where that is one of the graph type's; as it is elsewhere.
inline double InUnits(const ChannelSettings& settings, double value) {
  const UnitRow& unit = RowOf(settings.Units);
  return unit.Family == RowOf(settings.GraphType).Family ? value / unit.Size : value;
}

}  // namespace qk
