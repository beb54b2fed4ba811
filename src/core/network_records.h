// SPDX-License-Identifier: MIT
// The networks that de-embedding takes off the measurement.
#pragma once

#include "core/complex_array.h"

namespace qk {

// A two-port at the points of the sweep that was in force when its file was loaded. A later change
// of the sweep does not load it anew. Port 1 of the network is that of its file.
struct Network {
  ComplexArray S11, S21, S12, S22;
};

struct NetworkState {
  bool Port1NetOn = false;  // the network of that port is in use
  bool Port2NetOn = false;
  Network Port1Net, Port2Net;

  Network& OfPort(int port) { return port == 1 ? Port1Net : Port2Net; }
  const Network& OfPort(int port) const { return port == 1 ? Port1Net : Port2Net; }
};

}  // namespace qk
