// SPDX-License-Identifier: MIT
// Start-up: its order on the wire, in the windows and in the panels.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "control/start_up_fixture.h"
#include "support/full_disk.h"

namespace qk::test {
namespace {

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
  EXPECT_EQ(session->Id.SerialNumber, 147);
  EXPECT_EQ(session->Id.FirmwareVersion, "1.2");
  EXPECT_EQ(session->Id.PortNumber, 1);
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
  EXPECT_EQ(session->Receiver.OffsetTicks, 1);  // the first tick, by hand
}

TEST_F(StartUp, ClearsCalibrationFlagsAndMemory) {
  control.StartUp();
  EXPECT_FALSE(session->Cal.CalDataReady);
  EXPECT_FALSE(session->Cal.AnyKind());
  EXPECT_FALSE(session->Display.MemoryInUse);
  EXPECT_FALSE(session->Averaging.AverOn);
  EXPECT_EQ(session->Averaging.Averages, 1);
  EXPECT_EQ(session->SweepStatusText, "Sweep Off");
}

TEST_F(StartUp, ALeftOnInstrumentIsBroughtBackToOneAverage) {
  port.Averages = 16;
  control.StartUp();
  EXPECT_EQ(port.Averages, 1u);
}

// A FIFO would block the start until it is read.
TEST_F(StartUp, FilesThatCannotBeWrittenAreReportedAndTheStartGoesOn) {
  const std::string receiver = folder.File("RXCal.dat");
  ASSERT_EQ(::mkfifo(receiver.c_str(), 0600), 0);
  ASSERT_EQ(::mkfifo(folder.File("0147-log.txt").c_str(), 0600), 0);
  control.StartUp();
  EXPECT_EQ(Messages(),
            "VNA Initialisation|" + receiver + ": is not an ordinary file|exclamation|ok\n");
  EXPECT_EQ(session->Panels[3], "Log: is not an ordinary file");
  EXPECT_TRUE(fake.Enabled(TimerId::Timer1));
  fake.RunFor(5000);
  EXPECT_EQ(session->Panels[3], "UNCAL");
}

TEST_F(StartUp, OnAFullDiskTheReceiverFileIsReported) {
  const FullDisk disk(1000);
  control.StartUp();
  EXPECT_EQ(Messages(), "VNA Initialisation|" + folder.File("RXCal.dat") +
                            ": cannot be written: File too large|exclamation|ok\n");
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
  EXPECT_EQ(session->Panels[1], "SN. 147");
  EXPECT_TRUE(fake.Enabled(TimerId::Timer1));
}

TEST_F(StartUp, CancelLeavesAWindowWhereNothingRuns) {
  port.Plugged = false;
  fake.Answers = {Answer::Cancel};
  control.StartUp();
  EXPECT_EQ(Messages(), kNone);
  EXPECT_EQ(Events(), (std::vector<std::string>{"show Form1", "panel 2 No Instrument!"}));
  EXPECT_EQ(session->Id.PortNumber, 0);
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
  EXPECT_EQ(session->Panels[2], " 16, 115.2 Kb/s");
}

TEST_F(StartUp, AWrongModelIsReportedAndThenAskedForAgain) {
  port.Identity = "QK99-20-0901";
  fake.Answers = {Answer::Cancel};
  control.StartUp();
  EXPECT_EQ(Messages(), std::string("Instrument ID|Wrong model instrument|critical|ok\n") + kNone);
  EXPECT_EQ(session->Panels[2], "No Instrument!");
}

TEST_F(StartUp, ASerialNumberWithoutDigitsIsAFailure) {
  port.Serial = "ABCD";
  control.StartUp();
  EXPECT_EQ(Messages(), "VNA Initialisation|Instrument Failed to Respond|critical|ok\n");
  EXPECT_EQ(session->Panels[2], "No Instrument!");
  EXPECT_EQ(session->Panels[1], "");
  EXPECT_EQ(session->Id.PortNumber, 0);
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
  EXPECT_EQ(session->Panels[1], "SN. 147");
}

TEST_F(StartUp, StartExitAndReStartAreDeafMeanwhile) {
  fake.OnEvents = [&] {
    control.StartMeasurement();
    control.Exit();
    control.ReStart();
  };
  control.StartUp();
  EXPECT_EQ(Messages(), "");
  EXPECT_EQ(session->Panels[1], "SN. 147");
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

}  // namespace
}  // namespace qk::test
