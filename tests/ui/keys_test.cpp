// Keys and clicks in the windows as a person gives them: Enter, Escape, F5, a mouse in the middle
// of a standard's sweep.
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QProgressBar>
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
  Calibrating vna;
  vna.Click("Calibration", "O_Cal");
  ASSERT_EQ(vna.Star("O_Cal"), "Open *");
  auto& apply = vna.Widget<QPushButton>("Calibration", "App_Cal");
  apply.setFocus();
  Key(apply, Qt::Key_Return);
  // "Apply Cal" refused, as two standards are missing; the sweep was not loaded anew.
  EXPECT_EQ(vna.prompts.back().Text, "S11 Calibration Not Complete");
  EXPECT_EQ(vna.Star("O_Cal"), "Open *");
}

// As when a prompt is answered by mnemonic and Enter, and Enter is pressed once too often.
TEST(Keys, EnterInAFieldThatHoldsNothingNewLeavesTheMeasuredStandards) {
  Calibrating vna;
  vna.Click("Calibration", "O_Cal");
  auto& stop = vna.Widget<QLineEdit>("Calibration", "Text2");
  stop.setFocus();
  Key(stop, Qt::Key_Return);
  EXPECT_EQ(vna.Star("O_Cal"), "Open *");
  TypeOver(stop, "2000");
  auto& start = vna.Widget<QLineEdit>("Calibration", "Text1");
  start.setFocus();
  Key(start, Qt::Key_Return);
  EXPECT_EQ(vna.Star("O_Cal"), "Open") << "typed into another field: the sweep is set";
  EXPECT_EQ(vna.program.session().Plan.StopFreq, 2000e6);
}

TEST(Keys, AWindowThatHasWorkedWithTheInstrumentHasTheKeyboardWhereItWas) {
  Calibrating vna;
  for (const char* button : {"Command1", "O_Cal", "S_Cal"}) {
    vna.prompts.clear();
    auto& pressed = vna.Widget<QPushButton>("Calibration", button);
    pressed.setFocus();
    Key(pressed, Qt::Key_Return);
    EXPECT_EQ(vna.Window("Calibration").focusWidget(), &pressed) << button;
  }
  EXPECT_EQ(vna.Star("S_Cal"), "Short *");
}

TEST(Keys, TabLeadsToTheOptionThatIsChosen) {
  Calibrating vna;
  vna.Click("Calibration", "Option6");
  vna.Widget("Calibration", "Command1").setFocus();
  QTest::keyClick(&vna.Window("Calibration"), Qt::Key_Tab);
  EXPECT_EQ(vna.Window("Calibration").focusWidget(), &vna.Widget("Calibration", "Option6"));
  QTest::keyClick(&vna.Window("Calibration"), Qt::Key_Tab);
  EXPECT_EQ(vna.Window("Calibration").focusWidget(), &vna.Widget("Calibration", "O_Cal"));
}

TEST(Keys, TheKeyboardFollowsAChoiceThatIsTurnedBack) {
  Calibrating vna;
  auto& refused = vna.Widget<QAbstractButton>("Calibration", "Option7");
  refused.setFocus();
  refused.click();
  EXPECT_EQ(vna.Window("Calibration").focusWidget(), &vna.Widget("Calibration", "Option5"));
}

TEST(Keys, CalibrationHasNoDefaultButtonAndEnterInAListDoesNothing) {
  Calibrating vna;
  for (const QPushButton* button : vna.Window("Calibration").findChildren<QPushButton*>())
    EXPECT_FALSE(button->isDefault()) << button->text().toStdString();
  vna.Click("Calibration", "O_Cal");
  vna.prompts.clear();
  auto& list = vna.Widget("Calibration", "LvlCombo");
  list.setFocus();
  Key(list, Qt::Key_Return);
  EXPECT_TRUE(vna.prompts.empty());
  EXPECT_EQ(vna.Star("O_Cal"), "Open *");
}

TEST(Keys, EscapeDoesNotCloseCalibrationWhileStarsStand) {
  Calibrating vna;
  vna.Click("Calibration", "O_Cal");
  Key(vna.Window("Calibration"), Qt::Key_Escape);
  EXPECT_TRUE(vna.Window("Calibration").isVisible());
  vna.Click("Calibration", "Option3");  // chosen anew: the stars go
  Key(vna.Window("Calibration"), Qt::Key_Escape);
  EXPECT_FALSE(vna.Window("Calibration").isVisible());
}

