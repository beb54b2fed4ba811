// SPDX-License-Identifier: MIT
// The main window: START and STOP, the switches, the menus, and the checks before another window is
// opened.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>

#include "control/controller.h"
#include "control/graph_verbs.h"
#include "core/form.h"
#include "files/recent_files.h"

namespace qk {

class Form1 : public Form {
 public:
  // Menu actions that do not open a window of the program.
  struct FileActions {
    std::function<void()> LoadCal, SaveCal, PrintGraphics, SaveGraphics, CopyPicture;
  };
  // version: the last line of About, after the two fixed ones; empty: none.
  Form1(Controller& controller, FileActions files, std::string version = {});

  void OnOpen() override { OnSessionChanged(); }
  // Switches and their tool tips.
  void OnSessionChanged() override;
  // The close button of the title bar ends the process at once; nothing is saved.
  bool OnCloseBox() override;

 private:
  struct Opener;
  void AddFileMenu(FileActions files);
  void AddToolsMenu();
  void AddUtilitiesAndHelp();
  void AddViewMenu();
  void AddMeasurement();
  void AddSetUp();
  void AddSwitches();
  void AddOpener(const char* menu, const Opener& opener);
  void Open(const Opener& opener);
  // False, after a message, if the window must not be opened now.
  bool MayOpen(const Opener& opener);

  void ShowView();
  void ShowProgress();
  void AddPreset(const char* name, const char* caption, DisplayPreset preset);
  void OpenDisplay();
  void SwitchDisplay();
  void SwitchSmoothing();
  void SwitchAveraging();
  void ShowTips();
  void OnWorstHint(void (*verb)(Controller&, HintKind));
  void ShowRecent();
  void ShowUndo();
  std::string PlanesTip() const;
  void ViewLog();
  void About();

  Controller& controller_;
  Session& session_;
  Host& host_;
  Handle start_, single_, enhancement_, hint_, silenceHint_, axisNumbers_, remarks_, uncertainty_,
      spread_, hintsOn_, progress_, left_, undo_, notice_;
  OptionGroup display_, smoothing_, averaging_;
  std::array<Handle, RecentFiles::kMost> recent_;
  std::string version_;
};

}  // namespace qk
