// SPDX-License-Identifier: MIT
// A host of the toolkit with two plain windows.
#pragma once

#include <vector>

#include "ui/form_window.h"
#include "ui/qt_host.h"
#include "ui_fixture.h"

namespace qk::test {

class PlainForm : public Form {
 public:
  using Form::Form;
};

class PlainWindow : public DialogWindow {
 public:
  using DialogWindow::DialogWindow;
};

struct HostFixture {
  // The second window is modal, the first one where it is asked for.
  explicit HostFixture(WindowStyle first = {}) : form("First", "First", first) {
    registry.Add(form);
    registry.Add(second);
    host.AddWindow(window);
    host.AddWindow(secondWindow);
    host.OnTick = [this](TimerId id) { ticks.push_back(id); };
    host.Terminate = [](int) {};
  }
  ~HostFixture() {
    if (host.Ending()) ForgetQuit();
  }
  PlainForm form;
  PlainForm second{"Second", "Second", {.Modal = true}};
  FormRegistry registry;
  QtHost host{registry};
  PlainWindow window{form, host, nullptr};
  PlainWindow secondWindow{second, host, nullptr};
  std::vector<TimerId> ticks;
};

}  // namespace qk::test
