// SPDX-License-Identifier: MIT
// Runs of repeated sweeps of each kind of measurement: outliers are found, and hardly ever where
// there is none.
#include "quality/sweep_run.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <random>

namespace qk {
namespace {

constexpr int kRuns = 200, kSweepsOfRun = 20;
constexpr double kSpread = 0.01;

struct EachKind : testing::TestWithParam<SweepMode> {
  int points = 101;
  std::unique_ptr<Session> session = MakeSession();
  SweepRun run;
  std::mt19937 random{2026};
  std::normal_distribution<double> part{0, kSpread / std::sqrt(2.0)};

  EachKind() {
    session->Plan.StartFreq = 3e6;
    session->Plan.StepFreq = 30e6;
  }
  static ComplexArray& Of(SParamData& data, Parameter parameter) {
    switch (parameter) {
      case Parameter::S11:
        return data.S11;
      case Parameter::S21:
        return data.S21;
      case Parameter::S12:
        return data.S12;
      case Parameter::S22:
        break;
    }
    return data.S22;
  }
  // shifted: the number of a sweep that lies apart by 1.5 s in a parameter, or 0.
  void Take(int shifted, Parameter which) {
    session->Plan.NumPoints = static_cast<std::int16_t>(points);
    run.Start(kSweepsOfRun);
    for (int n = 1; n <= kSweepsOfRun; ++n) {
      for (const Parameter parameter : DeliveredBy(GetParam())) {
        const double shift = n == shifted && parameter == which ? 1.5 * kSpread : 0;
        ComplexArray& array = Of(session->Data, parameter);
        for (int k = 0; k < points; ++k) array.Set(k, {0.5 + shift + part(random), part(random)});
      }
      run.SweepEnded(*session, DeliveredBy(GetParam()));
    }
  }
};

TEST_P(EachKind, NamesAtMostThreeSweepsIn200CleanRuns) {
  for (const int count : {51, 101, 201}) {
    points = count;
    int named = 0;
    for (int i = 0; i < kRuns; ++i) {
      Take(0, Parameter::S11);
      named += static_cast<int>(run.Outliers().size());
    }
    EXPECT_LE(named, 3) << count;
  }
}

TEST_P(EachKind, NamesTheSweepThatLiesApartInOneParameterIn200Runs) {
  const auto delivered = DeliveredBy(GetParam());
  for (const int count : {51, 101, 201}) {
    points = count;
    for (int i = 0; i < kRuns; ++i) {
      const int shifted = 1 + i % kSweepsOfRun;
      Take(shifted, delivered[static_cast<std::size_t>(i) % delivered.size()]);
      EXPECT_EQ(run.Outliers(), std::vector<int>{shifted}) << i << " of " << count;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(SweepRuns, EachKind,
                         testing::Values(SweepMode::S11, SweepMode::S11S21, SweepMode::All),
                         [](const auto& kind) { return std::string(CalKindName(kind.param)); });

}  // namespace
}  // namespace qk
