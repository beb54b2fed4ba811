// SPDX-License-Identifier: MIT
// What the program's uncertainties are worth, for each kind of calibration: calibrations that are
// wrong by known sizes and unknown phases are checked by the program, hundreds of pieces are
// measured on them, with noise, and the true values are looked for in the bands and read-outs.
#include <algorithm>
#include <cmath>
#include <fstream>
#include <iostream>
#include <memory>
#include <random>

#include "check_fixture.h"
#include "control/graph_verbs.h"
#include "control/quality_bands.h"
#include "trace/band.h"

namespace qk::test {
namespace {

struct KindOfCal {
  const char* Name;
  const char* Option;
  std::initializer_list<const char*> Standards;
  std::initializer_list<const char*> Checks;
  Parameter Measures;
  bool Weak = false;  // also pieces that transmit next to nothing
};
const KindOfCal kOnePort{
    "S11", "Option3", {"O_Cal", "S_Cal", "M_Cal"}, {"Standards"}, Parameter::S11};
const KindOfCal kResponseAlone{
    "S21", "Option4", {"Thru_Cal"}, {"PortMatch", "Through", "Isolation"}, Parameter::S21};
const KindOfCal kResponseIsolation{"S21 and isolation",     "Option4",
                                   {"Thru_Cal", "Iso_Cal"}, {"PortMatch", "Through", "Isolation"},
                                   Parameter::S21,          true};
const KindOfCal kOnePath{"S11+S21",
                         "Option6",
                         {"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal"},
                         {"Standards", "Through", "Isolation"},
                         Parameter::S21};
const KindOfCal kTwelve{"12 terms",
                        "Option5",
                        {"O_Cal", "S_Cal", "M_Cal", "Iso_Cal", "Thru_Cal"},
                        {"Standards", "Through", "Isolation"},
                        Parameter::S21};

struct Covered {
  int Values = 0, Inside = 0, Devices = 0, ReadOuts = 0, ReadOutsInside = 0;
  double Squares = 0;

  double Ratio() const { return std::sqrt(Squares / Values); }
  double Share() const { return static_cast<double>(Inside) / Values; }
  double ShareOfReadOuts() const { return static_cast<double>(ReadOutsInside) / ReadOuts; }
};

struct Coverage : CheckWindow {
  std::mt19937 random{41};

  double Between(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  }
  // A vector of a size and of any phase, turning slowly over frequency.
  void Add(ComplexArray& array, double size, bool relative) {
    const double at = Between(-M_PI, M_PI), ns = Between(0.05, 0.6);
    for (int k = 0; k < vna.session.Plan.NumPoints; ++k) {
      const Cplx error =
          std::polar(size, at - 2 * M_PI * vna.session.Plan.Frequency(k) * ns * 1e-9);
      const Cplx old(array[k].re, array[k].im);
      const Cplx now = relative ? old * (1.0 + error) : old + error;
      array.Set(k, {now.real(), now.imag()});
    }
  }
  void Disturb() {
    for (PortTerms* terms : {&vna.session.Terms.Forward, &vna.session.Terms.Reverse}) {
      Add(terms->ED, 0.008, false);
      Add(terms->ES, 0.015, false);
      Add(terms->ERT, 0.006, true);
      Add(terms->EL, 0.015, false);
      Add(terms->ETT, 0.008, true);
      Add(terms->EX, 5e-5, false);
    }
    Add(vna.session.Terms.IsoFwd0, 5e-5, false);
  }
  // A passive piece of constant sizes: reciprocal, and without loss where lossless.
  void ConnectPiece(double s21, double s11, bool lossless) {
    const double a = Between(-180, 180), b = Between(-180, 180);
    const double turn = lossless ? (a + b) / 2 + 90 : Between(-180, 180);
    const std::string path = vna.folder.File("piece.s2p");
    std::ofstream file(path);
    file << "# MHz S MA R 50\n";
    for (const int mhz : {1, 3100})
      file << mhz << " " << s11 << " " << a << " " << s21 << " " << turn << " " << s21 << " "
           << turn << " " << s11 << " " << b << "\n";
    file.close();
    vna.Bench("device " + path);
  }
  Cplx TruthAt(Parameter parameter, int k) {
    return vna.instrument.Truth(vna.session.Plan.Frequency(k))[parameter == Parameter::S11 ? 0 : 1];
  }

