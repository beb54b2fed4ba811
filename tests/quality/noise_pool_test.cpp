// SPDX-License-Identifier: MIT
// The noise in an uncertainty when few sweeps show it: how often the true value is in the band.
#include "quality/noise_pool.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iostream>
#include <memory>
#include <random>

#include "quality/quality_state.h"
#include "trace/band.h"

namespace qk {
namespace {

constexpr int kPoolPoints = 101;
constexpr std::array<Parameter, 1> kPoolS21{Parameter::S21};

// A device whose noise is much larger than the terms of the check, in 12-term calibration.
struct FewSweeps : testing::TestWithParam<int> {
  std::unique_ptr<Session> session = MakeSession();
  QualityState quality;
  std::mt19937 random{77};
  std::normal_distribution<double> part{0, 1 / std::sqrt(2.0)};
  double size = 0.1;    // of S21
  double steps = 0;     // of the converter
  double together = 0;  // part that all points share
  std::function<double(int)> spread = [](int) { return 1e-3; };

  struct Covered {
    int Values = 0, Inside = 0, InsideDb = 0;
    double Squares = 0;
    double Share() const { return static_cast<double>(Inside) / Values; }
    double ShareDb() const { return static_cast<double>(InsideDb) / Values; }
    double Ratio() const { return std::sqrt(Squares / Values); }
  };

