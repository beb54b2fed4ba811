// SPDX-License-Identifier: MIT
// Verdicts, switches, the limit test with its alarm, and its mark.
#include "limits/limit_test.h"

#include <gtest/gtest.h>

#include <cmath>

#include "limits/limits_fixture.h"

namespace qk {
namespace {

using test::Drawn;
using test::Limits;

constexpr Parameter kS11[] = {Parameter::S11};
constexpr Parameter kS21[] = {Parameter::S21};
constexpr Parameter kBoth[] = {Parameter::S11, Parameter::S21};
constexpr Parameter kAll[] = {Parameter::S11, Parameter::S21, Parameter::S12, Parameter::S22};

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
