// SPDX-License-Identifier: MIT
// Reader for Touchstone 1 files (.s1p, .s2p) for devices at the simulated ports: MA, DB and RI, any
// unit, any resistance, comments, rows continued over lines; a noise block after the data is
// ignored.
#pragma once

#include <istream>
#include <string>
#include <vector>

#include "sim/two_port.h"

namespace qk::sim {

struct TouchstoneData {
  int Ports = 0;                // 1 or 2
  std::vector<double> Hz;       // ascending
  std::vector<TwoPort> Points;  // at 50 ohms; only S11 for one port
};

struct TouchstoneResult {
  TouchstoneData Data;
  std::string Error;  // empty if the data are complete; otherwise "line N: ..."
};

TouchstoneResult ReadTouchstone(std::istream& in, int ports);
// The extension determines the number of ports.
TouchstoneResult ReadTouchstoneFile(const std::string& path);

}  // namespace qk::sim
