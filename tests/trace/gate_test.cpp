// SPDX-License-Identifier: MIT
#include "trace/gate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <random>

#include "plot_record.h"
#include "trace/formatting.h"
#include "trace/time_domain.h"

namespace qk {
namespace {

using test::PlotRecord;
using Number = std::complex<double>;

struct Echo {
  double Size, Seconds;
};

class Gates : public testing::Test {
 protected:
  Gates() {
    session->Plan.NumPoints = 1024;
    session->Plan.StartFreq = 3e6;
    session->Plan.StepFreq = 3e6;
    session->Plan.StopFreq = 3072e6;
    channel.Gated = true;
    td.Gate = GateKind::Gate;
  }
  Number Wave(const Echo& echo, int i) const {
    return std::polar(echo.Size,
                      -2 * std::numbers::pi * session->Plan.Frequency(i - 1) * echo.Seconds);
  }
  Complex Sum(std::initializer_list<Echo> echoes, int i) const {
    Number sum = 0;
    for (const Echo& echo : echoes) sum += Wave(echo, i);
    return {sum.real(), sum.imag()};
  }
  void Sweep(std::initializer_list<Echo> echoes) {
    for (int i = 1; i <= 1024; ++i)
      DispatchPoint(*session, sink, Sum(echoes, i), i, Parameter::S11);
  }
  // The largest distance in dB of channel 1's LogMag from an echo's size, up to a part of the band.
  double WorstDb(double size, double part) const {
    double worst = 0;
    for (int i = 1; i <= part * 1024; ++i)
      worst = std::max(
          worst, std::fabs(channel.Value[static_cast<std::size_t>(i)] - 20 * std::log10(size)));
    return worst;
  }

