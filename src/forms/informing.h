// SPDX-License-Identifier: MIT
// Windows that only show information: what the program is doing while the user waits.
#pragma once

#include "core/form.h"

namespace qk {

// A window with one line of text, and a progress bar if there is progress to show. The user cannot
// act on it or close it: the program hides it when the work is done.
class InformingForm : public Form {
 public:
  InformingForm(std::string_view name, std::string caption, std::string text);
  bool OnCloseBox() override { return false; }
};

// The window of the EEPROM load, with its progress bar.
class EepromDataForm : public InformingForm {
 public:
  EepromDataForm();
  void OnOpen() override { bar_.Percent(0); }

 private:
  Handle bar_;
};

}  // namespace qk
