// SPDX-License-Identifier: MIT
// What checks have found, the verdict on it, and which term an uncertainty lacks.
#include "quality/cal_check.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <memory>
#include <random>

#include "quality/quality_state.h"

namespace qk {
namespace {

PlanGrid ElevenPoints() {
  PlanGrid grid;
  grid.StartFreq = 1e6;
  grid.StepFreq = 1e6;
  grid.StopFreq = 11e6;
  grid.NumPoints = 11;
  return grid;
}

CheckSummary Summary(double directivityDb, std::int64_t utc = 0) {
  CheckSummary check;
  check.Utc = utc;
  check.Serial = 7;
  check.Terms[0] = WorstTerm{std::pow(10, directivityDb / 20), directivityDb, 843e6};
  return check;
}
using Lines = std::vector<std::string>;

TEST(CalCheck, GivesSizesBetweenThePointsAndTheNearestOnesBeyond) {
  CalCheck check;
  EXPECT_FALSE(check.Any());
  EXPECT_FALSE(check.At(CheckTerm::Directivity, 5e6));
  std::vector<double> sizes(11, 0.01);
  sizes[4] = 0.02;  // 5 MHz
  sizes[2] = 0.03;
  check.Take(CheckTerm::Directivity, ElevenPoints(), 2, 8, sizes, CheckMethod::Standards, 99);
  EXPECT_TRUE(check.Any());
  EXPECT_NEAR(*check.At(CheckTerm::Directivity, 5e6), 0.02, 1e-8);
  EXPECT_NEAR(*check.At(CheckTerm::Directivity, 5.5e6), 0.015, 1e-8);
  EXPECT_NEAR(*check.At(CheckTerm::Directivity, 1e6), 0.03, 1e-8);
  EXPECT_NEAR(*check.At(CheckTerm::Directivity, 5e9), 0.01, 1e-8);
  EXPECT_FALSE(check.At(CheckTerm::LoadMatch, 5e6));
  const auto worst = check.Worst(CheckTerm::Directivity);
  ASSERT_TRUE(worst);
  EXPECT_NEAR(worst->Hz, 3e6, 1);
  EXPECT_NEAR(worst->Db, -30.458, 1e-3);
  check.Forget();
  EXPECT_FALSE(check.Any());
}

TEST(CalCheck, TellsTrackingAsAnErrorOfGain) {
  EXPECT_NEAR(TermDb(CheckTerm::Tracking, 0.01), 0.08643, 1e-5);
  EXPECT_NEAR(TermDb(CheckTerm::Directivity, 0.01), -40, 1e-9);
}

TEST(JudgeCheck, FindsATermAboveItsLimit) {
  EXPECT_EQ(JudgeCheck(Summary(-40.1), {}).Lines, Lines{"Good"});
  EXPECT_TRUE(JudgeCheck(Summary(-40.1), {}).Good);
  const CheckVerdict bad = JudgeCheck(Summary(-39.9), {});
  EXPECT_FALSE(bad.Good);
  EXPECT_EQ(bad.Lines, Lines{"Directivity -39.9 dB at 843 MHz: above -40 dB"});
  CheckSummary tracking;
  tracking.Terms[2] = WorstTerm{0.01, 0.086, 1e9};
  EXPECT_EQ(JudgeCheck(tracking, {}).Lines,
            Lines{"Reflection tracking 0.086 dB at 1000 MHz: above 0.05 dB"});
}

TEST(JudgeCheck, FindsATermOutsideTheTrendOfTheLastTen) {
  std::vector<CheckSummary> earlier;
  for (int n = 0; n < 4; ++n) earlier.push_back(Summary(-50 + 0.1 * (n % 2)));
  EXPECT_TRUE(JudgeCheck(Summary(-45), earlier).Good) << "four are no trend";
  earlier.push_back(Summary(-50));
  EXPECT_FALSE(JudgeCheck(Summary(-45), earlier).Good);
  EXPECT_TRUE(JudgeCheck(Summary(-50.05), earlier).Good);
  // What lies further back than ten no longer counts.
  earlier.insert(earlier.begin(), 20, Summary(-20));
  for (int n = 0; n < 5; ++n) earlier.push_back(Summary(-50 + 0.1 * (n % 2)));
  EXPECT_FALSE(JudgeCheck(Summary(-45), earlier).Good);
  // Nor what another method or another instrument found.
  for (CheckSummary& check : earlier) check.Serial = 8;
  EXPECT_TRUE(JudgeCheck(Summary(-45), earlier).Good);
  for (CheckSummary& check : earlier) {
    check.Serial = 7;
    check.Method = CheckMethod::ShortedLine;
  }
  EXPECT_TRUE(JudgeCheck(Summary(-45), earlier).Good);
}

std::vector<CheckSummary> TenChecks();

TEST(JudgeCheck, IsNotBlindedByABadCheckInTheTrend) {
  for (const int bad : {1, 2, 3}) {
    std::vector<CheckSummary> earlier = TenChecks();
    for (int n = 0; n < bad; ++n) earlier[static_cast<std::size_t>(3 * n)] = Summary(-12);
    const CheckVerdict verdict = JudgeCheck(Summary(-45), earlier);
    EXPECT_EQ(verdict.Lines.size(), 1u) << bad;
    EXPECT_NE(verdict.Lines[0].find("outside the trend of -49."), std::string::npos)
        << verdict.Lines[0];
    EXPECT_TRUE(JudgeCheck(Summary(-49.9), earlier).Good) << bad;
  }
  // A lasting change becomes the trend.
  std::vector<CheckSummary> moved = TenChecks();
  for (int n = 4; n < 10; ++n) moved[static_cast<std::size_t>(n)] = Summary(-45 + 0.2 * (n % 2));
  EXPECT_TRUE(JudgeCheck(Summary(-45), moved).Good);
}

std::vector<CheckSummary> TenChecks() {
  std::vector<CheckSummary> earlier;
  for (int n = 0; n < 10; ++n) earlier.push_back(Summary(-50 + 0.2 * (n % 2)));
  return earlier;
}

TEST(JudgeCheck, ComparesLikeWithLikeInTheTrend) {
  const std::vector<CheckSummary> earlier = TenChecks();
  const CheckSummary worse = Summary(-45);
  ASSERT_FALSE(JudgeCheck(worse, earlier).Good);
  const auto judged = [&](auto change) {
    CheckSummary other = worse;
    change(other);
    return JudgeCheck(other, earlier).Good;
  };
  EXPECT_TRUE(judged([](CheckSummary& c) { c.Standard = "Other Kit"; }));
  EXPECT_TRUE(judged([](CheckSummary& c) { c.Calibration = SweepMode::S11; }));
  EXPECT_TRUE(judged([](CheckSummary& c) { c.Grid.StartFreq = 2e6; }));
  EXPECT_TRUE(judged([](CheckSummary& c) { c.Grid.StopFreq = 12e6; }));
  EXPECT_FALSE(judged([](CheckSummary& c) { c.Grid.NumPoints = 21; }));
}

TEST(JudgeCheck, WarnsOfWorseAndNotOfBetter) {
  EXPECT_FALSE(JudgeCheck(Summary(-49), TenChecks()).Good);
  EXPECT_TRUE(JudgeCheck(Summary(-60), TenChecks()).Good);
  EXPECT_TRUE(JudgeCheck(Summary(-90), TenChecks()).Good);
}

TEST(JudgeCheck, OfATrendWithoutSpreadAllowsForADigit) {
  const std::vector<CheckSummary> earlier(6, Summary(-50));
  EXPECT_TRUE(JudgeCheck(Summary(-49.95), earlier).Good);
  EXPECT_EQ(JudgeCheck(Summary(-49.8), earlier).Lines,
            Lines{"Directivity -49.8 dB at 843 MHz: outside the trend of -50.0 dB +- 0.1 dB"});
}

TEST(JudgeCheck, LimitsNoMatchThatTheCalibrationDoesNotCorrect) {
  CheckSummary check;
  check.Terms[1] = check.Terms[3] = WorstTerm{0.1, -20, 1e9};
  const auto lines = [&check](SweepMode mode) {
    check.Calibration = mode;
    return JudgeCheck(check, {}).Lines;
  };
  EXPECT_EQ(lines(SweepMode::All).size(), 2u);
  EXPECT_EQ(lines(SweepMode::S11S21), Lines{"Source match -20.0 dB at 1000 MHz: above -35 dB"});
  EXPECT_EQ(lines(SweepMode::S21), (Lines{"Source match -20.0 dB at 1000 MHz: no limit",
                                          "Load match -20.0 dB at 1000 MHz: no limit"}));
}

// Two reflections of 0.01, 250 mm apart, cancel each other every 600 MHz.
TEST(CalCheck, GivesAnUncertaintyNoNullOfAResidual) {
  PlanGrid grid;
  grid.StartFreq = 0;
  grid.StepFreq = 10e6;
  grid.StopFreq = 3e9;
  grid.NumPoints = 301;
  std::vector<double> sizes;
  for (int k = 0; k < grid.NumPoints; ++k)
    sizes.push_back(0.02 * std::abs(std::cos(M_PI * grid.Frequency(k) / 600e6)));
  CalCheck check;
  check.Take(CheckTerm::Directivity, grid, 0, 300, sizes, CheckMethod::Standards, 0);
  double squares = 0, smoothed = 0;
  for (int k = 0; k < grid.NumPoints; ++k) {
    const double rms = check.SizesAt(grid.Frequency(k)).Directivity;
    EXPECT_NEAR(rms, 0.02 / std::sqrt(2), 0.002) << k;
    smoothed += rms * rms;
    squares += sizes[static_cast<std::size_t>(k)] * sizes[static_cast<std::size_t>(k)];
  }
  EXPECT_NEAR(smoothed / squares, 1, 0.05) << "as wide as before on the whole";
  EXPECT_LT(*check.At(CheckTerm::Directivity, 300e6), 1e-9) << "what was found is shown as it is";
}

TEST(CalCheck, AveragesOverWhatThereIsOfTheWindow) {
  std::vector<double> sizes(11, 0);
  sizes[2] = 0.03;
  CalCheck check;
  check.Take(CheckTerm::Directivity, ElevenPoints(), 2, 4, sizes, CheckMethod::Standards, 0);
  for (const double hz : {1e6, 3e6, 4e6, 5e6, 9e9})
    EXPECT_NEAR(check.SizesAt(hz).Directivity, 0.03 / std::sqrt(3), 1e-8) << hz;
}

// A leakage has no limit: it hides what is smaller, which may be good enough.
TEST(JudgeCheck, CallsNoIsolationGood) {
  CheckSummary check;
  check.Calibration = SweepMode::All;
  check.Terms[5] = WorstTerm{1e-3, -60, 1e9};
  EXPECT_EQ(JudgeCheck(check, {}).Lines, Lines{"Isolation -60.0 dB at 1000 MHz: no limit"});
  EXPECT_TRUE(JudgeCheck(check, {}).Good);
}

TEST(TransmissionError, IsTheSizeOfTheLossOrGainInDb) {
  for (const double db : {3.0, 0.5, 0.01}) {
    const double gain = std::pow(10, db / 20);
    for (const Cplx s21 : {Cplx(gain), Cplx(1 / gain)})
      EXPECT_NEAR(TermDb(CheckTerm::TransmissionTracking, TransmissionError(s21)), db, 1e-9);
  }
  EXPECT_EQ(TransmissionError(1), 0);
  EXPECT_TRUE(std::isfinite(TermDb(CheckTerm::TransmissionTracking, TransmissionError(0))));
}

TEST(TransmissionError, OfAPhaseIsThatOfAGainOfTheSameSize) {
  for (const double phase : {0.3, -0.01})
    EXPECT_NEAR(TransmissionError(std::polar(1.0, phase)), 2 * std::sin(std::abs(phase) / 2),
                1e-12);
}

TEST(LengthOfThrough, IsThatOfTheLineThatHasItsPhase) {
  const std::vector<double> f{3e6, 1e9, 2e9, 3e9};
  for (const double metres : {0.0, 0.005, -0.012}) {
    std::vector<Cplx> s21;
    s21.reserve(f.size());
    for (const double hz : f) s21.push_back(std::polar(0.98, -2 * M_PI * hz * metres / 299792458));
    EXPECT_NEAR(LengthOfThrough(f, s21), metres, 1e-12);
  }
  EXPECT_EQ(LengthOfThrough({}, {}), 0);
}

struct LoadMatchByThrough : testing::Test {
  CalCheck Check;
  const Cplx Directivity{-0.03, 0.01}, Match{0.02, 0.015};
  double Far = 0;  // phase of the match, behind a through of some length

