// SPDX-License-Identifier: MIT
// Injected faults in the bytes that the instrument sends and in their content. Each is
// deterministic and stays active until "fault none", except a fault at a single byte.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qk::sim {

// A fault in one byte or a run of bytes. At is the number of bytes sent since the fault was set,
// from 0; with InSweep, only sweep bytes count, from the start of the next sweep.
struct ByteFault {
  enum class Kind { Drop, Add, Double, Garble };
  Kind What = Kind::Drop;
  std::uint64_t At = 0;
  std::uint64_t Count = 1;
  bool InSweep = false;
  std::uint64_t Seen = 0;  // bytes counted so far
  bool Armed = true;       // with InSweep: a sweep has started
};

// Faults in the analog hardware: each one alone makes one verdict of the program's self-test fail.
// A fault with a frequency acts within 1 MHz of it, one without acts at all frequencies.
struct AnalogFaults {
  struct NoLock {
    std::optional<double> Hz;
  };
  struct Level {
    int Code = 0;   // source level code, 0 to 31
    double Db = 0;  // deviation from the factory calibration
  };
  struct Gain {
    double Db = 0;
    std::optional<double> Hz;
  };
  std::optional<NoLock> Lock;
  std::optional<Level> LevelStep;
  std::optional<Gain> Reference, Test;  // gain of the reference and of the test channels
  std::optional<Gain> Crosstalk;        // port 1 to port 2's receiver, in addition to the device
};

struct Faults {
  std::optional<std::uint64_t> CutAfter;    // nothing is sent after this many bytes; 0: silence
  std::uint64_t CutSeen = 0;                // bytes sent since the cut was set
  std::optional<std::uint64_t> StallAfter;  // every sweep stops after this many bytes
  std::int64_t LateUs = 0;                  // delays every reply, and the first point of a sweep
  int ShortBy = 0;                          // bytes missing from EEPROM replies
  std::optional<std::string> Model;         // the reply to "*IDN?"
  std::optional<std::string> SerialNumber;  // the contents of the EEPROM field
  bool Unplugged = false;
  AnalogFaults Analog;
  std::vector<ByteFault> Bytes;

  std::string Describe() const;
};

}  // namespace qk::sim
