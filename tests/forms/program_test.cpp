// SPDX-License-Identifier: MIT
#include "forms/program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "core/window_names.h"

#include "support/program_fixture.h"

namespace qk::test {
namespace {

TEST(Program, PutsEveryWindowOnTheDesk) {
  ScriptedProgram vna;
  Texts names;
  for (const Form* form : vna.fake.registry().All()) names.push_back(form->Name());
  const std::vector<std::string_view> wanted = {window::kForm1,         window::kCalibration,
                                                window::kOpenCal,       window::kShortCal,
                                                window::kMatchCal,      window::kThruCalForm,
                                                window::kIsoMethod,     window::kDisplayPara,
                                                window::kEnhancePara,   window::kMemoryPara,
                                                window::kTDR_Opts,      window::kMarkersSet,
                                                window::kAdjMarkers,    window::kMarkerTable,
                                                window::kNewLimitsSet,  window::kLabelGraphics,
                                                window::kSaveMeas,      window::kLoadMeas,
                                                window::kReport,        window::kCompare,
                                                window::kCalKitForm,    window::kNewCalKit,
                                                window::kSaveKit,       window::kColours,
                                                window::kHardwareInfo,  window::kDiagnosticsTests,
                                                window::kEepromBk,      window::kEepromRest,
                                                window::kRemoteControl, window::kFreqGen,
                                                window::kP1dBForm,      window::kAMtoPM,
                                                window::kCheckCal,      window::kSweepStats,
                                                window::kHints,         window::kBatch,
                                                window::kEEPROMdata,    window::kUpdating,
                                                window::kSweepStopping, window::kShuttingDown};
  EXPECT_EQ(names.size(), wanted.size());
  for (const std::string_view name : wanted)
    EXPECT_EQ(std::count(names.begin(), names.end(), name), 1) << name;
}

TEST(Program, NoWindowHasTwoControlsOfOneName) {
  ScriptedProgram vna;
  for (const Form* form : vna.fake.registry().All())
    for (const Control& control : form->Controls())
      EXPECT_EQ(form->Find(control.Name), &control) << form->Name() << "." << control.Name;
}

TEST(Program, MakesTheInstallFolderWhenItIsMissing) {
  const ScratchFolder scratch;
  const std::filesystem::path folder = scratch.File("install/below");
  FakeClock clock;
  FakeHost fake{clock};
  ScriptedPort port{clock};
  RecordingSurface surface;
  Program program{fake.registry(), fake.host(), port, surface, ProgramOptions{folder.string(), 1}};
  EXPECT_TRUE(std::filesystem::is_directory(folder));
  EXPECT_EQ(program.session().InstallFolder, folder.string());
}

TEST(Program, AFolderThatCannotBeMadeStopsNothing) {
  FakeClock clock;
  FakeHost fake{clock};
  ScriptedPort port{clock};
  RecordingSurface surface;
  Program program{fake.registry(), fake.host(), port, surface,
                  ProgramOptions{"/dev/null/no/folder", 1}};
  EXPECT_EQ(program.session().InstallFolder, "/dev/null/no/folder");
}

TEST(Program, WithoutAnInstrumentTheWindowStaysUpAndNothingRuns) {
  ScriptedProgram vna;
  vna.port.Coms.clear();
  vna.fake.Answers = {Answer::Retry, Answer::Cancel};
  vna.program.StartUp();
  EXPECT_EQ(vna.fake.Messages.size(), 2u);
  EXPECT_TRUE(vna.fake.IsShown("Form1"));
  EXPECT_EQ(vna.fake.Panels[2], "No Instrument!");
  for (TimerId timer : {TimerId::Timer1, TimerId::Timer2, TimerId::Timer3})
    EXPECT_FALSE(vna.fake.Enabled(timer));
}

TEST(Program, ANewPictureSizeIsLaidOutAndDrawnAtOnce) {
  ScriptedProgram vna;
  vna.surface.canvas().Resize({400, 300});
  const int presented = vna.surface.Presented;
  vna.program.PictureResized();
  EXPECT_GT(vna.surface.Presented, presented);
  EXPECT_LE(vna.program.graphs().Graph(0).Right, 400);
}

TEST(Program, TheMouseSelectsNothing) {
  ScriptedProgram vna;
  vna.program.PictureResized();
  const int presented = vna.surface.Presented;
  vna.program.Mouse(Program::MouseAction::Down, true, 100, 100);
  vna.program.Mouse(Program::MouseAction::Up, true, 100, 100);
  EXPECT_EQ(vna.surface.Presented, presented);
  EXPECT_EQ(vna.session.Display.ActiveChannel, 1);
}

}  // namespace
}  // namespace qk::test
