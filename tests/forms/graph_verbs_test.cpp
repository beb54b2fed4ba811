// SPDX-License-Identifier: MIT
// What a hand does on a graph: wheel, double click, reference mark, presets.
#include <gtest/gtest.h>

#include "control/graph_verbs.h"
#include "control/verbs.h"
#include "core/window_names.h"
#include "display/read_out.h"
#include "forms/graph_verbs_fixture.h"

namespace qk {
namespace {

using test::GraphVerbs;
using test::Texts;

TEST_F(GraphVerbs, TheWheelStepsTheScaleOfTheGraphUnderIt) {
  Channel(2).Scale = 10;
  const CanvasPoint at = Middle(1);
  for (const double scale : {5.0, 2.0, 1.0, 0.5}) {
    program.Wheel(at.x, at.y, 1, false);
    EXPECT_DOUBLE_EQ(Channel(2).Scale, scale);
  }
  program.Wheel(at.x, at.y, -4, false);
  EXPECT_DOUBLE_EQ(Channel(2).Scale, 10);
  EXPECT_DOUBLE_EQ(Channel(1).Scale, 10);
  EXPECT_EQ(Graph(1).Scale, 10) << "and the picture follows";
  program.Wheel(0, 0, 5, false);
  EXPECT_DOUBLE_EQ(Channel(2).Scale, 10) << "beside all graphs";
}

TEST_F(GraphVerbs, WithShiftTheWheelMovesTheReferenceByADivision) {
  const CanvasPoint at = Middle(2);
  Channel(3).Scale = 5;
  program.Wheel(at.x, at.y, 2, true);
  EXPECT_DOUBLE_EQ(Channel(3).Reference, 10);
  EXPECT_DOUBLE_EQ(Channel(3).Scale, 5);
  program.Wheel(at.x, at.y, -3, true);
  EXPECT_DOUBLE_EQ(Channel(3).Reference, -5);
}

TEST_F(GraphVerbs, ASmithChartHasNeitherScaleNorReference) {
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Smith));
  const ChannelSettings before = Channel(1);
  const CanvasPoint at = Middle(0);
  program.Wheel(at.x, at.y, 3, false);
  program.Wheel(at.x, at.y, 3, true);
  PlaceReferenceLine(controller(), 1, 7);
  Measure(1, [](int i) { return 0.001 * i; });
  AutoscaleGraph(controller(), 1);
  EXPECT_EQ(Channel(1).Scale, before.Scale);
  EXPECT_EQ(Channel(1).Reference, before.Reference);
  EXPECT_EQ(Channel(1).RefPosition, before.RefPosition);
}

TEST_F(GraphVerbs, OpenWindowsFollow) {
  OpenDisplay();
  Click("DisplayPara.CH1Select");
  StepScale(controller(), 1, -1);
  EXPECT_EQ(Value("DisplayPara.SensInput"), "5");
  ShiftReference(controller(), 1, -2);
  EXPECT_EQ(Value("DisplayPara.REFinput"), "-10");
  ASSERT_TRUE(ShowParameter(controller(), 1, Parameter::S22));
  EXPECT_EQ(Value("DisplayPara.ListParameters"), "S22");
}

TEST_F(GraphVerbs, TheReferenceMarkIsDraggedToAPosition) {
  Channel(1).RefPosition = 4;
  program.graphs().RedrawAll(true);
  const GraphRecord graph = Graph(0);
  const auto y = [&graph](int position) { return graph.Top + position * graph.Height() / 8; };
  using Action = Program::MouseAction;
  program.Mouse(Action::Down, true, graph.Left - 4, y(4));
  program.Mouse(Action::Move, true, graph.Left - 4, y(6) + 3);
  EXPECT_EQ(Channel(1).RefPosition, 6);
  program.Mouse(Action::Move, true, graph.Left - 4, graph.Bottom + 500);
  EXPECT_EQ(Channel(1).RefPosition, 8);
  program.Mouse(Action::Move, true, graph.Left - 4, -500);
  EXPECT_EQ(Channel(1).RefPosition, 0);
  program.Mouse(Action::Up, true, 0, 0);
  program.Mouse(Action::Move, true, graph.Left - 4, y(3));
  EXPECT_EQ(Channel(1).RefPosition, 0) << "it was let go";
}

