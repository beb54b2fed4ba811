// SPDX-License-Identifier: MIT
// Natural cubic splines: against the properties that define one, and in their settled oddities.
#include "numeric/spline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>
#include <vector>

namespace qk {
namespace {

struct Table {
  std::vector<double> x, y, y2;
  bool error = false;

  void Prepare() {
    y2.assign(x.size(), -1);
    spline2(x, y, y2);
  }
  double At(double at) { return splint2(x, y, y2, at, error); }
};

Table Sine(int n) {
  Table t;
  for (int i = 0; i < n; ++i) {
    t.x.push_back(i * 0.1);
    t.y.push_back(std::sin(i * 0.1));
  }
  t.Prepare();
  return t;
}

TEST(Spline, OfTwoPairsIsAStraightLine) {
  CSplineObject spline;
  spline.XYAdd(1, 10);
  spline.XYAdd(3, 20);
  spline.DoCoeffs();
  EXPECT_DOUBLE_EQ(spline.GetY(1), 10);
  EXPECT_DOUBLE_EQ(spline.GetY(2), 15);
  EXPECT_DOUBLE_EQ(spline.GetY(3), 20);
  EXPECT_DOUBLE_EQ(spline.GetY(5), 30);  // the end piece goes on
  EXPECT_DOUBLE_EQ(spline.GetY(-1), 0);
}

TEST(Spline, PassesThroughItsKnots) {
  Table t = Sine(40);
  for (std::size_t i = 0; i < t.x.size(); ++i) EXPECT_NEAR(t.At(t.x[i]), t.y[i], 1e-15);
}

TEST(Spline, HasNoCurvatureAtItsEnds) {
  const Table t = Sine(40);
  EXPECT_EQ(t.y2.front(), 0);
  EXPECT_EQ(t.y2.back(), 0);
}

TEST(Spline, FollowsASmoothFunctionBetweenTheKnots) {
  Table t = Sine(64);
  for (double at = 0.5; at < 5.5; at += 0.013) EXPECT_NEAR(t.At(at), std::sin(at), 1e-6);
}

// Slope and curvature continuous at every inner knot: this is what makes it the cubic spline.
TEST(Spline, HasContinuousSlopeAndCurvature) {
  std::mt19937_64 random(3);
  std::uniform_real_distribution<double> step(0.5, 2), value(-1, 1);
  Table t;
  for (double x = 0; x < 30; x += step(random)) {
    t.x.push_back(x);
    t.y.push_back(value(random));
  }
  t.Prepare();
  for (std::size_t i = 1; i + 1 < t.x.size(); ++i) {
    const double h1 = t.x[i] - t.x[i - 1], h2 = t.x[i + 1] - t.x[i];
    const double left = (t.y[i] - t.y[i - 1]) / h1 + h1 / 6 * (t.y2[i - 1] + 2 * t.y2[i]);
    const double right = (t.y[i + 1] - t.y[i]) / h2 - h2 / 6 * (2 * t.y2[i] + t.y2[i + 1]);
    EXPECT_NEAR(left, right, 1e-12) << i;
  }
}

TEST(Spline, ContinuesItsEndCubicsOutsideTheTable) {
  Table t = Sine(10);
  const double inside = t.At(t.x[9] - 0.01), outside = t.At(t.x[9] + 0.01);
  EXPECT_NEAR(inside + outside, 2 * t.y[9], 1e-5);  // no curvature at the end: odd about it
  EXPECT_FALSE(t.error);
}

TEST(Spline, FindsTheBracketOfEveryArgumentWhateverTheTablesLength) {
  for (int n = 2; n < 70; ++n) {
    Table t;
    for (int i = 0; i < n; ++i) {
      t.x.push_back(i);
      t.y.push_back(3 * i + 1);
    }
    t.Prepare();
    for (double at = 0; at <= n - 1; at += 0.25) EXPECT_NEAR(t.At(at), 3 * at + 1, 1e-12) << n;
  }
}

TEST(Spline, OfThreeKnotsHasTheTextbookCurvature) {
  Table t{{0, 1, 3}, {0, 1, 0}, {}};
  t.Prepare();
  // 2 (h1 + h2) y2 = 6 (slope2 - slope1) = 6 (-1/2 - 1)
  EXPECT_DOUBLE_EQ(t.y2[1], -9.0 / 6.0);
}

TEST(Spline, OfTheTimeDomainIsMadeOnItsFirst2027KnotsAndReadOnAll) {
  auto t = std::make_unique<Table>();
  for (int i = 0; i < kMaxKnots; ++i) {
    t->x.push_back(i);
    t->y.push_back(std::sin(i * 0.3));
  }
  t->y2.assign(t->x.size(), 0);
  spline2({t->x.data(), 2027}, {t->y.data(), 2027}, {t->y2.data(), 2027});
  EXPECT_NEAR(t->At(1000.5), std::sin(300.15), 1e-4);
  EXPECT_DOUBLE_EQ(t->At(2040.5), (t->y[2040] + t->y[2041]) / 2);  // linear in the tail
}

TEST(Spline, ReportsADataErrorWhereTheBracketHasNoLength) {
  Table t{{1, 2, 3, 3}, {5, 6, 7, 9}, {}};
  t.Prepare();
  EXPECT_TRUE(std::isfinite(t.At(2.5)));
  EXPECT_FALSE(t.error);  // the equal values are not met
  EXPECT_EQ(t.At(3), 9);
  EXPECT_TRUE(t.error);
}

TEST(Spline, OfASingleKnotIsADataErrorAndItsValue) {
  Table t{{4}, {7}, {}};
  t.Prepare();
  EXPECT_EQ(t.At(5), 7);
  EXPECT_TRUE(t.error);
}

TEST(Spline, ObjectKeepsTheDataErrorUntilInit) {
  CSplineObject spline;
  for (const double x : {1.0, 2.0, 2.0}) spline.XYAdd(x, x);
  spline.DoCoeffs();
  EXPECT_FALSE(spline.DataError());
  EXPECT_EQ(spline.GetY(4), 2);
  EXPECT_TRUE(spline.DataError());
  spline.init();
  EXPECT_FALSE(spline.DataError());
}

TEST(Spline, StaysFiniteOnAnyTable) {
  std::mt19937_64 random(5);
  std::uniform_int_distribution<int> size(2, 30), x(-4, 4), y(-9, 9);
  for (int round = 0; round < 3000; ++round) {
    CSplineObject spline;
    const int n = size(random);
    for (int i = 0; i < n; ++i) spline.XYAdd(x(random), y(random));  // unsorted, many equal
    spline.DoCoeffs();
    for (int i = -6; i < 6; ++i) ASSERT_TRUE(std::isfinite(spline.GetY(i + 0.3))) << round;
  }
}

TEST(Spline, OfFewerThanTwoPairsIsZero) {
  CSplineObject spline;
  spline.DoCoeffs();
  EXPECT_EQ(spline.GetY(1), 0);
  spline.XYAdd(1, 10);
  spline.DoCoeffs();
  EXPECT_EQ(spline.GetY(1), 0);
}

TEST(Spline, IsNotReadyUntilDoCoeffsAndAgainAfterAnotherPair) {
  CSplineObject spline;
  spline.XYAdd(0, 1);
  spline.XYAdd(1, 2);
  EXPECT_EQ(spline.GetY(0), 0);
  spline.DoCoeffs();
  EXPECT_EQ(spline.GetY(0), 1);
  spline.XYAdd(2, 3);
  EXPECT_EQ(spline.GetY(0), 0);
  spline.DoCoeffs();
  EXPECT_EQ(spline.GetY(2), 3);
}

TEST(Spline, TakesItsPairsThrough32Bits) {
  CSplineObject spline;
  spline.XYAdd(0, 0.1);
  spline.XYAdd(1, 0.1);
  spline.DoCoeffs();
  EXPECT_EQ(spline.GetY(0), static_cast<double>(0.1f));
}

TEST(Spline, Holds1024PairsAndLeavesOutFurtherOnes) {
  auto spline = std::make_unique<CSplineObject>();
  for (int i = 0; i < 1100; ++i) spline->XYAdd(i, i < 1024 ? 2 * i : 0);
  spline->DoCoeffs();
  EXPECT_NEAR(spline->GetY(1023), 2046, 1e-9);
  EXPECT_NEAR(spline->GetY(1050), 2100, 1e-6);  // the end piece goes on
}

TEST(Spline, InitForgetsAllPairs) {
  CSplineObject spline;
  spline.XYAdd(0, 1);
  spline.XYAdd(1, 2);
  spline.DoCoeffs();
  spline.init();
  EXPECT_EQ(spline.GetY(0), 0);
  spline.DoCoeffs();
  EXPECT_EQ(spline.GetY(0), 0);
}

TEST(Spline, Holds1024PairsAndNotOneLess) {
  const auto spline = std::make_unique<CSplineObject>();
  for (int i = 0; i < 1024; ++i) spline->XYAdd(i, i == 1023 ? 7 : 0);
  spline->DoCoeffs();
  EXPECT_DOUBLE_EQ(spline->GetY(1023), 7);
  spline->init();
  for (int i = 0; i < 1025; ++i) spline->XYAdd(i, i == 1024 ? 7 : 0);
  spline->DoCoeffs();
  EXPECT_DOUBLE_EQ(spline->GetY(1024), 0);
}

}  // namespace
}  // namespace qk
