// SPDX-License-Identifier: MIT
// "Hardware Information": the identification data from the EEPROM and the controller.
#pragma once

#include <string>

#include "core/form.h"
#include "link/instrument_link.h"

namespace qk {

class HardwareInfo : public Form {
 public:
  explicit HardwareInfo(Rig& rig);

  void OnOpen() override { Refresh(); }
  bool OnCloseBox() override { return !Busy(); }

 private:
  void Refresh();

  Rig& rig_;
  Handle text_, age_;
  std::string readAt_;  // time of the report; empty before the first
};

}  // namespace qk
