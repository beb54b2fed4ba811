// SPDX-License-Identifier: MIT
// Known amplifiers measured through the whole of the instrument: what comes back, and what the
// procedure itself leaves.
#include <algorithm>
#include <cmath>
#include <random>

#include "sim/source_levels.h"
#include "utilities/power_fixture.h"

namespace qk::test {
namespace {

struct Amplifier {
  double Gain, InputP1, AmPm, Knee, Before, Behind;  // dB, dBm at the instrument's port 1, deg/dB
  double OutputP1() const { return InputP1 - Before + Gain - 1; }
  std::string Line() const {
    return "amplifier gain " + std::to_string(Gain) + " p1db " + std::to_string(OutputP1()) +
           " ampm " + std::to_string(AmPm) + " knee " + std::to_string(Knee) + " before " +
           std::to_string(Before) + " behind " + std::to_string(Behind) + " matched";
  }
};

// Amplifiers that compress by 1 dB inside the span of levels, that -20 dBm leaves uncompressed, and
// that do not overload port 2.
Amplifier Seeded(std::mt19937& random, double softest, double hardest) {
  const auto between = [&random](double low, double high) {
    return low + (high - low) * static_cast<double>(random()) / 4294967296.0;
  };
  Amplifier a;
  a.Gain = between(0, 20);
  a.InputP1 = between(-7, -0.8);
  a.AmPm = between(-4, 4);
  a.Knee = between(softest, hardest);
  a.Before = between(0, 3);
  // The receiver takes about 7 dBm at the low end.
  a.Behind = std::max(0.0, a.OutputP1() - between(0, 4));
  return a;
}

// Largest errors over seeded amplifiers.
struct Errors {
  double P1dB = 0;       // dB
  double Gain = 0;       // dB, the through's own mismatch taken into account
  double GainError = 0;  // dB, against the amplifier's gain itself
  int Doubtful = 0;
};

// The test set's ports see each other through the through; a matched device parts them. What is
// measured relative to the through is low by this, in dB.
double MismatchDb(double f) {
  const sim::SideTerms terms = sim::FrontEndAt(f).Forward;
  return 20 * std::log10(std::abs(1.0 - terms.SourceMatch * terms.LoadMatch * sim::Complex(1, 0)));
}

Errors MeasureCompression(double softest, double hardest, int runs) {
  PowerFixture wire;
  EXPECT_TRUE(PutAveragesInForce(wire.rig, 16));
  std::mt19937 random(20);
  Errors worst;
  for (int run = 0; run < runs; ++run) {
    const Amplifier a = Seeded(random, softest, hardest);
    const int point = static_cast<int>(random() % 51);
    std::array<Complex, kPowerLevels> through;
    wire.Bench("through");
    const PowerSweep cal = wire.Sweep(point);
    for (std::size_t i = 0; i < kPowerLevels; ++i) through[i] = cal.Levels[i].Corrected;
    wire.Bench(a.Line());
    const PowerSweep sweep = wire.Sweep(point);
    RegressionObject regression;
    const CompressionResult result = ReduceCompression(
        sweep, through, {a.Before, a.Behind, 0}, wire.Meter(point, sweep.Temperature), regression);
    worst.P1dB = std::max(worst.P1dB, std::abs(result.P1dBValue - a.OutputP1()));
    const double error = static_cast<double>(result.GainAt1dB) + a.Before + a.Behind - a.Gain;
    worst.GainError = std::max(worst.GainError, std::abs(error));
    const double mismatch = MismatchDb(wire.session->Plan.Frequency(point));
    worst.Gain = std::max(worst.Gain, std::abs(error - mismatch));
    worst.Doubtful += result.ResultDoubtful ? 1 : 0;
  }
  return worst;
}

TEST(KnownAmplifiers, ComeBackToATenthOfADecibelFromTransistorsToLimiters) {
  const Errors worst = MeasureCompression(2, 3.5, 200);
  EXPECT_LT(worst.P1dB, 0.1);
  EXPECT_LT(worst.Gain, 0.03);
  EXPECT_EQ(worst.Doubtful, 0);
  // What the through's own mismatch adds to the gain, wherever the device is matched.
  EXPECT_LT(worst.GainError, 0.13);
  EXPECT_GT(worst.GainError, 0.05);
}

// Five levels 1 dB apart cannot follow a corner, and -20 dBm is not small for what compresses from
// the first milliwatt on: there the procedure leaves this much.
TEST(KnownAmplifiers, LeaveAQuarterOfADecibelWhereTheyAreVeryHardOrVerySoft) {
  const Errors hard = MeasureCompression(5, 12, 100);
  EXPECT_LT(hard.P1dB, 0.25);
  EXPECT_LT(hard.Gain, 0.03);
  EXPECT_EQ(hard.Doubtful, 0);
  const Errors soft = MeasureCompression(1, 1.6, 100);
  EXPECT_LT(soft.P1dB, 0.25);
  EXPECT_LT(soft.Gain, 0.09);
  EXPECT_EQ(soft.Doubtful, 0);
}

TEST(KnownAmplifiers, WhoseCompressionStaysBelowHalfADecibelCarryAQuestionMark) {
  PowerFixture wire;
  std::array<Complex, kPowerLevels> through;
  wire.Bench("through");
  const PowerSweep cal = wire.Sweep(10);
  for (std::size_t i = 0; i < kPowerLevels; ++i) through[i] = cal.Levels[i].Corrected;
  for (const auto& [line, doubtful] :
       {std::pair{"amplifier gain 10 p1db 12 behind 10 matched", true},
        std::pair{"amplifier gain 10 p1db 9 behind 10 matched", false}}) {
    wire.Bench(line);
    const PowerSweep sweep = wire.Sweep(10);
    RegressionObject regression;
    const CompressionResult result = ReduceCompression(
        sweep, through, {0, 10, 0}, wire.Meter(10, sweep.Temperature), regression);
    EXPECT_EQ(result.ResultDoubtful, doubtful) << line << ": " << result.Reached;
  }
}

// ---- AM to PM -----------------------------------------------------------------------------------

// What the amplifier does over the 2 dB of drive up to a level at port 1: degrees for each dB of
// output.
double Slope(PowerFixture& wire, double f, double drive) {
  const auto at = [&](double dbm) {
    const sim::Complex s21 = wire.instrument.Driven(f, dbm)[1];
    return std::pair{std::arg(s21 * std::polar(1.0, 2 * sim::kPi * f * 0.32e-9)) * 180 / sim::kPi,
                     dbm + 20 * std::log10(std::abs(s21))};
  };
  const auto [phase, out] = at(drive);
  const auto [phaseBelow, outBelow] = at(drive - 2);
  return (phase - phaseBelow) / (out - outBelow);
}

struct SlopeErrors {
  double Worst = 0;  // deg/dB
  int Doubtful = 0, Runs = 0;
};

// Read-outs from -17 dBm at port 1 up to so many dB below the compression point.
SlopeErrors MeasureSlopes(double below) {
  PowerFixture wire;
  EXPECT_TRUE(PutAveragesInForce(wire.rig, 64));
  std::mt19937 random(7);
  SlopeErrors errors;
  for (int run = 0; run < 200; ++run) {
    const Amplifier a = Seeded(random, 2, 3.5);
    const int point = static_cast<int>(random() % 51);
    const double f = wire.session->Plan.Frequency(point);
    wire.Bench("through");
    const PowerSeries calPhase = PhasesOf(wire.Sweep(point));
    wire.Bench(a.Line());
    const PowerSweep sweep = wire.Sweep(point);
    const double drive =
        -17 + (a.InputP1 - below + 17) * static_cast<double>(random()) / 4294967296.0;
    RegressionObject regression;
    const AmToPmResult result =
        ReduceAmToPm(sweep, calPhase, {a.Before, a.Behind}, drive - a.Before,
                     wire.Meter(point, sweep.Temperature), regression);
    // Where the phase passes 180 degrees the slope is not unwrapped, which the result says.
    if (std::ranges::find(result.PhasePassed, true) != result.PhasePassed.end()) continue;
    ++errors.Runs;
    errors.Worst = std::max(errors.Worst, std::abs(result.AmPmValue - Slope(wire, f, drive)));
    errors.Doubtful += result.ResultDoubtful ? 1 : 0;
  }
  return errors;
}

TEST(KnownAmplifiers, TurnTheirPhaseByWhatIsMeasuredToATwentiethOfADegreeADecibel) {
  const SlopeErrors errors = MeasureSlopes(2.5);
  EXPECT_LT(errors.Worst, 0.05);
  EXPECT_EQ(errors.Doubtful, 0);
  EXPECT_GT(errors.Runs, 150);
}

// Where the output hardly grows any more the slopes bend within a decibel: the parabola leaves
// more.
TEST(KnownAmplifiers, LeaveMoreOfTheirSlopeJustBelowTheCompressionPoint) {
  EXPECT_LT(MeasureSlopes(0).Worst, 0.15);
}

}  // namespace
}  // namespace qk::test
