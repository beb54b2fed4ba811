// SPDX-License-Identifier: MIT
// A window whose layout follows from its form: the sections, and the controls in each.
#pragma once

#include "ui/form_window.h"

namespace qk {

class PlainWindow : public DialogWindow {
 public:
  PlainWindow(Form& form, QtHost& host, QWidget* mainWindow);

 private:
  void SetTabOrder();
};

}  // namespace qk
