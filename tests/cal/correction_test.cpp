// SPDX-License-Identifier: MIT
// The correction of a point in the four modes.
#include "cal/correction.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "error_box.h"

namespace qk {
namespace {

using namespace test;

void ExpectNear(Complex z, Cx truth) {
  EXPECT_NEAR(z.re, truth.real(), 1e-13);
  EXPECT_NEAR(z.im, truth.imag(), 1e-13);
}

// Terms, isolation coefficients and raw data of some error box; every array different.
std::unique_ptr<Session> MakeMeasured(std::uint64_t seed, int numPoints = kMaxPoints) {
  auto session = MakePlan(numPoints);
  Dice dice(seed);
  ErrorTerms& t = session->Terms;
  SParamData& d = session->Data;
  std::vector<ComplexArray*> arrays;
  for (PortTerms* p : {&t.Forward, &t.Reverse})
    for (ComplexArray* a : {&p->ED, &p->ERT, &p->ES, &p->EX, &p->ETT, &p->EL}) arrays.push_back(a);
  for (ComplexArray* a : {&t.IsoFwd0, &t.IsoFwd1, &t.IsoFwd2, &t.IsoRev0, &t.IsoRev1, &t.IsoRev2,
                          &d.RawS11, &d.RawS21, &d.RawS12, &d.RawS22})
    arrays.push_back(a);
  for (ComplexArray* a : arrays) {
    const Smooth value = dice.About(0.5, 1e-9);
    for (int k = 0; k < numPoints; ++k) a->Set(k, To(value(session->Plan.Frequency(k))));
  }
  return session;
}

TEST(CorrectS11Point, InvertsTheOnePortErrorBox) {
  const auto s = MakeMeasured(1, 51);
  const PortTerms& t = s->Terms.Forward;
  for (int k = 0; k < 51; ++k) {
    CorrectS11Point(*s, k);
    const Cx x = Of(s->Data.RawS11[k]) - Of(t.ED[k]);
    ExpectNear(s->Data.S11[k], x / (Of(t.ES[k]) * x + Of(t.ERT[k])));
  }
}

TEST(CorrectS21Point, TakesTheIsolationOffAndDividesByTheTracking) {
  const auto s = MakeMeasured(2, 51);
  const PortTerms& t = s->Terms.Forward;
  for (int k = 0; k < 51; ++k) {
    CorrectS21Point(*s, k);
    ExpectNear(s->Data.S21[k], (Of(s->Data.RawS21[k]) - Of(t.EX[k])) / Of(t.ETT[k]));
  }
}

TEST(CorrectEnhancedPoint, DividesByOnePlusSourceMatchTimesTheS11ThatStands) {
  const auto s = MakeMeasured(3, 51);
  const PortTerms& t = s->Terms.Forward;
  s->Data.S11.Fill({0.3, -0.2});  // after its reference plane, say
  for (int k = 0; k < 51; ++k) {
    CorrectEnhancedPoint(*s, k);
    const Cx match = Cx(0.3, -0.2) * Of(t.ES[k]) + 1.0;
    ExpectNear(s->Data.S21[k], (Of(s->Data.RawS21[k]) - Of(t.EX[k])) / match / Of(t.ETT[k]));
    EXPECT_EQ(s->Data.S11[k], (Complex{0.3, -0.2}));
  }
}

TEST(Correct12TermPoint, IsTheStatedSolution) {
  const auto s = MakeMeasured(4, 51);
  const ErrorTerms& t = s->Terms;
  const PortTerms &p = t.Forward, &q = t.Reverse;
  for (int k = 0; k < 51; ++k) {
    Correct12TermPoint(*s, k);
    const Cx x = Of(s->Data.RawS11[k]) - Of(p.ED[k]), y = Of(s->Data.RawS22[k]) - Of(q.ED[k]);
    const Cx g1 = x / (Of(p.ES[k]) * x + Of(p.ERT[k]));
    const Cx g2 = y / (Of(q.ES[k]) * y + Of(q.ERT[k]));
    const Cx ex = Of(t.IsoFwd0[k]) + Of(t.IsoFwd1[k]) * g1 + Of(t.IsoFwd2[k]) * g2;
    const Cx ex2 = Of(t.IsoRev0[k]) + Of(t.IsoRev1[k]) * g1 + Of(t.IsoRev2[k]) * g2;
    ExpectNear(p.EX[k], ex);
    ExpectNear(q.EX[k], ex2);
    const Cx a = x / Of(p.ERT[k]), b = (Of(s->Data.RawS21[k]) - ex) / Of(p.ETT[k]);
    const Cx c = (Of(s->Data.RawS12[k]) - ex2) / Of(q.ETT[k]), d = y / Of(q.ERT[k]);
    const Cx es = Of(p.ES[k]), es2 = Of(q.ES[k]), el = Of(p.EL[k]), el2 = Of(q.EL[k]);
    const Cx w = (1.0 + a * es) * (1.0 + d * es2) - b * el * el2 * c;
    const double scale = 1e-12 * std::max(1.0, 10 / std::abs(w));
    const auto near = [&](Complex z, Cx truth) {
      EXPECT_LT(std::abs(Of(z) - truth), scale * (1 + std::abs(truth)));
    };
    near(s->Data.S21[k], b * (1.0 + d * (es2 - el)) / w);
    near(s->Data.S11[k], (a * (1.0 + d * es2) - b * el * c) / w);
    near(s->Data.S12[k], c * (1.0 + a * (es - el2)) / w);
    near(s->Data.S22[k], (d * (1.0 + a * es) - b * el2 * c) / w);
  }
}

TEST(Correct12TermPoint, ChangesTheIsolationFromSweepToSweepUnlessItsCoefficientsAre0) {
  const auto s = MakeMeasured(5, 51);
  Correct12TermPoint(*s, 7);
  const Complex first = s->Terms.Forward.EX[7];
  s->Data.RawS11.Set(7, {0.9, -0.4});
  Correct12TermPoint(*s, 7);
  EXPECT_NE(s->Terms.Forward.EX[7], first);

  for (ComplexArray* a :
       {&s->Terms.IsoFwd1, &s->Terms.IsoFwd2, &s->Terms.IsoRev1, &s->Terms.IsoRev2})
    a->Fill({0, 0});
  Correct12TermPoint(*s, 7);
  EXPECT_EQ(s->Terms.Forward.EX[7], s->Terms.IsoFwd0[7]);
  EXPECT_EQ(s->Terms.Reverse.EX[7], s->Terms.IsoRev0[7]);
}

TEST(Correct12TermPoint, TouchesNoOtherPoint) {
  const auto s = MakeMeasured(6, 51), before = MakeMeasured(6, 51);
  Correct12TermPoint(*s, 20);
  for (const int k : {19, 21}) {
    EXPECT_EQ(s->Data.S11[k], before->Data.S11[k]);
    EXPECT_EQ(s->Data.S21[k], before->Data.S21[k]);
    EXPECT_EQ(s->Terms.Forward.EX[k], before->Terms.Forward.EX[k]);
  }
}

// A session without a calibration, all terms 0: wrong, but finite.
TEST(Correction, WithTermsOfZeroStaysFinite) {
  const auto s = MakePlan(51);
  for (ComplexArray* raw : {&s->Data.RawS11, &s->Data.RawS21, &s->Data.RawS12, &s->Data.RawS22})
    raw->Fill({0.7, -0.7});
  CorrectS11Point(*s, 0);
  CorrectS21Point(*s, 0);
  CorrectEnhancedPoint(*s, 0);
  Correct12TermPoint(*s, 1);
  for (const int k : {0, 1})
    for (const Complex z : {s->Data.S11[k], s->Data.S21[k], s->Data.S12[k], s->Data.S22[k]})
      EXPECT_TRUE(std::isfinite(z.re) && std::isfinite(z.im));
}

}  // namespace
}  // namespace qk
