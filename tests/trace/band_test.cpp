// SPDX-License-Identifier: MIT
// Bands: what a region about a complex value is in the units of each graph type. The oracle samples
// the edge of the region.
#include "trace/band.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/quantity_text.h"

namespace qk {
namespace {

constexpr int kBandPoint = 34;

struct Bands : testing::Test {
  std::unique_ptr<Session> session = MakeSession();
  ChannelSettings& channel = session->Channel(1);

  void Show(GraphType type, Unit unit) {
    channel.GraphType = type;
    channel.Units = unit;
  }
  BandEnds Ends(Complex centre, double radius) {
    const auto ends = EndsOf(*session, channel, {centre, radius}, kBandPoint,
                             ShownFor(*session, channel, centre, kBandPoint));
    EXPECT_TRUE(ends);
    return ends.value_or(BandEnds{});
  }
  // The least and the largest value on the edge of the region.
  BandEnds Sampled(Complex centre, double radius) {
    BandEnds ends{1e300, -1e300};
    for (int i = 0; i < 3600; ++i) {
      const double at = i * std::numbers::pi / 1800;
      const double value = ShownFor(
          *session, channel, {centre.re + radius * std::cos(at), centre.im + radius * std::sin(at)},
          kBandPoint);
      ends = {std::min(ends.Low, value), std::max(ends.High, value)};
    }
    return ends;
  }
  void ExpectSampled(Complex centre, double radius, double part) {
    const BandEnds ends = Ends(centre, radius), truth = Sampled(centre, radius);
    const double width = truth.High - truth.Low;
    EXPECT_NEAR(ends.Low, truth.Low, part * width) << NameOf(channel.GraphType);
    EXPECT_NEAR(ends.High, truth.High, part * width) << NameOf(channel.GraphType);
  }
};

TEST_F(Bands, HoldAllValuesOfTheRegion) {
  const Complex z{0.3, -0.2};
  for (const auto& [type, unit] :
       {std::pair(GraphType::LogMag, Unit::Db), std::pair(GraphType::Phase, Unit::Deg),
        std::pair(GraphType::LinMag, Unit::MilliU), std::pair(GraphType::Real, Unit::U),
        std::pair(GraphType::Imag, Unit::MilliU), std::pair(GraphType::Swr, Unit::U),
        std::pair(GraphType::UnwrappedPhase, Unit::Deg)}) {
    Show(type, unit);
    ExpectSampled(z, 0.08, 1e-3);
  }
}

TEST_F(Bands, ReachZeroBeyondTheirRadius) {
  const auto ends = [&](GraphType type, double size) {
    Show(type, type == GraphType::LogMag ? Unit::Db : Unit::U);
    const Complex z{0, size};
    return EndsOf(*session, channel, {z, 0.1, 0.12}, kBandPoint,
                  ShownFor(*session, channel, z, kBandPoint))
        .value_or(BandEnds{});
  };
  EXPECT_EQ(ends(GraphType::LogMag, 0.119).Low, -HUGE_VAL);
  EXPECT_NEAR(ends(GraphType::LogMag, 0.119).High, 20 * std::log10(0.219), 1e-4);
  EXPECT_NEAR(ends(GraphType::LogMag, 0.121).Low, 20 * std::log10(0.021), 1e-3);
  EXPECT_EQ(ends(GraphType::LinMag, 0.119).Low, 0);
  EXPECT_NEAR(ends(GraphType::LinMag, 0.121).Low, 0.021, 1e-6);
  EXPECT_NEAR(ends(GraphType::Swr, 0.119).Low, 1, 1e-6);
  EXPECT_NEAR(ends(GraphType::Swr, 0.121).Low, 1.021 / 0.979, 1e-4);
  EXPECT_NEAR(ends(GraphType::Phase, 0.119).High - ends(GraphType::Phase, 0.119).Low, 360, 1e-3);
  EXPECT_LT(ends(GraphType::Phase, 0.121).High - ends(GraphType::Phase, 0.121).Low, 120);
}

TEST_F(Bands, OfImpedancesHoldToFirstOrder) {
  const Complex z{0.3, -0.2};
  for (const auto& [type, unit] :
       {std::pair(GraphType::ImpedanceMagnitude, Unit::Ohm),
        std::pair(GraphType::Resistance, Unit::Kilohm), std::pair(GraphType::Reactance, Unit::Ohm),
        std::pair(GraphType::Inductance, Unit::NanoHenry),
        std::pair(GraphType::Capacitance, Unit::PicoFarad)}) {
    Show(type, unit);
    ExpectSampled(z, 0.002, 0.02);
  }
  channel.Parameter = Parameter::S21;
  for (const Element element : {Element::Series, Element::Shunt}) {
    channel.Element = element;
    Show(GraphType::Reactance, Unit::Ohm);
    ExpectSampled(z, 0.002, 0.02);
  }
}

TEST_F(Bands, OfImpedancesEndWhereFirstOrderDoes) {
  Show(GraphType::Resistance, Unit::Ohm);
  const auto at = [&](Complex z, double radius) {
    return EndsOf(*session, channel, {z, radius}, kBandPoint, 50).has_value();
  };
  EXPECT_TRUE(at({0.8, 0}, 0.0499));
  EXPECT_FALSE(at({0.8, 0}, 0.0501)) << "a quarter of the way to an open";
  channel.Parameter = Parameter::S21;
  EXPECT_TRUE(at({0.4, 0}, 0.0999));
  EXPECT_FALSE(at({0.4, 0}, 0.1001)) << "... to no transmission";
  EXPECT_FALSE(at({0, 0}, 0)) << "no impedance at all";
}

TEST_F(Bands, WithoutALeastOrALargestValue) {
  Show(GraphType::LogMag, Unit::Db);
  EXPECT_TRUE(std::isinf(Ends({0.01, 0}, 0.01).Low));
  EXPECT_NEAR(Ends({0.01, 0}, 0.01).High, -40 + 20 * std::log10(2), 1e-9);
  Show(GraphType::Swr, Unit::U);
  EXPECT_TRUE(std::isinf(Ends({0.95, 0}, 0.06).High));
  EXPECT_NEAR(Ends({0.05, 0}, 0.06).Low, 1, 1e-6) << "it cannot be below 1";
  // Behind the end of the trace at 199 the band is where it is.
  EXPECT_NEAR(Ends({0.999, 0}, 0.02).Low, 1.979 / 0.021, 0.01);
  EXPECT_TRUE(std::isinf(Ends({0.999, 0}, 0.02).High));
  Show(GraphType::LinMag, Unit::U);
  EXPECT_EQ(Ends({0.01, 0}, 0.02).Low, 0);
  Show(GraphType::Phase, Unit::Deg);
  EXPECT_NEAR(Ends({0.01, 0}, 0.01).High, 180, 1e-9) << "any phase";
}

TEST_F(Bands, KeepTheirWidthAboutASmoothedValue) {
  Show(GraphType::LogMag, Unit::Db);
  const auto ends = EndsOf(*session, channel, {{0.1, 0}, 0.001}, kBandPoint, -19.5);
  EXPECT_NEAR(ends->High, -19.5 + 20 * std::log10(1.01), 1e-9);
}

TEST_F(Bands, AreNoneForSomeGraphTypesMathAndGate) {
  for (const GraphType type :
       {GraphType::GroupDelay, GraphType::Quality, GraphType::Td, GraphType::TdImpedance}) {
    channel.GraphType = type;
    EXPECT_TRUE(HasNoBand(*session, 1));
    EXPECT_EQ(WhyNoBand(*session, 1), NameOf(type));
    EXPECT_FALSE(EndsOf(*session, channel, {{0.1, 0}, 0.001}, kBandPoint, 1));
  }
  channel.GraphType = GraphType::LogMag;
  EXPECT_FALSE(HasNoBand(*session, 1));
  EXPECT_EQ(WhyNoBand(*session, 1), "");
  session->Display.DisplayMode = DisplayMode::MemoryMath;
  session->Display.MemoryFunction = MemoryFunction::Divide;
  EXPECT_EQ(WhyNoBand(*session, 1), "") << "no trace is stored";
  channel.MemoryValid = true;
  EXPECT_EQ(WhyNoBand(*session, 1), "memory math");
  EXPECT_TRUE(HasNoBand(*session, 1));
  session->Display.DisplayMode = DisplayMode::DataAndMemory;
  EXPECT_EQ(WhyNoBand(*session, 1), "");
  session->Plan.NumPoints = kMaxPoints;
  session->TimeDomain.Gate = GateKind::Notch;
  channel.Gated = true;
  EXPECT_EQ(WhyNoBand(*session, 1), "gate");
  EXPECT_TRUE(HasNoBand(*session, 1));
}

TEST(BandReadOut, HasTwoDigitsAndTheValueToTheSamePlace) {
  EXPECT_EQ(BandReadOut(-20.1347, {-20.341, -19.929}, Unit::Db), "-20.13 \xC2\xB1 0.21 dB");
  EXPECT_EQ(BandReadOut(-20.1347, {-20.1352, -20.1342}, Unit::Db), "-20.13470 \xC2\xB1 0.00050 dB");
  EXPECT_EQ(BandReadOut(45.2, {33.2, 57.2}, Unit::Deg), "45 \xC2\xB1 12 deg");
  EXPECT_EQ(BandReadOut(45.2, {45.2 - 9.96, 45.2 + 9.96}, Unit::Deg), "45 \xC2\xB1 10 deg");
  EXPECT_EQ(BandReadOut(1.3, {1.3, 1.3}, Unit::U), "1.300 \xC2\xB1 0.000 U");
}

TEST(BandReadOut, DistinguishesUnlikeHalves) {
  EXPECT_EQ(BandReadOut(-9.4, {-15.42, -5.88}, Unit::Db), "-9.4 +3.5 -6.0 dB");
  const double none = std::numeric_limits<double>::infinity();
  EXPECT_EQ(BandReadOut(-63.12, {-none, -57.2}, Unit::Db), "-63.1 dB, at most -57.2");
  EXPECT_EQ(BandReadOut(12.34, {8.13, none}, Unit::U), "12.3 U, at least 8.1");
  EXPECT_EQ(BandReadOut(std::nan(""), {0, 1}, Unit::Ohm), kNoValue);
}

TEST(BandReadOut, ChoosesThePrefixOfTheValue) {
  EXPECT_EQ(BandReadOut(4700, {4583, 4817}, Unit::Ohm), "4.70 \xC2\xB1 0.12 kohm");
}

}  // namespace
}  // namespace qk
