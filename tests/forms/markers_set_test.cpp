// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "core/window_names.h"
#include "support/program_fixture.h"

namespace qk {
namespace {

struct MarkersWindow : testing::Test, test::ScriptedProgram {
  MarkersWindow() {
    session.Plan.StartFreq = 3e6;
    session.Plan.StopFreq = 103e6;
    session.Plan.StepFreq = 1e6;
    session.Plan.NumPoints = 101;
    program.graphs().RedrawAll(true);
    fake.Show(window::kMarkersSet);
  }
  bool Tick(std::string_view control, bool on = true) {
    return Window("MarkersSet").Tick(control, on);
  }
  bool Press(const std::string& control) { return Click("MarkersSet." + control); }
  std::string Shown(const std::string& control) { return Value("MarkersSet." + control); }
  bool Put(const std::string& control, std::string_view text) {
    return Type("MarkersSet." + control, text);
  }
  MarkerSettings& Settings(int m) { return session.Markers.Set(m); }
  // A trace with one peak at a point.
  void PeakAt(int point) {
    for (int i = 1; i <= 101; ++i)
      session.Channel(1).Value[static_cast<std::size_t>(i)] = -std::abs(i - point);
  }
};

TEST_F(MarkersWindow, ReportsChannelAndParameter) {
  EXPECT_EQ(At("MarkersSet.Label2").Caption, "Ch 1, measuring S11");
  EXPECT_EQ(Window("MarkersSet").Caption(), "Markers Set Up");
}

TEST_F(MarkersWindow, AppliedMarkersAreShownWithTheActiveOneAmongThem) {
  Tick("Option1");
  Tick("Check2");
  Tick("Option5");
  EXPECT_TRUE(Press("Command2"));
  EXPECT_TRUE(session.Display.MarkersOn);
  EXPECT_FALSE(Settings(0).Shown);
  EXPECT_TRUE(Settings(1).Shown);
  EXPECT_TRUE(Settings(2).Shown);  // the active one
  EXPECT_TRUE(Settings(2).IsActive);
  EXPECT_EQ(Shown("Check3"), "on");
  EXPECT_EQ(session.Markers.Of(0, 2).State, MarkerState::Active);
}

TEST_F(MarkersWindow, APositionOnATimeAxisOfNoLengthIsThatOfTheFirstPoint) {
  session.TimeDomain.TdT1 = 10;  // as a session file may have it
  session.TimeDomain.TdStep = 0;
  Tick("Option14");
  Put("Text1", "10");
  Press("Command2");
  EXPECT_EQ(Settings(0).Point, 1);
}

TEST_F(MarkersWindow, TheActiveMarkerIsNotTheReference) {
  Tick("Option1");
  Tick("Check5");
  Tick("Option3");
  Press("Command2");
  EXPECT_EQ(Shown("Check5"), "off");
  EXPECT_FALSE(Settings(0).IsRef);
}

TEST_F(MarkersWindow, OneReferenceAtMost) {
  Tick("Check6");
  Tick("Check8");
  EXPECT_EQ(Shown("Check6"), "off");
  EXPECT_EQ(Shown("Check8"), "on");
  Tick("Check8", false);
  EXPECT_EQ(Shown("Check8"), "off");
}

TEST_F(MarkersWindow, OffHidesThemAll) {
  Tick("Option1");
  Tick("Check1");
  Press("Command2");
  Tick("Option2");
  Press("Command2");
  EXPECT_FALSE(session.Display.MarkersOn);
  for (int m = 0; m < 4; ++m) EXPECT_FALSE(Settings(m).Shown);
  EXPECT_EQ(session.Markers.Of(0, 0).State, MarkerState::Off);
}

TEST_F(MarkersWindow, ATypedFrequencyGoesToTheNearestPointAndIsRewritten) {
  const struct {
    const char* Typed;
    const char* Rewritten;
    int Point;
  } cases[] = {{"20.4", "20.0000", 18}, {"20.5", "21.0000", 19},   {"0", "3.0000", 1},
               {"-50", "3.0000", 1},    {"5000", "103.0000", 101}, {"1e300", "103.0000", 101},
               {"x", "3.0000", 1},      {"103", "103.0000", 101}};
  Tick("Option1");
  for (const auto& c : cases) {
    Put("Text1", c.Typed);
    Press("Command2");
    EXPECT_EQ(Settings(0).Point, c.Point) << c.Typed;
    EXPECT_EQ(Shown("Text1"), c.Rewritten) << c.Typed;
  }
}

TEST_F(MarkersWindow, ATypedTimeIsRewrittenAsThatOfThePointAfter) {
  session.TimeDomain.TdT1 = -5;
  session.TimeDomain.TdStep = 0.5;
  Tick("Option1");
  Tick("Option14");
  Put("Text1", "10");
  Press("Command2");
  EXPECT_EQ(Settings(0).Point, 31);
  EXPECT_EQ(Shown("Text1"), "10.500");
}

TEST_F(MarkersWindow, ApplyStoresThePositionAndTheMarkerMovesByTheNextSearch) {
  Tick("Option1");
  Put("Text1", "20");
  Press("Command2");
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 51);
  EXPECT_EQ(Settings(0).Point, 18);
  program.graphs().RedrawAll(false);  // as a loaded session does
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 18);
}

