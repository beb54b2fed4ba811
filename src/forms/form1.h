// The main window: START and STOP, the switches, the menus, and the checks that each performs
// before it opens another window.
#pragma once

#include "control/controller.h"
#include "core/form.h"

namespace qk {

class Form1 : public Form {
 public:
  explicit Form1(Controller& controller);

  void OnOpen() override { OnRefresh(); }
  // Switches from the session.
  void OnRefresh() override;
  void OnSessionChanged() override { ShowSwitches(); }
  // The title bar ends the process at once; nothing is saved.
  bool OnCloseBox() override;

 private:
  void ShowSwitches();
  void OpenCalibration();
  void OpenDisplay();
  void SwitchDisplay();
  void SwitchSmoothing();
  void About();

  Controller& controller_;
  Session& session_;
  Host& host_;
  OptionGroup displayed_;
};

}  // namespace qk
