// SPDX-License-Identifier: MIT
// STOP and what ends a sweep before its time.
#include <gtest/gtest.h>

#include "control/control_fixture.h"

namespace qk::test {
namespace {

class Stopping : public ::testing::Test, public SweepingControl {};

TEST_F(Stopping, WhileIdleOnlyClearsTheFlag) {
  MakeReady();
  session->Id.FirmwareVersion = "0.9";
  fake.Show("Updating");
  fake.Events.clear();
  session->Flags.SweepRunning = true;
  control.StopMeasurement();
  EXPECT_FALSE(session->Flags.SweepRunning);
  EXPECT_TRUE(session->Flags.SweepIdle);
  EXPECT_EQ(fake.Events, std::vector<std::string>{});
  EXPECT_EQ(port.BytesWritten, 0u);
}

struct FirmwareCase {
  const char* Text;
  bool Aborts;
  bool ShowsWindow;
};

// Intentional: the two tests differ, so that 1.05 both aborts and shows the window.
TEST_F(Stopping, TheFirmwareDecidesAboutAbortAndWindow) {
  for (const FirmwareCase& c :
       {FirmwareCase{"0.9", false, true}, FirmwareCase{"1.0", false, true},
        FirmwareCase{"1.05", true, true}, FirmwareCase{"1.1", true, false},
        FirmwareCase{"1.2", true, false}, FirmwareCase{"abc", false, true}}) {
    for (const KindOfSweep& kind : KindsOfSweep()) {
      SweepingControl b;
      b.MakeReady(kind);
      b.session->Id.FirmwareVersion = c.Text;
      b.AtPoint(1, 20, [&] {
        b.control.StopMeasurement();
        EXPECT_EQ(b.fake.IsShown("SweepStopping"), c.ShowsWindow) << c.Text;
        EXPECT_FALSE(b.session->Flags.SweepIdle);
      });
      b.control.StartMeasurement();
      EXPECT_EQ(b.port.TakeAllCommands(), std::string("Q ") + kind.Trigger + (c.Aborts ? " O" : ""))
          << c.Text;
      EXPECT_EQ(b.port.WholeSweeps, c.Aborts ? 0 : 1) << c.Text;
      EXPECT_FALSE(b.fake.IsShown("SweepStopping"));
      EXPECT_TRUE(b.Idle());
      EXPECT_EQ(b.session->Panels[6], "Sweep Off");
      EXPECT_EQ(b.Messages(), "");
      EXPECT_EQ(b.control.SweepsEnded(), 1);
    }
  }
}

TEST_F(Stopping, AnAbortGoesOutBetweenFiveBytesAndTwoShortOfTheWhole) {
  for (const KindOfSweep& kind : KindsOfSweep()) {
    const std::size_t whole = 51u * static_cast<std::size_t>(WireOf(kind.Mode).BytesPerPoint);
    SweepingControl b;
    b.MakeReady(kind);
    b.fake.SetInterval(TimerId::Timer1, 0);
    b.port.ByteUs = 6000;  // longer than the program sleeps: it sees every count
    b.port.PointUs = 36 * 6000;
    for (std::size_t bytes = 0; bytes <= whole; ++bytes) {
      // Every count near the ends, and some between.
      if (bytes > 40 && bytes + 40 < whole && bytes % 29 != 0) continue;
      bool asked = false;
      const long sweep = b.port.Triggers + 1;
      b.fake.OnEvents = [&] {
        if (asked || b.port.Triggers != sweep || b.port.Taken() < bytes) return;
        asked = true;
        EXPECT_EQ(b.port.Taken(), bytes);
        b.control.StopMeasurement();
      };
      b.control.StartMeasurement();
      // A stop before the first byte waits for the fifth.
      const bool aborts = bytes == 0 || (bytes > 4 && bytes < whole - 1);
      EXPECT_EQ(b.port.TakeAllCommands(), std::string("Q ") + kind.Trigger + (aborts ? " O" : ""))
          << bytes;
      EXPECT_TRUE(b.Idle());
      EXPECT_EQ(b.Messages(), "");
    }
  }
}

TEST_F(Stopping, WithThreeBytesReceivedTheSweepRunsOut) {
  MakeReady();
  port.ByteUs = 1000;
  port.PointUs = 12000;
  bool asked = false;
  fake.OnEvents = [&] {
    if (asked || port.Taken() != 3) return;
    asked = true;
    control.StopMeasurement();
  };
  control.StartMeasurement();
  EXPECT_TRUE(asked);
  EXPECT_EQ(port.TakeAllCommands(), "Q M");
  EXPECT_EQ(port.WholeSweeps, 1);
  EXPECT_EQ(session->Display.PointCounter, 51);
}

TEST_F(Stopping, BeforeTheFirstByteItWaitsForTheFifthAndAbortsThere) {
  MakeReady();
  port.ByteUs = 6000;  // longer than the program sleeps: it sees every count
  port.PointUs = 300'000;
  fake.At(clock.NowMs() + 50, [&] { control.StopMeasurement(); });
  std::size_t atAbort = 0;
  port.OnCommand = [&](const std::string& command) {
    if (command == "O") atAbort = port.Taken();
  };
  const auto start = clock.NowMs();
  control.StartMeasurement();
  EXPECT_EQ(port.TakeAllCommands(), "Q M O");
  EXPECT_EQ(atAbort, 5u);
  EXPECT_LT(clock.NowMs() - start, 400);
  EXPECT_EQ(port.WholeSweeps, 0);
  EXPECT_TRUE(Idle());
  EXPECT_EQ(Messages(), "");
}

TEST_F(Stopping, BeforeTheFirstByteWithOldFirmwareTheSweepRunsOut) {
  MakeReady();
  session->Id.FirmwareVersion = "1.0";
  fake.At(clock.NowMs() + 1, [&] { control.StopMeasurement(); });
  control.StartMeasurement();
  EXPECT_EQ(port.TakeAllCommands(), "Q M");
  EXPECT_EQ(port.WholeSweeps, 1);
}

TEST_F(Stopping, AStopThatWaitsStartsNoSweep) {
  MakeReady();
  // Due at once: the first events are those before the trigger.
  fake.At(clock.NowMs(), [&] { control.StopMeasurement(); });
  control.StartMeasurement();
  EXPECT_EQ(port.TakeAllCommands(), "Q");
  EXPECT_EQ(port.Triggers, 0);
  EXPECT_TRUE(Idle());
  EXPECT_EQ(session->Panels[6], "Sweep Off");
}

TEST_F(Stopping, AStopDuringTheChangesBetweenTwoSweepsStartsNoFurtherSweep) {
  MakeReady();
  AtPoint(1, 20, [&] { control.Tick(TimerId::Timer1); });
  // The offsets are measured between the sweeps, where nothing runs but repaints.
  port.OnCommand = [&](const std::string& command) {
    if (command == "C") fake.At(clock.NowMs(), [&] { control.StopMeasurement(); });
  };
  control.StartMeasurement();
  EXPECT_EQ(port.TakeAllCommands(), "Q M Q C YF Q Q T");
  EXPECT_EQ(control.SweepsEnded(), 1);
}

TEST_F(Stopping, AChangeThatWaitsBetweenTwoSweepsGoesOutBeforeTheNextTrigger) {
  MakeReady();
  session->Averaging.AveragesSet = 5;
  AtPoint(1, 20, [&] { control.Tick(TimerId::Timer1); });
  port.OnCommand = [&](const std::string& command) {
    if (command == "C") fake.At(clock.NowMs(), [&] { control.AverOn(); });
  };
  StopAtPoint(2, 51);
  control.StartMeasurement();
  EXPECT_EQ(port.TakeAllCommands(), "Q M Q C YF Q Q T Q Y8:5 M");
}

TEST_F(Stopping, AnAbortIsQuickAndDiscardsTheRest) {
  MakeReady(KindsOfSweep()[3]);
  port.PointUs = 20'000;
  session->Data.RawS22.Fill({9, 9});
  std::int64_t asked = 0;
  AtPoint(1, 25, [&] {
    asked = clock.NowMs();
    control.StopMeasurement();
  });
  control.StartMeasurement();
  EXPECT_LT(clock.NowMs() - asked, 40);
  EXPECT_NE(session->Data.RawS22[24].re, 9);
  EXPECT_EQ(session->Data.RawS22[25].re, 9);
  EXPECT_EQ(session->Display.PointCounter, 51);  // no sweep tick on the graph any more
}

TEST_F(Stopping, SampleDataThatReadsXXDoesNotEndAnAbort) {
  MakeReady();
  port.AbortTail = {1, 2, 3, 'X', 'X'};
  port.EndMarkUs = 15'000;
  StopAtPoint(1, 20);
  control.StartMeasurement();
  // Nothing stale meets the next command.
  EXPECT_EQ(port.InBufferCount(), 0u);
  Measure();
  EXPECT_EQ(Messages(), "");
  EXPECT_EQ(control.SweepsEnded(), 2);
}

TEST_F(Stopping, AnAbortWithoutAnEndMarkEndsAfterASecondInSilence) {
  MakeReady();
  port.EndMark = false;
  std::int64_t asked = 0;
  AtPoint(1, 20, [&] {
    asked = clock.NowMs();
    control.StopMeasurement();
  });
  control.StartMeasurement();
  EXPECT_GT(clock.NowMs() - asked, 1000);
  EXPECT_LT(clock.NowMs() - asked, 1020);
  EXPECT_EQ(Messages(), "");
  EXPECT_TRUE(Idle());
}

TEST_F(Stopping, AnAbortOfASilentStreamNeedsNoTimeOut) {
  MakeReady();
  port.PointsInStream = 20;
  port.EndMark = false;
  const auto start = clock.NowMs();
  fake.At(clock.NowMs() + 300, [&] { control.StopMeasurement(); });
  control.StartMeasurement();
  EXPECT_EQ(port.TakeAllCommands(), "Q M O");
  EXPECT_LT(clock.NowMs() - start, 1400);
  EXPECT_EQ(Messages(), "");
}

TEST_F(Stopping, AnAbortOfAnUnpluggedPortEndsAtOnce) {
  MakeReady();
  AtPoint(1, 20, [&] {
    control.StopMeasurement();
    port.Unplug();
  });
  const auto start = clock.NowMs();
  control.StartMeasurement();
  EXPECT_LT(clock.NowMs() - start, 100);
  EXPECT_TRUE(Idle());
}

TEST_F(Stopping, DueChangesAreServedAfterAnAbortToo) {
  MakeReady();
  session->Averaging.AveragesSet = 5;
  AtPoint(1, 20, [&] {
    control.Tick(TimerId::Timer1);
    control.AverOn();
    control.StopMeasurement();
  });
  control.StartMeasurement();
  EXPECT_EQ(port.TakeAllCommands(), "Q M O Q C YF Q Q T Q Y8:5");
  EXPECT_EQ(port.Averages, 5u);
}

TEST_F(Stopping, AStopBehindTheLastPointNeedsNoAbort) {
  MakeReady();
  StopAtPoint(1, 51);
  control.StartMeasurement();
  EXPECT_EQ(port.TakeAllCommands(), "Q M");
}

TEST_F(Stopping, AStopHidesTheUpdatingWindow) {
  MakeReady();
  session->Averaging.AveragesSet = 5;
  AtPoint(1, 20, [&] {
    control.AverOn();
    EXPECT_TRUE(fake.IsShown("Updating"));
    control.StopMeasurement();
    EXPECT_FALSE(fake.IsShown("Updating"));
  });
  control.StartMeasurement();
}

TEST_F(Stopping, AStallWithOldFirmwareLeavesNoWindowBehind) {
  MakeReady();
  session->Id.FirmwareVersion = "0.9";
  session->Averaging.AveragesSet = 5;
  port.PointsInStream = 30;
  AtPoint(1, 20, [&] { control.StopMeasurement(); });
  AtPoint(1, 21, [&] { control.AverOn(); });
  control.StartMeasurement();
  EXPECT_EQ(Messages(), "Measure S11|No Response|exclamation|ok\n");
  EXPECT_FALSE(fake.IsShown("SweepStopping"));
  EXPECT_FALSE(fake.IsShown("Updating"));
}

TEST_F(Stopping, AStallDropsWhatIsWaitingAndStaysIdle) {
  MakeReady();
  port.PointsInStream = 20;
  fake.OnAsk = [&](const Message&) {
    EXPECT_EQ(port.InBufferCount(), 0u);
    EXPECT_TRUE(session->Flags.ReplyTimedOut);
  };
  control.StartMeasurement();
  EXPECT_FALSE(fake.Messages.empty());
  EXPECT_TRUE(control.Idle());
}

}  // namespace
}  // namespace qk::test
