// Windows that only inform while the user waits: one line of text, and a bar where there is
// progress to show. They have no close control.
#pragma once

#include "ui/form_window.h"

namespace qk {

class InformingWindow : public DialogWindow {
 public:
  InformingWindow(Form& form, QtHost& host, QWidget* mainWindow);
};

}  // namespace qk
