// SPDX-License-Identifier: MIT
// Re-start, exit and the closing of the window, idle and with a sweep on the stack.
#include <gtest/gtest.h>

#include "control/start_up_fixture.h"

namespace qk::test {
namespace {

class ShutDown : public StartUp {};

// ---- re-start
// ------------------------------------------------------------------------------------

constexpr const char* kLost =
    "Re-Start Program|This will re-start the program and any Cal data will be lost. "
    "Continue?|none|yes/no\n";
constexpr const char* kReset =
    "Re-Start Program|Reset VNA (press red button on rear panel). Click OK when "
    "Ready|none|ok/cancel\n";

TEST_F(ShutDown, ReStartAsksTwiceAndGivesTheDefaultsAgain) {
  control.StartUp();
  MakeReady();
  session->Flags.DwellOn = true;
  port.TakeAllCommands();
  Events();
  fake.Answers = {Answer::Yes, Answer::Ok};
  control.ReStart();
  EXPECT_EQ(Messages(), std::string(kLost) + kReset);
  EXPECT_EQ(port.TakeAllCommands().substr(0, 7), "Q *IDN?");
  EXPECT_FALSE(session->Cal.AnyKind());
  EXPECT_FALSE(session->Flags.DwellOn);
  EXPECT_EQ(session->Plan.NumPoints, 101);
  EXPECT_EQ(session->Panels[3], "UNCAL");
  EXPECT_EQ(session->Panels[1], "SN. 147");
}

TEST_F(ShutDown, ReStartForgetsTheTracesToo) {
  control.StartUp();
  MakeReady();
  port.Volts = [](int, int) { return std::vector<double>{1, 0.5, 0, 0}; };
  Measure();
  EXPECT_NE(graphs.Trace(0, 0).Value[20], 0);
  fake.Answers = {Answer::Yes, Answer::Ok};
  control.ReStart();
  EXPECT_EQ(graphs.Trace(0, 0).Value[20], 0);  // flat at the reference, as without any data
}

TEST_F(ShutDown, ReStartAnsweredNoDoesNothing) {
  control.StartUp();
  MakeReady();
  fake.Answers = {Answer::No};
  control.ReStart();
  EXPECT_EQ(Messages(), kLost);
  EXPECT_TRUE(session->Cal.CalS11);
  EXPECT_TRUE(fake.Enabled(TimerId::Timer1));
  EXPECT_FALSE(fake.Enabled(TimerId::Timer2));
}

TEST_F(ShutDown, ReStartCancelledPutsBothTimersOn) {
  control.StartUp();
  MakeReady();
  bool offMeanwhile = false;
  fake.OnAsk = [&](const Message& m) {
    if (m.Choice == Buttons::OkCancel)
      offMeanwhile = !fake.Enabled(TimerId::Timer1) && !fake.Enabled(TimerId::Timer2);
  };
  fake.Answers = {Answer::Yes, Answer::Cancel};
  control.ReStart();
  EXPECT_TRUE(offMeanwhile);
  EXPECT_TRUE(session->Cal.CalS11);
  EXPECT_TRUE(fake.Enabled(TimerId::Timer1));
  EXPECT_TRUE(fake.Enabled(TimerId::Timer2));
}

TEST_F(ShutDown, ReStartThatFindsNothingShowsNothingOfTheOldRun) {
  control.StartUp();
  port.Plugged = false;
  port.Close();
  fake.Answers = {Answer::Yes, Answer::Ok, Answer::Cancel};
  control.ReStart();
  for (std::size_t n = 1; n <= 7; ++n)
    EXPECT_EQ(session->Panels[n], n == 2 ? "No Instrument!" : "") << n;
  EXPECT_EQ(fake.Panels[1], "");
  const std::size_t written = port.BytesWritten;
  fake.RunFor(200'000);
  EXPECT_EQ(port.BytesWritten, written);
}

TEST_F(ShutDown, ReStartDropsWhatIsWaiting) {
  control.StartUp();
  port.SendUnasked({'R', 'S', 'X', 'X'});
  fake.Answers = {Answer::Yes, Answer::Ok};
  control.ReStart();
  EXPECT_EQ(session->Panels[1], "SN. 147");
}

TEST_F(ShutDown, ReStartDuringASweepStopsItFirstAndEndsWithAllCalibrationGone) {
  control.StartUp();
  MakeReady(KindsOfSweep()[3]);
  Messages();
  Events();
  fake.Answers = {Answer::Yes, Answer::Ok};
  AtPoint(1, 20, [&] {
    control.ReStart();
    // Still on the stack: nothing has been said to the instrument yet.
    EXPECT_EQ(port.TakeAllCommands(), "Q A");
    EXPECT_TRUE(session->Cal.Cal12Term);
  });
  control.StartMeasurement();
  EXPECT_EQ(port.Intrusions, std::vector<std::string>{});
  EXPECT_EQ(Messages(), std::string(kLost) + kReset);
  EXPECT_EQ(port.TakeAllCommands().substr(0, 9), "O Q *IDN?");
  EXPECT_FALSE(session->Cal.AnyKind());
  EXPECT_TRUE(Idle());
  EXPECT_TRUE(fake.Enabled(TimerId::Timer1));
}

TEST_F(ShutDown, ReStartDuringASweepOfAnInstrumentThatWasResetGoesOnToo) {
  control.StartUp();
  MakeReady(KindsOfSweep()[3]);
  Messages();
  fake.OnAsk = [&](const Message& m) {
    if (m.Choice != Buttons::OkCancel) return;
    port.NumPoints = 0;  // the red button: the stream stops dead, and no end mark comes
    port.EndMark = false;
    clock.AdvanceMs(20000);
  };
  fake.Answers = {Answer::Yes, Answer::Ok};
  AtPoint(1, 20, [&] { control.ReStart(); });
  control.StartMeasurement();
  EXPECT_EQ(session->Panels[1], "SN. 147");
  EXPECT_FALSE(session->Cal.AnyKind());
  EXPECT_TRUE(Idle());
}

// ---- exit -------------------------------------------------------------------------------------

constexpr const char* kExit = "VNA Control Exit|Close Program and Exit?|none|yes/no\n";

TEST_F(ShutDown, ExitAnsweredNoGoesBackToWork) {
  control.StartUp();
  bool offMeanwhile = false;
  fake.OnAsk = [&](const Message&) { offMeanwhile = !fake.Enabled(TimerId::Timer1); };
  fake.Answers = {Answer::No};
  control.Exit();
  EXPECT_EQ(Messages(), kExit);
  EXPECT_TRUE(offMeanwhile);
  EXPECT_TRUE(fake.Enabled(TimerId::Timer1));
  EXPECT_FALSE(fake.ExitCode);
}

TEST_F(ShutDown, ExitAnsweredNoLeavesTheSignalGeneratorItsInstrument) {
  control.StartUp();
  session->Flags.SigGenActive = session->Flags.SigGenWave = true;
  fake.Answers = {Answer::No};
  control.Exit();
  EXPECT_FALSE(fake.Enabled(TimerId::Timer1));
}

TEST_F(ShutDown, ExitAnsweredNoSwitchesTheTimerOnWhileTheGeneratorsWindowIsMerelyOpen) {
  control.StartUp();
  session->Flags.SigGenActive = true;
  fake.Answers = {Answer::No};
  control.Exit();
  EXPECT_TRUE(fake.Enabled(TimerId::Timer1));
}

TEST_F(ShutDown, ExitWhileIdleShutsDownAtOnce) {
  control.StartUp();
  Events();
  fake.Answers = {Answer::Yes};
  control.Exit();
  EXPECT_EQ(Events(), (std::vector<std::string>{"show ShuttingDown", "exit 0"}));
  EXPECT_FALSE(fake.Enabled(TimerId::Timer1));
  EXPECT_EQ(session->SweepStatusText, "Sweep Off");
}

TEST_F(ShutDown, ExitDuringASweepShutsDownOnlyAfterItHasStopped) {
  control.StartUp();
  MakeReady();
  Events();
  fake.Answers = {Answer::Yes};
  AtPoint(1, 7, [&] {
    control.Exit();
    EXPECT_TRUE(fake.IsShown("ShuttingDown"));
    EXPECT_FALSE(fake.ExitCode);
  });
  control.StartMeasurement();
  EXPECT_EQ(Events(),
            (std::vector<std::string>{"panel 6 SWEEP ON", "show ShuttingDown", "panel 6 Sweep Off",
                                      "hide ShuttingDown", "exit 0"}));
  EXPECT_EQ(port.TakeAllCommands(), "Q M O");
  EXPECT_FALSE(port.Streaming());
}

TEST_F(ShutDown, ExitDuringASweepOfOldFirmwareShowsBothWindowsUntilItHasRunOut) {
  control.StartUp();
  MakeReady();
  session->Id.FirmwareVersion = "0.9";
  fake.Answers = {Answer::Yes};
  AtPoint(1, 7, [&] { control.Exit(); });
  int bothUpAt = 0;
  AtPoint(1, 51, [&] {
    bothUpAt = session->Display.PointCounter;
    EXPECT_TRUE(fake.IsShown("ShuttingDown"));
    EXPECT_TRUE(fake.IsShown("SweepStopping"));
    EXPECT_FALSE(fake.ExitCode);
  });
  control.StartMeasurement();
  EXPECT_EQ(bothUpAt, 51);
  EXPECT_EQ(fake.ExitCode, 0);
  EXPECT_FALSE(fake.IsShown("SweepStopping"));
  EXPECT_FALSE(fake.IsShown("ShuttingDown"));
  EXPECT_EQ(port.WholeSweeps, 1);
}

TEST_F(ShutDown, AnExitFromOutsideAsksNothingAndEndsASweepAsExitDoes) {
  for (const char* firmware : {"1.0", "1.2"}) {
    SweepingControl b;
    b.MakeReady();
    b.session->Id.FirmwareVersion = firmware;
    b.AtPoint(1, 20, [&] {
      b.control.Leave();
      EXPECT_FALSE(b.fake.ExitCode);
      EXPECT_TRUE(b.fake.IsShown("ShuttingDown"));
    });
    b.control.StartMeasurement();
    const bool aborts = std::string(firmware) == "1.2";
    EXPECT_EQ(b.port.TakeAllCommands(), aborts ? "Q M O" : "Q M");
    EXPECT_EQ(b.port.WholeSweeps, aborts ? 0 : 1);
    EXPECT_EQ(b.Messages(), "");
    EXPECT_EQ(b.fake.ExitCode, 0);
    EXPECT_FALSE(b.fake.IsShown("ShuttingDown"));
  }
}

TEST_F(ShutDown, AnExitFromOutsideWhileIdleOrStartingUpEndsAtOnce) {
  control.StartUp();
  port.TakeAllCommands();
  control.Leave();
  EXPECT_EQ(fake.ExitCode, 0);
  EXPECT_EQ(Messages(), "");

  SweepingControl b;
  b.port.Silent = true;
  b.fake.OnAsk = [&b](const Message&) { b.control.Leave(); };
  b.control.StartUp();
  EXPECT_EQ(b.fake.ExitCode, 0);
  EXPECT_EQ(b.fake.Messages.size(), 1u);  // "No instrument detected", and no second scan
}

TEST_F(ShutDown, ExitGoesBeforeAReStartAskedForInTheSameSweep) {
  control.StartUp();
  MakeReady();
  session->Id.FirmwareVersion = "0.9";
  fake.Answers = {Answer::Yes, Answer::Ok, Answer::Yes};
  AtPoint(1, 7, [&] { control.ReStart(); });
  AtPoint(1, 9, [&] { control.Exit(); });
  port.TakeAllCommands();
  control.StartMeasurement();
  EXPECT_EQ(fake.ExitCode, 0);
  EXPECT_EQ(port.TakeAllCommands(), "Q M");
}

TEST_F(ShutDown, NothingCanBeStartedAfterTheEnd) {
  control.StartUp();
  MakeReady();
  control.CloseAtOnce();
  const std::size_t written = port.BytesWritten;
  control.StartMeasurement();
  control.ReStart();
  control.Exit();
  EXPECT_EQ(port.BytesWritten, written);
  EXPECT_EQ(Messages(), "");
}

TEST_F(ShutDown, ClosingTheWindowDuringASweepEndsAtOnceWithoutAnotherByte) {
  control.StartUp();
  MakeReady();
  std::int64_t closed = 0;
  AtPoint(1, 30, [&] {
    control.CloseAtOnce();
    closed = clock.NowMs();
  });
  port.TakeAllCommands();
  control.StartMeasurement();
  EXPECT_EQ(fake.ExitCode, 0);
  EXPECT_EQ(clock.NowMs(), closed);
  EXPECT_EQ(Messages(), "");
  EXPECT_EQ(port.TakeAllCommands(), "Q M");
  EXPECT_EQ(session->Display.PointCounter, 30);
}

}  // namespace
}  // namespace qk::test
