// SPDX-License-Identifier: MIT
// The factory calibration of the level control: the level for a code at a frequency, and the
// absolute gain of the receiver. Both the EEPROM tables and the signal are derived from it.
#pragma once

namespace qk::sim {

// Level at port 1 or 2 in dBm for code 0 to 31: 1 dB per code, code 27 near 0 dBm.
double SourceLevelDbm(int code, double f);

// Drive of the receiver's mixers in dBm for code 0 to 31; the nominal value is 13.
double ReceiverDriveDbm(int code, double f);

// Test voltage in dB relative to 1 volt for a wave of 0 dBm into a port, at the calibration
// temperature: 0 at 3 MHz, -2.3 at 1 GHz, -6.5 at 3 GHz.
double ReceiverGainDb(double f);

// The receivers lose 0.05 dB per degree above this temperature, in degrees Celsius.
inline constexpr double kReceiverCalDegC = 28;
inline constexpr double kReceiverDbPerDegC = 0.05;

}  // namespace qk::sim