TEST_F(MarkersWindow, ChoosingAnActiveMarkerShowsItsPosition) {
  session.Markers.Of(0, 2).Point = 11;
  Tick("Option5");
  EXPECT_EQ(Shown("Text1"), "13.0000");
  Tick("Option14");
  EXPECT_NE(Shown("Text1"), "13.0000");
}

TEST_F(MarkersWindow, FindPeakPutsTheActiveMarkerOnIt) {
  PeakAt(33);
  Tick("Option4");
  EXPECT_TRUE(Press("Command3"));
  EXPECT_TRUE(session.Display.MarkersOn);
  EXPECT_EQ(session.Markers.Of(0, 1).Point, 33);
  EXPECT_EQ(session.Markers.Of(0, 1).State, MarkerState::Active);
  EXPECT_EQ(Shown("Text1"), "35.0000");
  EXPECT_EQ(Shown("Option1"), "on");
  EXPECT_EQ(Shown("Check2"), "on");
}

TEST_F(MarkersWindow, ASearchWithoutABandLeavesWhatIsTickedAndNotApplied) {
  PeakAt(33);
  Tick("Check2");
  Tick("Check7");
  Press("Command3");
  EXPECT_EQ(Shown("Check1"), "on");
  EXPECT_EQ(Shown("Check2"), "on");
  EXPECT_EQ(Shown("Check7"), "on");
  EXPECT_FALSE(Settings(1).Shown);
  Press("Command2");
  EXPECT_EQ(session.Markers.Of(0, 1).State, MarkerState::Shown);
  EXPECT_TRUE(Settings(2).IsRef);
}

TEST_F(MarkersWindow, ASearchTakesTheReferenceOffItsMarkerInTheWindowToo) {
  Tick("Check5");
  Press("Command3");
  EXPECT_EQ(Shown("Check5"), "off");
}

TEST_F(MarkersWindow, FindPeakWithABandShowsWidthByMarkersTwoAndThree) {
  PeakAt(50);
  Tick("Check9");
  Tick("Check10");
  EXPECT_EQ(Shown("Check9"), "off");
  Tick("Check9");
  EXPECT_EQ(Shown("Check10"), "off");
  Press("Command3");
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 50);
  EXPECT_EQ(session.Markers.Of(0, 1).Point, 47);
  EXPECT_EQ(session.Markers.Of(0, 1).State, MarkerState::Reference);
  EXPECT_EQ(session.Markers.Of(0, 2).Point, 53);
  EXPECT_EQ(session.Markers.Of(0, 2).State, MarkerState::Active);
  EXPECT_EQ(Shown("Option5"), "on");
  EXPECT_EQ(Shown("Check6"), "on");
  EXPECT_EQ(Shown("Text1"), "55.0000");
  const auto* delta = test::FindText(surface.Overlay(), "6.0000 MHz");
  EXPECT_NE(delta, nullptr);
}

TEST_F(MarkersWindow, TheWideBandIs6Decibels) {
  PeakAt(50);
  Tick("Check10");
  Press("Command3");
  EXPECT_EQ(session.Markers.Of(0, 1).Point, 44);
  EXPECT_EQ(session.Markers.Of(0, 2).Point, 56);
}

