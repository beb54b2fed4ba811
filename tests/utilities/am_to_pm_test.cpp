// SPDX-License-Identifier: MIT
// Degrees per decibel from phases and powers, by hand.
#include "utilities/am_to_pm.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace qk::test {
namespace {

// start + step for each level down.
PowerSeries Ramp(double start, double step) {
  PowerSeries series;
  for (std::size_t i = 0; i < series.size(); ++i) series[i] = start + step * static_cast<double>(i);
  return series;
}

TEST(Wrap, AddsAHalfTurnToEveryOrdinaryDifference) {
  EXPECT_EQ(Wrap(0), 180);
  EXPECT_EQ(Wrap(-170.5f), 9.5f);
  EXPECT_EQ(Wrap(299), 479);
}

TEST(Wrap, Above300ItTakesAHalfTurnOffAndPutsItBackOn) {
  EXPECT_EQ(Wrap(300), 300) << "neither above nor below";
  EXPECT_EQ(Wrap(300.5f), 300.5f);
  EXPECT_EQ(Wrap(359), 359);
  EXPECT_EQ(Wrap(480), 300) << "what is left then is not below 300";
}

TEST(AmPmSlopes, ArePhaseOverOutputPower) {
  const PowerSeries slopes = AmPmSlopes(Ramp(-30, 1.5), Ramp(0, 0), Ramp(5, -0.75));
  for (const double slope : slopes) EXPECT_NEAR(slope, -2, 1e-5);
}

TEST(AmPmSlopes, TheThroughsOwnSlopeGoesOut) {
  const PowerSeries phase = Ramp(20, 0.5);
  for (const double slope : AmPmSlopes(phase, phase, Ramp(0, -1))) EXPECT_EQ(slope, 0);
}

TEST(AmPmSlopes, TheTwoLowestLevelsRepeatTheThird) {
  PowerSeries phase{};
  phase[18] = 3;
  phase[19] = 50;
  const PowerSeries slopes = AmPmSlopes(phase, {}, Ramp(0, -1));
  EXPECT_EQ(slopes[18], 1.5);
  EXPECT_EQ(slopes[19], slopes[18]);
  EXPECT_EQ(slopes[20], slopes[18]);
}

TEST(AmPmSlopes, EqualPowersGiveThePhaseTimesAMillion) {
  PowerSeries phase{};
  phase[4] = 2;
  const PowerSeries slopes = AmPmSlopes(phase, {}, Ramp(3, 0));
  EXPECT_EQ(slopes[4], 2e6);
  EXPECT_EQ(slopes[2], -2e6);
  EXPECT_EQ(slopes[7], 0);
}

// The levels that have a mark.
std::vector<int> Marked(const PowerMarks& marks) {
  std::vector<int> levels;
  for (int i = 0; i < kPowerLevels; ++i)
    if (marks[static_cast<std::size_t>(i)]) levels.push_back(i);
  return levels;
}

PowerSeries StepsAt(PowerSeries series, std::initializer_list<std::size_t> levels, double turn) {
  for (const std::size_t level : levels)
    for (std::size_t i = level; i < series.size(); ++i) series[i] += turn;
  return series;
}

TEST(PhasePasses, AreTheTwoLevelsAboveEachPassOfTheDeviceAndOfTheThrough) {
  const PowerSeries phase = Ramp(100, 4), flat = Ramp(0, 0);
  EXPECT_EQ(Marked(PhasePasses(phase, flat)), std::vector<int>{});
  for (const double turn : {-360.0, 360.0}) {
    const PowerSeries passing = StepsAt(phase, {5, 11}, turn);
    EXPECT_EQ(Marked(PhasePasses(passing, flat)), (std::vector<int>{3, 4, 9, 10})) << turn;
    EXPECT_EQ(Marked(PhasePasses(flat, passing)), (std::vector<int>{3, 4, 9, 10})) << turn;
  }
}

TEST(PhasePasses, ThatDeviceAndThroughMakeTogetherCancel) {
  const PowerSeries both = StepsAt(Ramp(100, 4), {8}, -360);
  EXPECT_EQ(Marked(PhasePasses(both, both)), std::vector<int>{});
  EXPECT_EQ(Marked(PhasePasses(both, StepsAt(Ramp(0, 0), {8}, 360))), (std::vector<int>{6, 7}));
}

TEST(PhasePasses, AtTheThirdLowestLevelMarkTheTwoThatRepeatIt) {
  EXPECT_EQ(Marked(PhasePasses(StepsAt(Ramp(0, 0), {20}, 360), {})),
            (std::vector<int>{18, 19, 20}));
}

// Phases that move by any amount a level, read between -180 and 180 degrees: a slope is marked
// where it is not the one of the phases before they were cut, and nowhere else.
TEST(PhasePasses, MarkTheSlopesThatAreWrongAndNoOthers) {
  std::mt19937 random(5);
  const auto within = [&random](double most) {
    return most * (2.0 * static_cast<double>(random()) / 4294967295.0 - 1);
  };
  int passes = 0;
  for (int run = 0; run < 500; ++run) {
    PowerSeries phase, through, phaseRead, throughRead;
    double at = within(180), throughAt = within(180);
    const double most = run % 2 == 0 ? 20 : 85;
    for (std::size_t i = 0; i < phase.size(); ++i) {
      phase[i] = at += within(most);
      through[i] = throughAt += within(run % 3 == 0 ? most : 2);
      phaseRead[i] = std::remainder(phase[i], 360);
      throughRead[i] = std::remainder(through[i], 360);
    }
    const PowerSeries slopes = AmPmSlopes(phaseRead, throughRead, Ramp(0, -0.5));
    const PowerMarks marks = PhasePasses(phaseRead, throughRead);
    for (std::size_t i = 0; i + 2 < phase.size(); ++i) {
      const double truth = (phase[i] - phase[i + 2]) - (through[i] - through[i + 2]);
      ASSERT_EQ(marks[i], std::abs(slopes[i] - truth) > 1) << "level " << i << ", run " << run;
      passes += marks[i] ? 1 : 0;
    }
  }
  EXPECT_GT(passes, 500);
}

// A device of 6 dB whose phase falls by 2 degrees for each dB, behind 4 dB.
AmToPmResult Reduced(double readout) {
  PowerSweep sweep;
  for (int i = 0; i < kPowerLevels; ++i) {
    PowerReading& reading = sweep.Levels[static_cast<std::size_t>(i)];
    const double phase = 2.0 * i * 3.14159265358979 / 180, size = std::pow(10.0, 6.0 / 20);
    reading.Corrected = {size * std::cos(phase), size * std::sin(phase)};
    reading.TestVolts = std::pow(10.0, (6.0 - i) / 20);
  }
  RegressionObject regression;
  return ReduceAmToPm(sweep, {}, {4, 0}, readout, {{1000, 0}, 0}, regression);
}

TEST(ReduceAmToPm, ReadsTheSlopeOutAtTheDevicesInput) {
  const AmToPmResult result = Reduced(-10);
  EXPECT_NEAR(result.Pin[0], -4, 1e-9);
  EXPECT_NEAR(result.Pin[20], -24, 1e-9);
  EXPECT_NEAR(result.AmPmValue, -2, 1e-4);
  EXPECT_FALSE(result.ResultDoubtful);
}

TEST(ReduceAmToPm, IsDoubtfulOutsideTheMeasuredSpanOnly) {
  EXPECT_TRUE(Reduced(-24.01).ResultDoubtful);
  EXPECT_FALSE(Reduced(-23.9).ResultDoubtful);
  EXPECT_FALSE(Reduced(-4.1).ResultDoubtful);
  EXPECT_TRUE(Reduced(-3.99).ResultDoubtful);
}

// A device whose phase passes 180 degrees between -7 and -8 dBm, and whose read-out is at so much.
AmToPmResult ReducedWithAPass(double readout, bool foreign = false) {
  PowerSweep sweep;
  for (int i = 0; i < kPowerLevels; ++i) {
    const double turn = (4.0 * i + 150) * 3.14159265358979 / 180;
    sweep.Levels[static_cast<std::size_t>(i)] = {{std::cos(turn), std::sin(turn)},
                                                 std::pow(10.0, -i / 20.0)};
  }
  RegressionObject regression;
  return ReduceAmToPm(sweep, {}, {}, readout, {{1000, 0}, 0, foreign}, regression);
}

TEST(ReduceAmToPm, IsDoubtfulWhereTheReadoutRestsOnALevelAtWhichThePhasePasses) {
  EXPECT_EQ(Marked(ReducedWithAPass(-12).Doubtful), (std::vector<int>{6, 7}));
  for (int i = 1; i < kLowestLevel; ++i)
    EXPECT_EQ(ReducedWithAPass(-i).ResultDoubtful, i >= 4 && i <= 9) << i;
}

TEST(ReduceAmToPm, IsDoubtfulAtEveryLevelWhenTheTableMayBeAnotherInstruments) {
  const AmToPmResult result = ReducedWithAPass(-14, true);
  EXPECT_EQ(Marked(result.Doubtful).size(), 21u);
  EXPECT_EQ(Marked(result.PhasePassed), (std::vector<int>{6, 7}));
  EXPECT_TRUE(result.ResultDoubtful);
}

TEST(AmToPmText, MarksTheRowsThatAreDoubtful) {
  const AmToPmResult result = ReducedWithAPass(-14);
  const std::string text = AmToPmText(result, {"Lot 7", "2026-03-09", "14:05:30", "1550.0000"});
  std::vector<std::string> rows;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = text.find("\r\n", at);
    rows.push_back(text.substr(at, end - at));
    at = end + 2;
  }
  ASSERT_EQ(rows.size(), 28u);
  EXPECT_EQ(rows[4], "Measured AM to PM (deg/dB)=-4.00 at Pin= -14.00 dBm");
  EXPECT_EQ(rows[7 + 12], "-8.00         -4.00");
  EXPECT_TRUE(rows[7 + 13].starts_with("-7.00  ") && rows[7 + 13].ends_with(" ?")) << rows[20];
  EXPECT_TRUE(rows[7 + 14].starts_with("-6.00  ") && rows[7 + 14].ends_with(" ?")) << rows[21];
  EXPECT_EQ(rows[7 + 15], "-5.00         -4.00");
}

