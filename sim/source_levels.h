// SPDX-License-Identifier: MIT
// The level control as the factory trimmed it: what a level code gives at a frequency, and the
// absolute gain of the receiver. The EEPROM tables are made from these, and so is the signal.
#pragma once

namespace qk::sim {

// Level at port 1 or 2 in dBm for code 0 to 31: 1 dB a code, code 27 near 0 dBm.
double SourceLevelDbm(int code, double f);

// Drive of the receiver's mixers in dBm for code 0 to 31; 13 is wanted.
double ReceiverDriveDbm(int code, double f);

// Test voltage in dB over 1 volt that a wave of 0 dBm into a port gives, at the calibration's
// temperature: 0 at 3 MHz, -2.3 at 1 GHz, -6.5 at 3 GHz.
double ReceiverGainDb(double f);

// The receivers lose 0.05 dB a degree over this temperature, in degrees Celsius.
inline constexpr double kReceiverCalDegC = 28;
inline constexpr double kReceiverDbPerDegC = 0.05;

}  // namespace qk::sim
