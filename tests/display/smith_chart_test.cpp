// SPDX-License-Identifier: MIT
#include "display/smith_chart.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "support/recording_canvas.h"

namespace qk {
namespace {

using test::Drawn;
using test::FindText;
using test::OfKind;
using test::RecordingCanvas;
using test::TextsOf;

class SmithChart : public testing::Test {
 protected:
  SmithChart() {  // centre 1000, 500; radius 400
    graph.Left = 0;
    graph.Right = 2000;
    graph.Top = 100;
    graph.Bottom = 900;
    graph.IsSmith = true;
    canvas.SetFontSize(10);
    DrawSmithFrame(canvas, graph, colours);
  }
  void ExpectBox(const Drawn& item, int left, int top, int right, int bottom) {
    EXPECT_EQ(item.Points[0].x, left);
    EXPECT_EQ(item.Points[0].y, top);
    EXPECT_EQ(item.Points[1].x, right);
    EXPECT_EQ(item.Points[1].y, bottom);
  }
  void ExpectLabel(const char* text, double x, double y) {
    const Drawn* label = FindText(canvas.Items, text);
    ASSERT_NE(label, nullptr) << text;
    EXPECT_NEAR(label->Points[0].x, x, 0.5001) << text;
    EXPECT_NEAR(label->Points[0].y, y, 0.5001) << text;
    EXPECT_EQ(label->Colour, colours.GridColour);
  }

