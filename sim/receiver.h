// SPDX-License-Identifier: MIT
// The analog side: converts a synthesiser record and the connected device to the converter's 24-bit
// sums, with dc offsets, temperature, noise and overload.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
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

// The position of the source. Port1Alone is the S11 path: the switch of port 2 is then connected to
// a precision termination instead of the receiver, so that a reflection is that of the device with
// its far end matched, which a one-port calibration assumes.
enum class Drive { Port1, Port2, Port1Alone };
enum class Channel { Reference, Test };

// Drift of the test set: change of its ratios in decibels per hour, and per degree away from 25
// degrees Celsius. The phase changes with it, 6.6 degrees per decibel.
struct Drift {
  double DbPerHour = 0, DbPerDegC = 0;
};

// A change of all ratios by a number of decibels after a number of sweeps.
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
  // What is set besides connection, noise and faults, in the words of the bench: "temperature 30;
  // drift 0.1 0.02; connector loose 0.5; step 1 after 3; ". Without what is as at the start.
  std::string DescribeSettings() const;
  void SetNoise(bool on) { noiseOn_ = on; }
  bool NoiseOn() const { return noiseOn_; }
  void SetSeed(std::uint64_t seed) { noise_.Seed(seed); }
  void SetFaults(const AnalogFaults& faults);
  // A fixed temperature (degrees Celsius), or empty for the warm-up.
  void SetTemperature(std::optional<double> degC) { fixedDegC_ = degC; }
  // Fixed offsets, or empty for drifting ones.
  void SetOffsets(std::optional<DcOffsets> offsets) { fixedOffsets_ = offsets; }

  void SetDrift(Drift drift) { drift_ = drift; }
  // A loose connector at port 1: a different random change of the ratios in each sweep, of about
  // this many decibels.
  void SetLooseness(double db) { looseDb_ = db; }
  // Sets the step; sweeps are counted from now on.
  void SetStep(Step step) {
    step_ = step;
    sweepsSinceStep_ = 0;
  }

  // ---- the hardware's view --------------------------------------------------------------------
  // Warm-up from 25 towards 32 degrees; seconds since power-on.
  double TemperatureDegC(double seconds) const;
  DcOffsets OffsetsAt(double seconds) const;
  // Sets the time of the readings.
  void SetMoment(double seconds);
  // Starts a sweep.
  void BeginSweep();

  bool Locks(const Record& record) const;
  // slot: an index into the cache, the index of the point; repeated readings of one record in the
  // same slot are fast.
  SideVoltages Voltages(const Record& record, std::size_t slot, Drive drive);
  // Voltages with unlocked synthesisers: new random noise at every call.
  SideVoltages UnlockedVoltages();

  // The sum of readings conversions of volts at a channel: 16 bits each, clipped, 3 bytes, high
  // byte first.
  void Convert(double volts, Channel channel, int readings, std::uint8_t* out);
  // 10-bit temperature count.
  int TemperatureCount() const;

  static constexpr std::size_t kSlots = 1490;

 private:
  struct Cached {
    bool Valid = false;
    bool Locked = false;
    Record Of{};
    std::array<SideVoltages, 3> Side;  // indexed by Drive
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
  double gain_ = 1;  // gain of the receivers at this temperature
  Drift drift_;
  double looseDb_ = 0;
  Step step_;
  long long sweepsSinceStep_ = 0;
  Noise play_;           // for the loose connector
  Complex drifted_ = 1;  // factor for every ratio from drift at this time
  Complex moved_ = 1;    // factor from connector and step in this sweep
  DcOffsets offsets_;
  std::vector<Cached> cache_;
};

}  // namespace qk::sim
