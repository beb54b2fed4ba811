// SPDX-License-Identifier: MIT
// The hand on the graphs in the middle of a sweep, with each set-up window open in turn, on the
// screen that the surroundings name: QK_SCREEN=1366x768, QK_FACTOR=1.25 (device pixels to a pixel),
// QK_DARK=3 for a dark desktop.
#include <QAction>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QTest>
#include <QWheelEvent>

#include "ui/picture_view.h"
#include "ui/ui_fixture.h"
#include "ui/ui_main.h"

namespace qk::test {
namespace {

bool Dark() {
  return qEnvironmentVariableIntValue("QK_DARK") == 3;
}

struct Bench : UiFixture {
  Bench() {
    StartUp();
    host.Show("Form1");
    desktop.MatchDesktopColours();
    AnswerAll();
    Click("Form1", "SetCal");
    Click("Calibration", "Command1");
    Click("Calibration", "Option3");
    for (const char* standard : {"O_Cal", "S_Cal", "M_Cal", "App_Cal", "Cls_Cal"})
      Click("Calibration", standard);
    desktop.Main().activateWindow();
    EXPECT_TRUE(RunUntil([this] { return desktop.Main().isActiveWindow(); }));
    program.graphs().RedrawAll(true);
    program.controller().undo().Forget();
  }
  PictureView& View() { return desktop.Main().Picture(); }
  ChannelSettings& Channel() { return program.session().Channel(1); }
  const GraphRecord& Graph() { return program.graphs().Graph(0); }
  QPoint Middle() {
    return {(Graph().Left + Graph().Right) / 2, (Graph().Top + Graph().Bottom) / 2};
  }
  void Turn(int eighths, Qt::KeyboardModifiers held = {}) {
    QWheelEvent event(Middle(), View().mapToGlobal(Middle()), {}, {0, eighths}, Qt::NoButton, held,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&View(), &event);
  }
  void Drag(QPoint from, QPoint to) {
    QTest::mousePress(&View(), Qt::LeftButton, {}, from);
    QMouseEvent move(QEvent::MouseMove, to, View().mapToGlobal(QPointF(to)), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&View(), &move);
    QTest::mouseRelease(&View(), Qt::LeftButton, {}, to);
  }
  void Pick(const char* word) {
    QContextMenuEvent event(QContextMenuEvent::Mouse, Middle(), View().mapToGlobal(Middle()));
    QApplication::sendEvent(&View(), &event);
    for (QMenu* menu : View().findChildren<QMenu*>("GraphMenu")) {
      if (!menu->isVisible()) continue;
      menu->findChild<QAction*>(word)->trigger();
      menu->close();
      return;
    }
    ADD_FAILURE() << "no menu for " << word;
  }
  // To whatever has the keyboard, in whichever window; a text keeps it for itself, so the hand goes
  // back to the graphs there.
  void Undo() {
    QWidget* at = QApplication::focusWidget();
    if (at == nullptr || qobject_cast<QLineEdit*>(at) != nullptr) at = &View();
    QTest::keyClick(at, Qt::Key_Z, Qt::ControlModifier);
  }
  std::string Notice() { return At("Form1", "Notice").Caption; }

