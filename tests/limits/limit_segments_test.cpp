// SPDX-License-Identifier: MIT
// Limit segments: from what is typed to the points, and back.
#include "limits/limit_segments.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>

#include "core/text.h"
#include "limits/limits_fixture.h"

namespace qk {
namespace {

using test::Limits;

// ---- segments ----------------------------------------------------------------------------------

TEST_F(Limits, ASegmentCoversItsPointsAndNoOthers) {
  Segment(1, 1) = {"10", "20", "5", "-5.5"};
  EXPECT_EQ(Apply(), "");
  EXPECT_EQ(Upper(7), 1000);
  EXPECT_EQ(Upper(8), 5);  // 10 MHz
  EXPECT_EQ(Lower(18), -5.5f);
  EXPECT_EQ(Lower(19), -1000);
  EXPECT_TRUE(session->Limits.Of(1).Applied);
  EXPECT_FALSE(session->Limits.Of(2).Applied);
}

TEST_F(Limits, FrequenciesMoveDownToTheirPointInTheFieldsToo) {
  Segment(1, 1) = {"10.9999", "20.5", "5", "-5"};
  EXPECT_EQ(Apply(), "");
  EXPECT_EQ(Segment(1, 1).Start, "10.0000");
  EXPECT_EQ(Segment(1, 1).Stop, "20.0000");
  EXPECT_EQ(Upper(8), 5);
  EXPECT_EQ(Upper(18), 5);
}

TEST_F(Limits, ASegmentWithoutAStopIsSkipped) {
  Segment(1, 1) = {"10", "", "", ""};
  Segment(1, 2) = {"30", "30", "1", "0"};
  EXPECT_EQ(Apply(), "");
  EXPECT_EQ(Upper(8), 1000);
  EXPECT_EQ(Upper(28), 1);
  EXPECT_EQ(Upper(29), 1000);
}

TEST_F(Limits, OfOverlappingSegmentsTheLaterStands) {
  Segment(1, 1) = {"10", "20", "5", "-5"};
  Segment(1, 4) = {"15", "30", "7", "-7"};
  EXPECT_EQ(Apply(), "");
  EXPECT_EQ(Upper(12), 5);
  EXPECT_EQ(Upper(13), 7);
  EXPECT_EQ(Upper(28), 7);
}

TEST_F(Limits, ApplyTakesAllFormerLimitsOff) {
  Segment(1, 1) = {"10", "20", "5", "-5"};
  EXPECT_EQ(Apply(), "");
  Channel(1).LimitsOn = true;
  Segment(1, 1) = {};
  EXPECT_EQ(Apply(), "");
  EXPECT_EQ(Upper(8), 1000);
  EXPECT_FALSE(Channel(1).LimitsOn);
  EXPECT_FALSE(session->Limits.Of(1).Applied);
}

TEST_F(Limits, EveryRefusalHasItsMessageInItsOrder) {
  const struct {
    LimitSegment Typed;
    const char* Message;
  } cases[] = {
      {{"-1", "20", "5", "-5"}, "Seg 3: Stop Freq must be > Start Freq"},
      {{"20.1", "20", "5", "-5"}, "Seg 3: Stop Freq must be > Start Freq"},
      {{"2.9", "20", "5", "-5"}, "Seg 3: Invalid Start Freq"},
      {{"", "20", "5", "-5"}, "Seg 3: Invalid Start Freq"},
      {{"104", "105", "5", "-5"}, "Seg 3: Invalid Start Freq"},
      {{"10", "103.1", "5", "-5"}, "Seg 3: Invalid StopFreq"},
      {{"10", "20", "", "-5"}, "Seg 3: Invalid Limit Value(s)"},
      {{"10", "20", "5", ""}, "Seg 3: Invalid Limit Value(s)"},
      {{"10", "20", "5", "5"}, "Seg 3: Invalid Seg1 Limit Values(s)"},
      {{"10", "20", "5", "6"}, "Seg 3: Invalid Seg1 Limit Values(s)"},
  };
  for (const auto& c : cases) {
    Segment(1, 3) = c.Typed;
    EXPECT_EQ(Apply(), c.Message);
  }
}

TEST_F(Limits, OfAQualityFactorTakeNoPrefix) {
  session->Channel(1).GraphType = GraphType::Quality;
  session->Channel(1).Units = Unit::U;
  for (const char* wrong : {"200 mU", "5 k", "2 ohm", "x"}) {
    Segment(1, 3) = {"10", "20", wrong, "-5"};
    EXPECT_EQ(Apply(), "Seg 3: Invalid Limit Value(s)") << wrong;
    Segment(1, 3) = {"10", "20", "500", wrong};
    EXPECT_EQ(Apply(), "Seg 3: Invalid Limit Value(s)") << wrong;
  }
  Segment(1, 3) = {"10", "20", "5 U", "-5"};
  EXPECT_EQ(Apply(), "");
}

TEST_F(Limits, OfAGraphInDecibelsTakeANumberAndItsUnitAndNothingElse) {
  for (const char* wrong : {"abc", "5 ohm", "5x", "-", "3 4", "1,5"}) {
    Segment(1, 3) = {"10", "20", wrong, "-5"};
    EXPECT_EQ(Apply(), "Seg 3: Invalid Limit Value(s)") << wrong;
    Segment(1, 3) = {"10", "20", "5", wrong};
    EXPECT_EQ(Apply(), "Seg 3: Invalid Limit Value(s)") << wrong;
    EXPECT_EQ(Upper(10), 1000) << wrong;
  }
  Segment(1, 3) = {"10", "20", " 5 dB", "-.5e1"};
  EXPECT_EQ(Apply(), "");
  EXPECT_EQ(Upper(10), 5);
}

TEST_F(Limits, AStartEqualToItsStopIsOnePoint) {
  Segment(1, 1) = {"20", "20", "5", "-5"};
  EXPECT_EQ(Apply(), "");
  EXPECT_EQ(Upper(17), 1000);
  EXPECT_EQ(Upper(18), 5);
  EXPECT_EQ(Upper(19), 1000);
}

TEST_F(Limits, FieldsAreRewrittenBeforeTheLimitValuesAreTested) {
  Segment(1, 1) = {"10.4", "20.6", "", ""};
  EXPECT_EQ(Apply(), "Seg 1: Invalid Limit Value(s)");
  EXPECT_EQ(Segment(1, 1).Start, "10.0000");
  EXPECT_EQ(Segment(1, 1).Stop, "20.0000");
}

TEST_F(Limits, TheFirstMessageEndsItAndEarlierSegmentsStand) {
  Segment(1, 1) = {"10", "20", "5", "-5"};
  Segment(1, 2) = {"30", "20", "5", "-5"};
  Segment(1, 3) = {"40", "50", "5", "-5"};
  EXPECT_EQ(Apply(), "Seg 2: Stop Freq must be > Start Freq");
  EXPECT_EQ(Upper(8), 5);
  EXPECT_EQ(Upper(38), 1000);
  EXPECT_TRUE(session->Limits.Of(1).Applied);
}

TEST_F(Limits, EveryGridFrequencyTypedIsItsOwnPointOnAnyPlan) {
  std::mt19937 random(11);
  for (int run = 0; run < 300; ++run) {
    const int counts[] = {51, 101, 201, 401, 801, 1024};
    PlanGrid& plan = session->Plan;
    plan.NumPoints = static_cast<std::int16_t>(counts[random() % 6]);
    const auto widest = static_cast<unsigned>(3.07e9 / 100 / plan.NumPoints);
    plan.StepFreq = 100.0 * (run % 3 == 0 ? 1 : static_cast<unsigned>(1 + random() % widest));
    const double span = plan.StepFreq * (plan.NumPoints - 1);
    const auto room = static_cast<unsigned>((3.08e9 - 3e6 - span) / 100);
    plan.StartFreq = 3e6 + 100.0 * static_cast<unsigned>(random() % (room + 1));
    plan.StopFreq = plan.StartFreq + span;
    for (const int point : {1, 2, plan.NumPoints / 2, plan.NumPoints - 1, int{plan.NumPoints}}) {
      const std::string text = FormatNumber(plan.Frequency(point - 1) / 1e6, "###0.0000");
      Segment(1, 1) = {text, text, "5", "-5"};
      ASSERT_EQ(Apply(), "") << text;
      ASSERT_EQ(Segment(1, 1).Start, text);
      for (int i = 1; i <= plan.NumPoints; ++i) ASSERT_EQ(Upper(i) == 5, i == point) << text;
    }
  }
}

// ---- rebuilding --------------------------------------------------------------------------------

TEST_F(Limits, SegmentsComeBackFromTheLimits) {
  Segment(1, 1) = {"10.0000", "20.0000", "5", "-5"};
  Segment(1, 2) = {"25.0000", "30.0000", "7.25", "-1000"};
  Segment(1, 3) = {"31.0000", "31.0000", "1000", "-60"};
  EXPECT_EQ(Apply(), "");
  const auto typed = session->Limits.Of(1).Segments;
  session->Limits.Of(1).Segments.fill({"1", "2", "3", "4"});
  session->Limits.Of(1).Applied = false;
  RebuildSegments(*session, host);
  for (std::size_t s = 0; s < 6; ++s) {
    const LimitSegment& rebuilt = session->Limits.Of(1).Segments[s];
    EXPECT_EQ(rebuilt.Start, typed[s].Start);
    EXPECT_EQ(rebuilt.Stop, typed[s].Stop);
    EXPECT_EQ(rebuilt.Upper, typed[s].Upper);
    EXPECT_EQ(rebuilt.Lower, typed[s].Lower);
  }
  EXPECT_TRUE(session->Limits.Of(1).Applied);
  EXPECT_FALSE(session->Limits.Of(2).Applied);
}

TEST_F(Limits, APairOf1000AndMinus1000VanishesOnRebuild) {
  Segment(1, 1) = {"10", "20", "1000", "-1000"};
  EXPECT_EQ(Apply(), "");
  RebuildSegments(*session, host);
  EXPECT_EQ(Segment(1, 1).Stop, "");
  EXPECT_EQ(Segment(1, 1).Upper, "1000");
}

TEST_F(Limits, AGapBetweenEqualLimitsOpensASegment) {
  Segment(1, 1) = {"10", "12", "5", "-5"};
  Segment(1, 2) = {"15", "20", "7", "-7"};
  Segment(1, 3) = {"22", "30", "5", "-5"};
  EXPECT_EQ(Apply(), "");
  const auto upper = Channel(1).UpperLimit;
  RebuildSegments(*session, host);
  EXPECT_EQ(Segment(1, 1).Start, "10.0000");
  EXPECT_EQ(Segment(1, 1).Stop, "12.0000");
  EXPECT_EQ(Segment(1, 2).Start, "15.0000");
  EXPECT_EQ(Segment(1, 3).Start, "22.0000");
  EXPECT_EQ(Segment(1, 3).Stop, "30.0000");
  EXPECT_EQ(Segment(1, 4).Stop, "");
  EXPECT_EQ(Apply(), "");
  EXPECT_EQ(Channel(1).UpperLimit, upper);
}

TEST_F(Limits, ASegmentInsideAnotherComesBackAsThreeThatEndWhereTheirRunEnds) {
  Segment(1, 1) = {"10", "40", "5", "-5"};
  Segment(1, 2) = {"20", "30", "7", "-7"};
  EXPECT_EQ(Apply(), "");
  RebuildSegments(*session, host);
  EXPECT_EQ(Segment(1, 1).Stop, "19.0000");
  EXPECT_EQ(Segment(1, 2).Start, "20.0000");
  EXPECT_EQ(Segment(1, 2).Stop, "30.0000");
  EXPECT_EQ(Segment(1, 3).Start, "31.0000");
  EXPECT_EQ(Segment(1, 3).Stop, "40.0000");
}

// One wide segment with five inside it has eleven runs: more than there are segments.
TEST_F(Limits, RunsInsideAWiderOneAreSegmentsOverItWhereThereAreTooMany) {
  Segment(1, 1) = {"10", "90", "5", "-5"};
  for (int s = 2; s <= 6; ++s)
    Segment(1, s) = {std::to_string(10 * s), std::to_string(10 * s + 5), std::to_string(s), "-7"};
  EXPECT_EQ(Apply(), "");
  const auto upper = Channel(1).UpperLimit;
  RebuildSegments(*session, host);
  EXPECT_EQ(Segment(1, 1).Stop, "90.0000");
  EXPECT_EQ(Apply(), "");
  EXPECT_EQ(Channel(1).UpperLimit, upper);
}

TEST_F(Limits, WhateverWasTypedComesBackToTheSameLimits) {
  std::mt19937 random(5);
  const auto below = [&random](unsigned n) { return static_cast<int>(random() % n); };
  int crowded = 0;
  for (int run = 0; run < 5000; ++run) {
    session->Limits.Of(1).Segments.fill({});
    for (int s = 1; s <= 6; ++s) {
      const int start = 3 + below(90), kind = below(4);
      Segment(1, s) = {std::to_string(start), std::to_string(std::min(103, start + below(60))),
                       kind == 0 ? "1000" : std::to_string(kind), kind == 0 ? "-1000" : "-3"};
    }
    ASSERT_EQ(Apply(), "");
    const auto upper = Channel(1).UpperLimit, lower = Channel(1).LowerLimit;
    RebuildSegments(*session, host);
    for (int i = 2; i <= 101; ++i) crowded += Upper(i) != Upper(i - 1);
    EXPECT_EQ(Apply(), "");
    ASSERT_EQ(Channel(1).UpperLimit, upper) << "run " << run;
    ASSERT_EQ(Channel(1).LowerLimit, lower) << "run " << run;
  }
  EXPECT_GT(crowded, 15000);
}

// Two segments side by side inside a wider one, twice: no run has equal limits at both sides.
TEST_F(Limits, NeighboursInsideAWiderSegmentComeBackToTheSameLimits) {
  PlanGrid& plan = session->Plan;
  plan.StopFreq = 3e9;
  plan.StepFreq = 29.97e6;
  Segment(1, 1) = {"300", "2700", "0", "-50"};
  Segment(1, 2) = {"500", "700", "-10", "-50"};
  Segment(1, 3) = {"700", "900", "-20", "-50"};
  Segment(1, 4) = {"1200", "1400", "-10", "-50"};
  Segment(1, 5) = {"1400", "1600", "-20", "-50"};
  Segment(1, 6) = {"2000", "2200", "-3", "-50"};
  ASSERT_EQ(Apply(), "");
  const auto upper = Channel(1).UpperLimit, lower = Channel(1).LowerLimit;
  RebuildSegments(*session, host);
  EXPECT_EQ(Segment(1, 1).Start, "272.7300");
  EXPECT_EQ(Segment(1, 1).Stop, "2670.3300");
  EXPECT_EQ(Apply(), "");
  EXPECT_EQ(Channel(1).UpperLimit, upper);
  EXPECT_EQ(Channel(1).LowerLimit, lower);
}

// Nested segments round a gap that was typed: ten runs, and the gap is a segment.
TEST_F(Limits, AGapTypedIntoNestedSegmentsComesBackWhereSixSufficeNoOtherWay) {
  for (int s = 1; s <= 5; ++s)
    Segment(1, s) = {std::to_string(5 * s), std::to_string(100 - 5 * s), std::to_string(s), "-7"};
  Segment(1, 6) = {"40", "50", "1000", "-1000"};
  ASSERT_EQ(Apply(), "");
  const auto upper = Channel(1).UpperLimit, lower = Channel(1).LowerLimit;
  RebuildSegments(*session, host);
  EXPECT_EQ(Segment(1, 6).Start, "40.0000");
  EXPECT_EQ(Segment(1, 6).Upper, "1000");
  EXPECT_EQ(Apply(), "");
  EXPECT_EQ(Channel(1).UpperLimit, upper);
  EXPECT_EQ(Channel(1).LowerLimit, lower);
}

// Six segments of few different limits, most of them over a wide first one.
TEST_F(Limits, CrowdedSegmentsComeBackToTheSameLimits) {
  std::mt19937 random(21);
  const auto below = [&random](unsigned n) { return static_cast<int>(random() % n); };
  int crowded = 0;
  for (int run = 0; run < 3000; ++run) {
    Segment(1, 1) = {std::to_string(3 + below(8)), std::to_string(103 - below(8)), "9", "-7"};
    for (int s = 2; s <= 6; ++s) {
      const int start = 3 + below(90), kind = below(run % 2 == 0 ? 7 : 3);
      Segment(1, s) = {std::to_string(start), std::to_string(std::min(103, start + below(25))),
                       kind == 6 ? "1000" : std::to_string(kind), kind == 6 ? "-1000" : "-7"};
    }
    ASSERT_EQ(Apply(), "");
    const auto upper = Channel(1).UpperLimit, lower = Channel(1).LowerLimit;
    int changes = 0;
    for (int i = 2; i <= 101; ++i) changes += Upper(i) != Upper(i - 1);
    crowded += changes > 6;
    RebuildSegments(*session, host);
    ASSERT_EQ(Apply(), "") << "run " << run;
    ASSERT_EQ(Channel(1).UpperLimit, upper) << "run " << run;
    ASSERT_EQ(Channel(1).LowerLimit, lower) << "run " << run;
  }
  EXPECT_GT(crowded, 1000);
}

TEST_F(Limits, ApplyOfSegmentsThatAFilesLimitsDoNotFitIsRefusedUntilOneIsTyped) {
  for (int i = 1; i <= 7; ++i)
    Channel(1).UpperLimit[static_cast<std::size_t>(i)] = static_cast<float>(i);
  RebuildSegments(*session, host);
  const auto upper = Channel(1).UpperLimit;
  EXPECT_EQ(LimitsBeyondSegments(*session),
            "CH1: more limits than six segments can hold; Apply after a change removes the others");
  EXPECT_EQ(Apply(),
            "The limits of CH1 need more than six segments: they are kept. Change a segment to "
            "replace them by those shown");
  EXPECT_EQ(Channel(1).UpperLimit, upper);
  EXPECT_TRUE(session->Limits.Of(1).Applied);
  Segment(1, 6) = {"8", "9", "6", "-1000"};
  EXPECT_EQ(Apply(), "");
  EXPECT_EQ(Upper(7), 6);
  EXPECT_EQ(LimitsBeyondSegments(*session), "");
}

TEST_F(Limits, NoMoreThanSixSegmentsComeBack) {
  for (int i = 1; i <= 20; ++i)
    Channel(1).UpperLimit[static_cast<std::size_t>(i)] = static_cast<float>(i);
  RebuildSegments(*session, host);
  EXPECT_EQ(Segment(1, 6).Upper, "6");
  EXPECT_EQ(Segment(1, 6).Stop, "8.0000");
}

TEST_F(Limits, ALoadedChannelIsShownAsItsSwitchesStand) {
  Channel(2).UpperLimit[4] = 3;
  session->Limits.Enabled = true;
  session->Limits.Of(2).Show = true;
  RebuildSegments(*session, host);
  EXPECT_TRUE(session->Display.ShowLimits);
  EXPECT_TRUE(Channel(2).LimitsOn);
}

}  // namespace
}  // namespace qk
