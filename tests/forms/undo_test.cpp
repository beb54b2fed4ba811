// SPDX-License-Identifier: MIT
// Undo of display, memory and markers, and the line that passes by.
#include <gtest/gtest.h>

#include <cmath>

#include "control/due_changes.h"
#include "control/graph_verbs.h"
#include "support/program_fixture.h"

namespace qk::test {
namespace {

struct UndoFixture : ScriptedProgram {
  UndoFixture() {
    session.Plan.StartFreq = 100e6;
    session.Plan.StopFreq = 200e6;
    session.Plan.StepFreq = 1e6;
    session.Plan.NumPoints = 101;
    session.Display.DisplaySet = DisplaySet::All;
    for (int n = 1; n <= 4; ++n) session.Channel(n).Parameter = static_cast<Parameter>(n - 1);
    for (int i = 0; i < 101; ++i) {
      session.Data.S11.Set(i, {0.5 - 0.001 * i, 0.1});
      session.Data.S21.Set(i, {0.25, 0.001 * i});
    }
    program.graphs().ReplotAll();
    program.controller().undo().Forget();
  }
  ChannelSettings& Channel(int n) { return session.Channel(n); }
  // The line that says what was undone.
  std::string Undo() {
    Click("Form1.UndoLast");
    return Value0("Form1.Notice");
  }
  std::string Value0(const char* label) { return At(label).Caption; }
  CanvasPoint Middle(int graph) {
    const GraphRecord& g = program.graphs().Graph(graph);
    return {(g.Left + g.Right) / 2, (g.Top + g.Bottom) / 2};
  }
  void Pick(int channel, const char* word) {
    const std::vector<MenuEntry> menu = program.MenuOf(channel);
    const MenuEntry* entry = FindEntry(menu, word);
    ASSERT_NE(entry, nullptr) << word;
    entry->Run();
  }
};

TEST(Undo, TakesBackTheLastChangeOfDisplayMemoryAndMarkers) {
  UndoFixture vna;
  const double reference = vna.Channel(1).Reference;
  vna.Click("Form1.ScaleCoarser");
  vna.Pick(2, "parameter.S22");
  vna.Pick(1, "marker");
  vna.Pick(1, "store");
  vna.Click("Form1.ReferenceUp");
  EXPECT_EQ(vna.Undo(), "undone: reference of CH1");
  EXPECT_DOUBLE_EQ(vna.Channel(1).Reference, reference);
  EXPECT_TRUE(vna.Channel(1).MemoryValid);
  EXPECT_EQ(vna.Undo(), "undone: display, memory of CH1") << "the math that a store begins";
  EXPECT_FALSE(vna.Channel(1).MemoryValid);
  EXPECT_FALSE(vna.session.Display.MemoryInUse);
  EXPECT_TRUE(vna.session.Display.MarkersOn);
  EXPECT_EQ(vna.Undo(), "undone: markers");
  EXPECT_FALSE(vna.session.Display.MarkersOn);
  EXPECT_EQ(vna.Channel(2).Parameter, Parameter::S22);
  EXPECT_EQ(vna.Undo(), "undone: parameter of CH2");
  EXPECT_EQ(vna.Channel(2).Parameter, Parameter::S21);
  EXPECT_EQ(vna.Undo(), "undone: scale of CH1");
  EXPECT_DOUBLE_EQ(vna.Channel(1).Scale, 10);
  EXPECT_EQ(vna.Undo(), "Nothing to undo");
}

TEST(Undo, HoldsTenSteps) {
  UndoFixture vna;
  for (int i = 0; i < 12; ++i) vna.Click("Form1.ReferenceUp");
  const double reference = vna.Channel(1).Reference, scale = vna.Channel(1).Scale;
  for (int i = 1; i <= 10; ++i) {
    EXPECT_EQ(vna.Undo(), "undone: reference of CH1") << i;
    EXPECT_DOUBLE_EQ(vna.Channel(1).Reference, reference - i * scale);
  }
  EXPECT_EQ(vna.Undo(), "Nothing to undo");
}

TEST(Undo, GraphsAndWindowsFollow) {
  UndoFixture vna;
  vna.OpenDisplay();
  vna.Click("Form1.ScaleCoarser");
  EXPECT_EQ(vna.Value("DisplayPara.SensInput"), "20");
  vna.Undo();
  EXPECT_EQ(vna.Value("DisplayPara.SensInput"), "10");
  EXPECT_DOUBLE_EQ(vna.program.graphs().Graph(0).Scale, 10);
}

TEST(Undo, WhatAWindowAppliesIsOneStep) {
  UndoFixture vna;
  vna.OpenDisplay();
  vna.Type("DisplayPara.SensInput", "3");
  vna.Type("DisplayPara.REFinput", "-12");
  EXPECT_EQ(vna.Undo(), "Nothing to undo") << "nothing is applied";
  for (const Control& c : vna.Window("DisplayPara").Controls())
    if (c.Caption == "Apply") vna.Window("DisplayPara").Click(c.Name);
  EXPECT_DOUBLE_EQ(vna.Channel(1).Scale, 3);
  EXPECT_EQ(vna.Undo(), "undone: display of CH1");
  EXPECT_DOUBLE_EQ(vna.Channel(1).Scale, 10);
  EXPECT_EQ(vna.Undo(), "Nothing to undo");
}

TEST(Undo, ADragIsOneStepAndSoIsATurnOfTheWheel) {
  UndoFixture vna;
  vna.Pick(1, "marker");
  const int point = vna.session.Markers.Of(0, 0).Point;
  const Marker& marker = vna.session.Markers.Of(0, 0);
  vna.program.Mouse(Program::MouseAction::Down, true, marker.X, marker.LabelY);
  for (int i = 1; i <= 20; ++i)
    vna.program.Mouse(Program::MouseAction::Move, true, marker.X + 3, marker.LabelY);
  vna.program.Mouse(Program::MouseAction::Up, true, marker.X, marker.LabelY);
  EXPECT_GT(vna.session.Markers.Of(0, 0).Point, point + 5);
  const CanvasPoint at = vna.Middle(0);
  for (int i = 0; i < 3; ++i) vna.program.Wheel(at.x, at.y, 1, false);
  vna.clock.AdvanceMs(1500);
  vna.program.Wheel(at.x, at.y, 1, false);
  EXPECT_EQ(vna.Undo(), "undone: scale of CH1");
  EXPECT_DOUBLE_EQ(vna.Channel(1).Scale, 1);
  EXPECT_EQ(vna.Undo(), "undone: scale of CH1");
  EXPECT_DOUBLE_EQ(vna.Channel(1).Scale, 10);
  EXPECT_EQ(vna.Undo(), "undone: markers");
  EXPECT_EQ(vna.session.Markers.Of(0, 0).Point, point);
}

TEST(Undo, AnotherGraphUnderTheWheelIsAnotherStep) {
  UndoFixture vna;
  for (const int graph : {0, 1}) {
    const CanvasPoint at = vna.Middle(graph);
    vna.program.Wheel(at.x, at.y, 1, false);
  }
  EXPECT_EQ(vna.Undo(), "undone: scale of CH2");
  EXPECT_DOUBLE_EQ(vna.Channel(1).Scale, 5);
}

TEST(Undo, EraseBringsTheTracesBackBitByBit) {
  UndoFixture vna;
  vna.Pick(1, "store");
  vna.Pick(2, "store");
  const auto kept = vna.Channel(2).MemoryIm;
  vna.Click("Form1.DisplayMem_Data");
  vna.Click("Form1.SetMemory");
  vna.Click("MemoryPara.Command2");
  EXPECT_FALSE(vna.Channel(2).MemoryValid);
  vna.Click("Form1.DisplayData");
  vna.Undo();
  EXPECT_EQ(vna.Undo(), "undone: memory of CH1, CH2");
  EXPECT_TRUE(vna.Channel(1).MemoryValid);
  EXPECT_TRUE(vna.Channel(2).MemoryValid);
  EXPECT_EQ(vna.Channel(2).MemoryIm, kept);
  EXPECT_EQ(vna.session.Display.DisplayMode, DisplayMode::DataAndMemory);
}

TEST(Undo, AModeThatShowsMemoriesNeedsOneAtAnotherSweep) {
  UndoFixture vna;
  vna.Pick(1, "store");
  vna.Click("Form1.DisplayMem_Data");
  vna.Click("Form1.DisplayData");
  vna.session.Plan.StartFreq = 150e6;
  vna.session.Plan.StopFreq = 250e6;
  vna.Channel(1).MemoryValid = false;  // as Apply leaves it
  vna.session.Display.MemoryInUse = false;
  EXPECT_EQ(vna.Undo(), "undone: display");
  EXPECT_EQ(vna.session.Display.DisplayMode, DisplayMode::Data);
}

TEST(Undo, AMemoryWhoseSweepHasGoneIsNotRestoredAndThatIsSaid) {
  UndoFixture vna;
  vna.Pick(1, "store");
  vna.Click("Form1.SetMemory");
  vna.Click("MemoryPara.Command2");
  vna.session.Plan.StepFreq = 0.5e6;  // half the span
  vna.session.Plan.StopFreq = 150e6;
  EXPECT_EQ(vna.Undo(),
            "undone: memory of CH1; not restored: memory 1 of CH1 (its sweep has gone)");
  EXPECT_FALSE(vna.Channel(1).MemoryValid);
}

TEST(Undo, AMemoryOfAnotherImpedanceIsNotRestored) {
  UndoFixture vna;
  vna.Pick(1, "store");
  vna.Click("Form1.SetMemory");
  vna.Click("MemoryPara.Command2");
  vna.session.Impedance.SystemZo = 75;
  EXPECT_EQ(vna.Undo(),
            "undone: memory of CH1; not restored: memory 1 of CH1 (it is of another impedance)");
  EXPECT_FALSE(vna.Channel(1).MemoryValid);
}

TEST(Undo, MarkersComeBackAtTheirFrequencies) {
  UndoFixture vna;
  PutMarker(vna.program.controller(), 1, 31);  // 130 MHz
  vna.program.controller().undo().Forget();
  vna.program.controller().undo().Around([&] { PutMarker(vna.program.controller(), 1, 41); });
  vna.session.Plan.StartFreq = 120e6;
  vna.session.Plan.StepFreq = 0.5e6;
  vna.session.Plan.StopFreq = 170e6;
  EXPECT_EQ(vna.Undo(), "undone: markers");
  EXPECT_EQ(vna.session.Markers.Of(0, 0).Point, 21) << "130 MHz";
  EXPECT_FALSE(vna.session.Markers.Set(1).Shown);
}

TEST(Undo, AMarkerOutsideTheSweepIsSaid) {
  UndoFixture vna;
  PutMarker(vna.program.controller(), 1, 11);  // 110 MHz
  vna.program.controller().undo().Forget();
  vna.Click("Form1.Cursors");
  vna.program.controller().undo().Around([&] {
    vna.session.Markers.Set(0).Shown = false;
    vna.program.graphs().RedrawAll(true);
  });
  vna.session.Plan.StartFreq = 150e6;
  vna.session.Plan.StopFreq = 250e6;
  EXPECT_EQ(vna.Undo(), "undone: markers; not restored: marker 1 (outside the sweep)");
  EXPECT_FALSE(vna.session.Markers.Set(0).Shown);
}

TEST(Undo, TheTimeDomainNeedsItsPoints) {
  UndoFixture vna;
  vna.session.Plan.NumPoints = 1024;
  vna.session.Plan.StepFreq = vna.session.Plan.StartFreq = 3e6;
  vna.Pick(1, "type.TD");
  ASSERT_EQ(vna.Channel(1).GraphType, GraphType::Td);
  vna.Pick(1, "type.Phase");
  vna.session.Plan.NumPoints = 101;
  EXPECT_EQ(vna.Undo(),
            "undone: display of CH1; not restored: time domain of CH1 (needs 1024 points)");
  EXPECT_EQ(vna.Channel(1).GraphType, GraphType::Phase);
}

TEST(Undo, AHoldIsNoChangeOfTheUsers) {
  UndoFixture vna;
  vna.Pick(1, "store");
  vna.Click("Form1.SetMemory");
  vna.Click("MemoryPara.Holdmax");
  vna.program.controller().undo().Forget();
  vna.program.controller().undo().Around([&] { vna.Channel(1).MemoryRe[7] = 3; });
  EXPECT_EQ(vna.Undo(), "Nothing to undo");
  EXPECT_DOUBLE_EQ(vna.Channel(1).MemoryRe[7], 3);
  vna.Channel(1).MemoryRe[8] = 4;  // between two actions
  vna.Click("Form1.ScaleCoarser");
  EXPECT_EQ(vna.Undo(), "undone: scale of CH1");
  EXPECT_DOUBLE_EQ(vna.Channel(1).MemoryRe[8], 4);
}

TEST(Undo, TheEndOfASweepInsideAnActionIsNoStep) {
  UndoFixture vna;
  vna.Click("Form1.ScaleCoarser");
  const std::int16_t before = vna.session.Display.PlotRefreshPoints;
  vna.program.controller().undo().Around(
      [&vna] { ServeDueChanges(vna.program.controller().rig(), vna.program.graphs(), {}); });
  ASSERT_NE(vna.session.Display.PlotRefreshPoints, before) << "each sweep sets it";
  EXPECT_EQ(vna.program.controller().undo().Next(), "scale of CH1");
  EXPECT_EQ(vna.Undo(), "undone: scale of CH1");
  EXPECT_EQ(vna.Undo(), "Nothing to undo");
}

TEST(Undo, AnotherSweepIsNoStep) {
  UndoFixture vna;
  vna.Pick(1, "store");
  vna.program.controller().undo().Forget();
  vna.session.Id.PortNumber = 0;
  vna.OpenCalibration();
  vna.Type("Calibration.Text1", "300");
  vna.Type("Calibration.Text2", "400");
  vna.Click("Calibration.Command1");
  EXPECT_FALSE(vna.Channel(1).MemoryValid);
  EXPECT_EQ(vna.Undo(), "Nothing to undo");
}

TEST(Undo, OfAnActionInsideAnotherIsAStepOfItsOwn) {
  UndoFixture vna;
  UndoHistory& undo = vna.program.controller().undo();
  undo.Around([&] {  // as START, which lasts as long as the sweeps do
    vna.Click("Form1.ScaleCoarser");
    vna.Click("Form1.ReferenceUp");
    EXPECT_EQ(vna.Undo(), "undone: reference of CH1");
    EXPECT_DOUBLE_EQ(vna.Channel(1).Scale, 20);
  });
  EXPECT_EQ(vna.Undo(), "undone: scale of CH1");
  EXPECT_EQ(vna.Undo(), "Nothing to undo");
}

TEST(Undo, WhatRemoteControlDidMeanwhileStays) {
  UndoFixture vna;
  vna.Click("Form1.ScaleCoarser");
  vna.Channel(2).Parameter = Parameter::S22;  // not by the window
  vna.Undo();
  EXPECT_DOUBLE_EQ(vna.Channel(1).Scale, 10);
  EXPECT_EQ(vna.Channel(2).Parameter, Parameter::S22);
}

TEST(Undo, ALoadedSessionBeginsANewHistory) {
  UndoFixture vna;
  const std::string path = vna.folder.Text() + "/kept.cal";
  vna.fake.Choices = {path, path};
  vna.Click("Form1.SaveCal");
  vna.Click("Form1.ScaleCoarser");
  vna.Click("Form1.LoadCal");
  EXPECT_DOUBLE_EQ(vna.Channel(1).Scale, 10);
  EXPECT_EQ(vna.Undo(), "Nothing to undo");
}

TEST(Undo, TheMenuSaysWhatIsNext) {
  UndoFixture vna;
  EXPECT_EQ(vna.At("Form1.UndoLast").ToolTip, "Nothing to undo");
  vna.Click("Form1.ScaleCoarser");
  vna.fake.SessionChanged();
  EXPECT_EQ(vna.At("Form1.UndoLast").ToolTip, "Take back the last change: scale of CH1");
}

// ---- the line that passes by
// ---------------------------------------------------------------------

TEST(PassingLine, SaysWhatWasStoredAndWhenAndGoesByItself) {
  UndoFixture vna;
  vna.Pick(2, "store");
  EXPECT_EQ(vna.Value0("Form1.Notice"), "S21 stored 14:05");
  vna.clock.AdvanceMs(PassingLine::kStaysMs - 1);
  vna.fake.SessionChanged();
  EXPECT_EQ(vna.Value0("Form1.Notice"), "S21 stored 14:05");
  vna.clock.AdvanceMs(1);
  vna.fake.SessionChanged();
  EXPECT_EQ(vna.Value0("Form1.Notice"), "");
}

TEST(PassingLine, NamesTheChannelsThatTheWindowStored) {
  UndoFixture vna;
  vna.Click("Form1.SetMemory");
  vna.Click("MemoryPara.MAllSelect");
  vna.Click("MemoryPara.StoreData");
  EXPECT_EQ(vna.Value0("Form1.Notice"), "S11, S21, S12, S22 stored 14:05");
}

TEST(PassingLine, SaysWhatWasSavedAndNotWhatWasNot) {
  UndoFixture vna;
  vna.fake.Choices = {vna.folder.Text() + "/mine.cal"};
  vna.Click("Form1.SaveCal");
  EXPECT_EQ(vna.Value0("Form1.Notice"), "saved mine.cal");
  vna.fake.Choices = {vna.folder.Text() + "/nowhere/other.cal"};
  vna.Click("Form1.SaveCal");
  EXPECT_EQ(vna.Value0("Form1.Notice"), "saved mine.cal");
  vna.Click("Form1.SaveMeasurements");
  vna.fake.Choices = {vna.folder.Text() + "/filter"};
  vna.Click("SaveMeas.Command1");
  EXPECT_EQ(vna.Value0("Form1.Notice"), "saved filter.s1p");
}

// ---- proposed names
// ------------------------------------------------------------------------------

TEST(ProposedNames, AreLabelAndDateAndOfNoFileThatIsThere) {
  UndoFixture vna;
  vna.Click("Form1.SaveCal");
  ASSERT_EQ(vna.fake.Dialogs.size(), 1u);
  EXPECT_EQ(vna.fake.Dialogs[0].Name, "2026-03-09");
  vna.session.Label.GraphicsLabels[0] = "Filter A/7: 10 %";
  vna.fake.Choices = {vna.folder.Text() + "/Filter-A-7-10-2026-03-09.cal"};
  vna.Click("Form1.SaveCal");
  EXPECT_EQ(vna.fake.Dialogs[1].Name, "Filter-A-7-10-2026-03-09");
  vna.Click("Form1.SaveCal");
  EXPECT_EQ(vna.fake.Dialogs[2].Name, "Filter-A-7-10-2026-03-09-2");
  vna.Click("Form1.SaveGraphics");
  EXPECT_EQ(vna.fake.Dialogs[3].Name, "Filter-A-7-10-2026-03-09") << "of another ending";
  vna.Click("Form1.SaveMeasurements");
  vna.Click("SaveMeas.Command1");
  EXPECT_EQ(vna.fake.Dialogs[4].Name, "Filter-A-7-10-2026-03-09");
  vna.Click("Form1.LoadCal");
  EXPECT_EQ(vna.fake.Dialogs[5].Name, "") << "nothing is proposed to open";
}

TEST(ProposedNames, AreNamesThatFilesMayHave) {
  UndoFixture vna;
  const auto proposed = [&](const std::string& label) {
    vna.session.Label.GraphicsLabels[0] = label;
    vna.fake.Dialogs.clear();
    vna.Click("Form1.SaveCal");
    return vna.fake.Dialogs.at(0).Name;
  };
  EXPECT_EQ(proposed("../../etc"), "_..-..-etc-2026-03-09");
  EXPECT_EQ(proposed("///"), "2026-03-09");
  EXPECT_EQ(proposed(" "), "2026-03-09");
  EXPECT_EQ(proposed(std::string(200, 'x')), std::string(40, 'x') + "-2026-03-09");
  EXPECT_EQ(proposed(std::string(39, 'x') + "\u00E4"), std::string(39, 'x') + "-2026-03-09")
      << "no half letter";
}

}  // namespace
}  // namespace qk::test
