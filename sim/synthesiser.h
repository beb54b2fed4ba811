// SPDX-License-Identifier: MIT
// What a 22-byte synthesiser record makes the hardware do: two DDS references drive four
// phase-locked loops, the source is loop A or the beat of B and A, the local oscillator is loop C
// or the beat of D and C.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace qk::sim {

inline constexpr std::size_t kRecordSize = 22;
using Record = std::array<std::uint8_t, kRecordSize>;

// One loop's 24-bit latch word, taken apart.
struct Loop {
  int A = 0;              // swallow counter
  int B = 0;              // main counter
  int N = 0;              // the divider that the counters make: 32 B + A
  bool HighGain = false;  // bit 21
  bool WellFormed =
      false;      // latch address 01, no stray bits, counters that a prescaler of 32 can do
  double Hz = 0;  // where the loop locks: N times the reference over 280
};

struct Decoded {
  double Reference1Hz = 0;  // drives loops A and B
  double Reference2Hz = 0;  // drives loops C and D
  Loop A, B, C, D;
  int LevelCode = 0;     // source attenuator, 0 to 31
  int ReceiverCode = 0;  // local oscillator attenuator, 0 to 31
  double SourceHz = 0;   // 0 when the record is no sane pair
  double LoHz = 0;
  bool Locked = false;
  std::string_view Fault;  // why it is not locked; empty when it is
};

// Pure; record22 points at 22 bytes. Locked asks for: references that the DDS filters pass, loops
// inside their ranges, gain bits that fit each loop's frequency (in the direct band loop D's bit
// goes by loop B's frequency: meant, the table is built so), equal band bits in both control bytes
// that fit the source frequency, parked loops B and D near 3.7 or 3.6 GHz in the direct band, and a
// local oscillator 950 kHz above the source.
Decoded DecodeRecord(const std::uint8_t* record22);

}  // namespace qk::sim
