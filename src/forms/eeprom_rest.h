// SPDX-License-Identifier: MIT
// "Restore EEPROM": a back-up written into the instrument, the only place of the program that
// writes its EEPROM.
#pragma once

#include <optional>

#include "core/form.h"
#include "link/instrument_link.h"
#include "utilities/eeprom_copy.h"

namespace qk {

class EepromRest : public Form {
 public:
  explicit EepromRest(Rig& rig);

  void OnOpen() override { progress_.Percent(0); }
  // Told, and the window stays, while the EEPROM is being written.
  bool OnCloseBox() override;
  bool MayBeCutOff() const override { return !writing_; }

 private:
  void Restore();
  void Write(const EepromImage& image);

  Rig& rig_;
  Handle start_, progress_, state_;
  bool writing_ = false;
  std::optional<EepromWriting> work_;  // while writing_
};

}  // namespace qk