  void TakeDirectivity(int first = 0, int last = 10) {
    const std::vector<Cplx> values(11, Directivity);
    Check.Take(CheckTerm::Directivity, ElevenPoints(), first, last, values, CheckMethod::Standards,
               0);
  }
  void TakeThrough() {
    const std::vector<Cplx> seen(11, Directivity + std::polar(1.0, Far) * Match);
    Check.Take(CheckTerm::LoadMatch, ElevenPoints(), 0, 10, seen, CheckMethod::Through, 0);
  }
  double At(double megahertz) { return *Check.At(CheckTerm::LoadMatch, megahertz * 1e6); }
};

TEST_F(LoadMatchByThrough, IsWhatTheThroughShowsLessTheDirectivity) {
  for (const double far : {0.0, 1.0, 2.0, 3.0}) {
    Far = far;
    Check.Forget();
    TakeDirectivity();
    TakeThrough();
    EXPECT_NEAR(At(5), std::abs(Match), 1e-7) << far;
    EXPECT_NEAR(Check.SizesAt(5e6).LoadMatch, std::abs(Match), 1e-7);
    Check.Forget();
    TakeThrough();
    EXPECT_NEAR(At(5), std::abs(Directivity + std::polar(1.0, far) * Match), 1e-7);
    TakeDirectivity();
    EXPECT_NEAR(At(5), std::abs(Match), 1e-7) << "in any order";
  }
}

TEST_F(LoadMatchByThrough, IsABoundWhereOnlyTheSizeOfTheDirectivityIsKnown) {
  const double seen = std::abs(Directivity + Match);
  const double bound = std::hypot(seen, std::abs(Directivity));
  TakeThrough();
  const std::vector<double> ripple(11, std::abs(Directivity));
  Check.Take(CheckTerm::Directivity, ElevenPoints(), 2, 8, ripple, CheckMethod::MismatchedLine, 0);
  EXPECT_NEAR(At(5), bound, 1e-7);
  EXPECT_NEAR(At(1), bound, 1e-7);
  TakeDirectivity(3, 7);  // 4 to 8 MHz
  for (const double inside : {4.0, 6.0, 8.0}) EXPECT_NEAR(At(inside), std::abs(Match), 1e-7);
  for (const double outside : {1.0, 3.0, 9.0, 11.0}) EXPECT_NEAR(At(outside), bound, 1e-7);
}

TEST_F(LoadMatchByThrough, WithoutTheDirectivityLacksIt) {
  TakeThrough();
  EXPECT_EQ(MissingTerms(Check, SweepMode::All, Parameter::S21),
            "transmission tracking, directivity, source match, isolation");
  TakeDirectivity();
  EXPECT_EQ(MissingTerms(Check, SweepMode::All, Parameter::S21),
            "transmission tracking, source match, isolation");
}

TEST_F(LoadMatchByThrough, OfTheTestSetItselfStaysAsItIs) {
  TakeDirectivity();
  const std::vector<Cplx> values(11, Match);
  Check.Take(CheckTerm::LoadMatch, ElevenPoints(), 0, 10, values, CheckMethod::PortMatch, 0);
  EXPECT_NEAR(At(5), std::abs(Match), 1e-7);
  EXPECT_EQ(MissingTerms(Check, SweepMode::S21, Parameter::S21),
            "transmission tracking, source match, isolation");
}

TEST(MissingTerms, NamesWhatAnUncertaintyLacks) {
  CalCheck check;
  EXPECT_EQ(MissingTerms(check, SweepMode::All, Parameter::S11),
            "directivity, source match, reflection tracking, load match");
  EXPECT_EQ(MissingTerms(check, SweepMode::S11, Parameter::S11),
            "directivity, source match, reflection tracking");
  const std::vector<double> sizes(11, 0.01);
  for (const CheckTerm term :
       {CheckTerm::SourceMatch, CheckTerm::LoadMatch, CheckTerm::TransmissionTracking})
    check.Take(term, ElevenPoints(), 0, 10, sizes, CheckMethod::Standards, 0);
  EXPECT_EQ(MissingTerms(check, SweepMode::All, Parameter::S21), "isolation");
  check.Take(CheckTerm::Isolation, ElevenPoints(), 0, 10, sizes, CheckMethod::Isolation, 0);
  EXPECT_EQ(MissingTerms(check, SweepMode::All, Parameter::S21), "");
}

// Only what is required, of each kind of calibration and each parameter.
TEST(WhyNoUncertainty, NamesTheRequiredTermsAlone) {
  const auto session = MakeSession();
  const QualityState quality;
  const auto why = [&](bool CalState::*kind, Parameter parameter) {
    session->Cal = {};
    session->Cal.*kind = true;
    return WhyNoUncertainty(quality, *session, parameter);
  };
  EXPECT_EQ(why(&CalState::CalS11, Parameter::S11), "not checked: directivity");
  EXPECT_EQ(why(&CalState::Cal12Term, Parameter::S11), "not checked: directivity");
  EXPECT_EQ(why(&CalState::Cal12Term, Parameter::S21), "not checked: transmission tracking");
  EXPECT_EQ(why(&CalState::CalS11S21, Parameter::S11), "not checked: directivity, load match");
  EXPECT_EQ(why(&CalState::CalS11S21, Parameter::S21),
            "not checked: transmission tracking, load match");
  EXPECT_EQ(why(&CalState::CalS21, Parameter::S21),
            "not checked: transmission tracking, source match, load match");
}

TEST(UncertaintyAt, TakesTheTermsOfTheCheckAndTheDevice) {
  const auto session = MakeSession();
  static_cast<PlanGrid&>(session->Plan) = ElevenPoints();
  session->Cal.Cal12Term = true;
  session->Data.S11.Set(3, {0.5, 0});
  session->Data.S21.Set(3, {0, 0.8});
  session->Data.S12.Set(3, {0.4, 0});
  session->Data.S22.Set(3, {0.3, 0});
  QualityState quality;
  EXPECT_FALSE(UncertaintyAt(quality, *session, Parameter::S11, 3));
  std::vector<double> sizes(11, 0.01);
  for (std::size_t i = 0; i < kCheckTerms; ++i)
    quality.Check.Take(static_cast<CheckTerm>(i), ElevenPoints(), 0, 10, sizes,
                       CheckMethod::Standards, 0);
  const ResidualSizes all{.Directivity = 0.01,
                          .SourceMatch = 0.01,
                          .Tracking = 0.01,
                          .LoadMatch = 0.01,
                          .TransmissionTracking = 0.01,
                          .Isolation = 0.01,
                          .Directivity2 = 0.01,
                          .SourceMatch2 = 0.01,
                          .Tracking2 = 0.01};
  const DeviceSizes device{0.5, 0.8, 0.4, 0.3};
  EXPECT_NEAR(*UncertaintyAt(quality, *session, Parameter::S11, 3),
              UncertaintyOfReflection(all, device, {}), 1e-8);
  EXPECT_NEAR(*UncertaintyAt(quality, *session, Parameter::S21, 3),
              UncertaintyOfTransmission(all, device, {}), 1e-8);
  // The loop of the source match is closed by the load match of the test set.
  session->Terms.Forward.EL.Set(3, {0, 0.1});
  ResidualSizes looped = all;
  looped.RawLoadMatch = 0.1;
  EXPECT_NEAR(*UncertaintyAt(quality, *session, Parameter::S21, 3),
              UncertaintyOfTransmission(looped, device, {}), 1e-8);
  // The loop of port 2 is closed by that of port 1.
  session->Terms.Reverse.EL.Set(3, {0.2, 0});
  looped.RawLoadMatch2 = 0.2;
  EXPECT_NEAR(*UncertaintyAt(quality, *session, Parameter::S11, 3),
              UncertaintyOfReflection(looped, device, {}), 1e-8);
  EXPECT_FALSE(UncertaintyAt(quality, *session, Parameter::S22, 3));
  // With a one-port calibration only the reflection is known; the rest may pass the device.
  session->Cal.Cal12Term = false;
  session->Cal.CalS11 = true;
  const double rest = std::sqrt(0.75);
  ResidualSizes oneWay = all;
  oneWay.RawLoadMatch = all.LoadMatch;
  EXPECT_NEAR(*UncertaintyAt(quality, *session, Parameter::S11, 3),
              UncertaintyOfReflection(oneWay, {0.5, rest, rest, 0.5}, {}), 1e-8);
}

struct OnePathUncertainty : testing::Test {
  std::unique_ptr<Session> session = MakeSession();
  QualityState quality;

