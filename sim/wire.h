// SPDX-License-Identifier: MIT
// The line between program and instrument: bytes take their transmission time at 115200 baud in
// both directions, or no time if the instrument is unpaced.
#pragma once

#include <cstdint>
#include <deque>
#include <span>
#include <vector>

#include "sim/instrument.h"

namespace qk::sim {

class Wire {
 public:
  explicit Wire(Instrument& instrument) : instrument_(instrument) {}

  // Puts bytes from the program on the line now.
  void Write(std::span<const std::uint8_t> bytes, std::int64_t nowUs);
  // Processes all events up to nowUs, in order of time.
  void Advance(std::int64_t nowUs);
  // Bytes that have arrived at the program's end at the last Advance.
  std::size_t Waiting() const { return arrived_.size(); }
  std::size_t Take(std::vector<std::uint8_t>& out);
  // The next time after nowUs at which a byte may arrive at either end; Instrument::kNever if the
  // line is idle forever.
  std::int64_t NextUs(std::int64_t nowUs) const;
  // Discards all bytes on the line and at its ends.
  void Clear();

 private:
  struct Batch {
    std::int64_t StartUs = 0;
    bool Paced = false;
    bool Together = false;
    std::vector<std::uint8_t> Bytes;
    std::size_t Taken = 0;

    // The time at which byte i has completely arrived.
    std::int64_t ArrivalUs(std::size_t i) const;
    // The same for the next byte not yet taken.
    std::int64_t NextUs() const;
    bool Done() const { return Taken == Bytes.size(); }
  };

  void Deliver(std::int64_t nowUs);
  void Collect(std::int64_t nowUs);
  void Arrive(std::int64_t nowUs);

  Instrument& instrument_;
  std::deque<Batch> toInstrument_, toProgram_;
  std::int64_t writeFreeUs_ = 0;
  std::vector<std::uint8_t> arrived_;
};

}  // namespace qk::sim
