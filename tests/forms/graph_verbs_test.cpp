// SPDX-License-Identifier: MIT
// What a hand does on a graph: wheel, double click, menu, reference mark, and the items of the
// View menu.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "control/graph_verbs.h"
#include "control/verbs.h"
#include "core/window_names.h"
#include "display/read_out.h"
#include "forms/graph_menu.h"
#include "limits/limit_segments.h"
#include "limits/limit_test.h"
#include "support/program_fixture.h"

namespace qk {
namespace {

using test::Texts;

struct GraphVerbs : testing::Test, test::ScriptedProgram {
  GraphVerbs() {
    session.Plan.StartFreq = 3e6;
    session.Plan.StopFreq = 103e6;
    session.Plan.StepFreq = 1e6;
    session.Plan.NumPoints = 101;
    session.Display.DisplaySet = DisplaySet::All;
    for (int n = 1; n <= 4; ++n) session.Channel(n).Parameter = kParameter[n - 1];
    program.graphs().RedrawAll(true);
  }
  static constexpr Parameter kParameter[] = {Parameter::S11, Parameter::S21, Parameter::S12,
                                             Parameter::S22};
  ChannelSettings& Channel(int n) { return session.Channel(n); }
  Controller& controller() { return program.controller(); }
  // A sweep that delivers values to a channel.
  void Measure(int n, const std::function<double(int)>& value) {
    for (int i = 1; i <= 101; ++i) {
      const auto k = static_cast<std::size_t>(i);
      Channel(n).Value[k] = value(i);
      program.graphs().PlotPoint(n, i, value(i), 0);
      ArrayOf(session.Data, Channel(n).Parameter).Set(i - 1, {std::pow(10, value(i) / 20), 0});
    }
  }
  const GraphRecord& Graph(int graph) { return program.graphs().Graph(graph); }
  CanvasPoint Middle(int graph) {
    return {(Graph(graph).Left + Graph(graph).Right) / 2,
            (Graph(graph).Top + Graph(graph).Bottom) / 2};
  }
  CanvasPoint TextAt(const char* text) {
    const test::Drawn* drawn = test::FindText(surface.Background(), text);
    EXPECT_NE(drawn, nullptr) << text;
    return drawn == nullptr ? CanvasPoint{-1, -1} : drawn->Points[0];
  }
};

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

// Limits in dB say nothing about a standing wave ratio.
TEST_F(GraphVerbs, APresetDoesNotTestLimitsOfAnotherUnit) {
  const auto limits = [&](int n, const char* upper, const char* lower) {
    session.Limits.Of(n).Segments[0] = {"10", "90", upper, lower};
    ASSERT_TRUE(ApplyLimits(session, n).Ok());
    session.Limits.Enabled = session.Limits.Alarm = session.Limits.Of(n).Show = true;
    Host host = fake.host();
    ShowLimitsAsSwitched(session, host);
  };
  const auto on = [&](int n) { return Channel(n).LimitsOn && session.Limits.Of(n).Show; };
  const auto notice = [&] { return At("Form1.Notice").Caption; };
  for (int n = 1; n <= 4; ++n) limits(n, "-1", "-3");
  Click("Form1.PresetAntenna");
  EXPECT_FALSE(on(1));
  EXPECT_TRUE(on(2)) << "a Smith chart is not tested, and keeps the unit";
  EXPECT_EQ(notice(), "CH1: limits for S11 LogMag in dB switched off");
  Click("Form1.LimiLines");
  Click("NewLimitsSet.Command1");  // shows limits as switched
  EXPECT_FALSE(on(1));
  EXPECT_TRUE(on(4));
  Click("Form1.UndoLast");
  EXPECT_TRUE(on(1));
  EXPECT_EQ(Channel(1).Units, Unit::Db);
  EXPECT_EQ(Channel(1).UpperLimit[30], -1);
  Click("Form1.PresetFilter");
  EXPECT_FALSE(on(1)) << "S21 in the same unit";
  EXPECT_FALSE(on(4));
  EXPECT_EQ(notice(),
            "CH1: limits for S11 LogMag in dB, CH2: limits for S21 LogMag in dB, CH4: limits for "
            "S22 LogMag in dB switched off");
  Click("Form1.PresetAll");
  EXPECT_FALSE(on(4)) << "the user switches them on";
  Click("Form1.UndoLast");
  Click("Form1.UndoLast");
  EXPECT_TRUE(on(4));
  // A magnitude and a standing wave ratio have the same unit.
  Channel(1).GraphType = GraphType::LinMag;
  Channel(1).Units = Unit::U;
  limits(1, "0.5", "0.1");
  Click("Form1.PresetAntenna");
  EXPECT_FALSE(on(1));
  EXPECT_EQ(notice(), "CH1: limits for S11 LinMag in U switched off");
  // Applied limits that are not shown for now are not shown again later.
  limits(1, "2", "1");
  session.Limits.Enabled = false;
  Click("NewLimitsSet.Command1");
  Channel(1).LimitsOn = false;
  Click("Form1.PresetAll");
  EXPECT_FALSE(session.Limits.Of(1).Show);
}

// The same rule for every verb that gives a channel another type or unit.
TEST_F(GraphVerbs, AnotherGraphTypeOrUnitDoesNotTestLimitsOfTheOneBefore) {
  const auto limits = [&](GraphType type, Unit unit) {
    Channel(1).Parameter = Parameter::S11;
    Channel(1).GraphType = type;
    Channel(1).Units = unit;
    session.Limits.Of(1).Segments[0] = {"10", "90", "5", "1"};
    ASSERT_TRUE(ApplyLimits(session, 1).Ok());
    session.Limits.Enabled = session.Limits.Of(1).Show = true;
    Host host = fake.host();
    ShowLimitsAsSwitched(session, host);
    controller().notice().Say({});
  };
  const auto on = [&] { return Channel(1).LimitsOn && session.Limits.Of(1).Show; };
  const auto notice = [&] { return At("Form1.Notice").Caption; };
  limits(GraphType::LogMag, Unit::Db);
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::LogMag));
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Smith));
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::LogMag));
  EXPECT_TRUE(on()) << "the chart between tests nothing, and only LogMag has dB";
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Swr));
  EXPECT_FALSE(on());
  EXPECT_EQ(notice(), "CH1: limits for S11 LogMag in dB switched off");
  limits(GraphType::ImpedanceMagnitude, Unit::Ohm);
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Resistance));
  EXPECT_FALSE(on()) << "the same unit of another quantity";
  limits(GraphType::LinMag, Unit::U);
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Smith));
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Swr));
  EXPECT_FALSE(on());
  limits(GraphType::Swr, Unit::U);
  ASSERT_TRUE(ShowParameter(controller(), 1, Parameter::S11));
  EXPECT_TRUE(on()) << "the same parameter";
  ASSERT_TRUE(ShowParameter(controller(), 1, Parameter::S22));
  EXPECT_FALSE(on()) << "another parameter of the same type";
  EXPECT_EQ(notice(), "CH1: limits for S11 SWR in U switched off");
  limits(GraphType::Swr, Unit::U);
  ASSERT_TRUE(ShowParameter(controller(), 1, Parameter::S21));
  EXPECT_FALSE(on()) << "a transmission has no standing wave ratio";
  EXPECT_EQ(notice(), "CH1: limits for S11 SWR in U switched off");
  limits(GraphType::Inductance, Unit::NanoHenry);
  Measure(1, [](int i) { return 400.0 * i; });
  AutoscaleGraph(controller(), 1);
  EXPECT_EQ(Channel(1).Units, Unit::MicroHenry);
  EXPECT_FALSE(on()) << "5 nH is not 5 uH";
  EXPECT_EQ(notice(), "CH1: limits for S11 L in nH switched off");
  limits(GraphType::Inductance, Unit::MicroHenry);
  Measure(1, [](int i) { return 1.0 * i; });
  AutoscaleAll(controller());
  EXPECT_EQ(Channel(1).Units, Unit::MicroHenry);
  EXPECT_TRUE(on());
  // The user wants the limits of S11 for S22 too.
  ASSERT_TRUE(ShowParameter(controller(), 1, Parameter::S22));
  session.Limits.Of(1).Show = true;
  Host host = fake.host();
  ShowLimitsAsSwitched(session, host);
  Measure(1, [](int i) { return 2.0 * i; });
  AutoscaleGraph(controller(), 1);
  EXPECT_TRUE(on()) << "the same unit";
  ASSERT_TRUE(ApplyLimits(session, 1).Ok());
  session.Limits.Of(1).Show = true;
  ShowLimitsAsSwitched(session, host);
  ASSERT_TRUE(ShowParameter(controller(), 1, Parameter::S22));
  EXPECT_TRUE(on()) << "applied for S22 now";
}

