// The bench of the demonstration: what is chosen is connected, what is connected is told.
#include "app/bench_window.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QWindow>

namespace qk {
namespace {

struct WindowFixture {
  QString Connected() { return window.findChild<QLabel*>("Connected")->text(); }
  void Choose(const char* list, const QString& entry) {
    auto* box = window.findChild<QComboBox*>(list);
    const int index = box->findText(entry);
    ASSERT_GE(index, 0) << entry.toStdString();
    emit box->activated(index);
  }
  sim::Instrument instrument;
  BenchWindow window{instrument};
};

TEST(BenchWindow, TellsWhatIsConnectedFromTheStart) {
  WindowFixture bench;
  EXPECT_EQ(bench.Connected().toStdString(), "Connected: " + bench.instrument.Describe());
}

TEST(BenchWindow, StandsOverTheMainWindowAndCoversNoOther) {
  WindowFixture bench;
  QWidget main;
  bench.window.PlaceBeside(main);
  EXPECT_EQ(bench.window.windowHandle()->transientParent(), main.windowHandle());
  EXPECT_FALSE(bench.window.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
}

TEST(BenchWindow, EveryDeviceOfTheListCanBeConnected) {
  WindowFixture bench;
  const auto* list = bench.window.findChild<QComboBox*>("Device");
  for (const char* entry :
       {"Through", "Attenuator 10 dB", "Line 100 mm", "Amplifier", "Band-pass filter"}) {
    const QString before = bench.Connected();
    bench.Choose("Device", entry);
    EXPECT_NE(bench.Connected(), before) << entry;
    EXPECT_EQ(bench.Connected().toStdString(), "Connected: " + bench.instrument.Describe());
  }
  EXPECT_EQ(list->count(), 6);
}

TEST(BenchWindow, AStandardGoesToItsPort) {
  WindowFixture bench;
  bench.Choose("Port1", "Short");
  bench.Choose("Port2", "Load");
  EXPECT_TRUE(bench.Connected().contains("port 1: short"));
  EXPECT_TRUE(bench.Connected().contains("port 2: load"));
}

TEST(BenchWindow, FollowingThePromptsCanBeSwitchedOff) {
  WindowFixture bench;
  auto* follow = bench.window.findChild<QCheckBox*>("Follow");
  EXPECT_TRUE(follow->isChecked());
  follow->click();
  EXPECT_FALSE(bench.instrument.FollowPrompt("Short Circuit on Port 1 (0.00mm)"));
  follow->click();
  EXPECT_TRUE(bench.instrument.FollowPrompt("Short Circuit on Port 1 (0.00mm)"));
}

TEST(BenchWindow, ThePlayIsBegunAndStoppedByItsButtonAndTellsItsStep) {
  WindowFixture bench;
  auto* play = bench.window.findChild<QPushButton*>("Play");
  int clicks = 0;
  bench.window.OnPlay = [&] { ++clicks; };
  EXPECT_EQ(play->text(), "&Calibrate and measure for me");
  play->click();
  EXPECT_EQ(clicks, 1);
  bench.window.ShowStep("Open on both ports");
  EXPECT_EQ(play->text(), "S&top");
  EXPECT_EQ(bench.window.findChild<QLabel*>("Step")->text(), "Open on both ports");
  bench.window.ShowStep("");
  EXPECT_EQ(play->text(), "&Calibrate and measure for me");
}

}  // namespace
}  // namespace qk

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
