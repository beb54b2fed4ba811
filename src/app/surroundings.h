// SPDX-License-Identifier: MIT
// Shared by all front ends of the program: the serial port, real or simulated, and standard output.
#pragma once

#include <memory>
#include <string>

#include "app/options.h"
#include "app/port_reasons.h"
#include "console/console_host.h"
#include "display/canvas.h"
#include "link/serial_port.h"

namespace qk {

class Surroundings {
 public:
  explicit Surroundings(const Options& options);
  ~Surroundings();

  SerialPort& Port() { return *port_; }
  // The simulated instrument of --demo; nullptr without it.
  sim::Instrument* Bench() { return bench_.get(); }
  PortReasons& Reasons() { return reasons_; }

 private:
  PortReasons reasons_;
  std::unique_ptr<sim::Instrument> bench_;
  std::unique_ptr<SerialPort> port_;
};

// The picture size of a front end without windows, in pixels.
inline constexpr Extent kPictureSize{1000, 700};

// Writes a line to standard output and flushes it.
void WriteLine(const std::string& line);

std::string FolderOf(const Options& options);

// A steady clock for a console; its sleep ends early when the descriptor wake becomes readable.
ConsoleClock WakingConsoleClock(int wake);

}  // namespace qk