TEST(AmToPmPlot, MarksThePointsThatAreDoubtful) {
  const PowerPlot plot = AmToPmPlot(ReducedWithAPass(-14), "Driver");
  const PlotCurve& curve = plot.Curves[0];
  ASSERT_EQ(curve.Doubtful.size(), 21u);
  for (std::size_t i = 0; i < curve.X.size(); ++i)
    EXPECT_EQ(curve.Doubtful[i], curve.X[i] < -5.5 && curve.X[i] > -7.5) << curve.X[i];
}

TEST(ReduceAmToPm, TheReadoutFollowsAParabolaThroughFiveLevels) {
  AmToPmResult result;
  RegressionObject regression;
  PowerSweep sweep;
  // Phases whose slopes are 3 + 0.1 x + 0.01 x^2 at the levels' inputs x = -i.
  PowerSeries phase{};
  const auto slope = [](double x) { return 3 + 0.1 * x + 0.01 * x * x; };
  for (int i = kLowestLevel - 2; i >= 0; --i)
    phase[static_cast<std::size_t>(i)] = phase[static_cast<std::size_t>(i + 2)] + 2 * slope(-i);
  for (int i = 0; i < kPowerLevels; ++i) {
    const double turn = phase[static_cast<std::size_t>(i)] * 3.14159265358979 / 180;
    sweep.Levels[static_cast<std::size_t>(i)] = {{std::cos(turn), std::sin(turn)},
                                                 std::pow(10.0, -i / 20.0)};
  }
  result = ReduceAmToPm(sweep, {}, {}, -7.3, {{1000, 0}, 0}, regression);
  EXPECT_NEAR(result.AmPmValue, slope(-7.3), 1e-4);
}

