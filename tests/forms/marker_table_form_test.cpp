// SPDX-License-Identifier: MIT
#include "forms/marker_table_form.h"

#include <gtest/gtest.h>

#include <cmath>

#include "control/graph_verbs.h"
#include "core/instrument_limits.h"
#include "display/markers.h"
#include "limits/marker_search.h"
#include "support/program_fixture.h"

namespace qk::test {
namespace {

struct MarkerTableTest : testing::Test, ScriptedProgram {
  MarkerTableTest() {
    session.Plan.StartFreq = 3e6;
    session.Plan.StopFreq = 103e6;
    session.Plan.StepFreq = 1e6;
    session.Plan.NumPoints = 101;
    session.Display.DisplaySet = DisplaySet::OneTwo;
    session.Channel(2).Parameter = Parameter::S21;
    session.Display.MarkersOn = true;
    session.Markers.Set(0) = {true, false, true, 48};
    session.Markers.Set(2) = {true, false, false, 11};
    program.graphs().RedrawAll(false);
    Click("Form1.MarkerTable");
  }
  void Measure(int n, const std::function<double(int)>& value) {
    for (int i = 1; i <= 101; ++i) {
      session.Channel(n).Value[static_cast<std::size_t>(i)] = value(i);
      program.graphs().PlotPoint(n, i, value(i), 0);
    }
  }
  std::string Caption(const char* name) { return At(std::string("MarkerTable.") + name).Caption; }
};

TEST_F(MarkerTableTest, HasARowForEachMarkerOfEachDisplayedChannel) {
  Measure(1, [](int i) { return -0.5 * i; });
  fake.SweepEnded();
  EXPECT_EQ(Value("MarkerTable.Position11"), "50.0000");
  EXPECT_EQ(Caption("Value11"), "-24.000 dB");
  EXPECT_EQ(Value("MarkerTable.Position13"), "13.0000");
  EXPECT_EQ(Caption("Value13"), "-5.500 dB");
  EXPECT_EQ(Value("MarkerTable.Position21"), "50.0000");
  EXPECT_EQ(Caption("Value21"), "---") << "nothing measured";
  EXPECT_FALSE(At("MarkerTable.Position12").Enabled) << "switched off";
  EXPECT_FALSE(At("MarkerTable.Position31").Enabled) << "not displayed";
  EXPECT_EQ(Caption("Value12"), "");
}

// The value and its unit are of one moment, whatever changes what the graph shows.
TEST_F(MarkerTableTest, FollowsTheGraphTypeWithoutASweep) {
  session.Cal.Cal12Term = true;
  Measure(1, [](int) { return -20; });
  for (int i = 0; i < 101; ++i) session.Data.S11.Set(i, {0.1, 0});
  program.graphs().ReplotAll();
  EXPECT_EQ(Caption("Value11"), "-20.000 dB");
  ASSERT_TRUE(ShowGraphType(program.controller(), 1, GraphType::LinMag));
  EXPECT_EQ(Caption("Value11").substr(0, 4), "0.10") << Caption("Value11");
  ASSERT_TRUE(ShowGraphType(program.controller(), 1, GraphType::LogMag));
  EXPECT_EQ(Caption("Value11"), "-20.000 dB");
  for (int i = 0; i < 101; ++i) session.Data.S22.Set(i, {0.01, 0});
  ASSERT_TRUE(ShowParameter(program.controller(), 1, Parameter::S22));
  EXPECT_EQ(Caption("Value11"), "-40.000 dB");
}

// Zero at each point is -220 dB in the file's trace, and was never measured.
TEST_F(MarkerTableTest, AParameterThatALoadedSessionHasNotMeasuredHasNoValue) {
  for (int i = 0; i < 101; ++i) session.Data.S11.Set(i, {0.1, 0});
  session.Channel(1).Value.fill(-20);
  session.Channel(2).Value.fill(-220);
  program.graphs().TakeChannels();
  program.graphs().RedrawAll(true);
  EXPECT_EQ(Caption("Value11"), "-20.000 dB");
  EXPECT_EQ(Caption("Value21"), "---");
  // A reflection that was never measured is not zero.
  for (int i = 0; i < 101; ++i) session.Data.S22.Set(i, {1e-6, 0});
  session.Channel(1).Parameter = Parameter::S22;
  session.Channel(1).Value.fill(-120);
  program.graphs().TakeChannels();
  program.graphs().RedrawAll(true);
  EXPECT_EQ(Caption("Value11"), "---");
}

// A value of an earlier sweep; a memory and a fixed marker keep theirs.
TEST_F(MarkerTableTest, WhatTheCalibrationDoesNotMeasureHasNoValue) {
  session.Cal.Cal12Term = true;
  Measure(1, [](int) { return -10; });
  Measure(2, [](int) { return -20; });
  fake.SweepEnded();
  EXPECT_EQ(Caption("Value21"), "-20.000 dB");
  session.Cal.Cal12Term = false;
  session.Cal.CalS11 = true;
  fake.SessionChanged();
  EXPECT_EQ(Caption("Value11"), "-10.000 dB");
  EXPECT_EQ(Caption("Value21"), "---");
  session.Markers.Of(1, 0).State = MarkerState::Fixed;
  session.Markers.Of(1, 0).Value = -7;
  fake.SessionChanged();
  EXPECT_EQ(Caption("Value21"), "-7.000 dB");
}

TEST_F(MarkerTableTest, AFrequencyIsTypedInPlace) {
  Measure(1, [](int i) { return -0.5 * i; });
  Type("MarkerTable.Position11", "80.4");
  for (int graph = 0; graph < 2; ++graph) EXPECT_EQ(session.Markers.Of(graph, 0).Point, 78);
  EXPECT_EQ(session.Markers.Set(0).Point, 78);
  EXPECT_EQ(Value("MarkerTable.Position11"), "80.0000") << "the nearest point";
  EXPECT_EQ(Value("MarkerTable.Position21"), "80.0000");
  EXPECT_EQ(Caption("Value11"), "-39.000 dB");
  Type("MarkerTable.Position21", "99999");
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 101);
}

TEST_F(MarkerTableTest, WhatIsNoNumberLeavesTheMarkerWhereItIs) {
  Measure(1, [](int i) { return -0.5 * i; });
  Type("MarkerTable.Position11", "80");
  for (const std::string text : {"x", "", "1 GHz", "81,5"}) {
    program.controller().notice().Say("");
    Type("MarkerTable.Position11", text);
    EXPECT_EQ(session.Markers.Of(0, 0).Point, 78) << text;
    EXPECT_EQ(Value("MarkerTable.Position11"), "80.0000") << text;
    EXPECT_EQ(program.controller().notice().Text(),
              "\"" + text + "\" is not a number: marker 1 stays");
  }
}

TEST_F(MarkerTableTest, APositionBeyondTheSweepIsSaidInThePassingLine) {
  Measure(1, [](int i) { return -0.5 * i; });
  PassingLine& notice = program.controller().notice();
  Type("MarkerTable.Position11", "103.4");
  EXPECT_EQ(notice.Text(), "") << "the last point is the nearest";
  Type("MarkerTable.Position11", "104");
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 101);
  EXPECT_EQ(notice.Text(), "outside the trace: marker 1 is at the nearest end");
  notice.Say("");
  Type("MarkerTable.Position23", "2.4");
  EXPECT_EQ(notice.Text(), "outside the trace: marker 3 is at the nearest end");
  notice.Say("");
  Type("MarkerTable.Position23", "2.6");
  EXPECT_EQ(notice.Text(), "");
}