  OnePathUncertainty() {
    static_cast<PlanGrid&>(session->Plan) = ElevenPoints();
    session->Cal.CalS11S21 = true;
    session->Data.S12.Set(3, {0.01, 0});  // of an earlier sweep
    session->Data.S22.Set(3, {0.01, 0});
  }
  void Check(CheckTerm term, double size) {
    const std::vector<double> sizes(11, size);
    quality.Check.Take(term, ElevenPoints(), 0, 10, sizes, CheckMethod::Standards, 0);
  }
  double At(Parameter parameter) {
    return UncertaintyAt(quality, *session, parameter, 3).value_or(-1);
  }
};

TEST_F(OnePathUncertainty, AssumesAPassiveDeviceWhereNothingIsMeasured) {
  Check(CheckTerm::Directivity, 0);
  Check(CheckTerm::TransmissionTracking, 0);
  Check(CheckTerm::LoadMatch, 0.1);
  session->Data.S11.Set(3, {0.3, 0});
  session->Data.S21.Set(3, {0, 0.6});
  EXPECT_NEAR(At(Parameter::S11), 0.1 * 0.36 / std::sqrt(2), 1e-8);
  // Of a matched attenuator S22 is 1 - |S21|^2 at most; without loss, as large as S11.
  session->Data.S11.Set(3, {0, 0});
  EXPECT_NEAR(At(Parameter::S21), 0.6 * 0.1 * 0.64 / std::sqrt(2), 1e-8);
  session->Data.S11.Set(3, {0.8, 0});
  EXPECT_NEAR(At(Parameter::S21), 0.6 * 0.1 * 0.8 / std::sqrt(2), 1e-8);
  session->Data.S11.Set(3, {0.9, 0});  // more than a passive device reflects
  EXPECT_NEAR(At(Parameter::S21), 0.6 * 0.1 * 0.9 / std::sqrt(2), 1e-8) << "S22 as bad as S11";
  session->Data.S21.Set(3, {0, 4});  // an amplifier
  EXPECT_NEAR(At(Parameter::S11), 0.1 * 4 / std::sqrt(2), 1e-7);
  EXPECT_NEAR(At(Parameter::S21), 4 * 0.1 * 0.9 / std::sqrt(2), 1e-7);
  for (const Parameter parameter : {Parameter::S11, Parameter::S21}) {
    const auto words = UncertaintyWords(quality, *session, parameter);
    EXPECT_EQ(std::ranges::count(words, "S12, S22 assumed"), 1);
    EXPECT_NE(UncertaintyBasis(quality, *session, parameter)
                  .find(" S12, S22 assumed as large as a passive device may have them: U is a "
                        "bound. Left out: "),
              std::string::npos);
  }
  session->Cal.CalS11S21 = false;
  session->Cal.Cal12Term = true;
  EXPECT_EQ(
      std::ranges::count(UncertaintyWords(quality, *session, Parameter::S21), "S12, S22 assumed"),
      0);
  EXPECT_EQ(UncertaintyBasis(quality, *session, Parameter::S21).find("assumed"), std::string::npos);
}

// Random passive reciprocal devices: none has a larger S22 than assumed, and some come near.
TEST_F(OnePathUncertainty, AssumesNoLessS22ThanAnyPassiveDeviceHas) {
  Check(CheckTerm::Directivity, 0);
  Check(CheckTerm::TransmissionTracking, 0);
  Check(CheckTerm::LoadMatch, 0.1);
  std::mt19937 random(9);
  std::uniform_real_distribution<double> part(0, 1), phase(-M_PI, M_PI);
  int passive = 0;
  double nearest = 0;
  for (int i = 0; i < 200000; ++i) {
    const double r = part(random), t = part(random), s22 = part(random);
    const std::complex<double> s11 = std::polar(r, phase(random)), s21 = std::polar(t, 0.0),
                               back = std::polar(s22, phase(random));
    const double d1 = 1 - r * r - t * t, d2 = 1 - s22 * s22 - t * t;
    if (d1 < 0 || d2 < 0 || d1 * d2 < std::norm(std::conj(s11) * s21 + std::conj(s21) * back))
      continue;
    ++passive;
    session->Data.S11.Set(3, {r, 0});
    session->Data.S21.Set(3, {t, 0});
    const double assumed = At(Parameter::S21) * std::sqrt(2) / (t * 0.1);
    ASSERT_GE(assumed, s22 - 1e-6) << r << " " << t;
    nearest = std::max(nearest, s22 / assumed);
  }
  EXPECT_GT(passive, 10000);
  EXPECT_GT(nearest, 0.97);
}

TEST_F(OnePathUncertainty, IsNoneBeforeAMatchThatIsNotCorrectedHasBeenChecked) {
  session->Data.S21.Set(3, {0.5, 0});
  Check(CheckTerm::Directivity, 0.01);
  Check(CheckTerm::TransmissionTracking, 0.01);
  EXPECT_EQ(At(Parameter::S11), -1);
  EXPECT_EQ(At(Parameter::S21), -1);
  EXPECT_EQ(WhyNoUncertainty(quality, *session, Parameter::S21), "not checked: load match");
  Check(CheckTerm::LoadMatch, 0.01);
  EXPECT_GT(At(Parameter::S11), 0);
  EXPECT_GT(At(Parameter::S21), 0);
  session->Cal.CalS11S21 = false;
  session->Cal.CalS21 = true;
  EXPECT_EQ(At(Parameter::S21), -1) << "its source match is not corrected either";
  EXPECT_EQ(WhyNoUncertainty(quality, *session, Parameter::S21), "not checked: source match");
  session->Cal.CalS21 = false;
  session->Cal.CalS11 = true;
  quality.Check.Forget();
  Check(CheckTerm::Directivity, 0.01);
  EXPECT_GT(At(Parameter::S11), 0) << "no load match in a measurement of one port";
  EXPECT_EQ(UncertaintyWords(quality, *session, Parameter::S11)[1].find("assumed"),
            std::string::npos);
}

TEST_F(OnePathUncertainty, OfS21AloneCountsTheMatchesThatTheThroughSaw) {
  session->Cal.CalS11S21 = false;
  session->Cal.CalS21 = true;
  session->Data.S21.Set(3, {1, 0});  // of which no match is assumed
  Check(CheckTerm::TransmissionTracking, 0.003);
  Check(CheckTerm::SourceMatch, 0.1);
  Check(CheckTerm::LoadMatch, 0.2);
  const double product = 0.1 * 0.2;
  EXPECT_NEAR(At(Parameter::S21), std::sqrt((0.003 * 0.003 + 2 * product * product) / 2), 1e-8);
}

TEST_F(OnePathUncertainty, SaysWhenTheKitThatCalibratedHasChecked) {
  const std::vector<double> sizes(11, 0.01);
  const auto check = [&](CheckTerm term, bool sameKit) {
    quality.Check.Take(term, ElevenPoints(), 0, 10, sizes, CheckMethod::Standards, 99, sameKit);
  };
  session->Cal.CalS11S21 = false;
  session->Cal.Cal12Term = true;
  for (const bool same : {true, false}) {
    for (const CheckTerm term :
         {CheckTerm::Directivity, CheckTerm::SourceMatch, CheckTerm::Tracking})
      check(term, same);
    const auto words = UncertaintyWords(quality, *session, Parameter::S11);
    EXPECT_EQ(words.back(), "Three standards 1970-01-01 00:01");
    EXPECT_EQ(words[1] == "same kit", same);
    EXPECT_EQ(UncertaintyBasis(quality, *session, Parameter::S11)
                      .find(" The check used the kit of the calibration: errors of that kit are "
                            "not found.") != std::string::npos,
              same);
  }
}

TEST_F(OnePathUncertainty, SaysThatALineHidesTrackingLikeItsOwn) {
  const std::vector<double> sizes(11, 0.01);
  for (const CheckMethod by : {CheckMethod::ShortedLine, CheckMethod::Standards}) {
    for (const CheckTerm term :
         {CheckTerm::Directivity, CheckTerm::SourceMatch, CheckTerm::Tracking, CheckTerm::LoadMatch,
          CheckTerm::TransmissionTracking})
      quality.Check.Take(term, ElevenPoints(), 0, 10, sizes, by, 99);
    const auto says = [&](Parameter parameter) {
      return UncertaintyBasis(quality, *session, parameter)
                 .find(" Tracking that acts like length or loss of the line is not included.") !=
             std::string::npos;
    };
    EXPECT_EQ(says(Parameter::S11), by == CheckMethod::ShortedLine);
    EXPECT_FALSE(says(Parameter::S21));
  }
}

TEST_F(OnePathUncertainty, SaysThatTheCalibrationIsInterpolated) {
  for (const CheckTerm term : {CheckTerm::TransmissionTracking, CheckTerm::LoadMatch})
    Check(term, 0.01);
  const auto says = [this] {
    return UncertaintyBasis(quality, *session, Parameter::S21)
               .find(
                   " The calibration is interpolated: a check made at other points does not show "
                   "what that adds.") != std::string::npos;
  };
  EXPECT_FALSE(says());
  session->Cal.CalInterpolated = true;
  EXPECT_TRUE(says());
}

TEST_F(OnePathUncertainty, SaysThatItIsWithoutNoiseUntilNoiseIsKnown) {
  for (const CheckTerm term : {CheckTerm::TransmissionTracking, CheckTerm::SourceMatch,
                               CheckTerm::LoadMatch, CheckTerm::Isolation})
    Check(term, 0.01);
  session->Cal.CalS11S21 = false;
  session->Cal.Cal12Term = true;
  constexpr std::array<Parameter, 1> kDelivered{Parameter::S21};
  const auto words = [this] { return UncertaintyWords(quality, *session, Parameter::S21)[1]; };
  const auto basis = [this] { return UncertaintyBasis(quality, *session, Parameter::S21); };
  for (int n = 0; n < 4; ++n) {
    EXPECT_EQ(words(), "without noise, linearity, cables, port 2") << n;
    EXPECT_EQ(WhyNoWholeUncertainty(quality, *session, Parameter::S21),
              "noise not known: four sweeps of the device are needed");
    EXPECT_NE(basis().find(" Left out: noise (too few sweeps so far), linearity of the receiver"),
              std::string::npos);
    for (int k = 0; k < 11; ++k) session->Data.S21.Set(k, {0.5 + 1e-5 * n, 0});
    quality.Hints.SweepEnded({*session, kDelivered, {}, {2026, 3, 9, 12, 5, 0}, 0});
  }
  EXPECT_EQ(words(), "without linearity, cables, port 2");
  EXPECT_EQ(WhyNoWholeUncertainty(quality, *session, Parameter::S21), "");
  EXPECT_EQ(WhyNoWholeUncertainty(quality, *session, Parameter::S12),
            "checks look at S11 and S21, not at S12");
  EXPECT_NE(basis().find(" Left out: linearity of the receiver"), std::string::npos);
  // A run of repeated sweeps gives the noise as well.
  quality.Hints.Forget();
  EXPECT_EQ(words(), "without noise, linearity, cables, port 2");
  quality.Run.Start(2);
  for (int n = 0; n < 2; ++n) quality.Run.SweepEnded(*session, kDelivered);
  EXPECT_EQ(words(), "without linearity, cables, port 2");
}

TEST(SweepRun, TakesTheSweepsWantedAndLeavesOutliersOut) {
  const auto session = MakeSession();
  static_cast<PlanGrid&>(session->Plan) = ElevenPoints();
  constexpr std::array<Parameter, 1> kS21{Parameter::S21};
  SweepRun run;
  run.SweepEnded(*session, kS21);
  EXPECT_EQ(run.Taken(), 0);
  run.Start(8);
  for (int n = 1; n <= 9; ++n) {
    for (int k = 0; k < 11; ++k)
      session->Data.S21.Set(k, {n == 6 ? 0.7 : 0.5 + 0.0001 * ((n * 7 + k) % 5), 0});
    run.SweepEnded(*session, kS21);
  }
  EXPECT_FALSE(run.Running());
  EXPECT_EQ(run.Taken(), 8);
  EXPECT_EQ(run.Outliers(), std::vector<int>{6});
  EXPECT_GT(run.Of(Parameter::S21)->Deviation(0), 0.05);
  run.LeaveOut(run.Outliers());
  EXPECT_LT(run.Of(Parameter::S21)->Deviation(0), 0.001);
  EXPECT_EQ(run.Of(Parameter::S21)->Sweeps(), 7);
  EXPECT_EQ(run.Outliers(), std::vector<int>{});
  EXPECT_EQ(run.Of(Parameter::S11), nullptr);
}

// The noise of one device says nothing about another one.
TEST_F(OnePathUncertainty, TakesTheSpreadOfARunForItsOwnDeviceAlone) {
  for (const CheckTerm term : {CheckTerm::TransmissionTracking, CheckTerm::SourceMatch,
                               CheckTerm::LoadMatch, CheckTerm::Isolation})
    Check(term, 1e-9);
  session->Cal.CalS11S21 = false;
  session->Cal.Cal12Term = true;
  constexpr std::array<Parameter, 1> kDelivered{Parameter::S21};
  std::mt19937 random(4);
  const auto sweep = [&](double size, double s) {
    std::normal_distribution<double> part(0, s / std::sqrt(2));
    for (int k = 0; k < 11; ++k) session->Data.S21.Set(k, {size + part(random), part(random)});
    quality.Hints.SweepEnded({*session, kDelivered, {}, {2026, 3, 9, 12, 5, 0}, 0});
    quality.Run.SweepEnded(*session, kDelivered);
  };
  const auto missing = [this] { return WhyNoWholeUncertainty(quality, *session, Parameter::S21); };
  quality.Run.Start(20);
  for (int n = 0; n < 20; ++n) sweep(0.5, 1e-3);
  EXPECT_TRUE(quality.Run.IsOfThisDevice());
  EXPECT_NEAR(At(Parameter::S21), 1e-3 / std::sqrt(2), 1e-4);
  sweep(0.5, 1e-3);
  EXPECT_TRUE(quality.Run.IsOfThisDevice());
  sweep(0.1, 1e-4);  // another device
  EXPECT_FALSE(quality.Run.IsOfThisDevice());
  EXPECT_EQ(missing(), "noise not known: four sweeps of the device are needed");
  for (int n = 0; n < 3; ++n) sweep(0.1, 1e-4);
  EXPECT_EQ(missing(), "");
  EXPECT_NEAR(At(Parameter::S21), 1e-4 / std::sqrt(2), 3e-5);
  sweep(0.5, 1e-3);  // the first one again
  EXPECT_TRUE(quality.Run.IsOfThisDevice());
  EXPECT_NEAR(At(Parameter::S21), 1e-3 / std::sqrt(2), 1e-4);
}

TEST_F(OnePathUncertainty, SaysOverWhichFrequenciesACheckIsKnown) {
  const std::vector<double> sizes(11, 0.01);
  quality.Check.Take(CheckTerm::Directivity, ElevenPoints(), 2, 8, sizes, CheckMethod::ShortedLine,
                     99);
  Check(CheckTerm::LoadMatch, 0.01);
  const std::string basis = UncertaintyBasis(quality, *session, Parameter::S11);
  EXPECT_NE(basis.find(": directivity (3 to 9 MHz; the nearest value beyond)."), std::string::npos)
      << basis;
  EXPECT_NE(basis.find(": load match."), std::string::npos) << basis;
}

TEST(SweepRun, EndsWithAnotherPlan) {
  const auto session = MakeSession();
  static_cast<PlanGrid&>(session->Plan) = ElevenPoints();
  constexpr std::array<Parameter, 1> kS21{Parameter::S21};
  SweepRun run;
  run.Start(8);
  run.SweepEnded(*session, kS21);
  session->Plan.NumPoints = 10;
  run.SweepEnded(*session, kS21);
  EXPECT_FALSE(run.Running());
  EXPECT_EQ(run.Taken(), 1);
}

}  // namespace
}  // namespace qk
