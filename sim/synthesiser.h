// SPDX-License-Identifier: MIT
// The effect of a 22-byte synthesiser record on the hardware: two DDS references drive four
// phase-locked loops. The source is loop A or the beat of B and A; the local oscillator is loop C
// or the beat of D and C.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace qk::sim {

inline constexpr std::size_t kRecordSize = 22;
using Record = std::array<std::uint8_t, kRecordSize>;

// One loop's decoded 24-bit latch word.
struct Loop {
  int A = 0;              // swallow counter
  int B = 0;              // main counter
  int N = 0;              // the divider ratio: 32 B + A
  bool HighGain = false;  // bit 21
  bool WellFormed =
      false;      // latch address 01, no undefined bits set, counters valid for a prescaler of 32
  double Hz = 0;  // lock frequency: N times the reference divided by 280
};

struct Decoded {
  double Reference1Hz = 0;  // drives loops A and B
  double Reference2Hz = 0;  // drives loops C and D
  Loop A, B, C, D;
  int LevelCode = 0;     // source attenuator, 0 to 31
  int ReceiverCode = 0;  // local oscillator attenuator, 0 to 31
  double SourceHz = 0;   // 0 if the record is not a valid pair
  double LoHz = 0;
  bool Locked = false;
  std::string_view Fault;  // why it is not locked; empty if it is
};

// Pure function; record22 points to 22 bytes. Locked requires: references within the DDS filters,
// loops within their ranges, gain bits that match each loop's frequency (in the direct band loop
// D's bit follows loop B's frequency; intentional, the table is built so), equal band bits in both
// control bytes that match the source frequency, parked loops B and D near 3.7 or 3.6 GHz in the
// direct band, and a local oscillator 950 kHz above the source.
Decoded DecodeRecord(const std::uint8_t* record22);

}  // namespace qk::sim
