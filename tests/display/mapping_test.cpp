// SPDX-License-Identifier: MIT
#include "display/mapping.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace qk {

static bool operator==(CanvasPoint a, CanvasPoint b) {
  return a.x == b.x && a.y == b.y;
}

namespace {

GraphRecord Plain() {
  GraphRecord graph;
  graph.Left = 100;
  graph.Top = 20;
  graph.Right = 300;
  graph.Bottom = 180;
  graph.NumPoints = 101;
  graph.Scale = 10;
  graph.RefPosition = 4;
  return graph;
}

TEST(MapRect, PointsSpreadFromTheLeftToTheRightEdge) {
  GraphRecord graph = Plain();
  EXPECT_EQ(MapRect(graph, 1, 0).x, 100);
  EXPECT_EQ(MapRect(graph, 51, 0).x, 200);
  EXPECT_EQ(MapRect(graph, 101, 0).x, 300);
}

TEST(MapRect, ADivisionUpIsAnEighthOfTheHeight) {
  GraphRecord graph = Plain();
  EXPECT_EQ(MapRect(graph, 1, 0).y, 100);
  EXPECT_EQ(MapRect(graph, 1, 10).y, 80);
  EXPECT_EQ(MapRect(graph, 1, -10).y, 120);
  EXPECT_EQ(MapRect(graph, 1, 1.2).y, 98);  // 97.6
}

TEST(MapRect, TheReferenceStandsAtItsPosition) {
  GraphRecord graph = Plain();
  graph.Reference = -35.5;
  graph.RefPosition = 8;
  EXPECT_EQ(MapRect(graph, 1, -35.5).y, 180);
  graph.RefPosition = 0;
  EXPECT_EQ(MapRect(graph, 1, -35.5).y, 20);
  graph.RefPosition = 1;
  EXPECT_EQ(MapRect(graph, 1, -35.5).y, 40);
}

TEST(MapRect, AValueFarAboveOrBelowRunsAlongTheFrameWithoutWrapping) {
  GraphRecord graph = Plain();
  EXPECT_EQ(MapRect(graph, 1, 40.1).y, 20);
  EXPECT_EQ(MapRect(graph, 1, 1e5).y, 20);
  EXPECT_EQ(MapRect(graph, 1, 1e300).y, 20);
  EXPECT_EQ(MapRect(graph, 1, std::numeric_limits<double>::infinity()).y, 20);
  EXPECT_EQ(MapRect(graph, 1, -40.1).y, 180);
  EXPECT_EQ(MapRect(graph, 1, -1e5).y, 180);
  EXPECT_EQ(MapRect(graph, 1, -1e300).y, 180);
  EXPECT_EQ(MapRect(graph, 1, -std::numeric_limits<double>::infinity()).y, 180);
}

TEST(MapRect, WhatIsNoNumberStandsOnTheBottomEdge) {
  GraphRecord graph = Plain();
  EXPECT_EQ(MapRect(graph, 1, std::numeric_limits<double>::quiet_NaN()).y, 180);
  graph.Reference = std::numeric_limits<double>::infinity();
  EXPECT_EQ(MapRect(graph, 1, std::numeric_limits<double>::infinity()).y, 180);
}

TEST(MapRect, AScaleOfNothingBecomesTheLeastInTheRecord) {
  GraphRecord graph = Plain();
  graph.Scale = UsableScale(0);
  EXPECT_EQ(MapRect(graph, 1, 0).y, 100);
  EXPECT_EQ(graph.Scale, 1e-14f);
  EXPECT_EQ(MapRect(graph, 1, 1e-3).y, 20);
  EXPECT_EQ(UsableScale(-1e-20f), -1e-14f);
  EXPECT_EQ(UsableScale(2e-14f), 2e-14f);
}

TEST(MapRect, ANegativeScaleTurnsTheGraphOver) {
  GraphRecord graph = Plain();
  graph.Scale = -10;
  EXPECT_EQ(MapRect(graph, 1, 10).y, 120);
}

TEST(MapRect, NeverLeavesTheFrameWhateverTheNumbers) {
  std::mt19937_64 random(20250101);
  const auto any = [&] { return std::bit_cast<double>(random()); };
  for (int i = 0; i < 200000; ++i) {
    GraphRecord graph = Plain();
    graph.Scale = UsableScale(std::bit_cast<float>(static_cast<std::uint32_t>(random())));
    graph.Reference = any();
    graph.RefPosition = static_cast<std::int16_t>(random() % 9);
    graph.NumPoints = static_cast<std::int16_t>(random() % 1025);
    const int index = graph.NumPoints < 2
                          ? 1
                          : 1 + static_cast<int>(random() % static_cast<unsigned>(graph.NumPoints));
    const CanvasPoint p = MapRect(graph, index, any());
    ASSERT_GE(p.x, graph.Left);
    ASSERT_LE(p.x, graph.Right);
    ASSERT_GE(p.y, graph.Top);
    ASSERT_LE(p.y, graph.Bottom);
  }
}

TEST(MapRect, AnAreaWithoutSizeIsHarmless) {
  GraphRecord graph;
  EXPECT_EQ(MapRect(graph, 1, 5), (CanvasPoint{0, 0}));
}

TEST(MapSmith, TheUnitCircleIsAsHighAsTheGraphAndStandsInItsMiddle) {
  const GraphRecord graph = Plain();  // centre 200, 100; radius 80
  EXPECT_EQ(MapSmith(graph, 0, 0), (CanvasPoint{200, 100}));
  EXPECT_EQ(MapSmith(graph, 1, 0), (CanvasPoint{280, 100}));
  EXPECT_EQ(MapSmith(graph, -1, 0), (CanvasPoint{120, 100}));
  EXPECT_EQ(MapSmith(graph, 0, 1), (CanvasPoint{200, 20}));
  EXPECT_EQ(MapSmith(graph, 0, -1), (CanvasPoint{200, 180}));
}

TEST(MapSmith, APositiveImaginaryPartPlotsAboveTheRealAxis) {
  EXPECT_LT(MapSmith(Plain(), 0.3, 0.4).y, 100);
}

TEST(MapSmith, OutsideTheCircleAPointSticksToTheRectangleNotToTheCircle) {
  const GraphRecord graph = Plain();
  EXPECT_EQ(MapSmith(graph, 1.2, 0),
            (CanvasPoint{296, 100}));  // beyond the circle, inside the graph
  EXPECT_EQ(MapSmith(graph, 50, -50), (CanvasPoint{300, 180}));
  EXPECT_EQ(MapSmith(graph, -1e200, 1e200), (CanvasPoint{100, 20}));
}

TEST(MapSmith, NeverLeavesTheRectangleWhateverTheNumbers) {
  std::mt19937_64 random(47);
  const GraphRecord graph = Plain();
  for (int i = 0; i < 100000; ++i) {
    const CanvasPoint p =
        MapSmith(graph, std::bit_cast<double>(random()), std::bit_cast<double>(random()));
    ASSERT_TRUE(p.x >= graph.Left && p.x <= graph.Right && p.y >= graph.Top && p.y <= graph.Bottom);
  }
}

TEST(MapSmith, TheCentreIsAWholePixelBeforeAnythingIsAdded) {
  GraphRecord graph = Plain();
  graph.Right = 301;  // the middle lies at 200.5
  const int centre = MapSmith(graph, 0, 0).x;
  for (int k = 1; k <= 40; ++k) {
    // Half a pixel more than whole pixels: rounded away from the centre on both sides.
    const double re = (k + 0.5) / 80;
    EXPECT_EQ(MapSmith(graph, re, 0).x - centre, k + 1) << k;
    EXPECT_EQ(MapSmith(graph, re - 0.25 / 80, 0).x - centre, k) << k;
  }
}

}  // namespace
}  // namespace qk
