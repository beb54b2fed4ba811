// Every window: there is one for each form, it shows every control, and what a person does to a
// widget reaches the form.
#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>

#include "ui_fixture.h"

namespace qk::test {
namespace {

using Texts = std::vector<std::string>;

TEST(Windows, EveryControlIsShownByItsWindow) {
  UiFixture bench;
  for (const Form* form : bench.desk.All())
    EXPECT_EQ(bench.host.WindowOf(form->Name())->GetBinder().Unbound(), Texts{}) << form->Name();
}

TEST(Windows, EachIsShownUnderItsCaptionAndHiddenAgain) {
  UiFixture bench;
  for (const Form* form : bench.desk.All()) {
    bench.Visit(*form, [&](QWidget& window) {
      EXPECT_TRUE(window.isVisible()) << form->Name();
      EXPECT_EQ(window.windowTitle().toStdString(), form->Caption());
    });
    EXPECT_FALSE(bench.Window(form->Name().c_str()).isVisible()) << form->Name();
  }
}

TEST(Windows, NoMnemonicStandsTwiceInAWindow) {
  UiFixture bench;
  for (const Form* form : bench.desk.All()) {
    QWidget& window = bench.Window(form->Name().c_str());
    std::map<QChar, QString> seen;
    const auto look = [&](const QString& text) {
      const QString plain = QString(text).replace("&&", "");
      const qsizetype mark = plain.indexOf('&');
      if (mark < 0) return;
      const QChar letter = plain[mark + 1].toLower();
      EXPECT_FALSE(seen.contains(letter))
          << form->Name() << ": " << text.toStdString() << " and " << seen[letter].toStdString();
      seen[letter] = text;
    };
    for (const QAbstractButton* button : window.findChildren<QAbstractButton*>())
      if (button->window() == &window) look(button->text());
    for (const QLabel* label : window.findChildren<QLabel*>())
      if (label->window() == &window && label->buddy() != nullptr) look(label->text());
    if (const auto* bar = window.findChild<QMenuBar*>(); bar != nullptr)
      for (const QAction* action : bar->actions()) look(action->text());
  }
}

TEST(Windows, TheFieldsOfAWindowCanBeReachedByTab) {
  UiFixture bench;
  for (const Form* form : bench.desk.All()) {
    QWidget& window = bench.Window(form->Name().c_str());
    for (const Control& control : form->Controls()) {
      if (control.ReadOnly || control.Kind == ControlKind::Label ||
          control.Kind == ControlKind::MenuItem || control.Kind == ControlKind::Picture ||
          control.Kind == ControlKind::ProgressBar)
        continue;
      const auto* widget = window.findChild<QWidget*>(QString::fromStdString(control.Name));
      ASSERT_NE(widget, nullptr) << form->Name() << "." << control.Name;
      EXPECT_TRUE(widget->focusPolicy() & Qt::TabFocus) << form->Name() << "." << control.Name;
    }
  }
}

TEST(MainWindow, TheMenusBearTheItemsOfTheForm) {
  UiFixture bench;
  const auto* bar = bench.desktop.Main().findChild<QMenuBar*>();
  Texts shown, wanted;
  for (const QAction* menu : bar->actions())
    for (const QAction* item : menu->menu()->actions())
      shown.push_back(menu->text().remove('&').toStdString() + ": " +
                      item->text().remove('&').toStdString());
  for (const Control& control : bench.desk.Find("Form1")->Controls())
    if (control.Kind == ControlKind::MenuItem)
      wanted.push_back(control.Menu + ": " + control.Caption);
  std::sort(shown.begin(), shown.end());
  std::sort(wanted.begin(), wanted.end());
  EXPECT_EQ(shown, wanted);
  EXPECT_FALSE(shown.empty());
}

TEST(MainWindow, TheSevenPanelsStandInTheStatusBar) {
  UiFixture bench;
  bench.StartUp();
  for (int n = 1; n <= 7; ++n)
    EXPECT_EQ(
        bench.Widget<QLabel>("Form1", ("Panel" + std::to_string(n)).c_str()).text().toStdString(),
        bench.program.session().Panels[static_cast<std::size_t>(n)]);
  EXPECT_EQ(bench.Widget<QLabel>("Form1", "Panel1").text(), "SN. 147");
}

TEST(MainWindow, TheAboutItemShowsItsBox) {
  UiFixture bench;
  bench.host.Show("Form1");
  bench.AnswerAll();
  bench.desktop.Main().findChild<QAction*>("About")->trigger();
  ASSERT_EQ(bench.prompts.size(), 1u);
  EXPECT_EQ(bench.prompts[0].Title, "VNA Control");
}

TEST(MainWindow, ASwitchTickedReachesTheSession) {
  UiFixture bench;
  bench.StartUp();
  bench.Click("Form1", "SmoothOn");
  EXPECT_TRUE(bench.program.session().Averaging.SmoothOn);
  EXPECT_FALSE(bench.Widget<QRadioButton>("Form1", "SmoothOff").isChecked());
  bench.Click("Form1", "SmoothOff");
  EXPECT_FALSE(bench.program.session().Averaging.SmoothOn);
}

TEST(MainWindow, ClosingItEndsTheProcessAtOnceAfterLettingThePortGo) {
  UiFixture bench;
  bench.StartUp();
  bool released = false;
  bench.host.BeforeTerminate = [&] {
    released = true;
    EXPECT_FALSE(bench.terminated.has_value());
  };
  bench.desktop.Main().close();
  EXPECT_TRUE(released);
  EXPECT_EQ(bench.terminated, 0);
}

TEST(CalibrationWindow, TheFieldsShowAndTakeTheSweep) {
  UiFixture bench;
  bench.StartUp();
  bench.Click("Form1", "SetCal");
  ASSERT_TRUE(bench.Window("Calibration").isVisible());
  auto& start = bench.Widget<QLineEdit>("Calibration", "Text1");
  EXPECT_EQ(start.text(), "3.0000");
  TypeOver(start, "500");
  auto& points = bench.Widget<QComboBox>("Calibration", "PntsCombo");
  points.setCurrentIndex(0);
  emit points.activated(0);
  bench.Click("Calibration", "Command1");  // takes what stands typed, without leaving the field
  EXPECT_EQ(bench.program.session().Plan.StartFreq, 500e6);
  EXPECT_EQ(bench.program.session().Plan.NumPoints, 51);
  EXPECT_EQ(start.text(), "500.0000");
  EXPECT_EQ(bench.Widget<QLineEdit>("Calibration", "Text3").text(), "50.0000");
}

TEST(CalibrationWindow, TheUnitBesideTheStepIsThatOfItsComputation) {
  UiFixture bench;
  bench.StartUp();
  bench.Click("Form1", "SetCal");
  const auto units = [&bench] {
    QString texts;
    for (const QLabel* label : bench.Window("Calibration").findChildren<QLabel*>())
      if (label->text() == "MHz" || label->text() == "kHz") texts += label->text() + " ";
    return texts;
  };
  EXPECT_EQ(units(), "MHz MHz MHz ");
  bench.Click("Calibration", "Option2");
  EXPECT_EQ(units(), "kHz kHz MHz ");
}

TEST(CalibrationWindow, EnterAppliesTheSweepAndEscapeCloses) {
  UiFixture bench;
  bench.StartUp();
  bench.Click("Form1", "SetCal");
  TypeOver(bench.Widget<QLineEdit>("Calibration", "Text1"), "1000");
  Key(bench.Widget<QLineEdit>("Calibration", "Text1"), Qt::Key_Return);
  EXPECT_EQ(bench.program.session().Plan.StartFreq, 1e9);
  Key(bench.Window("Calibration"), Qt::Key_Escape);
  EXPECT_FALSE(bench.Window("Calibration").isVisible());
  EXPECT_FALSE(bench.desk.Find("Calibration")->Shown);
}

TEST(CalibrationWindow, AKindEnablesTheStandardsThatItNeeds) {
  UiFixture bench;
  bench.StartUp();
  bench.Click("Form1", "SetCal");
  bench.Click("Calibration", "Option4");
  EXPECT_FALSE(bench.Widget("Calibration", "O_Cal").isEnabled());
  EXPECT_TRUE(bench.Widget("Calibration", "Iso_Cal").isEnabled());
  bench.Click("Calibration", "Option3");
  EXPECT_TRUE(bench.Widget("Calibration", "O_Cal").isEnabled());
  EXPECT_FALSE(bench.Widget("Calibration", "Thru_Cal").isEnabled());
}

TEST(CalibrationWindow, AKindThatIsRefusedFallsBackOnTheScreenToo) {
  UiFixture bench;
  bench.StartUp();
  bench.Click("Form1", "SetCal");
  bench.AnswerAll();
  bench.Click("Calibration", "Option7");
  EXPECT_TRUE(bench.Widget<QRadioButton>("Calibration", "Option5").isChecked());
  EXPECT_FALSE(bench.Widget<QRadioButton>("Calibration", "Option7").isChecked());
}

TEST(CalibrationWindow, AMeasuredStandardBearsItsStarAndTheBarIsGoneAgain) {
  UiFixture bench;
  bench.StartUp();
  bench.Click("Form1", "SetCal");
  bench.AnswerAll();
  bench.Click("Calibration", "Command1");
  bench.Click("Calibration", "Option3");
  bench.Click("Calibration", "O_Cal");
  EXPECT_EQ(bench.Widget<QPushButton>("Calibration", "O_Cal").text().remove('&'), "Open *");
  EXPECT_EQ(bench.Widget<QProgressBar>("Calibration", "ProgressBar1").value(), 100);
  EXPECT_FALSE(bench.Widget<QProgressBar>("Calibration", "ProgressBar1").isVisible());
  EXPECT_TRUE(bench.Widget("Form1", "StartMeasurement").isEnabled());
}

TEST(CalibrationWindow, TheNextStepIsToldInPlainWords) {
  UiFixture bench;
  bench.StartUp();
  bench.Click("Form1", "SetCal");
  EXPECT_EQ(bench.Widget<QLabel>("Calibration", "NextStep_Caption").text(), "Set the sweep first");
}

TEST(IsoMethodWindow, IsModalAndAMethodClosesIt) {
  UiFixture bench;
  bench.StartUp();
  bench.Click("Form1", "SetCal");
  bench.AnswerAll();
  bench.Click("Calibration", "Command1");
  bool blocked = false;
  WhenUp<QDialog>(bench.host, [&](QDialog& window) {
    EXPECT_EQ(window.objectName(), "IsoMethod");
    blocked = window.isModal();
    bench.Click("IsoMethod", "Command1");
  });
  bench.Click("Calibration", "Iso_Cal");
  EXPECT_TRUE(blocked);
  EXPECT_FALSE(bench.Window("IsoMethod").isVisible());
  EXPECT_EQ(bench.At("Calibration", "Iso_Cal").Caption, "Isolation *");
}

TEST(DisplayParaWindow, AGraphTypeBringsItsUnitToTheScreen) {
  UiFixture bench;
  bench.StartUp();
  bench.Click("Form1", "SetDisplay");
  auto& type = bench.Widget<QComboBox>("DisplayPara", "ListGraphType");
  emit type.activated(type.findText("Phase"));
  EXPECT_EQ(bench.Widget<QComboBox>("DisplayPara", "ListUnits").currentText(), "deg");
  bench.Click("DisplayPara", "ApplyDisplay");
  EXPECT_EQ(bench.program.session().Channel(1).GraphType, GraphType::Phase);
}

TEST(DisplayParaWindow, TheTitleBarClosesItWithoutApplying) {
  UiFixture bench;
  bench.StartUp();
  bench.Click("Form1", "SetDisplay");
  TypeOver(bench.Widget<QLineEdit>("DisplayPara", "SensInput"), "3");
  bench.Window("DisplayPara").close();
  EXPECT_FALSE(bench.desk.Find("DisplayPara")->Shown);
  EXPECT_EQ(bench.program.session().Channel(1).Scale, 10);
}

TEST(EnhanceParaWindow, ComputedValuesCannotBeTypedInto) {
  UiFixture bench;
  bench.StartUp();
  bench.Click("Form1", "SetEnhancement");
  EXPECT_TRUE(bench.Widget<QLineEdit>("EnhancePara", "SmoothAper").isReadOnly());
  TypeOver(bench.Widget<QLineEdit>("EnhancePara", "InputSmoothing"), "12");
  bench.Click("EnhancePara", "ApplyEnhance");
  EXPECT_EQ(bench.Widget<QLineEdit>("EnhancePara", "InputSmoothing").text(), "10");
  EXPECT_EQ(bench.Widget<QLineEdit>("EnhancePara", "SmoothAper").text(), "9");
}

TEST(InformingWindows, HaveNoCloseControl) {
  UiFixture bench;
  for (const char* name : {"Updating", "SweepStopping", "ShuttingDown", "EEPROMdata"}) {
    bench.host.Show(name);
    EXPECT_FALSE(bench.Window(name).windowFlags() & Qt::WindowCloseButtonHint) << name;
    bench.Window(name).close();
    Key(bench.Window(name), Qt::Key_Escape);
    EXPECT_TRUE(bench.Window(name).isVisible()) << name;
    bench.host.Hide(name);
  }
}

TEST(InformingWindows, ProgressMovesAtOnce) {
  UiFixture bench;
  bench.host.Show("EEPROMdata");
  bench.host.Progress("EEPROMdata", "ProgressBar1", 37);
  EXPECT_EQ(bench.Widget<QProgressBar>("EEPROMdata", "ProgressBar1").value(), 37);
}

}  // namespace
}  // namespace qk::test