  // "-20.13 ± 0.21 dB", "-9.4 +3.5 -6.0 dB" or "-63.1 dB, at most -57.2".
  static bool Holds(const std::string& text, double db) {
    const double value = std::stod(text);
    if (const auto at = text.find("at most "); at != std::string::npos)
      return db <= std::stod(text.substr(at + 8));
    if (const auto at = text.find("± "); at != std::string::npos)
      return std::abs(db - value) <= std::stod(text.substr(at + 3));
    const auto up = text.find(" +"), down = text.find(" -", 1);
    if (up == std::string::npos || down == std::string::npos) return false;
    return db <= value + std::stod(text.substr(up + 2)) &&
           db >= value - std::stod(text.substr(down + 2));
  }

  void TakePiece(Covered& covered, Parameter parameter) {
    for (int n = 0; n < 4; ++n) vna.Measure();  // the fourth shows the noise
    Controller& controller = vna.program.controller();
    ASSERT_EQ(WhyNoWholeUncertainty(controller.quality(), vna.session, parameter), "");
    const QualityBands bands(vna.session, controller.quality());
    for (int k = 0; k < vna.session.Plan.NumPoints; k += 5) {
      const auto region = bands.RegionAt(BandKind::Uncertainty, 1, k);
      ASSERT_TRUE(region);
      const double error =
          std::hypot(region->Centre.re, region->Centre.im) - std::abs(TruthAt(parameter, k));
      const double u = region->Radius / kCoverage;
      covered.Squares += error * error / (u * u);
      covered.Inside += std::abs(error) <= region->Radius ? 1 : 0;
      ++covered.Values;
    }
    constexpr int kRead = 26;
    const std::string text = vna.At("MarkerTable.Value11").Caption;
    const double truth = 20 * std::log10(std::abs(TruthAt(parameter, kRead - 1)));
    covered.ReadOutsInside += Holds(text, truth) ? 1 : 0;
    ++covered.ReadOuts;
    ++covered.Devices;
  }

