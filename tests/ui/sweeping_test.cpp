// The windows while a sweep runs inside a click.
#include <QAction>
#include <QLabel>

#include "ui/picture_view.h"
#include "ui_fixture.h"

namespace qk::test {
namespace {

// Calibrated for S11 by the widgets, the filter connected.
struct Calibrated : UiFixture {
  Calibrated() {
    StartUp();
    AnswerAll();
    Click("Form1", "SetCal");
    Click("Calibration", "Command1");
    Click("Calibration", "Option3");
    for (const char* standard : {"O_Cal", "S_Cal", "M_Cal", "App_Cal", "Cls_Cal"})
      Click("Calibration", standard);
    answers.stop();
    prompts.clear();
    program.controller().OnStart = [this] { instrument.BackToDevice(); };
  }
  QString Panel(int n) {
    return Widget<QLabel>("Form1", ("Panel" + std::to_string(n)).c_str()).text();
  }
  // Runs act in the message loop once n sweeps have ended.
  void After(long n, std::function<void()> act) {
    auto* timer = new QTimer(&host);
    const long target = program.controller().SweepsEnded() + n;
    QObject::connect(timer, &QTimer::timeout, timer, [this, timer, target, act] {
      if (program.controller().SweepsEnded() < target) return;
      timer->stop();
      timer->deleteLater();
      act();
    });
    timer->start(0);
  }
};

TEST(Sweeping, StopIsHeardWhileTheClickOnStartStillRuns) {
  Calibrated bench;
  EXPECT_EQ(bench.Panel(3), "S11 Cal");
  QString during;
  bench.After(2, [&] {
    during = bench.Panel(6);
    bench.Click("Form1", "StopMeasurement");
  });
  bench.Click("Form1", "StartMeasurement");  // returns when the sweep has stopped
  EXPECT_EQ(during, "SWEEP ON");
  EXPECT_EQ(bench.Panel(6), "Sweep Off");
  EXPECT_TRUE(bench.program.session().Flags.Idle());
}

TEST(Sweeping, TheTraceIsOnTheScreen) {
  Calibrated bench;
  bench.After(1, [&] { bench.Click("Form1", "StopMeasurement"); });
  bench.Click("Form1", "StartMeasurement");
  const QImage image = bench.desktop.Main().Picture().grab().toImage();
  int blue = 0;
  for (int x = 0; x < image.width(); ++x)
    for (int y = 0; y < image.height(); ++y)
      if (image.pixelColor(x, y) == QColor(0, 0, 0x80)) ++blue;
  EXPECT_GT(blue, image.width() / 4);
}

TEST(Sweeping, AnotherWindowSizeIsTakenWhileTheSweepRuns) {
  Calibrated bench;
  bench.desktop.Main().resize(1100, 760);
  bench.After(1, [&] { bench.desktop.Main().resize(1300, 900); });
  QTimer::singleShot(0, &bench.host, [&] {
    auto* look = new QTimer(&bench.host);
    QObject::connect(look, &QTimer::timeout, look, [&bench, look] {
      const QWidget& view = bench.desktop.Main().Picture();
      if (view.width() < 900 || bench.picture.Size().width != view.width()) return;
      look->stop();
      bench.Click("Form1", "StopMeasurement");
    });
    look->start(5);
  });
  bench.Click("Form1", "StartMeasurement");
  EXPECT_EQ(bench.picture.Size().width, bench.desktop.Main().Picture().width());
  EXPECT_LE(bench.program.graphs().Graph(0).Right, bench.picture.Size().width);
  EXPECT_GT(bench.program.graphs().Graph(0).Right, bench.picture.Size().width * 8 / 10);
}

TEST(Sweeping, CalibrationRefusesUntilTheSweepIsStopped) {
  Calibrated bench;
  bench.AnswerAll();
  bench.After(1, [&] {
    bench.Click("Form1", "SetCal");
    bench.Click("Form1", "StopMeasurement");
  });
  bench.Click("Form1", "StartMeasurement");
  ASSERT_EQ(bench.prompts.size(), 1u);
  EXPECT_EQ(bench.prompts[0].Text, "Stop Measurement First");
  EXPECT_FALSE(bench.Window("Calibration").isVisible());
}

TEST(Sweeping, APulledCableIsToldAndTheWindowLivesOn) {
  Calibrated bench;
  bench.AnswerAll();
  bench.After(1, [&] { bench.instrument.Bench("fault unplugged"); });
  bench.Click("Form1", "StartMeasurement");
  ASSERT_FALSE(bench.prompts.empty());
  EXPECT_EQ(bench.prompts[0].Text, "No Response");
  EXPECT_EQ(bench.prompts[0].Title, "Measure S11");
  EXPECT_EQ(bench.Panel(6), "Sweep Off");
}

TEST(Sweeping, ClosingTheMainWindowDoesNotWaitForTheSweep) {
  Calibrated bench;
  long ended = 0;
  bench.After(1, [&] {
    bench.desktop.Main().close();
    ended = bench.program.controller().SweepsEnded();
    EXPECT_EQ(bench.terminated, 0);  // the process is gone here
  });
  bench.Click("Form1", "StartMeasurement");
  EXPECT_EQ(bench.terminated, 0);
  EXPECT_LE(bench.program.controller().SweepsEnded(), ended + 1);
}

TEST(Sweeping, ExitDuringASweepEndsTheProcessAfterIt) {
  Calibrated bench;
  bench.AnswerAll();
  bench.After(1, [&] { bench.desktop.Main().findChild<QAction*>("Exit")->trigger(); });
  QTimer::singleShot(0, &bench.host, [&] { bench.Click("Form1", "StartMeasurement"); });
  EXPECT_EQ(QApplication::exec(), 0);
  EXPECT_TRUE(bench.host.Ending());
  EXPECT_FALSE(bench.terminated.has_value());
  EXPECT_FALSE(bench.Window("ShuttingDown").isVisible());
}

}  // namespace
}  // namespace qk::test
