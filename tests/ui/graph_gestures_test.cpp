// SPDX-License-Identifier: MIT
// Mouse and keys on the graphs themselves, in the real windows.
#include <QAction>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QWheelEvent>
#include <array>
#include <string>

#include "limits/limit_segments.h"
#include "limits/limit_test.h"
#include "ui/picture_view.h"
#include "ui_fixture.h"

namespace qk::test {
namespace {

struct Gestures : UiFixture {
  Gestures() {
    StartUp();
    program.session().Display.DisplaySet = DisplaySet::All;
    program.graphs().RedrawAll(true);
  }
  PictureView& View() { return desktop.Main().Picture(); }
  const GraphRecord& Graph(int graph) { return program.graphs().Graph(graph); }
  QPoint Middle(int graph) {
    return {(Graph(graph).Left + Graph(graph).Right) / 2,
            (Graph(graph).Top + Graph(graph).Bottom) / 2};
  }
  ChannelSettings& Channel(int n) { return program.session().Channel(n); }
  void Turn(QPoint at, QPoint eighths, Qt::KeyboardModifiers held = Qt::NoModifier) {
    QWheelEvent event(at, View().mapToGlobal(at), {}, eighths, Qt::NoButton, held,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&View(), &event);
  }
  // The menu at a place, as the right button brings it.
  QMenu* Menu(QPoint at) {
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, View().mapToGlobal(at));
    QApplication::sendEvent(&View(), &event);
    return Open();
  }
  QMenu* Open() {
    for (QMenu* menu : View().findChildren<QMenu*>("GraphMenu"))
      if (menu->isVisible()) return menu;
    return nullptr;
  }
  void Pick(QMenu& menu, const char* word) {
    auto* action = menu.findChild<QAction*>(word);
    ASSERT_NE(action, nullptr) << word;
    ASSERT_TRUE(action->isEnabled()) << word;
    action->trigger();
    menu.close();
  }
};

TEST(GraphGestures, TheWheelStepsTheScaleUnderTheCursor) {
  Gestures vna;
  const double before = vna.Channel(1).Scale;
  vna.Turn(vna.Middle(1), {0, 120});
  EXPECT_DOUBLE_EQ(vna.Channel(2).Scale, 5);
  EXPECT_DOUBLE_EQ(vna.Channel(1).Scale, before);
  vna.Turn(vna.Middle(1), {0, -120});
  EXPECT_DOUBLE_EQ(vna.Channel(2).Scale, 10);
  for (int i = 0; i < 3; ++i) vna.Turn(vna.Middle(1), {0, -40});
  EXPECT_DOUBLE_EQ(vna.Channel(2).Scale, 20) << "a fine wheel adds up to a step";
}

TEST(GraphGestures, WithShiftTheWheelMovesTheReference) {
  Gestures vna;
  vna.Turn(vna.Middle(0), {0, 120}, Qt::ShiftModifier);
  EXPECT_DOUBLE_EQ(vna.Channel(1).Reference, 10);
  vna.Turn(vna.Middle(0), {-240, 0}, Qt::ShiftModifier);
  EXPECT_DOUBLE_EQ(vna.Channel(1).Reference, -10) << "where Shift turns it into one across";
  EXPECT_DOUBLE_EQ(vna.Channel(1).Scale, 10);
}

TEST(GraphGestures, TheReferenceMarkIsDraggedWithTheMouse) {
  Gestures vna;
  const GraphRecord graph = vna.Graph(0);
  const QPoint mark(graph.Left - 4, graph.Top + graph.RefPosition * graph.Height() / 8);
  QTest::mouseMove(&vna.View(), mark);
  EXPECT_EQ(vna.View().cursor().shape(), Qt::SizeVerCursor);
  QTest::mousePress(&vna.View(), Qt::LeftButton, {}, mark);
  const QPointF to(mark.x(), graph.Top + 7 * graph.Height() / 8);
  QMouseEvent move(QEvent::MouseMove, to, vna.View().mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                   Qt::NoModifier);
  QApplication::sendEvent(&vna.View(), &move);
  EXPECT_EQ(vna.Channel(1).RefPosition, 7);
  QTest::mouseRelease(&vna.View(), Qt::LeftButton, {}, to.toPoint());
  QTest::mouseMove(&vna.View(), vna.Middle(0));
  EXPECT_EQ(vna.View().cursor().shape(), Qt::ArrowCursor);
}

TEST(GraphGestures, ADoubleClickOnTheScaleTakesTheKeyboardToItsField) {
  Gestures vna;
  const GraphRecord& graph = vna.Graph(2);
  QTest::mouseDClick(&vna.View(), Qt::LeftButton, {}, {graph.Right - 6, graph.Top - 5});
  QTest::mouseRelease(&vna.View(), Qt::LeftButton, {}, {graph.Right - 6, graph.Top - 5});
  ASSERT_TRUE(vna.Window("DisplayPara").isVisible());
  auto& field = vna.Widget<QLineEdit>("DisplayPara", "SensInput");
  EXPECT_EQ(vna.Window("DisplayPara").focusWidget(), &field);
  EXPECT_EQ(field.selectedText(), field.text());
  EXPECT_TRUE(vna.At("DisplayPara", "CH3Select").Checked);
}

TEST(GraphGestures, TheMenuOfAGraphWorksOnIt) {
  Gestures vna;
  QMenu* menu = vna.Menu(vna.Middle(1));
  ASSERT_NE(menu, nullptr);
  const std::string before(NameOf(vna.Channel(2).Parameter));
  EXPECT_TRUE(menu->findChild<QAction*>(("parameter." + before).c_str())->isChecked());
  vna.Pick(*menu, "parameter.S22");
  EXPECT_EQ(vna.Channel(2).Parameter, Parameter::S22);
  menu = vna.Menu(vna.Middle(1));
  ASSERT_NE(menu, nullptr);
  vna.Pick(*menu, "marker");
  EXPECT_TRUE(vna.program.session().Display.MarkersOn);
  EXPECT_EQ(vna.program.session().Display.ActiveChannel, 2);
}

TEST(GraphGestures, TheMenuIsWorkedByItsLetters) {
  Gestures vna;
  QMenu* menu = vna.Menu(vna.Middle(2));
  ASSERT_NE(menu, nullptr);
  QTest::keyClick(menu, Qt::Key_M);  // Marker Here
  EXPECT_TRUE(vna.program.session().Display.MarkersOn);
  EXPECT_EQ(vna.program.session().Display.ActiveChannel, 3);
  menu = vna.Menu(vna.Middle(2));
  ASSERT_NE(menu, nullptr);
  QTest::keyClick(menu, Qt::Key_S);  // Scale and Reference ...
  EXPECT_TRUE(vna.Window("DisplayPara").isVisible());
  EXPECT_TRUE(vna.At("DisplayPara", "CH3Select").Checked);
  EXPECT_TRUE(vna.At("DisplayPara", "Option1").Checked) << "ALL are displayed";
}

// The worst margin above the items takes no letter from them.
TEST(GraphGestures, TheMenuKeepsItsLettersBelowTheWorstMargin) {
  Gestures vna;
  const auto captions = [&] {
    QStringList all;
    QMenu* menu = vna.Menu(vna.Middle(0));
    for (const QAction* action : menu->actions())
      if (!action->isSeparator()) all << action->text();
    menu->close();
    return all;
  };
  Session& session = vna.program.session();
  session.Cal.Cal12Term = true;  // a verdict needs a measured trace
  for (int i = 1; i <= session.Plan.NumPoints; ++i) vna.program.graphs().PlotPoint(1, i, -2, 0);
  const QStringList before = captions();
  const auto megahertz = [](double hertz) { return std::to_string(static_cast<int>(hertz / 1e6)); };
  session.Limits.Of(1).Segments[0] = {megahertz(session.Plan.StartFreq + 1e6),
                                      megahertz(session.Plan.StopFreq - 1e6), "-1", "-3"};
  ASSERT_TRUE(ApplyLimits(session, 1).Ok());
  vna.Channel(1).LimitsOn = true;
  session.Display.ShowLimits = session.Display.LimitAlarmOn = true;
  vna.program.graphs().View.Remarks = true;
  const std::array<Parameter, 1> measured{vna.Channel(1).Parameter};
  vna.program.graphs().TakeVerdicts(LimitVerdicts(session, measured));
  const QStringList after = captions();
  ASSERT_EQ(after.size(), before.size() + 1);
  EXPECT_TRUE(after[1].contains(", worst margin ")) << after[1].toStdString();
  EXPECT_FALSE(after[1].contains('&')) << after[1].toStdString();
  EXPECT_EQ(after.first(1) + after.mid(2), before);
}

TEST(GraphGestures, OnASmithChartTheWheelMovesTheMarker) {
  Gestures vna;
  vna.Channel(1).GraphType = GraphType::Smith;
  vna.program.graphs().RedrawAll(true);
  vna.Pick(*vna.Menu(vna.Middle(0)), "marker");
  const int point = vna.program.session().Markers.Of(0, 0).Point;
  vna.Turn(vna.Middle(0), {0, 120});
  EXPECT_EQ(vna.program.session().Markers.Of(0, 0).Point, point + 1);
  vna.Turn(vna.Middle(0), {0, -120}, Qt::ShiftModifier);
  EXPECT_EQ(vna.program.session().Markers.Of(0, 0).Point, std::max(1, point - 9));
  QTest::mouseDClick(&vna.View(), Qt::LeftButton, {}, vna.Middle(0));
  QTest::mouseRelease(&vna.View(), Qt::LeftButton, {}, vna.Middle(0));
  EXPECT_TRUE(vna.Widget("DisplayPara", "ListGrid").hasFocus() ||
              vna.Window("DisplayPara").focusWidget() == &vna.Widget("DisplayPara", "ListGrid"));
}

TEST(GraphGestures, LimitsOpenAtThePageOfTheChannel) {
  Gestures vna;
  QMenu* menu = vna.Menu(vna.Middle(3));
  ASSERT_NE(menu, nullptr);
  vna.Pick(*menu, "limits");
  ASSERT_TRUE(vna.Window("NewLimitsSet").isVisible());
  EXPECT_TRUE(vna.Widget<QLineEdit>("NewLimitsSet", "Text97").isVisible());
  EXPECT_FALSE(vna.Widget<QLineEdit>("NewLimitsSet", "Text1").isVisible());
}

TEST(GraphGestures, ThePictureIsCopied) {
  Gestures vna;
  vna.program.graphs().RedrawAll(true);
  const QImage picture = vna.picture.Image().copy();
  QMenu* menu = vna.Menu(vna.Middle(0));
  ASSERT_NE(menu, nullptr);
  vna.Pick(*menu, "copy");
  EXPECT_EQ(QGuiApplication::clipboard()->image().size(), picture.size());
  EXPECT_EQ(QGuiApplication::clipboard()->image().pixelColor(vna.Middle(0)),
            picture.pixelColor(vna.Middle(0)));
}

TEST(GraphGestures, KeysDoWhatTheMouseDoes) {
  Gestures vna;
  MainWindow& main = vna.desktop.Main();
  main.show();
  main.activateWindow();
  RunUntil([&] { return main.isActiveWindow(); }, 2000);
  QTest::keyClick(&main, Qt::Key_Minus, Qt::ControlModifier);
  EXPECT_DOUBLE_EQ(vna.Channel(1).Scale, 20);
  QTest::keyClick(&main, Qt::Key_Plus, Qt::ControlModifier);
  EXPECT_DOUBLE_EQ(vna.Channel(1).Scale, 10);
  QTest::keyClick(&main, Qt::Key_Up, Qt::ControlModifier);
  EXPECT_DOUBLE_EQ(vna.Channel(1).Reference, 10);
  vna.Pick(*vna.Menu(vna.Middle(0)), "marker");
  const int point = vna.program.session().Markers.Of(0, 0).Point;
  QTest::keyClick(&main, Qt::Key_Right, Qt::ControlModifier);
  EXPECT_EQ(vna.program.session().Markers.Of(0, 0).Point, point + 1);
  QTest::keyClick(&main, Qt::Key_Left, Qt::ControlModifier);
  EXPECT_EQ(vna.program.session().Markers.Of(0, 0).Point, point);
  QTest::keyClick(&main, Qt::Key_F10, Qt::ShiftModifier);
  ASSERT_NE(vna.Open(), nullptr);
  vna.Open()->close();
  auto* item = main.findChild<QAction*>("AxisNumbers");
  EXPECT_FALSE(item->isChecked());
  item->trigger();
  EXPECT_TRUE(item->isChecked());
  EXPECT_TRUE(vna.program.graphs().View.AxisNumbers);
}

TEST(GraphGestures, TheMenuKeyOpensTheMenuOfTheActiveChannelOnItsGraph) {
  Gestures vna;
  MainWindow& main = vna.desktop.Main();
  main.show();
  main.activateWindow();
  ASSERT_TRUE(RunUntil([&] { return main.isActiveWindow(); }, 2000));
  QPoint first;
  for (const int channel : {1, 4}) {
    vna.program.session().Display.ActiveChannel = static_cast<std::int16_t>(channel);
    QTest::keyClick(&main, Qt::Key_Menu);
    QMenu* menu = vna.Open();
    ASSERT_NE(menu, nullptr);
    const QAction* title = menu->actions().front();
    EXPECT_EQ(title->text(), QString("CH%1").arg(channel));
    EXPECT_FALSE(title->isEnabled());
    const GraphRecord& graph = vna.Graph(channel - 1);
    const QRect at(vna.View().mapToGlobal(QPoint(graph.Left, graph.Top)),
                   QSize(graph.Width(), graph.Height()));
    EXPECT_TRUE(menu->geometry().intersects(at)) << channel;
    if (channel == 1)
      first = menu->pos();
    else
      EXPECT_NE(menu->pos(), first);
    ASSERT_NE(vna.Channel(channel).Parameter, Parameter::S12);
    vna.Pick(*menu, "parameter.S12");
    EXPECT_EQ(vna.Channel(channel).Parameter, Parameter::S12);
  }
}

TEST(GraphGestures, WheelAndMenuWorkInTheMiddleOfASweep) {
  Gestures vna;
  vna.AnswerAll();
  vna.Click("Form1", "SetCal");
  vna.Click("Calibration", "Command1");
  vna.Click("Calibration", "Option3");
  for (const char* standard : {"O_Cal", "S_Cal", "M_Cal", "App_Cal", "Cls_Cal"})
    vna.Click("Calibration", standard);
  auto* act = new QTimer(&vna.host);
  QObject::connect(act, &QTimer::timeout, act, [&vna, act] {
    if (vna.program.controller().SweepsEnded() < 1) return;
    act->stop();
    const double before = vna.Channel(1).Scale;
    vna.Turn(vna.Middle(0), {0, 120});
    EXPECT_LT(vna.Channel(1).Scale, before);
    QMenu* menu = vna.Menu(vna.Middle(0));
    ASSERT_NE(menu, nullptr);
    vna.Pick(*menu, "autoscale");
    vna.Click("Form1", "StopMeasurement");
  });
  act->start(0);
  vna.Click("Form1", "StartMeasurement");
  EXPECT_TRUE(vna.program.controller().Idle());
  EXPECT_FALSE(act->isActive());
  const TraceRecord& trace = vna.program.graphs().Trace(0, kDataTrace);
  for (int i = 1; i <= trace.Count; ++i) {
    EXPECT_GE(trace.Pixel[static_cast<std::size_t>(i)].y, vna.Graph(0).Top);
    EXPECT_LE(trace.Pixel[static_cast<std::size_t>(i)].y, vna.Graph(0).Bottom);
  }
}

TEST(GraphGestures, F6MeasuresOnce) {
  Gestures vna;
  vna.AnswerAll();
  vna.Click("Form1", "SetCal");
  vna.Click("Calibration", "Command1");
  vna.Click("Calibration", "Option3");
  for (const char* standard : {"O_Cal", "S_Cal", "M_Cal", "App_Cal", "Cls_Cal"})
    vna.Click("Calibration", standard);
  const long before = vna.program.controller().SweepsEnded();
  MainWindow& main = vna.desktop.Main();
  main.show();
  main.activateWindow();
  RunUntil([&] { return main.isActiveWindow(); }, 2000);
  QTest::keyClick(&main, Qt::Key_F6);
  EXPECT_TRUE(RunUntil([&] { return vna.program.controller().SweepsEnded() > before; }));
  EXPECT_TRUE(RunUntil([&] { return vna.program.controller().Idle(); }));
  EXPECT_EQ(vna.program.controller().SweepsEnded(), before + 1);
}

}  // namespace
}  // namespace qk::test
