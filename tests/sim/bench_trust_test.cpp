// SPDX-License-Identifier: MIT
// What the bench gives to try the checks of a calibration with: terminations behind air lines, a
// mismatch, drift, a loose connector, a step between sweeps.
#include <gtest/gtest.h>

#include "sim/talker.h"

namespace qk::sim::test {
namespace {

using C = std::complex<double>;

const std::vector<double> kPlan = {1e8, 1e9, 2.5e9};

double RatioDb(C ratio) {
  return 20 * std::log10(std::abs(ratio));
}

struct Bench : testing::Test {
  Talker talker{Quiet()};
  Bench() {
    talker.LoadPlan(kPlan);
    talker.SetAverages(255);
    talker.MeasureOffsets();
    talker.Bench("through");
  }
  std::vector<RawPoint> Sweep(const std::string& line = "show") {
    talker.Bench(line);
    return talker.SweepAll();
  }
};

C Truth(const std::string& port1, double hz) {
  Instrument box;
  EXPECT_TRUE(box.Bench("port1 " + port1).Ok);
  return box.Truth(hz)[0];
}

TEST(Terminations, BehindAnAirLineTurnAndLose) {
  // 300 mm one way at 1 GHz: 600 mm are 720.5 degrees of 299.79 mm wavelength.
  const double turns = 0.6 * 1e9 / 299792458.0;
  const C want = -std::polar(std::pow(10.0, -2 * 0.05 / 20), -2 * M_PI * turns);
  EXPECT_LT(std::abs(Truth("short line 300 mm loss 0.05 dB", 1e9) - want), 1e-9);
  // The loss grows with the root of the frequency.
  EXPECT_NEAR(RatioDb(Truth("short line 300 loss 0.05", 4e8)), -0.1 * std::sqrt(0.4), 1e-9);
  EXPECT_EQ(std::abs(Truth("load line 300", 1e9)), 0);
}

TEST(Terminations, MismatchHasItsReturnLossAtEveryFrequency) {
  EXPECT_LT(std::abs(Truth("mismatch 20", 1e9) - 0.1), 1e-12);
  EXPECT_LT(std::abs(Truth("mismatch 26.02 dB", 5e7) - 0.05), 1e-4);
  EXPECT_NEAR(std::abs(Truth("mismatch 20 line 100", 1e9)), 0.1, 1e-12);
}

TEST(Terminations, SayWhatTheyAre) {
  Instrument box;
  box.Bench("port1 mismatch 20 female line 300 loss 0.1");
  EXPECT_EQ(box.Describe(),
            "port 1: mismatch 20 dB female behind an air line of 300 mm, 0.1 dB at 1 GHz; port 2: "
            "nothing");
}

TEST_F(Bench, DriftsWithTheTemperature) {
  talker.Bench("temperature 25");
  const auto before = Sweep("drift 0 0.1");
  talker.Bench("temperature 30");
  talker.MeasureOffsets();  // the offsets drift on their own
  const auto after = Sweep();
  for (std::size_t i = 0; i < kPlan.size(); ++i) {
    EXPECT_NEAR(RatioDb(after[i].S21 / before[i].S21), 0.5, 0.01);
    EXPECT_NEAR(std::arg(after[i].S21 / before[i].S21), 0.115 * 0.5, 0.002);
    EXPECT_NEAR(RatioDb(after[i].S11 / before[i].S11), 0.5, 0.05);
  }
}

TEST_F(Bench, StepsAfterSoManySweepsAndStaysThere) {
  const auto before = Sweep("step 0.3 after 2");
  const auto second = Sweep();
  const auto third = Sweep(), fourth = Sweep();
  const auto none = Sweep("step none");
  for (std::size_t i = 0; i < kPlan.size(); ++i) {
    EXPECT_NEAR(RatioDb(second[i].S21 / before[i].S21), 0, 0.005);
    EXPECT_NEAR(RatioDb(third[i].S21 / before[i].S21), 0.3, 0.005);
    EXPECT_NEAR(RatioDb(fourth[i].S21 / before[i].S21), 0.3, 0.005);
    EXPECT_NEAR(RatioDb(none[i].S21 / before[i].S21), 0, 0.005);
  }
}

TEST_F(Bench, HasALooseConnectorThatMovesAtEachSweep) {
  const auto before = Sweep();
  double sum = 0;
  C last = 0;
  constexpr int kSweeps = 30;
  talker.Bench("connector loose 0.5");
  for (int n = 0; n < kSweeps; ++n) {
    const auto sweep = Sweep();
    const C moved = sweep[1].S21 / before[1].S21 - 1.0;
    EXPECT_GT(std::abs(moved - last), 1e-4) << n;
    last = moved;
    sum += std::norm(moved) / kSweeps;
    // The whole sweep moves at once.
    EXPECT_NEAR(std::abs(sweep[2].S21 / before[2].S21 - 1.0 - moved), 0, 2e-3);
  }
  // 0.5 dB are 0.0593 for each of the two parts.
  EXPECT_NEAR(std::sqrt(sum), 0.0593 * std::sqrt(2.0), 0.025);
  const auto tight = Sweep("connector tight");
  EXPECT_NEAR(RatioDb(tight[1].S21 / before[1].S21), 0, 0.005);
}

}  // namespace
}  // namespace qk::sim::test
