// SPDX-License-Identifier: MIT
// Impedance types on the picture: gaps, read-outs, limits; admittance; distance; a gated trace.
#include <gtest/gtest.h>

#include <cmath>

#include "display/frame.h"
#include "display/marker_table.h"
#include "display/smith_chart.h"
#include "graphs_fixture.h"

namespace qk {
namespace {

using test::Drawn;
using test::FindText;
using test::OfKind;

class ComponentGraphs : public test::GraphsFixture {
 protected:
  ComponentGraphs() {
    Channel(1).GraphType = GraphType::Resistance;
    Channel(1).Units = Unit::Ohm;
    Channel(1).Scale = 10;
    Channel(1).Reference = 50;
  }
  void Measure(Complex z) { session->Data.S11.Fill(z); }
};

TEST_F(ComponentGraphs, HaveAGapWhereThereIsNoValue) {
  Measure({0, 0});
  session->Data.S11.Set(49, {1, 0});  // point 50
  session->Data.S11.Set(51, {1, 0});  // point 52: 51 is alone
  session->Data.S11.Set(0, {1, 0});
  graphs.RedrawAll(true);
  graphs.PlotPoint(1, 1, 0, 0);
  graphs.ReplotAll();
  const auto traces = Traces(surface.canvas().Items, kData);
  ASSERT_EQ(traces.size(), 2u);
  EXPECT_EQ(traces[0].Points.size(), 48u);  // 2 to 49
  EXPECT_EQ(traces[1].Points.size(), 49u);  // 53 to 101
  int dots = 0;
  for (const Drawn& line : OfKind(surface.canvas().Items, Drawn::Kind::Line))
    if (line.Colour == kData && line.Points[0].x == line.Points[1].x &&
        line.Points[0].y == line.Points[1].y)
      ++dots;
  EXPECT_EQ(dots, 1);
}

TEST_F(ComponentGraphs, APrescribedTypeIsDrawnThroughWhatIsNoNumber) {
  Channel(1).GraphType = GraphType::Real;
  Measure({std::nan(""), 0});
  graphs.PlotPoint(1, 1, 0, 0);
  graphs.ReplotAll();
  EXPECT_EQ(Traces(surface.canvas().Items, kData).size(), 1u);
}

TEST_F(ComponentGraphs, AMarkerInAGapReadsThatThereIsNoValue) {
  GraphRecord graph;
  graph.Units = Unit::Ohm;
  Marker marker, other;
  marker.Value = std::nan("");
  other.Value = 4700;
  EXPECT_EQ(MarkerValueText(graph, marker, 50), "---");
  EXPECT_EQ(MarkerValueText(graph, other, 50), "4.700 kohm");
  EXPECT_EQ(DeltaValueText(graph, other, marker, 50), "---");
}

TEST_F(ComponentGraphs, DrawLimitsWhereThereAreAny) {
  session->Display.ShowLimits = true;
  Channel(1).LimitsOn = true;
  for (std::size_t i = 20; i <= 40; ++i) {
    Channel(1).UpperLimit[i] = 60;
    Channel(1).LowerLimit[i] = 40;
  }
  graphs.RedrawAll(true);
  const auto limits = Traces(surface.Background(), kLimit);
  ASSERT_EQ(limits.size(), 2u);
  EXPECT_EQ(limits[0].Points.size(), 21u);
}

TEST_F(ComponentGraphs, ReportTheElementInTheTitle) {
  const auto title = [this] { return TitleText(Channel(1), session->TimeDomain); };
  EXPECT_EQ(title(), "S11 R");
  Channel(1).Parameter = Parameter::S21;
  EXPECT_EQ(title(), "S21 R series");
  Channel(1).Element = Element::Shunt;
  Channel(1).GraphType = GraphType::Capacitance;
  EXPECT_EQ(title(), "S21 C shunt");
  Channel(1).GraphType = GraphType::TdImpedance;
  EXPECT_EQ(title(), "S21 TD Z (Rect)");
  Channel(1).Parameter = Parameter::S11;
  Channel(1).GraphType = GraphType::Smith;
  EXPECT_EQ(title(), "S11 Reflection Z");
  Channel(1).Grid = ChartGrid::Admittance;
  EXPECT_EQ(title(), "S11 Reflection Y");
}

TEST_F(ComponentGraphs, ReadMetresOnADistanceAxis) {
  session->Plan.NumPoints = 1024;
  session->Plan.StepFreq = 3e6;
  Channel(1).GraphType = GraphType::TdImpedance;
  session->TimeDomain.Axis = TimeAxis::Distance;
  graphs.RedrawAll(true);
  Marker marker;
  marker.Point = 32;  // 0.05 ns on the axis, 0.137 ns of delay
  EXPECT_EQ(MarkerPositionText(graphs.Graph(0), marker), "0.0209 m");
  Marker further = marker;
  further.Point = 93;
  EXPECT_EQ(DeltaPositionText(graphs.Graph(0), further, marker), "1.4882 m");
  EXPECT_NE(FindText(surface.Background(), "-0.7354 m"), nullptr);
  EXPECT_NE(FindText(surface.Background(), "24.2230 m"), nullptr);
}

TEST_F(ComponentGraphs, AGatedTraceIsDashedAboveFourFifthsOfTheBand) {
  session->Plan.NumPoints = 1024;
  session->Plan.StepFreq = 3e6;
  Channel(1).GraphType = GraphType::LogMag;
  Channel(1).Units = Unit::Db;
  Channel(1).Gated = true;
  session->TimeDomain.Gate = GateKind::Notch;
  Measure({0.5, 0});
  graphs.PlotPoint(1, 1, 0, 0);
  graphs.ReplotAll();
  const auto traces = Traces(surface.canvas().Items, kData);
  ASSERT_EQ(traces.size(), 2u);
  EXPECT_EQ(traces[0].Points.size(), 819u);
  EXPECT_EQ(traces[0].Style, PenStyle::Solid);
  EXPECT_EQ(traces[1].Points.size(), 206u);
  EXPECT_EQ(traces[1].Style, PenStyle::Dashed);
  EXPECT_NE(FindText(surface.Background(), "S11 LogMag Notch"), nullptr);
}

TEST_F(ComponentGraphs, AStoredTraceOfAGatedChannelIsDisplayedGatedAndKeptAsStored) {
  session->Plan.NumPoints = 1024;
  session->Plan.StartFreq = session->Plan.StepFreq = 3e6;
  session->Display.DisplayMode = DisplayMode::DataAndMemory;
  session->TimeDomain.Gate = GateKind::Gate;
  session->TimeDomain.GateStart = 20;
  session->TimeDomain.GateStop = 40;
  Channel(1).GraphType = GraphType::LinMag;
  Channel(1).Units = Unit::U;
  Channel(1).Scale = 0.2;
  Channel(1).Reference = 0;
  StoreMemory(1, {0.5, 0});  // all of it at time zero
  const auto height = [&](bool gated) {
    Channel(1).Gated = gated;
    graphs.RedrawAll(true);
    const auto traces = Traces(surface.Background(), kMemory);
    return traces.empty() ? -1 : traces[0].Points[traces[0].Points.size() / 2].y;
  };
  EXPECT_GT(height(true), height(false) + 50);
  EXPECT_EQ(Channel(1).MemoryRe[500], 0.5);
}

TEST_F(ComponentGraphs, TheTimeTraceShowsWhereTheGateStands) {
  session->Plan.NumPoints = 1024;
  session->Plan.StepFreq = 3e6;
  Channel(1).GraphType = GraphType::Td;
  session->TimeDomain.Gate = GateKind::Gate;
  session->TimeDomain.GateStart = 20;
  session->TimeDomain.GateStop = 300;  // off the axis
  graphs.RedrawAll(true);
  int edges = 0;
  for (const Drawn& line : OfKind(surface.Background(), Drawn::Kind::Line))
    if (line.Style == PenStyle::Dashed) ++edges;
  EXPECT_EQ(edges, 1);
}

class Grids : public testing::Test {
 protected:
  Grids() {
    graph.Right = 2000;
    graph.Top = 100;
    graph.Bottom = 900;  // centre 1000, 500; radius 400
    graph.IsSmith = true;
  }
  void Draw(ChartGrid grid) {
    graph.Grid = grid;
    canvas.Items.clear();
    DrawSmithFrame(canvas, graph, colours);
  }
  // The ends of an arc, from its box and angles.
  static CanvasPoint EndOf(const Drawn& arc, double degrees) {
    const double r = (arc.Points[1].x - arc.Points[0].x) / 2.0;
    const double angle = degrees * 3.14159265 / 180;
    return {static_cast<int>(std::lround(arc.Points[0].x + r + r * std::cos(angle))),
            static_cast<int>(std::lround(arc.Points[0].y + r - r * std::sin(angle)))};
  }