TEST_F(MarkerTableTest, ADistanceIsTypedInMetres) {
  session.Plan.NumPoints = kTimeDomainPoints;
  session.Display.DisplaySet = DisplaySet::One;
  session.Channel(1).GraphType = GraphType::Td;
  session.TimeDomain.Axis = TimeAxis::Distance;
  program.graphs().RedrawAll(false);
  Type("MarkerTable.Position11", "3.3");
  const GraphRecord& graph = program.graphs().Graph(0);
  EXPECT_NEAR(PositionOf(graph, session.Markers.Of(0, 0).Point), 3.3, graph.MetresStep / 2);
  EXPECT_NEAR(std::stod(Value("MarkerTable.Position11")), 3.3, graph.MetresStep / 2 + 1e-4);
  EXPECT_EQ(At("MarkerTable.Position11").Unit, "m");
  Click("MarkerTable.Command1");
  EXPECT_NE(surface.CopiedText.find("\tm\t"), std::string::npos) << surface.CopiedText;
}

TEST_F(MarkerTableTest, TheBandOfTheLastSearchStandsBelow) {
  Measure(1, [](int i) { return -0.3 * std::abs(i - 48); });
  EXPECT_EQ(Caption("Band"), "No band: tick one in Markers, then Find Peak or Find Minimum");
  SearchMarkers(session, Extreme::Peak, -3, 0);
  program.graphs().RedrawAll(false);
  fake.SessionChanged();
  EXPECT_EQ(Caption("Band"),
            "Bandwidth 20.0000 MHz at -3.0 and -3.0 dB, centre 50.0000 MHz, Q 2.50, at marker 1 "
            "0.000 dB");
  SearchMarkers(session, Extreme::Peak, -6, 0);
  program.graphs().RedrawAll(false);
  fake.SessionChanged();
  EXPECT_TRUE(Caption("Band").starts_with("Bandwidth 40.0000 MHz at -6.0 and -6.0 dB, "))
      << Caption("Band");
  // The levels are those of now: after a change of the device the edges are elsewhere.
  Measure(1, [](int i) { return -0.1 * std::abs(i - 48); });
  fake.SweepEnded();
  EXPECT_TRUE(Caption("Band").starts_with("Bandwidth 40.0000 MHz at -2.0 and -2.0 dB, "))
      << Caption("Band");
  session.Channel(1).GraphType = GraphType::Swr;
  fake.SweepEnded();
  EXPECT_TRUE(Caption("Band").starts_with("No band: ")) << Caption("Band");
  session.Channel(1).GraphType = GraphType::LinMag;
  session.Channel(1).Units = Unit::U;
  Measure(1, [](int i) { return std::pow(10, -0.3 * std::abs(i - 48) / 20); });
  fake.SweepEnded();
  EXPECT_TRUE(Caption("Band").starts_with("Bandwidth 40.0000 MHz at -6.0 and -6.0 dB, "))
      << Caption("Band");
}

