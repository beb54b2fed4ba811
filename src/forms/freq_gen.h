// SPDX-License-Identifier: MIT
// "Signal Generator Mode": the instrument as a single-frequency source on port 1.
#pragma once

#include "core/form.h"
#include "link/instrument_link.h"

namespace qk {

class FreqGen : public Form {
 public:
  explicit FreqGen(Rig& rig);

  void OnOpen() override;
  // START has switched it off.
  void OnSessionChanged() override;
  bool OnCloseBox() override;

 private:
  void Apply();
  void Exit();

  Rig& rig_;
  Handle frequency_, level_;
  Handle state_;  // the values applied last, whatever has been typed since
};

}  // namespace qk
