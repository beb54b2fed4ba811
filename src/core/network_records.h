// SPDX-License-Identifier: MIT
// The networks that de-embedding removes from the measurement.
#pragma once

#include "core/complex_array.h"

namespace qk {

// A two-port network, sampled at the sweep points that were active when its file was loaded. A
// later change of the sweep does not reload it. Port 1 of the network is port 1 of its file.
struct Network {
  ComplexArray S11, S21, S12, S22;
};

struct NetworkState {
  bool Port1NetOn = false;  // the network at that port is in use
  bool Port2NetOn = false;
  Network Port1Net, Port2Net;

  Network& OfPort(int port) { return port == 1 ? Port1Net : Port2Net; }
  const Network& OfPort(int port) const { return port == 1 ? Port1Net : Port2Net; }
};

}  // namespace qk
