// SPDX-License-Identifier: MIT
// The uncertainty of calibrations of one direction, what it is based on, and runs of sweeps.
#include "quality/quality_state.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <memory>
#include <random>

#include "eleven_points.h"

namespace qk {
namespace {

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

// One that the calibration does not correct belongs to the test set.
TEST_F(OnePathUncertainty, NamesTermsAboveTheirLimits) {
  Check(CheckTerm::TransmissionTracking, 0.001);
  Check(CheckTerm::LoadMatch, 0.1);
  const auto words = [this] {
    std::string all;
    for (const std::string& word : UncertaintyWords(quality, *session, Parameter::S21))
      all += word + "\n";
    return all;
  };
  EXPECT_EQ(words().find("too large"), std::string::npos) << words();
  Check(CheckTerm::TransmissionTracking, 0.02);
  EXPECT_NE(words().find("\ntoo large: transmission tracking 0.172 dB\n"), std::string::npos)
      << words();
  EXPECT_NE(UncertaintyBasis(quality, *session, Parameter::S21)
                .find(" Above the limit: transmission tracking 0.172 dB. "),
            std::string::npos);
  Check(CheckTerm::SourceMatch, 0.02);
  EXPECT_NE(words().find("\ntoo large: transmission tracking 0.172 dB, source match -34.0 dB\n"),
            std::string::npos)
      << words();
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

TEST_F(OnePathUncertainty, NamesTwoChecksByOneMethodWithTheirTimes) {
  const std::vector<double> sizes(11, 0.001);
  const auto take = [&](CheckTerm term, std::int64_t utc) {
    quality.Check.Take(term, ElevenPoints(), 0, 10, sizes, CheckMethod::Standards, utc);
  };
  take(CheckTerm::Directivity, 99);
  take(CheckTerm::SourceMatch, 199);
  take(CheckTerm::LoadMatch, 199);
  const std::string basis = UncertaintyBasis(quality, *session, Parameter::S11);
  EXPECT_NE(basis.find(" Three standards 1970-01-01T00:01:39Z: directivity. Three standards "
                       "1970-01-01T00:03:19Z: source match, load match."),
            std::string::npos)
      << basis;
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
