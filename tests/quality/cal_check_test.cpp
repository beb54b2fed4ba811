// SPDX-License-Identifier: MIT
// What checks have found, the verdict on it, and which term an uncertainty lacks.
#include "quality/cal_check.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>

#include "eleven_points.h"
#include "quality/quality_state.h"

namespace qk {
namespace {

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

TEST(CalCheck, ReportsTrackingAsAnErrorOfGain) {
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

// Two older ones, a little worse, would widen the trend of twelve.
TEST(JudgeCheck, ComparesWithTheLastTenAlone) {
  std::vector<CheckSummary> earlier(2, Summary(-49.2));
  earlier.insert(earlier.end(), 10, Summary(-50));
  EXPECT_FALSE(JudgeCheck(Summary(-49.5), earlier).Good);
  earlier.pop_back();
  EXPECT_TRUE(JudgeCheck(Summary(-49.5), earlier).Good) << "one of them is among the last ten";
}

TEST(Corrects, PortTwoAsASourceInBothDirectionsOnly) {
  for (const CheckTerm term :
       {CheckTerm::Directivity2, CheckTerm::SourceMatch2, CheckTerm::Tracking2}) {
    EXPECT_TRUE(Corrects(SweepMode::All, term));
    for (const SweepMode one : {SweepMode::S11, SweepMode::S21, SweepMode::S11S21})
      EXPECT_FALSE(Corrects(one, term));
  }
}

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
  // Another size for each term, so that none can stand for another.
  for (std::size_t i = 0; i < kCheckTerms; ++i)
    quality.Check.Take(static_cast<CheckTerm>(i), ElevenPoints(), 0, 10,
                       std::vector<double>(11, 0.01 * static_cast<double>(i + 1)),
                       CheckMethod::Standards, 0);
  const ResidualSizes all{.Directivity = 0.01,
                          .SourceMatch = 0.02,
                          .Tracking = 0.03,
                          .LoadMatch = 0.04,
                          .TransmissionTracking = 0.05,
                          .Isolation = 0.06,
                          .Directivity2 = 0.07,
                          .SourceMatch2 = 0.08,
                          .Tracking2 = 0.09};
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

}  // namespace
}  // namespace qk