  Colours colours;
  GraphRecord graph;
  RecordingCanvas canvas{{2000, 1000}};
};

// Above that the title begins.
TEST_F(SmithChart, NoLabelOfAnAdmittanceChartIsHigherThanALetterOverTheCircle) {
  graph.Grid = ChartGrid::Admittance;
  canvas.Items.clear();
  DrawSmithFrame(canvas, graph, colours);
  for (const Drawn& item : OfKind(canvas.Items, Drawn::Kind::Text))
    EXPECT_GE(item.Points[0].y, 100 - 10) << item.Text;
  ExpectLabel("-1", 1000 - 6, 100 - 10);  // over the circle: twelve by ten pixels
  ExpectLabel("1", 1000 - 6, 900);
  ExpectLabel("0", 1400 + 3, 500 - 5);
}

TEST_F(SmithChart, TheOuterCircleIsAsHighAsTheGraphWithTheRealAxisAcross) {
  ASSERT_EQ(canvas.Items[0].What, Drawn::Kind::Ellipse);
  ExpectBox(canvas.Items[0], 600, 100, 1400, 900);
  EXPECT_EQ(canvas.Items[0].Colour, colours.OutlineColour);
  EXPECT_EQ(canvas.Items[0].Style, PenStyle::Solid);
  ASSERT_EQ(canvas.Items[1].What, Drawn::Kind::Line);
  ExpectBox(canvas.Items[1], 600, 500, 1400, 500);
  EXPECT_EQ(canvas.Items[1].Colour, colours.GridColour);
  EXPECT_EQ(canvas.Items[1].Style, PenStyle::Dotted);
}

TEST_F(SmithChart, ResistanceCirclesTouchTheRightEndOfTheRealAxis) {
  const auto circles = OfKind(canvas.Items, Drawn::Kind::Ellipse);
  ASSERT_EQ(circles.size(), 6u);
  for (std::size_t i = 1; i < 6; ++i) {
    EXPECT_EQ(circles[i].Points[1].x, 1400);
    EXPECT_EQ(circles[i].Style, PenStyle::Dotted);
  }
  ExpectBox(circles[1], 1267, 433, 1400, 567);  // r = 5
  ExpectBox(circles[2], 1133, 367, 1400, 633);  // r = 2
  ExpectBox(circles[3], 1000, 300, 1400, 700);  // r = 1: through the centre
  ExpectBox(circles[4], 867, 233, 1400, 767);   // r = 0.5
  ExpectBox(circles[5], 733, 167, 1400, 833);   // r = 0.2
}

TEST_F(SmithChart, ReactanceArcsStandInPairsAboveAndBelowTheAxis) {
  const auto arcs = OfKind(canvas.Items, Drawn::Kind::Arc);
  ASSERT_EQ(arcs.size(), 10u);
  ExpectBox(arcs[0], 1320, 340, 1480, 500);   // +5: radius 80 above (1400, 500)
  ExpectBox(arcs[1], 1320, 500, 1480, 660);   // -5
  ExpectBox(arcs[4], 1000, -300, 1800, 500);  // +1: radius 400
  ExpectBox(arcs[9], -600, 500, 3400, 4500);  // -0.2: radius 2000
}

// Intentional: the angles are stored, not computed.
TEST_F(SmithChart, ReactanceArcsRunAnticlockwiseBetweenTheStoredAngles) {
  const float angles[10][2] = {{1.9656f, 4.71239f}, {1.5708f, 4.3176f}, {2.4981f, 4.0689f},
                               {2.2143f, 3.7851f},  {3.15f, 4.382f},    {1.9012f, 3.14159f},
                               {3.7851f, 4.5461f},  {1.7371f, 2.4981f}, {4.3176f, 4.6457f},
                               {1.6375f, 1.9656f}};
  const auto arcs = OfKind(canvas.Items, Drawn::Kind::Arc);
  ASSERT_EQ(arcs.size(), 10u);
  for (std::size_t i = 0; i < 10; ++i) {
    const double start = arcs[i].StartDeg * std::numbers::pi / 180;
    const double stop = (arcs[i].StartDeg + arcs[i].SpanDeg) * std::numbers::pi / 180;
    EXPECT_NEAR(start, static_cast<double>(angles[i][0]), 1e-9) << i;
    EXPECT_NEAR(stop, static_cast<double>(angles[i][1]), 1e-9) << i;
  }
}

TEST_F(SmithChart, ReactanceArcsLieInsideTheUnitCircleToARounding) {
  for (const Drawn& arc : OfKind(canvas.Items, Drawn::Kind::Arc)) {
    const double cx = (arc.Points[0].x + arc.Points[1].x) / 2.0;
    const double cy = (arc.Points[0].y + arc.Points[1].y) / 2.0;
    const double radius = (arc.Points[1].x - arc.Points[0].x) / 2.0;
    for (double part = 0; part <= 1; part += 0.125) {
      const double a = (arc.StartDeg + part * arc.SpanDeg) * std::numbers::pi / 180;
      const double x = cx + radius * std::cos(a), y = cy - radius * std::sin(a);
      EXPECT_LT(std::hypot(x - 1000, y - 500), 400 * 1.01);
    }
  }
}

TEST_F(SmithChart, LabelsStandInOrderAroundTheCircle) {
  EXPECT_EQ(TextsOf(canvas.Items), (std::vector<std::string>{"0", "5", "-5", "2", "-2", "1", "-1",
                                                             ".5", "-.5", ".2", "-.2"}));
  const double c1 = 400 * std::cos(0.3948), s1 = 400 * std::sin(0.3948);
  const double c2 = 400 * std::cos(0.9273), s2 = 400 * std::sin(0.9273);
  ExpectLabel("0", 1000 - 9 - 400, 495);
  ExpectLabel("5", 1000 + 3 + c1, 495 - s1);
  ExpectLabel("-5", 1000 + 3 + c1, 495 + s1);
  ExpectLabel("2", 1000 + c2, 490 - s2);
  ExpectLabel("-2", 1000 + c2, 500 + s2);
  ExpectLabel("1", 1000, 490 - 400);
  ExpectLabel("-1", 1000 - 6, 505 + 400);
  ExpectLabel(".5", 1000 - 12 - c2, 490 - s2);
  ExpectLabel("-.5", 1000 - 18 - c2, 505 + s2);
  ExpectLabel(".2", 1000 - 18 - c1, 495 - s1);
  ExpectLabel("-.2", 1000 - 23.4 - c1, 495 + s1);
}

TEST(SmithChartInANarrowSlot, IsWiderThanTheRectangle) {
  GraphRecord graph;
  graph.Right = 100;
  graph.Bottom = 300;
  RecordingCanvas canvas{{100, 300}};
  DrawSmithFrame(canvas, graph, Colours{});
  EXPECT_EQ(canvas.Items[0].Points[0].x, -100);
  EXPECT_EQ(canvas.Items[0].Points[1].x, 200);
}

}  // namespace
}  // namespace qk
