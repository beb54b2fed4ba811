// SPDX-License-Identifier: MIT
// The program on a large screen, with set-up windows in the panel beside the graphs.
#pragma once

#include <string>

#include <QDockWidget>
#include <QTest>

#include "ui/docks.h"
#include "ui/form_window.h"
#include "ui/picture_view.h"
#include "ui/ui_fixture.h"

namespace qk::test {

struct Docking : UiFixture {
  explicit Docking(const std::string& in = {}) : UiFixture(in) {
    StartUp();
    host.Show("Form1");
    if (in.empty()) desktop.Main().resize(1560, 900);
    desktop.Main().activateWindow();
    EXPECT_TRUE(RunUntil([this] { return desktop.Main().isActiveWindow(); }));
    Settle();
  }
  // What the toolkit has still to lay out, and what waits for that.
  static void Settle() { QTest::qWait(120); }
  void Open(const char* button) {
    Click("Form1", button);
    Settle();
  }
  // With a main window of this size; false if it floats.
  bool DockDisplay(QSize main) {
    desktop.Main().resize(main);
    Settle();
    Open("SetDisplay");
    return InPanel("DisplayPara");
  }
  QDockWidget* DockOf(const char* form) {
    return desktop.Main().findChild<QDockWidget*>(QString(form) + "Dock");
  }
  bool InPanel(const char* form) {
    const QDockWidget* dock = DockOf(form);
    return dock != nullptr && dock->isVisible() && !dock->isFloating() &&
           Window(form).window() == &desktop.Main();
  }
  bool Floats(const char* form) { return Window(form).isVisible() && Window(form).isWindow(); }
  QSize GraphSize() { return desktop.Main().Picture().size(); }
  // As a press of the keyboard goes: to whatever has it.
  static void Press(Qt::Key key, Qt::KeyboardModifiers held = {}) {
    QTest::keyClick(QApplication::focusWidget(), key, held);
  }
};

}  // namespace qk::test
