// SPDX-License-Identifier: MIT
// Keys and clicks in the windows as a person gives them: Enter, Escape, F5, a mouse in the middle
// of a standard's sweep.
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

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

// A key that is held: the window system repeats it, and the toolkit says so.
void HoldKey(QWidget& widget, int key) {
  for (int times = 0; times < 3; ++times)
    qt_sendShortcutOverrideEvent(&widget, 0, key, Qt::NoModifier, {}, true, 1);
  for (int times = 0; times < 3; ++times) {
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, {}, true);
    QApplication::sendEvent(&widget, &press);
  }
}

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
  auto& pressed = vna.Widget<QPushButton>("Calibration", "Command1");
  pressed.setFocus();
  Key(pressed, Qt::Key_Return);
  EXPECT_EQ(vna.Window("Calibration").focusWidget(), &pressed);
}

TEST(Keys, AMeasuredStandardLeadsToTheButtonOfTheNextOne) {
  Calibrating vna;
  QWidget& window = vna.Window("Calibration");
  window.activateWindow();
  ASSERT_TRUE(RunUntil([&] { return window.isActiveWindow(); }));
  vna.Widget("Calibration", "Text2").setFocus();
  QTest::keyClick(&window, Qt::Key_O,
                  Qt::AltModifier);  // by its letter the field keeps the keyboard
  ASSERT_TRUE(RunUntil([&] { return vna.Star("O_Cal") == "Open *"; }));
  EXPECT_TRUE(RunUntil([&] { return vna.Widget("Calibration", "S_Cal").hasFocus(); }));
  const auto press = [&](const char* button) {
    auto& pressed = vna.Widget<QPushButton>("Calibration", button);
    pressed.setFocus();
    Key(pressed, Qt::Key_Return);
    return window.focusWidget()->objectName().toStdString();
  };
  EXPECT_EQ(press("M_Cal"), "S_Cal") << "out of turn: the one still missing";
  EXPECT_EQ(press("S_Cal"), "App_Cal");
  EXPECT_EQ(press("App_Cal"), "Cls_Cal");
  EXPECT_TRUE(vna.program.session().Cal.CalS11);
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

// The clicks of a button, counted.
class Clicks {
 public:
  explicit Clicks(const QAbstractButton& button) {
    QObject::connect(&button, &QAbstractButton::clicked, &context_, [this] { ++count_; });
  }
  operator int() const { return count_; }

 private:
  QObject context_;
  int count_ = 0;
};

// Enter on Apply of Enhancement, pressed once and then held by these, applies once.
template <class Press, class Hold>
void ExpectHeldEnterAppliesOnce(UiFixture& vna, const Press& press, const Hold& hold) {
  auto& apply = vna.Widget<QPushButton>("EnhancePara", "ApplyEnhance");
  const Clicks applied(apply);
  apply.setFocus();
  press(apply);
  EXPECT_EQ(applied, 1);
  hold(apply);
  EXPECT_EQ(applied, 1);
}

TEST(Keys, AHeldF5StartsOnceAndAHeldEnterPressesOnce) {
  UiFixture vna;
  vna.StartUp();
  vna.host.Show("Form1");
  vna.desktop.Main().activateWindow();
  ASSERT_TRUE(RunUntil([&] { return vna.desktop.Main().isActiveWindow(); }));
  const Clicks starts(vna.Widget<QPushButton>("Form1", "StartMeasurement"));
  vna.AnswerAll();
  QTest::keyPress(&vna.desktop.Main(), Qt::Key_F5);
  EXPECT_EQ(starts, 1);
  // The message of START has had the keyboard.
  vna.desktop.Main().activateWindow();
  ASSERT_TRUE(RunUntil([&] { return vna.desktop.Main().isActiveWindow(); }));
  QTest::keyPress(&vna.desktop.Main(), Qt::Key_F5);
  EXPECT_EQ(starts, 2) << "a second press is another START";
  vna.desktop.Main().activateWindow();
  ASSERT_TRUE(RunUntil([&] { return vna.desktop.Main().isActiveWindow(); }));
  HoldKey(vna.desktop.Main(), Qt::Key_F5);
  EXPECT_EQ(starts, 2);

  vna.Click("Form1", "SetEnhancement");
  ExpectHeldEnterAppliesOnce(
      vna, [](QWidget& at) { Key(at, Qt::Key_Return); },
      [](QWidget& at) { HoldKey(at, Qt::Key_Return); });
  const Clicks applied(vna.Widget<QPushButton>("EnhancePara", "ApplyEnhance"));
  auto& field = vna.Widget<QLineEdit>("EnhancePara", "InputSmoothing");
  field.setFocus();
  Key(field, Qt::Key_Return);
  EXPECT_EQ(applied, 1);
  HoldKey(field, Qt::Key_Return);
  EXPECT_EQ(applied, 1);
  auto& other = vna.Widget<QPushButton>("EnhancePara", "Command1");
  const Clicks pressed(other);
  other.setFocus();
  Key(other, Qt::Key_Return);
  HoldKey(other, Qt::Key_Return);
  EXPECT_EQ(pressed, 1);
  auto& list = vna.Widget("EnhancePara", "ListDwell");
  list.setFocus();
  HoldKey(list, Qt::Key_Return);
  EXPECT_EQ(applied, 1);
}

// F5 in a window that blocks the others starts nothing behind it.
TEST(Keys, F5StartsNothingBehindAModalWindow) {
  UiFixture vna;
  vna.StartUp();
  vna.host.Show("Form1");
  int starts = 0;
  QObject::connect(&vna.Widget<QPushButton>("Form1", "StartMeasurement"), &QPushButton::clicked,
                   [&starts] { ++starts; });
  vna.Visit(*vna.registry.Find("NewCalKit"), [&](QWidget& window) {
    QTest::keyClick(&window, Qt::Key_F5);
    EXPECT_EQ(starts, 0);
  });
  vna.desktop.Main().activateWindow();
  ASSERT_TRUE(RunUntil([&] { return vna.desktop.Main().isActiveWindow(); }));
  QTest::keyClick(&vna.desktop.Main(), Qt::Key_F5);
  EXPECT_EQ(starts, 1);
}

// Display's letter in the main window, pressed once too often.
TEST(Keys, NoLetterOfTheMainWindowChoosesAKindOfCalibration) {
  Calibrating vna;
  vna.Click("Calibration", "O_Cal");
  ASSERT_EQ(vna.Star("O_Cal"), "Open *");
  QWidget& window = vna.Window("Calibration");
  window.activateWindow();
  ASSERT_TRUE(RunUntil([&] { return window.isActiveWindow(); }));
  QTest::keyClick(&window, Qt::Key_D, Qt::AltModifier);
  QTest::keyClick(&window, Qt::Key_N, Qt::AltModifier);
  QTest::qWait(300);  // the toolkit holds a button down for a moment before it acts
  EXPECT_EQ(vna.Star("O_Cal"), "Open *");
  std::string mainLetters;
  for (const Control& control : vna.registry.Find("Form1")->Controls())
    if (control.Key != 0 && control.Kind != ControlKind::MenuItem)
      mainLetters += static_cast<char>(std::tolower(control.Key));
  for (const char* kind : {"Option3", "Option4", "Option5", "Option6", "Option7"}) {
    const char key = static_cast<char>(std::tolower(vna.At("Calibration", kind).Key));
    EXPECT_TRUE(key == 0 || key == ' ' || mainLetters.find(key) == std::string::npos) << kind;
  }
  QTest::keyClick(&window, Qt::Key_2, Qt::AltModifier);
  EXPECT_TRUE(RunUntil(
      [&] { return vna.Widget<QRadioButton>("Calibration", "Option5").isChecked(); }, 2000));
}

TEST(Keys, EscapeThatClosesTheLastWindowStopsNoSweepHeldNorPressedAgainAtOnce) {
  UiFixture vna;
  vna.StartUp();
  vna.host.Show("Form1");
  QWidget& main = vna.desktop.Main();
  int stops = 0;
  QObject::connect(&vna.Widget<QPushButton>("Form1", "StopMeasurement"), &QPushButton::clicked,
                   [&stops] { ++stops; });
  vna.Click("Form1", "SetEnhancement");
  QWidget& window = vna.Window("EnhancePara");
  window.activateWindow();
  ASSERT_TRUE(RunUntil([&] { return window.isActiveWindow(); }));
  QTest::keyPress(&window, Qt::Key_Escape);
  ASSERT_FALSE(window.isVisible());
  main.activateWindow();
  ASSERT_TRUE(RunUntil([&] { return main.isActiveWindow(); }));
  HoldKey(main, Qt::Key_Escape);
  EXPECT_EQ(stops, 0);
  QTest::keyClick(&main, Qt::Key_Escape);
  EXPECT_EQ(stops, 0) << "pressed twice by a nervous finger";
  QTest::qWait(QApplication::doubleClickInterval() + 20);
  QTest::keyClick(&main, Qt::Key_Escape);
  EXPECT_EQ(stops, 1);
  HoldKey(main, Qt::Key_Escape);
  EXPECT_EQ(stops, 1);
}

// The window system reports a repeat as a release and a press of one moment. The toolkit marks it
// only if it finds both at once.
TEST(Keys, AHeldKeyWhoseRepeatsTheToolkitDoesNotMarkActsOnce) {
  UiFixture vna;
  vna.StartUp();
  vna.host.Show("Form1");
  QWidget& main = vna.desktop.Main();
  const Clicks stops(vna.Widget<QPushButton>("Form1", "StopMeasurement"));
  const Clicks starts(vna.Widget<QPushButton>("Form1", "StartMeasurement"));
  vna.AnswerAll();
  quint64 ms = 1000;
  const auto press = [&](QWidget& window, int key) {
    QWindow* at = window.windowHandle();
    if (qt_sendShortcutOverrideEvent(at, ms, key, Qt::NoModifier, {}, false, 1)) return;
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    event.setTimestamp(ms);
    QApplication::sendEvent(at, &event);
  };
  const auto release = [&](QWidget& window, int key) {
    QKeyEvent event(QEvent::KeyRelease, key, Qt::NoModifier);
    event.setTimestamp(ms);
    QApplication::sendEvent(window.windowHandle(), &event);
  };
  const auto hold = [&](QWidget& window, int key) {
    for (int times = 0; times < 3; ++times) {
      ms += 40;
      release(window, key);
      press(window, key);
    }
  };
  const auto front = [](QWidget& window) {
    window.activateWindow();
    return RunUntil([&] { return window.isActiveWindow(); });
  };

  vna.Click("Form1", "SetEnhancement");
  QWidget& window = vna.Window("EnhancePara");
  ASSERT_TRUE(front(window));
  press(window, Qt::Key_Escape);
  ASSERT_FALSE(window.isVisible());
  ASSERT_TRUE(front(main));
  QTest::qWait(QApplication::doubleClickInterval() + 20);  // as long as a keyboard waits
  hold(main, Qt::Key_Escape);
  EXPECT_EQ(stops, 0);
  ms += 40;
  release(main, Qt::Key_Escape);
  ms += 60;
  press(main, Qt::Key_Escape);
  EXPECT_EQ(stops, 1) << "pressed anew";
  hold(main, Qt::Key_Escape);
  EXPECT_EQ(stops, 1);

  press(main, Qt::Key_F5);
  EXPECT_EQ(starts, 1);
  ASSERT_TRUE(front(main));
  hold(main, Qt::Key_F5);
  EXPECT_EQ(starts, 1);

  vna.Click("Form1", "SetEnhancement");
  ASSERT_TRUE(front(window));
  ExpectHeldEnterAppliesOnce(
      vna, [&](QWidget&) { press(window, Qt::Key_Return); },
      [&](QWidget&) { hold(window, Qt::Key_Return); });
}

TEST(Keys, WhatIsClickedDuringAStandardsSweepIsDropped) {
  Calibrating vna;
  bool off = false, told = false;
  auto* watch = new QTimer(&vna.host);
  QObject::connect(watch, &QTimer::timeout, watch, [&] {
    const auto& form = *vna.registry.Find("Calibration");
    told |= vna.At("Calibration", "NextStep").Text == "Measuring Open ...";
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
  EXPECT_TRUE(told);
  EXPECT_EQ(vna.Star("O_Cal"), "Open *");
  EXPECT_TRUE(vna.Window("Calibration").isVisible());
  EXPECT_TRUE(vna.Widget("Calibration", "Command1").isEnabled());
}

TEST(Keys, AWindowAtWorkIsNotClosedByItsTitleBar) {
  Calibrating vna;
  vna.answers.stop();
  bool asked = false;
  WhenUp<QMessageBox>(vna.host, [&](QMessageBox& box) {
    asked = true;
    vna.Window("Calibration").close();
    EXPECT_TRUE(vna.registry.Find("Calibration")->Shown) << "its prompt is up";
    box.accept();
  });
  vna.Click("Calibration", "O_Cal");
  EXPECT_TRUE(asked);
  EXPECT_TRUE(vna.Window("Calibration").isVisible());
}

TEST(Keys, AHeldF6MeasuresOnce) {
  Calibrating vna;
  int singles = 0;
  QObject::connect(&vna.Widget<QPushButton>("Form1", "SingleSweep"), &QPushButton::clicked,
                   [&singles] { ++singles; });
  vna.desktop.Main().activateWindow();
  ASSERT_TRUE(RunUntil([&] { return vna.desktop.Main().isActiveWindow(); }));
  QTest::keyClick(&vna.desktop.Main(), Qt::Key_F6);
  EXPECT_EQ(singles, 1);
  vna.desktop.Main().activateWindow();
  ASSERT_TRUE(RunUntil([&] { return vna.desktop.Main().isActiveWindow(); }));
  HoldKey(vna.desktop.Main(), Qt::Key_F6);
  EXPECT_EQ(singles, 1);
}

TEST(Keys, TheBarOfAStandardIsEmptyWhileItsPromptIsUp) {
  Calibrating vna;
  vna.answers.stop();
  WhenUp<QMessageBox>(vna.host, [&](QMessageBox& box) {
    EXPECT_EQ(box.windowTitle(), "Open Cal");
    EXPECT_EQ(vna.Widget<QProgressBar>("Calibration", "ProgressBar1").value(), 0);
    EXPECT_EQ(vna.Widget<QLabel>("Calibration", "NextStep_Caption").text(),
              "Connect what the prompt asks for: Open")
        << "nothing is measured yet";
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

// Alt+I with Isolation off, over the stop frequency that is selected.
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

}  // namespace
}  // namespace qk::test
