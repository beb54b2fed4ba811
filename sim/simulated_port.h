// SPDX-License-Identifier: MIT
// The simulated instrument behind the program's port interface, in the same process: for tests with
// a fake clock, and for the demonstration.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "link/serial_port.h"
#include "sim/instrument.h"

namespace qk::sim {

// The port's time source, in microseconds. Sleep may return early only if a byte may have arrived.
struct PortClock {
  std::function<std::int64_t()> NowUs;
  std::function<void(std::int64_t us)> SleepUs;
};

// Steady clock and real sleep.
PortClock RealClock();

class SimulatedPort : public SerialPort {
 public:
  // The instrument answers on COM com (1 to 16); there is no port with any other number.
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

  // All bytes that the program has written since the last call, for tests. Nothing is recorded
  // before the first call, so the program itself has no overhead.
  std::vector<std::uint8_t> TakeWritten();
  // The line settings applied last.
  const LineSettings& Line() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace qk::sim
