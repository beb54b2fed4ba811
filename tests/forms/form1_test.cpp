#include "forms/form1.h"

#include "control/system_log.h"

#include "support/program_fixture.h"

namespace qk::test {
namespace {

TEST(Form1, BearsTheWholeMenuTreeItsButtonsAndItsSwitches) {
  ScriptedProgram bench;
  EXPECT_EQ(bench.Window("Form1").Caption(), "QK47-20-09 VNA Control");
  Texts controls;
  for (const Control& c : bench.Window("Form1").Controls())
    controls.push_back(c.Name + "|" + c.Caption + "|" + c.Menu);
  EXPECT_EQ(controls, (Texts{"LoadCal|Load Cal|File",
                             "SaveCal|Save Cal|File",
                             "Printgraphics|Print Graphics|File",
                             "SaveGraphics|Save Graphics|File",
                             "UserLabel|Print / Save Graphics Label|File",
                             "SaveMeasurements|Save Measurements|File",
                             "LoadMeasFile|Load Measurements|File",
                             "Exit|Exit|File",
                             "CalKit|Calibration Kit|Tools",
                             "SetColour|Colour Scheme|Tools",
                             "HardwareID|Hardware ID|Tools",
                             "Diagnostics|Diagnostic Tests|Tools",
                             "SaveEEPROM|Back Up EEPROM|Tools",
                             "RestoreEEPROM|Restore EEPROM|Tools",
                             "ReStart|Re-Start Program|Tools",
                             "ViewLog|View Log|Tools",
                             "SigGen|Signal Generator|Utilities",
                             "P1dB|Gain Compression|Utilities",
                             "AMtoPMConversion|AM to PM|Utilities",
                             "UsersGuide|Users Guide|Help",
                             "About|About|Help",
                             "StartMeasurement|START|",
                             "StopMeasurement|STOP|",
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
                             "PicGraph||"}));
}

struct Refusal {
  const char* Item;
  const char* Message;
};

class RefusedInASweep : public ::testing::TestWithParam<Refusal> {};
TEST_P(RefusedInASweep, TellsAndOpensNothing) {
  for (const bool stopping : {false, true}) {
    ScriptedProgram bench;
    bench.session.Flags.SweepLoaded = true;
    bench.session.Cal.CalS21 = true;
    bench.Window("Form1")[GetParam().Item].Enabled = true;
    stopping ? bench.PretendStopping() : bench.PretendSweep();
    bench.fake.Events.clear();
    bench.Click(std::string("Form1.") + GetParam().Item);
    EXPECT_EQ(bench.TakeMessages(), Texts{GetParam().Message});
    EXPECT_EQ(bench.fake.Events, Texts{});
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
TEST_P(RefusedWhileIdle, TellsAndOpensNothing) {
  ScriptedProgram bench;
  bench.session.Impedance.ZoConvertOn = true;
  bench.session.Cal.CalS11 = true;
  bench.Window("Form1")[GetParam().Item].Enabled = true;
  bench.fake.Events.clear();
  bench.Click(std::string("Form1.") + GetParam().Item);
  EXPECT_EQ(bench.TakeMessages(), Texts{GetParam().Message});
  EXPECT_EQ(bench.fake.Events, Texts{});
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
  ScriptedProgram bench;
  bench.Click("Form1.DisplayMem_Data");
  EXPECT_EQ(bench.TakeMessages(), Texts{"Display Memory|No Data in Memory|exclamation|ok"});
  EXPECT_EQ(bench.Value("Form1.DisplayData"), "on");
  bench.Click("Form1.MemoryMath");
  EXPECT_EQ(bench.TakeMessages(), Texts{"Memory Math|No Data in Memory|exclamation|ok"});
  EXPECT_EQ(bench.Value("Form1.DisplayData"), "on");
  EXPECT_EQ(bench.session.Display.DisplayMode, DisplayMode::Data);
}

TEST(Form1, TheDisplaySwitchesChooseTheirModes) {
  ScriptedProgram bench;
  bench.session.Display.MemoryInUse = true;
  bench.Click("Form1.DisplayMem_Data");
  EXPECT_EQ(bench.session.Display.DisplayMode, DisplayMode::DataAndMemory);
  bench.Click("Form1.MemoryMath");
  EXPECT_EQ(bench.session.Display.DisplayMode, DisplayMode::MemoryMath);
  bench.Click("Form1.DisplayData");
  EXPECT_EQ(bench.session.Display.DisplayMode, DisplayMode::Data);
  EXPECT_EQ(bench.TakeMessages(), Texts{});
}

TEST(Form1, ViewLogOpensTheLogAndNothingBeforeThereIsOne) {
  ScriptedProgram bench;
  bench.session.Id.SerialNumber = 7;
  bench.Click("Form1.ViewLog");
  EXPECT_EQ(bench.fake.Documents, Texts{});
  LogShutDown(bench.session, bench.fake);
  bench.Click("Form1.ViewLog");
  EXPECT_EQ(bench.fake.Documents, Texts{bench.folder.File("0007-log.txt")});
  EXPECT_EQ(bench.TakeMessages(), Texts{});
}

TEST(Form1, TheUsersGuideIsTheManualOfTheInstallFolder) {
  ScriptedProgram bench;
  bench.Click("Form1.UsersGuide");
  EXPECT_EQ(bench.fake.Documents, Texts{bench.folder.File("UsersManual.pdf")});
}

TEST(Form1, TheSwitchesTellWhatTheyStandFor) {
  ScriptedProgram bench;
  bench.OpenEnhancement();
  bench.Type("EnhancePara.InputAverages", "8");
  bench.Type("EnhancePara.InputSmoothing", "5");
  bench.Type("EnhancePara.TimeInput", "12.5");
  bench.Click("EnhancePara.ApplyEnhance");
  EXPECT_EQ(bench.At("Form1.AverOn").ToolTip, "Each point is the mean of 8 readings");
  EXPECT_EQ(bench.At("Form1.SmoothOn").ToolTip, "Aperture of 5 %, 5 points");
  EXPECT_EQ(bench.At("Form1.SetEnhancement").ToolTip,
            "Averages, smoothing, dwell, level and reference plane\n"
            "Reference plane S11: 12.500 mm");
}

TEST(Form1, StartWithoutACalibrationSaysSo) {
  ScriptedProgram bench;
  bench.Click("Form1.StartMeasurement");
  EXPECT_EQ(bench.TakeMessages(), Texts{"Start Measurement|No Calibration|exclamation|ok"});
}

TEST(Form1, StopWhileIdleClearsTheRunFlagAndDoesNothingElse) {
  ScriptedProgram bench;
  bench.session.Flags.SweepRunning = true;
  bench.fake.Events.clear();
  bench.Click("Form1.StopMeasurement");
  EXPECT_FALSE(bench.session.Flags.SweepRunning);
  EXPECT_TRUE(bench.fake.Events.empty());
  EXPECT_TRUE(bench.port.Writes.empty());
}

TEST(Form1, CalibrationOpensWhileIdle) {
  ScriptedProgram bench;
  bench.Click("Form1.SetCal");
  EXPECT_TRUE(bench.fake.IsShown("Calibration"));
  EXPECT_FALSE(bench.Window("Calibration").Modal);
  EXPECT_TRUE(bench.TakeMessages().empty());
}

TEST(Form1, CalibrationIsRefusedDuringASweep) {
  ScriptedProgram bench;
  bench.PretendSweep();
  bench.Click("Form1.SetCal");
  EXPECT_FALSE(bench.fake.IsShown("Calibration"));
  EXPECT_EQ(bench.TakeMessages(), Texts{"Calibration|Stop Measurement First|exclamation|ok"});
}

TEST(Form1, CalibrationIsRefusedWhileASweepIsStopping) {
  ScriptedProgram bench;
  bench.PretendStopping();
  bench.Click("Form1.SetCal");
  EXPECT_EQ(bench.TakeMessages(), Texts{"Calibration|Stop Measurement First|exclamation|ok"});
}

TEST(Form1, EnhancementAndDisplayOpenDuringASweep) {
  ScriptedProgram bench;
  bench.PretendSweep();
  bench.Click("Form1.SetEnhancement");
  bench.Click("Form1.SetDisplay");
  EXPECT_TRUE(bench.fake.IsShown("EnhancePara"));
  EXPECT_TRUE(bench.fake.IsShown("DisplayPara"));
  EXPECT_TRUE(bench.TakeMessages().empty());
}

TEST(Form1, DisplaySwitchesTimer1OffUntilItsWindowCloses) {
  ScriptedProgram bench;
  bench.fake.SetInterval(TimerId::Timer1, 10000);
  bench.fake.Enable(TimerId::Timer1, true);
  bench.Click("Form1.SetDisplay");
  EXPECT_FALSE(bench.fake.Enabled(TimerId::Timer1));
  bench.Click("Form1.SetDisplay");  // a second click changes nothing
  bench.Click("DisplayPara.CloseDisplayPara");
  EXPECT_TRUE(bench.fake.Enabled(TimerId::Timer1));
}

TEST(Form1, WithoutAnInstrumentTimer1StaysOffWhenDisplayCloses) {
  ScriptedProgram bench;
  bench.session.Id.PortNumber = 0;
  bench.Click("Form1.SetDisplay");
  bench.Click("DisplayPara.CloseDisplayPara");
  EXPECT_FALSE(bench.fake.Enabled(TimerId::Timer1));
}

TEST(Form1, AboutTellsCaptionAndVersionOnALineEach) {
  ScriptedProgram bench;
  bench.Click("Form1.About");
  EXPECT_EQ(bench.TakeMessages(),
            Texts{"VNA Control|QK47-20-09 VNA Control\nV1.62 Mar 09|information|ok"});
}

TEST(Form1, SwitchesStandOffAtFirstAndFollowTheSession) {
  ScriptedProgram bench;
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
  ScriptedProgram bench;
  const int presented = bench.surface.Presented;
  bench.Click("Form1.SmoothOn");
  EXPECT_TRUE(bench.session.Averaging.SmoothOn);
  EXPECT_GT(bench.surface.Presented, presented);
  bench.Click("Form1.SmoothOff");
  EXPECT_FALSE(bench.session.Averaging.SmoothOn);
}

TEST(Form1, AveragingSwitchSendsTheEnteredCountWhileIdle) {
  ScriptedProgram bench;
  bench.session.Averaging.AveragesSet = 12;
  bench.Click("Form1.AverOn");
  EXPECT_EQ(bench.session.Averaging.Averages, 12);
  EXPECT_EQ(bench.instrument.Commands.back(), (Bytes{'Y', '8', 12}));
  bench.Click("Form1.AverOff");
  EXPECT_EQ(bench.instrument.Commands.back(), (Bytes{'Y', '8', 1}));
}

TEST(Form1, AveragingSwitchWaitsForTheSweepsEnd) {
  ScriptedProgram bench;
  bench.session.Averaging.AveragesSet = 12;
  bench.PretendSweep();
  bench.Click("Form1.AverOn");
  EXPECT_TRUE(bench.session.Flags.AveragesChangeDue);
  EXPECT_TRUE(bench.fake.IsShown("Updating"));
  EXPECT_TRUE(bench.port.Writes.empty());
}

TEST(Form1, CloseBoxEndsTheProcessAtOnce) {
  ScriptedProgram bench;
  EXPECT_TRUE(bench.Window("Form1").OnCloseBox());
  EXPECT_EQ(bench.fake.ExitCode, 0);
  EXPECT_TRUE(bench.TakeMessages().empty());
}

TEST(Form1, ExitAsksFirst) {
  ScriptedProgram bench;
  bench.fake.Answers = {Answer::No};
  bench.Click("Form1.Exit");
  EXPECT_FALSE(bench.fake.ExitCode.has_value());
  EXPECT_EQ(bench.fake.Messages.front().Text, "Close Program and Exit?");
  bench.fake.Answers = {Answer::Yes};
  bench.Click("Form1.Exit");
  EXPECT_EQ(bench.fake.ExitCode, 0);
}

TEST(Form1, ReStartClosesTheSetUpWindowsAndForgetsTheSweep) {
  ScriptedProgram bench;
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
  ScriptedProgram bench;
  bench.Click("Form1.SetCal");
  bench.fake.Answers = {Answer::Yes, Answer::Cancel};
  bench.Click("Form1.ReStart");
  EXPECT_TRUE(bench.fake.IsShown("Calibration"));
}

TEST(InformingWindows, SayWhatThePersonWaitsFor) {
  ScriptedProgram bench;
  const auto told = [&](const char* window) {
    return bench.Window(window).Caption() + "|" + bench.Window(window).At("Label1").Caption;
  };
  EXPECT_EQ(told("EEPROMdata"), "Initialising|Loading Data from ROM");
  EXPECT_EQ(told("Updating"), "Enhancement Update|Updating at end of sweep");
  EXPECT_EQ(told("SweepStopping"), "Stop Measurement|Stopping the current sweep - please wait");
  EXPECT_EQ(told("ShuttingDown"), "Closing|Shutting Down. Please Wait.");
}

TEST(InformingWindows, AreNotClosedByTheirCloseBox) {
  ScriptedProgram bench;
  for (const char* window : {"EEPROMdata", "Updating", "SweepStopping", "ShuttingDown"})
    EXPECT_FALSE(bench.Window(window).OnCloseBox()) << window;
}

TEST(InformingWindows, TheProgressOfTheRomLoadStartsAtZero) {
  ScriptedProgram bench;
  bench.fake.Progress("EEPROMdata", "ProgressBar1", 100);
  EXPECT_EQ(bench.Value("EEPROMdata.ProgressBar1"), "100");
  bench.fake.Show("EEPROMdata");
  EXPECT_EQ(bench.Value("EEPROMdata.ProgressBar1"), "0");
}

}  // namespace
}  // namespace qk::test
