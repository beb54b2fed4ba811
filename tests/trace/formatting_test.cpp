// SPDX-License-Identifier: MIT
#include "trace/formatting.h"

#include <gtest/gtest.h>

#include "plot_record.h"

namespace qk {
namespace {

using test::PlotRecord;

class Formatting : public testing::Test {
 protected:
  // The value that channel 1 gives point 7 for z, by graph type and units.
  double Value(const char* graphType, const char* units, Complex z, Parameter p = Parameter::S11) {
    ChannelSettings& channel = session->Channel(1);
    channel.GraphType = *Named<GraphType>(graphType);
    channel.Units = *Named<Unit>(units);
    channel.Parameter = p;
    DispatchPointToChannel(*session, sink, 1, z, 7, p);
    return channel.Value[7];
  }

  std::unique_ptr<Session> session = MakeSession();
  PlotRecord sink;
};

TEST_F(Formatting, LogMagIsTwentyLogOfTheMagnitude) {
  EXPECT_NEAR(Value("LogMag", "dB", {3, 4}), 13.979400086720376, 1e-12);
  EXPECT_NEAR(Value("LogMag", "dB", {0, -0.1}), -20, 1e-12);
}

TEST_F(Formatting, AMagnitudeBelow1em11Shows220DbBelow) {
  EXPECT_NEAR(Value("LogMag", "dB", {0, 0}), -220, 1e-10);
  EXPECT_NEAR(Value("LogMag", "dB", {1e-12, 1e-12}), -220, 1e-10);
}

TEST_F(Formatting, LogMagAndPhaseKnowNoUnits) {
  EXPECT_NEAR(Value("LogMag", "mU", {10, 0}), 20, 1e-12);
  EXPECT_EQ(Value("Phase", "mU", {0, 1}), 90);
}

TEST_F(Formatting, PhaseOfJIs90AsTheFlooredQuotientYieldsIt) {
  EXPECT_EQ(Value("Phase", "deg", {0, 1}), 90);
  EXPECT_EQ(Value("Phase", "deg", {0, -1}), -90);
}

TEST_F(Formatting, PhaseOfMinusOneIs180) {
  EXPECT_EQ(Value("Phase", "deg", {-1, 0}), 180);
}

TEST_F(Formatting, PhaseIsWrappedAndHeldIn32Bits) {
  const double value = Value("Phase", "deg", {-1, -1e-3});
  EXPECT_NEAR(value, -179.942704, 1e-4);
  EXPECT_EQ(value, static_cast<double>(static_cast<float>(value)));
}

TEST_F(Formatting, LinearTypesStandInUAndAreDividedByAThousandthInMU) {
  EXPECT_DOUBLE_EQ(Value("LinMag", "U", {3, 4}), 5);
  EXPECT_DOUBLE_EQ(Value("LinMag", "mU", {3, 4}), 5000);
  EXPECT_DOUBLE_EQ(Value("Real", "U", {3, 4}), 3);
  EXPECT_DOUBLE_EQ(Value("Real", "mU", {3, 4}), 3000);
  EXPECT_DOUBLE_EQ(Value("Imag", "U", {3, -4}), -4);
  EXPECT_DOUBLE_EQ(Value("Imag", "mU", {3, -4}), -4000);
}

TEST_F(Formatting, SwrOfAHalfIsThree) {
  EXPECT_DOUBLE_EQ(Value("SWR", "U", {0.3, 0.4}), 3);
  EXPECT_DOUBLE_EQ(Value("SWR", "mU", {0.3, 0.4}), 3000);
}

TEST_F(Formatting, AReflectionAbove099ShowsSwr199) {
  EXPECT_NEAR(Value("SWR", "U", {1.5, 0}), 199, 1e-3);
  EXPECT_EQ(Value("SWR", "U", {0.995, 0}), Value("SWR", "U", {1.5, 0}));
}

TEST_F(Formatting, SmithGivesBothCoordinatesAndIsNeverSmoothed) {
  session->Averaging.SmoothOn = true;
  session->Averaging.SmoothingPercent = 10;
  EXPECT_EQ(Value("Smith", "dB", {0.25, -0.5}, Parameter::S22), 0.25);
  EXPECT_EQ(session->Channel(1).Value2[7], -0.5);
  ASSERT_EQ(sink.Points.size(), 1u);
  EXPECT_EQ(sink.Points[0].Point, 7);
  EXPECT_EQ(sink.Points[0].Value, 0.25);
  EXPECT_EQ(sink.Points[0].Value2, -0.5);
}

TEST_F(Formatting, TransmissionKnowsNoSmithAndNoSwr) {
  session->Channel(1).Value[7] = 42;
  session->Channel(1).Value2[7] = 43;
  EXPECT_EQ(Value("Smith", "dB", {0.25, -0.5}, Parameter::S21), 42);
  EXPECT_EQ(Value("SWR", "U", {0.25, -0.5}, Parameter::S12), 42);
  EXPECT_EQ(session->Channel(1).Value2[7], 43);
  EXPECT_TRUE(sink.Points.empty());
}

TEST_F(Formatting, Value2StaysStaleOnARectangularGraph) {
  session->Channel(1).Value2[7] = 9;
  Value("Real", "U", {1, 2});
  EXPECT_EQ(session->Channel(1).Value2[7], 9);
}

TEST_F(Formatting, ThePlottedValueIsThatOfTheChannel) {
  const double value = Value("LogMag", "dB", {0.5, 0.5}, Parameter::S12);
  ASSERT_EQ(sink.Points.size(), 1u);
  EXPECT_EQ(sink.Points[0].Channel, 1);
  EXPECT_EQ(sink.Points[0].Point, 7);
  EXPECT_EQ(sink.Points[0].Value, value);
}

TEST_F(Formatting, APointOutsideTheArraysIsDropped) {
  for (const int point : {0, -1, 1025, 30000})
    DispatchPointToChannel(*session, sink, 1, {1, 1}, point, Parameter::S11);
  EXPECT_TRUE(sink.Points.empty());
  DispatchPointToChannel(*session, sink, 1, {1, 1}, 1024, Parameter::S11);
  EXPECT_EQ(sink.PointNumbers(), (std::vector<int>{1024}));
}

TEST_F(Formatting, DispatchWalksTheDisplayedChannelsOfTheParameterInAscendingOrder) {
  session->Channel(1).Parameter = Parameter::S21;
  session->Channel(2).Parameter = Parameter::S11;
  session->Channel(3).Parameter = Parameter::S21;
  session->Channel(4).Parameter = Parameter::S21;
  session->Display.DisplaySet = DisplaySet::All;
  DispatchPoint(*session, sink, {1, 0}, 3, Parameter::S21);
  EXPECT_EQ(sink.Channels(), (std::vector<int>{1, 3, 4}));
}

TEST_F(Formatting, ADisplaySetChoosesItsChannels) {
  const auto channels = [&](const char* set) {
    sink.Points.clear();
    session->Display.DisplaySet = *Named<DisplaySet>(set);
    DispatchPoint(*session, sink, {1, 0}, 3, Parameter::S11);
    return sink.Channels();
  };
  EXPECT_EQ(channels("one"), (std::vector<int>{1}));
  EXPECT_EQ(channels("one-two"), (std::vector<int>{1, 2}));
  EXPECT_EQ(channels("three-four"), (std::vector<int>{3, 4}));
  EXPECT_EQ(channels("all"), (std::vector<int>{1, 2, 3, 4}));
}

TEST_F(Formatting, OneChannelIsFormattedWhateverIsDisplayedIfItShowsTheParameter) {
  session->Display.DisplaySet = DisplaySet::One;
  session->Channel(4).Parameter = Parameter::S12;
  DispatchPointToChannel(*session, sink, 4, {1, 0}, 3, Parameter::S12);
  DispatchPointToChannel(*session, sink, 4, {1, 0}, 3, Parameter::S21);
  EXPECT_EQ(sink.Channels(), (std::vector<int>{4}));
}

TEST_F(Formatting, ParametersHaveArrays) {
  EXPECT_EQ(&ArrayOf(session->Data, Parameter::S11), &session->Data.S11);
  EXPECT_EQ(&ArrayOf(session->Data, Parameter::S21), &session->Data.S21);
  EXPECT_EQ(&ArrayOf(session->Data, Parameter::S12), &session->Data.S12);
  EXPECT_EQ(&ArrayOf(session->Data, Parameter::S22), &session->Data.S22);
}

TEST_F(Formatting, SmoothedValuesGoToTheGraphInsteadOfTheRawOnes) {
  session->Averaging.SmoothOn = true;
  session->Averaging.SmoothingPercent = 3;  // 3 points of 101: a plain box
  session->Channel(1).GraphType = GraphType::Real;
  session->Channel(1).Units = Unit::U;
  for (int i = 1; i <= 3; ++i)
    DispatchPoint(*session, sink, {i == 3 ? 6.0 : 0.0, 0}, i, Parameter::S11);
  EXPECT_EQ(sink.PointNumbers(), (std::vector<int>{2, 1}));
  EXPECT_EQ(sink.Points[0].Value, 2);
  EXPECT_EQ(session->Channel(1).Value[3], 6);
}

TEST_F(Formatting, SmoothingNeedsBothTheSwitchAndAPercentage) {
  session->Channel(1).GraphType = GraphType::Real;
  session->Averaging.SmoothingPercent = 3;
  DispatchPoint(*session, sink, {1, 0}, 1, Parameter::S11);
  session->Averaging.SmoothOn = true;
  session->Averaging.SmoothingPercent = 0;
  DispatchPoint(*session, sink, {1, 0}, 2, Parameter::S11);
  EXPECT_EQ(sink.PointNumbers(), (std::vector<int>{1, 2}));
}

// Divided by a thousandth, not multiplied by a thousand: the last bit differs.
TEST_F(Formatting, AValueIsDividedByTheSizeOfItsUnit) {
  EXPECT_EQ(Value("Real", "mU", {0.7, 0}), 699.9999999999999);
  EXPECT_EQ(Value("Real", "mU", {0.57, 0}), 569.9999999999999);
}

}  // namespace
}  // namespace qk
