// SPDX-License-Identifier: MIT
// Reader of Touchstone 1 files (.s1p, .s2p) for devices at the simulated ports: MA, DB and RI, any
// unit, any resistance, comments, rows broken over lines, a noise block behind the data left aside.
#pragma once

#include <istream>
#include <string>
#include <vector>

#include "sim/two_port.h"

namespace qk::sim {

struct TouchstoneData {
  int Ports = 0;                // 1 or 2
  std::vector<double> Hz;       // rising
  std::vector<TwoPort> Points;  // in 50 ohms; only S11 with one port
};

struct TouchstoneResult {
  TouchstoneData Data;
  std::string Error;  // empty when the data is whole; "line N: ..." otherwise
};

TouchstoneResult ReadTouchstone(std::istream& in, int ports);
// The number of ports goes by the extension.
TouchstoneResult ReadTouchstoneFile(const std::string& path);

}  // namespace qk::sim
