// "Calibration": sweep entry at the left, kind and kits at the right, the standards and the
// progress below.
#pragma once

#include "ui/form_window.h"

class QGroupBox;

namespace qk {

class CalibrationWindow : public DialogWindow {
 public:
  CalibrationWindow(Form& form, QtHost& host, QWidget* mainWindow);

 private:
  QGroupBox* SweepFrame();
  QGroupBox* KindFrame();
  QGroupBox* KitFrame();
  QGroupBox* ReflectionFrame();
  QGroupBox* TransmissionFrame();
};

}  // namespace qk
