// SPDX-License-Identifier: MIT
// What is saved and read again agrees within the printed digits, in each form.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <random>
#include <sstream>
#include <vector>

#include "files/measurement_text.h"
#include "files/touchstone.h"
#include "files/touchstone_sweep.h"
#include "numeric/complex.h"
#include "trace/de_embed.h"
#include "trace/formatting.h"

namespace qk {
namespace {

constexpr std::array<Parameter, 4> kOrder{Parameter::S11, Parameter::S21, Parameter::S12,
                                          Parameter::S22};

// A sweep of seeded numbers: smooth, so that a spline between its points is near.
std::unique_ptr<Session> RandomSweep(unsigned seed, std::int16_t points) {
  auto session = MakeSession();
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> part(0, 1);
  PlanGrid& grid = session->Plan;
  grid.NumPoints = points;
  grid.StepFreq = 100 * std::floor(1 + 30000 * part(random));
  grid.StartFreq = 3e6 + 100 * std::floor(1e5 * part(random));
  for (const Parameter parameter : kOrder) {
    const double magnitude = 0.01 + part(random);
    const double turns = 2 * part(random);
    for (int i = 0; i < points; ++i) {
      const double angle = 6.28 * turns * i / points;
      ArrayOf(session->Data, parameter)
          .Set(i, {magnitude * std::cos(angle), magnitude * std::sin(angle)});
    }
  }
  return session;
}

std::string Saved(Session& session, MeasurementForm form) {
  return MeasurementText(session, {form, {true, true, true, true}, false}, {"x", "D", "T"});
}

// Half a unit of the fifth decimal in magnitude, and of the second in degrees.
double PrintedDigits(double magnitude) {
  return 0.5e-5 + magnitude * 0.005 * M_PI / 180 + 1e-7;
}

TEST(RoundTrip, OfATouchstoneFileIsTheSweepAtItsFrequencies) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    const auto session = RandomSweep(seed, seed % 2 == 0 ? 801 : 51);
    const auto table =
        ReadTouchstone(Saved(*session, MeasurementForm::Touchstone), Reference::ConvertedTo50);
    ASSERT_TRUE(table.Ok()) << table.Why().Text();
    ASSERT_EQ(table->Rows, session->Plan.NumPoints);
    ASSERT_EQ(table->Kind(), FileKind::AllFour);
    for (int i = 0; i < table->Rows; ++i) {
      const auto row = static_cast<std::size_t>(i + 1);
      EXPECT_FLOAT_EQ(table->FileTable[0][row], static_cast<float>(session->Plan.Frequency(i)));
      for (std::size_t p = 0; p < 4; ++p) {
        const Complex truth = ArrayOf(session->Data, kOrder[p])[i];
        const double digits = PrintedDigits(Magnitude(truth.re, truth.im));
        ASSERT_NEAR(table->FileTable[2 * p + 1][row], truth.re, digits);
        ASSERT_NEAR(table->FileTable[2 * p + 2][row], truth.im, digits);
      }
    }
  }
}

TEST(RoundTrip, OfATouchstoneFileIntoMemoryIsTheTraceOnTheSweep) {
  const auto session = RandomSweep(99, 401);
  const auto table =
      ReadTouchstone(Saved(*session, MeasurementForm::Touchstone), Reference::ConvertedTo50);
  ASSERT_TRUE(table.Ok());
  session->Display.DisplaySet = DisplaySet::All;
  for (int n = 1; n <= 4; ++n)
    session->Channel(n).Parameter = kOrder[static_cast<std::size_t>(n - 1)];
  EXPECT_EQ(ToMemory(*table, *session), Interval::Good);
  for (int n = 1; n <= 4; ++n) {
    const ChannelSettings& channel = session->Channel(n);
    for (int i = 0; i < 401; ++i) {
      const Complex truth = ArrayOf(session->Data, channel.Parameter)[i];
      const double digits = PrintedDigits(Magnitude(truth.re, truth.im)) + 1e-6;  // 32-bit knots
      ASSERT_NEAR(channel.MemoryRe[static_cast<std::size_t>(i + 1)], truth.re, digits) << n << i;
      ASSERT_NEAR(channel.MemoryIm[static_cast<std::size_t>(i + 1)], truth.im, digits);
    }
  }
}

TEST(RoundTrip, OfATwoPortLoadedAsANetworkTakesItselfOffToAThrough) {
  for (unsigned seed = 50; seed < 60; ++seed) {
    const auto session = RandomSweep(seed, 201);
    for (int i = 0; i < 201; ++i) {  // a device that lets something through
      const double angle = 0.05 * i + seed;
      session->Data.S21.Set(i, {0.8 * std::cos(angle), 0.8 * std::sin(angle)});
      session->Data.S12.Set(i, {0.6 * std::cos(angle), -0.6 * std::sin(angle)});
    }
    const auto table =
        ReadTouchstone(Saved(*session, MeasurementForm::Touchstone), Reference::Ignored);
    ASSERT_TRUE(table.Ok());
    const bool port1 = seed % 2 == 0;
    NetworkState& networks = session->Networks;
    (port1 ? networks.Port1NetOn : networks.Port2NetOn) = true;
    EXPECT_EQ(ToNetwork(*table, session->Plan, networks.OfPort(port1 ? 1 : 2)), Interval::Good);
    session->Impedance.DeEmbedOn = true;
    // Errors of the four parameters add up, over the device's own transmission both ways.
    const double digits = 4 * (PrintedDigits(1.01) + 1e-6) / (0.8 * 0.6);
    const auto expect = [&](const ComplexArray& array, int i, double re) {
      ASSERT_NEAR(array[i].re, re, digits) << seed << " " << i;
      ASSERT_NEAR(array[i].im, 0, digits) << seed << " " << i;
    };
    for (int i = 0; i < 201; ++i) {
      DeEmbedPointAll(*session, i);
      expect(session->Data.S11, i, 0);
      expect(session->Data.S21, i, 1);
      expect(session->Data.S12, i, 1);
      expect(session->Data.S22, i, 0);
    }
  }
}

