// SPDX-License-Identifier: MIT
#include "limits/limit_segments.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>

#include "core/text.h"
#include "display/graphs_fixture.h"
#include "limits/limit_test.h"
#include "support/fake_host.h"

namespace qk {
namespace {

using test::Drawn;
using test::FakeClock;
using test::FakeHost;

constexpr Parameter kS11[] = {Parameter::S11};
constexpr Parameter kS21[] = {Parameter::S21};
constexpr Parameter kBoth[] = {Parameter::S11, Parameter::S21};
constexpr Parameter kAll[] = {Parameter::S11, Parameter::S21, Parameter::S12, Parameter::S22};

class Limits : public test::GraphsFixture {
 protected:
  Limits() {
    session->Plan.StartFreq = 3e6;
    session->Plan.StopFreq = 103e6;
    session->Plan.StepFreq = 1e6;
    session->Plan.NumPoints = 101;
  }
  LimitSegment& Segment(int channel, int number) {
    return session->Limits.Of(channel).Segments[static_cast<std::size_t>(number - 1)];
  }
  std::string Apply(int channel = 1) {
    const Result<Done> applied = ApplyLimits(*session, channel);
    return applied ? std::string() : applied.Why().Message;
  }
  float Upper(int i) { return Channel(1).UpperLimit[static_cast<std::size_t>(i)]; }
  float Lower(int i) { return Channel(1).LowerLimit[static_cast<std::size_t>(i)]; }
  // Limits of -10 to 10 over the whole sweep on a channel, shown, with the alarm.
  void Arm(int channel) {
    Segment(channel, 1) = {"3", "103", "10", "-10"};
    ASSERT_EQ(Apply(channel), "");
    session->Limits.Of(channel).Show = true;
    session->Limits.Enabled = session->Limits.Alarm = true;
    ShowLimitsAsSwitched(*session, host);
  }
  bool Failed(int channel) { return session->Limits.Of(channel).Failed; }

