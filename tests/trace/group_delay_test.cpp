// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "plot_record.h"
#include "trace/formatting.h"

namespace qk {
namespace {

using test::PlotRecord;

Complex AtDegrees(double degrees) {
  const double radians = degrees * std::numbers::pi / 180;
  return {std::cos(radians), std::sin(radians)};
}

class GroupDelay : public testing::Test {
 protected:
  GroupDelay() {
    session->Plan.StepFreq = 1e6;
    for (int n = 1; n <= 4; ++n) {
      session->Channel(n).GraphType = GraphType::GroupDelay;
      session->Channel(n).Units = Unit::Ns;
    }
  }
  void Send(int point, double degrees, Parameter p = Parameter::S11) {
    DispatchPoint(*session, sink, AtDegrees(degrees), point, p);
  }
  const ChannelSettings& Channel(int n) const { return session->Channel(n); }

  std::unique_ptr<Session> session = MakeSession();
  PlotRecord sink;
};

TEST_F(GroupDelay, AFallingPhaseIsAPositiveDelayOfOneStep) {
  Send(1, 10);
  Send(2, 6.4);  // 3.6 degrees in 1 MHz: 10 ns
  Send(3, -0.8);
  EXPECT_NEAR(Channel(1).Value[2], 10, 1e-5);
  EXPECT_NEAR(Channel(1).Value[3], 20, 1e-5);
}

TEST_F(GroupDelay, UnitsArePicoNanoAndMicrosecondsAndElseSeconds) {
  const auto delay = [&](const char* units) {
    session->Channel(1).Units = *Named<Unit>(units);
    Send(1, 10);
    Send(2, 6.4);
    return Channel(1).Value[2];
  };
  EXPECT_NEAR(delay("ps"), 10000, 0.01);
  EXPECT_NEAR(delay("ns"), 10, 1e-5);
  EXPECT_NEAR(delay("us"), 0.01, 1e-8);
  EXPECT_NEAR(delay("dB"), 1e-8, 1e-14);
}

TEST_F(GroupDelay, TheConstantsAreTheInstrumentsOwn) {
  Send(1, 90);
  Send(2, 0);
  EXPECT_EQ(Channel(1).Value[2], 90 / 57.295775 / (1e6 * 6.2831853) / 1e-9);
}

TEST_F(GroupDelay, APhaseJumpFrom179ToMinus179CountsTwoDegrees) {
  Send(1, 179);
  Send(2, -179);  // rises by 2
  EXPECT_NEAR(Channel(1).Value[2], -2 / 360.0 / 1e6 / 1e-9, 1e-4);
  Send(3, 179);  // falls by 2
  EXPECT_NEAR(Channel(1).Value[3], 2 / 360.0 / 1e6 / 1e-9, 1e-4);
}

TEST_F(GroupDelay, AStepOfExactly180DegreesStaysAsItIs) {
  EXPECT_GT(StepDelay(90, -90, 1e6), 0);
  EXPECT_LT(StepDelay(-90, 90, 1e6), 0);
  EXPECT_LT(StepDelay(90.5f, -90, 1e6), 0);
}

TEST_F(GroupDelay, WithTwoPointsBothHoldTheOnlyDelay) {
  session->Plan.NumPoints = 2;
  Send(1, 10);
  Send(2, 6.4);
  EXPECT_EQ(Channel(1).Value[1], Channel(1).Value[2]);
  EXPECT_NEAR(Channel(1).Value[1], 10, 1e-5);
}

TEST_F(GroupDelay, TheFirstPointOnlyNotesItsPhase) {
  session->Channel(1).Value[1] = 5;
  session->Channel(1).Value[2] = 7;
  Send(1, 10);
  EXPECT_EQ(Channel(1).Value[1], 7);  // still that of the sweep before
  EXPECT_EQ(Channel(1).Value[2], 7);
  EXPECT_NEAR(session->Display.PrevPhaseReflection, 10, 1e-5);
}

TEST_F(GroupDelay, TheGraphShowsTheSecondPointsDelayAtTheFirst) {
  session->Channel(1).Value[2] = 7;
  Send(1, 10);
  Send(2, 6.4);
  Send(3, 2.8);
  EXPECT_EQ(sink.PointNumbers(), (std::vector<int>{1, 1, 2, 3}));
  EXPECT_EQ(sink.Shown(1), Channel(1).Value[2]);
}

TEST_F(GroupDelay, SmoothedByOnePointTheFirstPointShowsTheSecondsDelayToo) {
  session->Averaging.SmoothOn = true;
  session->Averaging.SmoothingPercent = 1;
  session->Channel(1).Value[2] = 7;
  Send(1, 10);
  Send(2, 6.4);
  EXPECT_NEAR(sink.Shown(1), 10, 1e-5);
  EXPECT_NEAR(sink.Shown(2), 10, 1e-5);
}

TEST_F(GroupDelay, SmoothingTakesInTheFirstPointOnce) {
  session->Averaging.SmoothOn = true;
  session->Averaging.SmoothingPercent = 3;
  Send(1, 0);
  Send(2, -3.6);
  Send(3, -10.8);
  EXPECT_EQ(sink.PointNumbers(), (std::vector<int>{2, 1}));
  EXPECT_NEAR(sink.Points[0].Value, (10 + 10 + 20) / 3.0, 1e-4);
}

// Intentional: one previous phase serves all channels that show a reflection.
TEST_F(GroupDelay, TwoReflectionChannelsDisturbEachOther) {
  session->Display.DisplaySet = DisplaySet::OneTwo;
  session->Channel(2).Parameter = Parameter::S22;
  Send(1, 0, Parameter::S11);
  Send(1, 50, Parameter::S22);
  Send(2, -3.6, Parameter::S11);
  // From 50 degrees of S22 to -3.6 of S11.
  EXPECT_NEAR(Channel(1).Value[2], 53.6 / 360 / 1e6 / 1e-9, 1e-4);
}

TEST_F(GroupDelay, ReflectionAndTransmissionLeaveEachOtherAlone) {
  session->Display.DisplaySet = DisplaySet::OneTwo;
  session->Channel(2).Parameter = Parameter::S21;
  for (int i = 1; i <= 3; ++i) {
    Send(i, 100 - 7.2 * i, Parameter::S21);
    Send(i, -3.6 * i, Parameter::S11);
  }
  EXPECT_NEAR(Channel(1).Value[3], 10, 1e-4);
  EXPECT_NEAR(Channel(2).Value[3], 20, 1e-4);
}

}  // namespace
}  // namespace qk
