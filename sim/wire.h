// SPDX-License-Identifier: MIT
// The line between program and instrument: bytes take their time in both directions at 115200
// baud, or none when the instrument is unpaced.
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

  // Bytes from the program, put on the line now.
  void Write(std::span<const std::uint8_t> bytes, std::int64_t nowUs);
  // Lets everything happen up to the moment, in the order of time.
  void Advance(std::int64_t nowUs);
  // Bytes that have arrived at the program's end by the last Advance.
  std::size_t Waiting() const { return arrived_.size(); }
  std::size_t Take(std::vector<std::uint8_t>& out);
  // The next moment after nowUs at which a byte may arrive somewhere; Instrument::kNever when the
  // line is dead.
  std::int64_t NextUs(std::int64_t nowUs) const;
  // Forgets all bytes on the line and at its ends.
  void Clear();

 private:
  struct Batch {
    std::int64_t StartUs = 0;
    bool Paced = false;
    bool Together = false;
    std::vector<std::uint8_t> Bytes;
    std::size_t Taken = 0;

    // When byte i has come whole.
    std::int64_t ArrivalUs(std::size_t i) const;
    // Of the next one not yet taken.
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
