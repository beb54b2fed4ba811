// SPDX-License-Identifier: MIT
// The load of the EEPROM as start-up runs it.
#pragma once

#include "link/eeprom.h"
#include "utilities/receiver_scale.h"

namespace qk::test {

inline void LoadEeprom(Rig& rig, const Progress& progress = {}) {
  ReceiverScaleFile scale(rig.session.InstallFolder);
  LoadEepromData(rig, scale, progress);
}

}  // namespace qk::test