  std::unique_ptr<Session> session = MakeSession();
  ChannelSettings& channel = session->Channel(1);
  TimeDomainState& td = session->TimeDomain;
  PlotRecord sink;
};

TEST_F(Gates, TakeAnEchoFromBesideALargerOne) {
  td.GateStart = 0.5;
  td.GateStop = 3.5;
  Sweep({{0.2, 2e-9}, {0.5, 5e-9}});
  EXPECT_LT(WorstDb(0.2, 0.7), 0.01);
  td.GateStart = 3.5;
  td.GateStop = 6.5;
  Sweep({{0.2, 2e-9}, {0.5, 5e-9}});
  EXPECT_LT(WorstDb(0.5, 0.7), 0.01);
}

TEST_F(Gates, TakeASmallEchoFromFarFromALargeOne) {
  td.GateStart = 7;
  td.GateStop = 13;
  Sweep({{0.9, 2e-9}, {0.01, 10e-9}});
  EXPECT_LT(WorstDb(0.01, 0.7), 0.11);
}

TEST_F(Gates, AroundTimeZeroKeepWhatComesAtOnce) {
  td.GateStart = -2;
  td.GateStop = 2;
  Sweep({{0.3, 0}, {0.5, 6e-9}});
  EXPECT_LT(WorstDb(0.3, 0.7), 0.01);
}

TEST_F(Gates, ANotchIsTheTraceMinusTheGate) {
  td.GateStart = 3.5;
  td.GateStop = 6.5;
  td.Gate = GateKind::Notch;
  Sweep({{0.2, 2e-9}, {0.5, 5e-9}});
  EXPECT_LT(WorstDb(0.2, 0.7), 0.02);
}

TEST_F(Gates, ShowNoPointBeforeTheWholeSweepIsThere) {
  for (int i = 1; i < 1024; ++i)
    DispatchPoint(*session, sink, Sum({{0.2, 2e-9}}, i), i, Parameter::S11);
  EXPECT_TRUE(sink.Points.empty());
  DispatchPoint(*session, sink, Sum({{0.2, 2e-9}}, 1024), 1024, Parameter::S11);
  EXPECT_EQ(sink.Points.size(), 1024u);
}

TEST_F(Gates, ActOnlyWhereTheyCan) {
  EXPECT_TRUE(GateActs(*session, channel));
  channel.GraphType = GraphType::Td;  // shows the times that the gate is set by
  EXPECT_FALSE(GateActs(*session, channel));
  channel.GraphType = GraphType::LogMag;
  EXPECT_FALSE(GateActs(*session, session->Channel(2)));
  session->Plan.NumPoints = 801;
  EXPECT_FALSE(GateActs(*session, channel));
  session->Plan.NumPoints = 1024;
  td.Gate = GateKind::Off;
  EXPECT_FALSE(GateActs(*session, channel));
}

TEST_F(Gates, LeaveTheDelayOfOtherChannelsAlone) {
  channel.GraphType = GraphType::GroupDelay;
  channel.Units = Unit::Ns;
  session->Channel(2).GraphType = GraphType::GroupDelay;
  session->Channel(2).Units = Unit::Ns;
  session->Display.DisplaySet = DisplaySet::OneTwo;
  session->Channel(2).Parameter = Parameter::S11;
  td.GateStart = 0.5;
  td.GateStop = 3.5;
  Sweep({{0.2, 2e-9}, {0.5, 5e-9}});
  const auto alone = MakeSession();
  alone->Plan = session->Plan;
  alone->Channel(1).GraphType = GraphType::GroupDelay;
  alone->Channel(1).Units = Unit::Ns;
  PlotRecord other;
  for (int i = 1; i <= 1024; ++i)
    DispatchPoint(*alone, other, Sum({{0.2, 2e-9}, {0.5, 5e-9}}, i), i, Parameter::S11);
  EXPECT_EQ(session->Channel(2).Value, alone->Channel(1).Value);
  EXPECT_NEAR(channel.Value[300], 2, 0.01);
}

// Gate and notch together are the trace, whatever it is.
TEST_F(Gates, AndNotchTogetherAreTheTrace) {
  std::mt19937 engine(3);
  std::uniform_real_distribution<double> any(-1, 1);
  GateArrays::Points points;
  for (Complex& z : points) z = {any(engine), any(engine)};
  td.GateStart = 10;
  td.GateStop = 30;
  ApplyGate(*session, points);
  const GateArrays::Points kept = session->Gates.Work;
  td.Gate = GateKind::Notch;
  ApplyGate(*session, points);
  for (std::size_t k = 1; k <= 1024; ++k) {
    EXPECT_NEAR(kept[k].re + session->Gates.Work[k].re, points[k].re, 1e-9);
    EXPECT_NEAR(kept[k].im + session->Gates.Work[k].im, points[k].im, 1e-9);
  }
}

class Distances : public Gates {
 protected:
  // 100 mm of 50 ohms, 300 mm of z ohms, 50 ohms behind.
  Complex Line(double z, int i) const {
    const double g = (z - 50) / (z + 50);
    const double turn = 4 * std::numbers::pi * session->Plan.Frequency(i - 1) / kSpeedOfLight;
    const Number there = std::polar(1.0, -turn * 0.3);
    const Number s = g * (1.0 - there) / (1.0 - g * g * there) * std::polar(1.0, -turn * 0.1);
    return {s.real(), s.imag()};
  }
  double Metres(int k) const {
    return MetresAt(*session, Parameter::S11, td.TdT1 + (k - 1) * td.TdStep);
  }
};

TEST_F(Distances, ALineOfAnotherImpedanceIsReadInOhmsAndMetres) {
  channel.GraphType = GraphType::TdImpedance;
  channel.Units = Unit::Ohm;
  td.Axis = TimeAxis::Distance;
  td.TdT1 = -1;
  td.TdT2 = 5;
  td.TdStep = 6.0 / 1023;
  td.TdWindow = TdWindow::KaiserB;
  td.TdKaiserOrder = 6;
  for (const double z : {25.0, 75.0, 100.0}) {
    for (int i = 1; i <= 1024; ++i) DispatchPoint(*session, sink, Line(z, i), i, Parameter::S11);
    const double g = (z - 50) / (z + 50);
    const auto step = [](double ohms) { return (ohms - 50) / (ohms + 50); };
    double first = 0, second = 0;
    for (int k = 2; k <= 1024; ++k) {
      const double before = step(channel.Value[static_cast<std::size_t>(k - 1)]) / g;
      const double now = step(channel.Value[static_cast<std::size_t>(k)]) / g;
      if (first == 0 && before < 0.5 && now >= 0.5) first = Metres(k);
      // Behind the line what remains is the echo that has gone its way three times.
      if (before > (1 + g * g) / 2 && now <= (1 + g * g) / 2) second = Metres(k);
      if (Metres(k) > 0.16 && Metres(k) < 0.34) {
        EXPECT_NEAR(channel.Value[static_cast<std::size_t>(k)], z, 0.25) << Metres(k);
      }
    }
    EXPECT_NEAR(first, 0.1, 0.001) << z;
    EXPECT_NEAR(second, 0.4, 0.001) << z;
  }
}

TEST_F(Distances, CountWithTheVelocityFactorAndOnceThroughForATransmission) {
  const double air = MetresAt(*session, Parameter::S11, 10);
  td.VelocityFactor = 0.66;
  EXPECT_NEAR(MetresAt(*session, Parameter::S11, 10), 0.66 * air, 1e-12);
  EXPECT_NEAR(MetresAt(*session, Parameter::S21, 10), 2 * 0.66 * air, 1e-12);
}

TEST_F(Distances, AnOpenHasAGapAndAShortNoOhms) {
  channel.GraphType = GraphType::TdImpedance;
  channel.Units = Unit::Ohm;
  session->TdArrays.TdInRe.fill(0);
  for (const double re : {-1.0, 0.0}) {
    for (int i = 1; i <= 1024; ++i) DispatchPoint(*session, sink, {re, 0}, i, Parameter::S11);
    EXPECT_NEAR(channel.Value[600], re == 0 ? 50 : 0, 0.6) << re;
  }
}

}  // namespace
}  // namespace qk
