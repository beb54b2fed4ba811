// SPDX-License-Identifier: MIT
// The instrument's EEPROM as the program reads it at start-up: level tables, receiver data and the
// dc correction byte. Every failure is told and leaves the load at that point.
#pragma once

#include "core/progress.h"
#include "link/instrument_link.h"

namespace qk {

// Takes the receiver data in stored order, as the load reads it.
class ReceiverDataSink {
 public:
  virtual ~ReceiverDataSink() = default;
  // The received magnitude of a known signal, and the level of that signal.
  virtual void Entry(double millivolts, double dbm) = 0;
  // The byte after the last entry: the temperature of the factory's calibration in tenths of a
  // degree above 15 degrees Celsius. Nothing follows it.
  virtual void LastByte(int byte) = 0;
};

// 228 exchanges: fills both level tables, gives the receiver data to the sink, sets RxDcCorrection.
void LoadEepromData(Rig& rig, ReceiverDataSink& receiverData, const Progress& progress);

// The identity at start-up: serial number from the EEPROM (0 when the instrument does not answer
// or the text does not begin with digits) and the firmware version ("0.0" on failure).
void ReadIdentity(Rig& rig);

}  // namespace qk