// Limits of another parameter come back with it.
TEST_F(GraphVerbs, UndoOfAnotherParameterSwitchesItsLimitsOn) {
  Channel(1).Parameter = Parameter::S11;
  session.Limits.Of(1).Segments[0] = {"10", "90", "5", "1"};
  ASSERT_TRUE(ApplyLimits(session, 1).Ok());
  session.Limits.Enabled = session.Limits.Of(1).Show = true;
  Host host = fake.host();
  ShowLimitsAsSwitched(session, host);
  controller().undo().Forget();
  controller().undo().Around([&] { EXPECT_TRUE(ShowParameter(controller(), 1, Parameter::S22)); },
                             {});
  EXPECT_FALSE(Channel(1).LimitsOn);
  Click("Form1.UndoLast");
  EXPECT_EQ(Channel(1).Parameter, Parameter::S11);
  EXPECT_TRUE(Channel(1).LimitsOn);
  EXPECT_TRUE(session.Limits.Of(1).Show);
}

// Limits belong to what the channel showed when they were applied, however it came to show
// something else.
TEST_F(GraphVerbs, LimitsKnowTheTypeThatTheyAreFor) {
  const auto apply = [&](GraphType type) {
    Channel(1).Parameter = Parameter::S11;
    ASSERT_TRUE(ShowGraphType(controller(), 1, type));
    session.Limits.Of(1).Segments[0] = {"10", "90", "5", "1"};
    ASSERT_TRUE(ApplyLimits(session, 1).Ok());
    session.Limits.Enabled = session.Limits.Of(1).Show = true;
    Host host = fake.host();
    ShowLimitsAsSwitched(session, host);
    controller().notice().Say({});
  };
  const auto notice = [&] { return At("Form1.Notice").Caption; };
  apply(GraphType::LogMag);
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Smith));
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Swr));
  EXPECT_FALSE(Channel(1).LimitsOn);
  EXPECT_EQ(notice(), "CH1: limits for S11 LogMag in dB switched off");
  apply(GraphType::LinMag);
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Smith));
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::LinMag));
  EXPECT_TRUE(Channel(1).LimitsOn) << "the graph that they are for";
  EXPECT_EQ(notice(), "");
}

