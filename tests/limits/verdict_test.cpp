// SPDX-License-Identifier: MIT
// How far the displayed channels are from their limits.
#include "limits/verdict.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "limits/limit_test.h"
#include "support/fake_host.h"

namespace qk {
namespace {

struct LimitVerdict : testing::Test {
  std::unique_ptr<Session> session = MakeSession();
  static constexpr std::array kMeasured{Parameter::S11, Parameter::S21};

  LimitVerdict() {
    session->Plan.NumPoints = 51;
    session->Display.ShowLimits = true;
    session->Display.DisplaySet = DisplaySet::OneTwo;
    session->Channel(2).Parameter = Parameter::S21;
    for (int n = 1; n <= 4; ++n) {
      session->Channel(n).UpperLimit.fill(kNoUpperLimit);
      session->Channel(n).LowerLimit.fill(kNoLowerLimit);
      session->Channel(n).LimitsOn = true;
    }
  }
  void Limit(int channel, std::size_t point, float lower, float upper) {
    session->Channel(channel).LowerLimit[point] = lower;
    session->Channel(channel).UpperLimit[point] = upper;
  }
  std::vector<LimitMargin> Margins() { return LimitMargins(*session, kMeasured); }
};

TEST_F(LimitVerdict, TheWorstPointOfEachDisplayedChannelIsReported) {
  session->Channel(1).Value[7] = -1;
  session->Channel(1).Value[9] = -2.5;
  Limit(1, 7, -1000, 0);  // inside by 1
  Limit(1, 9, -3, 1000);  // inside by 0.5
  session->Channel(2).Value[4] = 2.25;
  Limit(2, 4, 0, 2);  // outside by 0.25
  Limit(3, 4, 1, 2);  // not displayed
  const auto margins = Margins();
  ASSERT_EQ(margins.size(), 2u);
  EXPECT_EQ(margins[0].Point, 9);
  EXPECT_EQ(margins[0].Margin, 0.5);
  EXPECT_FALSE(margins[0].Failed);
  EXPECT_EQ(margins[1].Channel, 2);
  EXPECT_EQ(margins[1].Parameter, Parameter::S21);
  EXPECT_EQ(margins[1].Point, 4);
  EXPECT_EQ(margins[1].Margin, -0.25);
  EXPECT_TRUE(margins[1].Failed);
  EXPECT_TRUE(AnyFailed(margins));
}

TEST_F(LimitVerdict, AnOutcomeInTheTimeDomainStandsAtATime) {
  session->Channel(1).Value[9] = -2.5;
  Limit(1, 9, -3, 1000);
  const LimitMargin margin = Margins().at(0);
  EXPECT_EQ(OutcomeText(margin, *session), OutcomeAt(margin, "242.7600 MHz"));
  session->Channel(1).GraphType = GraphType::Td;
  session->TimeDomain.TdT1 = 2;
  session->TimeDomain.TdStep = 0.25;
  EXPECT_EQ(OutcomeText(margin, *session), "CH1 S11 passes by 0.500 dB at 4.0000 ns");
  EXPECT_EQ(OutcomeAt(margin, ""), "CH1 S11 passes by 0.500 dB");
}

TEST_F(LimitVerdict, AValueOnItsLimitPasses) {
  session->Channel(1).Value[1] = 2;
  Limit(1, 1, 2, 3);
  EXPECT_EQ(Margins()[0].Margin, 0);
  EXPECT_FALSE(Margins()[0].Failed);
}

TEST_F(LimitVerdict, AValueThatIsNoNumberFails) {
  session->Channel(1).Value[3] = std::nan("");
  Limit(1, 3, -1, 1);
  EXPECT_TRUE(Margins()[0].Failed);
  EXPECT_EQ(MarginText(Margins()[0]), "no number");
}

TEST_F(LimitVerdict, SmoothedValuesAreTestedWhereTheyAreShown) {
  session->Averaging.SmoothOn = true;
  session->Averaging.SmoothingPercent = 5;
  session->Channel(1).Value[3] = 5;
  session->Channel(1).SmoothValue[3] = 0.5f;
  Limit(1, 3, -1, 1);
  EXPECT_FALSE(Margins()[0].Failed);
}

TEST_F(LimitVerdict, ChartsOtherParametersAndHiddenLimitsAreLeftOut) {
  Limit(1, 3, 1, 2);
  Limit(2, 3, 1, 2);
  EXPECT_EQ(Margins().size(), 2u);
  session->Channel(1).GraphType = GraphType::Smith;
  EXPECT_EQ(Margins().size(), 1u);
  session->Channel(2).Parameter = Parameter::S12;  // not measured
  EXPECT_TRUE(Margins().empty());
  session->Channel(2).Parameter = Parameter::S21;
  session->Channel(2).LimitsOn = false;
  EXPECT_TRUE(Margins().empty());
  session->Channel(2).LimitsOn = true;
  session->Display.ShowLimits = false;
  EXPECT_TRUE(Margins().empty());
}

TEST_F(LimitVerdict, AChannelWithoutALimitAtAnyPointGivesNone) {
  EXPECT_EQ(Margins()[0].Point, 0);
  EXPECT_FALSE(AnyLimits(*session, kMeasured));
  session->Channel(1).Value[3] = std::nan("");
  EXPECT_FALSE(AnyLimits(*session, kMeasured)) << "a value without a limit is none";
  Limit(2, 51, kNoLowerLimit, 3);
  EXPECT_TRUE(AnyLimits(*session, kMeasured));
}

TEST_F(LimitVerdict, AFailureIsNeverRoundedToNothing) {
  LimitMargin margin;
  margin.Margin = -0.0001;
  EXPECT_EQ(MarginText(margin), "-0.001 dB");
  margin.Margin = 1.2349;
  margin.Units = Unit::Deg;
  EXPECT_EQ(MarginText(margin), "1.234 deg");
}

// The verdict and the limit test of the picture are of one mind.
TEST_F(LimitVerdict, AgreesWithTheLimitTest) {
  test::FakeClock clock;
  test::FakeHost fake(clock);
  Host host = fake.host();
  session->Display.LimitAlarmOn = true;
  Limit(1, 20, -0.5f, 0.1f);
  for (const GraphType type : {GraphType::LogMag, GraphType::ImpedanceMagnitude})
    for (const std::size_t point : {20u, 30u})  // 30 has no limits
      for (const double value : {-1200.0, -0.6, -0.5, 0.0, 0.1, 0.11, 1200.0, std::nan("")}) {
        session->Channel(1).GraphType = type;
        session->Channel(1).Value.fill(0);
        session->Channel(1).Value[point] = value;
        LimitTest(*session, host, kMeasured);
        EXPECT_EQ(AnyFailed(Margins()), session->Limits.LimitFailed) << point << ": " << value;
        EXPECT_EQ(Margins()[0].Margin, LimitVerdicts(*session, kMeasured)[0].Margin);
        EXPECT_EQ(Margins()[0].Point, LimitVerdicts(*session, kMeasured)[0].Point);
      }
}

}  // namespace
}  // namespace qk
