// SPDX-License-Identifier: MIT
// Components, lines and echoes at the simulated ports, read as ohms, henries, farads, metres and
// through a gate.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <fstream>
#include <functional>
#include <numbers>
#include <sstream>
#include <vector>

#include "simulated_program.h"
#include "trace/time_domain.h"

namespace qk::test {
namespace {

using Number = std::complex<double>;

double Omega(double hertz) {
  return 2 * std::numbers::pi * hertz;
}

// A Touchstone file of a device in a system of 50 ohms, a row each MHz.
using Device = std::function<std::vector<Number>(double hertz)>;
void Write(const std::string& path, const Device& device) {
  std::ofstream out(path);
  out.precision(17);
  out << "# MHz S RI R 50\n";
  for (int mhz = 1; mhz <= 3101; ++mhz) {
    out << mhz;
    for (const Number& s : device(mhz * 1e6)) out << " " << s.real() << " " << s.imag();
    out << "\n";
  }
}

Number Capacitor(double f) {
  return {0, -1 / (Omega(f) * 10e-12)};
}
Number Coil(double f) {
  return {0, Omega(f) * 100e-9};
}
Number LossyCoil(double f) {
  return {50, Omega(f) * 10e-9};
}

struct ComponentFixture : SimulatedProgram {
  void Show(const char* parameter, const char* type, const char* element = nullptr) {
    Click("Form1.SetDisplay");
    Pick("DisplayPara.ListParameters", parameter);
    Pick("DisplayPara.ListGraphType", type);
    Type("DisplayPara.SensInput", "10");
    if (element != nullptr) {
      EXPECT_TRUE(Pick("DisplayPara.ListElement", element));
    }
    Click("DisplayPara.ApplyDisplay");
    EXPECT_EQ(Troubles(), Texts());
  }
  double Value(int i) const { return session.Channel(1).Value[static_cast<std::size_t>(i)]; }