TEST(Keys, EnterInAFieldPressesTheDefaultButton) {
  UiFixture vna;
  vna.StartUp();
  vna.Click("Form1", "SetEnhancement");
  TypeOver(vna.Widget<QLineEdit>("EnhancePara", "InputSmoothing"), "7");
  Key(vna.Widget<QLineEdit>("EnhancePara", "InputSmoothing"), Qt::Key_Return);
  EXPECT_EQ(vna.program.session().Averaging.SmoothingPercent, 7);
}

TEST(Keys, F5StartsFromEveryWindow) {
  UiFixture vna;
  vna.StartUp();
  vna.AnswerAll();
  int windows = 0;
  for (Form* form : vna.registry.All()) {
    if (form->Style().Modal || !form->Style().Closable) continue;
    const char* window = form->Name().c_str();
    vna.host.Show(window);
    vna.prompts.clear();
    vna.Window(window).activateWindow();
    ASSERT_TRUE(RunUntil([&] { return vna.Window(window).isActiveWindow(); })) << window;
    // A key that the window system brings goes by the shortcuts.
    QTest::keyClick(&vna.Window(window), Qt::Key_F5);
    ASSERT_EQ(vna.prompts.size(), 1u) << window;
    EXPECT_EQ(vna.prompts[0].Title, "Start Measurement") << window;
    ++windows;
  }
  EXPECT_GE(windows, 8);
}

TEST(Keys, WhatIsClickedDuringAStandardsSweepIsDropped) {
  Calibrating vna;
  bool off = false;
  auto* watch = new QTimer(&vna.host);
  QObject::connect(watch, &QTimer::timeout, watch, [&] {
    const auto& form = *vna.registry.Find("Calibration");
    if (!form.Busy() || QApplication::activeModalWidget() != nullptr || off) return;
    off = !vna.Widget("Calibration", "Command1").isEnabled();
    vna.QueueClick(vna.Widget("Calibration", "Command1"));
    vna.QueueClick(vna.Widget("Calibration", "Cls_Cal"));
  });
  watch->start(0);
  vna.Click("Calibration", "O_Cal");
  watch->stop();
  QCoreApplication::processEvents();
  EXPECT_TRUE(off) << "no sweep was seen";
  EXPECT_EQ(vna.Star("O_Cal"), "Open *");
  EXPECT_TRUE(vna.Window("Calibration").isVisible());
  EXPECT_TRUE(vna.Widget("Calibration", "Command1").isEnabled());
}

TEST(Keys, TheBarOfAStandardIsEmptyWhileItsPromptIsUp) {
  Calibrating vna;
  vna.answers.stop();
  WhenUp<QMessageBox>(vna.host, [&](QMessageBox& box) {
    EXPECT_EQ(box.windowTitle(), "Open Cal");
    EXPECT_EQ(vna.Widget<QProgressBar>("Calibration", "ProgressBar1").value(), 0);
    box.accept();
  });
  vna.Click("Calibration", "O_Cal");
  EXPECT_EQ(vna.Star("O_Cal"), "Open *");
}

TEST(Keys, ALevelAppliedInOneWindowStandsInTheOther) {
  Calibrating vna;
  vna.Click("Form1", "SetEnhancement");
  auto& level = vna.Widget<QComboBox>("EnhancePara", "ListLevel");
  emit level.activated(10);
  vna.Click("EnhancePara", "ApplyEnhance");
  EXPECT_EQ(vna.Widget<QComboBox>("Calibration", "LvlCombo").currentText(), "-10");
  vna.Click("Calibration", "Command1");
  EXPECT_EQ(vna.program.session().Plan.Port1Level, -10);
}

TEST(Keys, WhatIsTypedInOneWindowStaysWhenTheOtherApplies) {
  Calibrating vna;
  vna.Click("Form1", "SetEnhancement");
  TypeOver(vna.Widget<QLineEdit>("EnhancePara", "TimeInput"), "12");
  vna.Click("Calibration", "Command1");
  EXPECT_EQ(vna.Widget<QLineEdit>("EnhancePara", "TimeInput").text(), "12");
  EXPECT_EQ(vna.Widget<QLineEdit>("EnhancePara", "SmoothAper").text(), "1");
}

