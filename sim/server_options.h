// SPDX-License-Identifier: MIT
// The command line of qk47-sim.
#pragma once

#include <string>
#include <vector>

#include "sim/instrument.h"

namespace qk::sim {

struct ServerOptions {
  std::string Link;     // path of the symbolic link to the pseudo-terminal
  std::string Control;  // path of the named pipe for bench commands; empty for none
  Pace LinePace = Pace::Baud115200;
  InstrumentOptions Box;
  std::vector<std::string> BenchLines;  // executed before the port opens
  bool Help = false;
  std::string Error;  // empty if the command line is valid
};

ServerOptions ParseServerOptions(const std::vector<std::string>& arguments);
const char* ServerUsage();

}  // namespace qk::sim
