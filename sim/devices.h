// SPDX-License-Identifier: MIT
// Two-port devices that can be connected between the ports of the simulated instrument.
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
  // S-parameters with a wave of inputDbm incident on port 1.
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
  double AmToPmDegPerDb = 2;  // decrease of the phase with the drive level at the 1 dB point
  // Abruptness of the compression: 1 is a soft tube, 2 a typical transistor, from 4 on a limiter.
  double Knee = 2;
  // Matched attenuators before and after it; the values above are those of the amplifier alone.
  double InputAttenuationDb = 0, OutputAttenuationDb = 0;
  bool Matched = false;  // no reflection at either port
};

DevicePtr MakeThrough();
DevicePtr MakeAttenuator(double db);  // matched
// A matched air line with a small loss that increases with the square root of the frequency.
DevicePtr MakeLine(double mm);
// Chebyshev band-pass, five resonators of finite Q, 0.1 dB ripple: 900 to 1100 MHz. Before
// alignment both edges are shifted by offMHz.
DevicePtr MakeFilter(double offMHz = 0);
// A one-port: a quarter-wave antenna over a ground plane, modelled as a series resonator at 868 MHz
// with 38 ohms and a Q of 8.
DevicePtr MakeAntenna();
DevicePtr MakeAmplifier(const AmplifierSettings& settings);
DevicePtr MakeMeasured(TouchstoneData data, std::string name);

}  // namespace qk::sim
