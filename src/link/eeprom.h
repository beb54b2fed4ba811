// The instrument's EEPROM as the program reads it at start-up: level tables, receiver data and the
// dc correction byte. Every failure is told and leaves the load at that point.
#pragma once

#include "core/progress.h"
#include "link/instrument_link.h"

namespace qk {

// 228 exchanges: fills both level tables, writes RXCal.dat into the install folder (a failure to
// open it does not stop the load), sets RxDcCorrection.
void LoadEepromData(Rig& rig, const Progress& progress);

// The identity at start-up: serial number from the EEPROM (0 when the instrument does not answer
// or the text does not begin with digits) and the firmware version ("0.0" on failure).
void ReadIdentity(Rig& rig);

}  // namespace qk
