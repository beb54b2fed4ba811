// SPDX-License-Identifier: MIT
// A person at the program beside remote clients.
#include "scpi/remote.h"

#include <gtest/gtest.h>

#include "core/window_names.h"
#include "scpi/remote_fixture.h"

namespace qk::test {
namespace {

// ---- people
// ------------------------------------------------------------------------------------------

TEST_F(RemoteTest, WhileAPersonIsAskedQueriesWorkAndCommandsDoNot) {
  Calibrate();
  bool asked = false;
  fake.Answers = {Answer::No};
  fake.OnAsk = [&](const Message& box) {
    asked = true;
    EXPECT_EQ(box.Text, "Close Program and Exit?");
    one.Take();
    Write("*IDN?");
    EXPECT_EQ(one.Take(), "QK47,QK47-20-09,147,0.2.0");
    Write("SENS:FREQ:STAR 1e9");
    Write("SYST:ERR?");
    EXPECT_EQ(one.Take(), "-200,\"Execution error;VNA Control Exit: Close Program and Exit?\"");
    Write("INIT;*OPC?");
    EXPECT_EQ(one.Take(), "1");
  };
  remote.PersonActs([&] { Click("Form1.Exit"); });
  fake.OnAsk = {};
  EXPECT_TRUE(asked);
  EXPECT_EQ(program.controller().SweepsEnded(), 0);
}

TEST_F(RemoteTest, APersonAtWorkInARemoteSweepIsAskedHimself) {
  Calibrate();
  fake.Messages.clear();
  Write("INIT;*OPC?");
  bool acted = false;
  OnEvents = [&] {
    if (acted || session.Display.PointCounter != 20) return;
    acted = true;
    remote.PersonActs([&] { Click("Form1.Diagnostics"); });
  };
  Settle();
  OnEvents = {};
  ASSERT_EQ(fake.Messages.size(), 1u);
  EXPECT_EQ(fake.Messages[0].Text, "Stop Measurement First");
  EXPECT_EQ(one.Take(), "1");
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(PacedRemoteTest, AnExitWhileAClientWaitsAnswersIt) {
  Calibrate();
  Write("INIT;*OPC?");
  bool acted = false;
  fake.Answers = {Answer::Yes};
  OnEvents = [&] {
    if (acted || session.Display.PointCounter != 20) return;
    acted = true;
    remote.PersonActs([&] { Click("Form1.Exit"); });
  };
  Settle();
  OnEvents = {};
  EXPECT_EQ(fake.ExitCode, 0);
  remote.End();
  EXPECT_EQ(one.Take(), "1");
  EXPECT_EQ(scpi::ErrorText(one.client->Status.Pop()),
            "-200,\"Execution error;VNA Control Exit: Close Program and Exit?\"");
}

// The text console's end leaves the sweep as it is: it ends with the process.
TEST_F(PacedRemoteTest, AnEndInTheMiddleOfASweepAnswersWhoWaitsForData) {
  Calibrate();
  TestClient two(remote, "two"), three(remote, "three");
  Write("INIT;:CALC:DATA:SDATA?");
  two.Write("CALC:DATA:SDATA?;*IDN?");
  three.Write("*OPC?;:CALC:MARK1:Y?");
  bool acted = false;
  OnEvents = [&] {
    if (acted || session.Display.PointCounter != 20) return;
    acted = true;
    remote.End();
    Click("Form1.StopMeasurement");
  };
  Settle();
  OnEvents = {};
  ASSERT_TRUE(acted);
  EXPECT_EQ(one.Take(), "9.91E37");
  EXPECT_EQ(two.Take().substr(0, 13), "9.91E37;QK47,");
  EXPECT_EQ(three.Take().substr(0, 2), "1;");
}

// Remote control is switched off: the sweep ends by itself, no client waits for it.
TEST_F(PacedRemoteTest, AReleaseAnswersWhoWaits) {
  Calibrate();
  TestClient two(remote, "two");
  Write("INIT;:CALC:DATA:SDATA?");
  two.Write("*OPC?");
  bool acted = false;
  OnEvents = [&] {
    if (acted || session.Display.PointCounter != 20) return;
    acted = true;
    remote.Release("remote control was switched off");
    EXPECT_EQ(one.Take(), "9.91E37");
    EXPECT_EQ(two.Take(), "1");
  };
  Settle();
  OnEvents = {};
  ASSERT_TRUE(acted);
  EXPECT_EQ(scpi::ErrorText(one.client->Status.Pop()),
            "-200,\"Execution error;remote control was switched off\"");
  EXPECT_EQ(Ask("INIT;*OPC?"), "1");
}

// The graphs then hold points of two sweeps, perhaps of two devices.
TEST_F(PacedRemoteTest, MarkersReadNoSweepThatWasStopped) {
  Calibrate();
  TestClient two(remote, "two");
  EXPECT_EQ(Ask("INIT;*OPC?;:CALC:MARK1:X 1.2e9"), "1");
  EXPECT_NE(Ask(two, "CALC:MARK1:Y?"), "9.91E37");
  EXPECT_EQ(Numbers(Ask(two, "CALC:DATA:SDATA?")).size(), 102u);
  Write("INIT");
  bool acted = false;
  OnEvents = [&] {
    if (acted || session.Display.PointCounter != 20) return;
    acted = true;
    Click("Form1.StopMeasurement");
  };
  Settle();
  OnEvents = {};
  ASSERT_TRUE(acted);
  for (const char* query : {"CALC:DATA:SDATA?", "CALC:MARK1:Y?", "CALC:MARK1:BWID?"}) {
    EXPECT_EQ(Ask(two, query), "9.91E37") << query;
    EXPECT_EQ(Ask(two, "SYST:ERR?").substr(0, 4), "-230") << query;
  }
  const std::string at = Ask(two, "CALC:MARK1:X?");
  two.Write("CALC:MARK1:FUNC:EXEC MAX");
  EXPECT_EQ(Ask(two, "SYST:ERR?").substr(0, 4), "-230");
  EXPECT_EQ(Ask(two, "CALC:MARK1:X?"), at);
  EXPECT_EQ(Ask("INIT;*OPC?"), "1");
  EXPECT_NE(Ask(two, "CALC:MARK1:Y?"), "9.91E37");
}

TEST_F(PacedRemoteTest, ARestartWhileAClientWaitsAnswersIt) {
  Calibrate();
  Write("INIT;*OPC?;CALC:DATA:SDATA?");
  bool acted = false;
  fake.Answers = {Answer::Yes, Answer::Ok};
  OnEvents = [&] {
    if (acted || session.Display.PointCounter != 20) return;
    acted = true;
    remote.PersonActs([&] { Click("Form1.ReStart"); });
  };
  Settle();
  OnEvents = {};
  EXPECT_EQ(one.Take(), "1;9.91E37");
  EXPECT_EQ(Errors(),
            "-200,\"Execution error;Re-Start Program: This will re-start the program and any Cal "
            "data will be lost. Continue?\",-230,\"Data corrupt or stale;S11\"");
  EXPECT_EQ(session.Panels[1], "SN. 147");
  Write("INIT");
  EXPECT_EQ(Error(), "-221,\"Settings conflict;no calibration\"");
}

TEST_F(RemoteTest, WindowsShowWhatAClientChanges) {
  Calibrate();
  fake.Show(window::kDisplayPara);
  fake.Show(window::kEnhancePara);
  fake.Show(window::kCalibration);
  fake.Show(window::kNewLimitsSet);
  Write(
      "CALC:PAR:COUN 4;:CALC:PAR1:DEF S22;:CALC:TRAC1:FORM PHAS;:SENS:AVER:COUN 16;:CALC:SMO:APER "
      "4;"
      "STAT ON;:CALC:LIM ON");
  EXPECT_EQ(Value("DisplayPara.ListParameters"), "S22");
  EXPECT_EQ(Value("DisplayPara.ListGraphType"), "Phase");
  EXPECT_EQ(Value("DisplayPara.ListUnits"), "deg");
  EXPECT_EQ(Value("EnhancePara.InputAverages"), "16");
  EXPECT_EQ(Value("EnhancePara.InputSmoothing"), "4");
  EXPECT_EQ(Value("Form1.SmoothOn"), "on");
  EXPECT_EQ(Value("NewLimitsSet.Check37"), "on");
  Write("SENS:FREQ:STAR 1e9");
  Ask("INIT;*OPC?");
  EXPECT_EQ(Value("Calibration.Text1"), "1000.0000");
  EXPECT_EQ(Errors(), kNone);
}

}  // namespace
}  // namespace qk::test
