// Start-up, re-start, exit and shut-down: their order on the wire, in the windows and in the
// panels.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "control/control_bench.h"

namespace qk::test {
namespace {

namespace fs = std::filesystem;

class StartUp : public ::testing::Test, public ControlBench {
 protected:
  StartUp() {
    folder_ = fs::temp_directory_path() /
              ("qk-start-up-" + std::to_string(reinterpret_cast<std::uintptr_t>(this)));
    fs::create_directories(folder_);
    session.InstallFolder = folder_.string();
  }
  ~StartUp() override { fs::remove_all(folder_); }

  // Windows, boxes' answers and panels as they came, without progress.
  std::vector<std::string> Events() {
    std::vector<std::string> events;
    events.swap(fake.Events);
    return events;
  }

  fs::path folder_;
};

constexpr const char* kNone =
    "VNA Control|No instrument detected. Check instrument connection and power. If using a USB "
    "adaptor ensure a valid COM port has been assigned (1 to 16)|none|retry/cancel\n";

TEST_F(StartUp, RunsInItsOrderToReady) {
  control.StartUp();
  EXPECT_EQ(Messages(), "");
  EXPECT_EQ(Events(),
            (std::vector<std::string>{"panel 2  1, 115.2 Kb/s", "show Form1", "show EEPROMdata",
                                      "hide EEPROMdata", "panel 5 Temp 23.9 degC",
                                      "panel 1 SN. 147", "panel 6 Sweep Off", "panel 3 UNCAL"}));
  EXPECT_EQ(session.Id.SerialNumber, 147);
  EXPECT_EQ(session.Id.FirmwareVersion, "1.2");
  EXPECT_EQ(session.Id.PortNumber, 1);
  EXPECT_TRUE(control.Idle());
}

TEST_F(StartUp, TalksInItsOrder) {
  control.StartUp();
  std::string all = port.TakeAllCommands();
  // Scan, then the EEPROM: 75 + 75 blocks of level tables, 77 of receiver data, the correction.
  std::string expected = "Q *IDN?";
  for (int i = 0; i < 228; ++i) expected += " Q P";
  expected += " Q W Q C Q T";     // offset point, offsets, temperature: the first tick by hand
  expected += " Q P Q V Q Y8:1";  // serial number, firmware, averaging off
  EXPECT_EQ(all, expected);
}

TEST_F(StartUp, SetsThePortUpForTheSession) {
  control.StartUp();
  EXPECT_EQ(port.Line.Baud, 115200);
  EXPECT_TRUE(port.Line.RtsHandshake);
  EXPECT_EQ(port.Line.ReceiveBuffer, 32512);
  EXPECT_EQ(port.Line.TransmitBuffer, 20000);
}

TEST_F(StartUp, SetsTheTimers) {
  control.StartUp();
  EXPECT_EQ(fake.Interval(TimerId::Timer1), 10000);
  EXPECT_EQ(fake.Interval(TimerId::Timer2), 5000);
  EXPECT_EQ(fake.Interval(TimerId::Timer3), 2000);
  EXPECT_TRUE(fake.Enabled(TimerId::Timer1));
  EXPECT_FALSE(fake.Enabled(TimerId::Timer2));
  EXPECT_FALSE(fake.Enabled(TimerId::Timer3));
  EXPECT_EQ(session.Receiver.OffsetTicks, 1);  // the first tick, by hand
}

TEST_F(StartUp, ClearsCalibrationFlagsAndMemory) {
  control.StartUp();
  EXPECT_FALSE(session.Cal.CalDataReady);
  EXPECT_FALSE(session.Cal.AnyKind());
  EXPECT_FALSE(session.Display.MemoryInUse);
  EXPECT_FALSE(session.Averaging.AverOn);
  EXPECT_EQ(session.Averaging.Averages, 1);
  EXPECT_EQ(session.SweepStatusText, "Sweep Off");
}

TEST_F(StartUp, ALeftOnInstrumentIsBroughtBackToOneAverage) {
  port.Averages = 16;
  control.StartUp();
  EXPECT_EQ(port.Averages, 1u);
}

TEST_F(StartUp, RetryAfterPluggingInFindsTheInstrumentAndGoesOn) {
  port.Plugged = false;
  fake.Answers = {Answer::Retry, Answer::Retry};
  int boxes = 0;
  fake.OnAsk = [&](const Message&) {
    if (++boxes == 2) port.Plugged = true;
  };
  control.StartUp();
  EXPECT_EQ(Messages(), std::string(kNone) + kNone);
  EXPECT_EQ(session.Panels[1], "SN. 147");
  EXPECT_TRUE(fake.Enabled(TimerId::Timer1));
}

TEST_F(StartUp, CancelLeavesAWindowWhereNothingRuns) {
  port.Plugged = false;
  fake.Answers = {Answer::Cancel};
  control.StartUp();
  EXPECT_EQ(Messages(), kNone);
  EXPECT_EQ(Events(), (std::vector<std::string>{"show Form1", "panel 2 No Instrument!"}));
  EXPECT_EQ(session.Id.PortNumber, 0);
  for (TimerId timer : {TimerId::Timer1, TimerId::Timer2, TimerId::Timer3}) {
    EXPECT_FALSE(fake.Enabled(timer));
    EXPECT_EQ(fake.Interval(timer), 0);
  }
  const std::size_t written = port.BytesWritten;
  fake.RunFor(300'000);
  EXPECT_EQ(port.BytesWritten, written);
  control.StartMeasurement();
  EXPECT_EQ(Messages(), "Start Measurement|No Calibration|exclamation|ok\n");
}

TEST_F(StartUp, AnInstrumentOnComSixteenIsFound) {
  port.Com = 16;
  control.StartUp();
  EXPECT_EQ(session.Panels[2], " 16, 115.2 Kb/s");
}

TEST_F(StartUp, AWrongModelIsToldAndThenAskedForAgain) {
  port.Identity = "QK99-20-0901";
  fake.Answers = {Answer::Cancel};
  control.StartUp();
  EXPECT_EQ(Messages(), std::string("Instrument ID|Wrong model instrument|critical|ok\n") + kNone);
  EXPECT_EQ(session.Panels[2], "No Instrument!");
}

TEST_F(StartUp, ASerialNumberWithoutDigitsIsAFailure) {
  port.Serial = "ABCD";
  control.StartUp();
  EXPECT_EQ(Messages(), "VNA Initialisation|Instrument Failed to Respond|critical|ok\n");
  EXPECT_EQ(session.Panels[2], "No Instrument!");
  EXPECT_EQ(session.Panels[1], "");
  EXPECT_EQ(session.Id.PortNumber, 0);
  EXPECT_TRUE(fake.IsShown("Form1"));
  EXPECT_FALSE(fake.IsShown("EEPROMdata"));
}

TEST_F(StartUp, WithoutAnInstrumentTicksTouchNothing) {
  port.Serial = "ABCD";
  control.StartUp();
  Messages();
  const std::size_t written = port.BytesWritten;
  fake.RunFor(300'000);
  EXPECT_EQ(port.BytesWritten, written);
  EXPECT_EQ(Messages(), "");
}

TEST_F(StartUp, ABrokenEepromLoadLetsTheRestGoOn) {
  long asked = 0;
  fake.OnEvents = [&] {
    if (++asked == 2) port.Status = "?";  // the events before the load
  };
  fake.OnAsk = [&](const Message&) { port.Status = "R"; };
  control.StartUp();
  EXPECT_EQ(Messages(), "Set Synth Level|No Response. Re-start Program.|exclamation|ok\n");
  EXPECT_EQ(session.Panels[1], "SN. 147");
}

TEST_F(StartUp, StartExitAndReStartAreDeafMeanwhile) {
  fake.OnEvents = [&] {
    control.StartMeasurement();
    control.Exit();
    control.ReStart();
  };
  control.StartUp();
  EXPECT_EQ(Messages(), "");
  EXPECT_EQ(session.Panels[1], "SN. 147");
  EXPECT_FALSE(fake.ExitCode);
}

TEST_F(StartUp, ClosingTheWindowMeanwhileEndsIt) {
  int events = 0;
  fake.OnEvents = [&] {
    if (++events == 2) control.CloseAtOnce();
  };
  control.StartUp();
  EXPECT_EQ(fake.ExitCode, 0);
  EXPECT_EQ(port.TakeAllCommands(), "Q *IDN?");
}

// ---- re-start
// ------------------------------------------------------------------------------------

constexpr const char* kLost =
    "Re-Start Program|This will re-start the program and any Cal data will be lost. "
    "Continue?|none|yes/no\n";
constexpr const char* kReset =
    "Re-Start Program|Reset VNA (press red button on rear panel). Click OK when "
    "Ready|none|ok/cancel\n";

TEST_F(StartUp, ReStartAsksTwiceAndGivesTheDefaultsAgain) {
  control.StartUp();
  MakeReady();
  session.Flags.DwellOn = true;
  port.TakeAllCommands();
  Events();
  fake.Answers = {Answer::Yes, Answer::Ok};
  control.ReStart();
  EXPECT_EQ(Messages(), std::string(kLost) + kReset);
  EXPECT_EQ(port.TakeAllCommands().substr(0, 7), "Q *IDN?");
  EXPECT_FALSE(session.Cal.AnyKind());
  EXPECT_FALSE(session.Flags.DwellOn);
  EXPECT_EQ(session.Plan.NumPoints, 101);
  EXPECT_EQ(session.Panels[3], "UNCAL");
  EXPECT_EQ(session.Panels[1], "SN. 147");
}

TEST_F(StartUp, ReStartAnsweredNoDoesNothing) {
  control.StartUp();
  MakeReady();
  fake.Answers = {Answer::No};
  control.ReStart();
  EXPECT_EQ(Messages(), kLost);
  EXPECT_TRUE(session.Cal.CalS11);
  EXPECT_TRUE(fake.Enabled(TimerId::Timer1));
  EXPECT_FALSE(fake.Enabled(TimerId::Timer2));
}

TEST_F(StartUp, ReStartCancelledPutsBothTimersOn) {
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
  EXPECT_TRUE(session.Cal.CalS11);
  EXPECT_TRUE(fake.Enabled(TimerId::Timer1));
  EXPECT_TRUE(fake.Enabled(TimerId::Timer2));
}

TEST_F(StartUp, ReStartThatFindsNothingShowsNothingOfTheOldRun) {
  control.StartUp();
  port.Plugged = false;
  port.Close();
  fake.Answers = {Answer::Yes, Answer::Ok, Answer::Cancel};
  control.ReStart();
  for (std::size_t n = 1; n <= 7; ++n)
    EXPECT_EQ(session.Panels[n], n == 2 ? "No Instrument!" : "") << n;
  EXPECT_EQ(fake.Panels[1], "");
  const std::size_t written = port.BytesWritten;
  fake.RunFor(200'000);
  EXPECT_EQ(port.BytesWritten, written);
}

TEST_F(StartUp, ReStartDropsWhatIsWaiting) {
  control.StartUp();
  port.SendUnasked({'R', 'S', 'X', 'X'});
  fake.Answers = {Answer::Yes, Answer::Ok};
  control.ReStart();
  EXPECT_EQ(session.Panels[1], "SN. 147");
}

TEST_F(StartUp, ReStartDuringASweepStopsItFirstAndEndsWithAllCalibrationGone) {
  control.StartUp();
  MakeReady(KindsOfSweep()[3]);
  Messages();
  Events();
  fake.Answers = {Answer::Yes, Answer::Ok};
  AtPoint(1, 20, [&] {
    control.ReStart();
    // Still on the stack: nothing has been said to the instrument yet.
    EXPECT_EQ(port.TakeAllCommands(), "Q A");
    EXPECT_TRUE(session.Cal.Cal12Term);
  });
  control.StartMeasurement();
  EXPECT_EQ(port.Intrusions, std::vector<std::string>{});
  EXPECT_EQ(Messages(), std::string(kLost) + kReset);
  EXPECT_EQ(port.TakeAllCommands().substr(0, 9), "O Q *IDN?");
  EXPECT_FALSE(session.Cal.AnyKind());
  EXPECT_TRUE(Idle());
  EXPECT_TRUE(fake.Enabled(TimerId::Timer1));
}

TEST_F(StartUp, ReStartDuringASweepOfAnInstrumentThatWasResetGoesOnToo) {
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
  EXPECT_EQ(session.Panels[1], "SN. 147");
  EXPECT_FALSE(session.Cal.AnyKind());
  EXPECT_TRUE(Idle());
}

// ---- exit -------------------------------------------------------------------------------------

constexpr const char* kExit = "VNA Control Exit|Close Program and Exit?|none|yes/no\n";

TEST_F(StartUp, ExitAnsweredNoGoesBackToWork) {
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

TEST_F(StartUp, ExitAnsweredNoLeavesTheSignalGeneratorItsInstrument) {
  control.StartUp();
  session.Flags.SigGenActive = true;
  fake.Answers = {Answer::No};
  control.Exit();
  EXPECT_FALSE(fake.Enabled(TimerId::Timer1));
}

TEST_F(StartUp, ExitWhileIdleShutsDownAtOnce) {
  control.StartUp();
  Events();
  fake.Answers = {Answer::Yes};
  control.Exit();
  EXPECT_EQ(Events(), (std::vector<std::string>{"show ShuttingDown", "exit 0"}));
  EXPECT_FALSE(fake.Enabled(TimerId::Timer1));
  EXPECT_EQ(session.SweepStatusText, "Sweep Off");
}

TEST_F(StartUp, ExitDuringASweepShutsDownOnlyAfterItHasStopped) {
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

TEST_F(StartUp, ExitDuringASweepOfOldFirmwareShowsBothWindowsUntilItHasRunOut) {
  control.StartUp();
  MakeReady();
  session.Id.FirmwareVersion = "0.9";
  fake.Answers = {Answer::Yes};
  AtPoint(1, 7, [&] { control.Exit(); });
  int bothUpAt = 0;
  AtPoint(1, 51, [&] {
    bothUpAt = session.Display.PointCounter;
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

TEST_F(StartUp, ExitGoesBeforeAReStartAskedForInTheSameSweep) {
  control.StartUp();
  MakeReady();
  session.Id.FirmwareVersion = "0.9";
  fake.Answers = {Answer::Yes, Answer::Ok, Answer::Yes};
  AtPoint(1, 7, [&] { control.ReStart(); });
  AtPoint(1, 9, [&] { control.Exit(); });
  port.TakeAllCommands();
  control.StartMeasurement();
  EXPECT_EQ(fake.ExitCode, 0);
  EXPECT_EQ(port.TakeAllCommands(), "Q M");
}

TEST_F(StartUp, NothingCanBeStartedAfterTheEnd) {
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

TEST_F(StartUp, ClosingTheWindowDuringASweepEndsAtOnceWithoutAnotherByte) {
  control.StartUp();
  MakeReady();
  AtPoint(1, 30, [&] { control.CloseAtOnce(); });
  port.TakeAllCommands();
  control.StartMeasurement();
  EXPECT_EQ(fake.ExitCode, 0);
  EXPECT_EQ(port.TakeAllCommands(), "Q M");
  EXPECT_EQ(session.Display.PointCounter, 30);
}

}  // namespace
}  // namespace qk::test
