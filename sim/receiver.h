// SPDX-License-Identifier: MIT
// The analog side: from a synthesiser record and what is connected to the converter's 24-bit sums,
// with dc offsets, temperature, noise and overload.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "sim/connection.h"
#include "sim/faults.h"
#include "sim/front_end.h"
#include "sim/noise.h"
#include "sim/synthesiser.h"

namespace qk::sim {

// Standard deviation of one conversion's noise, in counts.
inline constexpr double kNoiseCounts = 0.3;

// Voltages of one drive side, before offsets and noise.
struct SideVoltages {
  Complex Reference, Port1, Port2;
};

// Offsets of the reference channel and of the test channels in volts.
struct DcOffsets {
  double Reference = 0, Test = 0;
};

// Where the source stands. Port1Alone is the S11 path: there the switch of port 2 rests on a
// precision termination in place of the receiver, so that a reflection is that of the device with
// its far end matched, and a one-port calibration finds it.
enum class Drive { Port1, Port2, Port1Alone };
enum class Channel { Reference, Test };

// How the test set changes: decibels of its ratios an hour, and a degree away from 25 degrees
// Celsius. The phase turns with it, 6.6 degrees a decibel.
struct Drift {
  double DbPerHour = 0, DbPerDegC = 0;
};

// A change of all ratios by so many decibels behind a number of sweeps.
struct Step {
  double Db = 0;
  long long AfterSweeps = 0;
};

class Receiver {
 public:
  Receiver(std::uint64_t seed, bool noise);

  // ---- the bench -----------------------------------------------------------------------------
  void Connect(Connection connection);
  const Connection& Connected() const { return connection_; }
  void SetNoise(bool on) { noiseOn_ = on; }
  bool NoiseOn() const { return noiseOn_; }
  void SetSeed(std::uint64_t seed) { noise_.Seed(seed); }
  void SetFaults(const AnalogFaults& faults);
  // A temperature that holds (degrees Celsius), or the warm-up.
  void SetTemperature(std::optional<double> degC) { fixedDegC_ = degC; }
  // Offsets that hold, or the drifting ones.
  void SetOffsets(std::optional<DcOffsets> offsets) { fixedOffsets_ = offsets; }

  void SetDrift(Drift drift) { drift_ = drift; }
  // A loose connector at port 1: at each sweep another random change of the ratios, of about so
  // many decibels.
  void SetLooseness(double db) { looseDb_ = db; }
  // Counts the sweeps from now on.
  void SetStep(Step step) {
    step_ = step;
    sweepsSinceStep_ = 0;
  }

  // ---- what the hardware sees ----------------------------------------------------------------
  // Warm-up from 25 towards 32 degrees; seconds since power-on.
  double TemperatureDegC(double seconds) const;
  DcOffsets OffsetsAt(double seconds) const;
  // Sets the moment that readings are taken at.
  void SetMoment(double seconds);
  // A sweep begins.
  void BeginSweep();

  bool Locks(const Record& record) const;
  // slot: a place in the cache, the point's index; readings of one record in one place are fast.
  SideVoltages Voltages(const Record& record, std::size_t slot, Drive drive);
  // Voltages of synthesisers out of lock: noise of their own at every call.
  SideVoltages UnlockedVoltages();

  // Sum of readings conversions of volts at a channel: 16 bits each, clipped, 3 bytes high first.
  void Convert(double volts, Channel channel, int readings, std::uint8_t* out);
  // 10-bit temperature count.
  int TemperatureCount() const;

  static constexpr std::size_t kSlots = 1490;

 private:
  struct Cached {
    bool Valid = false;
    bool Locked = false;
    Record Of{};
    std::array<SideVoltages, 3> Side;  // by Drive
  };
  Cached& Look(const Record& record, std::size_t slot);
  SideVoltages Compute(const Decoded& decoded, Drive drive) const;
  double LevelDbm(const Decoded& decoded) const;
  FrontEndTerms TermsAt(double f) const;
  bool LocksAt(const Decoded& decoded) const;

  Connection connection_;
  Noise noise_;
  bool noiseOn_;
  AnalogFaults faults_;
  std::optional<double> fixedDegC_;
  std::optional<DcOffsets> fixedOffsets_;
  double degC_ = 0;
  double gain_ = 1;  // of the receivers at this temperature
  Drift drift_;
  double looseDb_ = 0;
  Step step_;
  long long sweepsSinceStep_ = 0;
  Noise play_;           // of the loose connector
  Complex drifted_ = 1;  // what drift makes of every ratio at this moment
  Complex moved_ = 1;    // what connector and step make of it in this sweep
  DcOffsets offsets_;
  std::vector<Cached> cache_;
};

}  // namespace qk::sim
