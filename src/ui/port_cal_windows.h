// The modal windows of the non-insertable calibration: one standard on one port at a time, and
// the through standard.
#pragma once

#include "ui/form_window.h"

namespace qk {

// "OpenCal", "ShortCal", "MatchCal": two buttons and "Exit".
class PortCalWindow : public DialogWindow {
 public:
  PortCalWindow(Form& form, QtHost& host, QWidget* mainWindow);
};

// "ThruCalForm": "Measure" and "Exit".
class ThruCalWindow : public DialogWindow {
 public:
  ThruCalWindow(Form& form, QtHost& host, QWidget* mainWindow);
};

}  // namespace qk
