// SPDX-License-Identifier: MIT
// The 1 dB point from gains and received magnitudes, by hand.
#include "utilities/compression.h"

#include <gtest/gtest.h>

#include <cmath>

namespace qk::test {
namespace {

// Gains with so many dB of compression at levels 0, -1, ...; none below.
PowerSeries Compressed(std::initializer_list<double> db, double gain = 10) {
  PowerSeries series;
  series.fill(gain);
  std::size_t i = 0;
  for (const double loss : db) series[i++] -= loss;
  return series;
}

// Received magnitudes of unit output for 0 dBm of input.
PowerSeries ReceivedOf(const PowerSeries& gain) {
  PowerSeries received;
  for (std::size_t i = 0; i < received.size(); ++i)
    received[i] = std::pow(10.0, (gain[i] - static_cast<double>(i)) / 20);
  return received;
}

CompressionPoint Located(const PowerSeries& gain) {
  RegressionObject regression;
  return LocateCompression(gain, ReceivedOf(gain), regression);
}

TEST(LocateCompression, TakesTheLevelNearestToOneDecibel) {
  const CompressionPoint point = Located(Compressed({3.1, 2.2, 1.4, 0.9, 0.5, 0.3, 0.1}));
  EXPECT_EQ(point.Best, 3);
  EXPECT_NEAR(point.Reached, 0.9, 1e-12);
  EXPECT_FALSE(point.ResultDoubtful);
}

TEST(LocateCompression, AmongEqualDistancesTheLowerLevelStays) {
  EXPECT_EQ(Located(Compressed({1.25, 0.75})).Best, 1);
  EXPECT_EQ(Located(Compressed({1, 1, 1})).Best, 2);
}

TEST(LocateCompression, IsDoubtfulBelowHalfADecibelOnly) {
  EXPECT_TRUE(Located(Compressed({0.499, 0.3, 0.2, 0.1})).ResultDoubtful);
  EXPECT_FALSE(Located(Compressed({0.5, 0.3, 0.2, 0.1})).ResultDoubtful);
}

TEST(LocateCompression, AnAmplifierThatNeverCompressesIsDoubtfulAndStaysFinite) {
  const CompressionPoint flat = Located(Compressed({}));
  EXPECT_EQ(flat.Best, kLowestLevel) << "all are equally near";
  EXPECT_TRUE(flat.ResultDoubtful);
  EXPECT_TRUE(std::isfinite(flat.Received));
  PowerSeries noisy = Compressed({0.002, 0.001, 0.003});
  const CompressionPoint point = Located(noisy);
  EXPECT_EQ(point.Best, 2) << "near the top end";
  EXPECT_TRUE(point.ResultDoubtful);
}

// The parabola through three points meets them: the fit at index 0 has only levels 0 to -2.
TEST(LocateCompression, AtTheTopLevelThreePointsFeedTheFit) {
  const PowerSeries gain = Compressed({1, 0.6, 0.35, 50, 50});
  const CompressionPoint point = Located(gain);
  EXPECT_EQ(point.Best, 0);
  EXPECT_NEAR(point.Received, ReceivedOf(gain)[0], 1e-9);
}

TEST(LocateCompression, AtTheLowestLevelsTheFitIsCutToo) {
  // Gain expansion down to -20 dBm leaves nothing near 1 dB.
  PowerSeries gain = Compressed({});
  for (std::size_t i = 0; i < gain.size(); ++i) gain[i] += static_cast<double>(20 - i);
  const CompressionPoint point = Located(gain);
  EXPECT_EQ(point.Best, kLowestLevel);
  EXPECT_TRUE(point.ResultDoubtful);
}

TEST(LocateCompression, MeetsAnExactParabola) {
  const PowerSeries gain = Compressed({2.6, 1.9, 1.3, 0.8, 0.4, 0.15});
  PowerSeries received;
  for (std::size_t i = 0; i < received.size(); ++i)
    received[i] = 3 * gain[i] * gain[i] - 70 * gain[i] + 450;
  RegressionObject regression;
  EXPECT_NEAR(LocateCompression(gain, received, regression).Received, 3 * 81 - 70 * 9 + 450, 1e-6);
}

TEST(LocateCompression, AFitThatIsNotPositiveIsDoubtful) {
  const PowerSeries gain = Compressed({1.1, 0.6, 0.2, 0.1});
  PowerSeries received;
  received.fill(-5);
  RegressionObject regression;
  EXPECT_TRUE(LocateCompression(gain, received, regression).ResultDoubtful);
}

// Readings of an amplifier of 10 dB with attenuators of 3 and 6 dB around it, at 1000 mV for 0 dBm.
PowerSweep Sweep() {
  PowerSweep sweep;
  const PowerSeries gain = Compressed({3.1, 2.2, 1.4, 0.9, 0.5, 0.3, 0.1}, 1);
  for (int i = 0; i < kPowerLevels; ++i) {
    const auto at = static_cast<std::size_t>(i);
    sweep.Levels[at].Corrected = {std::pow(10.0, gain[at] / 20), 0};
    sweep.Levels[at].TestVolts = std::pow(10.0, (gain[at] - i) / 20);
  }
  return sweep;
}

CompressionResult Reduced(const PowerPads& pads = {3, 6, 1.5f}) {
  std::array<Complex, kPowerLevels> through;
  through.fill({1, 0});
  RegressionObject regression;
  return ReduceCompression(Sweep(), through, pads, {{1000, 0}, 0.25f}, regression);
}

TEST(ReduceCompression, GivesGainAndPowerAtTheDevicesOwnPorts) {
  const CompressionResult result = Reduced();
  EXPECT_NEAR(result.GainAt(20), 10, 1e-9);
  EXPECT_NEAR(static_cast<double>(result.GainAt1dB), 1, 1e-6) << "between the test set's ports";
  EXPECT_NEAR(result.PoutAt(20), -20 + 1 + 6 + 0.25, 1e-9);
  EXPECT_NEAR(result.PinAt(20), -20 + 0.25 - 3, 1e-9);
  EXPECT_NEAR(result.P1dBValue, -3 + 0.1 + 6 + 0.25, 0.2);
}

// Intentional: the loss of the cable is in the axis and not in the values on it.
TEST(ReduceCompression, TheCableLossMovesTheAxisOnly) {
  const PowerPlot with = CompressionPlot(Reduced({3, 6, 1.5f}), "a");
  const PowerPlot without = CompressionPlot(Reduced({3, 6, 0}), "a");
  EXPECT_EQ(with.Curves[0].X, without.Curves[0].X);
  EXPECT_EQ(with.Range.XMin, std::floor(-22 - 3 - 1.5));
  EXPECT_EQ(without.Range.XMin, -25);
  EXPECT_EQ(with.Range.XMax, std::floor(1 - 3 - 1.5));
}

TEST(CompressionPlot, NamesTwoCurvesAndRoundsItsAxesOutward) {
  const PowerPlot plot = CompressionPlot(Reduced(), "Driver");
  EXPECT_EQ(plot.Title, "Driver");
  EXPECT_EQ(plot.XLabel, "Pin (dBm)");
  EXPECT_EQ(plot.YLabel, "(dB/dBm)");
  ASSERT_EQ(plot.Curves.size(), 2u);
  EXPECT_EQ(plot.Curves[0].Name, "Gain");
  EXPECT_EQ(plot.Curves[0].Colour, 0x0000FFu);
  EXPECT_EQ(plot.Curves[1].Name, "Pout");
  EXPECT_EQ(plot.Curves[1].Colour, 0xFF0000u);
  EXPECT_EQ(plot.Curves[0].X.size(), 21u);
  EXPECT_EQ(plot.Range.YMin, std::floor(-12.75 - 1));
  EXPECT_EQ(plot.Range.YMax, 11) << "the gain of 10 dB";
}

TEST(AxisEnd, IsNeverZero) {
  EXPECT_EQ(AxisEnd(0.4, -1), -0.5);
  EXPECT_EQ(AxisEnd(0.4, 1), 0.5);
  EXPECT_EQ(AxisEnd(-0.4, -1), -1);
  EXPECT_EQ(AxisEnd(7.9, 1), 7);
}

TEST(CompressionText, StandsInThreePrintZones) {
  CompressionResult result = Reduced({0, 0, 0});
  result.P1dBValue = 3.456;
  result.ResultDoubtful = true;
  const std::string text =
      CompressionText(result, {"Lot 7", "2026-03-09", "14:05:30", "1550.0000"});
  const std::string head =
      "Lot 7\r\n2026-03-09    14:05:30\r\n\r\r\nTest Frequency (MHz)=1550.0000\r\n"
      "Measured P1dB (dBm)=3.46 ?\r\n\r\n  Pin(dBm)   Gain(dB)    Pout(dBm)\r\n"
      "-19.75        1.00          -18.75\r\n-18.75        1.00          -17.75\r\n";
  EXPECT_EQ(text.substr(0, head.size()), head);
  EXPECT_TRUE(text.ends_with("0.25          -2.10         -1.85\r\n")) << text;
}

TEST(CompressionText, BeforeAMeasurementSaysWhatStandsThen) {
  const std::string text = CompressionText({}, {"a", "b", "c", "d"});
  EXPECT_NE(text.find("Measured P1dB (dBm)=100.00\r\n"), std::string::npos);
}

}  // namespace
}  // namespace qk::test