TEST_F(GraphVerbs, WhatCanBeTakenIsReported) {
  const GraphRecord graph = Graph(0);
  const auto at = [this](CanvasPoint p) { return program.GripAt(p.x + 1, p.y + 1); };
  EXPECT_EQ(at(TextAt("S11 LogMag")), PictureMouse::Grip::SetUp);
  EXPECT_EQ(program.GripAt(graph.Right - 4, graph.Top - 3), PictureMouse::Grip::SetUp) << "scale";
  EXPECT_EQ(program.GripAt(graph.Left + 16, graph.Top - 3), PictureMouse::Grip::SetUp)
      << "reference";
  EXPECT_EQ(program.GripAt(graph.Left - 4, graph.Top + graph.RefPosition * graph.Height() / 8),
            PictureMouse::Grip::ReferenceMark);
  EXPECT_EQ(at(Middle(0)), PictureMouse::Grip::None);
  PutMarker(controller(), 1, 51);
  const Marker& marker = session.Markers.Of(0, 0);
  EXPECT_EQ(program.GripAt(marker.X, marker.LabelY), PictureMouse::Grip::Marker);
}

TEST_F(GraphVerbs, ADoubleClickOnATextOpensDisplaySetUpAtItsField) {
  const char* const fields[] = {"ListParameters", "SensInput", "REFinput"};
  const GraphRecord& graph = Graph(2);
  const CanvasPoint places[] = {
      TextAt("S12 LogMag"), {graph.Right - 4, graph.Top - 3}, {graph.Left + 16, graph.Top - 3}};
  for (int i = 0; i < 3; ++i) {
    program.DoubleClick(places[i].x + 1, places[i].y + 1);
    ASSERT_TRUE(Window("DisplayPara").Shown) << i;
    EXPECT_EQ(Value("DisplayPara.CH3Select"), "on");
    EXPECT_EQ(Window("DisplayPara").TakeFocusRequest(), fields[i]);
    Click("DisplayPara.CloseDisplayPara");
  }
}

// The window itself opens with CH1 alone to be displayed.
TEST_F(GraphVerbs, ApplyBehindADoubleClickHidesNoGraph) {
  session.Display.DisplaySet = DisplaySet::All;
  program.graphs().RedrawAll(true);
  const auto doubleClickScale = [this](int graph) {
    program.DoubleClick(Graph(graph).Right - 4, Graph(graph).Top - 3);
  };
  doubleClickScale(0);
  EXPECT_EQ(Value("DisplayPara.Displayed"), "Displayed now: CH1, CH2, CH3, CH4; active CH1")
      << "its channel was chosen already";
  Click("DisplayPara.CloseDisplayPara");
  doubleClickScale(2);
  EXPECT_EQ(Value("DisplayPara.Option1"), "on");
  Type("DisplayPara.SensInput", "7");
  Click("DisplayPara.ApplyDisplay");
  EXPECT_EQ(TakeMessages(), Texts{});
  EXPECT_EQ(Channel(3).Scale, 7);
  EXPECT_EQ(session.Display.DisplaySet, DisplaySet::All);
  // Other channels meanwhile: the window, still open, follows at the next one.
  session.Display.DisplaySet = DisplaySet::OneTwo;
  program.graphs().RedrawAll(true);
  doubleClickScale(1);
  EXPECT_EQ(Value("DisplayPara.Option3"), "on");
  // What was chosen by hand and not applied stays.
  Click("DisplayPara.Option2");
  doubleClickScale(0);
  EXPECT_EQ(Value("DisplayPara.Option2"), "on");
  Click("DisplayPara.CloseDisplayPara");
  OpenDisplay();
  EXPECT_EQ(Value("DisplayPara.Option2"), "on") << "opened by its button";
}

TEST_F(GraphVerbs, OnASmithChartTheWheelMovesTheMarkerAndADoubleClickOpensTheGrid) {
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Smith));
  const CanvasPoint at = Middle(0);
  program.Wheel(at.x, at.y, 1, false);
  EXPECT_FALSE(session.Display.MarkersOn) << "there is none to move";
  PutMarker(controller(), 1, 51);
  program.Wheel(at.x, at.y, 2, false);
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 53);
  program.Wheel(at.x, at.y, -1, true);
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 43);
  program.Wheel(at.x, at.y, 90, true);
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 101);
  EXPECT_EQ(session.Markers.Of(3, 0).Point, 101) << "in all graphs";
  ASSERT_TRUE(UndoLast(controller()));
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 53) << "the turns with Shift are one step";
  ASSERT_TRUE(UndoLast(controller()));
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 51);
  program.DoubleClick(at.x, at.y);
  ASSERT_TRUE(Window("DisplayPara").Shown);
  EXPECT_EQ(Window("DisplayPara").TakeFocusRequest(), "ListGrid");
  EXPECT_EQ(Value("DisplayPara.CH1Select"), "on");
}

