// SPDX-License-Identifier: MIT
// Reads the instrument's EEPROM at start-up: level tables, receiver data and the dc correction
// byte. Every failure shows a message and ends the load at that point.
#pragma once

#include "core/progress.h"
#include "link/instrument_link.h"

namespace qk {

// Receives the receiver data in stored order during the load.
class ReceiverDataSink {
 public:
  virtual ~ReceiverDataSink() = default;
  // The received magnitude of a known signal, and the level of that signal.
  virtual void Entry(double millivolts, double dbm) = 0;
  // The byte after the last entry: the temperature of the factory calibration in tenths of a degree
  // above 15 degrees Celsius. It is the last byte.
  virtual void LastByte(int byte) = 0;
};

// 228 exchanges: fills both level tables, passes the receiver data to the sink, sets
// RxDcCorrection.
void LoadEepromData(Rig& rig, ReceiverDataSink& receiverData, const Progress& progress);

// Reads the identity at start-up: the serial number from the EEPROM (0 if the instrument does not
// answer or the text does not start with digits) and the firmware version ("0.0" on failure).
void ReadIdentity(Rig& rig);

}  // namespace qk
