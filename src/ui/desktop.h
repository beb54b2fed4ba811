// The program on a desktop: a window for each form, tied to the program.
#pragma once

#include <memory>
#include <vector>

#include "forms/program.h"
#include "ui/form_window.h"
#include "ui/main_window.h"
#include "ui/qt_canvas.h"

namespace qk {

class Desktop {
 public:
  // Makes the windows of all forms in the program's registry. All must outlive the desktop.
  Desktop(Program& program, QtHost& host, QtPicture& picture);
  ~Desktop();

  MainWindow& Main() { return *main_; }
  const std::vector<std::unique_ptr<FormWindow>>& Windows() const { return windows_; }

 private:
  Program& program_;
  QtHost& host_;
  std::unique_ptr<MainWindow> main_;
  std::vector<std::unique_ptr<FormWindow>> windows_;
};

}  // namespace qk
