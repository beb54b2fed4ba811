// SPDX-License-Identifier: MIT
// Markers under the mouse, and "Trace Markers".
#include <gtest/gtest.h>

#include <random>

#include "core/text.h"
#include "core/window_names.h"
#include "support/program_fixture.h"

namespace qk {
namespace {

using Action = Program::MouseAction;

struct PictureMouseTest : testing::Test, test::ScriptedProgram {
  PictureMouseTest() {
    session.Plan.StartFreq = 3e6;
    session.Plan.StopFreq = 103e6;
    session.Plan.StepFreq = 1e6;
    session.Plan.NumPoints = 101;
    session.Display.MarkersOn = true;
    session.Markers.Set(0) = {true, false, true, 0};
    session.Markers.Set(1) = {true, true, false, 20};
    program.graphs().RedrawAll(false);
  }
  Marker& At0(int m) { return session.Markers.Of(0, m); }
  Marker& AtGraph(int graph, int m) { return session.Markers.Of(graph, m); }
  void Down(int x, int y) { program.Mouse(Action::Down, true, x, y); }
  void Move(int x, int y) { program.Mouse(Action::Move, true, x, y); }
  void Up() { program.Mouse(Action::Up, true, 0, 0); }
  void Right(int x, int y) { program.Mouse(Action::Down, false, x, y); }
  void Grab(const Marker& marker) { Down(marker.X, marker.LabelY); }
  const GraphRecord& Graph(int graph) { return program.graphs().Graph(graph); }
  int XOfPoint(int graph, int point) {
    return program.graphs().Trace(graph, kDataTrace).Pixel[static_cast<std::size_t>(point)].x;
  }
};

TEST_F(PictureMouseTest, ADraggedMarkerFollowsTheHandInAllFourGraphs) {
  Grab(At0(0));
  Move(XOfPoint(0, 77), 5);
  for (int graph = 0; graph < 4; ++graph) EXPECT_EQ(AtGraph(graph, 0).Point, 77);
  EXPECT_EQ(At0(0).X, XOfPoint(0, 77));
}

TEST_F(PictureMouseTest, TheNumberIsTheHandle) {
  const Marker marker = At0(0);
  const int dx[] = {9, -9, 10, -10, 0, 0, 0, 0};
  const int dy[] = {0, 0, 0, 0, 9, -9, 10, -10};
  for (int k = 0; k < 8; ++k) {
    MoveMarker(session, 0, marker.Point);
    program.graphs().RedrawOverlay();
    Down(marker.X + dx[k], marker.LabelY + dy[k]);
    Move(XOfPoint(0, 90), 0);
    Up();
    const bool grabbed = std::abs(dx[k]) < 10 && std::abs(dy[k]) < 10;
    EXPECT_EQ(At0(0).Point, grabbed ? 90 : marker.Point) << dx[k] << " " << dy[k];
  }
}

TEST_F(PictureMouseTest, DraggingBeyondTheEndsStopsThere) {
  Grab(At0(0));
  Move(10000, 0);
  EXPECT_EQ(At0(0).Point, 101);
  Move(-10000, 0);
  EXPECT_EQ(At0(0).Point, 1);
}

TEST_F(PictureMouseTest, TheButtonUpEndsTheDrag) {
  Grab(At0(0));
  Up();
  Move(XOfPoint(0, 77), 0);
  EXPECT_EQ(At0(0).Point, 51);
}

TEST_F(PictureMouseTest, OfMarkersOnOnePlaceTheLastIsGrabbed) {
  MoveMarker(session, 1, 51);
  session.Markers.Set(1).IsRef = false;
  program.graphs().RedrawAll(true);
  Grab(At0(0));
  Move(XOfPoint(0, 60), 0);
  EXPECT_EQ(At0(0).Point, 51);
  EXPECT_EQ(At0(1).Point, 60);
}

TEST_F(PictureMouseTest, OnlyTheOverlayIsRedrawnByADrag) {
  Grab(At0(0));
  surface.ClearLog();
  Move(XOfPoint(0, 77), 0);
  EXPECT_EQ(surface.Log().front(), "wipe");
  EXPECT_EQ(surface.Log().back(), "present");
  for (const std::string& entry : surface.Log()) EXPECT_NE(entry, "commit");
}

TEST_F(PictureMouseTest, TheMarkersWindowShowsWhereItIs) {
  fake.Show(window::kMarkersSet);
  Grab(At0(0));
  Move(XOfPoint(0, 78), 0);
  EXPECT_EQ(Value("MarkersSet.Text1"), "80.0000");
}

TEST_F(PictureMouseTest, AClickBesideAllMarkersLeavesATypedPosition) {
  fake.Show(window::kMarkersSet);
  Type("MarkersSet.Text1", "12");
  Down(3, 3);
  EXPECT_EQ(Value("MarkersSet.Text1"), "12");
  Move(500, 3);
  EXPECT_EQ(At0(0).Point, 51);
}

TEST_F(PictureMouseTest, AMarkerOfAnotherGraphMakesItsChannelTheActiveOne) {
  session.Display.DisplaySet = DisplaySet::All;
  session.Channel(3).Parameter = Parameter::S12;
  session.Planes.PlaneS12 = 0.0255f;
  MoveMarker(session, 1, 20);
  program.graphs().RedrawAll(true);
  fake.Show(window::kEnhancePara);
  fake.Show(window::kMarkersSet);
  Grab(AtGraph(2, 0));
  EXPECT_EQ(session.Display.ActiveChannel, 3);
  for (int n = 1; n <= 4; ++n) EXPECT_EQ(session.Channel(n).Active, n == 3);
  EXPECT_EQ(At("MarkersSet.Label2").Caption, "Ch 3, measuring S12");
  EXPECT_TRUE(Graph(2).IsActive);
  bool shown = false;
  for (const Control& control : Window("EnhancePara").Controls())
    shown = shown || control.Text == "25.500";
  EXPECT_TRUE(shown);
  Move(XOfPoint(2, 9), 0);
  EXPECT_EQ(AtGraph(2, 0).Point, 9);
}

TEST_F(PictureMouseTest, OnASmithChartTheDragGoesByItsDistance) {
  session.Channel(1).GraphType = GraphType::Smith;
  session.Markers.Set(1).Shown = false;  // all points are in the middle
  program.graphs().RedrawAll(true);
  Grab(At0(0));
  const int x = At0(0).X;
  const double perPoint = Graph(0).Height() / 100.0;
  Move(x + static_cast<int>(perPoint * 10), 0);
  EXPECT_NEAR(At0(0).Point, 61, 1);
}

TEST_F(PictureMouseTest, ASlowDragOnASmithChartAddsUp) {
  session.Channel(1).GraphType = GraphType::Smith;
  session.Markers.Set(1).Shown = false;  // all points are in the middle
  program.graphs().RedrawAll(true);
  Grab(At0(0));
  const int x = At0(0).X;
  for (int i = 1; i <= 100; ++i) Move(x + i, 0);  // a fifth of a point at a time
  EXPECT_NEAR(At0(0).Point, 51 + 100 / (Graph(0).Height() / 100.0), 1);
}

TEST_F(PictureMouseTest, AFixedMarkerIsNotDragged) {
  ToggleFixed(session.Markers);
  Grab(At0(1));
  Move(XOfPoint(0, 77), 0);
  EXPECT_EQ(At0(1).Point, 20);
}

TEST_F(PictureMouseTest, AMarkerSwitchedOffDuringItsDragIsLetGo) {
  Grab(At0(0));
  session.Display.MarkersOn = false;
  program.graphs().RedrawAll(true);
  Move(XOfPoint(0, 77), 0);
  EXPECT_EQ(At0(0).Point, 51);
}

TEST_F(PictureMouseTest, TheHandFindsAMarkerWhereItsTraceIsNow) {
  surface.PutsOff = true;
  for (int i = 1; i <= 101; ++i) program.graphs().PlotPoint(1, i, 30, 0);
  program.graphs().LiveChanged();
  const Marker before = At0(0);
  Grab(before);  // where it was
  Move(XOfPoint(0, 77), 0);
  EXPECT_EQ(At0(0).Point, 51);
  EXPECT_NE(At0(0).LabelY, before.LabelY);
  Grab(At0(0));
  Move(XOfPoint(0, 77), 0);
  EXPECT_EQ(At0(0).Point, 77);
}

// ---- Trace Markers -----------------------------------------------------------------------------

TEST_F(PictureMouseTest, TheRightButtonOnAMarkerOpensTraceMarkersForItsGraph) {
  session.Display.DisplaySet = DisplaySet::All;
  program.graphs().RedrawAll(true);
  Right(3, 3);
  EXPECT_FALSE(fake.IsShown("AdjMarkers"));
  MoveMarker(session, 0, 10);
  program.graphs().RedrawOverlay();
  const Marker& marker = AtGraph(3, 0);
  Right(marker.X, marker.LabelY);
  EXPECT_TRUE(fake.IsShown("AdjMarkers"));
  EXPECT_EQ(session.Markers.AdjustedGraph, 3);
  EXPECT_EQ(Value("AdjMarkers.Mk1Val"), "12.00000");
  EXPECT_EQ(Value("AdjMarkers.Mk3Val"), "");
  EXPECT_FALSE(At("AdjMarkers.Mk3Val").Enabled);
  EXPECT_FALSE(At("AdjMarkers.Mk3Trace").Enabled);
  EXPECT_FALSE(At("AdjMarkers.FixMk1").Enabled);
  EXPECT_TRUE(At("AdjMarkers.FixMk2").Enabled);
  EXPECT_EQ(Window("AdjMarkers").Caption(), "Trace Markers");
}

TEST_F(PictureMouseTest, TheRightButtonNeedsTheMarkersOnAndReachesAFixedOne) {
  ToggleFixed(session.Markers);
  session.Display.MarkersOn = false;
  Right(At0(1).X, At0(1).LabelY);
  EXPECT_FALSE(fake.IsShown("AdjMarkers"));
  session.Display.MarkersOn = true;
  Right(At0(1).X, At0(1).LabelY);
  EXPECT_TRUE(fake.IsShown("AdjMarkers"));
  EXPECT_EQ(At("AdjMarkers.FixMk2").Caption, "UnFix");
}

TEST_F(PictureMouseTest, ATypedFrequencyMovesTheMarkerInAllGraphsWithoutARedraw) {
  session.Display.DisplaySet = DisplaySet::All;
  MoveMarker(session, 1, 20);
  program.graphs().RedrawAll(true);
  fake.Show(window::kAdjMarkers);
  surface.ClearLog();
  Type("AdjMarkers.Mk1Val", "50.4");
  Type("AdjMarkers.Mk2Val", "-1");
  Click("AdjMarkers.Command2");
  EXPECT_TRUE(surface.Log().empty());
  for (int graph = 0; graph < 4; ++graph) {
    EXPECT_EQ(AtGraph(graph, 0).Point, 48);
    EXPECT_EQ(AtGraph(graph, 1).Point, 20);
  }
  EXPECT_EQ(Value("AdjMarkers.Mk1Val"), "50.00000");
  Type("AdjMarkers.Mk1Val", "9999");
  Click("AdjMarkers.Command2");
  EXPECT_EQ(At0(0).Point, 101);
  Type("AdjMarkers.Mk1Val", "0");
  Click("AdjMarkers.Command2");
  EXPECT_EQ(At0(0).Point, 1);
}

TEST_F(PictureMouseTest, AFixedMarkerKeepsItsFrequency) {
  fake.Show(window::kAdjMarkers);
  Click("AdjMarkers.FixMk2");
  EXPECT_EQ(At0(1).State, MarkerState::Fixed);
  EXPECT_EQ(At("AdjMarkers.FixMk2").Caption, "UnFix");
  Type("AdjMarkers.Mk2Val", "90");
  Click("AdjMarkers.Command2");
  EXPECT_EQ(At0(1).Point, 20);
  Click("AdjMarkers.FixMk2");
  EXPECT_EQ(At0(1).State, MarkerState::Reference);
  EXPECT_EQ(At("AdjMarkers.FixMk2").Caption, "Fix");
}

// START, STOP and every other full redraw let a fixed marker go.
TEST_F(PictureMouseTest, TheFixButtonFollowsAMarkerThatAFullRedrawLetsGo) {
  fake.Show(window::kAdjMarkers);
  Click("AdjMarkers.FixMk2");
  ASSERT_EQ(At("AdjMarkers.FixMk2").Caption, "UnFix");
  Type("AdjMarkers.Mk1Val", "77");
  program.graphs().RedrawAll(true);
  ASSERT_EQ(At0(1).State, MarkerState::Reference);
  EXPECT_EQ(At("AdjMarkers.FixMk2").Caption, "Fix");
  EXPECT_EQ(Value("AdjMarkers.Mk1Val"), "77") << "what is typed stays";
  Click("AdjMarkers.FixMk2");
  EXPECT_EQ(At0(1).State, MarkerState::Fixed);
  EXPECT_EQ(At("AdjMarkers.FixMk2").Caption, "UnFix");
}

TEST_F(PictureMouseTest, AReferenceIsFixedWithTheValueThatItsTraceHasNow) {
  surface.PutsOff = true;
  fake.Show(window::kAdjMarkers);
  program.graphs().PlotPoint(1, 20, 12.5, 0);
  program.graphs().LiveChanged();
  Click("AdjMarkers.FixMk2");
  EXPECT_EQ(At0(1).State, MarkerState::Fixed);
  EXPECT_EQ(At0(1).Value, 12.5);
}

TEST_F(PictureMouseTest, TraceMarkersShowsWhereADraggedMarkerIsAndKeepsWhatIsTyped) {
  fake.Show(window::kAdjMarkers);
  Type("AdjMarkers.Mk2Val", "12");
  Grab(At0(0));
  Move(XOfPoint(0, 78), 0);
  EXPECT_EQ(Value("AdjMarkers.Mk1Val"), "80.00000");
  EXPECT_EQ(Value("AdjMarkers.Mk2Val"), "12");
}

TEST_F(PictureMouseTest, TheTwoWindowsOfMarkersFollowEachOther) {
  fake.Show(window::kAdjMarkers);
  fake.Show(window::kMarkersSet);
  Type("AdjMarkers.Mk1Val", "33");
  Click("AdjMarkers.Command2");
  EXPECT_EQ(Value("MarkersSet.Text1"), "33.0000");
  session.Channel(1).Value[80] = 5;
  Click("MarkersSet.Command3");
  EXPECT_EQ(Value("AdjMarkers.Mk1Val"), "82.00000");
  Window("MarkersSet").Tick("Check3", true);
  EXPECT_FALSE(At("AdjMarkers.Mk3Val").Enabled);
  Click("MarkersSet.Command2");
  EXPECT_TRUE(At("AdjMarkers.Mk3Val").Enabled);
}

TEST_F(PictureMouseTest, ATraceButtonNeedsAStoredTraceOnTheDisplay) {
  fake.Show(window::kAdjMarkers);
  Click("AdjMarkers.Mk1Trace");
  EXPECT_EQ(At0(0).Trace, MarkerTrace::Data);
  ChannelSettings& channel = session.Channel(1);
  channel.MemoryRe.fill(0.5);
  channel.MemoryValid = true;
  channel.MemoryParameter = channel.Parameter;
  Click("AdjMarkers.Mk1Trace");
  EXPECT_EQ(At0(0).Trace, MarkerTrace::Data);
  session.Display.DisplayMode = DisplayMode::DataAndMemory;
  program.graphs().RedrawAll(true);
  Click("AdjMarkers.Mk1Trace");
  EXPECT_EQ(At0(0).Trace, MarkerTrace::Memory);
  EXPECT_EQ(At("AdjMarkers.Mk1Trace").Caption, "Memory");
  Click("AdjMarkers.Mk1Trace");
  EXPECT_EQ(At0(0).Trace, MarkerTrace::Data);
}

TEST_F(PictureMouseTest, ClosingTraceMarkersRedrawsTheOverlay) {
  for (const bool byButton : {true, false}) {
    fake.Show(window::kAdjMarkers);
    surface.ClearLog();
    if (byButton)
      Click("AdjMarkers.Command1");
    else
      fake.Hide(window::kAdjMarkers);
    ASSERT_FALSE(surface.Log().empty());
    EXPECT_EQ(surface.Log().front(), "wipe");
  }
}

// ---- thousands of gestures ---------------------------------------------------------------------

// Every marker that is on is at a point of the sweep and on its trace, and its read-out is that
// point's.
void ExpectMarkersOnTheirTraces(Session& session, Graphs& graphs) {
  for (int graph = 0; graph < 4; ++graph) {
    if (!graphs.Graph(graph).Enabled) continue;
    for (int m = 0; m < kMarkers; ++m) {
      const Marker& marker = session.Markers.Of(graph, m);
      if (marker.State == MarkerState::Off) continue;
      ASSERT_GE(marker.Point, 1);
      ASSERT_LE(marker.Point, session.Plan.NumPoints);
      if (marker.State == MarkerState::Fixed) continue;
      const bool memory = marker.Trace == MarkerTrace::Memory;
      const TraceRecord& trace = graphs.Trace(graph, memory ? kMemoryTrace : kDataTrace);
      const auto i = static_cast<std::size_t>(marker.Point);
      ASSERT_TRUE(trace.Shown);
      ASSERT_EQ(marker.X, trace.Pixel[i].x);
      ASSERT_EQ(marker.Y, trace.Pixel[i].y);
      ASSERT_EQ(marker.Value, trace.Value[i]);
    }
  }
}

TEST_F(PictureMouseTest, ThousandsOfGesturesLeaveEveryMarkerOnItsTrace) {
  std::mt19937 random(2026);
  const auto any = [&](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  int drags = 0, hits = 0, fixes = 0;
  for (ChannelSettings& channel : session.Channels) {
    channel.MemoryRe.fill(0.3);
    channel.MemoryValid = true;
    channel.MemoryParameter = channel.Parameter;
  }
  fake.Show(window::kAdjMarkers);
  fake.Show(window::kMarkersSet);
  for (int gesture = 0; gesture < 6000; ++gesture) {
    const int graph = any(0, 3), m = any(0, 3);
    switch (any(0, 11)) {
      case 0:
        session.Display.DisplaySet = static_cast<DisplaySet>(any(0, 3));
        program.graphs().ReplotAll();
        break;
      case 1: {  // a type; time responses need their number of points
        constexpr GraphType kTypes[] = {GraphType::LogMag, GraphType::Smith, GraphType::Phase,
                                        GraphType::LinMag};
        session.Channel(any(1, 4)).GraphType = kTypes[any(0, 3)];
        program.graphs().ReplotAll();
        break;
      }
      case 2: {
        constexpr std::int16_t kCounts[] = {51, 101, 201, 401, 801, 1024};
        session.Plan.NumPoints = kCounts[any(0, 5)];
        session.Plan.StepFreq = 100e6 / (session.Plan.NumPoints - 1);
        program.graphs().ReplotAll();
        break;
      }
      case 3:
        session.Display.DisplayMode =
            any(0, 1) == 0 ? DisplayMode::Data : DisplayMode::DataAndMemory;
        program.graphs().ReplotAll();
        break;
      case 4:  // a point of a running sweep
        for (int k = 0; k < 5; ++k)
          program.graphs().PlotPoint(graph + 1, any(1, session.Plan.NumPoints), any(-90, 20),
                                     any(-1, 1));
        program.graphs().RedrawOverlay();
        break;
      case 5:
        Window("MarkersSet").Tick(any(0, 3) == 0 ? "Option2" : "Option1", true);
        Window("MarkersSet").Tick("Check" + std::to_string(any(1, 8)), any(0, 1) == 1);
        Window("MarkersSet").Tick("Option" + std::to_string(any(3, 6)), true);
        Click("MarkersSet.Command2");
        break;
      case 6:
        Window("MarkersSet").Tick("Check" + std::to_string(any(9, 12)), any(0, 1) == 1);
        Click(any(0, 1) == 0 ? "MarkersSet.Command3" : "MarkersSet.Command4");
        break;
      case 7:
        if (Click("AdjMarkers.FixMk" + std::to_string(m + 1))) ++fixes;
        Click("AdjMarkers.Mk" + std::to_string(m + 1) + "Trace");
        Right(any(0, 999), any(0, 599));
        break;
      case 8:
        Type("AdjMarkers.Mk" + std::to_string(m + 1) + "Val", PlainNumber(any(-100, 300) / 1.7));
        Click("AdjMarkers.Command2");
        program.graphs().RedrawOverlay();
        break;
      default: {  // a drag of a marker, if it is there
        const Marker marker = AtGraph(graph, m);
        const int before = marker.Point;
        Down(marker.X, marker.LabelY);
        for (int k = any(0, 4); k >= 0; --k) Move(any(-50, 1050), any(-50, 650));
        if (any(0, 3) != 0) Up();
        ++drags;
        hits += AtGraph(graph, m).Point != before;
      }
    }
    if (HasFatalFailure()) FAIL() << "gesture " << gesture;
    ExpectMarkersOnTheirTraces(session, program.graphs());
    if (HasFatalFailure()) FAIL() << "gesture " << gesture;
  }
  // The runs do what they are for.
  EXPECT_GT(drags, 1000);
  EXPECT_GT(hits, 200);
  EXPECT_GT(fixes, 20);
}

}  // namespace
}  // namespace qk
