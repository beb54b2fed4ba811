// SPDX-License-Identifier: MIT
// One sweep on request, and how far a long one is.
#include <gtest/gtest.h>

#include "control/simulated_control.h"

namespace qk::test {
namespace {

TEST(SingleSweep, MeasuresOnceAndStops) {
  SimulatedControl b;
  b.MakeReady(&CalState::CalS11);
  for (int i = 1; i <= 3; ++i) {
    b.control.SingleSweep();
    EXPECT_EQ(b.control.SweepsEnded(), i);
    EXPECT_TRUE(b.control.Idle());
    EXPECT_EQ(b.Written(), "QM");
    EXPECT_EQ(b.session->Panels[6], "Sweep Off");
  }
  EXPECT_TRUE(b.fake.Messages.empty());
}

TEST(SingleSweep, GoesOnBehindASweepWithAByteTooMany) {
  SimulatedControl b;
  b.MakeReady(&CalState::CalS11);
  b.Bench("fault sweep add at 100");
  b.control.SingleSweep();
  EXPECT_EQ(b.control.SweepsEnded(), 2);
  EXPECT_TRUE(b.control.Idle());
  EXPECT_FALSE(b.session->Display.SweepDisturbed);
  EXPECT_TRUE(b.fake.Messages.empty());
}

TEST(SingleSweep, LeavesTheNextStartToSweepOn) {
  SimulatedControl b;
  b.MakeReady(&CalState::CalS11);
  b.control.SingleSweep();
  b.StopAfter(3);
  b.control.StartMeasurement();
  EXPECT_EQ(b.control.SweepsEnded(), 4);
}

TEST(SingleSweep, IsNothingWhileASweepRuns) {
  SimulatedControl b;
  b.MakeReady(&CalState::CalS11);
  bool asked = false;
  b.OnPoint = [&](int counter) {
    if (!asked && counter == 5) b.control.SingleSweep();
    asked = asked || counter == 5;
    if (b.control.SweepsEnded() == 2 && counter == 20) b.control.StopMeasurement();
  };
  b.control.StartMeasurement();
  EXPECT_EQ(b.control.SweepsEnded(), 3) << "the sweeps that were running go on";
}

TEST(SingleSweep, WithoutAnInstrumentOrACalibrationLeavesStartAsItWas) {
  SimulatedControl b;
  b.MakeReady(&CalState::CalS11);
  b.session->Cal.CalS11 = false;
  b.control.SingleSweep();
  EXPECT_EQ(b.fake.Messages.size(), 1u);
  b.session->Cal.CalS11 = true;
  b.StopAfter(2);
  b.control.StartMeasurement();
  EXPECT_EQ(b.control.SweepsEnded(), 2);
}

TEST(SweepProgress, OfALongSweepReportsPercentAndTheSecondsLeft) {
  SimulatedControl b;
  b.MakeReady(&CalState::Cal12Term, 1024);  // 3.2 s on the wire
  std::vector<SweepProgress> told;
  b.OnPoint = [&](int) {
    if (b.control.Progress() && (told.empty() || !(told.back() == *b.control.Progress())))
      told.push_back(*b.control.Progress());
  };
  const std::int64_t begin = b.fake.NowMs();
  b.control.SingleSweep();
  const auto seconds = static_cast<int>((b.fake.NowMs() - begin + 999) / 1000);
  ASSERT_GE(told.size(), 10u);
  for (std::size_t i = 1; i < told.size(); ++i) {
    EXPECT_GE(told[i].Percent, told[i - 1].Percent);
    EXPECT_LE(told[i].SecondsLeft, told[i - 1].SecondsLeft);
  }
  EXPECT_LE(told.front().SecondsLeft, seconds);
  EXPECT_GE(told.front().SecondsLeft, 2);
  EXPECT_GE(told.back().Percent, 85);
  EXPECT_FALSE(b.control.Progress()) << "none runs any more";
}

TEST(SweepProgress, OfAShortSweepIsNotShown) {
  SimulatedControl b;
  b.MakeReady(&CalState::Cal12Term, 401);  // 1.3 s
  b.OnPoint = [&](int) { EXPECT_FALSE(b.control.Progress()); };
  b.control.SingleSweep();
}

TEST(SweepProgress, GoesAtTheEndOfItsSweepAlsoIfAnotherFollows) {
  SimulatedControl b;
  b.MakeReady(&CalState::Cal12Term, 1024);
  bool told = false, looked = false;
  b.OnPoint = [&](int counter) {
    if (b.control.SweepsEnded() == 0) told = told || b.control.Progress().has_value();
    if (b.control.SweepsEnded() != 1 || looked) return;
    looked = true;
    EXPECT_LT(counter, 100);
    EXPECT_FALSE(b.control.Progress()) << "of the sweep before";
    b.control.StopMeasurement();
  };
  b.control.StartMeasurement();
  EXPECT_TRUE(told);
  EXPECT_TRUE(looked);
}

TEST(SweepProgress, CountsAverages) {
  SimulatedControl b;
  b.MakeReady(&CalState::CalS11, 51);
  b.session->Averaging.AveragesSet = 64;
  b.control.AverOn();
  bool told = false;
  b.OnPoint = [&](int) { told = told || b.control.Progress().has_value(); };
  const std::int64_t begin = b.fake.NowMs();
  b.control.SingleSweep();
  EXPECT_EQ(told, b.fake.NowMs() - begin > 2000);
}

}  // namespace
}  // namespace qk::test