TEST_F(GraphVerbs, UndoDoesNotSwitchLimitsOnThatWereAppliedForAnotherType) {
  const auto apply = [&] {
    session.Limits.Of(1).Segments[0] = {"10", "90", "5", "1"};
    ASSERT_TRUE(ApplyLimits(session, 1).Ok());
    session.Limits.Enabled = session.Limits.Of(1).Show = true;
    Host host = fake.host();
    ShowLimitsAsSwitched(session, host);
  };
  const auto showSwr = [&] {
    controller().undo().Around([&] { EXPECT_TRUE(ShowGraphType(controller(), 1, GraphType::Swr)); },
                               {});
  };
  Channel(1).Parameter = Parameter::S11;
  apply();
  controller().undo().Forget();
  showSwr();
  EXPECT_FALSE(Channel(1).LimitsOn);
  Click("Form1.UndoLast");
  EXPECT_EQ(Channel(1).GraphType, GraphType::LogMag);
  EXPECT_TRUE(Channel(1).LimitsOn) << "those that it had";
  showSwr();
  apply();
  Click("Form1.UndoLast");
  EXPECT_EQ(Channel(1).GraphType, GraphType::LogMag);
  EXPECT_FALSE(Channel(1).LimitsOn);
  EXPECT_FALSE(session.Limits.Of(1).Show);
  EXPECT_NE(At("Form1.Notice").Caption.find("limits of CH1 (applied since"), std::string::npos)
      << At("Form1.Notice").Caption;
}

