// SPDX-License-Identifier: MIT
// Degrees per decibel from phases and powers, by hand.
#include "utilities/am_to_pm.h"

#include <gtest/gtest.h>

#include <cmath>

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

TEST(PhaseStepLevel, FindsWhereThePhasePasses180Degrees) {
  PowerSeries phase = Ramp(100, 4);
  EXPECT_EQ(PhaseStepLevel(phase), -1);
  for (std::size_t i = 11; i < phase.size(); ++i) phase[i] -= 360;
  EXPECT_EQ(PhaseStepLevel(phase), 9);
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

TEST(AmToPmText, TellsTheReadoutBehindItsQuestionMark) {
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