  FewSweeps() {
    session->Plan.StartFreq = 3e6;
    session->Plan.StepFreq = 30e6;
    session->Plan.NumPoints = kPoolPoints;
    session->Cal.Cal12Term = true;
    session->Channel(1).Parameter = Parameter::S21;
    session->Channel(1).GraphType = GraphType::LogMag;
    const std::vector<double> sizes(kPoolPoints, 1e-7);
    for (std::size_t i = 0; i < kCheckTerms; ++i)
      quality.Check.Take(static_cast<CheckTerm>(i), session->Plan, 0, kPoolPoints - 1, sizes,
                         CheckMethod::Standards, 0);
  }
  void Sweep() {
    const Complex all{part(random), part(random)};
    const double alone = std::sqrt(1 - together * together);
    for (int k = 0; k < kPoolPoints; ++k) {
      const double s = spread(k), phase = 0.2 * k;
      const auto converted = [this](double x) {
        return steps > 0 ? steps * std::round(x / steps) : x;
      };
      session->Data.S21.Set(
          k, {converted(size * std::cos(phase) + s * (alone * part(random) + together * all.re)),
              converted(size * std::sin(phase) + s * (alone * part(random) + together * all.im))});
    }
    quality.Hints.SweepEnded({*session, kPoolS21, {}, {2026, 3, 9, 12, 5, 0}, 0});
    quality.Run.SweepEnded(*session, kPoolS21);
  }
  // The last of so many sweeps, at the points from first on.
  void Take(Covered& covered, int first, int last) {
    for (int k = first; k <= last; ++k) {
      const double u = UncertaintyAt(quality, *session, Parameter::S21, k).value_or(0);
      const Complex z = session->Data.S21[k];
      const double error = std::hypot(z.re, z.im) - size;
      covered.Squares += error * error / (u * u);
      covered.Inside += std::abs(error) <= kCoverage * u ? 1 : 0;
      const double shown = 20 * std::log10(std::hypot(z.re, z.im));
      const double truth = size > 0 ? 20 * std::log10(size) : -HUGE_VAL;
      const auto ends = EndsOf(*session, session->Channel(1),
                               {z, kCoverage * u, kZeroReach * kCoverage * u}, k + 1, shown);
      covered.InsideDb += ends && ends->Low <= truth && truth <= ends->High ? 1 : 0;
      ++covered.Values;
    }
  }
  // run: by repeated sweeps; otherwise by the sweeps that were just seen.
  Covered Measure(bool run, int times = 60, int first = 0, int last = kPoolPoints - 1) {
    Covered covered;
    for (int i = 0; i < times; ++i) {
      quality.Hints.Forget();
      quality.Run.Forget();
      if (run) quality.Run.Start(GetParam());
      for (int n = 0; n < GetParam(); ++n) Sweep();
      Take(covered, first, last);
    }
    return covered;
  }
};

TEST_P(FewSweeps, HoldTheTruthWhereNoiseDominates) {
  for (const bool run : {false, true}) {
    const Covered covered = Measure(run);
    std::cout << GetParam() << " sweeps" << (run ? " of a run" : "") << ": RMS error / u "
              << covered.Ratio() << ", inside k = 2 " << covered.Share() << "\n";
    EXPECT_GT(covered.Ratio(), 0.95);
    EXPECT_LT(covered.Ratio(), 1.05);
    EXPECT_GE(covered.Share(), 0.93);
    EXPECT_LE(covered.Share(), 0.98) << "not by a wide band";
  }
}

// In the noise the magnitude is too large; in decibels the band has no lower end there.
TEST_P(FewSweeps, HoldTheTruthNearZeroInDecibels) {
  for (const double ofSpread : {0.0, 0.2, 0.35, 0.5, 0.7, 1.0, 1.5, 2.0, 3.0, 5.0})
    for (const bool run : {false, true}) {
      size = ofSpread * 1e-3;
      const Covered covered = Measure(run);
      EXPECT_GE(covered.ShareDb(), 0.93) << ofSpread << " s, run " << run;
    }
}

// Neighbours that change together are not independent: the band widens instead.
TEST_P(FewSweeps, HoldTheTruthWhereAllPointsChangeTogether) {
  for (const double shared : {0.5, 0.8, 1.0}) {
    together = shared;
    const Covered covered = Measure(true, 600);
    EXPECT_GE(covered.Share(), 0.93) << shared;
  }
}

// A step of the noise by ten at point 50, and one noisy point: the neighbours do not count there.
TEST_P(FewSweeps, HoldTheTruthWhereTheNoiseChangesOverFrequency) {
  spread = [](int k) { return k < 50 ? 1e-4 : 1e-3; };
  for (const bool run : {false, true}) EXPECT_GE(Measure(run, 300, 45, 55).Share(), 0.93) << run;
  spread = [](int k) { return k == 30 ? 1e-2 : 1e-3; };
  for (const bool run : {false, true}) EXPECT_GE(Measure(run, 1000, 30, 30).Share(), 0.93) << run;
}

// A converter whose step is three times the noise: a few sweeps of many points are all the same.
TEST_P(FewSweeps, HoldTheTruthBehindTheStepsOfAConverter) {
  for (const bool run : {false, true}) {
    steps = 3e-3;
    EXPECT_GE(Measure(run, 200).Share(), 0.93) << run;
  }
}

INSTANTIATE_TEST_SUITE_P(Noise, FewSweeps, testing::Values(4, 5, 8, 20),
                         [](const auto& sweeps) { return std::to_string(sweeps.param); });

// Four sweeps of 17 points with this variance, the ninth in question.
NoiseWindow WindowOf(double variance) {
  NoiseWindow window;
  window.Count = 17;
  window.At = 8;
  window.Freedom = 6;
  window.Variance.fill(variance);
  return window;
}

TEST(PooledNoise, IsTheMeanWithTheFreedomOfAllPoints) {
  NoiseWindow window = WindowOf(4);
  window.Variance[8] = 8;
  EXPECT_NEAR(PooledNoise(window).Deviation, std::sqrt(4 + 4.0 / 17), 1e-12);
  EXPECT_NEAR(PooledNoise(window).Freedom, 6 * 17, 1e-9);
  for (double& common : window.Common) common = 4 + 4.0 / 17;  // all change together
  EXPECT_NEAR(PooledNoise(window).Freedom, 6 / (1.0 - 16.0 / 17 / 96), 0.3);
}

TEST(PooledNoise, IsThatOfThePointAloneIfItsNeighboursDiffer) {
  NoiseWindow window = WindowOf(1);
  window.Variance[8] = 25;
  EXPECT_EQ(PooledNoise(window).Deviation, 5);
  EXPECT_EQ(PooledNoise(window).Freedom, 6);
  window.Variance[8] = 1;
  for (std::size_t i = 9; i < 17; ++i) window.Variance[i] = 4;
  EXPECT_EQ(PooledNoise(window).Deviation, 1);
  EXPECT_EQ(PooledNoise(window).Freedom, 6);
  window.Variance[8] = 0;
  EXPECT_EQ(PooledNoise(window).Deviation, 1) << "not less than the quieter side";
  window.Variance.fill(1);
  window.Variance[8] = 0;
  EXPECT_NEAR(PooledNoise(window).Deviation, std::sqrt(16.0 / 17), 1e-12) << "steps of a converter";
  window.Variance.fill(0);
  EXPECT_EQ(PooledNoise(window).Deviation, 0);
}

}  // namespace
}  // namespace qk
