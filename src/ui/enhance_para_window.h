// "Enhancement Set Up": averages, smoothing, dwell, level, and the reference plane.
#pragma once

#include "ui/form_window.h"

class QGroupBox;

namespace qk {

class EnhanceParaWindow : public DialogWindow {
 public:
  EnhanceParaWindow(Form& form, QtHost& host, QWidget* mainWindow);

 private:
  QGroupBox* ValuesFrame();
  QGroupBox* PlaneFrame();
};

}  // namespace qk
