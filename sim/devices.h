// SPDX-License-Identifier: MIT
// Two-ports that can stand between the ports of the simulated instrument.
#pragma once

#include <memory>
#include <string>

#include "sim/touchstone.h"
#include "sim/two_port.h"

namespace qk::sim {

class Device {
 public:
  virtual ~Device() = default;
  // Small-signal S-parameters at f hertz.
  virtual TwoPort At(double f) const = 0;
  // With a wave of inputDbm running into port 1.
  virtual TwoPort Driven(double f, double inputDbm) const {
    static_cast<void>(inputDbm);
    return At(f);
  }
  virtual bool DependsOnDrive() const { return false; }
  virtual bool HasTwoPorts() const { return true; }
  virtual std::string Describe() const = 0;
};

using DevicePtr = std::shared_ptr<const Device>;

struct AmplifierSettings {
  double GainDb = 10;
  double OutputP1Dbm = 3;     // output power at 1 dB compression
  double AmToPmDegPerDb = 2;  // how fast the phase falls with the drive at the 1 dB point
  // How hard it compresses: 1 is a soft tube, 2 a usual transistor, from 4 on a limiter.
  double Knee = 2;
  // Matched attenuators before and behind it; what is told above is the amplifier's own.
  double InputAttenuationDb = 0, OutputAttenuationDb = 0;
  bool Matched = false;  // no reflection at either port
};

DevicePtr MakeThrough();
DevicePtr MakeAttenuator(double db);  // matched
// A matched air line with a small loss that grows with the root of the frequency.
DevicePtr MakeLine(double mm);
// Chebyshev band-pass, five resonators of finite Q, 0.1 dB ripple: 900 to 1100 MHz. Before it is
// aligned both edges are offMHz away.
DevicePtr MakeFilter(double offMHz = 0);
// A one-port: a quarter-wave antenna over a ground plane, as a series resonator at 868 MHz with
// 38 ohms and a Q of 8.
DevicePtr MakeAntenna();
DevicePtr MakeAmplifier(const AmplifierSettings& settings);
DevicePtr MakeMeasured(TouchstoneData data, std::string name);

}  // namespace qk::sim
