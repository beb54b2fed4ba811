// SPDX-License-Identifier: MIT
// Saves what formatting changes, so that a stored trace can be formatted through a channel that
// shows live data.
#pragma once

#include <array>

#include "core/session.h"

namespace qk {

// The previous phases of the two formatters, in degrees, which group delay uses.
struct PrevPhases {
  float Reflection = 0, Transmission = 0;

  void Take(const DisplayState& display) {
    Reflection = display.PrevPhaseReflection;
    Transmission = display.PrevPhaseTransmission;
  }
  void Restore(DisplayState& display) const {
    display.PrevPhaseReflection = Reflection;
    display.PrevPhaseTransmission = Transmission;
  }
};

// All that DispatchPointToChannel changes in the session, for one channel (from 1). Peak search,
// limit test, group delay and the spectrum of a time response use it as live data. Large:
// keep it on the heap.
struct ChannelValues {
  ChannelSettings::PerPoint<double> Value, Value2;
  ChannelSettings::PerPoint<float> SmoothValue, SmoothValue2;
  std::array<double, kMaxPoints + 1> TdInRe, TdInIm;
  GateArrays::Points GateIn;
  PrevPhases Phases;

  void Take(const Session& session, int channel);
  void Restore(Session& session, int channel) const;
};

}  // namespace qk
