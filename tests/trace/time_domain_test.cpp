// SPDX-License-Identifier: MIT
#include "trace/time_domain.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

#include "plot_record.h"
#include "trace/formatting.h"

namespace qk {
namespace {

using test::PlotRecord;

class TimeDomain : public testing::Test {
 protected:
  TimeDomain() {
    session->Plan.NumPoints = 1024;
    session->Plan.StartFreq = 3e6;
    session->Plan.StepFreq = 3e6;
    session->Channel(1).GraphType = GraphType::Td;
    session->Channel(1).Units = Unit::U;
  }
  // A sweep of one value a point through channel 1.
  template <class F>
  void Sweep(F value) {
    for (int i = 1; i <= 1024; ++i) DispatchPoint(*session, sink, value(i), i, Parameter::S11);
  }
  void SweepConstant(double re) {
    Sweep([re](int) { return Complex{re, 0}; });
  }
  // The spectrum's input unchanged, real everywhere.
  void Fill(double re) {
    td.TdInRe.fill(re);
    td.TdInIm.fill(0);
  }
  double DcTerm(TdDcTerm term, double resistance = 50) {
    BuildSpectrum(td, TdWindow::Rect, term, 5, resistance);
    return td.TdSpecRe[0] * 2 * 1024;
  }
  // The response by the sum term by term, as the transform is defined.
  std::vector<double> DirectResponse() const {
    std::vector<double> response(2048);
    double sum = 0;
    for (int n = 0; n < 2048; ++n) {
      double impulse = 0;
      for (int k = 0; k <= 1024; ++k) {
        const double a = k * 6.2831853 * n / 2048;
        impulse += std::cos(a) * td.TdSpecRe[static_cast<std::size_t>(k)];
        impulse += std::sin(a) * td.TdSpecIm[static_cast<std::size_t>(k)];
      }
      sum += impulse;
      response[static_cast<std::size_t>(n)] = sum;
    }
    return response;
  }
  void ExpectAgreesWithTheDirectSum(const char* what) {
    for (const TdWindow window : {TdWindow::Rect, TdWindow::RaisedCos, TdWindow::KaiserB}) {
      ComputeTimeDomain(td, window, TdDcTerm::Auto, 5, 50);
      const std::vector<double> direct = DirectResponse();
      double largest = 0, worst = 0;
      for (std::size_t n = 0; n < direct.size(); ++n) {
        largest = std::max(largest, std::fabs(direct[n]));
        worst = std::max(worst, std::fabs(direct[n] - td.TdStepResponse[n]));
      }
      EXPECT_LT(worst / largest, 1e-9) << what << " " << NameOf(window);
    }
  }
  double Value(int k) const { return session->Channel(1).Value[static_cast<std::size_t>(k)]; }

