// SPDX-License-Identifier: MIT
// Undo and the picture by their keys, Cancel of a standard, and what Enter does behind Apply Cal.
#include <set>

#include <QAction>
#include <QClipboard>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QTest>

#include "control/graph_verbs.h"
#include "ui/picture_view.h"
#include "ui_fixture.h"

namespace qk::test {
namespace {

struct HandKeys : UiFixture {
  HandKeys() {
    StartUp();
    host.Show("Form1");
    ToMain();
  }
  void ToMain() {
    desktop.Main().activateWindow();
    EXPECT_TRUE(RunUntil([this] { return desktop.Main().isActiveWindow(); }));
  }
  PictureView& View() { return desktop.Main().Picture(); }
  void Press(int key, Qt::KeyboardModifiers held = Qt::ControlModifier) {
    QWidget* at = QApplication::focusWidget();
    QTest::keyClick(at != nullptr ? at : &desktop.Main(), static_cast<Qt::Key>(key), held);
  }
  // By the widgets, up to the point where the standards can be measured.
  void SetSweep() {
    AnswerAll();
    Click("Form1", "SetCal");
    Click("Calibration", "Command1");
    Click("Calibration", "Option3");
  }
};

TEST(PendingMark, SegmentsOfLimitsAndTheTimeAxisHaveItToo) {
  HandKeys vna;
  const auto open = [&vna](const char* button, const char* form) {
    vna.Click("Form1", button);
    return RunUntil([&] { return vna.Window(form).isActiveWindow(); });
  };
  ASSERT_TRUE(open("LimiLines", "NewLimitsSet"));
  auto& stop = vna.Widget<QLineEdit>("NewLimitsSet", "Text2");
  TypeOver(stop, "80");
  Key(stop, Qt::Key_Tab);
  EXPECT_TRUE(stop.font().italic());
  ASSERT_TRUE(open("SetDomain", "TDR_Opts"));
  auto& t2 = vna.Widget<QLineEdit>("TDR_Opts", "Text2");
  TypeOver(t2, "80");
  Key(t2, Qt::Key_Tab);
  EXPECT_TRUE(t2.font().italic());
  EXPECT_TRUE(vna.Widget("TDR_Opts", "Option5").font().italic()) << "chosen by typing T2";
  EXPECT_TRUE(stop.font().italic()) << "another window opened";
  vna.Click("TDR_Opts", "Command1");
  EXPECT_FALSE(t2.font().italic());
}

TEST(PendingMark, AFieldThatIsNotAppliedIsItalicAndSaysSo) {
  HandKeys vna;
  vna.Click("Form1", "SetDisplay");
  ASSERT_TRUE(RunUntil([&] { return vna.Window("DisplayPara").isActiveWindow(); }));
  auto& scale = vna.Widget<QLineEdit>("DisplayPara", "SensInput");
  const QString tip = scale.toolTip();
  TypeOver(scale, "7");
  Key(scale, Qt::Key_Tab);
  EXPECT_TRUE(scale.font().italic());
  EXPECT_EQ(scale.accessibleDescription(), "Not applied");
  EXPECT_EQ(scale.toolTip(), tip + "\nNot applied");
  vna.Click("DisplayPara", "ApplyDisplay");
  EXPECT_FALSE(scale.font().italic());
  EXPECT_EQ(scale.accessibleDescription(), "");
  EXPECT_EQ(scale.toolTip(), tip);
}

TEST(PendingMark, AStartThatWasNotAppliedBecauseStandardsWereKeptIsMarked) {
  UiFixture::FullView = true;
  HandKeys vna;
  UiFixture::FullView = false;
  vna.SetSweep();
  vna.Click("Calibration", "O_Cal");
  vna.answers.stop();
  auto& start = vna.Widget<QLineEdit>("Calibration", "Text1");
  EXPECT_FALSE(start.font().italic());
  WhenUp<QMessageBox>(vna.host, [](QMessageBox& box) { box.button(QMessageBox::No)->click(); });
  TypeOver(start, "500");
  vna.Click("Calibration", "Command1");
  EXPECT_NE(vna.program.session().Plan.StartFreq, 500e6);
  EXPECT_EQ(start.text(), "500");
  EXPECT_TRUE(start.font().italic());
}

TEST(UndoKeys, CtrlZTakesBackAndATextKeepsItsOwn) {
  HandKeys vna;
  vna.Press(Qt::Key_Minus);
  EXPECT_DOUBLE_EQ(vna.program.session().Channel(1).Scale, 20);
  vna.Click("Form1", "SetDisplay");
  auto& field = vna.Widget<QLineEdit>("DisplayPara", "SensInput");
  ASSERT_TRUE(RunUntil([&] { return vna.Window("DisplayPara").isActiveWindow(); }));
  TypeOver(field, "7");
  QTest::keyClick(&field, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(field.text(), "20") << "the text's own undo";
  EXPECT_DOUBLE_EQ(vna.program.session().Channel(1).Scale, 20);
  auto& button = vna.Widget<QPushButton>("DisplayPara", "ApplyDisplay");
  button.setFocus();
  QTest::keyClick(&button, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_DOUBLE_EQ(vna.program.session().Channel(1).Scale, 10) << "from the window beside it";
  EXPECT_EQ(field.text(), "20") << "what was typed in stays until it is applied";
}

TEST(UndoKeys, CtrlZInAFieldWithoutTypingTakesBackTheLastChange) {
  HandKeys vna;
  Session& session = vna.program.session();
  PutMarker(vna.program.controller(), 1, 20);
  vna.desktop.Main().findChild<QAction*>("MarkerTable")->trigger();
  ASSERT_TRUE(RunUntil([&] { return vna.Window("MarkerTable").isActiveWindow(); }));
  auto& field = vna.Widget<QLineEdit>("MarkerTable", "Position11");
  const QString before = field.text();
  const auto point = session.Markers.Of(0, 0).Point;
  TypeOver(field, "1000");
  Key(field, Qt::Key_Return);
  EXPECT_NE(session.Markers.Of(0, 0).Point, point);
  EXPECT_TRUE(RunUntil([&] { return field.selectedText() == field.text(); }))
      << "typing replaces it";
  QTest::keyClick(&field, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(session.Markers.Of(0, 0).Point, point);
  EXPECT_EQ(field.text(), before);
}

TEST(UndoKeys, IsNothingBehindABox) {
  HandKeys vna;
  vna.Press(Qt::Key_Minus);
  WhenUp<QMessageBox>(vna.host, [&](QMessageBox& box) {
    QTest::keyClick(&box, Qt::Key_Z, Qt::ControlModifier);
    box.accept();
  });
  vna.desktop.Main().findChild<QAction*>("About")->trigger();
  EXPECT_DOUBLE_EQ(vna.program.session().Channel(1).Scale, 20);
}

TEST(CopyKeys, CtrlCCopiesThePictureAndATextKeepsItsOwn) {
  HandKeys vna;
  QGuiApplication::clipboard()->clear();
  vna.View().setFocus();
  vna.Press(Qt::Key_C);
  EXPECT_EQ(QGuiApplication::clipboard()->image().size(), vna.picture.Image().size());
  EXPECT_EQ(vna.At("Form1", "Notice").Caption.substr(0, 15), "picture copied ");
  vna.Click("Form1", "SetDisplay");
  auto& field = vna.Widget<QLineEdit>("DisplayPara", "SensInput");
  ASSERT_TRUE(RunUntil([&] { return vna.Window("DisplayPara").isActiveWindow(); }));
  field.setFocus();
  field.selectAll();
  QTest::keyClick(&field, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), field.text());
}

TEST(PassingLineOnScreen, StandsInTheMenuBarAndGoesByItself) {
  HandKeys vna;
  vna.Press(Qt::Key_Z);
  auto* bar = vna.desktop.Main().menuBar();
  auto* line = bar->findChild<QLabel*>("Notice");
  ASSERT_NE(line, nullptr);
  EXPECT_TRUE(line->isVisible());
  EXPECT_EQ(line->text(), "Nothing to undo");
  EXPECT_TRUE(bar->rect().contains(line->geometry())) << "past the edge of the window";
  EXPECT_GE(line->contentsRect().width(), line->fontMetrics().horizontalAdvance(line->text()));
  EXPECT_TRUE(RunUntil([&] { return line->text().isEmpty(); }, PassingLine::kStaysMs + 3000));
}

TEST(FileMenuGroups, StandBehindLines) {
  HandKeys vna;
  QStringList behind;
  for (QMenu* menu : vna.desktop.Main().menuBar()->findChildren<QMenu*>()) {
    bool line = false;
    for (const QAction* action : menu->actions()) {
      if (line) behind << action->objectName();
      line = action->isSeparator();
    }
  }
  for (const char* item : {"Printgraphics", "SaveMeasurements", "Exit", "Report", "Recent1",
                           "AutoscaleActive", "MarkerTable", "PresetAll", "UndoLast"})
    EXPECT_TRUE(behind.contains(item)) << item;
}

TEST(Menus, EachItemHasALetterOfItsOwn) {
  HandKeys vna;
  for (const QMenu* menu : vna.desktop.Main().menuBar()->findChildren<QMenu*>()) {
    std::set<QString> letters;
    for (const QAction* action : menu->actions()) {
      if (action->isSeparator() || action->objectName().startsWith("Recent")) continue;
      const QString letter = QKeySequence::mnemonic(action->text()).toString();
      EXPECT_FALSE(letter.isEmpty()) << action->text().toStdString();
      EXPECT_TRUE(letters.insert(letter).second) << action->text().toStdString();
    }
  }
}

TEST(SaveDialogs, ProposeANameThatTypingReplaces) {
  HandKeys vna;
  vna.program.session().Label.GraphicsLabels[0] = "Filter A";
  QString proposed, selected;
  WhenUp<QFileDialog>(vna.host, [&](QFileDialog& dialog) {
    auto* field = dialog.findChild<QLineEdit*>("fileNameEdit");
    proposed = field->text();
    selected = field->selectedText();
    QMetaObject::invokeMethod(&dialog, "accept");
  });
  vna.desktop.Main().findChild<QAction*>("SaveCal")->trigger();
  EXPECT_EQ(proposed.left(11), "Filter-A-20");
  EXPECT_EQ(selected, proposed);
  const std::string name = proposed.toStdString() + ".cal";
  EXPECT_TRUE(std::filesystem::exists(vna.folder + "/" + name)) << name;
  EXPECT_EQ(vna.At("Form1", "Notice").Caption, "saved " + name);
}

TEST(CalibrationKeys, EnterBehindApplyCalClosesAndAppliesNotAgain) {
  HandKeys vna;
  vna.SetSweep();
  for (const char* standard : {"O_Cal", "S_Cal", "M_Cal"}) vna.Click("Calibration", standard);
  auto& apply = vna.Widget<QPushButton>("Calibration", "App_Cal");
  apply.setFocus();
  vna.prompts.clear();
  QTest::keyClick(&apply, Qt::Key_Return);
  EXPECT_TRUE(vna.program.session().Cal.CalS11);
  QWidget& window = vna.Window("Calibration");
  ASSERT_NE(window.focusWidget(), nullptr);
  EXPECT_EQ(window.focusWidget()->objectName(), "Cls_Cal");
  QTest::keyClick(window.focusWidget(), Qt::Key_Return);
  EXPECT_TRUE(vna.prompts.empty());
  EXPECT_FALSE(window.isVisible());
}

// How a person ends the sweep of a standard.
enum class Way { Mouse, Letter, Escape };
class CancelledBy : public ::testing::TestWithParam<Way> {};

TEST_P(CancelledBy, EndsTheSweepAndTheWindowLivesOn) {
  UiFixture::LinePace = sim::Pace::Baud115200;
  HandKeys vna;
  UiFixture::LinePace = sim::Pace::Unpaced;
  vna.SetSweep();
  auto& cancel = vna.Widget<QPushButton>("Calibration", "CancelStandard");
  EXPECT_FALSE(cancel.isEnabled());
  bool acted = false;
  auto* watch = new QTimer(&vna.host);
  QObject::connect(watch, &QTimer::timeout, watch, [&] {
    if (acted || !cancel.isEnabled() || vna.At("Calibration", "ProgressBar1").Percent < 2) return;
    acted = true;
    QWidget& window = vna.Window("Calibration");
    const QPointF at = cancel.rect().center();
    const auto post = [](QWidget& to, QEvent* event) { QCoreApplication::postEvent(&to, event); };
    switch (GetParam()) {
      case Way::Mouse:
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease})
          post(cancel,
               new QMouseEvent(type, at, cancel.mapToGlobal(at), Qt::LeftButton,
                               type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                               Qt::NoModifier));
        break;
      case Way::Letter:
        post(window, new QKeyEvent(QEvent::KeyPress, Qt::Key_N, Qt::AltModifier, "n"));
        break;
      case Way::Escape:
        post(window, new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier));
        break;
    }
    // ... and what means another button is dropped as ever.
    auto& other = vna.Widget<QPushButton>("Calibration", "Cls_Cal");
    post(other, new QMouseEvent(QEvent::MouseButtonPress, at, other.mapToGlobal(at), Qt::LeftButton,
                                Qt::LeftButton, Qt::NoModifier));
    post(other, new QMouseEvent(QEvent::MouseButtonRelease, at, other.mapToGlobal(at),
                                Qt::LeftButton, Qt::NoButton, Qt::NoModifier));
  });
  watch->start(0);
  vna.Click("Calibration", "O_Cal");
  watch->stop();
  EXPECT_TRUE(acted) << "no sweep was seen";
  EXPECT_EQ(vna.At("Calibration", "O_Cal").Caption, "Open");
  EXPECT_LT(vna.At("Calibration", "ProgressBar1").Percent, 100);
  EXPECT_FALSE(cancel.isEnabled());
  EXPECT_TRUE(vna.Window("Calibration").isVisible());
  vna.prompts.clear();
  vna.Click("Calibration", "O_Cal");
  EXPECT_EQ(vna.At("Calibration", "O_Cal").Caption, "Open *") << "the line is in step";
  EXPECT_EQ(vna.prompts.size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(Ways, CancelledBy,
                         ::testing::Values(Way::Mouse, Way::Letter, Way::Escape));

TEST(CalibrationAsks, InTheWindowsOfTheProgram) {
  UiFixture::FullView = true;
  HandKeys vna;
  UiFixture::FullView = false;
  EXPECT_TRUE(vna.At("Calibration", "AskFirst").Checked);
  vna.SetSweep();
  vna.Click("Calibration", "O_Cal");
  vna.answers.stop();
  // Enter answers No.
  WhenUp<QMessageBox>(vna.host, [](QMessageBox& box) {
    QTest::keyClick(QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : &box,
                    Qt::Key_Return);
  });
  vna.Click("Calibration", "Option4");
  EXPECT_EQ(vna.prompts.back().Text, "One measured standard would be dropped. Continue?");
  EXPECT_TRUE(vna.Widget<QAbstractButton>("Calibration", "Option3").isChecked());
  EXPECT_EQ(vna.At("Calibration", "O_Cal").Caption, "Open *");
}

}  // namespace
}  // namespace qk::test
