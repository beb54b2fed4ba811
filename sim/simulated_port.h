// SPDX-License-Identifier: MIT
// The simulated instrument behind the program's own port interface, in the same process: for
// tests on a clock that the test moves, and for the demonstration.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "link/serial_port.h"
#include "sim/instrument.h"

namespace qk::sim {

// Time as the port needs it, in microseconds. Sleep may return early only when a byte could be
// there.
struct PortClock {
  std::function<std::int64_t()> NowUs;
  std::function<void(std::int64_t us)> SleepUs;
};

// Steady clock and real sleep.
PortClock RealClock();

class SimulatedPort : public SerialPort {
 public:
  // The instrument answers on COM com (1 to 16); every other number has no port.
  SimulatedPort(Instrument& instrument, PortClock clock, Pace pace, int com = 1);
  ~SimulatedPort() override;

  void SetPort(int com) override;
  void SetLine(const LineSettings& settings) override;
  bool Open() override;
  void Close() override;
  bool IsOpen() const override;
  void Write(std::span<const std::uint8_t> bytes) override;
  std::size_t InBufferCount() override;
  std::size_t Input(std::vector<std::uint8_t>& out) override;
  bool WaitForInput(int ms) override;

  // All bytes the program has written since the last call, for tests on the wire. Nothing is kept
  // before the first call: a program in use never calls.
  std::vector<std::uint8_t> TakeWritten();
  // The line settings last put in force.
  const LineSettings& Line() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace qk::sim
