// SPDX-License-Identifier: MIT
// The uncertainty of S11 and S21 after a calibration of both directions with a wrong standard: what
// it leaves of directivity, source match and load match depends on each other. A test set of twelve
// terms, calibrated and checked as the program does, measures devices that are known.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <complex>
#include <functional>
#include <iostream>
#include <memory>
#include <numbers>
#include <random>
#include <vector>

#include "quality/quality_state.h"

namespace qk {
namespace {

struct Network {
  Cplx S11, S21, S12, S22;
  Network Turned() const { return {S22, S12, S21, S11}; }
};

// One drive direction, its leakage corrected.
struct DriveTerms {
  Cplx Directivity, SourceMatch, Tracking, LoadMatch, Through;
};

struct Raw {
  Cplx Reflection, Transmission;
};
Raw RawOf(const DriveTerms& t, const Network& s) {
  const Cplx det = s.S11 * s.S22 - s.S12 * s.S21;
  const Cplx loops =
      1.0 - t.SourceMatch * s.S11 - t.LoadMatch * s.S22 + t.SourceMatch * t.LoadMatch * det;
  return {t.Directivity + t.Tracking * (s.S11 - t.LoadMatch * det) / loops,
          t.Through * s.S21 / loops};
}

Cplx Delayed(double f, double ns) {
  return std::polar(1.0, -4 * std::numbers::pi * f * ns * 1e-9);
}

// A test set of the usual quality: reflections of -25 to -20 dB.
DriveTerms TestSetAt(double f, int port) {
  const double growth = 1 + 0.7 * f / 3e9, side = port == 1 ? 1 : 0.85;
  const auto two = [&](double near, double ns, double far, double farNs) {
    return side * growth * (near * Delayed(f, ns) - far * Delayed(f, farNs));
  };
  return {two(0.020, 0.21, 0.007, 0.63), two(0.055, 0.17, 0.022, 0.52), 1.2 * Delayed(f, 0.46),
          two(0.061, 0.23, 0.019, 0.57), 1.3 * Delayed(f, 0.39)};
}

using ReflectionOf = std::function<Cplx(double)>;

// What is connected in place of the ideal standards at one frequency.
struct Connected {
  Cplx Open = 1, Short = -1, Load = 0;
};

// What a calibration takes for its standards are ideal ones.
Residual OnePort(const DriveTerms& t, const Connected& is) {
  const auto raw = [&](Cplx g) { return RawOf(t, {g, 0, 0, 0}).Reflection; };
  return *ResidualFromThree({1.0, -1.0, 0.0}, {raw(is.Open), raw(is.Short), raw(is.Load)});
}

Cplx OnePortCorrected(const Residual& box, Cplx raw) {
  const Cplx x = raw - box.Directivity;
  return x / (1.0 + box.Tracking + box.SourceMatch * x);
}

constexpr Network kThrough{0, 1, 1, 0};

DriveTerms Calibrated(const DriveTerms& t, const Connected& is) {
  const Residual box = OnePort(t, is);
  const Raw through = RawOf(t, kThrough);
  const Cplx match = OnePortCorrected(box, through.Reflection);
  return {box.Directivity, box.SourceMatch, 1.0 + box.Tracking, match,
          through.Transmission * (1.0 - box.SourceMatch * match)};
}

Network Corrected(const DriveTerms& one, const DriveTerms& two, const Raw& forward,
                  const Raw& reverse) {
  const Cplx a = (forward.Reflection - one.Directivity) / one.Tracking;
  const Cplx b = forward.Transmission / one.Through;
  const Cplx c = reverse.Transmission / two.Through;
  const Cplx d = (reverse.Reflection - two.Directivity) / two.Tracking;
  const Cplx port1 = 1.0 + a * one.SourceMatch, port2 = 1.0 + d * two.SourceMatch;
  const Cplx w = port1 * port2 - b * c * one.LoadMatch * two.LoadMatch;
  return {(a * port2 - b * c * one.LoadMatch) / w,
          b * (1.0 + d * (two.SourceMatch - one.LoadMatch)) / w,
          c * (1.0 + a * (one.SourceMatch - two.LoadMatch)) / w,
          (d * port1 - b * c * two.LoadMatch) / w};
}

// A chain of a device's reflections and transmission with random line lengths.
struct PieceKind {
  const char* Name;
  double LeastDb, MostDb;        // loss
  double LeastMatch, MostMatch;  // reflections, of the most that a passive device has
};
constexpr PieceKind kPieceKinds[] = {{"MatchedLowLoss", 0.1, 3, 0, 0.1},
                                     {"MatchedHighLoss", 10, 40, 0, 0.1},
                                     {"MismatchedLowLoss", 0.5, 3, 0.3, 0.98},
                                     {"MismatchedHighLoss", 10, 40, 0.3, 0.98}};

struct Score {
  double Squares = 0;
  int Inside = 0, Count = 0;
  void Take(double error, double u) {
    Squares += error * error / (u * u);
    Inside += std::abs(error) <= kCoverage * u ? 1 : 0;
    ++Count;
  }
  double Rms() const { return std::sqrt(Squares / Count); }
  double Share() const { return static_cast<double>(Inside) / Count; }
};

enum class WrongPart { Open, Short, Load };

struct CalibratedWithAWrongLoad : testing::Test {
  static constexpr int kPoints = 51, kCalibrations = 200, kPieces = 5;
  static constexpr double kStep = 60e6;
  std::mt19937 Random{31};
  std::unique_ptr<Session> Program = MakeSession();
  std::vector<DriveTerms> TestSet1, TestSet2, Known1, Known2;
  QualityState Quality;
  Score Reflection, Transmission;