TEST_F(GraphVerbs, TheMenuMovesTheActiveMarkerAPointToTheSide) {
  Click("Form1.MarkerRight");
  EXPECT_FALSE(session.Display.MarkersOn);
  PutMarker(controller(), 2, 50);
  Click("Form1.MarkerRight");
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 51);
  Click("Form1.MarkerLeft");
  Click("Form1.MarkerLeft");
  EXPECT_EQ(session.Markers.Of(1, 0).Point, 49);
}

TEST_F(GraphVerbs, TheScaleEndsWhereItsTwoDecimalsDo) {
  Channel(1).Scale = 0.05;
  const CanvasPoint at = Middle(0);
  program.Wheel(at.x, at.y, 9, false);
  EXPECT_DOUBLE_EQ(Channel(1).Scale, 0.01);
  Channel(1).Scale = 0.002;  // typed
  StepScale(controller(), 1, -1);
  EXPECT_DOUBLE_EQ(Channel(1).Scale, 0.002);
  StepScale(controller(), 1, 1);
  EXPECT_DOUBLE_EQ(Channel(1).Scale, 0.005);
}

TEST_F(GraphVerbs, ADoubleClickInsideAutoscales) {
  Measure(1, [](int i) { return -20 - i * 0.31; });
  const CanvasPoint at = Middle(0);
  program.DoubleClick(at.x, at.y);
  EXPECT_DOUBLE_EQ(Channel(1).Scale, 5);
  EXPECT_DOUBLE_EQ(Channel(1).Reference, -35);
  EXPECT_EQ(Channel(1).RefPosition, 4);
  for (const CanvasPoint p :
       {program.graphs().Trace(0, 0).Pixel[1], program.graphs().Trace(0, 0).Pixel[101]}) {
    EXPECT_GT(p.y, Graph(0).Top);
    EXPECT_LT(p.y, Graph(0).Bottom);
  }
}

TEST_F(GraphVerbs, AutoscaleAllTakesWhatIsDisplayedAndHasData) {
  session.Display.DisplaySet = DisplaySet::OneTwo;
  program.graphs().RedrawAll(true);
  Measure(1, [](int i) { return 0.01 * i; });
  Measure(3, [](int i) { return 0.01 * i; });
  Click("Form1.AutoscaleAll");
  EXPECT_DOUBLE_EQ(Channel(1).Scale, 0.2);
  EXPECT_DOUBLE_EQ(Channel(2).Scale, 10) << "without data";
  EXPECT_DOUBLE_EQ(Channel(3).Scale, 10) << "not displayed";
}

TEST_F(GraphVerbs, AStandingWaveRatioStandsOnItsLeastValue) {
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Swr));
  EXPECT_EQ(Channel(1).Reference, 1);
  EXPECT_EQ(Channel(1).RefPosition, 8);
  Measure(1, [](int) { return 0.0; });
  for (std::size_t i = 1; i <= 101; ++i) Channel(1).Value[i] = 1 + 0.2 * static_cast<double>(i);
  AutoscaleGraph(controller(), 1);
  EXPECT_EQ(Channel(1).Scale, 5) << "20.2 over eight divisions";
  EXPECT_EQ(Channel(1).Reference, 1);
  EXPECT_EQ(Channel(1).RefPosition, 8);
}

TEST_F(GraphVerbs, AGraphTypeComesWithAScaleAndAUnitThatSuitIt) {
  for (const std::string& name : NamesOf<GraphType>()) {
    const GraphType type = *Named<GraphType>(name);
    if (RowOf(type).Form == PointForm::Spectrum) continue;
    ASSERT_TRUE(ShowGraphType(controller(), 1, type)) << name;
    EXPECT_GT(Channel(1).Scale, 0) << name;
    const auto family = RowOf(type).Family;
    EXPECT_TRUE(!family || RowOf(Channel(1).Units).Family == *family) << name;
  }
  Channel(1).Scale = 77;
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Phase));
  EXPECT_EQ(Channel(1).Scale, 45);
  EXPECT_EQ(Channel(1).Units, Unit::Deg);
}

TEST_F(GraphVerbs, AnImpedanceOfATransmissionIsThatOfASeriesElementUnlessChosen) {
  ChannelSettings& channel = session.Channel(2);
  ASSERT_TRUE(ShowParameter(controller(), 2, Parameter::S21));
  channel.Element = Element::Reflection;
  ASSERT_TRUE(ShowGraphType(controller(), 2, GraphType::Capacitance));
  EXPECT_EQ(channel.Element, Element::Series);
  EXPECT_EQ(channel.GraphType, GraphType::Capacitance);
  channel.Element = Element::Shunt;
  ASSERT_TRUE(ShowGraphType(controller(), 2, GraphType::Inductance));
  EXPECT_EQ(channel.Element, Element::Shunt);
}

