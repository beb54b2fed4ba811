// SPDX-License-Identifier: MIT
// The program with its viewer of the manual.
#pragma once

#include <QTest>
#include <QTextBrowser>

#include "ui/help_viewer.h"
#include "ui_fixture.h"

namespace qk::test {

struct Helped : UiFixture {
  Helped() {
    StartUp();
    host.Show("Form1");
  }
  QTextBrowser& Text() { return *desktop.Help().findChild<QTextBrowser*>(); }
  QString Page() { return Text().source().path().section('/', -1); }
  void F1(const char* window) {
    Window(window).activateWindow();
    ASSERT_TRUE(RunUntil([&] { return Window(window).isActiveWindow(); })) << window;
    QWidget* at = QApplication::focusWidget();
    QTest::keyClick(at != nullptr ? at : &Window(window), Qt::Key_F1);
    EXPECT_TRUE(desktop.Help().isVisible());
  }
};

}  // namespace qk::test
