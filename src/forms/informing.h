// Windows that only inform: what the program is busy with while the user waits.
#pragma once

#include "core/form.h"

namespace qk {

// A window with one line of text. It has no control to act on, and its close box does nothing: the
// program hides it when the work is done.
class InformingForm : public Form {
 public:
  InformingForm(std::string name, std::string caption, std::string text);
  bool OnCloseBox() override { return false; }
};

// The window of the EEPROM load, with its progress bar.
class EepromDataForm : public InformingForm {
 public:
  EepromDataForm();
  void OnOpen() override;
};

// Updating, SweepStopping and ShuttingDown, told by their texts.
class UpdatingForm : public InformingForm {
 public:
  UpdatingForm() : InformingForm("Updating", "Enhancement Update", "Updating at end of sweep") {}
};
class SweepStoppingForm : public InformingForm {
 public:
  SweepStoppingForm()
      : InformingForm("SweepStopping", "Stop Measurement",
                      "Stopping the current sweep - please wait") {}
};
class ShuttingDownForm : public InformingForm {
 public:
  ShuttingDownForm() : InformingForm("ShuttingDown", "Closing", "Shutting Down. Please Wait.") {}
};

}  // namespace qk
