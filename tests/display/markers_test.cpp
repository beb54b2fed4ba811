// SPDX-License-Identifier: MIT
#include "display/markers.h"

#include <gtest/gtest.h>

#include "display/marker_table.h"
#include "graphs_fixture.h"

namespace qk {
namespace {

using test::Drawn;
using test::OfKind;
using test::TextsOf;
using Texts = std::vector<std::string>;

class Markers : public test::GraphsFixture {
 protected:
  Markers() {
    session->Display.MarkersOn = true;
    Settings(0).Shown = true;
    Settings(0).IsActive = true;
  }
  MarkerSettings& Settings(int m) { return session->Markers.Set(m); }
  Marker& At(int graph, int m) { return session->Markers.Of(graph, m); }
  // A ramp: point i of channel n has the value i.
  void Ramp(int n) {
    for (int i = 1; i <= session->Plan.NumPoints; ++i) graphs.PlotPoint(n, i, i, -i);
  }
  void RedrawOverlay() {
    graphs.Wipe();
    graphs.DrawOverlay();
  }
};

TEST_F(Markers, StandInTheMiddleOfTheSweepAtFirst) {
  graphs.RedrawAll(true);
  EXPECT_EQ(At(0, 0).Point, 51);
  EXPECT_EQ(At(0, 0).Number, 1);
  EXPECT_EQ(At(0, 0).State, MarkerState::Active);
  EXPECT_EQ(At(0, 1).State, MarkerState::Off);
}

TEST_F(Markers, APointBeyondTheSweepBecomesTheMiddle) {
  At(0, 0).Point = 101;
  graphs.RedrawAll(true);
  EXPECT_EQ(At(0, 0).Point, 101);
  session->Plan.NumPoints = 51;
  graphs.RedrawAll(true);
  EXPECT_EQ(At(0, 0).Point, 26);
}

TEST_F(Markers, AReferenceIsOneEvenWhenItIsActiveToo) {
  Settings(0).IsRef = true;
  graphs.RedrawAll(true);
  EXPECT_EQ(At(0, 0).State, MarkerState::Reference);
}

TEST_F(Markers, AKeepingRedrawLeavesThemAndOneThatDoesNotTakesTheSetPoint) {
  Settings(0).Point = 7;
  At(0, 0).Point = 30;
  graphs.RedrawAll(true);
  EXPECT_EQ(At(0, 0).Point, 30);
  graphs.RedrawAll(false);
  EXPECT_EQ(At(0, 0).Point, 7);
}

TEST_F(Markers, ARedrawThatDoesNotKeepThemPutsThemOnTheDataTrace) {
  session->Display.DisplayMode = DisplayMode::DataAndMemory;
  StoreMemory(1, {1, 0});
  graphs.RedrawAll(true);
  At(0, 0).Trace = MarkerTrace::Memory;
  graphs.RedrawAll(true);
  EXPECT_EQ(At(0, 0).Trace, MarkerTrace::Memory);
  graphs.RedrawAll(false);
  EXPECT_EQ(At(0, 0).Trace, MarkerTrace::Data);
}

TEST_F(Markers, AFullRedrawLetsAFixedReferenceGo) {
  Settings(0).IsRef = true;
  graphs.RedrawAll(true);
  ToggleFixed(session->Markers);
  EXPECT_EQ(At(0, 0).State, MarkerState::Fixed);
  graphs.RedrawAll(true);
  EXPECT_EQ(At(0, 0).State, MarkerState::Reference);
}

TEST_F(Markers, AFixedReferenceKeepsItsReadOutWhileTheTraceChanges) {
  Settings(0).IsRef = true;
  Sweep(1, 10);
  graphs.RedrawAll(true);
  Sweep(1, 10);
  RedrawOverlay();
  const Marker before = At(0, 0);
  ToggleFixed(session->Markers);
  Sweep(1, 20);
  RedrawOverlay();
  EXPECT_EQ(At(0, 0).Value, 10);
  EXPECT_EQ(At(0, 0).Y, before.Y);
  ToggleFixed(session->Markers);
  RedrawOverlay();
  EXPECT_EQ(At(0, 0).Value, 20);
}

TEST_F(Markers, FixingActsOnReferencesInAllGraphsAndOnNothingElse) {
  session->Display.DisplaySet = DisplaySet::All;
  Settings(1).Shown = Settings(1).IsRef = true;
  graphs.RedrawAll(true);
  ToggleFixed(session->Markers);
  for (int graph = 0; graph < 4; ++graph) {
    EXPECT_EQ(At(graph, 0).State, MarkerState::Active);
    EXPECT_EQ(At(graph, 1).State, MarkerState::Fixed);
  }
}

TEST_F(Markers, FollowTheLiveTraceFromSweepToSweep) {
  graphs.RedrawAll(true);
  Ramp(1);
  RedrawOverlay();
  EXPECT_EQ(At(0, 0).Value, 51);
  EXPECT_EQ(At(0, 0).Value2, -51);
  const CanvasPoint pixel = graphs.Trace(0, kDataTrace).Pixel[51];
  EXPECT_EQ(At(0, 0).X, pixel.x);
  EXPECT_EQ(At(0, 0).Y, pixel.y);
}

TEST_F(Markers, OnAStoredTraceThatIsNotDrawnGoToTheDataTrace) {
  session->Display.DisplayMode = DisplayMode::DataAndMemory;
  StoreMemory(1, {1, 0});
  graphs.RedrawAll(true);
  At(0, 0).Trace = MarkerTrace::Memory;
  RedrawOverlay();
  EXPECT_EQ(At(0, 0).Trace, MarkerTrace::Memory);
  EXPECT_NEAR(At(0, 0).Value, 0, 1e-9);  // 1 is 0 dB
  Channel(1).Parameter = Parameter::S22;
  graphs.RedrawAll(true);
  EXPECT_EQ(At(0, 0).Trace, MarkerTrace::Data);
}

TEST_F(Markers, SwitchedOffAreOffOnEveryDisplayedGraph) {
  session->Display.DisplaySet = DisplaySet::All;
  graphs.RedrawAll(true);
  session->Display.MarkersOn = false;
  graphs.RedrawAll(true);
  for (int graph = 0; graph < 4; ++graph) EXPECT_EQ(At(graph, 0).State, MarkerState::Off);
  EXPECT_EQ(test::FindText(surface.Background(), "MARKERS"), nullptr);
}

TEST_F(Markers, MoveInAllFourGraphsAndStopAtTheEndsOfTheSweep) {
  MoveMarker(*session, 2, 33.4);
  for (int graph = 0; graph < 4; ++graph) EXPECT_EQ(At(graph, 2).Point, 33);
  MoveMarker(*session, 2, 1e9);
  EXPECT_EQ(At(3, 2).Point, 101);
  MoveMarker(*session, 2, -1e9);
  EXPECT_EQ(At(3, 2).Point, 1);
}

// ---- the table ---------------------------------------------------------------------------------

TEST_F(Markers, TheTableHasABoxAHeadingAndTheRightOfTheArea) {
  graphs.RedrawAll(true);
  const auto boxes = OfKind(surface.Background(), Drawn::Kind::Rectangle);
  ASSERT_EQ(boxes.size(), 2u);  // the table, the graph
  EXPECT_EQ(boxes[0].Points[0].x, 830);
  EXPECT_EQ(boxes[0].Points[0].y, 50);  // 0.083 of 600
  EXPECT_EQ(boxes[0].Points[1].x, 980);
  EXPECT_EQ(boxes[0].Points[1].y, 573);  // 600 less 0.045
  const Drawn* heading = test::FindText(surface.Background(), "MARKERS");
  ASSERT_NE(heading, nullptr);
  EXPECT_EQ(heading->Points[0].x, 830 + 42 / 2);
  EXPECT_EQ(heading->Points[0].y, 18);
  EXPECT_LE(boxes[1].Points[1].x, 830);
}

TEST_F(Markers, TheHeadingStandsOverTheBoxWhereLettersAreLarge) {
  Graphs large(*session, surface, 2);  // 12 points for the whole area
  surface.canvas().Resize({1000, 360});
  large.RedrawAll(true);
  const Drawn* heading = test::FindText(surface.Background(), "MARKERS");
  ASSERT_NE(heading, nullptr);
  EXPECT_EQ(heading->Points[0].y, 30 - 12) << "1.8 lines down would end at 34, in the box";
}

TEST_F(Markers, TheHeadingIsWholeInANarrowArea) {
  surface.canvas().Resize({300, 600});
  graphs.RedrawAll(true);
  const Drawn* heading = test::FindText(surface.Background(), "MARKERS");
  ASSERT_NE(heading, nullptr);
  EXPECT_EQ(heading->Points[0].x, 294 - 42) << "the box ends at 294; 0.83 of 300 and 21 at 312";
}

TEST_F(Markers, TheTableIsDrawnOnceHoweverManyGraphs) {
  session->Display.DisplaySet = DisplaySet::All;
  graphs.RedrawAll(true);
  int headings = 0;
  for (const std::string& text : TextsOf(surface.Background())) headings += text == "MARKERS";
  EXPECT_EQ(headings, 1);
}

TEST_F(Markers, BelowTheTopOfTheBoxStandGraphParameterAndPlane) {
  session->Planes.PlaneS21 = 0.0125f;
  session->Display.DisplaySet = DisplaySet::OneTwo;
  Channel(1).Active = false;
  Channel(2).Active = true;
  graphs.RedrawAll(true);
  const double top = 0.083 * 600;
  const struct {
    const char* Text;
    double Line;
  } lines[] = {{"Graph  2 S21", 0.7}, {"Ref Plane", 1.7}, {"12.50 mm", 2.7}};
  for (const auto& line : lines) {
    const Drawn* text = test::FindText(surface.Background(), line.Text);
    ASSERT_NE(text, nullptr) << line.Text;
    const int width = static_cast<int>(std::string(line.Text).size()) * 6;
    EXPECT_EQ(text->Points[0].x, std::lround(830 + (150 - width) / 2.0)) << line.Text;
    EXPECT_EQ(text->Points[0].y, std::lround(top + line.Line * 10)) << line.Text;
  }
}

TEST_F(Markers, EachHasItsRowWithoutCompaction) {
  Settings(2).Shown = true;
  graphs.RedrawAll(true);
  const Drawn* first = test::FindText(surface.Background(), "Marker  1");
  const Drawn* third = test::FindText(surface.Background(), "Marker  3");
  ASSERT_NE(first, nullptr);
  ASSERT_NE(third, nullptr);
  EXPECT_EQ(first->Points[0].y, 120 + 10);
  EXPECT_EQ(third->Points[0].y, 120 + 10 + 4 * 10 * 2);
  EXPECT_EQ(test::FindText(surface.Background(), "Marker  2"), nullptr);
}

TEST_F(Markers, ADeltaTakesTheFirstRow) {
  Settings(1).Shown = Settings(1).IsRef = true;
  At(0, 0).Point = 101;
  At(0, 1).Point = 51;
  graphs.RedrawAll(true);
  Ramp(1);
  RedrawOverlay();
  const Drawn* delta = test::FindText(surface.Background(), "delta ( 1- 2)");
  ASSERT_NE(delta, nullptr);
  EXPECT_EQ(delta->Points[0].y, 130);
  EXPECT_EQ(test::FindText(surface.Background(), "Marker  1")->Points[0].y, 170);
  EXPECT_EQ(test::FindText(surface.Background(), "Marker  2")->Points[0].y, 210);
  const Drawn* span = test::FindText(surface.Overlay(), "1498.5000 MHz");
  ASSERT_NE(span, nullptr);
  EXPECT_EQ(span->Points[0].y, 140);
  EXPECT_EQ(span->Colour, kData);
  const Drawn* value = test::FindText(surface.Overlay(), "50.000 dB");
  ASSERT_NE(value, nullptr);
  EXPECT_EQ(value->Points[0].y, 150);
  EXPECT_NE(test::FindText(surface.Overlay(), "3000.0000 MHz"), nullptr);
}

TEST_F(Markers, AReferenceWithoutAnActiveMarkerLeavesTheFirstRowFree) {
  Settings(0).IsActive = false;
  Settings(0).IsRef = true;
  graphs.RedrawAll(true);
  EXPECT_EQ(test::FindText(surface.Background(), "Marker  1")->Points[0].y, 170);
  for (const std::string& text : TextsOf(surface.Background()))
    EXPECT_NE(text.substr(0, 5), "delta");
}

TEST_F(Markers, OnlyTheActiveChannelIsReadOut) {
  session->Display.DisplaySet = DisplaySet::All;
  graphs.RedrawAll(true);
  Sweep(1, 5);
  Sweep(2, 6);
  RedrawOverlay();
  EXPECT_NE(test::FindText(surface.Overlay(), "5.000 dB"), nullptr);
  EXPECT_EQ(test::FindText(surface.Overlay(), "6.000 dB"), nullptr);
}

TEST_F(Markers, AReadOutWiderThanItsColumnIsSetSmallerAndNeverCut) {
  Channel(1).GraphType = GraphType::Smith;
  graphs.RedrawAll(true);
  graphs.PlotPoint(1, 51, 0.99999, 0.00001);
  RedrawOverlay();
  bool seen = false;
  for (const Drawn& item : OfKind(surface.Overlay(), Drawn::Kind::Text)) {
    if (item.Text.find(" j") == std::string::npos) continue;
    seen = true;
    EXPECT_LT(item.FontSize, 10);
    const auto width = static_cast<int>(item.Text.size()) * 6 * item.FontSize / 10;
    EXPECT_LE(width, 150);
    EXPECT_GE(item.Points[0].x, 830);
    EXPECT_LE(item.Points[0].x + width, 980);
  }
  EXPECT_TRUE(seen);
}

// A column of 90 pixels holds 15 letters of 6 pixels and no gap.
TEST_F(Markers, AReadOutDoesNotTouchTheFrameOfItsColumn) {
  surface.canvas().Resize({600, 400});
  Channel(1).GraphType = GraphType::LogMag;
  session->Plan.StartFreq = 100000e6;
  graphs.RedrawAll(true);
  const Rect box = MarkerTableBox({600, 400});
  bool seen = false;
  for (const Drawn& item : OfKind(surface.Overlay(), Drawn::Kind::Text)) {
    if (item.Text.find(" MHz") == std::string::npos) continue;
    seen = true;
    const auto width = static_cast<int>(item.Text.size()) * 6 * item.FontSize / 10;
    EXPECT_GE(item.Points[0].x, box.left + 3) << item.Text;
    EXPECT_LE(item.Points[0].x + width, box.right - 3) << item.Text;
  }
  EXPECT_TRUE(seen);
}

TEST(MarkerTexts, AreMegahertzOrNanosecondsAndTheChannelsUnit) {
  GraphRecord graph;
  graph.XStart = 3e6;
  graph.XStep = 1e6;
  graph.TimeStart = -5;
  graph.TimeStep = 0.5f;
  Marker marker;
  marker.Point = 3;
  marker.Value = -3.0126;
  EXPECT_EQ(MarkerPositionText(graph, marker), "5.0000 MHz");
  EXPECT_EQ(MarkerValueText(graph, marker, 50), "-3.013 dB");
  graph.IsTime = true;
  graph.Units = Unit::MilliU;
  EXPECT_EQ(MarkerPositionText(graph, marker), "-4.0000 ns");
  EXPECT_EQ(MarkerValueText(graph, marker, 50), "-3.013 mU");
}

TEST(MarkerTexts, OnASmithChartReportTheImpedanceInTheSystem) {
  GraphRecord graph;
  graph.IsSmith = true;
  Marker marker;  // a match
  EXPECT_EQ(MarkerValueText(graph, marker, 75), "75.000,  0.000 j");
  marker.Value2 = 1;  // z = j
  EXPECT_EQ(MarkerValueText(graph, marker, 50), "0.000,  50.000 j");
  marker.Value = 1;  // open: the division is floored, not infinite
  marker.Value2 = 0;
  EXPECT_NE(MarkerValueText(graph, marker, 50).find(" j"), std::string::npos);
}

TEST(MarkerTexts, ADeltaOnASmithChartTakesItsReferenceAt50Ohms) {
  GraphRecord graph;
  graph.IsSmith = true;
  const Marker active, reference;  // both a match
  EXPECT_EQ(DeltaValueText(graph, active, reference, 75), "25.000,  0.000 j");
}

TEST(MarkerTexts, ADeltaIsActiveLessReference) {
  GraphRecord graph;
  graph.XStart = 3e6;
  graph.XStep = 1e6;
  Marker active, reference;
  active.Point = 2;
  active.Value = 1;
  reference.Point = 4;
  reference.Value = 3.5;
  EXPECT_EQ(DeltaPositionText(graph, active, reference), "-2.0000 MHz");
  EXPECT_EQ(DeltaValueText(graph, active, reference, 50), "-2.500 dB");
}

}  // namespace
}  // namespace qk
