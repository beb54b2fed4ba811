// SPDX-License-Identifier: MIT
// The instrument's end of the line: queues replies, serialises them at the line's speed, and
// applies faults to the sent bytes.
#pragma once

#include <cstdint>
#include <vector>

#include "sim/faults.h"
#include "sim/instrument.h"

namespace qk::sim {

// Duration in nanoseconds of n bytes of ten bits at 115200 baud.
inline std::int64_t LineNs(std::uint64_t n) {
  return static_cast<std::int64_t>(n * 10'000'000'000u / 115'200u);
}

enum class Sending { Reply, SweepBegin, SweepRest };

class Transmitter {
 public:
  explicit Transmitter(Faults& faults) : faults_(faults) {}

  void SetPace(Pace pace) { pace_ = pace; }
  Pace pace() const { return pace_; }

  // Queues bytes that are ready at readyUs. together: the reply must be delivered in one piece,
  // without a gap between its bytes.
  void Send(const std::uint8_t* bytes, std::size_t count, std::int64_t readyUs, Sending what,
            bool together = false);
  // The time at which all queued bytes will have been sent.
  std::int64_t FreeNs() const { return freeNs_; }
  std::vector<Outgoing> Take();
  std::uint64_t BytesSent() const { return sent_; }

 private:
  void PutByte(std::uint8_t byte, bool sweep);
  void Put(std::uint8_t byte);

  Faults& faults_;
  Pace pace_ = Pace::Unpaced;
  std::int64_t freeNs_ = 0;
  std::uint64_t sent_ = 0;
  std::uint64_t sweepBytes_ = 0;
  std::vector<Outgoing> queue_;
};

}  // namespace qk::sim
