// SPDX-License-Identifier: MIT
// Statistics of repeated sweeps, and the sweeps that do not belong to the others.
#include "quality/repeats.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
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

TEST(OutlierSweeps, AreHardlyEverFoundInCleanRunsOf20Sweeps) {
  constexpr int kPoints = 201;
  int alarms = 0;
  for (unsigned run = 1; run <= 200; ++run)
    alarms +=
        static_cast<int>(OutlierSweeps(Sweeps(20, kPoints, 0.01, run).Pointers, kPoints).size());
  EXPECT_LE(alarms, 3);
}

TEST(OutlierSweeps, AreFoundWhenOneIsShiftedBy1_5TimesTheSpread) {
  constexpr int kPoints = 201;
  for (unsigned run = 1; run <= 200; ++run) {
    Sweeps sweeps(20, kPoints, 0.01, run);
    const std::size_t which = run % 20;
    sweeps.Shift(which, kPoints, 0.015);
    const std::vector<int> found = OutlierSweeps(sweeps.Pointers, kPoints);
    EXPECT_TRUE(std::ranges::find(found, static_cast<int>(which)) != found.end()) << run;
    EXPECT_LE(found.size(), 2u) << run;
  }
}

TEST(OutlierSweeps, NeedFiveSweeps) {
  Sweeps sweeps(4, 51, 0.001, 1);
  sweeps.Shift(2, 51, 1);
  EXPECT_TRUE(OutlierSweeps(sweeps.Pointers, 51).empty());
  Sweeps enough(5, 51, 0.001, 1);
  enough.Shift(2, 51, 1);
  EXPECT_EQ(OutlierSweeps(enough.Pointers, 51), std::vector<int>{2});
}

}  // namespace
}  // namespace qk