  CalibratedWithAWrongLoad() {
    PlanGrid& grid = Program->Plan;
    grid.StartFreq = 3e6;
    grid.StepFreq = kStep;
    grid.NumPoints = kPoints;
    grid.StopFreq = 3e6 + (kPoints - 1) * kStep;
    Program->Cal.Cal12Term = true;
  }
  double Between(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(Random);
  }
  // 45 to 55 ohms with a coil or a capacitor in series, a little behind the plane of the kit.
  ReflectionOf WrongLoad() {
    const double ohms = Between(45, 55), reactance = Between(-5, 5), ns = Between(0, 0.15);
    return [=](double f) {
      const Cplx z(ohms, reactance >= 0 ? reactance * f / 3e9 : reactance * 3e8 / (f + 1e8));
      return (z - 50.0) / (z + 50.0) * Delayed(f, ns);
    };
  }
  // An open or a short up to 1.5 mm before or behind the plane of the kit.
  ReflectionOf WrongReflector(double sign) {
    const double ns = Between(-0.005, 0.005);
    return [=](double f) { return sign * Delayed(f, ns); };
  }
  std::function<Connected(double)> WrongStandards(WrongPart part) {
    if (part == WrongPart::Load)
      return [load = WrongLoad()](double f) { return Connected{.Load = load(f)}; };
    const ReflectionOf is = WrongReflector(part == WrongPart::Open ? 1 : -1);
    return [=](double f) {
      return part == WrongPart::Open ? Connected{.Open = is(f)} : Connected{.Short = is(f)};
    };
  }
  void Calibrate(const ReflectionOf& load1, const ReflectionOf& load2) {
    CalibrateWith([&](double f) { return Connected{.Load = load1(f)}; },
                  [&](double f) { return Connected{.Load = load2(f)}; });
  }
  void CalibrateWith(const std::function<Connected(double)>& port1,
                     const std::function<Connected(double)>& port2) {
    for (auto* terms : {&TestSet1, &TestSet2, &Known1, &Known2}) terms->clear();
    for (int k = 0; k < kPoints; ++k) {
      const double f = Program->Plan.Frequency(k);
      TestSet1.push_back(TestSetAt(f, 1));
      TestSet2.push_back(TestSetAt(f, 2));
      Known1.push_back(Calibrated(TestSet1.back(), port1(f)));
      Known2.push_back(Calibrated(TestSet2.back(), port2(f)));
      Program->Terms.Forward.EL.Set(
          k, {Known1.back().LoadMatch.real(), Known1.back().LoadMatch.imag()});
      Program->Terms.Reverse.EL.Set(
          k, {Known2.back().LoadMatch.real(), Known2.back().LoadMatch.imag()});
    }
  }
  Network Measure(int k, const Network& device) const {
    const auto at = static_cast<std::size_t>(k);
    return Corrected(Known1[at], Known2[at], RawOf(TestSet1[at], device),
                     RawOf(TestSet2[at], device.Turned()));
  }
  // Three standards that are right, and a through.
  void CheckIt() {
    std::vector<Cplx> directivity, match, tracking, load;
    std::vector<double> gain;
    for (int k = 0; k < kPoints; ++k) {
      const auto reads = [&](Cplx g) { return Measure(k, {g, 0, 0, 0}).S11; };
      const Residual left =
          *ResidualFromThree({1.0, -1.0, 0.0}, {reads(1.0), reads(-1.0), reads(0.0)});
      const Network through = Measure(k, kThrough);
      directivity.push_back(left.Directivity);
      match.push_back(left.SourceMatch);
      tracking.push_back(left.Tracking);
      load.push_back(through.S11);
      gain.push_back(std::abs(through.S21 - 1.0));
    }
    const auto take = [&](CheckTerm term, const auto& values, CheckMethod by) {
      Quality.Check.Take(term, Program->Plan, 0, kPoints - 1, std::span(values), by, 0);
    };
    take(CheckTerm::Directivity, directivity, CheckMethod::Standards);
    take(CheckTerm::SourceMatch, match, CheckMethod::Standards);
    take(CheckTerm::Tracking, tracking, CheckMethod::Standards);
    take(CheckTerm::LoadMatch, load, CheckMethod::Through);
    take(CheckTerm::TransmissionTracking, gain, CheckMethod::Through);
  }
  void CheckPort2() {
    std::vector<Cplx> directivity, match, tracking;
    for (int k = 0; k < kPoints; ++k) {
      const auto reads = [&](Cplx g) { return Measure(k, {0, 0, 0, g}).S22; };
      const Residual left =
          *ResidualFromThree({1.0, -1.0, 0.0}, {reads(1.0), reads(-1.0), reads(0.0)});
      directivity.push_back(left.Directivity);
      match.push_back(left.SourceMatch);
      tracking.push_back(left.Tracking);
    }
    const auto take = [&](CheckTerm term, const auto& values) {
      Quality.Check.Take(term, Program->Plan, 0, kPoints - 1, std::span(values),
                         CheckMethod::Standards2, 0);
    };
    take(CheckTerm::Directivity2, directivity);
    take(CheckTerm::SourceMatch2, match);
    take(CheckTerm::Tracking2, tracking);
  }
  void MeasurePiece(const PieceKind& kind) {
    const double size = std::pow(10, -Between(kind.LeastDb, kind.MostDb) / 20);
    const double most = std::sqrt(1 - size * size);
    std::array<double, 3> ns{}, turn{};
    for (int i = 0; i < 3; ++i) {
      ns[static_cast<std::size_t>(i)] = Between(0, 0.35);
      turn[static_cast<std::size_t>(i)] = Between(0, 2 * std::numbers::pi);
    }
    const double match1 = most * Between(kind.LeastMatch, kind.MostMatch);
    const double match2 = most * Between(kind.LeastMatch, kind.MostMatch);
    for (int k = 0; k < kPoints; ++k) {
      const double f = Program->Plan.Frequency(k);
      const auto part = [&](double value, std::size_t i) {
        return std::polar(value, turn[i]) * Delayed(f, ns[i]);
      };
      const Cplx through = part(size, 2);
      const Network truth{part(match1, 0), through, through, part(match2, 1)};
      const Network seen = Measure(k, truth);
      const auto store = [k](ComplexArray& array, Cplx z) { array.Set(k, {z.real(), z.imag()}); };
      store(Program->Data.S11, seen.S11);
      store(Program->Data.S21, seen.S21);
      store(Program->Data.S12, seen.S12);
      store(Program->Data.S22, seen.S22);
      Reflection.Take(std::abs(seen.S11) - std::abs(truth.S11),
                      *UncertaintyAt(Quality, *Program, Parameter::S11, k));
      Transmission.Take(std::abs(seen.S21) - std::abs(truth.S21),
                        *UncertaintyAt(Quality, *Program, Parameter::S21, k));
    }
  }
};

struct WrongLoadIn12Terms : CalibratedWithAWrongLoad, testing::WithParamInterface<PieceKind> {};

constexpr Cplx NoReflection(double) {
  return 0;
}

TEST_P(WrongLoadIn12Terms, OfPort1LeavesTheTruthInTheBandsOf1000Pieces) {
  for (int n = 0; n < kCalibrations; ++n) {
    Calibrate(WrongLoad(), NoReflection);
    CheckIt();
    for (int piece = 0; piece < kPieces; ++piece) MeasurePiece(GetParam());
  }
  for (const Score& score : {Reflection, Transmission}) {
    EXPECT_GT(score.Rms(), 0.92);
    EXPECT_LT(score.Rms(), 1.08);
    EXPECT_GE(score.Share(), 0.93);
  }
}

// With the same load at both ports the errors of the ports partly cancel for matched devices.
TEST_P(WrongLoadIn12Terms, OfBothPortsLeavesTheTruthInTheBandsOf1000Pieces) {
  for (int n = 0; n < kCalibrations; ++n) {
    const ReflectionOf load = WrongLoad();
    Calibrate(load, load);
    CheckIt();
    for (int piece = 0; piece < kPieces; ++piece) MeasurePiece(GetParam());
  }
  for (const Score& score : {Reflection, Transmission}) {
    EXPECT_LT(score.Rms(), 1.08);
    EXPECT_GE(score.Share(), 0.93);
  }
}

// Port 1 is good: all of the error comes from port 2, through the load match of the test set.
struct WrongAtPort2 {
  const char* Name;
  WrongPart Part;
  PieceKind Kind;
};
struct WrongPort2In12Terms : CalibratedWithAWrongLoad, testing::WithParamInterface<WrongAtPort2> {};

TEST_P(WrongPort2In12Terms, LeavesErrorsOfTheSizeOfTheBandIn1000Pieces) {
  for (int n = 0; n < kCalibrations; ++n) {
    CalibrateWith([](double) { return Connected{}; }, WrongStandards(GetParam().Part));
    CheckIt();
    CheckPort2();
    for (int piece = 0; piece < kPieces; ++piece) MeasurePiece(GetParam().Kind);
  }
  for (const Score& score : {Reflection, Transmission}) {
    std::cout << GetParam().Name << ": RMS error / u " << score.Rms() << ", inside k = 2 "
              << score.Share() << '\n';
    EXPECT_GT(score.Rms(), 0.9);
    EXPECT_LT(score.Rms(), 1.1);
    EXPECT_GE(score.Share(), 0.93);
  }
}

std::vector<WrongAtPort2> AllWrongAtPort2() {
  std::vector<WrongAtPort2> all;
  for (const PieceKind& kind : kPieceKinds)
    for (const auto& [name, part] : {std::pair{"Open", WrongPart::Open},
                                     {"Short", WrongPart::Short},
                                     {"Load", WrongPart::Load}})
      all.push_back({name, part, kind});
  return all;
}

INSTANTIATE_TEST_SUITE_P(Uncertainty, WrongPort2In12Terms, testing::ValuesIn(AllWrongAtPort2()),
                         [](const auto& wrong) {
                           return std::string(wrong.param.Name) + wrong.param.Kind.Name;
                         });

INSTANTIATE_TEST_SUITE_P(Uncertainty, WrongLoadIn12Terms, testing::ValuesIn(kPieceKinds),
                         [](const auto& kind) { return std::string(kind.param.Name); });

TEST_F(CalibratedWithAWrongLoad, ErrorsOf800MixedPiecesHaveTheSizeOfTheBand) {
  for (int n = 0; n < kCalibrations; ++n) {
    Calibrate(WrongLoad(), NoReflection);
    CheckIt();
    for (const PieceKind& kind : kPieceKinds) MeasurePiece(kind);
  }
  for (const Score& score : {Reflection, Transmission}) {
    std::cout << "wrong load: RMS error / u " << score.Rms() << ", inside k = 2 " << score.Share()
              << '\n';
    EXPECT_GT(score.Rms(), 0.95);
    EXPECT_LT(score.Rms(), 1.05);
    EXPECT_GE(score.Share(), 0.93);
  }
}

}  // namespace
}  // namespace qk