// ---- the menu ----------------------------------------------------------------------------------

// What the mouse reads over the badge.
TEST_F(GraphVerbs, TheMenuBeginsWithTheChannelAndTheWorstMargin) {
  const MenuEntry title = program.MenuOf(2).front();
  EXPECT_EQ(title.Caption, "CH2");
  EXPECT_FALSE(title.Enabled);
  EXPECT_FALSE(title.Run);
  EXPECT_EQ(program.MenuOf(1)[1].Caption, "") << "a separator";
  session.Cal.CalS11 = true;
  session.Limits.Of(1).Segments[0] = {"3", "103", "-1", "-3"};
  ASSERT_TRUE(ApplyLimits(session, 1).Ok());
  session.Limits.Enabled = session.Limits.Alarm = session.Limits.Of(1).Show = true;
  Host host = fake.host();
  ShowLimitsAsSwitched(session, host);
  Measure(1, [](int i) { return i == 48 ? -0.5 : -2; });
  program.graphs().View.Remarks = true;
  const std::array<Parameter, 1> measured{Parameter::S11};
  program.graphs().TakeVerdicts(LimitVerdicts(session, measured));
  const MenuEntry line = program.MenuOf(1)[1];
  EXPECT_EQ(line.Caption, "FAIL, worst margin -0.500 dB at 50.0000 MHz");
  EXPECT_FALSE(line.Enabled);
  EXPECT_FALSE(line.Run);
  EXPECT_EQ(program.MenuOf(1)[2].Caption, "") << "a separator";
  EXPECT_EQ(program.MenuOf(2)[2].Word, "parameter") << "without limits";
}

TEST_F(GraphVerbs, TheMenuIsThatOfTheGraphUnderTheHand) {
  const CanvasPoint at = Middle(1);
  const std::vector<MenuEntry> menu = program.MenuAt(at.x, at.y);
  ASSERT_FALSE(menu.empty());
  EXPECT_TRUE(FindEntry(menu, "parameter.S21")->Checked);
  EXPECT_FALSE(FindEntry(menu, "type.Smith")->Enabled) << "a transmission";
  EXPECT_FALSE(FindEntry(menu, "type.TD")->Enabled) << "101 points";
  EXPECT_FALSE(FindEntry(menu, "autoscale")->Enabled) << "no data";
  EXPECT_EQ(FindEntry(menu, "parameter"), nullptr) << "a submenu is no item";
  FindEntry(menu, "parameter.S11")->Run();
  EXPECT_EQ(Channel(2).Parameter, Parameter::S11);
  EXPECT_TRUE(program.MenuAt(1, 1).empty());
}

TEST_F(GraphVerbs, EachItemOfTheMenuWorks) {
  Measure(1, [](int i) { return -0.1 * i; });
  const CanvasPoint at = Middle(0);
  const auto run = [&](const char* word) {
    const std::vector<MenuEntry> menu = program.MenuAt(at.x, at.y);
    const MenuEntry* entry = FindEntry(menu, word);
    ASSERT_NE(entry, nullptr) << word;
    ASSERT_TRUE(entry->Enabled) << word;
    entry->Run();
  };
  run("autoscale");
  EXPECT_DOUBLE_EQ(Channel(1).Scale, 2);
  run("marker");
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 51);
  run("peak");
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 1);
  run("minimum");
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 101);
  run("store");
  EXPECT_TRUE(Channel(1).MemoryValid);
  run("scale");
  EXPECT_TRUE(Window("DisplayPara").Shown);
  run("limits");
  EXPECT_TRUE(Window("NewLimitsSet").Shown);
  EXPECT_EQ(Window("NewLimitsSet").TakeFocusRequest(), "Text1");
  fake.Choices.push_back(folder.Text() + "/x.png");
  run("save");
  EXPECT_EQ(surface.SavedFiles.size(), 1u);
  run("copy");
  EXPECT_EQ(surface.Copies, 1);
  run("type.SWR");
  EXPECT_EQ(Channel(1).GraphType, GraphType::Swr);
  EXPECT_EQ(TakeMessages(), Texts{});
}