  Colours colours;
  GraphRecord graph;
  test::RecordingCanvas canvas{{2000, 1000}};
};

// An admittance is opposite to the impedance of the same number, seen from the centre.
TEST_F(Grids, TheAdmittanceGridIsTheImpedanceGridTurnedByHalfATurn) {
  Draw(ChartGrid::Impedance);
  const auto impedance = canvas.Items;
  Draw(ChartGrid::Admittance);
  ASSERT_EQ(canvas.Items.size(), impedance.size());
  for (std::size_t i = 0; i < impedance.size(); ++i) {
    const Drawn &z = impedance[i], &y = canvas.Items[i];
    ASSERT_EQ(z.What, y.What);
    EXPECT_EQ(z.Text, y.Text);
    if (z.What == Drawn::Kind::Ellipse) {
      EXPECT_NEAR(2000 - z.Points[0].x, y.Points[1].x, 1);
      EXPECT_NEAR(1000 - z.Points[0].y, y.Points[1].y, 1);
    }
    if (z.What != Drawn::Kind::Arc) continue;
    for (const double span : {0.0, 1.0}) {
      const CanvasPoint a = EndOf(z, z.StartDeg + span * z.SpanDeg);
      const CanvasPoint b = EndOf(y, y.StartDeg + span * y.SpanDeg);
      EXPECT_NEAR(2000 - a.x, b.x, 2);
      EXPECT_NEAR(1000 - a.y, b.y, 2);
    }
  }
  // "0" is at the open, "1" (of a susceptance) below the centre.
  EXPECT_GT(FindText(canvas.Items, "0")->Points[0].x, 1400);
  EXPECT_GE(FindText(canvas.Items, "1")->Points[0].y, 900);
}

TEST_F(Grids, BothAreTheImpedanceGridWithTheOtherBehind) {
  Draw(ChartGrid::Impedance);
  const std::size_t alone = canvas.Items.size();
  Draw(ChartGrid::Both);
  EXPECT_EQ(canvas.Items.size(), alone + 15);  // five circles and ten arcs more
  EXPECT_NE(canvas.Items.back().Colour, colours.GridColour);
}

TEST_F(Grids, AMarkerReadsAnAdmittanceInMillisiemens) {
  graph.Grid = ChartGrid::Admittance;
  Marker marker;
  marker.Value = 0;
  marker.Value2 = 0;
  EXPECT_EQ(MarkerValueText(graph, marker, 50), "20.000,  0.000 j mS");
  marker.Value2 = 1;  // j: -j 20 mS
  EXPECT_EQ(MarkerValueText(graph, marker, 50), "0.000,  -20.000 j mS");
  marker.Value = -1;
  marker.Value2 = 0;  // a short has none
  EXPECT_EQ(MarkerValueText(graph, marker, 50), "---");
}

}  // namespace
}  // namespace qk
