// SPDX-License-Identifier: MIT
// What is connected to the two ports: a two-port between them, or something at each of them.
#pragma once

#include <string>

#include "sim/devices.h"

namespace qk::sim {

struct Termination {
  enum class Kind { Nothing, Open, Short, Load, Mismatch, DevicePort };
  Kind What = Kind::Nothing;
  bool Male = true;          // told, no reflection depends on it
  double OffsetMm = 0;       // of an open or a short, one way, in air
  double ReturnLossDb = 20;  // of a mismatch, real and positive at its plane
  // An air line between the port and the termination: its loss one way, which grows with the root
  // of the frequency.
  double LineMm = 0, LineLossDbAt1GHz = 0;
  DevicePtr Dut;  // DevicePort: the device whose port reflects, its other side matched
  int DutPort = 1;

  Complex Reflection(double f) const;
  std::string Describe() const;

 private:
  Complex AtItsPlane(double f) const;
  std::string DescribeAtItsPlane() const;
};

struct Connection {
  DevicePtr Between;         // null when the ports are on their own
  Termination Port1, Port2;  // only without Between

  TwoPort At(double f) const;
  std::string Describe() const;
};

// Reflection of the default kit's open: a capacitance that grows with the frequency.
Complex KitOpen(double f);

}  // namespace qk::sim
