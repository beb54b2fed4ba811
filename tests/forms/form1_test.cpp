// SPDX-License-Identifier: MIT
#include "forms/form1.h"

#include "control/system_log.h"

#include "support/program_fixture.h"

namespace qk::test {
namespace {

TEST(Form1, BearsTheWholeMenuTreeItsButtonsAndItsSwitches) {
  ScriptedProgram vna;
  EXPECT_EQ(vna.Window("Form1").Caption(), "QK47-20-09 VNA Control");
  Texts controls;
  for (const Control& c : vna.Window("Form1").Controls())
    controls.push_back(c.Name + "|" + c.Caption + "|" + c.Menu);
  EXPECT_EQ(controls, (Texts{"LoadCal|Load Cal|File",
                             "SaveCal|Save Cal|File",
                             "Printgraphics|Print Graphics|File",
                             "SaveGraphics|Save Graphics|File",
                             "UserLabel|Print / Save Graphics Label|File",
                             "SaveMeasurements|Save Measurements|File",
                             "LoadMeasFile|Load Measurements|File",
                             "Exit|Exit|File",
                             "Report|Report|File",
                             "CompareSessions|Compare Sessions|File",
                             "CopyPicture|Copy Picture|File",
                             "Recent1|1|File",
                             "Recent2|2|File",
                             "Recent3|3|File",
                             "Recent4|4|File",
                             "Recent5|5|File",
                             "Recent6|6|File",
                             "Recent7|7|File",
                             "Recent8|8|File",
                             "Recent9|9|File",
                             "Recent10|10|File",
                             "CalKit|Calibration Kit|Tools",
                             "SetColour|Colour Scheme|Tools",
                             "HardwareID|Hardware ID|Tools",
                             "Diagnostics|Diagnostic Tests|Tools",
                             "SaveEEPROM|Back Up EEPROM|Tools",
                             "RestoreEEPROM|Restore EEPROM|Tools",
                             "ReStart|Re-Start Program|Tools",
                             "ViewLog|View Log|Tools",
                             "Remote|Remote Control|Tools",
                             "SigGen|Signal Generator|Utilities",
                             "P1dB|Gain Compression|Utilities",
                             "AMtoPMConversion|AM to PM|Utilities",
                             "CheckCal|Check Calibration|Utilities",
                             "SweepStats|Sweep Statistics|Utilities",
                             "Hints|Hints|Utilities",
                             "Batch|Batch|Utilities",
                             "UsersGuide|Users Guide|Help",
                             "About|About|Help",
                             "AxisNumbers|Axis Numbers|View",
                             "Remarks|Remarks and Verdicts|View",
                             "UncertaintyBand|Uncertainty Band|View",
                             "StatisticsBand|Statistics Band|View",
                             "ShowHints|Hints|View",
                             "AutoscaleActive|Autoscale|View",
                             "AutoscaleAll|Autoscale All|View",
                             "ScaleCoarser|Coarser Scale|View",
                             "ScaleFiner|Finer Scale|View",
                             "ReferenceUp|Reference Up|View",
                             "ReferenceDown|Reference Down|View",
                             "MarkerTable|Marker Table|View",
                             "MarkerLeft|Marker Left|View",
                             "MarkerRight|Marker Right|View",
                             "PresetAll|All Four Parameters|View",
                             "PresetFilter|Filter|View",
                             "PresetAntenna|Antenna|View",
                             "PresetTime|Time Domain|View",
                             "UndoLast|Undo|View",
                             "StartMeasurement|START|",
                             "StopMeasurement|STOP|",
                             "SingleSweep|SINGLE|",
                             "SweepProgress||",
                             "SweepLeft||",
                             "SetCal|Calibration|",
                             "SetMemory|Memory|",
                             "SetEnhancement|Enhancement|",
                             "SetDisplay|Display|",
                             "Cursors|Markers|",
                             "LimiLines|Limit Lines|",
                             "SetDomain|TD Options|",
                             "DisplayData|Data|",
                             "DisplayMem_Data|Data and Memory|",
                             "MemoryMath|Memory Math|",
                             "AverOff|Off|",
                             "AverOn|On|",
                             "SmoothOff|Off|",
                             "SmoothOn|On|",
                             "PicGraph||",
                             "Hint||",
                             "SilenceHint|Silence|",
                             "Notice||"}));
}

struct Refusal {
  const char* Item;
  const char* Message;
};

class RefusedInASweep : public ::testing::TestWithParam<Refusal> {};
TEST_P(RefusedInASweep, ReportsAndOpensNothing) {
  for (const bool stopping : {false, true}) {
    ScriptedProgram vna;
    vna.session.Flags.SweepLoaded = true;
    vna.session.Cal.CalS21 = true;
    vna.Window("Form1")[GetParam().Item].Enabled = true;
    stopping ? vna.PretendStopping() : vna.PretendSweep();
    vna.fake.Events.clear();
    vna.Click(std::string("Form1.") + GetParam().Item);
    EXPECT_EQ(vna.TakeMessages(), Texts{GetParam().Message});
    EXPECT_EQ(vna.fake.Events, Texts{});
  }
}
INSTANTIATE_TEST_SUITE_P(
    Openers, RefusedInASweep,
    ::testing::Values(
        Refusal{"SetCal", "Calibration|Stop Measurement First|exclamation|ok"},
        Refusal{"Diagnostics", "Diagnostic Tests|Stop Measurement First|exclamation|ok"},
        Refusal{"HardwareID", "VNA Hardware Info|Stop Sweep First|exclamation|ok"},
        Refusal{"SaveEEPROM", "BackUp EEPROM|Stop Sweep First|exclamation|ok"},
        Refusal{"RestoreEEPROM", "Restore EEPROM|Stop Sweep First|exclamation|ok"},
        Refusal{"SigGen", "Signal Generator|Stop Sweep First|exclamation|ok"},
        Refusal{"P1dB", "P1dB Test|Stop Sweep First|exclamation|ok"},
        Refusal{"AMtoPMConversion", "AM to PM Test|Stop Sweep First|exclamation|ok"}));

class RefusedWhileIdle : public ::testing::TestWithParam<Refusal> {};
TEST_P(RefusedWhileIdle, ReportsAndOpensNothing) {
  ScriptedProgram vna;
  vna.session.Impedance.ZoConvertOn = true;
  vna.session.Cal.CalS11 = true;
  vna.Window("Form1")[GetParam().Item].Enabled = true;
  vna.fake.Events.clear();
  vna.Click(std::string("Form1.") + GetParam().Item);
  EXPECT_EQ(vna.TakeMessages(), Texts{GetParam().Message});
  EXPECT_EQ(vna.fake.Events, Texts{});
}
INSTANTIATE_TEST_SUITE_P(
    Openers, RefusedWhileIdle,
    ::testing::Values(
        Refusal{"Diagnostics", "Diagnostic Tests|Set Sweep First|exclamation|ok"},
        Refusal{"P1dB", "P1dB Test|No S21 Calibration|exclamation|ok"},
        Refusal{"AMtoPMConversion", "AM to PM Test|No S21 Calibration|exclamation|ok"},
        Refusal{"LoadMeasFile",
                "Load Data|Switch off System Zo Conversion (Enhancement) before loading "
                "data.|information|ok"}));

TEST(Form1, MemoryDisplaysAreRefusedWithoutAStoredTrace) {
  ScriptedProgram vna;
  vna.Click("Form1.DisplayMem_Data");
  EXPECT_EQ(vna.TakeMessages(), Texts{"Display Memory|No Data in Memory|exclamation|ok"});
  EXPECT_EQ(vna.Value("Form1.DisplayData"), "on");
  vna.Click("Form1.MemoryMath");
  EXPECT_EQ(vna.TakeMessages(), Texts{"Memory Math|No Data in Memory|exclamation|ok"});
  EXPECT_EQ(vna.Value("Form1.DisplayData"), "on");
  EXPECT_EQ(vna.session.Display.DisplayMode, DisplayMode::Data);
}

TEST(Form1, ViewLogOpensTheLogAndNothingBeforeThereIsOne) {
  ScriptedProgram vna;
  vna.session.Id.SerialNumber = 7;
  vna.Click("Form1.ViewLog");
  EXPECT_EQ(vna.fake.Documents, Texts{});
  ASSERT_TRUE(LogShutDown(vna.session, vna.fake).Ok());
  vna.Click("Form1.ViewLog");
  EXPECT_EQ(vna.fake.Documents, Texts{vna.folder.File("0007-log.txt")});
  EXPECT_EQ(vna.TakeMessages(), Texts{});
}

TEST(Form1, TheUsersGuideIsTheManualOfTheInstallFolder) {
  ScriptedProgram vna;
  vna.Click("Form1.UsersGuide");
  EXPECT_EQ(vna.fake.Documents, Texts{vna.folder.File("UsersManual.pdf")});
}

TEST(Form1, TheSwitchesSayWhatTheySwitch) {
  ScriptedProgram vna;
  vna.OpenEnhancement();
  vna.Type("EnhancePara.InputAverages", "8");
  vna.Type("EnhancePara.InputSmoothing", "5");
  vna.Type("EnhancePara.TimeInput", "12.5");
  vna.Click("EnhancePara.ApplyEnhance");
  EXPECT_EQ(vna.At("Form1.AverOn").ToolTip, "Each point is the mean of 8 readings");
  EXPECT_EQ(vna.At("Form1.SmoothOn").ToolTip, "Aperture of 5 %, 5 points");
  EXPECT_EQ(vna.At("Form1.SetEnhancement").ToolTip,
            "Averages, smoothing, dwell, level and reference plane\n"
            "Reference plane S11: 12.500 mm");
}

TEST(Form1, StartWithoutACalibrationSaysSo) {
  ScriptedProgram vna;
  vna.Click("Form1.StartMeasurement");
  EXPECT_EQ(vna.TakeMessages(), Texts{"Start Measurement|No Calibration|exclamation|ok"});
}

TEST(Form1, StopWhileIdleClearsTheRunFlagAndDoesNothingElse) {
  ScriptedProgram vna;
  vna.session.Flags.SweepRunning = true;
  vna.fake.Events.clear();
  vna.Click("Form1.StopMeasurement");
  EXPECT_FALSE(vna.session.Flags.SweepRunning);
  EXPECT_TRUE(vna.fake.Events.empty());
  EXPECT_TRUE(vna.port.Writes.empty());
}

TEST(Form1, CalibrationOpensWhileIdle) {
  ScriptedProgram vna;
  vna.Click("Form1.SetCal");
  EXPECT_TRUE(vna.fake.IsShown("Calibration"));
  EXPECT_FALSE(vna.Window("Calibration").Style().Modal);
  EXPECT_TRUE(vna.TakeMessages().empty());
}

TEST(Form1, CalibrationIsRefusedDuringASweep) {
  ScriptedProgram vna;
  vna.PretendSweep();
  vna.Click("Form1.SetCal");
  EXPECT_FALSE(vna.fake.IsShown("Calibration"));
  EXPECT_EQ(vna.TakeMessages(), Texts{"Calibration|Stop Measurement First|exclamation|ok"});
}

TEST(Form1, CalibrationIsRefusedWhileASweepIsStopping) {
  ScriptedProgram vna;
  vna.PretendStopping();
  vna.Click("Form1.SetCal");
  EXPECT_EQ(vna.TakeMessages(), Texts{"Calibration|Stop Measurement First|exclamation|ok"});
}

TEST(Form1, EnhancementAndDisplayOpenDuringASweep) {
  ScriptedProgram vna;
  vna.PretendSweep();
  vna.Click("Form1.SetEnhancement");
  vna.Click("Form1.SetDisplay");
  EXPECT_TRUE(vna.fake.IsShown("EnhancePara"));
  EXPECT_TRUE(vna.fake.IsShown("DisplayPara"));
  EXPECT_TRUE(vna.TakeMessages().empty());
}

TEST(Form1, DisplaySwitchesTimer1OffUntilItsWindowCloses) {
  ScriptedProgram vna;
  vna.fake.SetInterval(TimerId::Timer1, 10000);
  vna.fake.Enable(TimerId::Timer1, true);
  vna.Click("Form1.SetDisplay");
  EXPECT_FALSE(vna.fake.Enabled(TimerId::Timer1));
  vna.Click("Form1.SetDisplay");  // a second click changes nothing
  vna.Click("DisplayPara.CloseDisplayPara");
  EXPECT_TRUE(vna.fake.Enabled(TimerId::Timer1));
}

TEST(Form1, WithoutAnInstrumentTimer1StaysOffWhenDisplayCloses) {
  ScriptedProgram vna;
  vna.session.Id.PortNumber = 0;
  vna.Click("Form1.SetDisplay");
  vna.Click("DisplayPara.CloseDisplayPara");
  EXPECT_FALSE(vna.fake.Enabled(TimerId::Timer1));
}

TEST(Form1, AboutReportsCaptionAndVersionOnALineEach) {
  ScriptedProgram vna;
  vna.Click("Form1.About");
  EXPECT_EQ(vna.TakeMessages(),
            Texts{"VNA Control|QK47-20-09 VNA Control\nV1.62 Mar 09|information|ok"});
}

TEST(Form1, SwitchesStandOffAtFirstAndFollowTheSession) {
  ScriptedProgram vna;
  EXPECT_EQ(vna.Value("Form1.AverOff"), "on");
  EXPECT_EQ(vna.Value("Form1.SmoothOff"), "on");
  vna.session.Averaging.AverOn = true;
  vna.session.Averaging.SmoothOn = true;
  vna.fake.SessionChanged();
  EXPECT_EQ(vna.Value("Form1.AverOn"), "on");
  EXPECT_EQ(vna.Value("Form1.AverOff"), "off");
  EXPECT_EQ(vna.Value("Form1.SmoothOn"), "on");
}

TEST(Form1, SmoothingSwitchRedrawsTheGraph) {
  ScriptedProgram vna;
  const int presented = vna.surface.Presented;
  vna.Click("Form1.SmoothOn");
  EXPECT_TRUE(vna.session.Averaging.SmoothOn);
  EXPECT_GT(vna.surface.Presented, presented);
  vna.Click("Form1.SmoothOff");
  EXPECT_FALSE(vna.session.Averaging.SmoothOn);
}

TEST(Form1, AveragingSwitchSendsTheEnteredCountWhileIdle) {
  ScriptedProgram vna;
  vna.session.Averaging.AveragesSet = 12;
  vna.Click("Form1.AverOn");
  EXPECT_EQ(vna.session.Averaging.Averages, 12);
  EXPECT_EQ(vna.instrument.Commands.back(), (Bytes{'Y', '8', 12}));
  vna.Click("Form1.AverOff");
  EXPECT_EQ(vna.instrument.Commands.back(), (Bytes{'Y', '8', 1}));
}

TEST(Form1, AveragingSwitchWaitsForTheSweepsEnd) {
  ScriptedProgram vna;
  vna.session.Averaging.AveragesSet = 12;
  vna.PretendSweep();
  vna.Click("Form1.AverOn");
  EXPECT_TRUE(vna.session.Flags.AveragesChangeDue);
  EXPECT_TRUE(vna.fake.IsShown("Updating"));
  EXPECT_TRUE(vna.port.Writes.empty());
}

TEST(Form1, CloseBoxEndsTheProcessAtOnce) {
  ScriptedProgram vna;
  EXPECT_TRUE(vna.Window("Form1").OnCloseBox());
  EXPECT_EQ(vna.fake.ExitCode, 0);
  EXPECT_TRUE(vna.TakeMessages().empty());
}

TEST(Form1, ExitAsksFirst) {
  ScriptedProgram vna;
  vna.fake.Answers = {Answer::No};
  vna.Click("Form1.Exit");
  EXPECT_FALSE(vna.fake.ExitCode.has_value());
  EXPECT_EQ(vna.fake.Messages.front().Text, "Close Program and Exit?");
  vna.fake.Answers = {Answer::Yes};
  vna.Click("Form1.Exit");
  EXPECT_EQ(vna.fake.ExitCode, 0);
}

TEST(Form1, ReStartClosesTheSetUpWindowsAndForgetsTheSweep) {
  ScriptedProgram vna;
  vna.Click("Form1.SetCal");
  vna.Click("Form1.SetDisplay");
  vna.Click("Form1.SetEnhancement");
  vna.session.Flags.SweepLoaded = true;
  vna.fake.Answers = {Answer::Yes, Answer::Ok};
  vna.Click("Form1.ReStart");
  for (const char* window : {"Calibration", "DisplayPara", "EnhancePara"})
    EXPECT_FALSE(vna.fake.IsShown(window)) << window;
  EXPECT_FALSE(vna.session.Flags.SweepLoaded);
}

TEST(Form1, ReStartThatIsCancelledLeavesTheWindowsOpen) {
  ScriptedProgram vna;
  vna.Click("Form1.SetCal");
  vna.fake.Answers = {Answer::Yes, Answer::Cancel};
  vna.Click("Form1.ReStart");
  EXPECT_TRUE(vna.fake.IsShown("Calibration"));
}

TEST(InformingWindows, SayWhatThePersonWaitsFor) {
  ScriptedProgram vna;
  const auto told = [&](const char* window) {
    return vna.Window(window).Caption() + "|" + vna.Window(window).At("Label1").Caption;
  };
  EXPECT_EQ(told("EEPROMdata"), "Initialising|Loading Data from ROM");
  EXPECT_EQ(told("Updating"), "Enhancement Update|Updating at end of sweep");
  EXPECT_EQ(told("SweepStopping"), "Stop Measurement|Stopping the current sweep - please wait");
  EXPECT_EQ(told("ShuttingDown"), "Closing|Shutting Down. Please Wait.");
}

TEST(InformingWindows, AreNotClosedByTheirCloseBox) {
  ScriptedProgram vna;
  for (const char* window : {"EEPROMdata", "Updating", "SweepStopping", "ShuttingDown"})
    EXPECT_FALSE(vna.Window(window).OnCloseBox()) << window;
}

TEST(InformingWindows, TheProgressOfTheRomLoadStartsAtZero) {
  ScriptedProgram vna;
  vna.fake.Progress("EEPROMdata", "ProgressBar1", 100);
  EXPECT_EQ(vna.Value("EEPROMdata.ProgressBar1"), "100");
  vna.fake.Show("EEPROMdata");
  EXPECT_EQ(vna.Value("EEPROMdata.ProgressBar1"), "0");
}

}  // namespace
}  // namespace qk::test
