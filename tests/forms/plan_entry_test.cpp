// SPDX-License-Identifier: MIT
// From typed frequencies to a legal grid, step by step.
#include "forms/plan_entry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace qk {
namespace {

PlanGrid Grid(double start, double stop, int points) {
  PlanGrid plan;
  plan.StartFreq = start;
  plan.StopFreq = stop;
  plan.NumPoints = static_cast<std::int16_t>(points);
  plan.StepFreq = (stop - start) / (points - 1);
  return plan;
}

TEST(PlanEntry, StartIsRoundedTo100Hz) {
  EXPECT_EQ(LimitStart(10000149).Hz, 10000100);
  EXPECT_EQ(LimitStart(10000150).Hz, 10000200);
  EXPECT_EQ(LimitStart(10000150).Message, "");
}

TEST(PlanEntry, StopIsRoundedTo1kHz) {
  EXPECT_EQ(LimitStop(20000499, 3e6).Hz, 20000000);
  EXPECT_EQ(LimitStop(20000500, 3e6).Hz, 20001000);
}

TEST(PlanEntry, StartBelow3MHzIsReportedAndBecomes3MHz) {
  const LimitedFreq start = LimitStart(2999900);
  EXPECT_EQ(start.Hz, 3e6);
  EXPECT_EQ(start.Message, "Start Freq < 3MHz");
  EXPECT_EQ(LimitStart(2999950).Message, "");  // rounded to 3 MHz first
}

TEST(PlanEntry, StartOfExactly3080MHzIsAccepted) {
  EXPECT_EQ(LimitStart(3.08e9).Hz, 3.08e9);
  EXPECT_EQ(LimitStart(3.08e9).Message, "");
}

TEST(PlanEntry, StartAboveTheRangeEndsAt3Point08MHzNotGHz) {
  const LimitedFreq start = LimitStart(3.0800001e9);
  EXPECT_EQ(start.Hz, 3.08e6);
  EXPECT_EQ(start.Message, "Start Freq > 3.08GHz");
}

TEST(PlanEntry, StopBelowStartBecomesTheTopOfTheRange) {
  const LimitedFreq stop = LimitStop(9e6, 10e6);
  EXPECT_EQ(stop.Hz, 3.08e9);
  EXPECT_EQ(stop.Message, "Stop Frequency < Start Frequency");
}

TEST(PlanEntry, StopAboveTheRangeBecomesItsTop) {
  const LimitedFreq stop = LimitStop(3.080001e9, 10e6);
  EXPECT_EQ(stop.Hz, 3.08e9);
  EXPECT_EQ(stop.Message, "Stop Freq > 3.08GHz");
}

TEST(PlanEntry, NumbersBeyondMeasureMeetTheLimits) {
  EXPECT_EQ(LimitStart(INFINITY).Hz, 3.08e6);
  EXPECT_EQ(LimitStart(-INFINITY).Hz, 3e6);
  EXPECT_EQ(LimitStop(INFINITY, 3e6).Hz, 3.08e9);
  EXPECT_EQ(LimitStop(-INFINITY, 3e6).Hz, 3.08e9);
}

TEST(PlanEntry, SixtyHertzRaiseTheStepQuestion) {
  EXPECT_TRUE(StepTooSmall(Grid(3e6, 3.003e6, 51)));
  EXPECT_FALSE(StepTooSmall(Grid(3e6, 3.005e6, 51)));  // 100 Hz
}

TEST(PlanEntry, With1024PointsNoStepIsTooSmall) {
  EXPECT_FALSE(StepTooSmall(Grid(3e6, 3e6, 1024)));
}

TEST(PlanEntry, FewerPointsGoDownTheListByTheRootOfTheShortfall) {
  EXPECT_EQ(FewerPoints(4, 25), 2);  // root of 4
  EXPECT_EQ(FewerPoints(4, 50), 3);  // root of 2, rounded
  EXPECT_EQ(FewerPoints(4, 99), 3);
  EXPECT_EQ(FewerPoints(1, 4), 0);  // 5 places are more than there are
  EXPECT_EQ(FewerPoints(2, 25), 0);
}

TEST(PlanEntry, AStepOfZeroTakesTheWholeList) {
  EXPECT_EQ(FewerPoints(4, 0), 0);
}

TEST(PlanEntry, WideningSpreadsTheSpanAroundItsMiddle) {
  PlanGrid plan = Grid(100e6, 100.002e6, 101);
  WidenSpan(plan);
  EXPECT_EQ(plan.StartFreq, 100.001e6 - 5000);
  EXPECT_EQ(plan.StopFreq, 100.001e6 - 5000 + 10100);
}

TEST(PlanEntry, WideningCountsWholePointsBelowTheMiddle) {
  PlanGrid plan = Grid(100.0001e6, 100.001e6, 51);
  WidenSpan(plan);
  EXPECT_EQ(plan.StartFreq, 99.9981e6);  // 100.00055 MHz less 25 points, rounded to 100 Hz
}

TEST(PlanEntry, WideningStaysAbove3MHz) {
  PlanGrid plan = Grid(3e6, 3e6, 801);
  WidenSpan(plan);
  EXPECT_EQ(plan.StartFreq, 3e6);
  EXPECT_EQ(plan.StopFreq, 3.0801e6);
}

TEST(PlanEntry, WideningStaysBelow3080MHz) {
  PlanGrid plan = Grid(3.08e9, 3.08e9, 101);
  WidenSpan(plan);
  EXPECT_EQ(plan.StopFreq, 3.08e9);
  EXPECT_EQ(plan.StartFreq, 3.08e9 - 10100);
  SettleGrid(plan);
  EXPECT_EQ(plan.StepFreq, 100);
  EXPECT_EQ(plan.StopFreq, 3.08e9 - 100);
}

TEST(PlanEntry, TheStopIsWhatTheGridReaches) {
  PlanGrid plan = Grid(3e6, 3e9, 51);
  SettleGrid(plan);
  EXPECT_EQ(plan.StepFreq, 59.94e6);
  EXPECT_EQ(plan.StopFreq, 3e9);
  plan = Grid(3e6, 3.08e9, 801);  // 3846250 Hz is not a multiple of 100 Hz
  SettleGrid(plan);
  EXPECT_EQ(plan.StepFreq, 3846300);
  EXPECT_EQ(plan.StopFreq, 3e6 + 800 * 3846300.0);
}

TEST(PlanEntry, AnySpanOf1024PointsIs3To3072MHz) {
  PlanGrid plan = Grid(100e6, 200e6, 1024);
  SettleGrid(plan);
  EXPECT_EQ(plan.StartFreq, 3e6);
  EXPECT_EQ(plan.StopFreq, 3.072e9);
  EXPECT_EQ(plan.StepFreq, 3e6);
}

TEST(PlanEntry, AStepThatRoundsToZeroIs100HzInsideTheRange) {
  PlanGrid plan = Grid(3.08e9, 3.08e9, 51);
  SettleGrid(plan);
  EXPECT_EQ(plan.StepFreq, 100);
  EXPECT_EQ(plan.StartFreq, 3.08e9 - 5000);
  EXPECT_EQ(plan.StopFreq, 3.08e9);
  plan = Grid(50e6, 50e6, 51);
  SettleGrid(plan);
  EXPECT_EQ(plan.StartFreq, 50e6);
  EXPECT_EQ(plan.StopFreq, 50.005e6);
}

TEST(PlanEntry, AStepThatRoundsUpTo100HzStaysInsideTheRangeToo) {
  PlanGrid plan = Grid(3.079997e9, 3.08e9, 51);  // 60 Hz
  SettleGrid(plan);
  EXPECT_EQ(plan.StepFreq, 100);
  EXPECT_EQ(plan.StartFreq, 3.08e9 - 5000);
  EXPECT_EQ(plan.StopFreq, 3.08e9);
}

TEST(PlanEntry, EveryEntryEndsAsALegalGrid) {
  std::mt19937 random(20260101);
  std::uniform_real_distribution<double> any(-1e9, 4e9);
  std::uniform_int_distribution<int> points(0, 5);
  for (int i = 0; i < 20000; ++i) {
    PlanGrid plan;
    int index = points(random);
    plan.NumPoints = kPointCounts[static_cast<std::size_t>(index)];
    // Every third span is a few kilohertz just below the top of the range.
    const bool narrow = i % 3 == 0;
    plan.StartFreq = LimitStart(narrow ? 3.08e9 - std::fabs(any(random)) / 1e5 : any(random)).Hz;
    plan.StopFreq = LimitStop(narrow ? plan.StartFreq + std::fabs(any(random)) / 1e5 : any(random),
                              plan.StartFreq)
                        .Hz;
    plan.StepFreq = (plan.StopFreq - plan.StartFreq) / (plan.NumPoints - 1);
    if (StepTooSmall(plan)) {
      if (i % 2 == 0) {
        WidenSpan(plan);
      } else {
        index = FewerPoints(index, plan.StepFreq);
        plan.NumPoints = kPointCounts[static_cast<std::size_t>(index)];
      }
    }
    const bool tooSmall = plan.StopFreq - plan.StartFreq < 100.0 * (plan.NumPoints - 1);
    SettleGrid(plan);
    ASSERT_GE(plan.StartFreq, 3e6);
    ASSERT_GE(plan.StepFreq, 100);
    ASSERT_EQ(std::fmod(plan.StepFreq, 100), 0);
    // Intentional: the step's rounding may carry the last point past the typed stop, by 50 Hz a
    // step.
    const double past = tooSmall ? 0 : 50.0 * (plan.NumPoints - 1);
    ASSERT_LE(plan.StopFreq, 3.08e9 + past);
    ASSERT_EQ(plan.StopFreq, plan.StartFreq + (plan.NumPoints - 1) * plan.StepFreq);
  }
}

TEST(PlanEntry, FieldsShowMegahertzToTheHundredAndKilohertzToTheTenth) {
  EXPECT_EQ(FreqText(3e6, 1e6), "3.0000");
  EXPECT_EQ(FreqText(3.0801e6, 1e6), "3.0801");
  EXPECT_EQ(FreqText(3e6, 1000), "3000.0");
  EXPECT_EQ(StepText(100, 1000), "0.1");
  EXPECT_EQ(StepText(29.97e6, 1e6), "29.9700");
}

TEST(PlanEntry, AnUnknownNumberOfPointsShowsTheFirstChoice) {
  EXPECT_EQ(IndexOfPoints(51), 0);
  EXPECT_EQ(IndexOfPoints(1024), 5);
  EXPECT_EQ(IndexOfPoints(77), 0);
}

}  // namespace
}  // namespace qk