TEST_F(MarkerTableTest, AllOfItIsCopiedAsText) {
  Measure(1, [](int i) { return -0.5 * i; });
  Click("MarkerTable.Command1");
  EXPECT_EQ(At("Form1.Notice").Caption.substr(0, 20), "marker table copied ");
  EXPECT_EQ(surface.CopiedText,
            "Channel\tMarker\tPosition\tUnit\tValue\n"
            "CH1 S11\t1\t50.0000\tMHz\t-24.000 dB\n"
            "CH1 S11\t3\t13.0000\tMHz\t-5.500 dB\n"
            "CH2 S21\t1\t50.0000\tMHz\t---\n"
            "CH2 S21\t3\t13.0000\tMHz\t---\n"
            "No band: tick one in Markers, then Find Peak or Find Minimum\n");
}

TEST_F(MarkerTableTest, FollowsADragAndTheSwitchingOfMarkers) {
  Measure(1, [](int i) { return -0.5 * i; });
  MoveMarker(session, 0, 20);
  fake.SweepEnded();
  EXPECT_EQ(Value("MarkerTable.Position11"), "22.0000");
  session.Display.MarkersOn = false;
  program.graphs().RedrawAll(true);
  fake.SessionChanged();
  EXPECT_FALSE(At("MarkerTable.Position11").Enabled);
}

}  // namespace
}  // namespace qk::test
