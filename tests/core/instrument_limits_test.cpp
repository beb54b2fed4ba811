// SPDX-License-Identifier: MIT
#include "core/instrument_limits.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/session.h"

namespace qk {
namespace {

TEST(InstrumentLimits, AreThoseOfTheInstrument) {
  EXPECT_EQ(kPointCounts, (std::array<std::int16_t, 6>{51, 101, 201, 401, 801, 1024}));
  EXPECT_EQ(kLowestFreq, 3e6);
  EXPECT_EQ(kHighestFreq, 3.08e9);
  EXPECT_EQ(kSmallestStep, 100);
  EXPECT_EQ(kHighestLevelDbm, 0);
  EXPECT_EQ(kLowestLevelDbm, -20);
  EXPECT_EQ(kLeastOhms, 10);
  EXPECT_EQ(kMostOhms, 200);
  EXPECT_EQ(kHighestPowerFreq, 3.072e9);
}

TEST(InstrumentLimits, TheLongestSweepIsTheLastChoice) {
  EXPECT_TRUE(std::is_sorted(kPointCounts.begin(), kPointCounts.end()));
  EXPECT_EQ(kMaxPoints, *std::max_element(kPointCounts.begin(), kPointCounts.end()));
}

TEST(InstrumentLimits, TheSweepOfTheTimeDomainIsInRange) {
  EXPECT_NE(std::find(kPointCounts.begin(), kPointCounts.end(), kTimeDomainPoints),
            kPointCounts.end());
  const PlanGrid grid{kTimeDomainStart, 0, kTimeDomainStep, kTimeDomainPoints};
  EXPECT_GE(grid.Frequency(0), kLowestFreq);
  EXPECT_LE(grid.Frequency(kTimeDomainPoints - 1), kHighestFreq);
}

TEST(InstrumentLimits, TheLevelTableReachesTheHighestFrequencies) {
  const double last = kLevelTableStart + (kLevelColumns - 1) * kLevelTableStep;
  EXPECT_LE(kLevelTableStart, kLowestFreq);
  EXPECT_EQ(last, 2.963e9) << "above it the last column serves";
}

}  // namespace
}  // namespace qk
