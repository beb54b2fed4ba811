// SPDX-License-Identifier: MIT
// "Restore EEPROM": writes a back-up to the instrument. This is the only place in the program that
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
  // While the EEPROM is being written, shows a message and keeps the window open.
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
