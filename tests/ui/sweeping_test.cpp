// SPDX-License-Identifier: MIT
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
  Calibrated vna;
  EXPECT_EQ(vna.Panel(3), "S11 Cal");
  QString during;
  vna.After(2, [&] {
    during = vna.Panel(6);
    vna.Click("Form1", "StopMeasurement");
  });
  vna.Click("Form1", "StartMeasurement");  // returns when the sweep has stopped
  EXPECT_EQ(during, "SWEEP ON");
  EXPECT_EQ(vna.Panel(6), "Sweep Off");
  EXPECT_TRUE(vna.program.session().Flags.Idle());
}

TEST(Sweeping, TheTraceIsOnTheScreen) {
  Calibrated vna;
  vna.After(1, [&] { vna.Click("Form1", "StopMeasurement"); });
  vna.Click("Form1", "StartMeasurement");
  const QImage image = vna.desktop.Main().Picture().grab().toImage();
  int blue = 0;
  for (int x = 0; x < image.width(); ++x)
    for (int y = 0; y < image.height(); ++y)
      if (image.pixelColor(x, y) == QColor(0, 0, 0x80)) ++blue;
  EXPECT_GT(blue, image.width() / 4);
}

TEST(Sweeping, AnotherWindowSizeIsTakenWhileTheSweepRuns) {
  Calibrated vna;
  vna.desktop.Main().resize(1100, 760);
  vna.After(1, [&] { vna.desktop.Main().resize(1300, 900); });
  QTimer::singleShot(0, &vna.host, [&] {
    auto* look = new QTimer(&vna.host);
    QObject::connect(look, &QTimer::timeout, look, [&vna, look] {
      const QWidget& view = vna.desktop.Main().Picture();
      if (view.width() < 900 || vna.picture.Size().width != view.width()) return;
      look->stop();
      vna.Click("Form1", "StopMeasurement");
    });
    look->start(5);
  });
  vna.Click("Form1", "StartMeasurement");
  EXPECT_EQ(vna.picture.Size().width, vna.desktop.Main().Picture().width());
  EXPECT_LE(vna.program.graphs().Graph(0).Right, vna.picture.Size().width);
  EXPECT_GT(vna.program.graphs().Graph(0).Right, vna.picture.Size().width * 8 / 10);
}

TEST(Sweeping, CalibrationRefusesUntilTheSweepIsStopped) {
  Calibrated vna;
  vna.AnswerAll();
  vna.After(1, [&] {
    vna.Click("Form1", "SetCal");
    vna.Click("Form1", "StopMeasurement");
  });
  vna.Click("Form1", "StartMeasurement");
  ASSERT_EQ(vna.prompts.size(), 1u);
  EXPECT_EQ(vna.prompts[0].Text, "Stop Measurement First");
  EXPECT_FALSE(vna.Window("Calibration").isVisible());
}

TEST(Sweeping, APulledCableIsReportedAndTheWindowLivesOn) {
  Calibrated vna;
  vna.AnswerAll();
  vna.After(1, [&] { vna.instrument.Bench("fault unplugged"); });
  vna.Click("Form1", "StartMeasurement");
  ASSERT_FALSE(vna.prompts.empty());
  EXPECT_EQ(vna.prompts[0].Text, "No Response");
  // Between two sweeps: what the instrument holds is sent before the next trigger.
  EXPECT_EQ(vna.prompts[0].Title, "Set Averages");
  EXPECT_EQ(vna.Panel(6), "Sweep Off");
}

TEST(Sweeping, ClosingTheMainWindowDoesNotWaitForTheSweep) {
  Calibrated vna;
  long ended = 0;
  vna.After(1, [&] {
    vna.desktop.Main().close();
    ended = vna.program.controller().SweepsEnded();
    EXPECT_EQ(vna.terminated, 0);  // the process is gone here
  });
  vna.Click("Form1", "StartMeasurement");
  EXPECT_EQ(vna.terminated, 0);
  EXPECT_LE(vna.program.controller().SweepsEnded(), ended + 1);
}

TEST(Sweeping, ExitDuringASweepEndsTheProcessAfterIt) {
  Calibrated vna;
  vna.AnswerAll();
  vna.After(1, [&] { vna.desktop.Main().findChild<QAction*>("Exit")->trigger(); });
  QTimer::singleShot(0, &vna.host, [&] { vna.Click("Form1", "StartMeasurement"); });
  EXPECT_EQ(QApplication::exec(), 0);
  EXPECT_TRUE(vna.host.Ending());
  EXPECT_FALSE(vna.terminated.has_value());
  EXPECT_FALSE(vna.Window("ShuttingDown").isVisible());
}

}  // namespace
}  // namespace qk::test
