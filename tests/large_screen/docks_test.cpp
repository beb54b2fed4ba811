// SPDX-License-Identifier: MIT
// Set-up windows in the panel beside the graphs, on a screen of 1600 by 1000 pixels: tabs and keys.
#include <functional>
#include <optional>

#include <QAction>
#include <QComboBox>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QTabBar>
#include <QTest>
#include <QTimer>

#include "large_screen/docks_fixture.h"
#include "ui/ui_main.h"

namespace qk::test {
namespace {

TEST(Docks, ASetUpWindowStandsAtTheRightOfTheGraphsAndCoversNoneOfThem) {
  Docking vna;
  vna.Open("SetDisplay");
  ASSERT_TRUE(vna.InPanel("DisplayPara"));
  const QWidget& main = vna.desktop.Main();
  const QRect graphs(vna.desktop.Main().Picture().mapTo(&main, QPoint(0, 0)), vna.GraphSize());
  const QRect panel(vna.Window("DisplayPara").mapTo(&main, QPoint(0, 0)),
                    vna.Window("DisplayPara").size());
  EXPECT_GT(panel.left(), graphs.right());
  EXPECT_GE(vna.GraphSize().width(), 640);
  EXPECT_EQ(vna.DockOf("DisplayPara")->windowTitle(), "Display Set Up");
  EXPECT_EQ(vna.picture.Size().width, vna.GraphSize().width()) << "drawn for its new size";
}

TEST(Docks, WindowsAreTabsOfOnePanelAndTheOneAskedForIsInFront) {
  Docking vna;
  vna.Open("SetDisplay");
  vna.Open("SetMemory");
  ASSERT_TRUE(vna.InPanel("DisplayPara") && vna.InPanel("MemoryPara"));
  EXPECT_EQ(vna.desktop.Main().tabifiedDockWidgets(vna.DockOf("DisplayPara")),
            QList<QDockWidget*>{vna.DockOf("MemoryPara")});
  EXPECT_FALSE(vna.Window("MemoryPara").visibleRegion().isEmpty());
  EXPECT_TRUE(vna.Window("DisplayPara").visibleRegion().isEmpty());
  EXPECT_TRUE(vna.Window("MemoryPara").isAncestorOf(QApplication::focusWidget()));
  vna.Open("SetDisplay");
  EXPECT_FALSE(vna.Window("DisplayPara").visibleRegion().isEmpty());
  EXPECT_TRUE(vna.Window("DisplayPara").isAncestorOf(QApplication::focusWidget()));
}

TEST(Docks, APageThatWasHiddenWhileAnotherWasMadeIsATabBesideIt) {
  Docking vna;
  vna.Open("SetMemory");
  vna.host.Hide("MemoryPara");
  vna.Settle();
  vna.Open("SetDisplay");
  vna.Open("SetMemory");
  ASSERT_TRUE(vna.InPanel("DisplayPara") && vna.InPanel("MemoryPara"));
  EXPECT_EQ(vna.desktop.Main().tabifiedDockWidgets(vna.DockOf("DisplayPara")),
            QList<QDockWidget*>{vna.DockOf("MemoryPara")});
  EXPECT_FALSE(vna.Window("MemoryPara").visibleRegion().isEmpty());
  EXPECT_TRUE(vna.Window("DisplayPara").visibleRegion().isEmpty());
}

// Measures an open in the docked page; act is called in each breath of its sweep once it has begun.
// True if the sweep was ended and the open does not count as measured.
bool EndsTheOpen(Docking& vna, const std::function<void()>& act) {
  vna.AnswerAll();
  vna.Open("SetCal");
  EXPECT_TRUE(vna.InPanel("Calibration"));
  vna.Click("Calibration", "Command1");
  vna.Click("Calibration", "Option3");
  auto& cancel = vna.Widget<QPushButton>("Calibration", "CancelStandard");
  bool acted = false;
  auto* watch = new QTimer(&vna.host);
  QObject::connect(watch, &QTimer::timeout, watch, [&] {
    // In any breath of the sweep: those in which all input is dropped are tried as well.
    if (!cancel.isEnabled() || vna.At("Calibration", "ProgressBar1").Percent < 2) return;
    acted = true;
    act();
  });
  watch->start(0);
  vna.Click("Calibration", "O_Cal");
  watch->stop();
  EXPECT_TRUE(acted) << "no sweep was seen";
  EXPECT_TRUE(vna.InPanel("Calibration"));
  return vna.At("Calibration", "O_Cal").Caption == "Open";
}

struct DocksAtLineSpeed : testing::Test {
  DocksAtLineSpeed() {
    UiFixture::LinePace = sim::Pace::Baud115200;
    vna.emplace();
    UiFixture::LinePace = sim::Pace::Unpaced;
  }
  QPushButton& Stop() { return vna->Widget<QPushButton>("Form1", "StopMeasurement"); }
  std::optional<Docking> vna;
};

// The key goes by way of the window, where the shortcuts of the main window see it first; the focus
// is on STOP, as the page's own controls are disabled.
TEST_F(DocksAtLineSpeed, EscapeEndsTheSweepOfAStandard) {
  EXPECT_TRUE(EndsTheOpen(*vna, [&] {
    Stop().setFocus();
    QTest::keyClick(vna->desktop.Main().windowHandle(), Qt::Key_Escape);
  }));
}

TEST_F(DocksAtLineSpeed, StopEndsTheSweepOfAStandard) {
  EXPECT_TRUE(EndsTheOpen(*vna, [&] { QTest::mouseClick(&Stop(), Qt::LeftButton); }));
}

TEST_F(DocksAtLineSpeed, SpaceOnStopEndsTheSweepOfAStandard) {
  EXPECT_TRUE(EndsTheOpen(*vna, [&] { QTest::keyClick(&Stop(), Qt::Key_Space); }));
}

TEST_F(DocksAtLineSpeed, NoOtherButtonAndNoOtherKeyEndsTheSweepOfAStandard) {
  EXPECT_FALSE(EndsTheOpen(*vna, [&] {
    QTest::mouseClick(&Stop(), Qt::RightButton);
    QTest::keyClick(&Stop(), Qt::Key_X);
    QTest::mouseClick(&vna->Widget<QPushButton>("Form1", "SetDisplay"), Qt::LeftButton);
  }));
  EXPECT_FALSE(vna->InPanel("DisplayPara"));
}

TEST(Docks, APageStaysInItsPlaceWhenAnotherOpensAndCloses) {
  Docking vna;
  // Of what is in the page.
  const auto place = [&](const char* form) {
    const QWidget& page = vna.Window(form);
    return QRect(page.mapTo(&vna.desktop.Main(), page.contentsRect().topLeft()),
                 page.contentsRect().size());
  };
  const auto ownTab = [&](const char* form) {
    const QDockWidget* dock = vna.DockOf(form);
    const auto* tab = dock->findChild<QTabBar*>("OwnTab");
    const bool seen = tab->isVisible() && tab->geometry().bottom() == dock->rect().bottom() &&
                      dock->childAt(tab->geometry().center()) == tab;
    return seen ? tab->tabText(0) : QString();
  };
  vna.Open("SetDisplay");
  const QRect alone = place("DisplayPara");
  EXPECT_EQ(ownTab("DisplayPara"), "Display Set Up");
  vna.Open("SetMemory");
  EXPECT_EQ(place("MemoryPara").topLeft(), alone.topLeft());
  EXPECT_EQ(place("MemoryPara").height(), alone.height());
  EXPECT_EQ(ownTab("DisplayPara"), "");
  EXPECT_EQ(ownTab("MemoryPara"), "") << "the toolkit's row shows both";
  vna.DockOf("DisplayPara")->close();
  Docking::Settle();
  EXPECT_EQ(place("MemoryPara").topLeft(), alone.topLeft());
  EXPECT_EQ(place("MemoryPara").height(), alone.height());
  EXPECT_EQ(ownTab("MemoryPara"), vna.DockOf("MemoryPara")->windowTitle());
  vna.DockOf("MemoryPara")->setFloating(true);
  Docking::Settle();
  EXPECT_EQ(ownTab("MemoryPara"), "") << "torn off";
  EXPECT_EQ(vna.Window("MemoryPara").contentsMargins(), QMargins());
  vna.Open("SetDisplay");
  EXPECT_EQ(place("DisplayPara").topLeft(), alone.topLeft());
  vna.DockOf("MemoryPara")->setFloating(false);
  Docking::Settle();
  EXPECT_EQ(ownTab("DisplayPara"), "");
}

TEST(Docks, AltWithALetterWorksInThePageThatHasTheKeyboardAndElseInTheMainWindow) {
  Docking vna;
  vna.Open("SetDisplay");
  TypeOver(vna.Widget<QLineEdit>("DisplayPara", "SensInput"), "3");
  vna.Press(Qt::Key_A, Qt::AltModifier);  // Apply here, Data in the main window
  ASSERT_TRUE(RunUntil([&] { return vna.program.session().Channel(1).Scale == 3; }, 3000));
  EXPECT_EQ(vna.program.session().Display.DisplayMode, DisplayMode::Data);
  vna.Press(Qt::Key_R, Qt::AltModifier);  // Reference here, Memory Math there
  EXPECT_TRUE(vna.Widget("DisplayPara", "REFinput").hasFocus());
  vna.Press(Qt::Key_M, Qt::AltModifier);  // no letter of this page: Memory, of the main window
  EXPECT_TRUE(RunUntil([&] { return vna.registry.Find("MemoryPara")->Shown; }, 3000));
  Docking::Settle();
  vna.desktop.Main().Picture().setFocus();
  vna.prompts.clear();
  vna.AnswerAll();
  vna.Press(Qt::Key_S, Qt::AltModifier);  // START; Scale / Div in the page behind
  EXPECT_TRUE(RunUntil([&] { return vna.prompts.size() == 1; }, 3000));
  EXPECT_EQ(vna.prompts[0].Title, "Start Measurement");
}

// As the window system gives it, with its text: by that a list would search.
TEST(Docks, AltWithALetterWorksWhileAListHasTheKeyboard) {
  Docking vna;
  vna.Open("SetDisplay");
  auto& list = vna.Widget<QComboBox>("DisplayPara", "ListRefPos");
  TypeOver(vna.Widget<QLineEdit>("DisplayPara", "SensInput"), "3");
  vna.Widget<QComboBox>("DisplayPara", "ListParameters").setFocus();
  const auto press = [](Qt::Key key, const char* text) {
    QKeyEvent over(QEvent::ShortcutOverride, key, Qt::AltModifier, text);
    QApplication::sendEvent(QApplication::focusWidget(), &over);
    QKeyEvent down(QEvent::KeyPress, key, Qt::AltModifier, text);
    QApplication::sendEvent(QApplication::focusWidget(), &down);
  };
  press(Qt::Key_O, "o");
  EXPECT_TRUE(list.hasFocus());
  vna.program.session().Channel(1).RefPosition = 2;
  QKeyEvent five(QEvent::KeyPress, Qt::Key_5, Qt::NoModifier, "5");
  QApplication::sendEvent(&list, &five);
  EXPECT_EQ(list.currentText(), "5") << "a letter alone searches";
  press(Qt::Key_1, "1");
  EXPECT_EQ(list.currentText(), "5");
  EXPECT_TRUE(vna.At("DisplayPara", "CH1Select").Checked);
  list.setFocus();
  press(Qt::Key_A, "a");
  ASSERT_TRUE(RunUntil([&] { return vna.program.session().Channel(1).Scale == 3; }, 3000));
  EXPECT_EQ(vna.program.session().Channel(1).RefPosition, 4) << "the list index from 0";
}

TEST(Docks, AltWithALetterThatIsHeldPressesTheButtonOnce) {
  Docking vna;
  vna.Open("SetDisplay");
  auto& apply = vna.Widget<QPushButton>("DisplayPara", "ApplyDisplay");
  int applied = 0;
  QObject::connect(&apply, &QPushButton::clicked, [&applied] { ++applied; });
  vna.Press(Qt::Key_A, Qt::AltModifier);
  ASSERT_TRUE(RunUntil([&] { return applied == 1; }, 3000));
  for (int times = 0; times < 3; ++times) {
    QKeyEvent again(QEvent::KeyPress, Qt::Key_A, Qt::AltModifier, "a", true);
    QApplication::sendEvent(QApplication::focusWidget(), &again);
    Docking::Settle();
  }
  EXPECT_EQ(applied, 1);
}

TEST(Docks, EscapeClosesThePageGivesTheKeyboardToTheGraphsAndStopsNothing) {
  Docking vna;
  int stops = 0;
  QObject::connect(&vna.Widget<QPushButton>("Form1", "StopMeasurement"), &QPushButton::clicked,
                   [&stops] { ++stops; });
  vna.Open("SetEnhancement");
  ASSERT_TRUE(vna.InPanel("EnhancePara"));
  vna.Press(Qt::Key_Escape);
  EXPECT_FALSE(vna.registry.Find("EnhancePara")->Shown);
  EXPECT_FALSE(vna.Window("EnhancePara").isVisible());
  EXPECT_TRUE(vna.desktop.Main().Picture().hasFocus());
  vna.Press(Qt::Key_Escape);
  EXPECT_EQ(stops, 0) << "a second press right behind it";
  QTest::qWait(QApplication::doubleClickInterval() + 20);
  vna.Press(Qt::Key_Escape);
  EXPECT_EQ(stops, 1);
}

TEST(Docks, EscapeClosesOnePageAfterTheOtherAndThenStopsTheSweep) {
  Docking vna;
  int stops = 0;
  QObject::connect(&vna.Widget<QPushButton>("Form1", "StopMeasurement"), &QPushButton::clicked,
                   [&stops] { ++stops; });
  vna.Open("SetDisplay");
  vna.Open("SetEnhancement");
  vna.Open("SetMemory");
  vna.Open("SetDisplay");  // the order in which they were shown: Enhancement, Memory, Display
  for (const char* form : {"DisplayPara", "MemoryPara", "EnhancePara"}) {
    Docking::Settle();
    EXPECT_FALSE(vna.Window(form).visibleRegion().isEmpty()) << form;
    ASSERT_TRUE(vna.Window(form).isAncestorOf(QApplication::focusWidget())) << form;
    QTest::qWait(QApplication::doubleClickInterval() + 20);
    vna.Press(Qt::Key_Escape);
    EXPECT_FALSE(vna.registry.Find(form)->Shown) << form;
    EXPECT_EQ(stops, 0) << form;
  }
  EXPECT_TRUE(vna.desktop.Main().Picture().hasFocus());
}

TEST(Docks, APageClosedByTheMouseLeavesTheKeyboardWhereItIs) {
  Docking vna;
  vna.Open("SetDisplay");
  vna.Open("SetMemory");
  vna.desktop.Main().Picture().setFocus();
  vna.DockOf("MemoryPara")->close();
  Docking::Settle();
  EXPECT_TRUE(vna.desktop.Main().Picture().hasFocus());
}

TEST(Docks, KeysTurnThePages) {
  Docking vna;
  const auto shown = [&](const char* form) {
    Docking::Settle();
    return !vna.Window(form).visibleRegion().isEmpty() &&
           vna.Window(form).isAncestorOf(QApplication::focusWidget());
  };
  vna.Press(Qt::Key_PageDown, Qt::ControlModifier);  // no page: nothing happens
  vna.Open("SetDisplay");
  vna.desktop.Main().Picture().setFocus();
  vna.Press(Qt::Key_PageDown, Qt::ControlModifier);
  EXPECT_TRUE(shown("DisplayPara")) << "the only one";
  vna.Open("SetEnhancement");
  vna.Open("SetMemory");
  vna.Press(Qt::Key_PageDown, Qt::ControlModifier);
  EXPECT_TRUE(shown("DisplayPara")) << "behind the last comes the first";
  vna.Press(Qt::Key_Tab, Qt::ControlModifier);
  EXPECT_TRUE(shown("EnhancePara"));
  vna.Press(Qt::Key_PageUp, Qt::ControlModifier);
  EXPECT_TRUE(shown("DisplayPara"));
  vna.Press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_TRUE(shown("MemoryPara"));
  vna.Click("EnhancePara", "CloseEnhance");
  EXPECT_TRUE(shown("MemoryPara"));
  vna.Press(Qt::Key_PageUp, Qt::ControlModifier);
  EXPECT_TRUE(shown("DisplayPara")) << "a closed one is passed over";
}

TEST(Docks, TheMainWindowUnderlinesNoLetterThatThePageWithTheKeyboardUses) {
  Docking vna;
  const auto text = [&](const char* name) {
    return vna.Widget<QAbstractButton>("Form1", name).text();
  };
  const auto file = [&] { return vna.desktop.Main().menuBar()->actions().front()->text(); };
  vna.Open("SetMemory");
  std::string page;
  for (const QAbstractButton* button : vna.Window("MemoryPara").findChildren<QAbstractButton*>())
    if (button->isVisible() && button->isEnabled())
      page += QKeySequence::mnemonic(button->text()).toString().right(1).toStdString();
  ASSERT_NE(page.find('E'), std::string::npos) << "Erase All";
  EXPECT_EQ(text("SetEnhancement"), "Enhancement");
  for (const QAbstractButton* button :
       vna.desktop.Main().findChild<QWidget*>("Strip")->findChildren<QAbstractButton*>()) {
    const QString letter = QKeySequence::mnemonic(button->text()).toString().right(1);
    EXPECT_TRUE(letter.isEmpty() || page.find(letter.toStdString()) == std::string::npos)
        << button->text().toStdString();
  }
  vna.desktop.Main().Picture().setFocus();
  EXPECT_EQ(text("SetEnhancement"), "&Enhancement") << "the graphs have the keyboard";
  vna.Window("MemoryPara").findChild<QAbstractButton*>("Command1")->setFocus();
  EXPECT_EQ(text("SetEnhancement"), "Enhancement");
  vna.Press(Qt::Key_Escape);
  EXPECT_EQ(text("SetEnhancement"), "&Enhancement");
  vna.Open("SetDisplay");
  EXPECT_EQ(text("SetMemory"), "&Memory") << "M is off in the page";
  auto& type = vna.Widget<QComboBox>("DisplayPara", "ListGraphType");
  auto& parameter = vna.Widget<QComboBox>("DisplayPara", "ListParameters");
  emit parameter.activated(parameter.findText("S21"));
  emit type.activated(type.findText("R"));
  EXPECT_EQ(text("SetMemory"), "Memory");
  emit type.activated(type.findText("LogMag"));
  EXPECT_EQ(text("SetMemory"), "&Memory");
  const QString title = file();
  vna.desktop.Main().HideLetters("F");
  EXPECT_EQ(file(), "File");
  vna.desktop.Main().HideLetters({});
  EXPECT_EQ(file(), title);
}

TEST(Docks, AWindowOpenedAgainStartsInItsFirstField) {
  Docking vna;
  struct Row {
    const char *Button, *Form;
  };
  for (const Row& row : {Row{"LimiLines", "NewLimitsSet"},
                         {"SetDisplay", "DisplayPara"},
                         {"SetCal", "Calibration"},
                         {"Cursors", "MarkersSet"}}) {
    QWidget* first = nullptr;
    for (const bool docked : {true, false}) {
      if (vna.desktop.Main().findChild<QAction*>("DockWindows")->isChecked() != docked)
        vna.desktop.Main().findChild<QAction*>("DockWindows")->trigger();
      for (int times = 0; times < 2; ++times) {
        vna.Open(row.Button);
        QWidget& window = vna.Window(row.Form);
        window.activateWindow();
        ASSERT_TRUE(RunUntil([&] { return window.isAncestorOf(QApplication::focusWidget()); }));
        if (times == 0) first = QApplication::focusWidget();
        EXPECT_EQ(QApplication::focusWidget(), first) << row.Form << " " << docked;
        for (int presses = 0; presses < 3; ++presses) vna.Press(Qt::Key_Tab);
        ASSERT_NE(QApplication::focusWidget(), first);
        vna.Press(Qt::Key_Escape);
        ASSERT_FALSE(vna.registry.Find(row.Form)->Shown) << row.Form;
        vna.desktop.Main().activateWindow();
        Docking::Settle();
      }
    }
  }
}

TEST(Docks, TabStaysInThePageAndEnterPressesItsMainButton) {
  Docking vna;
  vna.Open("SetEnhancement");
  for (int presses = 0; presses < 40; ++presses) {
    vna.Press(Qt::Key_Tab);
    ASSERT_TRUE(vna.Window("EnhancePara").isAncestorOf(QApplication::focusWidget())) << presses;
  }
  TypeOver(vna.Widget<QLineEdit>("EnhancePara", "InputSmoothing"), "7");
  vna.Press(Qt::Key_Return);
  EXPECT_EQ(vna.program.session().Averaging.SmoothingPercent, 7);
}

TEST(Docks, TheCloseControlOfATabAsksItsForm) {
  Docking vna;
  vna.Open("SetDisplay");
  vna.DockOf("DisplayPara")->close();
  EXPECT_FALSE(vna.registry.Find("DisplayPara")->Shown);
  EXPECT_FALSE(vna.Window("DisplayPara").isVisible());
  vna.Open("SetDisplay");
  EXPECT_TRUE(vna.InPanel("DisplayPara")) << "and it comes back";
}

}  // namespace
}  // namespace qk::test

int main(int argc, char** argv) {
  return qk::test::RunWindowTestsOnScreen(argc, argv, "1600", "1000");
}
