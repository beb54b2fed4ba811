// SPDX-License-Identifier: MIT
// Measurements on the simulated instrument whose result theory gives: steps at the end of a line,
// a line moved by its own length, a device between two networks.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <complex>
#include <fstream>
#include <numbers>

#include "true_device.h"

namespace qk::test {
namespace {

constexpr double kSampleNs = 0.1629194;
constexpr double kLineMetres = 0.3;

// A resistance at the end of 0.3 m of line without loss.
void WriteEndOfLine(const std::string& path, double reflection) {
  std::ofstream out(path);
  out << "# MHz S RI R 50\n";
  out.precision(15);
  for (int mhz = 1; mhz <= 3101; ++mhz) {
    const Phasor s =
        std::polar(1.0, -2 * std::numbers::pi * mhz * 1e6 * 2 * kLineMetres / kSpeedOfLight);
    out << mhz << " " << reflection * s.real() << " " << reflection * s.imag() << "\n";
  }
}

// One-port calibrated at the 1024 points, channel 1 in the time domain.
struct StepFixture : SimulatedProgram {
  StepFixture() {
    SetSweep("3", "3072", "1024 (TD)");
    Choose("Option3");
    Press({"O_Cal", "S_Cal", "M_Cal"});
    Click("Calibration.App_Cal");
    instrument.BackToDevice();
    Click("Form1.SetDisplay");
    Pick("DisplayPara.ListGraphType", "TD");
    Type("DisplayPara.SensInput", "0.25");
    Click("DisplayPara.ApplyDisplay");
    Click("Form1.SetDomain");
    Click("TDR_Opts.Option3");  // Kaiser Bessel: a flat top to read a level from
    Click("TDR_Opts.Command1");
    EXPECT_EQ(Troubles(), Texts());
  }
  double Value(int k) const { return session.Channel(1).Value[static_cast<std::size_t>(k)]; }
  double Ns(int k) const { return session.TimeDomain.TdT1 + (k - 1) * session.TimeDomain.TdStep; }
  double LevelAt(double ns) const {
    int k = 1;
    while (k < 1024 && Ns(k) < ns) ++k;
    return Value(k);
  }
  // When the trace passes half of its level.
  double EdgeNs(double level) const {
    for (int k = 2; k <= 1024; ++k)
      if (Value(k) / level >= 0.5)
        return Ns(k - 1) +
               (Ns(k) - Ns(k - 1)) * (0.5 * level - Value(k - 1)) / (Value(k) - Value(k - 1));
    return -1;
  }
};

TEST(KnownAnswers, TheStepOfAResistanceAtTheEndOfALineIsItsReflectionAfterTheLinesDelay) {
  StepFixture vna;
  for (const double ohms : {1e12, 0.0, 25.0, 100.0}) {  // an open, a short, two mismatches
    const double reflection = (ohms - 50) / (ohms + 50);
    const std::string path = vna.folder.File("end.s1p");
    WriteEndOfLine(path, reflection);
    vna.Bench("port1 device " + path);
    vna.Measure();
    const double delayNs = 2 * kLineMetres / kSpeedOfLight * 1e9;
    EXPECT_NEAR(vna.EdgeNs(reflection), delayNs, kSampleNs) << ohms;
    for (const double ns : {5.0, 20.0, 100.0})
      EXPECT_NEAR(vna.LevelAt(ns), reflection, 0.01) << ohms << " ohms at " << ns;
    for (const double ns : {-4.0, -1.0, 1.0})
      EXPECT_NEAR(vna.LevelAt(ns), 0, 0.01) << ohms << " ohms at " << ns;
  }
}

TEST(KnownAnswers, TheResponseOfAMeasuredSweepIsTheSumOfItsTermsOneByOne) {
  StepFixture vna;
  const std::string path = vna.folder.File("end.s1p");
  WriteEndOfLine(path, -0.7);
  vna.Bench("port1 device " + path);
  vna.Measure();
  const TimeDomainArrays& td = vna.session.TdArrays;
  double response = 0, largest = 0, worst = 0;
  for (std::size_t n = 0; n < td.TdStepResponse.size(); ++n) {
    for (std::size_t k = 0; k < td.TdSpecRe.size(); ++k) {
      const double a = static_cast<double>(k) * 6.2831853 * static_cast<double>(n) / 2048;
      response += std::cos(a) * td.TdSpecRe[k] + std::sin(a) * td.TdSpecIm[k];
    }
    largest = std::max(largest, std::fabs(response));
    worst = std::max(worst, std::fabs(response - td.TdStepResponse[n]));
  }
  EXPECT_GT(largest, 0.6);
  EXPECT_LT(worst / largest, 1e-9);
}

TEST(KnownAnswers, ALineMovedByItsOwnLengthShowsFlatPhase) {
  SimulatedProgram vna;
  vna.SetSweep("3", "3000", "201");
  vna.Choose("Option5");
  vna.Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal"});
  vna.Click("Form1.SetDisplay");
  vna.Pick("DisplayPara.ListParameters", "S21");
  vna.Pick("DisplayPara.ListGraphType", "Phase");
  vna.Click("DisplayPara.ApplyDisplay");
  vna.ApplyAndMeasure("line 120");
  const auto spread = [&] {
    const auto& value = vna.session.Channel(1).Value;
    return *std::max_element(value.begin() + 1, value.begin() + 202) -
           *std::min_element(value.begin() + 1, value.begin() + 202);
  };
  EXPECT_GT(spread(), 300);
  vna.Click("Form1.SetEnhancement");
  vna.Type("EnhancePara.TimeInput", "120");
  vna.Click("EnhancePara.ApplyEnhance");
  vna.Measure();
  EXPECT_LT(spread(), 0.4);
  // Found by itself, it is the same plane.
  vna.Type("EnhancePara.TimeInput", "0");
  vna.Click("EnhancePara.ApplyEnhance");
  vna.Measure();
  vna.Click("EnhancePara.Command1");
  EXPECT_NEAR(vna.session.Planes.PlaneS21, 0.12, 1e-4);
}

// S11, S21, S12, S22 of a two-port at a frequency.
using TwoPortAt = std::function<std::array<Phasor, 4>(double hertz)>;

// A mismatched two-port, different from each side, whose phases turn as in a line of so many
// metres.
TwoPortAt Mismatched(double reflection, double transmission, double metres) {
  return [=](double hertz) {
    const Phasor turn = std::polar(1.0, -2 * std::numbers::pi * hertz * metres / kSpeedOfLight);
    return std::array<Phasor, 4>{reflection * turn, transmission * turn, 0.9 * transmission * turn,
                                 -0.6 * reflection * turn * turn};
  };
}

// Two two-ports in a row, by the signal flow between them.
TwoPortAt InARow(const TwoPortAt& first, const TwoPortAt& second) {
  return [=](double hertz) {
    const auto a = first(hertz), b = second(hertz);
    const Phasor loop = 1.0 - a[kS22] * b[kS11];
    return std::array<Phasor, 4>{a[kS11] + a[kS21] * b[kS11] * a[kS12] / loop,
                                 a[kS21] * b[kS21] / loop, a[kS12] * b[kS12] / loop,
                                 b[kS22] + b[kS12] * a[kS22] * b[kS21] / loop};
  };
}

void WriteTwoPort(const std::string& path, const TwoPortAt& twoPort) {
  std::ofstream out(path);
  out << "# MHz S RI R 50\n";
  out.precision(15);
  for (int mhz = 0; mhz <= 3100; mhz += 4) {  // from 0 Hz on: without it the spline begins at 0
    out << mhz;
    for (const Phasor s : twoPort(mhz * 1e6)) out << " " << s.real() << " " << s.imag();
    out << "\n";
  }
}

TEST(KnownAnswers, ADeviceBetweenTwoNetworksComesBack) {
  SimulatedProgram vna;
  const TwoPortAt first = Mismatched(0.25, 0.8, 0.05), device = Mismatched(0.4, 0.6, 0.03),
                  second = Mismatched(0.15, 0.7, 0.08);
  WriteTwoPort(vna.folder.File("first.s2p"), first);
  WriteTwoPort(vna.folder.File("second.s2p"), second);
  WriteTwoPort(vna.folder.File("all.s2p"), InARow(InARow(first, device), second));
  vna.SetSweep("3", "3080", "201");
  vna.Choose("Option5");
  vna.Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal"});
  vna.Click("Form1.SetEnhancement");
  vna.fake.Choices = {vna.folder.File("first.s2p"), vna.folder.File("second.s2p")};
  vna.Window("EnhancePara").Tick("Check1", true);
  vna.Window("EnhancePara").Tick("Check2", true);
  vna.ApplyAndMeasure("device " + vna.folder.File("all.s2p"));
  const auto worst = [&](std::size_t parameter, const ComplexArray& data) {
    return Compare(vna, data, [&](double hertz) { return device(hertz)[parameter]; });
  };
  EXPECT_GT(worst(kS21, vna.session.Data.S21).Db, 3);
  vna.Click("EnhancePara.Option1");
  vna.Measure();
  EXPECT_TRUE(vna.Troubles().empty());
  EXPECT_LT(worst(kS11, vna.session.Data.S11).Db, 0.02);
  EXPECT_LT(worst(kS21, vna.session.Data.S21).Db, 0.02);
  EXPECT_LT(worst(kS12, vna.session.Data.S12).Db, 0.02);
  EXPECT_LT(worst(kS22, vna.session.Data.S22).Db, 0.02);
  EXPECT_LT(worst(kS21, vna.session.Data.S21).Deg, 0.2);
}

TEST(KnownAnswers, AMatchedLoadSeenFrom75OhmsReflectsAFifth) {
  SimulatedProgram vna;
  vna.SetSweep("3", "3000", "101");
  vna.Choose("Option5");
  vna.Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal"});
  vna.Click("Form1.SetEnhancement");
  vna.Window("EnhancePara").Tick("Check3", true);
  vna.Type("EnhancePara.Text1", "75");
  vna.Click("EnhancePara.ApplyEnhance");
  // Attenuated enough that the far 50 ohms show, not the 75 of the system.
  vna.ApplyAndMeasure("attenuator 40");
  const Difference s11 = Compare(vna, vna.session.Data.S11, [](double) { return Phasor(-0.2, 0); });
  EXPECT_LT(s11.Db, 0.02);
  EXPECT_LT(s11.Deg, 0.2);
}

}  // namespace
}  // namespace qk::test
