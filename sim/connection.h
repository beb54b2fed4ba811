// SPDX-License-Identifier: MIT
// What is connected to the two ports: a two-port between them, or something at each of them.
#pragma once

#include <string>

#include "sim/devices.h"

namespace qk::sim {

struct Termination {
  enum class Kind { Nothing, Open, Short, Load, Mismatch, DevicePort };
  Kind What = Kind::Nothing;
  bool Male = true;          // informational; no reflection depends on it
  double OffsetMm = 0;       // of an open or a short, one way, in air
  double ReturnLossDb = 20;  // of a mismatch; its reflection is real and positive at its plane
  // An air line between the port and the termination, with its one-way loss, which increases with
  // the square root of the frequency.
  double LineMm = 0, LineLossDbAt1GHz = 0;
  DevicePtr Dut;  // DevicePort: the device whose port reflects; its other port is matched
  int DutPort = 1;

  Complex Reflection(double f) const;
  std::string Describe() const;

 private:
  Complex AtItsPlane(double f) const;
  std::string DescribeAtItsPlane() const;
};

struct Connection {
  DevicePtr Between;         // null if the ports are not connected to each other
  Termination Port1, Port2;  // only without Between

  TwoPort At(double f) const;
  std::string Describe() const;
};

// Reflection of the default kit's open: a capacitance that increases with frequency.
Complex KitOpen(double f);

}  // namespace qk::sim
