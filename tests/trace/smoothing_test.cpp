// SPDX-License-Identifier: MIT
#include "trace/smoothing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "plot_record.h"

namespace qk {
namespace {

using test::PlotRecord;

TEST(SmoothingAperture, IsThePercentageOfThePointsMadeOddAbove3) {
  EXPECT_EQ(SmoothingAperture(1, 101), 1);
  EXPECT_EQ(SmoothingAperture(2, 101), 2);
  EXPECT_EQ(SmoothingAperture(3, 101), 3);
  EXPECT_EQ(SmoothingAperture(4, 101), 3);  // 4 and then 3
  EXPECT_EQ(SmoothingAperture(5, 101), 5);
  EXPECT_EQ(SmoothingAperture(6, 101), 5);  // 6 and then 5
  EXPECT_EQ(SmoothingAperture(10, 1024), 101);
  EXPECT_EQ(SmoothingAperture(1, 51), 1);  // never below one point
}

TEST(SmoothingWeight, OfFivePointsIsAFlatTopOfThreeBetweenEdgesOfAFifth) {
  const double weights[] = {0.2, 1, 1, 1, 0.2};
  for (int p = 0; p < 5; ++p) EXPECT_DOUBLE_EQ(SmoothingWeight(p, 5), weights[p]) << p;
}

TEST(SmoothingWeight, OfSevenPointsRisesInHalves) {
  const double weights[] = {0.2, 0.6, 1, 1, 1, 0.6, 0.2};
  for (int p = 0; p < 7; ++p) EXPECT_DOUBLE_EQ(SmoothingWeight(p, 7), weights[p]) << p;
}

TEST(SmoothingWeight, UpToThreePointsIsAPlainBox) {
  for (int aperture = 1; aperture <= 3; ++aperture)
    for (int p = 0; p < aperture; ++p) EXPECT_EQ(SmoothingWeight(p, aperture), 1);
}

class Smoothing : public testing::Test {
 protected:
  Smoothing() { session->Plan.NumPoints = 101; }
  void Sweep(int percent) {
    session->Averaging.SmoothingPercent = static_cast<std::int16_t>(percent);
    for (int i = 1; i <= session->Plan.NumPoints; ++i) SmoothPoint(*session, sink, 2, i);
  }

  std::unique_ptr<Session> session = MakeSession();
  ChannelSettings& channel = session->Channel(2);
  PlotRecord sink;
};

TEST_F(Smoothing, OfOnePointLeavesTheTraceUnchanged) {
  for (std::size_t i = 1; i <= 101; ++i) channel.Value[i] = static_cast<double>(i * i);
  Sweep(1);
  ASSERT_EQ(sink.Points.size(), 101u);
  for (int i = 1; i <= 101; ++i) {
    EXPECT_EQ(sink.Points[static_cast<std::size_t>(i - 1)].Point, i);
    EXPECT_EQ(sink.Shown(i), i * i);
  }
}

TEST_F(Smoothing, NothingIsPlottedBeforeTheWindowIsFull) {
  session->Averaging.SmoothingPercent = 5;
  for (int i = 1; i <= 4; ++i) SmoothPoint(*session, sink, 2, i);
  EXPECT_TRUE(sink.Points.empty());
  SmoothPoint(*session, sink, 2, 5);
  EXPECT_EQ(sink.PointNumbers(), (std::vector<int>{3, 1, 2}));
  SmoothPoint(*session, sink, 2, 6);
  EXPECT_EQ(sink.PointNumbers(), (std::vector<int>{3, 1, 2, 4}));
}

TEST_F(Smoothing, IsTheWeightedMeanOfTheWindow) {
  const double values[] = {0, 1, 2, 4, 8, 16};  // from 1
  for (std::size_t i = 1; i <= 5; ++i) {
    channel.Value[i] = values[i];
    channel.Value2[i] = -values[i];
  }
  session->Averaging.SmoothingPercent = 5;
  SmoothPoint(*session, sink, 2, 5);
  const double mean = (0.2 * 1 + 2 + 4 + 8 + 0.2 * 16) / 3.4;
  EXPECT_NEAR(sink.Shown(3), mean, 1e-6);
  EXPECT_EQ(channel.SmoothValue[3], static_cast<float>(sink.Shown(3)));
  EXPECT_EQ(channel.SmoothValue2[3], -channel.SmoothValue[3]);
  EXPECT_EQ(sink.Points[0].Value2, -sink.Points[0].Value);
}

TEST_F(Smoothing, BothEndsAreFlat) {
  for (std::size_t i = 1; i <= 101; ++i) channel.Value[i] = static_cast<double>(i);
  Sweep(5);
  for (int i = 1; i <= 3; ++i) EXPECT_NEAR(sink.Shown(i), 3, 1e-5) << i;
  EXPECT_NEAR(sink.Shown(50), 50, 1e-5);
  for (int i = 99; i <= 101; ++i) EXPECT_NEAR(sink.Shown(i), 99, 1e-5) << i;
}

TEST_F(Smoothing, TwoPointsLagByOneAndFillTheLast) {
  for (std::size_t i = 1; i <= 101; ++i) channel.Value[i] = static_cast<double>(i);
  Sweep(2);
  EXPECT_NEAR(sink.Shown(1), 1.5, 1e-6);
  EXPECT_NEAR(sink.Shown(100), 100.5, 1e-5);
  EXPECT_NEAR(sink.Shown(101), 100.5, 1e-5);
}

TEST_F(Smoothing, EveryPointIsPlottedAndStaysWithinTheTracesExtremes) {
  std::mt19937 random(47);
  std::uniform_real_distribution<double> value(-80, 20);
  for (const int numPoints : {51, 101, 201, 401, 801, 1024})
    for (int percent = 1; percent <= 10; ++percent) {
      session->Plan.NumPoints = static_cast<std::int16_t>(numPoints);
      for (double& v : channel.Value) v = value(random);
      sink.Points.clear();
      Sweep(percent);
      std::vector<bool> plotted(static_cast<std::size_t>(numPoints) + 1);
      for (const test::Plotted& p : sink.Points) {
        ASSERT_GE(p.Point, 1);
        ASSERT_LE(p.Point, numPoints);
        plotted[static_cast<std::size_t>(p.Point)] = true;
        EXPECT_GE(p.Value, -80.001);
        EXPECT_LE(p.Value, 20.001);
      }
      EXPECT_EQ(std::count(plotted.begin(), plotted.end(), true), numPoints);
    }
}

// The weights are added up in 32 bits: a flat trace of 1 is not 1 everywhere.
TEST_F(Smoothing, DividesByASumOfWeightsThatHas32Bits) {
  session->Plan.NumPoints = 801;
  channel.Value.fill(1);
  session->Averaging.SmoothingPercent = 7;
  SmoothPoint(*session, sink, 2, 55);
  EXPECT_EQ(channel.SmoothValue[28], 0.99999994f);
  session->Averaging.SmoothingPercent = 8;
  SmoothPoint(*session, sink, 2, 63);
  EXPECT_EQ(channel.SmoothValue[32], 1.00000012f);
}

}  // namespace
}  // namespace qk
