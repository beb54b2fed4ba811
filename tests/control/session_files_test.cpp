// SPDX-License-Identifier: MIT
// Load Cal and Save Cal, and the session that comes back with the next start.
#include <filesystem>
#include <fstream>
#include <sstream>

#include "cal/standards.h"
#include "control/simulated_control.h"
#include "core/cal_arrays.h"
#include "files/session_file.h"
#include "support/full_disk.h"
#include "sweep/frequency_plan.h"

namespace qk::test {
namespace {

namespace fs = std::filesystem;

struct SessionFilesTest : testing::Test, SimulatedControl {
  SessionFilesTest() : SimulatedControl(sim::Pace::Unpaced) {}

  std::string Messages() {
    std::string all;
    for (const std::string& text : fake.MessageTexts()) all += text + "\n";
    fake.Messages.clear();
    return all;
  }
  void Load(const std::string& path) {
    fake.Choices.push_back(path);
    control.files().LoadCalDialog();
  }
  void Save(const std::string& path) {
    fake.Choices.push_back(path);
    control.files().SaveCalDialog();
  }
  void Exit() {
    fake.Answers = {Answer::Yes};
    control.Exit();
  }
  // Started up and calibrated, with things to be remembered.
  void MakeUsed() {
    MakeReady(&CalState::Cal12Term);
    session->Plan.StopFreq = session->Plan.Frequency(50);
    session->Plan.SavedPlan = session->Plan;
    session->Terms.Forward.ED.Set(7, {0.125, -0.5});
    session->SavedTerms.Forward.ED.Set(7, {0.25, 0});
    session->Averaging.AveragesSet = 8;
    control.AverOn();
    session->Flags.DwellOn = true;
    session->Display.DisplaySet = DisplaySet::All;
    session->Kit1.KitName = "Mine";
    session->Channel(2).Parameter = Parameter::S21;
    Written();
  }
  std::string Default() { return folder.File("DefCal.cal"); }
  void Put(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
  }
  std::string Got(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
  }
};

TEST_F(SessionFilesTest, LoadCalDuringASweepIsRefused) {
  control.StartUp();
  for (const bool running : {true, false}) {
    session->Flags.SweepIdle = false;
    session->Flags.SweepRunning = running;
    control.files().LoadCalDialog();
    EXPECT_EQ(Messages(), "Load Cal|Stop sweep first|exclamation|ok\n");
  }
  EXPECT_TRUE(fake.Dialogs.empty());
}

TEST_F(SessionFilesTest, TheDialogsBeginInTheInstallFolderAndACancelDoesNothing) {
  MakeUsed();
  fake.Choices = {std::nullopt, std::nullopt};
  const std::string before = SessionBytes(*session);
  control.files().LoadCalDialog();
  control.files().SaveCalDialog();
  ASSERT_EQ(fake.Dialogs.size(), 2u);
  for (const Dialog& dialog : fake.Dialogs) {
    EXPECT_EQ(dialog.Folder, folder.Text());
    EXPECT_EQ(dialog.Filter, "All Files (*.*)|*.*|cal_files(*.cal)|*.cal|");
    EXPECT_EQ(dialog.FilterIndex, 2);
  }
  EXPECT_EQ(fake.Dialogs[0].Kind, DialogKind::Open);
  EXPECT_EQ(fake.Dialogs[1].Kind, DialogKind::Save);
  EXPECT_EQ(SessionBytes(*session), before);
  EXPECT_EQ(Messages(), "");
}

TEST_F(SessionFilesTest, WhatWasSavedIsLoadedWithPanelsAndInstrument) {
  MakeUsed();
  session->Plan.Port1Level = -3;
  const std::string saved = SessionBytes(*session);
  Save(folder.File("a.cal"));
  EXPECT_EQ(Got(folder.File("a.cal")), saved);
  EXPECT_EQ(Messages(), "");

  InitSession(*session);
  session->Id = {147, "1.2", 1};
  session->InstallFolder = folder.Text();
  Load(folder.File("a.cal"));
  EXPECT_EQ(Messages(), "");
  EXPECT_EQ(SessionBytes(*session), saved);
  EXPECT_EQ(session->Panels[3], "12 Term Cal ?");  // CalLevel is another
  EXPECT_EQ(session->Panels[4], "P1 Level: -3dBm");
  EXPECT_EQ(session->Panels[7], "1.0000 MHz");
  EXPECT_TRUE(session->Flags.SweepLoaded);
  const std::string written = Written();
  EXPECT_NE(written.find("Y8"), std::string::npos);  // averages
  EXPECT_NE(written.find("W"), std::string::npos);   // the plan
}

TEST_F(SessionFilesTest, WhatTheWindowsOfTheStandardsMeasuredIsForgottenWithALoad) {
  MakeUsed();
  Save(folder.File("a.cal"));
  session->Steps.Load[0] = session->Steps.Thru[0] = {true, true};
  Load(folder.File("a.cal"));
  EXPECT_FALSE(session->Steps.Load[0].Done);
  EXPECT_FALSE(session->Steps.Thru[0].Done);
  EXPECT_FALSE(session->Steps.Thru[0].Failed);
}

TEST_F(SessionFilesTest, ALoadSendsTheDwellWhenItDiffersFromTheOneInForce) {
  MakeUsed();
  const auto sentBy = [&](const char* file) {
    Written();
    Load(folder.File(file));
    const std::string written = Written();
    const std::size_t at = written.find('D');
    return at == std::string::npos ? std::string() : written.substr(at, 2);
  };
  // Without a sweep: the bytes of a plan may hold a D.
  session->Flags.SweepLoaded = false;
  session->Flags.DwellOn = false;
  Save(folder.File("short.cal"));
  session->Flags.DwellOn = true;
  Save(folder.File("long.cal"));
  EXPECT_EQ(sentBy("short.cal"), std::string("D\0", 2));
  EXPECT_EQ(sentBy("short.cal"), "");
  EXPECT_EQ(sentBy("long.cal"), "D\1");
  EXPECT_EQ(sentBy("long.cal"), "");
  EXPECT_TRUE(session->Flags.DwellOn);
}

TEST_F(SessionFilesTest, ALoadedSessionShowsTheTracesThatItHolds) {
  MakeUsed();
  session->Channel(1).Value.fill(-33);
  Save(folder.File("a.cal"));
  for (int i = 1; i <= 51; ++i) graphs.PlotPoint(1, i, 7, 0);  // of a sweep since
  Load(folder.File("a.cal"));
  EXPECT_EQ(graphs.Trace(0, kDataTrace).Value[51], -33);
}

TEST_F(SessionFilesTest, AnInterpolatedCalibrationIsDoubtfulAndOneOfItsOwnLevelIsNot) {
  MakeUsed();
  Save(folder.File("a.cal"));
  Load(folder.File("a.cal"));
  EXPECT_EQ(session->Panels[3], "12 Term Cal");
  session->Cal.CalInterpolated = true;
  Save(folder.File("a.cal"));
  session->Cal.CalInterpolated = false;
  Load(folder.File("a.cal"));
  EXPECT_EQ(session->Panels[3], "12 Term Cal ?");
}

TEST_F(SessionFilesTest, ADamagedFileIsReportedAndLeavesSessionAndInstrument) {
  MakeUsed();
  std::string text = SessionBytes(*session);
  text.resize(text.size() / 3);
  Put(folder.File("cut.cal"), text);
  Put(folder.File("other.cal"), "\"calfile03\"\r\n");
  const std::string before = SessionBytes(*session);
  Load(folder.File("cut.cal"));
  const std::string told = Messages();
  EXPECT_EQ(told.rfind("Load Cal|" + folder.File("cut.cal") + ": line ", 0), 0u) << told;
  Load(folder.File("other.cal"));
  EXPECT_EQ(Messages(), "Load Cal|Not a Valid Cal File (invalid header)|exclamation|ok\n");
  Load(folder.File("none.cal"));
  EXPECT_EQ(Messages(), "Load Cal|" + folder.File("none.cal") +
                            ": cannot be opened: No such file or directory|exclamation|ok\n");
  EXPECT_EQ(SessionBytes(*session), before);
  EXPECT_EQ(Written(), "");
}

TEST_F(SessionFilesTest, AFileThatCannotBeWrittenIsReported) {
  MakeUsed();
  Save(folder.File("no/a.cal"));
  EXPECT_EQ(Messages(), "Save Cal|" + folder.File("no/a.cal") +
                            ": cannot be written: No such file or directory|exclamation|ok\n");
}

TEST_F(SessionFilesTest, OnAFullDiskTheOldFileStaysAndTheCauseIsReported) {
  MakeUsed();
  Save(folder.File("a.cal"));
  const std::string old = Got(folder.File("a.cal"));
  session->Kit1.KitName = "Newer";
  {
    const FullDisk disk(old.size() / 2);
    Save(folder.File("a.cal"));
    Save(folder.File("b.cal"));
  }
  const std::string why = ": cannot be written: File too large|exclamation|ok\n";
  EXPECT_EQ(Messages(),
            "Save Cal|" + folder.File("a.cal") + why + "Save Cal|" + folder.File("b.cal") + why);
  EXPECT_EQ(Got(folder.File("a.cal")), old);
  EXPECT_FALSE(fs::exists(folder.File("b.cal")));
  EXPECT_FALSE(fs::exists(folder.File(".a.cal.saving")));
}

TEST_F(SessionFilesTest, WithoutAnswerFromTheInstrumentWhatIsInForceThereStays) {
  MakeUsed();
  Save(folder.File("a.cal"));
  control.AverOff();
  fake.Messages.clear();
  instrument.Bench("fault unplugged");
  OnSleep = {};
  Load(folder.File("a.cal"));
  const std::string told = Messages();
  EXPECT_EQ(told, "Set Averages|No Response|exclamation|ok\n");
  EXPECT_EQ(session->Averaging.Averages, 1);
  EXPECT_TRUE(session->Flags.SweepLoaded);  // the session's sweep is set; the instrument lacks it
  EXPECT_TRUE(session->Cal.Cal12Term);
}

// A standard behind a load that failed is measured over the loaded plan, as START measures.
TEST_F(SessionFilesTest, AStandardBehindALoadThatFailedIsMeasuredOnceTheLineIsBack) {
  MakeUsed();
  Save(folder.File("a.cal"));
  SweepPlan other = session->Plan;
  other.StartFreq += 500e6;
  static_cast<PlanGrid&>(session->Plan) = other;
  ASSERT_TRUE(LoadFreqSweep(control.rig()));
  fake.Messages.clear();
  instrument.Bench("fault unplugged");
  Load(folder.File("a.cal"));
  EXPECT_NE(Messages(), "");
  instrument.Bench("fault none");
  EXPECT_TRUE(MeasureStandard(control.rig(), Standard::OpenS11, {}));
  EXPECT_EQ(Messages(), "Open Cal|Open Circuit on Port 1 (0.00mm)|information|ok\n");
  EXPECT_TRUE(control.rig().link.Holds().Grid.Is(WantedGrid(session->Plan)));
}

TEST_F(SessionFilesTest, WithoutInstrumentNothingIsSent) {
  MakeUsed();
  Save(folder.File("a.cal"));
  session->Id.PortNumber = 0;
  Written();
  Load(folder.File("a.cal"));
  EXPECT_EQ(Written(), "");
  EXPECT_EQ(Messages(), "");
}

TEST_F(SessionFilesTest, TheProgramComesBackAsItWasLeft) {
  MakeUsed();
  session->Channel(1).Value.fill(-33);
  const std::string left = SessionBytes(*session);
  Exit();
  EXPECT_EQ(Got(Default()), left);

  SimulatedControl next(sim::Pace::Unpaced);
  next.session->InstallFolder = folder.Text();
  next.control.StartUp();
  EXPECT_EQ(SessionBytes(*next.session), left);
  EXPECT_EQ(next.graphs.Trace(0, kDataTrace).Value[51], -33);
  EXPECT_EQ(next.session->Panels[3], "12 Term Cal");
  EXPECT_EQ(next.session->Panels[4], "P1 Level: 0dBm");
  EXPECT_EQ(next.session->Panels[7], "1.0000 MHz");
  EXPECT_EQ(next.session->Averaging.Averages, 8);
  EXPECT_TRUE(next.fake.Messages.empty());
  EXPECT_TRUE(next.fake.Enabled(TimerId::Timer1));
  EXPECT_TRUE(next.session->Flags.SweepLoaded);
}

// A search had set the markers; they were dragged since, and graph 1 is not displayed.
TEST_F(SessionFilesTest, AStartAndALoadShowTheMarkersAtTheFilesOwnPoints) {
  MakeUsed();
  session->Display.DisplaySet = DisplaySet::ThreeFour;
  session->Display.MarkersOn = true;
  for (int m = 0; m < kMarkers; ++m) {
    session->Markers.Set(m) = {m < 3, false, m == 0, 20};
    for (int g = 0; g < 4; ++g)
      session->Markers.Of(g, m).Point = static_cast<std::int16_t>(5 + 10 * g + m);
  }
  session->Markers.Of(3, 1).Trace = MarkerTrace::Memory;
  const auto points = [](const Session& s) {
    std::string all;
    for (int g = 0; g < 4; ++g)
      for (int m = 0; m < kMarkers; ++m) all += std::to_string(s.Markers.Of(g, m).Point) + " ";
    return all;
  };
  const std::string kept = points(*session);
  Exit();

  SimulatedControl started(sim::Pace::Unpaced);
  started.session->InstallFolder = folder.Text();
  started.control.StartUp();
  EXPECT_EQ(points(*started.session), kept);

  SimulatedControl loaded(sim::Pace::Unpaced);
  loaded.control.StartUp();
  loaded.fake.Choices.push_back(Default());
  loaded.control.files().LoadCalDialog();
  EXPECT_EQ(points(*loaded.session), kept);
  EXPECT_EQ(SessionBytes(*loaded.session), SessionBytes(*started.session));
}

TEST_F(SessionFilesTest, AMissingDefaultFileLeavesTheSessionUncalibrated) {
  control.StartUp();
  EXPECT_EQ(Messages(), "");
  EXPECT_EQ(session->Panels[3], "UNCAL");
  EXPECT_EQ(session->Panels[7], "");
}

TEST_F(SessionFilesTest, ARefusedDefaultFileIsReportedAndKeptBesideTheNewOne) {
  Put(Default(), "\"calfile02\"\r\nrubbish\r\n");
  control.StartUp();
  EXPECT_EQ(Messages(), "VNA Initialisation|" + Default() +
                            ": line 2: a number is expected, not 'rubbish'|exclamation|ok\n");
  EXPECT_EQ(session->Panels[3], "UNCAL");
  Exit();
  EXPECT_EQ(Got(folder.File("DefCal-refused.cal")), "\"calfile02\"\r\nrubbish\r\n");
  EXPECT_EQ(Got(Default()), SessionBytes(*session));
}

TEST_F(SessionFilesTest, ASecondRefusedFileLeavesTheFirstOneKept) {
  for (const char* rubbish : {"first", "second", "third"}) {
    SimulatedControl run(sim::Pace::Unpaced);
    run.session->InstallFolder = folder.Text();
    Put(Default(), rubbish);
    run.control.StartUp();
    run.fake.Answers = {Answer::Yes};
    run.control.Exit();
  }
  EXPECT_EQ(Got(folder.File("DefCal-refused.cal")), "first");
  EXPECT_EQ(Got(folder.File("DefCal-refused-2.cal")), "second");
  EXPECT_EQ(Got(folder.File("DefCal-refused-3.cal")), "third");
}

// As in a folder without rights: what cannot be seen is not the same as what is not there.
TEST_F(SessionFilesTest, ADefaultFileThatCannotBeLookedAtIsReportedAndKept) {
  std::filesystem::create_symlink(Default(), Default());
  control.StartUp();
  EXPECT_EQ(Messages(), "VNA Initialisation|" + Default() +
                            ": cannot be opened: Too many levels of symbolic links|exclamation|"
                            "ok\n");
  EXPECT_EQ(session->Panels[3], "UNCAL");
  Exit();
  EXPECT_TRUE(std::filesystem::is_symlink(folder.File("DefCal-refused.cal")));
  EXPECT_EQ(Got(Default()), SessionBytes(*session));
}

// A start without the instrument reads no calibration; its end must not write the defaults over it.
TEST_F(SessionFilesTest, ARunWithoutInstrumentLeavesTheCalibrationOfTheLastOne) {
  MakeUsed();
  Exit();
  const std::string left = Got(Default());
  SimulatedControl next(sim::Pace::Unpaced);
  next.session->InstallFolder = folder.Text();
  next.instrument.Bench("fault unplugged");
  next.control.StartUp();
  ASSERT_EQ(next.session->Id.PortNumber, 0);
  next.fake.Answers = {Answer::Yes};
  next.control.Exit();
  EXPECT_EQ(Got(Default()), left);
}

TEST_F(SessionFilesTest, ASessionLoadedWithoutInstrumentIsOneToComeBackTo) {
  MakeUsed();
  Save(folder.File("a.cal"));
  SimulatedControl next(sim::Pace::Unpaced);
  next.session->InstallFolder = folder.Text();
  next.instrument.Bench("fault unplugged");
  next.control.StartUp();
  Put(Default(), "former");
  next.fake.Choices.push_back(folder.File("a.cal"));
  next.control.files().LoadCalDialog();
  next.fake.Answers = {Answer::Yes};
  next.control.Exit();
  EXPECT_EQ(Got(Default()), Got(folder.File("a.cal")));
}

TEST_F(SessionFilesTest, TheTitleBarSavesNothing) {
  MakeUsed();
  control.CloseAtOnce();
  EXPECT_FALSE(fs::exists(Default()));
}

// A folder in the place of the file beside: no save can succeed, for any user.
TEST_F(SessionFilesTest, ASessionThatCannotBeKeptIsReportedAndExitMayBeThoughtOver) {
  MakeUsed();
  Put(Default(), "former");
  const fs::path blocked = folder.File(".DefCal.cal.saving");
  fs::create_directory(blocked);
  fake.Messages.clear();
  fake.Answers = {Answer::Yes, Answer::Yes};
  control.Exit();
  EXPECT_EQ(Messages(),
            "VNA Control Exit|Close Program and Exit?|none|yes/no\n"
            "VNA Control Exit|The session could not be saved for the next start.\n" +
                Default() +
                ": cannot be written, a folder named .DefCal.cal.saving is in the way\nGo "
                "back to work, to save it elsewhere?"
                "|exclamation|yes/no\n");
  EXPECT_EQ(fake.ExitCode, std::nullopt);
  EXPECT_FALSE(session->Flags.ExitPending);
  EXPECT_FALSE(fake.IsShown("ShuttingDown"));
  EXPECT_TRUE(fake.Enabled(TimerId::Timer1));
  EXPECT_EQ(Got(Default()), "former");

  fs::remove(blocked);
  Exit();
  EXPECT_EQ(fake.ExitCode, 0);
  EXPECT_EQ(Got(Default()), SessionBytes(*session));
}

TEST_F(SessionFilesTest, AnExitThoughtOverInASweepLeavesStartAtWork) {
  MakeUsed();
  fs::create_directory(folder.File(".DefCal.cal.saving"));
  OnPoint = [&](int counter) {
    if (counter != 20) return;
    fake.Answers = {Answer::Yes, Answer::Yes};
    control.Exit();
  };
  control.StartMeasurement();
  EXPECT_EQ(fake.ExitCode, std::nullopt);
  EXPECT_TRUE(control.Idle());
  EXPECT_FALSE(fake.IsShown("ShuttingDown"));
  EXPECT_EQ(session->Panels[6], "Sweep Off");

  int points = 0;
  OnPoint = [&](int) {
    if (++points == 120) control.StopMeasurement();
  };
  control.StartMeasurement();
  EXPECT_GE(points, 120);
  EXPECT_TRUE(control.Idle());
}

TEST_F(SessionFilesTest, ExitOnAFullDiskKeepsTheSessionOfTheLastTime) {
  MakeUsed();
  Put(Default(), "former");
  fake.Messages.clear();
  fake.Answers = {Answer::Yes, Answer::No};
  {
    const FullDisk disk(1000);
    control.Exit();
  }
  EXPECT_NE(Messages().find(Default() + ": cannot be written: File too large\n"),
            std::string::npos);
  EXPECT_EQ(fake.ExitCode, 0);
  EXPECT_EQ(Got(Default()), "former");
}

TEST_F(SessionFilesTest, ExitWithoutSavingEndsAndASignalAsksNothing) {
  MakeUsed();
  Put(Default(), "former");
  fs::create_directory(folder.File(".DefCal.cal.saving"));
  fake.Messages.clear();
  control.Leave();
  EXPECT_EQ(Messages(), "");
  EXPECT_EQ(fake.ExitCode, 0);

  SimulatedControl next(sim::Pace::Unpaced);
  next.session->InstallFolder = folder.Text();
  fs::remove(Default());
  next.control.StartUp();
  next.fake.Answers = {Answer::Yes, Answer::No};
  next.control.Exit();
  EXPECT_EQ(next.fake.ExitCode, 0);
}

TEST_F(SessionFilesTest, ExitDuringASweepWritesTheFileWhenTheSweepHasEnded) {
  MakeUsed();
  bool during = false;
  OnPoint = [&](int counter) {
    if (counter == 20) Exit();
    if (counter > 20) during = during || fs::exists(Default());
  };
  control.StartMeasurement();
  EXPECT_FALSE(during);
  EXPECT_TRUE(fs::exists(Default()));
  EXPECT_EQ(fake.ExitCode, 0);
}

TEST_F(SessionFilesTest, ReStartBringsTheSessionOfTheLastExitBack) {
  MakeUsed();
  Exit();
  SimulatedControl next(sim::Pace::Unpaced);
  next.session->InstallFolder = folder.Text();
  next.control.StartUp();
  next.session->Kit1.KitName = "changed since";
  next.fake.Answers = {Answer::Yes, Answer::Ok};
  next.control.ReStart();
  EXPECT_EQ(next.session->Kit1.KitName, "Mine");
}

TEST_F(SessionFilesTest, LimitsComeBackWithTheirSegmentsAndTheLabelAsItWasShown) {
  MakeUsed();
  session->Limits.Enabled = session->Limits.Alarm = true;
  session->Limits.Of(1).Show = true;
  for (std::size_t i = 11; i <= 21; ++i) {
    session->Channel(1).UpperLimit[i] = -10;
    session->Channel(1).LowerLimit[i] = -40;
  }
  session->Label.GraphicsLabels[0] = "Filter A";
  session->Label.Date = true;
  Save(folder.File("a.cal"));
  session->Limits = LimitRecords();
  session->Label = LabelState();
  Load(folder.File("a.cal"));
  EXPECT_EQ(session->Limits.Of(1).Segments[0].Start, "1010.0000");
  EXPECT_EQ(session->Limits.Of(1).Segments[0].Upper, "-10");
  EXPECT_TRUE(session->Display.ShowLimits);
  EXPECT_TRUE(session->Display.LimitAlarmOn);
  EXPECT_TRUE(session->Channel(1).LimitsOn);
  EXPECT_EQ(session->Label.Composed.rfind("Filter A  (", 0), 0u) << session->Label.Composed;
}

}  // namespace
}  // namespace qk::test
