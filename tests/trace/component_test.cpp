// SPDX-License-Identifier: MIT
// Impedances and what is read off them: the types |Z|, R, X, L, C and Q of a reflection, a series
// and a shunt element; gaps; unwrapped phase.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>

#include "plot_record.h"
#include "trace/autoscale.h"
#include "trace/formatting.h"
#include "trace/memory.h"

namespace qk {
namespace {

using test::PlotRecord;
using Number = std::complex<double>;

struct Part {
  GraphType Type;
  Unit Of;
  double (*Value)(Number z, double w);  // in the unit
};
const Part kParts[] = {
    {GraphType::ImpedanceMagnitude, Unit::Ohm, [](Number z, double) { return std::abs(z); }},
    {GraphType::Resistance, Unit::Kilohm, [](Number z, double) { return z.real() / 1e3; }},
    {GraphType::Reactance, Unit::MilliOhm, [](Number z, double) { return z.imag() * 1e3; }},
    {GraphType::Inductance, Unit::NanoHenry, [](Number z, double w) { return z.imag() / w * 1e9; }},
    {GraphType::Capacitance, Unit::PicoFarad,
     [](Number z, double w) { return -1e12 / (w * z.imag()); }},
    {GraphType::Quality, Unit::U, [](Number z, double) { return std::abs(z.imag()) / z.real(); }},
};

class Components : public testing::Test {
 protected:
  double Show(GraphType type, Unit unit, Complex s, int point = 7) {
    channel.GraphType = type;
    channel.Units = unit;
    DispatchPointToChannel(*session, sink, 1, s, point, channel.Parameter);
    return channel.Value[static_cast<std::size_t>(point)];
  }
  double Omega() const { return 2 * std::numbers::pi * session->Plan.Frequency(6); }
  // What S-parameter an impedance has in a system of zo ohms.
  static Complex Measured(Element element, Number z, double zo) {
    Number s;
    if (element == Element::Reflection) s = (z - zo) / (z + zo);
    if (element == Element::Series) s = 2 * zo / (2 * zo + z);
    if (element == Element::Shunt) s = 2.0 * z / (zo + 2.0 * z);
    return {s.real(), s.imag()};
  }

