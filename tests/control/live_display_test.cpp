// SPDX-License-Identifier: MIT
// What a user sees while a sweep runs: the live layer, the memory hold, overloads.
#include <gtest/gtest.h>

#include <algorithm>

#include "control/control_fixture.h"
#include "control/due_changes.h"

namespace qk::test {
namespace {

class LiveDisplay : public ::testing::Test, public SweepingControl {};

// ---- redraw -------------------------------------------------------------------------------------

TEST_F(LiveDisplay, TheRefreshIntervalFollowsAveragesAndPoints) {
  EXPECT_EQ(PlotRefreshPointsFor(1, 51), 2);  // b = 0
  EXPECT_EQ(PlotRefreshPointsFor(200, 51), 2);
  EXPECT_EQ(PlotRefreshPointsFor(1, 401), 10);  // 5 * 4
  EXPECT_EQ(PlotRefreshPointsFor(1, 101), 5);
  EXPECT_EQ(PlotRefreshPointsFor(2, 101), 4);   // Int(4.87)
  EXPECT_EQ(PlotRefreshPointsFor(16, 201), 6);  // Int(3.05) * 2
  EXPECT_EQ(PlotRefreshPointsFor(40, 401), 2);  // Int(-0.07) is -1
  EXPECT_EQ(PlotRefreshPointsFor(255, 1024), 2);
}

TEST_F(LiveDisplay, TheIntervalIsSetAtEachSweepsEnd) {
  MakeReady(KindsOfSweep()[0], 101);
  Measure();
  EXPECT_EQ(session->Display.PlotRefreshPoints, 5);
}

TEST_F(LiveDisplay, TheLiveLayerIsRedrawnEveryFewPointsAndAtTheLast) {
  MakeReady();
  session->Display.PlotRefreshPoints = 4;
  std::vector<int> at;
  int presented = 0;
  AtPoint(1, 1, [&] { surface.ClearLog(); });
  fake.OnEvents = [&] {
    const int counter = session->Display.PointCounter;
    if (counter > 0 && surface.Presented != presented) at.push_back(counter);
    presented = surface.Presented;
    if (counter == 51) control.StopMeasurement();
  };
  presented = surface.Presented;
  control.StartMeasurement();
  // The first entry is the redraw at the start.
  EXPECT_EQ(std::vector<int>(at.begin() + (at.front() == 1 ? 1 : 0), at.end()),
            (std::vector<int>{4, 8, 12, 16, 20, 24, 28, 32, 36, 40, 44, 48, 51}));
}

TEST_F(LiveDisplay, APartialRedrawWipesFirstAndCommitsNothing) {
  MakeReady();
  session->Display.PlotRefreshPoints = 10;
  std::vector<std::string> log;
  AtPoint(1, 9, [&] { surface.ClearLog(); });
  AtPoint(1, 10, [&] { log = surface.Log(); });
  Measure();
  ASSERT_FALSE(log.empty());
  EXPECT_EQ(log.front(), "wipe");
  EXPECT_EQ(log.back(), "present");
  EXPECT_EQ(std::count(log.begin(), log.end(), "commit"), 0);
}

TEST_F(LiveDisplay, AMemoryHoldIsReplottedAtTheSweepsEndInDataAndMemoryOnly) {
  for (const bool hold : {false, true}) {
    for (const std::string mode : {"Data", "Data+", "Memory+"}) {
      SweepingControl b;
      b.MakeReady();
      b.session->Display.DisplayMode = *Named<DisplayMode>(mode);
      b.session->Display.MemoryHold = hold ? MemoryHold::Max : MemoryHold::Off;
      int commits = 0;
      b.AtPoint(1, 51, [&] { b.surface.ClearLog(); });
      b.AtPoint(2, 1, [&] {
        const auto& log = b.surface.Log();
        commits = static_cast<int>(std::count(log.begin(), log.end(), "commit"));
      });
      b.AtPoint(2, 51, [&] { b.control.StopMeasurement(); });
      b.control.StartMeasurement();
      EXPECT_EQ(commits > 0, hold && mode == "Data+") << mode << hold;
    }
  }
}

// One byte of noise shifts all samples behind it: the extremes would keep it for good.
TEST_F(LiveDisplay, AHoldTakesNothingFromADisturbedSweepNorFromARunningOne) {
  MakeReady();
  session->Display.DisplayMode = DisplayMode::DataAndMemory;
  session->Display.MemoryHold = MemoryHold::Max;
  ChannelSettings& channel = session->Channel(1);
  channel.MemoryValid = true;
  channel.MemoryParameter = channel.Parameter;
  port.Volts = [](int, int samples) {
    auto volts = std::vector<double>(static_cast<std::size_t>(samples), 0.0);
    volts[0] = 1;  // reference
    volts[1] = 0.25;
    return volts;
  };
  const auto held = [&] { return channel.MemoryRe[30]; };
  Measure();
  EXPECT_NEAR(held(), 0.25, 1e-3);
  port.Volts = [](int, int samples) {
    auto volts = std::vector<double>(static_cast<std::size_t>(samples), 0.0);
    volts[0] = 1;
    volts[1] = 0.75;
    return volts;
  };
  port.Surplus = {0x80};
  AtPoint(port.Triggers + 1, 40, [&] {
    graphs.ReplotAll();
    EXPECT_NEAR(held(), 0.25, 1e-3) << "in the middle";
  });
  Measure();
  EXPECT_TRUE(session->Display.SweepDisturbed);
  EXPECT_NEAR(held(), 0.25, 1e-3);
  graphs.RedrawAll(true);
  EXPECT_NEAR(held(), 0.25, 1e-3);
  port.Surplus.clear();
  AtPoint(port.Triggers + 1, 40, [&] {
    graphs.ReplotAll();
    EXPECT_NEAR(held(), 0.25, 1e-3) << "still that of the disturbed one from here on";
  });
  Measure();
  EXPECT_NEAR(held(), 0.75, 1e-3);
}

// ---- overload -----------------------------------------------------------------------------------

std::vector<double> Quiet(int, int samples) {
  return std::vector<double>(static_cast<std::size_t>(samples), 0.5);
}

TEST_F(LiveDisplay, AnOverloadOfPort2IsReportedForFiveSeconds) {
  MakeReady(KindsOfSweep()[1]);
  port.Volts = [](int p, int samples) {
    auto volts = Quiet(p, samples);
    if (p == 10) volts[1] = 2.49;
    return volts;
  };
  AtPoint(1, 11, [&] {
    EXPECT_EQ(session->Panels[3], "Port 2 Overload!");
    EXPECT_EQ(fake.Beeps, 1);
    EXPECT_TRUE(fake.Enabled(TimerId::Timer2));
  });
  AtPoint(1, 51, [&] {
    port.Volts = Quiet;
    control.StopMeasurement();
  });
  control.StartMeasurement();
  fake.RunFor(4800);
  EXPECT_EQ(session->Panels[3], "Port 2 Overload!");
  fake.RunFor(200);
  EXPECT_EQ(session->Panels[3], "S21 Cal");
  EXPECT_FALSE(fake.Enabled(TimerId::Timer2));
}

TEST_F(LiveDisplay, AContinuousOverloadBeepsOnceAndLastsUntilFiveSecondsAfterTheLast) {
  MakeReady(KindsOfSweep()[1]);
  port.PointUs = 200'000;  // a sweep of ten seconds
  port.Volts = [](int p, int samples) {
    auto volts = Quiet(p, samples);
    if (p < 40) volts[1] = -2.5;
    return volts;
  };
  std::int64_t last = 0, restored = 0;
  AtPoint(1, 40, [&] { last = clock.NowMs(); });
  AtPoint(1, 51, [&] { control.StopMeasurement(); });
  fake.OnTick = [&](TimerId timer) {
    control.Tick(timer);
    if (timer == TimerId::Timer2) restored = clock.NowMs();
  };
  control.StartMeasurement();
  fake.RunFor(6000);
  EXPECT_EQ(fake.Beeps, 1);
  EXPECT_NEAR(static_cast<double>(restored - last), 5000, 20);
  EXPECT_EQ(session->Panels[3], "S21 Cal");
  EXPECT_EQ(std::count(fake.Events.begin(), fake.Events.end(), "panel 3 Port 2 Overload!"), 1);
}

TEST_F(LiveDisplay, TheReverseHalfReportsAnOverloadOfPort1) {
  MakeReady(KindsOfSweep()[3]);
  port.Volts = [](int p, int samples) {
    auto volts = Quiet(p, samples);
    if (p == 20) volts[8] = 2.495;
    if (p == 30) volts[1] = 2.495;
    return volts;
  };
  AtPoint(1, 21, [&] { EXPECT_EQ(session->Panels[3], "Port 1 Overload!"); });
  AtPoint(1, 31, [&] { EXPECT_EQ(session->Panels[3], "Port 2 Overload!"); });
  Measure();
  EXPECT_EQ(session->Panels[3], "Port 2 Overload!");
}

TEST_F(LiveDisplay, AReflectionSweepReportsNoOverload) {
  MakeReady();
  port.Volts = [](int, int) { return std::vector<double>{0.5, 2.495, 0.5, 2.495}; };
  Measure();
  EXPECT_EQ(fake.Beeps, 0);
  EXPECT_NE(session->Panels[3], "Port 2 Overload!");
}

TEST_F(LiveDisplay, JustBelowTheLimitIsNoOverload) {
  MakeReady(KindsOfSweep()[1]);
  port.Volts = [](int, int) { return std::vector<double>{0.5, 2.489, 0.5, 0}; };
  Measure();
  EXPECT_EQ(fake.Beeps, 0);
}

}  // namespace
}  // namespace qk::test
