// SPDX-License-Identifier: MIT
// Check Calibration beside the graphs: its pictures are large enough to be read.
#include <QDockWidget>
#include <QTest>

#include "ui/picture_view.h"
#include "ui/ui_fixture.h"

namespace qk::test {
namespace {

TEST(CheckCalibrationPage, HasPicturesAsWideAsItselfBesideTheGraphs) {
  for (const QSize size : {QSize(1276, 770), QSize(1590, 950)}) {
    UiFixture vna;
    vna.StartUp();
    vna.host.Show("Form1");
    vna.desktop.Main().resize(size);
    vna.desktop.Main().activateWindow();
    EXPECT_TRUE(RunUntil([&] { return vna.desktop.Main().isActiveWindow(); }));
    QTest::qWait(120);
    vna.host.Show("CheckCal");
    QTest::qWait(120);
    const QWidget& page = vna.Window("CheckCal");
    ASSERT_EQ(page.window(), &vna.desktop.Main()) << size.width() << ": beside the graphs";
    EXPECT_GE(vna.desktop.Main().Picture().width(), 640);
    for (const char* name : {"Residuals", "Trend"}) {
      const QWidget& picture = vna.Widget("CheckCal", name);
      EXPECT_GE(picture.width(), page.width() - 20) << name;
      EXPECT_GE(picture.height(), 150) << name;
    }
  }
}

}  // namespace
}  // namespace qk::test
