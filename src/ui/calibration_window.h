// "Calibration": sweep entry at the left, kind and kits at the right, the standards and the
// progress below.
#pragma once

#include "ui/form_window.h"

class QGroupBox;
class QLabel;

namespace qk {

class CalibrationWindow : public DialogWindow {
 public:
  CalibrationWindow(Form& form, QtHost& host, QWidget* mainWindow);

 private:
  QGroupBox* SweepFrame();
  // "MHz" or "kHz" beside a frequency: as the unit stands chosen, or, beside a computed value, as
  // it stood when the value was computed.
  QLabel* UnitLabel(const char* field, bool computed);
  QGroupBox* KindFrame();
  QGroupBox* KitFrame();
  QGroupBox* ReflectionFrame();
  QGroupBox* TransmissionFrame();
};

}  // namespace qk
