// SPDX-License-Identifier: MIT
// Statistics of repeated sweeps, and the sweeps that do not belong to the others.
#include "quality/repeats.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <random>

namespace qk {
namespace {

// Sweeps of one device, each value with Gaussian noise of s (complex) about a line over frequency.
struct Sweeps {
  std::vector<std::unique_ptr<ComplexArray>> All;
  std::vector<const ComplexArray*> Pointers;

  Sweeps(int count, int points, double s, unsigned seed) {
    std::mt19937 random(seed);
    std::normal_distribution<double> noise(0, s / std::sqrt(2.0));
    for (int n = 0; n < count; ++n) {
      auto sweep = std::make_unique<ComplexArray>();
      for (int k = 0; k < points; ++k)
        sweep->Set(k, {0.5 - 0.001 * k + noise(random), 0.1 + noise(random)});
      All.push_back(std::move(sweep));
    }
    for (const auto& sweep : All) Pointers.push_back(sweep.get());
  }
  void Shift(std::size_t which, int points, double by) {
    for (int k = 0; k < points; ++k) {
      const Complex z = (*All[which])[k];
      All[which]->Set(k, {z.re + by, z.im});
    }
  }
};

TEST(PointStatistics, AreTheMeanAndTheSampleCovarianceOfEachPoint) {
  constexpr int kSweeps = 20, kPoints = 51;
  const Sweeps sweeps(kSweeps, kPoints, 0.01, 1);
  PointStatistics statistics;
  for (const auto& sweep : sweeps.All) statistics.Add(*sweep, kPoints);
  EXPECT_EQ(statistics.Sweeps(), kSweeps);
  for (int k = 0; k < kPoints; ++k) {
    double re = 0, im = 0;
    for (const auto& s : sweeps.All) re += (*s)[k].re / kSweeps, im += (*s)[k].im / kSweeps;
    double rr = 0, ii = 0, ri = 0;
    for (const auto& s : sweeps.All) {
      const double a = (*s)[k].re - re, b = (*s)[k].im - im;
      rr += a * a / (kSweeps - 1), ii += b * b / (kSweeps - 1), ri += a * b / (kSweeps - 1);
    }
    EXPECT_NEAR(statistics.Mean(k).re, re, 1e-14);
    EXPECT_NEAR(statistics.Mean(k).im, im, 1e-14);
    const auto c = statistics.CovarianceOf(k);
    EXPECT_NEAR(c.Re, rr, 1e-14);
    EXPECT_NEAR(c.Im, ii, 1e-14);
    EXPECT_NEAR(c.Cross, ri, 1e-14);
    EXPECT_NEAR(statistics.Deviation(k), std::sqrt(rr + ii), 1e-12);
    EXPECT_NEAR(statistics.DeviationOfMean(k), std::sqrt((rr + ii) / kSweeps), 1e-12);
  }
}

TEST(PointStatistics, OfOneSweepHaveNoSpread) {
  const Sweeps sweeps(1, 51, 0.01, 1);
  PointStatistics statistics;
  EXPECT_EQ(statistics.DeviationOfMean(0), 0);
  statistics.Add(*sweeps.All[0], 51);
  EXPECT_EQ(statistics.Deviation(10), 0);
  EXPECT_EQ(statistics.Mean(10).re, (*sweeps.All[0])[10].re);
}

TEST(PointStatistics, OfALargeValueKeepASmallSpread) {
  PointStatistics statistics;
  ComplexArray sweep;
  for (int n = 0; n < 1000; ++n) {
    sweep.Set(0, {1e6 + (n % 2) * 1e-3, 0});
    statistics.Add(sweep, 1);
  }
  EXPECT_NEAR(statistics.Deviation(0), 5e-4, 1e-6);
}

// For each number of points.
struct OutliersOf : testing::TestWithParam<int> {
  static constexpr int kRuns = 200;
  static constexpr double kS = 0.01;
  // Names the sweeps that lie apart in all runs; disturb changes the value of point k of the sweep
  // that is to be named.
  void ExpectFound(const std::function<Complex(int k, Complex z)>& disturb, const char* kind) {
    for (unsigned run = 1; run <= kRuns; ++run) {
      Sweeps sweeps(20, GetParam(), kS, run);
      const std::size_t which = run % 20;
      for (int k = 0; k < GetParam(); ++k)
        sweeps.All[which]->Set(k, disturb(k, (*sweeps.All[which])[k]));
      EXPECT_EQ(JudgeSweeps(sweeps.Pointers, GetParam()).Outliers,
                std::vector{static_cast<int>(which)})
          << kind << " " << run;
    }
  }
};

TEST_P(OutliersOf, CleanRunsAreAtMostThreeIn200) {
  std::size_t white = 0, uneven = 0;
  for (unsigned run = 1; run <= kRuns; ++run) {
    Sweeps sweeps(20, GetParam(), kS, run);
    white += JudgeSweeps(sweeps.Pointers, GetParam()).Outliers.size();
    // A fifth of the points has five times the noise.
    for (const auto& sweep : sweeps.All)
      for (int k = 0; k < GetParam() / 5; ++k) {
        const Complex z = (*sweep)[k];
        sweep->Set(k, {5 * z.re, 5 * z.im});
      }
    uneven += JudgeSweeps(sweeps.Pointers, GetParam()).Outliers.size();
  }
  EXPECT_LE(white, 3u);
  EXPECT_LE(uneven, 3u);
}

TEST_P(OutliersOf, ShiftsBy1_5TimesTheSpreadAreAllFound) {
  constexpr double kShift = 1.5 * kS;
  ExpectFound([](int, Complex z) { return Complex{z.re + kShift, z.im}; }, "constant");
  ExpectFound(
      [](int k, Complex z) {
        return Complex{z.re + kShift * std::cos(0.3 * k), z.im + kShift * std::sin(0.3 * k)};
      },
      "turning");
  const int points = GetParam();
  ExpectFound(
      [points](int k, Complex z) {
        return Complex{z.re + (k < points / 2 ? kShift * std::sqrt(2) : 0), z.im};
      },
      "in half of the span");
}

// A linear drift of three times the spread over the run is no outlier; a step in it is.
TEST_P(OutliersOf, ADriftIsNone) {
  for (unsigned run = 1; run <= 20; ++run) {
    Sweeps sweeps(20, GetParam(), kS, run);
    for (std::size_t n = 0; n < 20; ++n)
      sweeps.Shift(n, GetParam(), 3 * kS * static_cast<double>(n) / 20);
    EXPECT_EQ(JudgeSweeps(sweeps.Pointers, GetParam()).Outliers, std::vector<int>{}) << run;
    sweeps.Shift(7, GetParam(), 10 * kS);
    EXPECT_EQ(JudgeSweeps(sweeps.Pointers, GetParam()).Outliers, std::vector<int>{7}) << run;
  }
}

// The gain of the test set walks at random, at all points together, by a step of its own at each
// sweep: the ends of the walk are seldom named. A sweep that lies apart is still found.
TEST_P(OutliersOf, AWalkOfTheGainIsCalledADriftAndSeldomNamesASweep) {
  for (const double step : {0.3, 1.0}) {
    int named = 0, drifts = 0;
    for (unsigned run = 1; run <= kRuns; ++run) {
      Sweeps sweeps(20, GetParam(), kS, run);
      std::mt19937 random(run + 1000);
      std::normal_distribution<double> walk(0, step * kS);
      double gain = 0;
      for (std::size_t n = 0; n < 20; ++n) sweeps.Shift(n, GetParam(), gain += walk(random));
      named += JudgeSweeps(sweeps.Pointers, GetParam()).Outliers.empty() ? 0 : 1;
      drifts += JudgeSweeps(sweeps.Pointers, GetParam()).Drift ? 1 : 0;
      if (run > 40) continue;
      sweeps.Shift(9, GetParam(), 30 * std::max(1.0, step) * kS);
      const std::vector<int> found = JudgeSweeps(sweeps.Pointers, GetParam()).Outliers;
      EXPECT_TRUE(std::ranges::binary_search(found, 9)) << step;
    }
    EXPECT_LE(named, step >= 1 ? kRuns / 10 : kRuns / 6) << step;
    EXPECT_GE(drifts, step >= 1 ? kRuns / 2 : 0) << step;
  }
}

TEST_P(OutliersOf, ASteadyDriftIsCalledOne) {
  for (unsigned run = 1; run <= kRuns; ++run) {
    Sweeps sweeps(20, GetParam(), kS, run);
    for (std::size_t n = 0; n < 20; ++n)
      sweeps.Shift(n, GetParam(), 8 * kS * static_cast<double>(n) / 20);
    EXPECT_TRUE(JudgeSweeps(sweeps.Pointers, GetParam()).Drift) << run;
    EXPECT_EQ(JudgeSweeps(sweeps.Pointers, GetParam()).Outliers, std::vector<int>{}) << run;
  }
}

TEST_P(OutliersOf, CleanRunsAreNoDriftNorAreOutliersInThem) {
  int drifts = 0;
  for (const std::size_t count : {8u, 20u, 50u})
    for (unsigned run = 1; run <= kRuns; ++run) {
      Sweeps sweeps(static_cast<int>(count), GetParam(), kS, run);
      std::mt19937 random(run + 2000);
      std::normal_distribution<double> jump(0, 3 * kS);  // all points together, each sweep anew
      for (std::size_t n = 0; n < count; ++n) sweeps.Shift(n, GetParam(), jump(random));
      drifts += JudgeSweeps(sweeps.Pointers, GetParam()).Drift ? 1 : 0;
    }
  EXPECT_LE(drifts, 3);
}

INSTANTIATE_TEST_SUITE_P(Points, OutliersOf, testing::Values(51, 101, 201, 401, 1024),
                         [](const auto& points) { return std::to_string(points.param); });

TEST(OutlierSweeps, NeedFiveSweeps) {
  Sweeps sweeps(4, 51, 0.001, 1);
  sweeps.Shift(2, 51, 1);
  EXPECT_TRUE(JudgeSweeps(sweeps.Pointers, 51).Outliers.empty());
  Sweeps enough(5, 51, 0.001, 1);
  enough.Shift(2, 51, 1);
  EXPECT_EQ(JudgeSweeps(enough.Pointers, 51).Outliers, std::vector<int>{2});
}

}  // namespace
}  // namespace qk