  std::unique_ptr<Session> session = MakeSession();
  TimeDomainArrays& td = session->TdArrays;
  PlotRecord sink;
};

TEST_F(TimeDomain, AgreesWithTheDirectSumOnRandomConstantAndSingleLineSpectra) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> part(-1, 1);
  for (std::size_t k = 1; k <= 1024; ++k) {
    td.TdInRe[k] = part(random);
    td.TdInIm[k] = part(random);
  }
  ExpectAgreesWithTheDirectSum("random");
  Fill(1);
  ExpectAgreesWithTheDirectSum("constant");
  for (const std::size_t line : {1u, 700u, 1024u}) {
    Fill(0);
    td.TdInRe[line] = 0.5;
    td.TdInIm[line] = -0.5;
    ExpectAgreesWithTheDirectSum("single line");
  }
}

TEST_F(TimeDomain, AgreesWithTheDirectSumOnASpectrumAsMeasured) {
  // A short behind 0.4 m of line with loss and a mismatch at its start.
  Sweep([this](int i) {
    const double f = session->Plan.Frequency(i - 1);
    const double phase = -2 * std::numbers::pi * f * 2 * 0.4 / kSpeedOfLight;
    const double loss = 0.98 - 0.1 * std::sqrt(f / 3e9);
    return Complex{0.03 - loss * std::cos(phase), -loss * std::sin(phase)};
  });
  ExpectAgreesWithTheDirectSum("measured");
}

TEST_F(TimeDomain, AutoDcTermOfAConstantSweepIsThatConstant) {
  Fill(1);
  EXPECT_DOUBLE_EQ(DcTerm(TdDcTerm::Auto), 1);
}

TEST_F(TimeDomain, AutoDcTermIsAParabolaThroughTheThreeLowestPoints) {
  Fill(0);
  for (int k = 1; k <= 3; ++k)
    td.TdInRe[static_cast<std::size_t>(k)] = 0.3 - 0.02 * k + 0.01 * k * k;
  EXPECT_NEAR(DcTerm(TdDcTerm::Auto), 0.3, 1e-12);
}

TEST_F(TimeDomain, AutoDcTermIsLimitedToOne) {
  Fill(0);
  td.TdInRe[1] = 1;  // 3
  EXPECT_DOUBLE_EQ(DcTerm(TdDcTerm::Auto), 1);
  td.TdInRe[1] = -1;
  EXPECT_DOUBLE_EQ(DcTerm(TdDcTerm::Auto), -1);
}

TEST_F(TimeDomain, DcTermsOfOpenShortAndAResistance) {
  EXPECT_DOUBLE_EQ(DcTerm(TdDcTerm::Open), 1);
  EXPECT_DOUBLE_EQ(DcTerm(TdDcTerm::Short), -1);
  EXPECT_DOUBLE_EQ(DcTerm(TdDcTerm::Res, 50), 0);
  EXPECT_DOUBLE_EQ(DcTerm(TdDcTerm::Res, 0), -1);
  EXPECT_DOUBLE_EQ(DcTerm(TdDcTerm::Res, 150), 0.5);
  EXPECT_TRUE(std::isfinite(DcTerm(TdDcTerm::Res, -50)));
}

// Intentional: the window falls over a quarter of its cosine only.
TEST_F(TimeDomain, TheRaisedCosineEndsAt0854) {
  Fill(1);
  BuildSpectrum(td, TdWindow::RaisedCos, TdDcTerm::Open, 5, 50);
  EXPECT_DOUBLE_EQ(td.TdWeight[0], 1);
  EXPECT_NEAR(td.TdWeight[1024], 0.8535533908, 1e-9);
  EXPECT_NEAR(td.TdSpecRe[1024], 0.8535533908 / 1024 / 2, 1e-12);
  EXPECT_NEAR(td.TdSpecRe[512], td.TdWeight[512] / 1024, 1e-15);
}

// Intentional: one is added to the Bessel function above and below.
TEST_F(TimeDomain, TheKaiserWindowRunsFromOneToTwoOverOnePlusBessel) {
  EXPECT_DOUBLE_EQ(Bessel0Plus1(0), 2);
  EXPECT_NEAR(Bessel0Plus1(5), std::cyl_bessel_i(0.0, 5.0) + 1, 1e-9);
  Fill(1);
  BuildSpectrum(td, TdWindow::KaiserB, TdDcTerm::Open, 5, 50);
  EXPECT_DOUBLE_EQ(td.TdWeight[0], 1);
  EXPECT_NEAR(td.TdWeight[1024], 2 / (std::cyl_bessel_i(0.0, 5.0) + 1), 1e-9);
  EXPECT_NEAR(td.TdKaiserArg[512], 5 * std::sqrt(0.75), 1e-12);
}

TEST_F(TimeDomain, NormalisesAndHalvesBothEndsAndTurnsTheImaginaryPart) {
  td.TdInRe.fill(1);
  td.TdInIm.fill(2);
  BuildSpectrum(td, TdWindow::Rect, TdDcTerm::Open, 5, 50);
  EXPECT_DOUBLE_EQ(td.TdSpecRe[0], 0.5 / 1024);
  EXPECT_DOUBLE_EQ(td.TdSpecRe[1], 1.0 / 1024);
  EXPECT_DOUBLE_EQ(td.TdSpecRe[1024], 0.5 / 1024);
  EXPECT_DOUBLE_EQ(td.TdSpecIm[7], -2.0 / 1024);
  EXPECT_EQ(td.TdSpecIm[0], 0);
}

// Intentional: the second derivatives end with knot 2027 of 2047.
TEST_F(TimeDomain, TheLastTwentyIntervalsAreStraight) {
  std::mt19937 random(4);
  std::uniform_real_distribution<double> part(-1, 1);
  for (double& y : td.TdStepResponse) y = part(random);
  PrepareTdSpline(td);
  EXPECT_NE(td.TdSplineY2[2026], 0);
  for (std::size_t k = 2027; k < 2048; ++k) EXPECT_EQ(td.TdSplineY2[k], 0);
  bool dataError = false;
  const double step = 1.629194e-10;
  const auto between = [&](int k) { return TdValueAt(td, (k - 0.5) * step - 5e-9, dataError); };
  for (int k = 2027; k < 2047; ++k) {
    const auto i = static_cast<std::size_t>(k);
    EXPECT_NEAR(between(k), (td.TdStepResponse[i] + td.TdStepResponse[i + 1]) / 2, 1e-9);
  }
  EXPECT_GT(std::fabs(between(2026) - (td.TdStepResponse[2026] + td.TdStepResponse[2027]) / 2),
            1e-6);
  EXPECT_FALSE(dataError);
}

TEST_F(TimeDomain, TheSplineRunsThroughItsKnotsAndNotThroughSampleZero) {
  for (std::size_t k = 0; k < 2048; ++k) td.TdStepResponse[k] = static_cast<double>(k % 7);
  PrepareTdSpline(td);
  bool dataError = false;
  for (const int k : {1, 2, 1000, 2026, 2047})
    EXPECT_NEAR(TdValueAt(td, (k - 1) * 1.629194e-10 - 5e-9, dataError), k % 7, 1e-5) << k;
}

TEST_F(TimeDomain, OnlyTheLastPointPlotsAndThenAllAtOnce) {
  for (int i = 1; i < 1024; ++i) DispatchPoint(*session, sink, {1, 0}, i, Parameter::S11);
  EXPECT_TRUE(sink.Points.empty());
  DispatchPoint(*session, sink, {1, 0}, 1024, Parameter::S11);
  ASSERT_EQ(sink.Points.size(), 1024u);
  EXPECT_EQ(sink.Points.front().Point, 1);
  EXPECT_EQ(sink.Points.back().Point, 1024);
  EXPECT_EQ(sink.Told, (std::vector<std::string>{"computing", "computed"}));
}

TEST_F(TimeDomain, AnOpenAtThePlaneIsAStepOfOneAtTimeZero) {
  session->TimeDomain.TdWindow = TdWindow::KaiserB;
  SweepConstant(1);
  // T1 is -5 ns and a point 0.163 ns.
  EXPECT_NEAR(Value(1), 0, 0.01);
  EXPECT_NEAR(Value(20), 0, 0.01);
  EXPECT_NEAR(Value(200), 1, 0.01);
  EXPECT_NEAR(Value(800), 1, 0.01);
}

TEST_F(TimeDomain, TheUnitsAreUnitsAndThousandths) {
  SweepConstant(1);
  const double units = Value(300);
  session->Channel(1).Units = Unit::MilliU;
  SweepConstant(1);
  EXPECT_DOUBLE_EQ(Value(300), units * 1000);
}

TEST_F(TimeDomain, IsNeverSmoothed) {
  session->Averaging.SmoothOn = true;
  session->Averaging.SmoothingPercent = 5;
  SweepConstant(1);
  EXPECT_EQ(sink.Points.size(), 1024u);
  EXPECT_EQ(session->Channel(1).SmoothValue[500], 0);
}

TEST_F(TimeDomain, MemoryMathComesFirst) {
  session->Display.DisplayMode = DisplayMode::MemoryMath;
  session->Display.MemoryFunction = MemoryFunction::Subtract;
  session->Channel(1).MemoryValid = true;
  session->Channel(1).MemoryRe.fill(0.5);
  SweepConstant(1);
  EXPECT_NEAR(Value(800), 0.5, 0.01);
}

TEST_F(TimeDomain, WorksOnATransmissionToo) {
  session->Channel(1).Parameter = Parameter::S21;
  for (int i = 1; i <= 1024; ++i) DispatchPoint(*session, sink, {0.5, 0}, i, Parameter::S21);
  EXPECT_NEAR(Value(800), 0.5, 0.01);
}

TEST_F(TimeDomain, TheAxisIsThatOfTheOptions) {
  session->TimeDomain.TdT1 = 100;
  session->TimeDomain.TdT2 = 200;
  session->TimeDomain.TdStep = 100.0 / 1023;
  SweepConstant(1);
  bool dataError = false;
  EXPECT_EQ(Value(1), TdValueAt(td, static_cast<double>(100e-9f), dataError));
  EXPECT_NEAR(Value(1024), TdValueAt(td, 200e-9, dataError), 1e-6);
}

}  // namespace
}  // namespace qk
