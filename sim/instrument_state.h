// SPDX-License-Identifier: MIT
// All that the simulated instrument is made of.
#pragma once

#include <optional>

#include "sim/command_interpreter.h"
#include "sim/connection.h"
#include "sim/faults.h"
#include "sim/instrument.h"
#include "sim/receiver.h"
#include "sim/transmitter.h"

namespace qk::sim {

struct Instrument::State {
  explicit State(const InstrumentOptions& options)
      : Analog(options.Seed, options.Noise),
        Sender(Fault),
        Commands(options, Fault, Analog, Sender) {
    Analog.Connect({MakeFilter(), {}, {}});
  }

  Faults Fault;
  Receiver Analog;
  Transmitter Sender;
  CommandInterpreter Commands;
  int Unpluggings = 0;
  bool Follow = true;
  // What was connected before the first followed prompt.
  std::optional<Connection> DeviceUnderTest;
  // What "Through Standard" stands for.
  DevicePtr ThroughStandard = MakeLine(25);
  bool ThroughNamed = false;  // by a line of the bench
};

}  // namespace qk::sim
