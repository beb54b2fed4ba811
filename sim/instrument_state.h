// SPDX-License-Identifier: MIT
// The complete state of the simulated instrument.
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
  // The connection before the first followed prompt.
  std::optional<Connection> DeviceUnderTest;
  // The device used for "Through Standard".
  DevicePtr ThroughStandard = MakeLine(25);
  bool ThroughNamed = false;  // selected by a bench command
};

}  // namespace qk::sim
