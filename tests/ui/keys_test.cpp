// Keys and clicks in the windows as a person gives them: Enter, Escape, F5, a mouse in the middle
// of a standard's sweep.
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QTest>

#include "ui/picture_view.h"
#include "ui_fixture.h"

namespace qk::test {
namespace {

// The calibration window with a sweep set and S11 chosen.
struct Calibrating : UiFixture {
  Calibrating() {
    StartUp();
    Click("Form1", "SetCal");
    AnswerAll();
    Click("Calibration", "Command1");
    Click("Calibration", "Option3");
  }
  std::string Star(const char* button) { return At("Calibration", button).Caption; }
  // Puts a click into the queue of the toolkit, as a window system does.
  void QueueClick(QWidget& widget) {
    const QPointF at(widget.rect().center());
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease})
      QCoreApplication::postEvent(
          &widget, new QMouseEvent(type, at, widget.mapToGlobal(at), Qt::LeftButton,
                                   type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                                   Qt::NoModifier));
  }
};

TEST(Keys, EnterGoesToTheFocusedButtonAndToNoOther) {
  Calibrating bench;
  bench.Click("Calibration", "O_Cal");
  ASSERT_EQ(bench.Star("O_Cal"), "Open *");
  auto& apply = bench.Widget<QPushButton>("Calibration", "App_Cal");
  apply.setFocus();
  Key(apply, Qt::Key_Return);
  // "Apply Cal" refused, as two standards are missing; the sweep was not loaded anew.
  EXPECT_EQ(bench.prompts.back().Text, "S11 Calibration Not Complete");
  EXPECT_EQ(bench.Star("O_Cal"), "Open *");
}

TEST(Keys, CalibrationHasNoDefaultButtonAndEnterInAListDoesNothing) {
  Calibrating bench;
  for (const QPushButton* button : bench.Window("Calibration").findChildren<QPushButton*>())
    EXPECT_FALSE(button->isDefault()) << button->text().toStdString();
  bench.Click("Calibration", "O_Cal");
  bench.prompts.clear();
  auto& list = bench.Widget("Calibration", "LvlCombo");
  list.setFocus();
  Key(list, Qt::Key_Return);
  EXPECT_TRUE(bench.prompts.empty());
  EXPECT_EQ(bench.Star("O_Cal"), "Open *");
}

TEST(Keys, EscapeDoesNotCloseCalibrationWhileStarsStand) {
  Calibrating bench;
  bench.Click("Calibration", "O_Cal");
  Key(bench.Window("Calibration"), Qt::Key_Escape);
  EXPECT_TRUE(bench.Window("Calibration").isVisible());
  bench.Click("Calibration", "Option3");  // chosen anew: the stars go
  Key(bench.Window("Calibration"), Qt::Key_Escape);
  EXPECT_FALSE(bench.Window("Calibration").isVisible());
}

TEST(Keys, EnterInAFieldPressesTheDefaultButton) {
  UiFixture bench;
  bench.StartUp();
  bench.Click("Form1", "SetEnhancement");
  TypeOver(bench.Widget<QLineEdit>("EnhancePara", "InputSmoothing"), "7");
  Key(bench.Widget<QLineEdit>("EnhancePara", "InputSmoothing"), Qt::Key_Return);
  EXPECT_EQ(bench.program.session().Averaging.SmoothingPercent, 7);
}

TEST(Keys, F5StartsFromEveryWindow) {
  UiFixture bench;
  bench.StartUp();
  bench.AnswerAll();
  for (const char* window : {"Form1", "EnhancePara", "Calibration"}) {
    bench.host.Show(window);
    bench.prompts.clear();
    bench.Window(window).activateWindow();
    ASSERT_TRUE(RunUntil([&] { return bench.Window(window).isActiveWindow(); })) << window;
    // A key that the window system brings goes by the shortcuts.
    QTest::keyClick(&bench.Window(window), Qt::Key_F5);
    ASSERT_EQ(bench.prompts.size(), 1u) << window;
    EXPECT_EQ(bench.prompts[0].Title, "Start Measurement") << window;
  }
}