  FakeClock clock;
  FakeHost fake{clock};
  Host host = fake.host();
};

// ---- verdicts ----------------------------------------------------------------------------------

TEST_F(Limits, AVerdictHasTheWorstMarginAndItsPoint) {
  Arm(1);
  Channel(1).Value.fill(0);
  Channel(1).Value[40] = 7.5;
  Channel(1).Value[60] = -9;
  LimitVerdict verdict = LimitVerdicts(*session, kS11)[0];
  EXPECT_TRUE(verdict.Tested);
  EXPECT_TRUE(verdict.Passed);
  EXPECT_DOUBLE_EQ(verdict.Margin, 1);
  EXPECT_EQ(verdict.Point, 60);
  Channel(1).Value[40] = 12.5;
  verdict = LimitVerdicts(*session, kS11)[0];
  EXPECT_FALSE(verdict.Passed);
  EXPECT_DOUBLE_EQ(verdict.Margin, -2.5);
  EXPECT_EQ(verdict.Point, 40);
  Channel(1).Value[80] = 10;
  Channel(1).Value[40] = 0;
  verdict = LimitVerdicts(*session, kS11)[0];
  EXPECT_TRUE(verdict.Passed) << "a value equal to its limit passes";
  EXPECT_DOUBLE_EQ(verdict.Margin, 0);
}

TEST_F(Limits, AValueThatIsNoNumberIsTheWorst) {
  Arm(1);
  Channel(1).Value[3] = 100;
  Channel(1).Value[50] = std::nan("");
  const LimitVerdict verdict = LimitVerdicts(*session, kS11)[0];
  EXPECT_FALSE(verdict.Passed);
  EXPECT_EQ(verdict.Point, 50);
}

TEST_F(Limits, PointsWithoutLimitsHaveNoMargin) {
  Segment(1, 1) = {"10", "20", "5", "-1000"};
  ASSERT_EQ(Apply(), "");
  session->Limits.Of(1).Show = session->Limits.Enabled = session->Limits.Alarm = true;
  ShowLimitsAsSwitched(*session, host);
  Channel(1).Value.fill(-300);
  Channel(1).Value[90] = 400;  // beyond the segment
  const LimitVerdict verdict = LimitVerdicts(*session, kS11)[0];
  EXPECT_TRUE(verdict.Passed);
  EXPECT_DOUBLE_EQ(verdict.Margin, 305);
}

TEST_F(Limits, NoVerdictWhereNothingIsTested) {
  Arm(1);
  EXPECT_FALSE(LimitVerdicts(*session, kS21)[0].Tested) << "not measured";
  EXPECT_FALSE(LimitVerdicts(*session, kAll)[1].Tested) << "without limits";
  Channel(1).GraphType = GraphType::Smith;
  EXPECT_FALSE(LimitVerdicts(*session, kS11)[0].Tested);
  Channel(1).GraphType = GraphType::LogMag;
  session->Display.LimitAlarmOn = false;
  EXPECT_FALSE(LimitVerdicts(*session, kS11)[0].Tested);
}

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

// ---- switches ----------------------------------------------------------------------------------

TEST_F(Limits, AreShownWhenEnabledTickedAndApplied) {
  for (int mask = 0; mask < 8; ++mask) {
    session->Limits.Enabled = (mask & 1) != 0;
    session->Limits.Of(2).Show = (mask & 2) != 0;
    session->Limits.Of(2).Applied = (mask & 4) != 0;
    Channel(2).LimitsOn = false;
    ShowLimitsAsSwitched(*session, host);
    EXPECT_EQ(session->Display.ShowLimits, mask == 7);
    EXPECT_EQ(Channel(2).LimitsOn, mask == 7);
    EXPECT_FALSE(Channel(1).LimitsOn);
  }
}

TEST_F(Limits, TheAlarmNeedsBothItsTickAndTheLimits) {
  for (int mask = 0; mask < 4; ++mask) {
    session->Limits.Enabled = (mask & 1) != 0;
    session->Limits.Alarm = (mask & 2) != 0;
    ShowLimitsAsSwitched(*session, host);
    EXPECT_EQ(session->Display.LimitAlarmOn, mask == 3);
  }
}

TEST_F(Limits, AChannelWhoseTickIsTakenOffStaysOnWithTheOthers) {
  Arm(1);
  Arm(2);
  session->Limits.Of(1).Show = false;
  ShowLimitsAsSwitched(*session, host);
  EXPECT_TRUE(session->Display.ShowLimits);
  EXPECT_TRUE(Channel(1).LimitsOn);
}

TEST_F(Limits, SwitchingTheAlarmOffClearsAFailure) {
  Arm(1);
  Channel(1).Value[5] = 11;
  LimitTest(*session, host, kAll);
  ASSERT_TRUE(session->Limits.LimitFailed);
  session->Limits.Alarm = false;
  ShowLimitsAsSwitched(*session, host);
  EXPECT_FALSE(session->Limits.LimitFailed);
  EXPECT_FALSE(Failed(1));
  EXPECT_FALSE(host.loop.Enabled(TimerId::Timer3));
  EXPECT_EQ(fake.Panels[3], "UNCAL");
  EXPECT_TRUE(session->Display.ShowLimits);
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

// ---- the test ----------------------------------------------------------------------------------

TEST_F(Limits, AFailureBeepsOnceStartsTheAlarmAndIsReportedInPanel3) {
  Arm(1);
  Channel(1).Value[5] = 10.5;
  Channel(1).Value[9] = -11;
  LimitTest(*session, host, kAll);
  EXPECT_TRUE(session->Limits.LimitFailed);
  EXPECT_TRUE(Failed(1));
  EXPECT_EQ(session->Limits.Of(1).FailPoint, 9);
  EXPECT_EQ(session->Limits.Of(1).FailParameter, Parameter::S11);
  EXPECT_EQ(fake.Beeps, 1);
  EXPECT_TRUE(host.loop.Enabled(TimerId::Timer3));
  EXPECT_EQ(fake.Panels[3], "S11 fail, Ch  1");
  LimitTest(*session, host, kAll);
  EXPECT_EQ(fake.Beeps, 1);
}

TEST_F(Limits, TheLastFailingChannelIsReportedAndEachKeepsItsOwn) {
  Arm(1);
  Arm(4);
  Channel(1).Value[5] = 11;
  Channel(4).Value[6] = 11;
  LimitTest(*session, host, kAll);
  EXPECT_TRUE(Failed(1));
  EXPECT_TRUE(Failed(4));
  EXPECT_EQ(fake.Panels[3], "S22 fail, Ch  4");
}

TEST_F(Limits, AValueOnItsLimitPasses) {
  Arm(1);
  Channel(1).Value[5] = 10;
  Channel(1).Value[6] = -10;
  LimitTest(*session, host, kAll);
  EXPECT_FALSE(session->Limits.LimitFailed);
}

TEST_F(Limits, ValuesAreComparedIn32Bits) {
  Arm(1);
  Channel(1).Value[5] = 10.0000001;
  LimitTest(*session, host, kAll);
  EXPECT_FALSE(session->Limits.LimitFailed);
  Channel(1).Value[5] = 10.00001;
  LimitTest(*session, host, kAll);
  EXPECT_TRUE(session->Limits.LimitFailed);
}

TEST_F(Limits, AValueThatIsNoNumberFails) {
  Arm(1);
  Channel(1).Value[5] = std::numeric_limits<double>::quiet_NaN();
  LimitTest(*session, host, kAll);
  EXPECT_TRUE(session->Limits.LimitFailed);
}

TEST_F(Limits, APassedTestEndsTheAlarm) {
  Arm(1);
  Channel(1).Value[5] = 11;
  LimitTest(*session, host, kAll);
  Channel(1).Value[5] = 0;
  session->Cal.Cal12Term = true;
  LimitTest(*session, host, kAll);
  EXPECT_FALSE(session->Limits.LimitFailed);
  EXPECT_FALSE(host.loop.Enabled(TimerId::Timer3));
  EXPECT_EQ(fake.Panels[3], "12 Term Cal");
}

TEST_F(Limits, WithTheAlarmOffNoTestRunsThoughTheLinesAreShown) {
  Arm(1);
  session->Limits.Alarm = false;
  ShowLimitsAsSwitched(*session, host);
  Channel(1).Value[5] = 11;
  LimitTest(*session, host, kAll);
  EXPECT_FALSE(session->Limits.LimitFailed);
  graphs.RedrawAll(true);
  EXPECT_EQ(Traces(surface.Background(), kLimit).size(), 2u);
}

TEST_F(Limits, ASmithChannelIsNeitherDrawnNorTested) {
  Arm(1);
  Channel(1).GraphType = GraphType::Smith;
  Channel(1).Value[5] = 11;
  LimitTest(*session, host, kAll);
  EXPECT_FALSE(session->Limits.LimitFailed);
  graphs.RedrawAll(true);
  EXPECT_TRUE(Traces(surface.Background(), kLimit).empty());
}

TEST_F(Limits, WhatTheSweepDidNotMeasureIsNotTested) {
  for (int n = 1; n <= 4; ++n) {
    Arm(n);
    Channel(n).Value[5] = 11;
  }
  const auto failed = [&](std::span<const Parameter> measured) {
    LimitTest(*session, host, measured);
    std::string channels;
    for (int n = 1; n <= 4; ++n)
      if (Failed(n)) channels += std::to_string(n);
    return channels;
  };
  EXPECT_EQ(failed(kS11), "1");
  EXPECT_EQ(failed(kS21), "2");
  EXPECT_EQ(failed(kBoth), "12");
  EXPECT_EQ(failed(kAll), "1234");
}

TEST_F(Limits, AChannelWithoutLimitsIsNotTested) {
  Arm(1);
  Channel(2).Value[5] = 5000;
  LimitTest(*session, host, kAll);
  EXPECT_FALSE(session->Limits.LimitFailed);
}

TEST_F(Limits, SmoothedChannelsAreTestedByWhatTheyShow) {
  Arm(1);
  Channel(1).Value[5] = 11;
  Channel(1).SmoothValue[5] = 9;
  session->Averaging.SmoothOn = true;
  session->Averaging.SmoothingPercent = 5;
  LimitTest(*session, host, kAll);
  EXPECT_FALSE(session->Limits.LimitFailed);
  Channel(1).SmoothValue[6] = 12;
  LimitTest(*session, host, kAll);
  EXPECT_EQ(session->Limits.Of(1).FailPoint, 6);
}

TEST_F(Limits, WhereSmoothingDoesNothingThePlainValueIsTested) {
  Arm(1);
  Channel(1).Value[5] = 11;
  session->Averaging.SmoothOn = true;
  session->Averaging.SmoothingPercent = 0;
  LimitTest(*session, host, kAll);
  EXPECT_TRUE(Failed(1));
  session->Averaging.SmoothingPercent = 5;
  Channel(1).GraphType = GraphType::Td;
  LimitTest(*session, host, kAll);
  EXPECT_TRUE(Failed(1));
}

// ---- the mark ----------------------------------------------------------------------------------

TEST_F(Limits, TheMarkIsARedPolylineAtTheFailingPoint) {
  Arm(1);
  Channel(1).Value[20] = 30;
  graphs.PlotPoint(1, 20, 30, 0);
  LimitTest(*session, host, kAll);
  graphs.RedrawAll(true);
  const CanvasPoint at = graphs.Trace(0, kDataTrace).Pixel[20];
  const auto marks = Traces(surface.Overlay(), 0xFF0000);
  ASSERT_EQ(marks.size(), 1u);
  ASSERT_EQ(marks[0].Points.size(), 29u);
  EXPECT_EQ(marks[0].Width, 1);
  EXPECT_EQ(marks[0].Style, PenStyle::Solid);
  // Width 18 of three "F", height 10; offsets cut, not rounded.
  const auto at3 = [&](std::size_t i) {
    return std::pair(marks[0].Points[i].x - at.x, marks[0].Points[i].y - at.y);
  };
  EXPECT_EQ(at3(0), std::pair(-15, -18));  // -15.75, -18.75
  EXPECT_EQ(at3(3), std::pair(0, -10));    // 0, -10.75
  EXPECT_EQ(at3(7), std::pair(6, 0));      // 6.75, 0
  EXPECT_EQ(at3(14), std::pair(-6, 11));   // -6.75, 11.5
  EXPECT_EQ(at3(28), std::pair(8, -20));   // 8.55, -20
}

TEST_F(Limits, NoMarkStandsOnAChannelThatIsNotDisplayed) {
  Arm(2);
  Channel(2).Value[20] = 30;
  LimitTest(*session, host, kAll);
  graphs.RedrawAll(true);
  EXPECT_TRUE(Failed(2));
  EXPECT_TRUE(Traces(surface.Overlay(), 0xFF0000).empty());
  session->Display.DisplaySet = DisplaySet::OneTwo;
  graphs.RedrawAll(true);
  EXPECT_EQ(Traces(surface.Overlay(), 0xFF0000).size(), 1u);
}

}  // namespace
}  // namespace qk
