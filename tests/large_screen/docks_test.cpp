// SPDX-License-Identifier: MIT
// Set-up windows in the panel beside the graphs, on a screen of 1600 by 1000 pixels: tabs, keys,
// tearing off, what is remembered, and when they float.
#include "ui/docks.h"

#include <QAction>
#include <QComboBox>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QTabBar>
#include <QTest>

#include "ui/form_window.h"
#include "ui/picture_view.h"
#include "ui/ui_fixture.h"
#include "ui/ui_main.h"

namespace qk::test {
namespace {

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

TEST(Docks, AWindowTornOffHasTheSizeOfItsContentsAndDoesNotLieOverThePanel) {
  Docking vna;
  vna.Open("SetMemory");
  vna.Open("SetDisplay");
  QDockWidget* dock = vna.DockOf("MemoryPara");
  const int height = dock->height();
  const QPoint panel = dock->mapToGlobal(QPoint(0, 0));
  dock->setFloating(true);
  Docking::Settle();
  EXPECT_LT(dock->height(), height - 100);
  EXPECT_NE(dock->pos(), panel);
  auto& body = vna.Widget<QScrollArea>("MemoryPara", "Body");
  EXPECT_EQ(body.verticalScrollBar()->maximum(), 0) << "all of it is in view";
  EXPECT_EQ(body.horizontalScrollBar()->maximum(), 0);
  EXPECT_LE(dock->frameGeometry().bottom(), vna.desktop.Main().screen()->geometry().bottom());
}

TEST(Docks, TitlesOfTheTabsAreWhole) {
  Docking vna;
  for (const char* button : {"SetMemory", "SetDisplay", "Cursors", "SetDomain", "SetEnhancement"})
    vna.Open(button);
  const auto bars = vna.desktop.Main().findChildren<QTabBar*>(Qt::FindDirectChildrenOnly);
  bool found = false;
  for (const QTabBar* bar : bars) {
    if (bar->count() < 5) continue;
    found = true;
    EXPECT_EQ(bar->elideMode(), Qt::ElideNone);
    EXPECT_TRUE(bar->usesScrollButtons());
    for (int i = 0; i < bar->count(); ++i)
      EXPECT_GE(bar->tabRect(i).width(), bar->fontMetrics().horizontalAdvance(bar->tabText(i)));
  }
  EXPECT_TRUE(found);
}

TEST(Docks, AWindowTornOffIsSoTheNextTimeAndInTheNextRunUntilItIsReturned) {
  const ScratchFolder kept;
  {
    Docking vna(kept.Text());
    vna.desktop.Main().resize(1560, 900);
    Docking::Settle();
    vna.Open("SetMemory");
    vna.DockOf("MemoryPara")->setFloating(true);
    vna.DockOf("MemoryPara")->move(123, 87);
    vna.Click("MemoryPara", "Command1");
    EXPECT_FALSE(vna.Window("MemoryPara").isVisible());
    vna.Open("SetMemory");
    EXPECT_TRUE(vna.DockOf("MemoryPara")->isFloating());
    vna.Open("SetDisplay");
    EXPECT_TRUE(vna.InPanel("DisplayPara")) << "each for itself";
  }
  Docking vna(kept.Text());
  vna.Open("SetMemory");
  ASSERT_TRUE(vna.DockOf("MemoryPara")->isFloating());
  EXPECT_EQ(vna.DockOf("MemoryPara")->pos(), QPoint(123, 87));
  vna.desktop.Main().findChild<QAction*>("ReturnWindows")->trigger();
  Docking::Settle();
  EXPECT_TRUE(vna.InPanel("MemoryPara"));
  vna.DockOf("MemoryPara")->close();
  vna.Open("SetMemory");
  EXPECT_TRUE(vna.InPanel("MemoryPara"));
}

// Torn off it has an edge, which needs no room in the panel.
TEST(Docks, AWindowThatFitsExactlyReturnsToThePanel) {
  const ScratchFolder kept;
  Docking vna(kept.Text());
  QMainWindow& main = vna.desktop.Main();
  main.resize(1560, 900);
  Docking::Settle();
  vna.Open("SetDisplay");
  ASSERT_TRUE(vna.InPanel("DisplayPara"));
  const int needed = dynamic_cast<DialogWindow&>(vna.Window("DisplayPara")).DockedWidth();
  vna.DockOf("DisplayPara")->setFloating(true);
  Docking::Settle();
  const int beside = main.centralWidget()->width() - vna.desktop.Main().Picture().width();
  const int separator = main.style()->pixelMetric(QStyle::PM_DockWidgetSeparatorExtent);
  main.resize(beside + separator + kLeastGraphs.width() + needed + 2, 900);
  Docking::Settle();
  ASSERT_TRUE(vna.DockOf("DisplayPara")->isFloating());
  main.findChild<QAction*>("ReturnWindows")->trigger();
  Docking::Settle();
  EXPECT_TRUE(vna.InPanel("DisplayPara"));
  EXPECT_GE(vna.desktop.Main().Picture().width(), kLeastGraphs.width());
}

TEST(Docks, WindowsFloatWhereTheGraphsWouldBecomeTooSmall) {
  UiFixture::ScreenScale = 0.5;  // small letters, so that the graphs may be low
  Docking vna;
  UiFixture::ScreenScale = 1;
  vna.desktop.Main().resize(960, 720);
  Docking::Settle();
  vna.Open("SetDisplay");
  EXPECT_TRUE(vna.Floats("DisplayPara"));
  EXPECT_EQ(vna.DockOf("DisplayPara"), nullptr);
  vna.Click("DisplayPara", "CloseDisplayPara");
  vna.desktop.Main().resize(1560, 430);
  Docking::Settle();
  ASSERT_LT(vna.GraphSize().height(), 400);
  vna.Open("SetDisplay");
  EXPECT_TRUE(vna.Floats("DisplayPara"));
  vna.Click("DisplayPara", "CloseDisplayPara");
  vna.desktop.Main().resize(1560, 800);
  Docking::Settle();
  vna.Open("SetDisplay");
  EXPECT_TRUE(vna.InPanel("DisplayPara"));
}

TEST(Docks, AWindowThatGrowsInThePanelScrollsAndTheGraphsKeepTheirSize) {
  Docking vna;
  vna.program.session().Display.MarkersOn = true;
  vna.Open("SetDisplay");
  ASSERT_TRUE(vna.InPanel("DisplayPara"));
  // As narrow as the panel lets it be.
  const int spare = vna.GraphSize().width() - 640;
  vna.desktop.Main().resize(vna.desktop.Main().width() - spare, 900);
  Docking::Settle();
  ASSERT_TRUE(vna.InPanel("DisplayPara"));
  ASSERT_GE(vna.GraphSize().width(), 640);
  auto& unit = vna.Widget<QLabel>("DisplayPara", "SensInput_Unit");
  unit.setMinimumWidth(500);
  Docking::Settle();
  EXPECT_GE(vna.GraphSize().width(), 640);
  EXPECT_TRUE(vna.InPanel("DisplayPara"));
  auto& body = vna.Widget<QScrollArea>("DisplayPara", "Body");
  EXPECT_GT(body.horizontalScrollBar()->maximum(), 0)
      << "what does not fit is reached by scrolling";
  // In a wide window it takes the room that there is.
  vna.desktop.Main().resize(1580, 900);
  vna.desktop.Main().resize(1590, 900);
  Docking::Settle();
  EXPECT_GE(vna.GraphSize().width(), 640);
}

TEST(Docks, TheBandOfTheMarkerTableDoesNotWidenThePanel) {
  Docking vna;
  Session& session = vna.program.session();
  session.Display.MarkersOn = true;
  vna.desktop.Main().findChild<QAction*>("MarkerTable")->trigger();
  Docking::Settle();
  ASSERT_TRUE(vna.InPanel("MarkerTable"));
  const int before = vna.GraphSize().width();
  for (int m = 0; m < 3; ++m) session.Markers.Set(m) = {true, m == 1, m == 2, 10};
  vna.host.Act([&vna] {
    vna.program.controller().graphs().RedrawAll(false);
    vna.host.SessionChanged();
  });
  Docking::Settle();
  const QString band = vna.Widget<QLabel>("MarkerTable", "Band_Caption").text();
  EXPECT_TRUE(band.startsWith("Bandwidth")) << band.toStdString();
  EXPECT_EQ(vna.GraphSize().width(), before);
}

TEST(Docks, ThePageOpenedAgainHasTheKeyboardInItsFirstField) {
  for (const bool docked : {true, false}) {
    Docking vna;
    Session& session = vna.program.session();
    session.Display.MarkersOn = true;
    session.Markers.Set(0) = {true, false, true, 10};
    vna.program.controller().graphs().RedrawAll(false);
    if (!docked) vna.desktop.Main().findChild<QAction*>("DockWindows")->trigger();
    auto* item = vna.desktop.Main().findChild<QAction*>("MarkerTable");
    for (int opening = 1; opening <= 3; ++opening) {
      item->trigger();
      Docking::Settle();
      ASSERT_EQ(vna.InPanel("MarkerTable"), docked);
      EXPECT_EQ(vna.Window("MarkerTable").focusWidget(),
                &vna.Widget<QLineEdit>("MarkerTable", "Position11"))
          << docked << " opening " << opening;
      auto& exit = vna.Widget<QPushButton>("MarkerTable", "Command2");
      exit.setFocus();
      exit.click();
      Docking::Settle();
    }
  }
}

// Four graphs beside the panel in a high window, each higher than wide.
TEST(Docks, ASmithChartStaysInItsGraphWhereTheGraphsAreHighAndNarrow) {
  Docking vna;
  vna.Open("SetDisplay");
  Session& session = vna.program.session();
  session.Display.DisplaySet = DisplaySet::All;
  session.Display.MarkersOn = true;
  session.Channel(3).Parameter = Parameter::S11;
  session.Channel(3).GraphType = GraphType::Smith;
  vna.desktop.Main().resize(1290, 960);
  Docking::Settle();
  vna.program.controller().graphs().RedrawAll(true);
  const Graphs& graphs = vna.program.controller().graphs();
  const GraphRecord& chart = graphs.Graph(2);
  const GraphRecord& beside = graphs.Graph(3);
  ASSERT_TRUE(chart.IsSmith);
  ASSERT_GT(beside.Height(), beside.Width()) << "the case to be tested";
  EXPECT_EQ(chart.Height(), chart.Width());
  EXPECT_EQ(chart.Top, beside.Top);
  // A wide graph is as before.
  vna.desktop.Main().resize(1590, 700);
  Docking::Settle();
  vna.program.controller().graphs().RedrawAll(true);
  EXPECT_EQ(chart.Bottom, beside.Bottom);
}

TEST(Docks, AWidePanelOfALargerScreenLeavesTheGraphsTheirSize) {
  const ScratchFolder kept;
  {
    Docking vna(kept.Text());
    ASSERT_TRUE(vna.DockDisplay({1590, 900}));
    vna.desktop.Main().resizeDocks({vna.DockOf("DisplayPara")}, {700}, Qt::Horizontal);
    Docking::Settle();
  }
  Docking vna(kept.Text());
  EXPECT_TRUE(vna.DockDisplay({1290, 900}));
  EXPECT_GE(vna.GraphSize().width(), 640);
}

// A screen of 1280 by 800 and one of 1366 by 768, the main window as large as they are.
TEST(Docks, OnTheScreensOfLaptopsSetUpWindowsHaveRoom) {
  Docking vna;
  EXPECT_TRUE(vna.DockDisplay({1280, 760}));
  EXPECT_GE(vna.GraphSize().width(), 640);
  vna.Click("DisplayPara", "CloseDisplayPara");
  vna.desktop.Main().resize(1366, 728);
  Docking::Settle();
  for (const char* button :
       {"SetMemory", "SetDisplay", "Cursors", "SetDomain", "SetEnhancement", "LimiLines"})
    vna.Open(button);
  for (const char* form :
       {"MemoryPara", "DisplayPara", "MarkersSet", "TDR_Opts", "EnhancePara", "NewLimitsSet"})
    EXPECT_TRUE(vna.InPanel(form)) << form;
  EXPECT_GE(vna.GraphSize().width(), 640) << vna.desktop.Main().width();
}

// Beside the bench of the demonstration the main window is narrower than the screen.
TEST(Docks, LimitLinesHasRoomInAWindowOf1280Pixels) {
  Docking vna;
  vna.desktop.Main().resize(1280, 728);
  Docking::Settle();
  vna.Open("LimiLines");
  EXPECT_TRUE(vna.InPanel("NewLimitsSet"));
  EXPECT_GE(vna.GraphSize().width(), 640);
  for (const QLineEdit* field : vna.Window("NewLimitsSet").findChildren<QLineEdit*>()) {
    const bool frequency = field->toolTip().contains("MHz");
    EXPECT_GE(field->width(),
              field->fontMetrics().horizontalAdvance(frequency ? "3000.0000" : "-1000.0"))
        << field->objectName().toStdString();
  }
  // In the high page the row stays below the segments.
  const QWidget& last = vna.Widget("NewLimitsSet", "Text21");
  const QWidget& show = vna.Widget("NewLimitsSet", "Check1");
  const QWidget& page = vna.Window("NewLimitsSet");
  const int gap = show.mapTo(&page, QPoint()).y() - last.mapTo(&page, QPoint(0, last.height())).y();
  EXPECT_GT(gap, 0);
  EXPECT_LT(gap, last.height());
}

TEST(Docks, TheSignsOfATitleBarCanBeReadOnADarkDesktopToo) {
  const QPalette light = QApplication::palette();
  Docking vna;
  vna.Open("SetDisplay");
  QPalette dark(QColor(49, 54, 59), QColor(49, 54, 59));
  dark.setColor(QPalette::WindowText, QColor(239, 240, 241));
  for (const QPalette& palette : {dark, light}) {
    QApplication::setPalette(palette);
    QCoreApplication::processEvents();
    const int ground = qGray(palette.color(QPalette::Window).rgb());
    for (const char* name : {"qt_dockwidget_floatbutton", "qt_dockwidget_closebutton"}) {
      auto* button = vna.DockOf("DisplayPara")->findChild<QAbstractButton*>(name);
      ASSERT_TRUE(button != nullptr && button->isVisible()) << name;
      const QImage seen = button->grab().toImage();
      int contrast = 0;
      for (int y = 0; y < seen.height(); ++y)
        for (int x = 0; x < seen.width(); ++x)
          contrast = std::max(contrast, std::abs(qGray(seen.pixel(x, y)) - ground));
      EXPECT_GT(contrast, 120) << name;
    }
  }
}

TEST(Docks, ATornOffPageHasItsEdgeAndInThePanelNone) {
  Docking vna;
  vna.Open("SetMemory");
  QLayout* layout = vna.Window("MemoryPara").layout();
  EXPECT_EQ(layout->contentsMargins(), QMargins());
  vna.DockOf("MemoryPara")->setFloating(true);
  EXPECT_GT(layout->contentsMargins().left(), 0);
  vna.DockOf("MemoryPara")->setFloating(false);
  EXPECT_EQ(layout->contentsMargins(), QMargins());
}

TEST(Docks, WhenTheMainWindowBecomesTooSmallThePagesFloatWithWhatIsTyped) {
  Docking vna;
  vna.Open("SetDisplay");
  vna.Open("SetEnhancement");
  ASSERT_TRUE(vna.InPanel("DisplayPara"));
  TypeOver(vna.Widget<QLineEdit>("DisplayPara", "SensInput"), "3");
  vna.desktop.Main().resize(900, 720);
  Docking::Settle();
  ASSERT_TRUE(
      RunUntil([&] { return vna.Floats("DisplayPara") && vna.Floats("EnhancePara"); }, 3000));
  EXPECT_EQ(vna.Widget<QLineEdit>("DisplayPara", "SensInput").text(), "3");
  vna.Click("DisplayPara", "ApplyDisplay");
  EXPECT_EQ(vna.program.session().Channel(1).Scale, 3);
}

TEST(Docks, CanBeSwitchedOffAndStaySo) {
  const ScratchFolder kept;
  {
    Docking vna(kept.Text());
    ASSERT_TRUE(vna.DockDisplay({1560, 900}));
    EXPECT_GT(vna.Window("DisplayPara").contentsMargins().bottom(), 0) << "room for its tab";
    vna.desktop.Main().findChild<QAction*>("DockWindows")->trigger();
    EXPECT_TRUE(vna.Floats("DisplayPara"));
    EXPECT_EQ(vna.Window("DisplayPara").contentsMargins(), QMargins());
  }
  Docking vna(kept.Text());
  EXPECT_FALSE(vna.desktop.Main().findChild<QAction*>("DockWindows")->isChecked());
  vna.Open("SetDisplay");
  EXPECT_TRUE(vna.Floats("DisplayPara"));
}

TEST(Docks, ModalWindowsAndBoxesStayWindowsOfTheirOwn) {
  Docking vna;
  vna.Visit(*vna.registry.Find("NewCalKit"),
            [](QWidget& window) { EXPECT_TRUE(window.isWindow()); });
}

TEST(Docks, OpenAndCloseInTheMiddleOfASweep) {
  Docking vna;
  vna.AnswerAll();
  vna.Click("Form1", "SetCal");
  vna.Click("Calibration", "Command1");
  vna.Click("Calibration", "Option4");
  vna.Click("Calibration", "Thru_Cal");
  vna.Click("Calibration", "App_Cal");
  vna.Click("Calibration", "Cls_Cal");
  ASSERT_TRUE(vna.program.session().Cal.CalS21);
  int opened = 0;
  QTimer hand;
  QObject::connect(&hand, &QTimer::timeout, &hand, [&] {
    if (!vna.program.session().Flags.SweepRunning) return;
    const char* form = opened % 2 == 0 ? "DisplayPara" : "MemoryPara";
    if (vna.registry.Find(form)->Shown)
      vna.DockOf(form)->close();
    else
      vna.Click("Form1", opened % 2 == 0 ? "SetDisplay" : "SetMemory");
    if (++opened == 12) vna.Click("Form1", "StopMeasurement");
  });
  hand.start(30);
  vna.Click("Form1", "StartMeasurement");
  EXPECT_EQ(opened, 12);
  EXPECT_TRUE(vna.program.session().Flags.Idle());
  EXPECT_GT(vna.program.controller().SweepsEnded(), 0);
}

TEST(MainWindow, OpensWhereAndAsLargeAsItWas) {
  const ScratchFolder kept;
  {
    Docking vna(kept.Text());
    vna.desktop.Main().setGeometry(40, 50, 1111, 777);
    Docking::Settle();
  }
  const Docking vna(kept.Text());
  EXPECT_EQ(const_cast<Docking&>(vna).desktop.Main().geometry(), QRect(40, 50, 1111, 777));
}

TEST(MainWindow, APlaceBeyondTheScreenIsNotTaken) {
  const ScratchFolder kept;
  {
    Docking vna(kept.Text());
    vna.desktop.Main().setGeometry(5000, 4000, 1111, 777);
    Docking::Settle();
  }
  Docking vna(kept.Text());
  EXPECT_TRUE(QGuiApplication::primaryScreen()->availableGeometry().intersects(
      vna.desktop.Main().geometry()));
}

}  // namespace
}  // namespace qk::test

int main(int argc, char** argv) {
  return qk::test::RunWindowTestsOnScreen(argc, argv, "1600", "1000");
}
