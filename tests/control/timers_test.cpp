// SPDX-License-Identifier: MIT
// The three timers and the averaging switch.
#include <gtest/gtest.h>

#include "control/control_fixture.h"
#include "control/due_changes.h"

namespace qk::test {
namespace {

class Timers : public ::testing::Test, public SweepingControl {};

TEST_F(Timers, ATickWhileIdleMeasuresOffsetsAndTemperature) {
  MakeReady(KindsOfSweep()[3]);
  session->Receiver.DcOffsetI = 99;
  control.Tick(TimerId::Timer1);
  EXPECT_EQ(port.TakeAllCommands(), "Q C YG Q Q T");
  EXPECT_FALSE(session->Flags.OffsetUpdateDue);
  EXPECT_EQ(session->Panels[5], "Temp 23.9 degC");
  EXPECT_LT(std::abs(session->Receiver.DcOffsetI), 3);
}

TEST_F(Timers, ATickDuringASweepOnlyMarksThemDue) {
  MakeReady();
  session->Flags.SweepIdle = false;
  control.Tick(TimerId::Timer1);
  EXPECT_EQ(port.BytesWritten, 0u);
  EXPECT_TRUE(session->Flags.OffsetUpdateDue);
  EXPECT_EQ(session->Receiver.OffsetTicks, 1);
}

TEST_F(Timers, TicksComeAtTenSecondsForTenMinutesAndThenAtSixty) {
  MakeReady();
  session->Receiver.OffsetTicks = 0;
  for (int call = 1; call <= 70; ++call) {
    control.Tick(TimerId::Timer1);
    EXPECT_EQ(fake.Interval(TimerId::Timer1), call < 60 ? 10000 : 60000) << call;
    EXPECT_EQ(session->Receiver.OffsetTicks, std::min(call, 60)) << call;
  }
}

TEST_F(Timers, ARunningClockTicksSixtyTimesInTenMinutesAndThenOnceAMinute) {
  MakeReady();
  session->Receiver.OffsetTicks = 1;  // the first by hand
  int ticks = 0;
  fake.OnTick = [&](TimerId timer) {
    ++ticks;
    control.Tick(timer);
  };
  fake.RunFor(590'000);
  EXPECT_EQ(ticks, 59);
  fake.RunFor(600'000);
  EXPECT_EQ(ticks, 69);
}

TEST_F(Timers, AnUnpluggedInstrumentIsReportedAtEachTick) {
  MakeReady();
  port.Unplug();
  fake.RunFor(25'000);
  const std::string both =
      "RX Offset|No Response|exclamation|ok\nRX Temp Check|No Response|exclamation|ok\n";
  EXPECT_EQ(Messages(), both + both);
  EXPECT_TRUE(Idle());
}

TEST_F(Timers, ATickWhileAnEarlierOneIsStillAtWorkDoesNothing) {
  MakeReady();
  port.Silent = true;
  int nested = 0;
  fake.OnAsk = [&](const Message&) {
    const std::size_t written = port.BytesWritten;
    fake.RunFor(60'000);  // the box stays up for a minute
    EXPECT_EQ(port.BytesWritten, written);
    ++nested;
  };
  control.Tick(TimerId::Timer1);
  EXPECT_EQ(nested, 2);
  EXPECT_EQ(Messages(),
            "RX Offset|No Response|exclamation|ok\nRX Temp Check|No Response|exclamation|ok\n");
  EXPECT_EQ(session->Receiver.OffsetTicks, 1);
  port.Silent = false;
  fake.OnAsk = {};
  control.Tick(TimerId::Timer1);
  EXPECT_EQ(Messages(), "");
}

TEST_F(Timers, Timer2PutsTheCalibrationTextBackOnce) {
  MakeReady();
  CalState& cal = session->Cal;
  fake.Enable(TimerId::Timer2, true);
  const auto told = [&] {
    control.Tick(TimerId::Timer2);
    return session->Panels[3];
  };
  EXPECT_EQ(told(), "S11 Cal");
  EXPECT_FALSE(fake.Enabled(TimerId::Timer2));
  cal.CalS11 = false;
  EXPECT_EQ(told(), "UNCAL");
  cal.CalS21 = true;
  EXPECT_EQ(told(), "S21 Cal");
  cal.CalS11 = true;
  EXPECT_EQ(told(), "S11 Cal");
  cal.Cal12Term = true;
  EXPECT_EQ(told(), "12 Term Cal");
  cal.CalS11S21 = true;
  EXPECT_EQ(told(), "S11+S21 Cal");
}

// Intentional: here the mark has no blank before it, and only for an interpolated calibration.
TEST_F(Timers, Timer2MarksAnInterpolatedCalibrationWithoutABlank) {
  MakeReady();
  session->Cal.CalInterpolated = true;
  control.Tick(TimerId::Timer2);
  EXPECT_EQ(session->Panels[3], "S11 Cal?");
  session->Cal.CalInterpolated = false;
  session->Plan.CalLevel = -5;
  control.Tick(TimerId::Timer2);
  EXPECT_EQ(session->Panels[3], "S11 Cal");
}

TEST_F(Timers, Timer3BeepsWhileASweepRuns) {
  MakeReady();
  control.Tick(TimerId::Timer3);
  EXPECT_EQ(fake.Beeps, 0);
  session->Flags.SweepRunning = true;
  control.Tick(TimerId::Timer3);
  EXPECT_EQ(fake.Beeps, 1);
}

// ---- averaging ----------------------------------------------------------------------------------

TEST_F(Timers, AveragingSwitchedOnWhileIdleIsSentAtOnce) {
  MakeReady();
  session->Averaging.AveragesSet = 12;
  control.AverOn();
  EXPECT_EQ(port.TakeAllCommands(), "Q Y8:12");
  EXPECT_EQ(session->Averaging.Averages, 12);
  EXPECT_TRUE(session->Averaging.AverOn);
  EXPECT_FALSE(fake.IsShown("Updating"));
  control.AverOff();
  EXPECT_EQ(port.TakeAllCommands(), "Q Y8:1");
  EXPECT_EQ(session->Averaging.Averages, 1);
  EXPECT_FALSE(session->Averaging.AverOn);
}

TEST_F(Timers, AveragingSwitchedDuringASweepIsAnnounced) {
  MakeReady();
  session->Averaging.AveragesSet = 12;
  session->Flags.SweepIdle = false;
  control.AverOn();
  EXPECT_TRUE(session->Flags.AveragesChangeDue);
  EXPECT_FALSE(session->Flags.AveragesOffDue);
  EXPECT_TRUE(fake.IsShown("Updating"));
  EXPECT_EQ(session->Averaging.Averages, 1);
  fake.Hide("Updating");
  control.AverOff();
  EXPECT_TRUE(session->Flags.AveragesChangeDue);
  EXPECT_TRUE(session->Flags.AveragesOffDue);
  EXPECT_TRUE(fake.IsShown("Updating"));
  EXPECT_EQ(port.BytesWritten, 0u);
  EXPECT_EQ(Messages(), "");
}

TEST_F(Timers, AveragingSwitchedOnDuringASweepWithOneSetSaysSo) {
  MakeReady();
  session->Averaging.AveragesSet = 1;
  session->Flags.SweepIdle = false;
  control.AverOn();
  EXPECT_EQ(Messages(), "Set Averages|Averages currently set to 1|none|ok\n");
  EXPECT_TRUE(session->Flags.AveragesChangeDue);
  EXPECT_FALSE(fake.IsShown("Updating"));
}

TEST_F(Timers, ACountThatDidNotReachTheInstrumentIsNotInForce) {
  MakeReady();
  session->Averaging.AveragesSet = 12;
  port.Silent = true;
  control.AverOn();
  EXPECT_EQ(Messages(), "Set Averages|No Response|exclamation|ok\n");
  EXPECT_EQ(session->Averaging.Averages, 1);
  EXPECT_TRUE(session->Averaging.AverOn);
}

TEST_F(Timers, ACountOfZeroIsSentAsOne) {
  MakeReady();
  session->Averaging.AveragesSet = 0;
  control.AverOn();
  EXPECT_EQ(port.TakeAllCommands(), "Q Y8:1");
  EXPECT_EQ(session->Averaging.Averages, 1);
}

TEST_F(Timers, TheSmoothingSwitchReplots) {
  MakeReady();
  session->Data.S11.Fill({0.5, 0});
  control.SmoothChanged();
  EXPECT_NEAR(session->Channel(1).Value[5], -6.02, 0.01);
  EXPECT_EQ(surface.Presented, 1);
}

}  // namespace
}  // namespace qk::test
