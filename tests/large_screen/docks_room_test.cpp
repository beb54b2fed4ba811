// SPDX-License-Identifier: MIT
// Set-up windows in the panel beside the graphs: tearing off, the room of the graphs, what is
// remembered, and when they float.
#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QTabBar>

#include "large_screen/docks_fixture.h"

namespace qk::test {
namespace {

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