TEST_F(MarkersWindow, FindMinimumMirrorsIt) {
  for (int i = 1; i <= 101; ++i)
    session.Channel(1).Value[static_cast<std::size_t>(i)] = std::abs(i - 40);
  Tick("Check12");
  Press("Command4");
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 40);
  EXPECT_EQ(session.Markers.Of(0, 1).Point, 34);
  EXPECT_EQ(session.Markers.Of(0, 2).Point, 46);
}

TEST_F(MarkersWindow, OnAPhaseGraphFindClearsTheBandsAndPlacesOneMarker) {
  PeakAt(60);
  session.Channel(1).GraphType = GraphType::Phase;
  Tick("Check9");
  Press("Command3");
  EXPECT_EQ(Shown("Check9"), "off");
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 60);
  EXPECT_EQ(session.Markers.Of(0, 0).State, MarkerState::Active);
  for (int m = 1; m < 4; ++m) EXPECT_EQ(session.Markers.Of(0, m).State, MarkerState::Off);
}

TEST_F(MarkersWindow, MarkersOfALoadedSessionAreShownAtOnce) {
  session.Display.MarkersOn = true;
  session.Markers.Set(2) = {true, false, true, 11};
  session.Markers.Set(3) = {true, true, false, 21};
  program.graphs().RedrawAll(false);
  program.host().windows.SessionChanged();
  EXPECT_EQ(Shown("Option1"), "on");
  EXPECT_EQ(Shown("Check3"), "on");
  EXPECT_EQ(Shown("Check8"), "on");
  EXPECT_EQ(Shown("Option5"), "on");
  EXPECT_EQ(Shown("Text1"), "13.0000");
}

TEST_F(MarkersWindow, ALoadedSessionWithTheSameMarkersElsewhereShowsWhereTheyAre) {
  Tick("Option1");
  Tick("Option4");
  Put("Text1", "13");
  Press("Command2");
  Tick("Check4");  // not applied yet: stays
  session.Markers.Set(1).Point = 31;
  program.graphs().RedrawAll(false);
  program.host().windows.SessionChanged();
  EXPECT_EQ(Shown("Text1"), "33.0000");
  EXPECT_EQ(Shown("Check4"), "on");
}

TEST_F(MarkersWindow, AnotherSweepShowsTheFrequencyOfTheActiveMarkerAtOnce) {
  Tick("Option1");
  Press("Command2");
  Put("Text1", "13");
  session.Plan.StartFreq = 103e6;
  program.host().windows.SessionChanged();
  EXPECT_EQ(Shown("Text1"), "153.0000");
}

TEST_F(MarkersWindow, WhatIsTickedAndNotAppliedStaysWhenSomethingElseChanges) {
  Tick("Option1");
  Tick("Check2");
  Press("Command2");
  Tick("Check4");
  Put("Text1", "12");
  program.host().windows.SessionChanged();
  EXPECT_EQ(Shown("Check4"), "on");
  EXPECT_EQ(Shown("Text1"), "12");
}

TEST_F(MarkersWindow, AnUndoOfABandSearchClearsItsCheckBox) {
  PeakAt(50);
  Tick("Check9");
  Press("Command3");
  ASSERT_EQ(Settings(0).Point, 50);
  EXPECT_EQ(Shown("Check9"), "on");
  Click("Form1.ScaleCoarser");
  Click("Form1.UndoLast");
  EXPECT_EQ(Shown("Check9"), "on") << "the search still applies";
  Click("Form1.UndoLast");
  EXPECT_FALSE(session.Display.MarkersOn && Settings(1).Shown);
  EXPECT_EQ(Shown("Check9"), "off");
  Tick("Check9");
  fake.SessionChanged();
  EXPECT_EQ(Shown("Check9"), "on") << "chosen for the next search";
}

TEST_F(MarkersWindow, TheBandsAreNamedByTheirLevel) {
  EXPECT_EQ(At("MarkersSet.Check9").Caption, "-3 dB band");
  EXPECT_EQ(At("MarkersSet.Check10").Caption, "-6 dB band");
  EXPECT_EQ(At("MarkersSet.Check11").Caption, "+3 dB band");
  EXPECT_EQ(At("MarkersSet.Check12").Caption, "+6 dB band");
}

TEST_F(MarkersWindow, ExitHidesIt) {
  Press("Command1");
  EXPECT_FALSE(fake.IsShown("MarkersSet"));
}

}  // namespace
}  // namespace qk