TEST(RoundTrip, OfFewerParametersIsTheirKind) {
  const auto session = RandomSweep(5, 51);
  const auto kind = [&](std::array<bool, 4> parameters) {
    const std::string text =
        MeasurementText(*session, {MeasurementForm::Touchstone, parameters, false}, {});
    return ReadTouchstone(text, Reference::ConvertedTo50)->Kind();
  };
  EXPECT_EQ(kind({true, false, false, false}), FileKind::OneParameter);
  EXPECT_EQ(kind({true, true, false, false}), FileKind::WithS21);
  EXPECT_EQ(kind({true, true, true, false}), FileKind::WithS21);
  EXPECT_EQ(kind({true, true, true, true}), FileKind::AllFour);
}

TEST(RoundTrip, OfAnotherImpedanceIsConvertedBackTo50Ohms) {
  const auto session = RandomSweep(6, 51);
  session->Impedance.SystemZo = 75;
  const std::string text = Saved(*session, MeasurementForm::Touchstone);
  const auto as50 = ReadTouchstone(text, Reference::ConvertedTo50);
  const auto asItStands = ReadTouchstone(text, Reference::Ignored);
  ASSERT_TRUE(as50.Ok() && asItStands.Ok());
  EXPECT_NEAR(asItStands->FileTable[1][1], session->Data.S11[0].re, 1e-4);
  EXPECT_GT(std::fabs(as50->FileTable[1][1] - asItStands->FileTable[1][1]), 1e-3);
}

// The three plain forms, read as any tool for columns does: words of a line.
std::vector<std::vector<double>> Columns(const std::string& text) {
  std::vector<std::vector<double>> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    std::istringstream words(line);
    lines.emplace_back();
    for (double value; words >> value;) lines.back().push_back(value);
  }
  return lines;
}

using Pair = std::array<double, 2>;
void CheckColumns(MeasurementForm form, const std::function<Pair(Complex)>& wanted,
                  const std::function<Pair(std::size_t, Pair)>& digits) {
  for (unsigned seed = 30; seed < 40; ++seed) {
    const auto session = RandomSweep(seed, 101);
    const auto lines = Columns(Saved(*session, form));
    ASSERT_EQ(lines.size(), 101u);
    for (int i = 0; i < 101; ++i) {
      const auto& line = lines[static_cast<std::size_t>(i)];
      ASSERT_EQ(line.size(), 9u);
      EXPECT_EQ(line[0], session->Plan.Frequency(i) / 1e6);  // a bare number reads back the same
      for (std::size_t p = 0; p < 4; ++p) {
        const Pair truth = wanted(ArrayOf(session->Data, kOrder[p])[i]);
        const Pair within = digits(p, truth);
        ASSERT_NEAR(line[2 * p + 1], truth[0], within[0] * 1.0001) << i << " " << p;
        ASSERT_NEAR(line[2 * p + 2], truth[1], within[1] * 1.0001) << i << " " << p;
      }
    }
  }
}

double Degrees(Complex z) {
  return static_cast<double>(PhaseDeg(z.re, z.im));
}

TEST(RoundTrip, OfMagnitudeAndPhaseAgreesWithinThePrintedDigits) {
  CheckColumns(
      MeasurementForm::MagPhase,
      [](Complex z) {
        return Pair{Magnitude(z.re, z.im), Degrees(z)};
      },
      [](std::size_t, Pair) {
        return Pair{0.5e-5, 0.005};
      });
}

TEST(RoundTrip, OfDecibelsAndPhaseAgreesWithinThePrintedDigits) {
  CheckColumns(
      MeasurementForm::LogMagPhase,
      [](Complex z) {
        return Pair{MagnitudeDb(z.re, z.im), Degrees(z)};
      },
      [](std::size_t p, Pair) {
        return Pair{p == 2 ? 0.5e-4 : 0.5e-5, 0.005};
      });
}

TEST(RoundTrip, OfRealAndImaginaryAgreesWithinThePrintedDigits) {
  const auto within = [](double value) { return std::fabs(value) * 0.5e-4 + 1e-300; };
  CheckColumns(
      MeasurementForm::RealImag,
      [](Complex z) {
        return Pair{z.re, z.im};
      },
      [&](std::size_t, Pair t) {
        return Pair{within(t[0]), within(t[1])};
      });
}

}  // namespace
}  // namespace qk