TEST_F(GraphVerbs, ATransmissionIsNoReflectionChart) {
  const Result<Done> refused = ShowGraphType(controller(), 2, GraphType::Smith);
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.Why().Message, "Smith only available with Reflection Parameter");
  EXPECT_EQ(Channel(2).GraphType, GraphType::LogMag);
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Swr));
  ASSERT_TRUE(ShowParameter(controller(), 1, Parameter::S21));
  EXPECT_EQ(Channel(1).GraphType, GraphType::LogMag);
  EXPECT_EQ(Channel(1).Units, Unit::Db);
}

TEST_F(GraphVerbs, TheTimeDomainNeedsItsPointsAndAChannelOfItsOwn) {
  EXPECT_EQ(ShowGraphType(controller(), 1, GraphType::Td).Why().Message,
            "Warning: TD Only with 1024 Sweep points");
  session.Plan.NumPoints = kMaxPoints;
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Td));
  EXPECT_EQ(ShowGraphType(controller(), 4, GraphType::Td).Why().Message,
            "TD only allowed on one channel");
  EXPECT_EQ(Channel(4).GraphType, GraphType::LogMag);
}

TEST_F(GraphVerbs, AMarkerIsPutWhereTheMenuWasOpened) {
  for (int m = 0; m < 4; ++m) {
    PutMarker(controller(), 3, 20 + m);
    for (int graph = 0; graph < 4; ++graph)
      EXPECT_EQ(session.Markers.Of(graph, m).Point, 20 + m) << m;
    EXPECT_EQ(session.Markers.Of(2, m).State, MarkerState::Active);
  }
  EXPECT_EQ(session.Display.ActiveChannel, 3);
  PutMarker(controller(), 3, 90);
  EXPECT_EQ(session.Markers.Of(2, 3).Point, 90) << "none is left: the active one moves";
  EXPECT_EQ(session.Markers.Of(2, 0).Point, 20);
}

TEST_F(GraphVerbs, PeakAndMinimumAreOfTheGraphUnderTheHand) {
  Measure(1, [](int i) { return -std::abs(i - 30); });
  Measure(4, [](int i) { return -std::abs(i - 80); });
  FindOnTrace(controller(), 4, Extreme::Peak);
  EXPECT_EQ(session.Display.ActiveChannel, 4);
  EXPECT_EQ(session.Markers.Of(3, 0).Point, 80);
  FindOnTrace(controller(), 1, Extreme::Minimum);
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 101);
}

TEST_F(GraphVerbs, ATraceIsStoredForItsChannelAlone) {
  Measure(2, [](int) { return -6; });
  StoreTrace(controller(), 2);
  EXPECT_TRUE(Channel(2).MemoryValid);
  EXPECT_FALSE(Channel(1).MemoryValid);
  EXPECT_EQ(session.Display.MemoryFunction, MemoryFunction::Plus);
}

TEST_F(GraphVerbs, PresetsLayTheDisplayOut) {
  Click("Form1.PresetFilter");
  EXPECT_EQ(session.Display.DisplaySet, DisplaySet::All);
  EXPECT_EQ(Channel(1).Parameter, Parameter::S21);
  EXPECT_EQ(Channel(3).GraphType, GraphType::Smith);
  EXPECT_EQ(Channel(4).GraphType, GraphType::GroupDelay);
  EXPECT_EQ(session.Display.ActiveChannel, 1);
  Click("Form1.PresetAntenna");
  EXPECT_EQ(session.Display.DisplaySet, DisplaySet::OneTwo);
  EXPECT_EQ(Channel(1).GraphType, GraphType::Swr);
  Click("Form1.PresetAll");
  for (int n = 1; n <= 4; ++n) {
    EXPECT_EQ(Channel(n).Parameter, kParameter[n - 1]);
    EXPECT_EQ(Channel(n).GraphType, GraphType::LogMag);
  }
  Click("Form1.PresetTime");
  EXPECT_EQ(TakeMessages(),
            Texts{"Display Set Up|Warning: TD Only with 1024 Sweep points|exclamation|ok"});
  EXPECT_EQ(session.Display.DisplaySet, DisplaySet::All) << "nothing has changed";
  session.Plan.NumPoints = kMaxPoints;
  Channel(3).GraphType = GraphType::Td;
  Click("Form1.PresetTime");
  EXPECT_EQ(Channel(1).GraphType, GraphType::Td);
  EXPECT_EQ(Channel(3).GraphType, GraphType::LogMag) << "one channel alone";
}

}  // namespace
}  // namespace qk
