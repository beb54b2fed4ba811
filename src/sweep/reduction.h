// SPDX-License-Identifier: MIT
// The data of one sweep, and the reduction of a point's bytes to raw ratios.
#pragma once

#include <cstdint>
#include <string_view>

#include "core/session.h"
#include "core/sweep_mode.h"

namespace qk {

// The format of a sweep on the line.
struct SweepWire {
  std::string_view Trigger;
  std::string_view Path;
  int BytesPerPoint;
};
SweepWire WireOf(SweepMode mode);

// Raw ratios of one point; those that the mode does not deliver stay 0. An overload is a test
// voltage of 2.49 volts or more.
struct RawPoint {
  Complex S11, S21, S12, S22;
  bool Port2Overload = false;
  bool Port1Overload = false;
};

// Reference and test voltages of a point of "M" or "S", or of a single reading, with the offsets
// subtracted.
struct PointVolts {
  Complex Reference, Test;
};
PointVolts VoltsOfPoint(const std::uint8_t* bytes, const ReceiverState& receiver, int averages);
bool Overloads(Complex test);

// bytes: BytesPerPoint bytes. Subtracts the offsets and divides test by reference with
// ComplexDivide.
RawPoint ReducePoint(SweepMode mode, const std::uint8_t* bytes, const ReceiverState& receiver,
                     int averages);

// Idle time-out of a sweep in ms: a quarter of a second per average, plus msPerPoint per point.
inline int SweepTimeout(int averages, int numPoints, int msPerPoint) {
  return averages * 1000 / 4 + numPoints * msPerPoint;
}

}  // namespace qk
