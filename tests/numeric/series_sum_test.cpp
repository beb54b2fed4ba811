// SPDX-License-Identifier: MIT
#include "numeric/series_sum.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <memory>
#include <random>

namespace qk {
namespace {

struct Series {
  std::array<double, kSeriesTerms> a{}, b{};
  std::array<double, kSeriesSums> sum{};
};

// The largest difference from the sum term by term, relative to the largest value.
double Error(Series& series, double turn) {
  SumSeries(series.a, series.b, turn, series.sum);
  double worst = 0, largest = 0;
  for (std::size_t n = 0; n < kSeriesSums; ++n) {
    double direct = 0;
    for (std::size_t k = 0; k < kSeriesTerms; ++k) {
      const double angle = static_cast<double>(k) * turn * static_cast<double>(n) / kSeriesSums;
      direct += std::cos(angle) * series.a[k];
      direct += std::sin(angle) * series.b[k];
    }
    worst = std::max(worst, std::fabs(direct - series.sum[n]));
    largest = std::max(largest, std::fabs(direct));
  }
  return worst / largest;
}

TEST(SumSeries, AgreesWithTheSumTermByTermOnRandomSeries) {
  auto series = std::make_unique<Series>();
  std::mt19937 random(1);
  std::uniform_real_distribution<double> part(-1, 1);
  for (double& a : series->a) a = part(random);
  for (double& b : series->b) b = part(random);
  EXPECT_LT(Error(*series, 6.2831853), 1e-11);
}

TEST(SumSeries, AgreesOnAConstantSeriesAndOnEverySingleEdgeLine) {
  auto series = std::make_unique<Series>();
  series->a.fill(1);
  EXPECT_LT(Error(*series, 6.2831853), 1e-11);
  for (const std::size_t k : {0u, 1u, 2u, 511u, 1023u, 1024u}) {
    *series = Series();
    series->a[k] = 1;
    EXPECT_LT(Error(*series, 6.2831853), 1e-11) << k;
  }
}

TEST(SumSeries, FollowsTheTurnThatIsNotTwoPi) {
  auto series = std::make_unique<Series>();
  series->b[1024] = 1;  // vanishes at two pi, and not at the shorter turn
  SumSeries(series->a, series->b, 6.2831853, series->sum);
  EXPECT_NEAR(series->sum[2047], std::sin(1024 * 6.2831853 * 2047 / 2048), 2e-12);
  EXPECT_GT(std::fabs(series->sum[2047]), 1e-6);
}

}  // namespace
}  // namespace qk