TEST(Windows, OpenAgainWhereTheyStood) {
  UiFixture vna;
  vna.StartUp();
  vna.Click("Form1", "SetEnhancement");
  vna.Window("EnhancePara").move(120, 90);
  for (int i = 0; i < 3; ++i) {
    vna.Click("EnhancePara", "CloseEnhance");
    vna.Click("Form1", "SetEnhancement");
    EXPECT_EQ(vna.Window("EnhancePara").pos(), QPoint(120, 90));
  }
}

// Alt+I with Isolation off, over the stop frequency that stands selected.
TEST(Keys, TheMnemonicOfAButtonThatIsOffIsNotTypedIntoAField) {
  Calibrating vna;
  const auto press = [](QLineEdit& field, Qt::KeyboardModifiers held) {
    field.selectAll();
    QKeyEvent key(QEvent::KeyPress, Qt::Key_I, held, "i");
    QCoreApplication::sendEvent(&field, &key);
    return field.text();
  };
  auto& stop = vna.Widget<QLineEdit>("Calibration", "Text2");
  const QString stood = stop.text();
  EXPECT_EQ(press(stop, Qt::AltModifier), stood);
  EXPECT_EQ(press(stop, Qt::AltModifier | Qt::ShiftModifier), stood);
  EXPECT_EQ(press(stop, Qt::AltModifier | Qt::ControlModifier), "i") << "AltGr types signs";
  EXPECT_EQ(press(stop, Qt::NoModifier), "i");
}

TEST(MainWindow, StatusPanelsNeverOverlapHoweverNarrow) {
  UiFixture vna;
  vna.StartUp();
  for (const int width : {1200, 860, 640}) {
    vna.desktop.Main().resize(width, 700);
    QCoreApplication::processEvents();
    int right = -1;
    for (int n = 1; n <= 7; ++n) {
      const QRect at =
          vna.Widget<QLabel>("Form1", ("Panel" + std::to_string(n)).c_str()).geometry();
      EXPECT_GT(at.left(), right) << width << ": panel " << n;
      right = at.right();
    }
    EXPECT_LE(right, vna.desktop.Main().width());
  }
}

TEST(MainWindow, TheMouseDragsAMarkerAcrossThePicture) {
  UiFixture vna;
  vna.StartUp();
  vna.program.session().Display.MarkersOn = true;
  vna.program.session().Markers.Set(0) = {true, false, true, 30};
  vna.program.graphs().RedrawAll(false);
  PictureView& view = vna.desktop.Main().Picture();
  const Marker& marker = vna.program.session().Markers.Of(0, 0);
  const GraphRecord& graph = vna.program.graphs().Graph(0);
  const QPoint grab(marker.X, marker.LabelY);
  QTest::mouseMove(&view, grab);
  QTest::mousePress(&view, Qt::LeftButton, {}, grab);
  for (const int point : {35, 50, 77}) {
    const QPointF to(graph.Left + graph.Width() * (point - 1.0) / (graph.NumPoints - 1), grab.y());
    QMouseEvent move(QEvent::MouseMove, to, view.mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(&view, &move);
    EXPECT_NEAR(marker.Point, point, 1);
  }
  QTest::mouseRelease(&view, Qt::LeftButton, {}, grab);
  const int left = marker.Point;
  QTest::mouseMove(&view, grab);
  EXPECT_EQ(marker.Point, left) << "it was let go";
}

TEST(MainWindow, TheValueUnderTheCursorStandsOverThePictureAndNotInIt) {
  UiFixture vna;
  vna.StartUp();
  PictureView& view = vna.desktop.Main().Picture();
  const QImage before = vna.picture.Image();
  const CanvasPoint at = vna.program.graphs().Trace(0, 0).Pixel[51];
  QTest::mouseMove(&view, QPoint(at.x, at.y));
  auto* readOut = view.findChild<QLabel*>("CursorReadOut");
  ASSERT_NE(readOut, nullptr);
  ASSERT_TRUE(RunUntil([&] { return readOut->isVisible(); }));
  EXPECT_EQ(readOut->text().left(3), "CH1");
  EXPECT_EQ(vna.picture.Image(), before);
}

}  // namespace
}  // namespace qk::test