  std::unique_ptr<Session> session = MakeSession();
  ChannelSettings& channel = session->Channel(1);
  PlotRecord sink;
};

TEST_F(Components, ComeBackFromTheSParameterOfEachElement) {
  const Number values[] = {{50, 10}, {0.5, -3}, {1200, 40}, {3, 900}, {-20, 5}};
  for (const Element element : {Element::Reflection, Element::Series, Element::Shunt})
    for (const double zo : {50.0, 75.0})
      for (const Number z : values)
        for (const Part& part : kParts) {
          channel.Parameter = element == Element::Reflection ? Parameter::S22 : Parameter::S12;
          channel.Element = element;
          session->Impedance.SystemZo = static_cast<float>(zo);
          const double expected = part.Value(z, Omega());
          EXPECT_NEAR(Show(part.Type, part.Of, Measured(element, z, zo)), expected,
                      1e-9 * std::fabs(expected))
              << NameOf(part.Type) << " " << NameOf(element) << " " << z << " at " << zo;
        }
}

TEST_F(Components, AReflectionIsOneWhateverWasChosenAndATransmissionNever) {
  channel.Element = Element::Shunt;
  EXPECT_EQ(ElementOf(channel), Element::Reflection);
  channel.Parameter = Parameter::S21;
  EXPECT_EQ(ElementOf(channel), Element::Shunt);
  channel.Element = Element::Reflection;
  EXPECT_EQ(ElementOf(channel), Element::Series);
}

TEST_F(Components, HaveNoValueWhereTheFormulaHasNone) {
  const auto gap = [this](GraphType type, Complex s) {
    return std::isnan(Show(type, Unit::Ohm, s));
  };
  for (const Part& part : kParts) EXPECT_TRUE(gap(part.Type, {1, 0})) << NameOf(part.Type);
  EXPECT_FALSE(gap(GraphType::ImpedanceMagnitude, {1 - 1e-9, 0}));
  EXPECT_TRUE(gap(GraphType::Capacitance, {0.5, 0}));  // no reactance
  EXPECT_EQ(Show(GraphType::Inductance, Unit::NanoHenry, {0.5, 0}), 0);
  EXPECT_TRUE(gap(GraphType::Quality, {0, 1}));  // no resistance
  channel.Parameter = Parameter::S21;
  for (const Part& part : kParts) EXPECT_TRUE(gap(part.Type, {0, 0})) << NameOf(part.Type);
  channel.Element = Element::Shunt;
  for (const Part& part : kParts) EXPECT_TRUE(gap(part.Type, {1, 0})) << NameOf(part.Type);
  EXPECT_EQ(Show(GraphType::ImpedanceMagnitude, Unit::Ohm, {0, 0}), 0);
}

TEST_F(Components, AreNotCutOffNearTheirPoles) {
  // 50 Mohm: no floor in the division, no limit of the value.
  const double value =
      Show(GraphType::Resistance, Unit::Megohm, Measured(Element::Reflection, 5e7, 50));
  EXPECT_NEAR(value, 50, 1e-6);
}

TEST_F(Components, WorkOnMemoryMathLikeEveryType) {
  session->Display.DisplayMode = DisplayMode::MemoryMath;
  session->Display.MemoryFunction = MemoryFunction::Subtract;
  channel.MemoryValid = true;
  channel.MemoryRe[7] = 0.25;
  EXPECT_NEAR(Show(GraphType::Resistance, Unit::Ohm, {0.75, 0}), 150, 1e-9);
}

TEST_F(Components, SmoothingLeavesAGapAndTakesNothingFromIt) {
  session->Averaging.SmoothOn = true;
  session->Averaging.SmoothingPercent = 3;  // three points
  channel.GraphType = GraphType::Resistance;
  channel.Units = Unit::Ohm;
  for (int i = 1; i <= 101; ++i)
    DispatchPointToChannel(*session, sink, 1, i == 50 ? Complex{1, 0} : Complex{0, 0}, i,
                           Parameter::S11);
  EXPECT_TRUE(std::isnan(channel.SmoothValue[50]));
  EXPECT_TRUE(std::isnan(sink.Shown(50)));
  EXPECT_NEAR(channel.SmoothValue[49], 50, 1e-4);
  EXPECT_NEAR(channel.SmoothValue[51], 50, 1e-4);
}

TEST_F(Components, AHoldComparesWhatIsShown) {
  channel.GraphType = GraphType::Reactance;
  session->Display.MemoryHold = MemoryHold::Max;
  const Complex high = Measured(Element::Reflection, {10, 30}, 50);
  const Complex low = Measured(Element::Reflection, {400, -5}, 50);
  EXPECT_TRUE(HoldWins(*session, channel, high, low, 7));
  EXPECT_FALSE(HoldWins(*session, channel, low, high, 7));
  EXPECT_FALSE(HoldWins(*session, channel, {1, 0}, low, 7));  // a gap never wins
  EXPECT_TRUE(HoldWins(*session, channel, low, {1, 0}, 7));   // and always gives way
  session->Display.MemoryHold = MemoryHold::Min;
  EXPECT_TRUE(HoldWins(*session, channel, low, high, 7));
  channel.GraphType = GraphType::LogMag;
  EXPECT_TRUE(HoldWins(*session, channel, {0.1, 0}, {0.5, 0}, 7));
}

TEST_F(Components, AutoscaleTakesTheUnitOfTheTraceAndPassesOverGaps) {
  channel.GraphType = GraphType::Resistance;
  channel.Units = Unit::Ohm;
  channel.Value.fill(std::nan(""));
  EXPECT_FALSE(Autoscale(channel, 101).Changed);  // nothing there
  channel.Value[3] = 2000;
  channel.Value[4] = 3000;
  const AutoscaleResult result = Autoscale(channel, 101);
  EXPECT_TRUE(result.Changed);
  EXPECT_EQ(result.Units, Unit::Kilohm);
  EXPECT_EQ(result.Reference, 2.5);
  EXPECT_EQ(result.Scale, 0.14);  // 1.05 / 8, rounded up: the trace stays on the graph
  channel.Value[3] = 50;
  channel.Value[4] = 50.001;
  EXPECT_EQ(Autoscale(channel, 101).Units, Unit::Ohm);
  EXPECT_EQ(Autoscale(channel, 101).Scale, 0.01);
}

TEST_F(Components, EachTypeHasAUnitOfItsFamilyAndAGapWhereItIsOne) {
  for (std::size_t i = 0; i < kGraphTypes.size(); ++i) {
    const GraphTypeRow& row = kGraphTypes[i];
    if (row.NaturalUnit) {
      EXPECT_EQ(RowOf(*row.NaturalUnit).Family, *row.Family) << row.Name;
    }
    const bool impedance =
        row.Form == PointForm::Component || static_cast<GraphType>(i) == GraphType::TdImpedance;
    EXPECT_EQ(row.HasGaps(), impedance) << row.Name;
  }
}

class Unwrapped : public Components {
 protected:
  void Sweep(double degreesAPoint) {
    channel.Parameter = Parameter::S21;
    channel.GraphType = GraphType::UnwrappedPhase;
    channel.Units = Unit::Deg;
    for (int i = 1; i <= 101; ++i) {
      const Number s = std::polar(0.5, degreesAPoint * i * std::numbers::pi / 180);
      DispatchPointToChannel(*session, sink, 1, {s.real(), s.imag()}, i, Parameter::S21);
    }
  }
};

TEST_F(Unwrapped, CarriesThePhaseOnOverWholeTurns) {
  for (const double step : {-100.0, 170.0, -179.0}) {
    Sweep(step);
    for (int i = 2; i <= 101; ++i)
      ASSERT_NEAR(channel.Value[static_cast<std::size_t>(i)] - channel.Value[1], step * (i - 1),
                  1e-3)
          << step << " " << i;
    EXPECT_LE(std::fabs(channel.Value[1]), 180);
  }
}

TEST_F(Unwrapped, BeginsAnewWithEachSweep) {
  Sweep(-100);
  const double first = channel.Value[1];
  Sweep(-100);
  EXPECT_EQ(channel.Value[1], first);
  EXPECT_NEAR(channel.Value[101] - first, -10000, 1e-3);
}

}  // namespace
}  // namespace qk
