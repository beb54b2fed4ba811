// SPDX-License-Identifier: MIT
// Faults on request: what goes wrong with the bytes that the instrument sends, and with what it
// says. Each is deterministic and stays until "fault none", except a fault at one byte.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qk::sim {

// One byte or a run of bytes that goes wrong. At counts the bytes sent since the fault was set,
// from 0; with InSweep only the bytes of sweeps, from the begin of the next one.
struct ByteFault {
  enum class Kind { Drop, Add, Double, Garble };
  Kind What = Kind::Drop;
  std::uint64_t At = 0;
  std::uint64_t Count = 1;
  bool InSweep = false;
  std::uint64_t Seen = 0;  // bytes counted so far
  bool Armed = true;       // with InSweep: a sweep has begun
};

// What goes wrong behind the converters: each alone makes one verdict of the program's self-test
// fail. A fault at a frequency strikes within 1 MHz of it, one without strikes everywhere.
struct AnalogFaults {
  struct NoLock {
    std::optional<double> Hz;
  };
  struct Level {
    int Code = 0;   // source level code, 0 to 31
    double Db = 0;  // what it gives beyond the factory's trim
  };
  struct Gain {
    double Db = 0;
    std::optional<double> Hz;
  };
  std::optional<NoLock> Lock;
  std::optional<Level> LevelStep;
  std::optional<Gain> Reference, Test;  // gain of the reference and of the test channels
  std::optional<Gain> Crosstalk;        // port 1 into port 2's receiver, beside what is connected
};

struct Faults {
  std::optional<std::uint64_t> CutAfter;    // nothing is sent after so many bytes; 0: silence
  std::uint64_t CutSeen = 0;                // bytes sent since the cut was set
  std::optional<std::uint64_t> StallAfter;  // every sweep stops after so many bytes
  std::int64_t LateUs = 0;                  // every reply, and the first point of a sweep
  int ShortBy = 0;                          // bytes that EEPROM replies lack
  std::optional<std::string> Model;         // what "*IDN?" says
  std::optional<std::string> SerialNumber;  // what the EEPROM's field says
  bool Unplugged = false;
  AnalogFaults Analog;
  std::vector<ByteFault> Bytes;

  std::string Describe() const;
};

}  // namespace qk::sim
