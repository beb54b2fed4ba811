// SPDX-License-Identifier: MIT
// Loads the EEPROM as start-up does.
#pragma once

#include "link/eeprom.h"
#include "utilities/receiver_scale.h"

namespace qk::test {

inline void LoadEeprom(Rig& rig, const Progress& progress = {}) {
  ReceiverScaleFile scale(rig.session.InstallFolder);
  LoadEepromData(rig, scale, progress);
}

}  // namespace qk::test