TEST(AmToPmPlot, HasOneBlueCurveAndAxesRoundedOutward) {
  const PowerPlot plot = AmToPmPlot(Reduced(-10), "Driver");
  ASSERT_EQ(plot.Curves.size(), 1u);
  EXPECT_EQ(plot.Curves[0].Colour, 0x0000FFu);
  EXPECT_EQ(plot.Curves[0].X.front(), Reduced(-10).Pin[20]) << "the lowest level first";
  EXPECT_LE(plot.Range.XMin, -25);
  EXPECT_EQ(plot.Range.XMax, -3);
  EXPECT_LE(plot.Range.YMin, -3);
  EXPECT_EQ(plot.Range.YMax, -1);
}

TEST(AmToPmText, ReportsTheReadoutBehindItsQuestionMark) {
  AmToPmResult result;
  result.AmPmValue = 1.239;
  result.ReadoutPin = -6;
  result.Pin = Ramp(-4, -1);
  const PowerTextHead head{"Lot 7", "2026-03-09", "14:05:30", "1550.0000"};
  std::string text = AmToPmText(result, head);
  EXPECT_NE(text.find("\r\nMeasured AM to PM (deg/dB)=1.24 at Pin= -6.00 dBm\r\n\r\n"
                      "  Pin(dBm)   AM to PM (deg/dB)\r\n-24.00        0.00\r\n"),
            std::string::npos)
      << text;
  result.ResultDoubtful = true;
  text = AmToPmText(result, head);
  EXPECT_NE(text.find("=1.24 ? at Pin= -6.00 dBm\r\n"), std::string::npos);
}

}  // namespace
}  // namespace qk::test
