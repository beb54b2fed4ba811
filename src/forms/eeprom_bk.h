// SPDX-License-Identifier: MIT
// "EEPROM Back Up": saves the instrument's EEPROM to a text file.
#pragma once

#include "core/form.h"
#include "link/instrument_link.h"

namespace qk {

class EepromBk : public Form {
 public:
  explicit EepromBk(Rig& rig);

  void OnOpen() override { progress_.Percent(0); }
  // Ends a back-up at once.
  bool OnCloseBox() override;

 private:
  void BackUp();
  void ReadAndWrite(const std::string& path);

  Rig& rig_;
  Handle start_, progress_;
  bool ended_ = false;
};

}  // namespace qk
