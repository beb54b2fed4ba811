// SPDX-License-Identifier: MIT
// Every window: there is one for each form, it shows every control, and what a person does to a
// widget reaches the form.
#include <algorithm>
#include <cmath>

#include <QAction>
#include <QButtonGroup>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabWidget>
#include <QTest>
#include <QTextBlock>

#include "control/colour_scheme.h"
#include "display/layout.h"
#include "ui/picture_view.h"
#include "ui_fixture.h"

namespace qk::test {
namespace {

using Texts = std::vector<std::string>;

TEST(Windows, EveryControlIsShownByItsWindow) {
  UiFixture vna;
  for (const Form* form : vna.registry.All())
    EXPECT_EQ(vna.host.WindowOf(form->Name())->GetBinder().Unbound(), Texts{}) << form->Name();
}

TEST(Windows, EachIsShownUnderItsCaptionAndHiddenAgain) {
  UiFixture vna;
  for (const Form* form : vna.registry.All()) {
    vna.Visit(*form, [&](QWidget& window) {
      EXPECT_TRUE(window.isVisible()) << form->Name();
      EXPECT_EQ(window.windowTitle().toStdString(), form->Caption());
    });
    EXPECT_FALSE(vna.Window(form->Name().c_str()).isVisible()) << form->Name();
  }
}

TEST(Windows, NoMnemonicStandsTwiceInAWindow) {
  UiFixture vna;
  for (const Form* form : vna.registry.All()) {
    QWidget& window = vna.Window(form->Name().c_str());
    // By letter: the text, and the page of tabs on which it is; -1 for what is always seen. Of two
    // pages only one is seen.
    std::multimap<QChar, std::pair<QString, int>> seen;
    const auto look = [&](const QString& text, int page = -1) {
      const QString plain = QString(text).replace("&&", "");
      const qsizetype mark = plain.indexOf('&');
      if (mark < 0) return;
      const QChar letter = plain[mark + 1].toLower();
      const auto [first, last] = seen.equal_range(letter);
      for (auto other = first; other != last; ++other)
        EXPECT_TRUE(page >= 0 && other->second.second >= 0 && page != other->second.second)
            << form->Name() << ": " << text.toStdString() << " and "
            << other->second.first.toStdString();
      seen.emplace(letter, std::pair(text, page));
    };
    auto* tabs = window.findChild<QTabWidget*>();
    const auto pageOf = [&](const QWidget* widget) {
      for (int i = 0; tabs != nullptr && i < tabs->count(); ++i)
        if (tabs->widget(i)->isAncestorOf(widget)) return i;
      return -1;
    };
    for (int i = 0; tabs != nullptr && i < tabs->count(); ++i) look(tabs->tabText(i));
    for (const QAbstractButton* button : window.findChildren<QAbstractButton*>())
      if (button->window() == &window) look(button->text(), pageOf(button));
    for (const QLabel* label : window.findChildren<QLabel*>())
      if (label->window() == &window && label->buddy() != nullptr)
        look(label->text(), pageOf(label));
    if (const auto* bar = window.findChild<QMenuBar*>(); bar != nullptr)
      for (const QAction* action : bar->actions()) look(action->text());
  }
}

// A timer or a panel that comes later finds nothing that is gone.
TEST(Desktop, LeavesNothingOfItselfInTheHost) {
  FormRegistry registry;
  QtHost host(registry);
  QtPicture picture({400, 300});
  sim::Instrument instrument;
  sim::SimulatedPort port(instrument, sim::RealClock(), sim::Pace::Unpaced);
  const ScratchFolder folder;
  Program program(registry, host.host(), port, picture,
                  ProgramOptions{folder.Text(), 1, {}, false});
  {
    const Desktop desktop(program, host, picture);
    EXPECT_TRUE(host.OnTick && host.OnPanel && host.ShowInside);
  }
  EXPECT_FALSE(host.OnTick);
  EXPECT_FALSE(host.OnPanel);
  EXPECT_FALSE(host.ShowInside);
}

// A channel's number shows its page; S and A belong to the page that is shown.
TEST(LimitLines, AreSetAppliedAndShownByKeysAlone) {
  UiFixture vna;
  vna.StartUp();
  vna.Click("Form1", "SetCal");
  vna.Click("Calibration", "Command1");
  vna.Click("Calibration", "Cls_Cal");
  vna.host.Show("Form1");
  vna.Click("Form1", "LimiLines");
  QWidget& window = vna.Window("NewLimitsSet");
  window.window()->activateWindow();
  ASSERT_TRUE(RunUntil(
      [&] { return window.isVisible() && window.isAncestorOf(QApplication::focusWidget()); }));
  const auto press = [](Qt::Key key, Qt::KeyboardModifiers held = {}) {
    QTest::keyClick(QApplication::focusWidget(), key, held);
    QCoreApplication::processEvents();
  };
  Session& session = vna.program.session();
  press(Qt::Key_2, Qt::AltModifier);
  auto& tabs = *window.findChild<QTabWidget*>();
  ASSERT_EQ(tabs.currentIndex(), 1);
  auto& start = vna.Widget<QLineEdit>("NewLimitsSet", "Text33");
  start.setFocus();
  for (const char* text : {"900", "1100", "5", "-5"}) {
    QTest::keyClicks(QApplication::focusWidget(), text);
    press(Qt::Key_Tab);
  }
  press(Qt::Key_A, Qt::AltModifier);
  ASSERT_TRUE(RunUntil([&] { return session.Limits.Of(2).Applied; }, 3000));
  EXPECT_FALSE(session.Limits.Of(1).Applied);
  press(Qt::Key_S, Qt::AltModifier);
  EXPECT_TRUE(RunUntil([&] { return session.Limits.Of(2).Show; }, 3000));
  EXPECT_FALSE(session.Limits.Of(1).Show);
  press(Qt::Key_E, Qt::AltModifier);
  EXPECT_TRUE(RunUntil([&] { return session.Limits.Enabled; }, 3000));
  press(Qt::Key_X, Qt::AltModifier);
  EXPECT_TRUE(RunUntil([&] { return session.Channel(2).LimitsOn; }, 3000));
  EXPECT_TRUE(session.Display.ShowLimits);
}

TEST(Windows, TheFieldsOfAWindowCanBeReachedByTab) {
  UiFixture vna;
  // Of a group of options one, from which the arrows lead to the others.
  const auto reached = [](const QWidget& widget) {
    const auto* option = qobject_cast<const QRadioButton*>(&widget);
    if (option == nullptr) return (widget.focusPolicy() & Qt::TabFocus) != 0;
    const QList<QAbstractButton*> group = option->group()->buttons();
    const auto byTab = std::count_if(group.begin(), group.end(), [](const QAbstractButton* of) {
      return (of->focusPolicy() & Qt::TabFocus) != 0;
    });
    return byTab == 1 || byTab == group.size();
  };
  for (const Form* form : vna.registry.All()) {
    QWidget& window = vna.Window(form->Name().c_str());
    for (const Control& control : form->Controls()) {
      if (control.ReadOnly || control.Kind == ControlKind::Label ||
          control.Kind == ControlKind::MenuItem || control.Kind == ControlKind::Picture ||
          control.Kind == ControlKind::ProgressBar)
        continue;
      const auto* widget = window.findChild<QWidget*>(QString::fromStdString(control.Name));
      ASSERT_NE(widget, nullptr) << form->Name() << "." << control.Name;
      EXPECT_TRUE(reached(*widget)) << form->Name() << "." << control.Name;
    }
  }
}

TEST(Windows, AskedForAgainComeToTheTopWithTheKeyboard) {
  UiFixture vna;
  vna.StartUp();
  vna.host.Show("Form1");
  vna.Click("Form1", "SetDisplay");
  vna.Click("Form1", "SetMemory");
  QWidget& display = vna.Window("DisplayPara");
  ASSERT_TRUE(RunUntil([&] { return vna.Window("MemoryPara").isActiveWindow(); }));
  vna.Click("Form1", "SetDisplay");
  EXPECT_TRUE(RunUntil([&] { return display.isActiveWindow(); }));
  display.showMinimized();
  vna.Click("Form1", "SetDisplay");
  EXPECT_FALSE(display.isMinimized());
  EXPECT_TRUE(display.isVisible());
}

TEST(Windows, FieldsThatStandBesideEachOtherAreLevel) {
  UiFixture vna;
  vna.host.Show("CalKitForm");
  QCoreApplication::processEvents();
  const auto top = [&](const char* name) {
    QWidget& field = vna.Widget("CalKitForm", name);
    return field.mapTo(field.window(), QPoint(0, 0)).y();
  };
  EXPECT_EQ(top("Text2"), top("Text8"));
  EXPECT_EQ(top("Text4"), top("Text9"));
  EXPECT_EQ(top("Text7"), top("Text12"));
}

// A text in the colour of a dark desktop cannot be read on what is left of a light one.
TEST(Windows, ComputedFieldsFollowADesktopThatTurnsDark) {
  UiFixture vna;
  vna.StartUp();
  vna.host.Show("EnhancePara");
  const QPalette light = QApplication::palette();
  QPalette dark(QColor(49, 54, 59), QColor(49, 54, 59));
  dark.setColor(QPalette::Base, Qt::black);
  QWidget& computed = vna.Widget("EnhancePara", "SmoothAper");
  for (const QPalette& palette : {dark, light}) {
    QApplication::setPalette(palette);
    QCoreApplication::processEvents();
    EXPECT_EQ(computed.palette().color(QPalette::Base), palette.color(QPalette::Window));
    EXPECT_EQ(computed.palette().color(QPalette::Text), palette.color(QPalette::Text));
  }
}

double Luminance(const QColor& colour) {
  const auto linear = [](double c) {
    return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
         0.0722 * linear(colour.blueF());
}

TEST(Colours, AreDarkOnADarkDesktopUnlessTheUserHasChosenSome) {
  const QPalette light = QApplication::palette();
  for (const bool chosen : {false, true}) {
    UiFixture vna;
    vna.StartUp();
    Session& session = vna.program.session();
    if (chosen) session.Colour.DataColour = 0x123456;
    const Colours before = session.Colour;
    vna.desktop.MatchDesktopColours();
    EXPECT_TRUE(SameColours(session.Colour, before)) << "the desktop is light";
    QApplication::setPalette(QPalette(QColor(49, 54, 59), QColor(49, 54, 59)));
    vna.desktop.MatchDesktopColours();
    QApplication::setPalette(light);
    EXPECT_EQ(vna.At("Colours", "Picture1").Swatch, session.Colour.BackColour) << "its window too";
    EXPECT_EQ(SameColours(session.Colour, DarkColours()), !chosen);
    const QRgb ground = vna.picture.Image().pixel(2, 2) & 0xFFFFFF;
    EXPECT_EQ(ground, session.Colour.BackColour);
  }
}

TEST(Colours, OfTheDarkSetAreSeenOnTheirGroundAndOfferedInColourScheme) {
  UiFixture vna;
  vna.StartUp();
  vna.host.Show("Colours");
  vna.Click("Colours", "DarkColours");
  const Colours& dark = vna.program.session().Colour;
  EXPECT_TRUE(SameColours(dark, DarkColours()));
  const double ground = Luminance(QColor::fromRgb(dark.BackColour)) + 0.05;
  for (const std::uint32_t colour : {dark.GridColour, dark.DataColour, dark.MemoryColour,
                                     dark.TextColour, dark.OutlineColour, dark.LimitColour})
    EXPECT_GT((Luminance(QColor::fromRgb(colour)) + 0.05) / ground, 3) << std::hex << colour;
  vna.Click("Colours", "Command1");
  EXPECT_TRUE(SameColours(vna.program.session().Colour, Colours{}));
}

TEST(MainWindow, FitsALowScreenAndItsStripScrollsThere) {
  UiFixture vna;
  vna.host.Show("Form1");
  QWidget& main = vna.desktop.Main();
  const int whole = vna.Widget("Form1", "Strip").width();
  main.resize(780, 480);
  QCoreApplication::processEvents();
  EXPECT_EQ(main.height(), 480);
  QWidget& start = vna.Widget("Form1", "StartMeasurement");
  EXPECT_EQ(start.visibleRegion().boundingRect(), start.rect());
  auto& last = vna.Widget("Form1", "SmoothOff");
  EXPECT_TRUE(last.visibleRegion().isEmpty());
  QWidget* focused = &vna.Widget("Form1", "AverOff");
  focused->setFocus();
  QTest::keyClick(focused, Qt::Key_Tab);
  EXPECT_TRUE(last.hasFocus());
  EXPECT_EQ(last.visibleRegion().boundingRect(), last.rect());

  main.resize(780, 720);
  QCoreApplication::processEvents();
  EXPECT_EQ(vna.Widget("Form1", "Strip").width(), whole);
  EXPECT_EQ(start.visibleRegion().boundingRect(), start.rect());
}

TEST(MainWindow, AtItsSmallestTheTitleOfAGraphStandsWhole) {
  UiFixture vna;
  vna.host.Show("Form1");
  vna.desktop.Main().resize(10, 10);
  QCoreApplication::processEvents();
  const int height = vna.Widget("Form1", "PicGraph").height();
  const int line = QtCanvas::LineHeight(vna.program.graphs().LetterPoints());
  EXPECT_GE(GraphRect(0, false, {480, height}).top, kTitleRise * line) << height;
}

TEST(MainWindow, TheMenusBearTheItemsOfTheForm) {
  UiFixture vna;
  const auto* bar = vna.desktop.Main().findChild<QMenuBar*>();
  Texts shown, wanted;
  for (const QAction* menu : bar->actions()) {
    if (menu->text() == "&Windows") continue;  // of the windows themselves
    for (const QAction* item : menu->menu()->actions())
      if (!item->isSeparator())
        shown.push_back(menu->text().remove('&').toStdString() + ": " +
                        item->text().remove('&').toStdString());
  }
  for (const Control& control : vna.registry.Find("Form1")->Controls())
    if (control.Kind == ControlKind::MenuItem)
      wanted.push_back(control.Menu + ": " + control.Caption);
  std::sort(shown.begin(), shown.end());
  std::sort(wanted.begin(), wanted.end());
  EXPECT_EQ(shown, wanted);
  EXPECT_FALSE(shown.empty());
}

TEST(MainWindow, TheSevenPanelsStandInTheStatusBar) {
  UiFixture vna;
  vna.StartUp();
  for (int n = 1; n <= 7; ++n)
    EXPECT_EQ(
        vna.Widget<QLabel>("Form1", ("Panel" + std::to_string(n)).c_str()).text().toStdString(),
        vna.program.session().Panels[static_cast<std::size_t>(n)]);
  EXPECT_EQ(vna.Widget<QLabel>("Form1", "Panel1").text(), "SN. 147");
}

TEST(MainWindow, TheAboutItemShowsItsBox) {
  UiFixture vna;
  vna.host.Show("Form1");
  vna.AnswerAll();
  vna.desktop.Main().findChild<QAction*>("About")->trigger();
  ASSERT_EQ(vna.prompts.size(), 1u);
  EXPECT_EQ(vna.prompts[0].Title, "VNA Control");
}

TEST(MainWindow, ASwitchTickedReachesTheSession) {
  UiFixture vna;
  vna.StartUp();
  vna.Click("Form1", "SmoothOn");
  EXPECT_TRUE(vna.program.session().Averaging.SmoothOn);
  EXPECT_FALSE(vna.Widget<QRadioButton>("Form1", "SmoothOff").isChecked());
  vna.Click("Form1", "SmoothOff");
  EXPECT_FALSE(vna.program.session().Averaging.SmoothOn);
}

TEST(MainWindow, ClosingItEndsTheProcessAtOnceAfterLettingThePortGo) {
  UiFixture vna;
  vna.StartUp();
  bool released = false;
  vna.host.BeforeTerminate = [&] {
    released = true;
    EXPECT_FALSE(vna.terminated.has_value());
  };
  vna.desktop.Main().close();
  EXPECT_TRUE(released);
  EXPECT_EQ(vna.terminated, 0);
}

TEST(MainWindow, ThePictureHasItsSizeFromTheStartOn) {
  UiFixture vna;
  const auto show = vna.host.OnPanel;
  int seen = 0;
  vna.host.OnPanel = [&](Panel panel, const std::string& text) {
    show(panel, text);
    if (!vna.Window("Form1").isVisible()) return;
    ++seen;
    const int width = vna.picture.Size().width;
    EXPECT_EQ(width, vna.desktop.Main().Picture().width()) << text;
    EXPECT_GT(vna.program.graphs().Graph(0).Right, width * 8 / 10) << text;
  };
  vna.StartUp();
  EXPECT_GE(seen, 3);
}

// Black icons vanish on a dark palette: the ratio of contrast, as for signs without text.
TEST(MainWindow, TheIconsOfStartAndStopAreSeenOnALightAndOnADarkPalette) {
  UiFixture vna;
  for (const char* name : {"StartMeasurement", "StopMeasurement"}) {
    const QImage icon = vna.Widget<QPushButton>("Form1", name)
                            .icon()
                            .pixmap(32, 32)
                            .toImage()
                            .convertToFormat(QImage::Format_ARGB32);
    const QColor ink = icon.pixelColor(16, 16);
    ASSERT_EQ(ink.alpha(), 255) << name;
    for (const QColor& button : {QColor(0xEF, 0xEF, 0xEF), QColor(0x31, 0x36, 0x3B)}) {
      const double light = Luminance(ink) + 0.05, dark = Luminance(button) + 0.05;
      EXPECT_GT(std::max(light, dark) / std::min(light, dark), 2)
          << name << " on " << button.name().toStdString();
    }
  }
}

TEST(CalibrationWindow, TheFieldsShowAndTakeTheSweep) {
  UiFixture vna;
  vna.StartUp();
  vna.Click("Form1", "SetCal");
  ASSERT_TRUE(vna.Window("Calibration").isVisible());
  auto& start = vna.Widget<QLineEdit>("Calibration", "Text1");
  EXPECT_EQ(start.text(), "3.0000");
  TypeOver(start, "500");
  auto& points = vna.Widget<QComboBox>("Calibration", "PntsCombo");
  points.setCurrentIndex(0);
  emit points.activated(0);
  vna.Click("Calibration", "Command1");  // takes what is typed, without leaving the field
  EXPECT_EQ(vna.program.session().Plan.StartFreq, 500e6);
  EXPECT_EQ(vna.program.session().Plan.NumPoints, 51);
  EXPECT_EQ(start.text(), "500.0000");
  EXPECT_EQ(vna.Widget<QLineEdit>("Calibration", "Text3").text(), "50.0000");
}

TEST(CalibrationWindow, TheUnitBesideTheStepIsThatOfItsComputation) {
  UiFixture vna;
  vna.StartUp();
  vna.Click("Form1", "SetCal");
  const auto units = [&vna] {
    QString texts;
    for (const QLabel* label : vna.Window("Calibration").findChildren<QLabel*>())
      if (label->text() == "MHz" || label->text() == "kHz") texts += label->text() + " ";
    return texts;
  };
  EXPECT_EQ(units(), "MHz MHz MHz MHz MHz ");
  vna.Click("Calibration", "Option2");
  EXPECT_EQ(units(), "kHz kHz kHz kHz kHz ") << "start, stop, step, centre, span";
  EXPECT_EQ(vna.Widget<QLineEdit>("Calibration", "Text3").text(), "< 0.1")
      << "3 to 3000 kHz is below the range: no span is left";
}

TEST(CalibrationWindow, EnterAppliesTheSweepAndEscapeCloses) {
  UiFixture vna;
  vna.StartUp();
  vna.Click("Form1", "SetCal");
  TypeOver(vna.Widget<QLineEdit>("Calibration", "Text1"), "1000");
  Key(vna.Widget<QLineEdit>("Calibration", "Text1"), Qt::Key_Return);
  EXPECT_EQ(vna.program.session().Plan.StartFreq, 1e9);
  Key(vna.Window("Calibration"), Qt::Key_Escape);
  EXPECT_FALSE(vna.Window("Calibration").isVisible());
  EXPECT_FALSE(vna.registry.Find("Calibration")->Shown);
}

TEST(CalibrationWindow, AKindEnablesTheStandardsThatItNeeds) {
  UiFixture vna;
  vna.StartUp();
  vna.Click("Form1", "SetCal");
  vna.Click("Calibration", "Option4");
  EXPECT_FALSE(vna.Widget("Calibration", "O_Cal").isEnabled());
  EXPECT_TRUE(vna.Widget("Calibration", "Iso_Cal").isEnabled());
  vna.Click("Calibration", "Option3");
  EXPECT_TRUE(vna.Widget("Calibration", "O_Cal").isEnabled());
  EXPECT_FALSE(vna.Widget("Calibration", "Thru_Cal").isEnabled());
}

TEST(CalibrationWindow, AKindThatIsRefusedFallsBackOnTheScreenToo) {
  UiFixture vna;
  vna.StartUp();
  vna.Click("Form1", "SetCal");
  vna.AnswerAll();
  vna.Click("Calibration", "Option7");
  EXPECT_TRUE(vna.Widget<QRadioButton>("Calibration", "Option5").isChecked());
  EXPECT_FALSE(vna.Widget<QRadioButton>("Calibration", "Option7").isChecked());
}

TEST(CalibrationWindow, AMeasuredStandardBearsItsStarAndTheBarIsGoneAgain) {
  UiFixture vna;
  vna.StartUp();
  vna.Click("Form1", "SetCal");
  vna.AnswerAll();
  vna.Click("Calibration", "Command1");
  vna.Click("Calibration", "Option3");
  vna.Click("Calibration", "O_Cal");
  EXPECT_EQ(vna.Widget<QPushButton>("Calibration", "O_Cal").text().remove('&'), "Open *");
  EXPECT_EQ(vna.Widget<QProgressBar>("Calibration", "ProgressBar1").value(), 100);
  EXPECT_FALSE(vna.Widget<QProgressBar>("Calibration", "ProgressBar1").isVisible());
  EXPECT_TRUE(vna.Widget("Form1", "StartMeasurement").isEnabled());
}

// The window as it is seen: which buttons bear a star, and the line under them.
struct ReadyToMeasure : UiFixture {
  ReadyToMeasure() {
    StartUp();
    Click("Form1", "SetCal");
    AnswerAll();
    Click("Calibration", "Command1");
    Click("Calibration", "Option3");
  }
  void Bench(const char* line) { ASSERT_TRUE(instrument.Bench(line).Ok) << line; }
  std::string NextStep() {
    return Widget<QLabel>("Calibration", "NextStep_Caption").text().toStdString();
  }
};

TEST(CalibrationWindow, AStandardWhoseSweepHadAByteTooManyIsReportedByItsName) {
  ReadyToMeasure vna;
  vna.Click("Calibration", "O_Cal");
  for (const char* fault :
       {"fault sweep add at 9", "fault sweep double at 300", "fault sweep add at 612"}) {
    vna.Bench(fault);
    vna.Click("Calibration", "S_Cal");
    vna.Bench("fault none");
    vna.Click("Calibration", "M_Cal");
    EXPECT_EQ(vna.NextStep(), "Incomplete, measure again: Short") << fault;
  }
  vna.Click("Calibration", "S_Cal");
  EXPECT_EQ(vna.NextStep(), "All standards measured: click Apply Cal");
}

TEST(CalibrationWindow, AnUnfitStandardIsReportedInWordsAndBlocksNothing) {
  ReadyToMeasure vna;
  vna.Bench("follow off");
  vna.Bench("port1 short");
  for (const char* button : {"O_Cal", "S_Cal", "M_Cal"}) vna.Click("Calibration", button);
  EXPECT_EQ(
      vna.NextStep(),
      "Doubtful: Load on port 1 reflects like a short, Open and short on port 1 are the same. "
      "All standards measured: click Apply Cal");
  EXPECT_TRUE(vna.Widget("Calibration", "App_Cal").isEnabled());
}

TEST(CalibrationWindow, TheNextStepIsReportedInPlainWords) {
  UiFixture vna;
  vna.StartUp();
  vna.Click("Form1", "SetCal");
  EXPECT_EQ(vna.Widget<QLabel>("Calibration", "NextStep_Caption").text(), "Set the sweep first");
}

TEST(IsoMethodWindow, IsModalAndAMethodClosesIt) {
  UiFixture vna;
  vna.StartUp();
  vna.Click("Form1", "SetCal");
  vna.AnswerAll();
  vna.Click("Calibration", "Command1");
  bool blocked = false;
  WhenUp<QDialog>(vna.host, [&](QDialog& window) {
    EXPECT_EQ(window.objectName(), "IsoMethod");
    blocked = window.isModal();
    vna.Click("IsoMethod", "Command1");
  });
  vna.Click("Calibration", "Iso_Cal");
  EXPECT_TRUE(blocked);
  EXPECT_FALSE(vna.Window("IsoMethod").isVisible());
  EXPECT_EQ(vna.At("Calibration", "Iso_Cal").Caption, "Isolation *");
}

TEST(DisplayParaWindow, AGraphTypeBringsItsUnitToTheScreen) {
  UiFixture vna;
  vna.StartUp();
  vna.Click("Form1", "SetDisplay");
  auto& type = vna.Widget<QComboBox>("DisplayPara", "ListGraphType");
  emit type.activated(type.findText("Phase"));
  EXPECT_EQ(vna.Widget<QComboBox>("DisplayPara", "ListUnits").currentText(), "deg");
  vna.Click("DisplayPara", "ApplyDisplay");
  EXPECT_EQ(vna.program.session().Channel(1).GraphType, GraphType::Phase);
}

TEST(DisplayParaWindow, TheTitleBarClosesItWithoutApplying) {
  UiFixture vna;
  vna.StartUp();
  vna.Click("Form1", "SetDisplay");
  TypeOver(vna.Widget<QLineEdit>("DisplayPara", "SensInput"), "3");
  vna.Window("DisplayPara").close();
  EXPECT_FALSE(vna.registry.Find("DisplayPara")->Shown);
  EXPECT_EQ(vna.program.session().Channel(1).Scale, 10);
}

TEST(EnhanceParaWindow, ComputedValuesCannotBeTypedInto) {
  UiFixture vna;
  vna.StartUp();
  vna.Click("Form1", "SetEnhancement");
  EXPECT_TRUE(vna.Widget<QLineEdit>("EnhancePara", "SmoothAper").isReadOnly());
  TypeOver(vna.Widget<QLineEdit>("EnhancePara", "InputSmoothing"), "12");
  vna.Click("EnhancePara", "ApplyEnhance");
  EXPECT_EQ(vna.Widget<QLineEdit>("EnhancePara", "InputSmoothing").text(), "10");
  EXPECT_EQ(vna.Widget<QLineEdit>("EnhancePara", "SmoothAper").text(), "9");
}

// Frames are as high as their content; the plot has the rest.
TEST(PowerTestWindows, TheResultsTakeNoMoreRoomThanTheyNeed) {
  UiFixture vna;
  for (const char* name : {"P1dBForm", "AMtoPM"}) {
    QWidget& window = vna.Window(name);
    window.resize(1000, 700);
    vna.Visit(*vna.registry.Find(name), [&](QWidget&) {
      for (const auto* frame : window.findChildren<QGroupBox*>())
        EXPECT_LE(frame->height(), frame->sizeHint().height() + 2) << frame->title().toStdString();
      const auto& plot = vna.Widget<QWidget>(name, "NTGraph1");
      EXPECT_GT(plot.width(), window.width() / 2);
      EXPECT_GT(plot.height(), window.height() * 3 / 4);
    });
  }
}

// The longest text under the plot: another instrument's table and an overload.
TEST(PowerTestWindows, TheLongestNoteIsSeenWithoutScrolling) {
  UiFixture vna;
  for (const char* name : {"P1dBForm", "AMtoPM"})
    vna.Visit(*vna.registry.Find(name), [&](QWidget& window) {
      const auto labels = window.findChildren<QLabel*>();
      const auto empty = std::ranges::find_if(
          labels, [](const QLabel* label) { return label->wordWrap() && label->text().isEmpty(); });
      ASSERT_NE(empty, labels.end());
      QLabel& note = **empty;
      note.setText(
          "RXCal.dat is not the table read from the instrument at the start of the program: powers "
          "may be wrong. Make sure that the file can be written and that no other program uses the "
          "folder, then choose Re-Start Program. Port 2 was overloaded: clipped values read too "
          "low. Put an attenuator between the device and port 2.");
      QCoreApplication::processEvents();
      EXPECT_FALSE(vna.Widget<QScrollArea>(name, "Body").verticalScrollBar()->isVisible()) << name;
      EXPECT_GE(note.height(), note.heightForWidth(note.width()));
    });
}

TEST(HardwareInfoWindow, TheValuesStandInOneColumn) {
  UiFixture vna;
  vna.StartUp();
  vna.Visit(*vna.registry.Find("HardwareInfo"), [&](QWidget&) {
    const auto& field = vna.Widget<QPlainTextEdit>("HardwareInfo", "Text1");
    std::set<int> columns;
    for (QTextBlock line = field.document()->begin(); line.isValid(); line = line.next()) {
      const auto value = line.text().indexOf(QRegularExpression("(?<=\\t)[^\\t]"));
      if (value < 0) continue;
      QTextCursor cursor(line);
      cursor.setPosition(line.position() + static_cast<int>(value));
      columns.insert(field.cursorRect(cursor).left());
    }
    EXPECT_EQ(columns.size(), 1u) << field.toPlainText().toStdString();
  });
}

TEST(InformingWindows, HaveNoCloseControl) {
  UiFixture vna;
  for (const char* name : {"Updating", "SweepStopping", "ShuttingDown", "EEPROMdata"}) {
    vna.host.Show(name);
    EXPECT_FALSE(vna.Window(name).windowFlags() & Qt::WindowCloseButtonHint) << name;
    vna.Window(name).close();
    Key(vna.Window(name), Qt::Key_Escape);
    EXPECT_TRUE(vna.Window(name).isVisible()) << name;
    vna.host.Hide(name);
  }
}

TEST(InformingWindows, ProgressMovesAtOnce) {
  UiFixture vna;
  vna.host.Show("EEPROMdata");
  vna.host.Progress("EEPROMdata", "ProgressBar1", 37);
  EXPECT_EQ(vna.Widget<QProgressBar>("EEPROMdata", "ProgressBar1").value(), 37);
}

}  // namespace
}  // namespace qk::test