  // One round of everything that a hand does on a graph; each is taken back.
  void Work(const std::string& with) {
    const double scale = Channel().Scale, reference = Channel().Reference;
    Turn(120);
    EXPECT_LT(Channel().Scale, scale) << with;
    Undo();
    EXPECT_DOUBLE_EQ(Channel().Scale, scale) << with;
    Turn(-120, Qt::ShiftModifier);
    EXPECT_LT(Channel().Reference, reference) << with;
    Undo();
    EXPECT_DOUBLE_EQ(Channel().Reference, reference) << with;
    const int position = Channel().RefPosition;
    const QPoint mark(Graph().Left - 4, Graph().Top + position * Graph().Height() / 8);
    Drag(mark, {mark.x(), Graph().Top + (position + 2) % 8 * Graph().Height() / 8});
    EXPECT_EQ(Channel().RefPosition, (position + 2) % 8) << with;
    Undo();
    EXPECT_EQ(Channel().RefPosition, position) << with;
    Pick("marker");
    EXPECT_TRUE(program.session().Display.MarkersOn) << with;
    Undo();
    EXPECT_FALSE(program.session().Display.MarkersOn) << with;
    Pick("store");
    EXPECT_EQ(Notice().substr(0, 11), "S11 stored ") << with;
    EXPECT_TRUE(Channel().MemoryValid) << with;
    Undo();
    EXPECT_FALSE(Channel().MemoryValid) << with;
    QTest::mouseDClick(&View(), Qt::LeftButton, {}, Middle());
    Undo();
    EXPECT_DOUBLE_EQ(Channel().Scale, scale) << with;
    Undo();
    EXPECT_EQ(Notice(), "Nothing to undo") << with;
  }
};

TEST(Screens, IsTheOneThatIsAskedFor) {
  const QStringList size = qEnvironmentVariable("QK_SCREEN", "1366x768").split('x');
  const double factor = qEnvironmentVariable("QK_FACTOR", "1").toDouble();
  const QScreen* screen = QGuiApplication::primaryScreen();
  EXPECT_NEAR(screen->geometry().width() * screen->devicePixelRatio(), size[0].toInt(), 2);
  EXPECT_NEAR(screen->devicePixelRatio(), factor, 0.01);
}

TEST(Screens, TheHandWorksInTheMiddleOfASweepWithEachWindowOpen) {
  Bench vna;
  const std::vector<std::pair<const char*, const char*>> windows{{nullptr, ""},
                                                                 {"SetDisplay", "DisplayPara"},
                                                                 {"SetMemory", "MemoryPara"},
                                                                 {"SetEnhancement", "EnhancePara"},
                                                                 {"Cursors", "MarkersSet"},
                                                                 {"LimiLines", "NewLimitsSet"},
                                                                 {"SetDomain", "TDR_Opts"}};
  std::size_t at = 0;
  long sweeps = -1;
  auto* hand = new QTimer(&vna.host);
  QObject::connect(hand, &QTimer::timeout, hand, [&] {
    const SweepFlags& flags = vna.program.session().Flags;
    const long ended = vna.program.controller().SweepsEnded();
    if (!flags.SweepRunning || ended <= sweeps || vna.program.session().Display.PointCounter < 3)
      return;
    const auto [button, form] = windows[at];
    if (button != nullptr && !vna.registry.Find(form)->Shown) {
      vna.Click("Form1", button);
      EXPECT_TRUE(vna.Window(form).isVisible()) << form;
      return;
    }
    // The window system gives the keyboard in its own time.
    if (QApplication::activeWindow() == nullptr || QApplication::focusWidget() == nullptr) return;
    sweeps = ended;
    vna.program.controller().undo().Forget();
    vna.Work(form);
    if (button != nullptr) vna.host.Hide(form);
    if (++at < windows.size()) return;
    hand->stop();
    vna.Click("Form1", "StopMeasurement");
  });
  hand->start(0);
  vna.Click("Form1", "StartMeasurement");
  EXPECT_EQ(at, windows.size());
  EXPECT_TRUE(vna.program.controller().Idle());
}

TEST(Screens, APassingLineCoversNothing) {
  Bench vna;
  vna.program.controller().notice().Say("S21 stored 12:03");
  vna.host.SyncAll();
  QCoreApplication::processEvents();
  MainWindow& main = vna.desktop.Main();
  const auto placed = [&](QWidget& widget) {
    return QRect(widget.mapTo(&main, QPoint(0, 0)), widget.size());
  };
  auto* notice = main.findChild<QLabel*>("Notice");
  ASSERT_NE(notice, nullptr);
  const QRect line = placed(*notice);
  EXPECT_TRUE(placed(*main.menuBar()).contains(line));
  EXPECT_FALSE(line.intersects(placed(vna.View())));
  EXPECT_FALSE(line.intersects(placed(*main.statusBar())));
  const QRect bar = placed(*main.menuBar());
  for (const QAction* menu : main.menuBar()->actions()) {
    const QRect item = main.menuBar()->actionGeometry(const_cast<QAction*>(menu));
    EXPECT_FALSE(item.isEmpty()) << menu->text().toStdString() << " was pushed out";
    EXPECT_FALSE(line.intersects(item.translated(bar.topLeft()))) << menu->text().toStdString();
  }
  EXPECT_TRUE(main.width() <= 700 || notice->text() == "S21 stored 12:03");
  EXPECT_EQ(notice->toolTip(), "S21 stored 12:03");
  // A text without end leaves the menus their places.
  const std::string longest(2000, 'W');
  vna.program.controller().notice().Say(longest);
  vna.host.SyncAll();
  QCoreApplication::processEvents();
  EXPECT_EQ(notice->toolTip().toStdString(), longest);
  EXPECT_LT(notice->text().size(), 2000);
  const QAction* last = main.menuBar()->actions().constLast();
  const QRect item = main.menuBar()->actionGeometry(const_cast<QAction*>(last));
  EXPECT_FALSE(item.isEmpty());
  EXPECT_GT(placed(*notice).left(), item.translated(bar.topLeft()).right());
  EXPECT_LE(placed(*notice).right(), main.width());
  EXPECT_LE(notice->fontMetrics().horizontalAdvance(notice->text()), notice->width())
      << "shortened by dots, not cut";
}

TEST(Screens, LettersAreSeenOnTheirGround) {
  Bench vna;
  if (!Dark()) return;
  EXPECT_LT(QColor::fromRgb(vna.program.session().Colour.BackColour).lightness(), 100);
}

}  // namespace
}  // namespace qk::test

int main(int argc, char** argv) {
  const QList<QByteArray> size =
      (qEnvironmentVariableIsSet("QK_SCREEN") ? qgetenv("QK_SCREEN") : "1366x768").split('x');
  if (size.size() != 2) return 2;
  qputenv("QT_SCALE_FACTOR", qEnvironmentVariableIsSet("QK_FACTOR") ? qgetenv("QK_FACTOR") : "1");
  return qk::test::RunWindowTestsOnScreen(argc, argv, size[0], size[1], [] {
    if (qEnvironmentVariableIntValue("QK_DARK") != 3) return;
    QPalette dark(QColor(49, 54, 59), QColor(49, 54, 59));
    dark.setColor(QPalette::Base, QColor(35, 38, 41));
    QApplication::setPalette(dark);
  });
}
