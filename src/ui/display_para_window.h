// "Display Set Up": the settings of one channel, and which channels are displayed.
#pragma once

#include "ui/form_window.h"

class QGroupBox;
class QLabel;

namespace qk {

class DisplayParaWindow : public DialogWindow {
 public:
  DisplayParaWindow(Form& form, QtHost& host, QWidget* mainWindow);

 private:
  QGroupBox* ChannelFrame();
  QGroupBox* AxisFrame();
  // The units chosen, beside a field.
  QLabel* UnitsLabel();
  QGroupBox* DisplayFrame();
};

}  // namespace qk