// On the flank the nearest point of the trace is not the one straight above or below the mouse.
TEST_F(GraphVerbs, AMarkerHereIsAtThePointOfTheReadOut) {
  session.Display.DisplaySet = DisplaySet::One;
  Channel(1).RefPosition = 0;  // from 0 to -80 dB
  Measure(1, [](int i) { return i <= 50 ? -10.0 : i == 51 ? -45.0 : -80.0; });
  program.graphs().RedrawAll(true);
  const auto put = [&](CanvasPoint at) {
    const std::vector<MenuEntry> menu = program.MenuAt(at.x, at.y);
    FindEntry(menu, "marker")->Run();
    for (int m = kMarkers - 1; m >= 0; --m)
      if (session.Markers.Set(m).IsActive) return static_cast<int>(session.Markers.Of(0, m).Point);
    return 0;
  };
  const auto pixel = [&](int i) {
    return program.graphs().Trace(0, kDataTrace).Pixel[static_cast<std::size_t>(i)];
  };
  const CanvasPoint beside{pixel(51).x + (pixel(52).x - pixel(51).x) * 3 / 4, pixel(51).y};
  ASSERT_EQ(program.graphs().PointAt(0, beside), 52);
  const std::optional<std::string> read = ReadOutAt(program.graphs(), 50, beside);
  ASSERT_TRUE(read);
  EXPECT_NE(read->find("53.0000 MHz"), std::string::npos) << *read;
  EXPECT_EQ(put(beside), 51);
  const CanvasPoint away{pixel(53).x, pixel(53).y - 40};
  EXPECT_FALSE(ReadOutAt(program.graphs(), 50, away));
  EXPECT_EQ(put(away), 53) << "away from the trace the axis counts";
}

TEST_F(GraphVerbs, AMarkerUnderTheHandKeepsItsOwnWindow) {
  PutMarker(controller(), 1, 51);
  const Marker& marker = session.Markers.Of(0, 0);
  EXPECT_TRUE(program.MenuAt(marker.X, marker.LabelY).empty());
  program.Mouse(Program::MouseAction::Down, false, marker.X, marker.LabelY);
  EXPECT_TRUE(Window("AdjMarkers").Shown);
}

TEST_F(GraphVerbs, TheMenuKeyOpensThatOfTheActiveChannel) {
  SelectActiveChannel(session, fake, 4);
  EXPECT_TRUE(FindEntry(program.MenuOf(program.ChannelOfMenu()), "parameter.S22")->Checked);
  session.Display.DisplaySet = DisplaySet::OneTwo;
  EXPECT_TRUE(FindEntry(program.MenuOf(program.ChannelOfMenu()), "parameter.S11")->Checked)
      << "4 is not displayed";
}

TEST_F(GraphVerbs, TheViewMenuWorksOnTheActiveChannel) {
  SelectActiveChannel(session, fake, 2);
  Click("Form1.ScaleFiner");
  EXPECT_DOUBLE_EQ(Channel(2).Scale, 5);
  Click("Form1.ScaleCoarser");
  Click("Form1.ScaleCoarser");
  EXPECT_DOUBLE_EQ(Channel(2).Scale, 20);
  Click("Form1.ReferenceUp");
  EXPECT_DOUBLE_EQ(Channel(2).Reference, 20);
  Click("Form1.ReferenceDown");
  EXPECT_DOUBLE_EQ(Channel(2).Reference, 0);
  EXPECT_EQ(Value("Form1.AxisNumbers"), "off");
  Click("Form1.AxisNumbers");
  EXPECT_EQ(Value("Form1.AxisNumbers"), "on");
  EXPECT_TRUE(program.graphs().View.AxisNumbers);
  Click("Form1.Remarks");
  EXPECT_TRUE(program.graphs().View.Remarks);
  Click("Form1.Remarks");
  EXPECT_FALSE(program.graphs().View.Remarks);
}

}  // namespace
}  // namespace qk