TEST(Keys, WhatIsClickedDuringAStandardsSweepIsDropped) {
  Calibrating bench;
  bool off = false;
  auto* watch = new QTimer(&bench.host);
  QObject::connect(watch, &QTimer::timeout, watch, [&] {
    const auto& form = *bench.desk.Find("Calibration");
    if (!form.Busy() || QApplication::activeModalWidget() != nullptr || off) return;
    off = !bench.Widget("Calibration", "Command1").isEnabled();
    bench.QueueClick(bench.Widget("Calibration", "Command1"));
    bench.QueueClick(bench.Widget("Calibration", "Cls_Cal"));
  });
  watch->start(0);
  bench.Click("Calibration", "O_Cal");
  watch->stop();
  QCoreApplication::processEvents();
  EXPECT_TRUE(off) << "no sweep was seen";
  EXPECT_EQ(bench.Star("O_Cal"), "Open *");
  EXPECT_TRUE(bench.Window("Calibration").isVisible());
  EXPECT_TRUE(bench.Widget("Calibration", "Command1").isEnabled());
}

TEST(Keys, ALevelAppliedInOneWindowStandsInTheOther) {
  Calibrating bench;
  bench.Click("Form1", "SetEnhancement");
  auto& level = bench.Widget<QComboBox>("EnhancePara", "ListLevel");
  emit level.activated(10);
  bench.Click("EnhancePara", "ApplyEnhance");
  EXPECT_EQ(bench.Widget<QComboBox>("Calibration", "LvlCombo").currentText(), "-10");
  bench.Click("Calibration", "Command1");
  EXPECT_EQ(bench.program.session().Plan.Port1Level, -10);
}

TEST(Keys, WhatIsTypedInOneWindowStaysWhenTheOtherApplies) {
  Calibrating bench;
  bench.Click("Form1", "SetEnhancement");
  TypeOver(bench.Widget<QLineEdit>("EnhancePara", "TimeInput"), "12");
  bench.Click("Calibration", "Command1");
  EXPECT_EQ(bench.Widget<QLineEdit>("EnhancePara", "TimeInput").text(), "12");
  EXPECT_EQ(bench.Widget<QLineEdit>("EnhancePara", "SmoothAper").text(), "1");
}

TEST(Windows, OpenAgainWhereTheyStood) {
  UiFixture bench;
  bench.StartUp();
  bench.Click("Form1", "SetEnhancement");
  bench.Window("EnhancePara").move(120, 90);
  for (int i = 0; i < 3; ++i) {
    bench.Click("EnhancePara", "CloseEnhance");
    bench.Click("Form1", "SetEnhancement");
    EXPECT_EQ(bench.Window("EnhancePara").pos(), QPoint(120, 90));
  }
}

TEST(MainWindow, StatusPanelsNeverOverlapHoweverNarrow) {
  UiFixture bench;
  bench.StartUp();
  for (const int width : {1200, 860, 640}) {
    bench.desktop.Main().resize(width, 700);
    QCoreApplication::processEvents();
    int right = -1;
    for (int n = 1; n <= 7; ++n) {
      const QRect at =
          bench.Widget<QLabel>("Form1", ("Panel" + std::to_string(n)).c_str()).geometry();
      EXPECT_GT(at.left(), right) << width << ": panel " << n;
      right = at.right();
    }
    EXPECT_LE(right, bench.desktop.Main().width());
  }
}

TEST(MainWindow, TheValueUnderTheCursorStandsOverThePictureAndNotInIt) {
  UiFixture bench;
  bench.StartUp();
  PictureView& view = bench.desktop.Main().Picture();
  const QImage before = bench.picture.Image();
  const CanvasPoint at = bench.program.graphs().Trace(0, 0).Pixel[51];
  QTest::mouseMove(&view, QPoint(at.x, at.y));
  auto* readOut = view.findChild<QLabel*>("CursorReadOut");
  ASSERT_NE(readOut, nullptr);
  ASSERT_TRUE(RunUntil([&] { return readOut->isVisible(); }));
  EXPECT_EQ(readOut->text().left(3), "CH1");
  EXPECT_EQ(bench.picture.Image(), before);
}

}  // namespace
}  // namespace qk::test
