// SPDX-License-Identifier: MIT
#include "trace/autoscale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace qk {
namespace {

AutoscaleResult Of(const char* units, double from, double to, int numPoints = 101) {
  auto channel = std::make_unique<ChannelSettings>();
  channel->Units = *Named<Unit>(units);
  channel->Scale = 10;
  channel->Reference = 3;
  for (int i = 1; i <= numPoints; ++i)
    channel->Value[static_cast<std::size_t>(i)] = from + (to - from) * (i - 1) / (numPoints - 1);
  return Autoscale(*channel, numPoints);
}

void Expect(const AutoscaleResult& result, const char* units, double scale, double reference) {
  EXPECT_TRUE(result.Changed);
  EXPECT_EQ(NameOf(result.Units), units);
  EXPECT_DOUBLE_EQ(result.Scale, scale);
  EXPECT_DOUBLE_EQ(result.Reference, reference);
}

TEST(Autoscale, TakesTheSpanOverEightDivisionsWithAMarginAroundTheMiddle) {
  Expect(Of("dB", -60, 20), "dB", 10.5, -20);
}

TEST(Autoscale, LooksAtThePlansPointsOnly) {
  auto channel = std::make_unique<ChannelSettings>();
  for (std::size_t i = 1; i <= 51; ++i) channel->Value[i] = static_cast<double>(i);
  channel->Value[0] = 9999;
  channel->Value[52] = 9999;
  EXPECT_DOUBLE_EQ(Autoscale(*channel, 51).Reference, 26);
}

TEST(Autoscale, LeavesAFlatTraceAlone) {
  const AutoscaleResult result = Of("dB", 5, 5);
  EXPECT_FALSE(result.Changed);
  EXPECT_EQ(result.Units, Unit::Db);
  EXPECT_EQ(result.Scale, 10);
  EXPECT_EQ(result.Reference, 3);
}

AutoscaleResult Rounded(const char* units, double from, double to) {
  auto channel = std::make_unique<ChannelSettings>();
  channel->Units = *Named<Unit>(units);
  channel->Scale = 10;
  for (int i = 1; i <= 101; ++i)
    channel->Value[static_cast<std::size_t>(i)] = from + (to - from) * (i - 1) / 100;
  return RoundedAutoscale(*channel, 101);
}

TEST(RoundedAutoscale, TakesAScaleOfOneTwoFiveThatShowsTheWholeTrace) {
  Expect(Rounded("dB", -60, 20), "dB", 10, -20);
  Expect(Rounded("dB", -61, 20), "dB", 20, -20);  // a division more than eight
  Expect(Rounded("dB", -3.1, -0.2), "dB", 0.5, -1.5);
  Expect(Rounded("deg", -180, 180), "deg", 50, 0);
  Expect(Rounded("U", 0, 0.08), "mU", 10, 40);
}

// Two decimals are shown beside a graph: "0.0 dB/DIV" would say nothing.
TEST(RoundedAutoscale, OfANearlyLevelTraceTakesAScaleThatCanBeShown) {
  Expect(Rounded("dB", 1e-9, 3e-7), "dB", 0.01, 0);
  Expect(Rounded("dB", -3.0101, -3.0099), "dB", 0.01, -3.01);
  Expect(Rounded("U", 0.5, 0.5 + 1e-8), "mU", 0.01, 500);
}

TEST(RoundedAutoscale, ShowsEveryTrace) {
  for (double from = -97.3; from < 100; from += 7.77)
    for (double span = 0.0013; span < 3000; span *= 2.9) {
      const AutoscaleResult result = Rounded("dB", from, from + span);
      const double lowest = result.Reference - 4 * result.Scale;
      const double highest = result.Reference + 4 * result.Scale;
      EXPECT_LE(lowest, from + 1e-9);
      EXPECT_GE(highest, from + span - 1e-9);
      EXPECT_LE(result.Scale, std::max(0.01, 5 * span / 8)) << "not much larger than it has to be";
      const double divisions = result.Reference / result.Scale;
      EXPECT_NEAR(divisions, std::round(divisions), 1e-6) << "a whole number of divisions";
    }
}

TEST(RoundedAutoscale, AFlatTraceKeepsItsScaleAndNoValueIsNoTrace) {
  Expect(Rounded("dB", 23, 23), "dB", 10, 20);
  auto channel = std::make_unique<ChannelSettings>();
  channel->Value.fill(std::nan(""));
  EXPECT_FALSE(RoundedAutoscale(*channel, 101).Changed);
  channel->Value[7] = 40;
  channel->Value[9] = std::numeric_limits<double>::infinity();
  EXPECT_EQ(RoundedAutoscale(*channel, 101).Reference, 40) << "the one that is a number";
}

TEST(NextScale, WalksThroughOneTwoFive) {
  double scale = 0.1;
  for (const double next : {0.2, 0.5, 1.0, 2.0, 5.0, 10.0, 20.0})
    EXPECT_NEAR(scale = NextScale(scale, 1), next, 1e-9);
  for (const double next : {10.0, 5.0, 2.0, 1.0, 0.5, 0.2, 0.1})
    EXPECT_NEAR(scale = NextScale(scale, -1), next, 1e-9);
  EXPECT_DOUBLE_EQ(NextScale(7, 1), 10);
  EXPECT_DOUBLE_EQ(NextScale(7, -1), 5);
  EXPECT_DOUBLE_EQ(NextScale(3, -2), 1);
  EXPECT_DOUBLE_EQ(NextScale(0.45, 1), 0.5);
  EXPECT_LE(NextScale(1, 500), 1e9);
  EXPECT_GE(NextScale(1, -500), 1e-9);
}

TEST(Autoscale, RoundsToTwoDecimals) {
  Expect(Of("dB", 0, 10), "dB", 1.31, 5);  // 1.3125
  Expect(Of("deg", 0.001, 20.013), "deg", 2.63, 10.01);
}

TEST(Autoscale, StepsUToMilliU) {
  Expect(Of("U", 0, 0.08), "mU", 10.5, 40);
}

TEST(Autoscale, StepsNanosecondsToPicosecondsOnce) {
  Expect(Of("ns", 0, 0.08), "ps", 10.5, 40);
  Expect(Of("ns", 0, 0.0008), "ps", 0.11, 0.4);
}

TEST(Autoscale, StepsMicrosecondsToNanosecondsAndWhenStillFineToPicoseconds) {
  Expect(Of("us", 0, 0.08), "ns", 10.5, 40);
  Expect(Of("us", 0, 0.00008), "ps", 10.5, 40);
}

TEST(Autoscale, OfASpanOfAThousandthNanosecondInMicrosecondsEndsInPicoseconds) {
  Expect(Of("us", 0, 1e-6), "ps", 0.13, 0.5);
}

TEST(Autoscale, StepsMilliUToU) {
  Expect(Of("mU", 0, 80000), "U", 10.5, 40);
}

TEST(Autoscale, StepsNanosecondsToMicroseconds) {
  Expect(Of("ns", 0, 80000), "us", 10.5, 40);
}

TEST(Autoscale, StepsPicosecondsToNanosecondsAndWhenStillCoarseToMicroseconds) {
  Expect(Of("ps", 0, 80000), "ns", 10.5, 40);
  Expect(Of("ps", 0, 80e6), "us", 10.5, 40);
}

TEST(Autoscale, UnitsWithoutAFinerOrCoarserStepStay) {
  Expect(Of("dB", 0, 0.4), "dB", 0.05, 0.2);
  Expect(Of("mU", 0, 0.4), "mU", 0.05, 0.2);
  Expect(Of("ps", 0, 0.4), "ps", 0.05, 0.2);
  Expect(Of("deg", 0, 80000), "deg", 10500, 40000);
  Expect(Of("U", 0, 80000), "U", 10500, 40000);
  Expect(Of("us", 0, 80000), "us", 10500, 40000);
}

TEST(Autoscale, NeverGoesBelowAHundredthADivision) {
  Expect(Of("dB", 1, 1.001), "dB", 0.01, 1);
}

TEST(Autoscale, StaysAtTheLimitsOfTheStep) {
  EXPECT_EQ(Of("U", 0, 0.77).Units, Unit::U);        // 0.101
  EXPECT_EQ(Of("mU", 0, 7611).Units, Unit::MilliU);  // 998.9
}

TEST(Autoscale, ChangesTheUnitBelowATenthAndAbove999NotAtThem) {
  // Spans that make a scale of exactly a tenth, and of exactly 999000.
  const AutoscaleResult tenth = Of("U", 0, 0.7619047619047619);
  EXPECT_EQ(tenth.Scale, 0.1);
  EXPECT_EQ(tenth.Units, Unit::U);
  const AutoscaleResult thousands = Of("ps", 100, 7611528.571428571);
  EXPECT_EQ(thousands.Scale, 999);
  EXPECT_EQ(thousands.Units, Unit::Ns);
}

}  // namespace
}  // namespace qk
