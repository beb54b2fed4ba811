#include "forms/form1.h"

#include "forms_bench.h"

namespace qk::test {
namespace {

TEST(Form1, BearsItsCaptionAndOnlyWhatWorks) {
  FormsBench bench;
  EXPECT_EQ(bench.Window("Form1").Caption(), "QK47-20-09 VNA Control");
  Texts controls;
  for (const Control& c : bench.Window("Form1").Controls())
    controls.push_back(c.Name + "|" + c.Caption + "|" + c.Menu);
  EXPECT_EQ(controls, (Texts{"SaveMeasurements|Save Measurements|File",
                             "LoadMeasFile|Load Measurements|File",
                             "Exit|Exit|File",
                             "ReStart|Re-Start Program|Tools",
                             "About|About|Help",
                             "StartMeasurement|START|",
                             "StopMeasurement|STOP|",
                             "SetCal|Calibration|",
                             "SetMemory|Memory|",
                             "SetEnhancement|Enhancement|",
                             "SetDisplay|Display|",
                             "SetDomain|TD Options|",
                             "DisplayData|Data|",
                             "DisplayMem_Data|Data and Memory|",
                             "MemoryMath|Memory Math|",
                             "SmoothOff|Off|",
                             "SmoothOn|On|",
                             "AverOff|Off|",
                             "AverOn|On|",
                             "PicGraph||"}));
}

TEST(Form1, StartWithoutACalibrationSaysSo) {
  FormsBench bench;
  bench.Click("Form1.StartMeasurement");
  EXPECT_EQ(bench.TakeMessages(), Texts{"Start Measurement|No Calibration|exclamation|ok"});
}

TEST(Form1, StopWhileIdleClearsTheRunFlagAndDoesNothingElse) {
  FormsBench bench;
  bench.session.Flags.SweepRunning = true;
  bench.fake.Events.clear();
  bench.Click("Form1.StopMeasurement");
  EXPECT_FALSE(bench.session.Flags.SweepRunning);
  EXPECT_TRUE(bench.fake.Events.empty());
  EXPECT_TRUE(bench.port.Writes.empty());
}

TEST(Form1, CalibrationOpensWhileIdle) {
  FormsBench bench;
  bench.Click("Form1.SetCal");
  EXPECT_TRUE(bench.fake.IsShown("Calibration"));
  EXPECT_FALSE(bench.Window("Calibration").Modal);
  EXPECT_TRUE(bench.TakeMessages().empty());
}

TEST(Form1, CalibrationIsRefusedDuringASweep) {
  FormsBench bench;
  bench.PretendSweep();
  bench.Click("Form1.SetCal");
  EXPECT_FALSE(bench.fake.IsShown("Calibration"));
  EXPECT_EQ(bench.TakeMessages(), Texts{"Calibration|Stop Measurement First|exclamation|ok"});
}

TEST(Form1, CalibrationIsRefusedWhileASweepIsStopping) {
  FormsBench bench;
  bench.PretendStopping();
  bench.Click("Form1.SetCal");
  EXPECT_EQ(bench.TakeMessages(), Texts{"Calibration|Stop Measurement First|exclamation|ok"});
}

TEST(Form1, EnhancementAndDisplayOpenDuringASweep) {
  FormsBench bench;
  bench.PretendSweep();
  bench.Click("Form1.SetEnhancement");
  bench.Click("Form1.SetDisplay");
  EXPECT_TRUE(bench.fake.IsShown("EnhancePara"));
  EXPECT_TRUE(bench.fake.IsShown("DisplayPara"));
  EXPECT_TRUE(bench.TakeMessages().empty());
}

TEST(Form1, DisplaySwitchesTimer1OffUntilItsWindowCloses) {
  FormsBench bench;
  bench.fake.SetInterval(TimerId::Timer1, 10000);
  bench.fake.Enable(TimerId::Timer1, true);
  bench.Click("Form1.SetDisplay");
  EXPECT_FALSE(bench.fake.Enabled(TimerId::Timer1));
  bench.Click("Form1.SetDisplay");  // a second click changes nothing
  bench.Click("DisplayPara.CloseDisplayPara");
  EXPECT_TRUE(bench.fake.Enabled(TimerId::Timer1));
}

TEST(Form1, WithoutAnInstrumentTimer1StaysOffWhenDisplayCloses) {
  FormsBench bench;
  bench.session.Id.PortNumber = 0;
  bench.Click("Form1.SetDisplay");
  bench.Click("DisplayPara.CloseDisplayPara");
  EXPECT_FALSE(bench.fake.Enabled(TimerId::Timer1));
}

TEST(Form1, AboutTellsCaptionAndVersionOnALineEach) {
  FormsBench bench;
  bench.Click("Form1.About");
  EXPECT_EQ(bench.TakeMessages(),
            Texts{"VNA Control|QK47-20-09 VNA Control\nV1.62 Mar 09|information|ok"});
}

TEST(Form1, SwitchesStandOffAtFirstAndFollowTheSession) {
  FormsBench bench;
  EXPECT_EQ(bench.Value("Form1.AverOff"), "on");
  EXPECT_EQ(bench.Value("Form1.SmoothOff"), "on");
  bench.session.Averaging.AverOn = true;
  bench.session.Averaging.SmoothOn = true;
  bench.fake.Refresh("Form1");
  EXPECT_EQ(bench.Value("Form1.AverOn"), "on");
  EXPECT_EQ(bench.Value("Form1.AverOff"), "off");
  EXPECT_EQ(bench.Value("Form1.SmoothOn"), "on");
}

TEST(Form1, SmoothingSwitchRedrawsTheGraph) {
  FormsBench bench;
  const int presented = bench.surface.Presented;
  bench.Click("Form1.SmoothOn");
  EXPECT_TRUE(bench.session.Averaging.SmoothOn);
  EXPECT_GT(bench.surface.Presented, presented);
  bench.Click("Form1.SmoothOff");
  EXPECT_FALSE(bench.session.Averaging.SmoothOn);
}

TEST(Form1, AveragingSwitchSendsTheEnteredCountWhileIdle) {
  FormsBench bench;
  bench.session.Averaging.AveragesSet = 12;
  bench.Click("Form1.AverOn");
  EXPECT_EQ(bench.session.Averaging.Averages, 12);
  EXPECT_EQ(bench.instrument.Commands.back(), (Bytes{'Y', '8', 12}));
  bench.Click("Form1.AverOff");
  EXPECT_EQ(bench.instrument.Commands.back(), (Bytes{'Y', '8', 1}));
}

TEST(Form1, AveragingSwitchWaitsForTheSweepsEnd) {
  FormsBench bench;
  bench.session.Averaging.AveragesSet = 12;
  bench.PretendSweep();
  bench.Click("Form1.AverOn");
  EXPECT_TRUE(bench.session.Flags.AveragesChangeDue);
  EXPECT_TRUE(bench.fake.IsShown("Updating"));
  EXPECT_TRUE(bench.port.Writes.empty());
}

TEST(Form1, CloseBoxEndsTheProcessAtOnce) {
  FormsBench bench;
  EXPECT_TRUE(bench.Window("Form1").OnCloseBox());
  EXPECT_EQ(bench.fake.ExitCode, 0);
  EXPECT_TRUE(bench.TakeMessages().empty());
}

TEST(Form1, ExitAsksFirst) {
  FormsBench bench;
  bench.fake.Answers = {Answer::No};
  bench.Click("Form1.Exit");
  EXPECT_FALSE(bench.fake.ExitCode.has_value());
  EXPECT_EQ(bench.fake.Messages.front().Text, "Close Program and Exit?");
  bench.fake.Answers = {Answer::Yes};
  bench.Click("Form1.Exit");
  EXPECT_EQ(bench.fake.ExitCode, 0);
}

TEST(Form1, ReStartClosesTheSetUpWindowsAndForgetsTheSweep) {
  FormsBench bench;
  bench.Click("Form1.SetCal");
  bench.Click("Form1.SetDisplay");
  bench.Click("Form1.SetEnhancement");
  bench.session.Flags.SweepLoaded = true;
  bench.fake.Answers = {Answer::Yes, Answer::Ok};
  bench.Click("Form1.ReStart");
  for (const char* window : {"Calibration", "DisplayPara", "EnhancePara"})
    EXPECT_FALSE(bench.fake.IsShown(window)) << window;
  EXPECT_FALSE(bench.session.Flags.SweepLoaded);
}

TEST(Form1, ReStartThatIsCancelledLeavesTheWindowsOpen) {
  FormsBench bench;
  bench.Click("Form1.SetCal");
  bench.fake.Answers = {Answer::Yes, Answer::Cancel};
  bench.Click("Form1.ReStart");
  EXPECT_TRUE(bench.fake.IsShown("Calibration"));
}

TEST(InformingWindows, SayWhatThePersonWaitsFor) {
  FormsBench bench;
  const auto told = [&](const char* window) {
    return bench.Window(window).Caption() + "|" + bench.Window(window).At("Label1").Caption;
  };
  EXPECT_EQ(told("EEPROMdata"), "Initialising|Loading Data from ROM");
  EXPECT_EQ(told("Updating"), "Enhancement Update|Updating at end of sweep");
  EXPECT_EQ(told("SweepStopping"), "Stop Measurement|Stopping the current sweep - please wait");
  EXPECT_EQ(told("ShuttingDown"), "Closing|Shutting Down. Please Wait.");
}

TEST(InformingWindows, AreNotClosedByTheirCloseBox) {
  FormsBench bench;
  for (const char* window : {"EEPROMdata", "Updating", "SweepStopping", "ShuttingDown"})
    EXPECT_FALSE(bench.Window(window).OnCloseBox()) << window;
}

TEST(InformingWindows, TheProgressOfTheRomLoadStartsAtZero) {
  FormsBench bench;
  bench.fake.Progress("EEPROMdata", "ProgressBar1", 100);
  EXPECT_EQ(bench.Value("EEPROMdata.ProgressBar1"), "100");
  bench.fake.Show("EEPROMdata");
  EXPECT_EQ(bench.Value("EEPROMdata.ProgressBar1"), "0");
}

}  // namespace
}  // namespace qk::test