  Covered Measure(const KindOfCal& kind, bool lossless) {
    vna.SetSweep("3", "3000", "51");
    vna.Choose(kind.Option);
    for (const char* button : kind.Standards) vna.Press({button});
    if (kind.Standards.size() == 1)
      vna.fake.Answers.push_back(Answer::Yes);  // "Isolation Not Done."
    vna.Click("Calibration.App_Cal");
    vna.Bench("noise on");
    vna.Click("Form1.CheckCal");
    Controller& controller = vna.program.controller();
    EXPECT_TRUE(ShowParameter(controller, 1, kind.Measures));
    PutMarker(controller, 1, 26);
    vna.Click("Form1.UncertaintyBand");
    vna.Click("Form1.MarkerTable");
    const auto terms = std::make_unique<ErrorTerms>(vna.session.Terms);
    Covered covered;
    for (int cal = 0; cal < 26; ++cal) {
      vna.session.Terms = *terms;
      Disturb();
      for (const char* check : kind.Checks) Check(check);
      for (int piece = 0; piece < 20; ++piece) {
        // Down to where the isolation is a tenth.
        double s21 = Between(0.05, 0.98);
        if (kind.Measures == Parameter::S11) s21 = 0;
        if (kind.Weak && piece % 2 == 0) s21 = std::pow(10, Between(-3.3, -1.3));
        const double most = std::sqrt(1 - s21 * s21);
        ConnectPiece(s21, lossless ? most : Between(0.05, 0.95) * most, lossless);
        TakePiece(covered, kind.Measures);
        if (HasFatalFailure()) return covered;
      }
    }
    RecordProperty("rms_error_over_u", std::to_string(covered.Ratio()));
    RecordProperty("inside_k2", std::to_string(covered.Share()));
    std::cout << kind.Name << (lossless ? ", lossless" : "") << ": " << covered.Devices
              << " pieces, RMS error / u " << covered.Ratio() << ", inside k = 2 "
              << covered.Share() << ", read-outs inside " << covered.ShareOfReadOuts() << "\n";
    return covered;
  }
  // A device in the noise, on a calibration of 12 terms that was checked, after so many sweeps of
  // it. S21 in decibels.
  Covered MeasureInNoise(int sweeps, double db) {
    CalibrateAll("51");
    vna.Bench("noise on");
    for (const char* check : kTwelve.Checks) Check(check);
    Controller& controller = vna.program.controller();
    EXPECT_TRUE(ShowParameter(controller, 1, Parameter::S21));
    const QualityBands bands(vna.session, controller.quality());
    Covered covered;
    for (int piece = 0; piece < 60; ++piece) {
      ConnectPiece(std::pow(10, db / 20), 0.02, false);
      controller.quality().Hints.Forget();
      for (int n = 0; n < sweeps; ++n) vna.Measure();
      for (int k = 0; k < vna.session.Plan.NumPoints; k += 5) {
        const auto region = bands.RegionAt(BandKind::Uncertainty, 1, k);
        const double size = std::hypot(region->Centre.re, region->Centre.im),
                     truth = std::abs(TruthAt(Parameter::S21, k));
        const double error = size - truth, u = region->Radius / kCoverage;
        const auto ends =
            EndsOf(vna.session, vna.session.Channel(1), *region, k + 1, 20 * std::log10(size));
        const double shown = 20 * std::log10(truth);
        covered.Squares += error * error / (u * u);
        covered.Inside += ends && ends->Low <= shown && shown <= ends->High ? 1 : 0;
        ++covered.Values;
      }
      ++covered.Devices;
    }
    std::cout << sweeps << " sweeps at " << db << " dB: RMS error / u " << covered.Ratio()
              << ", inside k = 2 in dB " << covered.Share() << "\n";
    return covered;
  }
  void ExpectTight(const Covered& covered) {
    EXPECT_GE(covered.Devices, 500);
    EXPECT_GT(covered.Ratio(), 0.95);
    EXPECT_LT(covered.Ratio(), 1.05);
    EXPECT_GE(covered.Share(), 0.93);
    EXPECT_GE(covered.ShareOfReadOuts(), 0.93);
  }
};

TEST_F(Coverage, OfAOnePortCalibration) {
  ExpectTight(Measure(kOnePort, false));
}

TEST_F(Coverage, OfTwelveTermsInTransmission) {
  ExpectTight(Measure(kTwelve, false));
}

TEST_F(Coverage, OfTwelveTermsInReflection) {
  KindOfCal kind = kTwelve;
  kind.Measures = Parameter::S11;
  kind.Name = "12 terms, S11";
  ExpectTight(Measure(kind, false));
}

TEST_F(Coverage, OfAResponse) {
  ExpectTight(Measure(kResponseAlone, true));
}

TEST_F(Coverage, OfAResponseWithIsolation) {
  ExpectTight(Measure(kResponseIsolation, true));
}

TEST_F(Coverage, OfOneDirection) {
  ExpectTight(Measure(kOnePath, true));
}

// The seed of the bench's noise is fixed, and so are the figures. Few sweeps must not narrow the
// band.
TEST_F(Coverage, OfFewSweepsOfADeviceInTheNoise) {
  for (const int sweeps : {4, 5, 8, 20}) {
    const Covered weak = MeasureInNoise(sweeps, -90);
    EXPECT_GT(weak.Ratio(), 0.95);
    EXPECT_LT(weak.Ratio(), 1.05);
    EXPECT_GE(weak.Share(), 0.93);
    EXPECT_GE(MeasureInNoise(sweeps, -125).Share(), 0.93);
  }
}

// S22 is not measured. It is assumed as large as a passive reciprocal piece with this S11 and S21
// can have it, so that the band is wider than it need be for most pieces with loss.
TEST_F(Coverage, OfOneDirectionAndAPieceWithLossIsMoreThanEnough) {
  const Covered covered = Measure(kOnePath, false);
  EXPECT_GT(covered.Ratio(), 0.6);
  EXPECT_LT(covered.Ratio(), 1.05);
  EXPECT_GE(covered.Share(), 0.93);
}

// Neither S11 nor S22 is measured.
TEST_F(Coverage, OfAResponseAndAPieceWithLossIsMoreThanEnough) {
  const Covered covered = Measure(kResponseAlone, false);
  EXPECT_GT(covered.Ratio(), 0.5);
  EXPECT_LT(covered.Ratio(), 1.05);
  EXPECT_GE(covered.Share(), 0.93);
}

}  // namespace
}  // namespace qk::test