  // L, C and Q of channel 1 against what the corrected data say, computed by impedance (S to ohms),
  // and against the part that was connected.
  void ExpectParts(const char* parameter, const char* element,
                   const std::function<Number(Number)>& impedance,
                   const std::function<Number(double)>& part) {
    const ComplexArray& data = ArrayOf(session.Data, *Named<Parameter>(parameter));
    for (const char* type : {"L", "C", "Q"}) {
      Show(parameter, type, element);
      double worst = 0;
      for (int i = 1; i <= session.Plan.NumPoints; ++i) {
        const double w = Omega(session.Plan.Frequency(i - 1));
        const auto partOf = [&](Number z) {
          return *type == 'L'   ? z.imag() / w * 1e9
                 : *type == 'C' ? -1 / (w * z.imag()) * 1e12
                                : std::fabs(z.imag()) / z.real();
        };
        const Number z = impedance({data[i - 1].re, data[i - 1].im});
        const double expected = partOf(z);
        ASSERT_NEAR(Value(i), expected, 1e-6 * std::fabs(expected)) << type << " at point " << i;
        if (*type != 'Q')
          worst = std::max(worst, std::fabs(Value(i) / partOf(part(w / Omega(1))) - 1));
      }
      EXPECT_LT(worst, 0.02) << type;
    }
  }
};

struct OnePort : ComponentFixture {
  explicit OnePort(const char* points = "201") {
    Bench("noise off");
    SetSweep("100", "1000", points);
    Choose("Option3");
    Press({"O_Cal", "S_Cal", "M_Cal", "App_Cal"});
    instrument.BackToDevice();
  }
};

TEST(ComponentAccuracy, OfAReflection) {
  OnePort vna;
  for (const auto& part : {Capacitor, Coil, LossyCoil}) {
    const std::string path = vna.folder.File("part.s1p");
    Write(path,
          [&part](double f) { return std::vector<Number>{(part(f) - 50.0) / (part(f) + 50.0)}; });
    vna.Bench("port1 device " + path);
    vna.Measure();
    vna.ExpectParts(
        "S11", nullptr, [](Number s) { return 50.0 * (1.0 + s) / (1.0 - s); }, part);
  }
}

TEST(ComponentAccuracy, OfASeriesAndAShuntElement) {
  ComponentFixture vna;
  vna.Bench("noise off");
  vna.SetSweep("100", "1000", "201");
  vna.Choose("Option5");
  vna.Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal", "App_Cal"});
  vna.instrument.BackToDevice();
  const std::string path = vna.folder.File("part.s2p");
  for (const auto& part : {Capacitor, LossyCoil}) {
    Write(path, [&part](double f) {
      const Number z = part(f), through = 100.0 / (100.0 + z), back = z / (100.0 + z);
      return std::vector<Number>{back, through, through, back};
    });
    vna.Bench("device " + path);
    vna.Measure();
    vna.ExpectParts(
        "S21", "Series", [](Number s) { return 100.0 * (1.0 - s) / s; }, part);
    Write(path, [&part](double f) {
      const Number z = part(f), through = 2.0 * z / (2.0 * z + 50.0),
                   back = -50.0 / (2.0 * z + 50.0);
      return std::vector<Number>{back, through, through, back};
    });
    vna.Bench("device " + path);
    vna.Measure();
    vna.ExpectParts(
        "S21", "Shunt", [](Number s) { return 50.0 * s / (2.0 * (1.0 - s)); }, part);
  }
}

struct TimeFixture : ComponentFixture {
  TimeFixture() {
    SetSweep("3", "3072", "1024 (TD)");
    Choose("Option3");
    Press({"O_Cal", "S_Cal", "M_Cal"});
    Click("Calibration.App_Cal");
    instrument.BackToDevice();
  }
  void MeasureDevice(const Device& device) {
    const std::string path = folder.File("device.s1p");
    Write(path, device);
    Bench("port1 device " + path);
    Measure();
  }
};

TEST(ComponentAccuracy, OfALineOfAnotherImpedanceInOhmsAndMillimetres) {
  TimeFixture vna;
  vna.Show("S11", "TD Z");
  vna.Click("Form1.SetDomain");
  vna.Type("TDR_Opts.Text1", "-1");
  vna.Type("TDR_Opts.Text2", "5");
  vna.Click("TDR_Opts.Option3");
  vna.Type("TDR_Opts.Text4", "6");
  vna.Click("TDR_Opts.AxisDistance");
  vna.Click("TDR_Opts.Command1");
  EXPECT_EQ(vna.Troubles(), Texts());
  for (const double ohms : {25.0, 75.0, 100.0}) {
    const double g = (ohms - 50) / (ohms + 50);
    vna.MeasureDevice([g](double f) {
      const double turn = 2 * Omega(f) / kSpeedOfLight;
      const Number there = std::polar(1.0, -turn * 0.3);
      return std::vector<Number>{g * (1.0 - there) / (1.0 - g * g * there) *
                                 std::polar(1.0, -turn * 0.1)};
    });
    const GraphRecord& graph = vna.program.graphs().Graph(0);
    const auto step = [&](int k) { return (vna.Value(k) - 50) / (vna.Value(k) + 50) / g; };
    double first = 0, second = 0;
    for (int k = 2; k <= 1024; ++k) {
      const double metres = PositionOf(graph, k);
      if (first == 0 && step(k) >= 0.5) first = metres;
      if (step(k - 1) > (1 + g * g) / 2 && step(k) <= (1 + g * g) / 2) second = metres;
      if (metres > 0.15 && metres < 0.35) {
        ASSERT_NEAR(vna.Value(k), ohms, 1) << metres;
      }
    }
    EXPECT_NEAR(first, 0.1, 0.003) << ohms;
    EXPECT_NEAR(second, 0.4, 0.003) << ohms;
  }
}

TEST(ComponentAccuracy, OfAnEchoThatAGateTakesFromBesideALargerOne) {
  TimeFixture vna;
  vna.Show("S11", "LogMag");
  vna.Click("Form1.SetDomain");
  vna.Click("TDR_Opts.GateOn");
  vna.Type("TDR_Opts.GateStart", "0.5");
  vna.Type("TDR_Opts.GateStop", "3.5");
  vna.Window("TDR_Opts").Tick("GateCH1", true);
  vna.Click("TDR_Opts.Command1");
  EXPECT_EQ(vna.Troubles(), Texts());
  vna.MeasureDevice([](double f) {
    return std::vector<Number>{std::polar(0.2, -Omega(f) * 2e-9) +
                               std::polar(0.5, -Omega(f) * 5e-9)};
  });
  for (int i = 1; i <= 716; ++i) EXPECT_NEAR(vna.Value(i), 20 * std::log10(0.2), 0.05) << i;

  // What is saved stays as measured unless it is asked for.
  const auto saved = [&vna](bool gated) {
    vna.Click("Form1.SaveMeasurements");
    vna.Click("SaveMeas.Option4");
    vna.Window("SaveMeas").Tick("Check6", gated);
    const std::string path = vna.folder.File("saved.dat");
    vna.fake.Choices.push_back(path);
    vna.Click("SaveMeas.Command1");
    std::ifstream in(path);
    double mhz = 0, db = 0, least = 1e9, most = -1e9;
    for (std::string line; std::getline(in, line);) {
      std::istringstream(line) >> mhz >> db;
      if (mhz > 2100) break;
      least = std::min(least, db);
      most = std::max(most, db);
    }
    return most - least;
  };
  EXPECT_GT(saved(false), 5);
  EXPECT_LT(saved(true), 0.1);
}

}  // namespace
}  // namespace qk::test
