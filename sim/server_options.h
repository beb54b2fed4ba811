// SPDX-License-Identifier: MIT
// The command line of qk47-sim.
#pragma once

#include <string>
#include <vector>

#include "sim/instrument.h"

namespace qk::sim {

struct ServerOptions {
  std::string Link;     // path of the symbolic link to the pseudo-terminal
  std::string Control;  // path of the named pipe for bench lines; empty for none
  Pace LinePace = Pace::Baud115200;
  InstrumentOptions Box;
  std::vector<std::string> BenchLines;  // run before the port opens
  bool Help = false;
  std::string Error;  // empty when the line was understood
};

ServerOptions ParseServerOptions(const std::vector<std::string>& arguments);
const char* ServerUsage();

}  // namespace qk::sim
