// SPDX-License-Identifier: MIT
// The program on a desktop: one window per form, created when it is first opened, connected to the
// program.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "forms/program.h"
#include "ui/docks.h"
#include "ui/form_window.h"
#include "ui/held_keys.h"
#include "ui/help_viewer.h"
#include "ui/main_window.h"
#include "ui/qt_canvas.h"

namespace qk {

class Desktop {
 public:
  // Creates the main window; the others are created on demand. All arguments must outlive the
  // desktop.
  Desktop(Program& program, QtHost& host, QtPicture& picture);
  ~Desktop();

  MainWindow& Main() { return *main_; }
  // On a dark desktop, selects the dark graph colours unless the user has chosen colours.
  void MatchDesktopColours();
  Docks& Panel() { return *docks_; }
  HelpViewer& Help() { return *help_; }

 private:
  FormWindow* Make(std::string_view form);
  void AddWindowsMenu();

  Program& program_;
  QtHost& host_;
  HeldKeys heldKeys_;
  std::unique_ptr<MainWindow> main_;
  std::vector<std::unique_ptr<FormWindow>> windows_;
  std::unique_ptr<Docks> docks_;
  std::unique_ptr<HelpViewer> help_;
};

}  // namespace qk
