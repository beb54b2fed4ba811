// SPDX-License-Identifier: MIT
// Error terms point by point: the ideal standards, the one-port core, the isolation, in their
// stated steps.
#include "cal/error_terms.h"

#include <gtest/gtest.h>

#include <limits>

#include "cal/correction.h"
#include "error_box.h"
#include "numeric/rotation.h"

namespace qk {
namespace {

using namespace test;

void ExpectNear(Complex z, Cx truth, double tolerance) {
  EXPECT_NEAR(z.re, truth.real(), tolerance);
  EXPECT_NEAR(z.im, truth.imag(), tolerance);
}

// ---- the ideal open --------------------------------------------------------------------------

TEST(OpenGamma, IsThatOfTheKitsCapacitance) {
  const CalKit kit;
  for (const double f : {3e6, 1e9, 3.08e9}) {
    const double c = 2.5e-15 + 2.9e-25 * f - 1e-35 * f * f + 2.4e-46 * f * f * f;
    const Cx z = 1.0 / Cx(0, 2 * kPi * f * c);
    ExpectNear(OpenGamma(kit, f, 50), (z - 50.0) / (z + 50.0), 1e-11);
    EXPECT_NEAR(std::abs(Of(OpenGamma(kit, f, 50))), 1, 1e-14);
  }
}

TEST(OpenGamma, FollowsTheSystemImpedance) {
  const CalKit kit;
  const Complex at50 = OpenGamma(kit, 3e9, 50), at75 = OpenGamma(kit, 3e9, 75);
  EXPECT_GT(std::abs(Of(at50) - Of(at75)), 1e-3);
}

TEST(OpenGamma, TakesCapacitancesBelowTheFloorAs1e20) {
  CalKit kit;
  kit.KitC1 = kit.KitC2 = kit.KitC3 = 0;
  for (const double c : {0.0, 1e-21, -5e-14}) {
    kit.KitC0 = c;
    const Complex open = OpenGamma(kit, 1e9, 50);
    kit.KitC0 = 1e-20;
    EXPECT_EQ(open, OpenGamma(kit, 1e9, 50)) << c;
  }
  EXPECT_NEAR(OpenGamma(kit, 1e9, 50).re, 1, 1e-8);
}

TEST(OpenGamma, OfTheOnePortKindLetsNegativeCapacitancesStandAndRaisesOnlyZero) {
  CalKit kit;
  kit.KitC1 = kit.KitC2 = kit.KitC3 = 0;
  kit.KitC0 = -5e-14;
  const Cx z = 1.0 / Cx(0, 2 * kPi * 1e9 * -5e-14);
  ExpectNear(OpenGamma(kit, 1e9, 50, CapacitanceFloor::ZeroOnly), (z - 50.0) / (z + 50.0), 1e-9);
  kit.KitC0 = 0;
  const Complex open = OpenGamma(kit, 1e9, 50, CapacitanceFloor::ZeroOnly);
  EXPECT_TRUE(std::isfinite(open.re) && std::isfinite(open.im));
  EXPECT_NEAR(open.re, 1, 1e-8);
}

// ---- the one-port core -----------------------------------------------------------------------

struct OnePort : testing::Test {
  std::unique_ptr<Session> session = MakePlan(51);
  ErrorBox box = MakeErrorBox(42);
  PortTerms& terms = session->Terms.Forward;

  double F(int k) const { return session->Plan.Frequency(k); }
  void Measure(const KitTruth& kit) {
    StandardsMeasured& m = session->Standards;
    for (int k = 0; k < session->Plan.NumPoints; ++k) {
      m.CalLoad1.Set(k, To(MeasuredReflection(box.Forward, F(k), kit.LoadAt(F(k)))));
      m.CalShort1.Set(k, To(MeasuredReflection(box.Forward, F(k), kit.ShortAt(F(k)))));
      m.CalOpen1.Set(k, To(MeasuredReflection(box.Forward, F(k), kit.OpenAt(F(k)))));
    }
  }
  Complex Corrected(int k, Complex raw) {
    session->Data.RawS11.Set(k, raw);
    CorrectS11Point(*session, k);
    return session->Data.S11[k];
  }
};

TEST_F(OnePort, ReducesToTheSimpleFormWithAPerfectLoadAndOpen) {
  session->Kit1.KitC0 = 1e-20;  // no capacitance to speak of: an open of 1
  session->Kit1.KitC1 = session->Kit1.KitC2 = session->Kit1.KitC3 = 0;
  Measure(TruthOf(session->Kit1));
  ComputeOnePortTerms(*session);
  const StandardsMeasured& m = session->Standards;
  for (int k = 0; k < 51; ++k) {
    const Cx o = Of(m.CalOpen1[k]), s = Of(m.CalShort1[k]), l = Of(m.CalLoad1[k]);
    ExpectNear(terms.ES[k], (o + s - 2.0 * l) / (o - s), 1e-6);
    // The three standards themselves come back.
    ExpectNear(Corrected(k, m.CalLoad1[k]), 0, 1e-6);
    ExpectNear(Corrected(k, m.CalShort1[k]), -1, 2e-6);
    ExpectNear(Corrected(k, m.CalOpen1[k]), 1, 2e-6);
  }
}

TEST_F(OnePort, AKitOffsetOf0LeavesTheTermsToTheAccuracyOfTheTurn) {
  Measure(TruthOf(session->Kit1));
  ComputeOnePortTerms(*session);
  double worst = 0;
  for (int k = 0; k < 51; ++k) {
    const StandardsMeasured& m = session->Standards;
    const Cx o = Of(m.CalOpen1[k]), s = Of(m.CalShort1[k]), l = Of(m.CalLoad1[k]);
    const Cx go = Of(OpenGamma(session->Kit1, F(k), 50));
    const Cx es = (o - l - l * go + s * go) / (o * go - s * go);
    const Cx ert = (1.0 + es) * (l - s);
    worst = std::max({worst, std::abs(Of(terms.ES[k]) - es), std::abs(Of(terms.ERT[k]) - ert)});
    ExpectNear(terms.ED[k], l, 1e-12);  // the directivity is not turned at all
    // Rebuilt through the phase, whose last bit may fall on either side.
    ExpectNear(terms.ES[k], Of(Rotate(To(es), 0, F(k))), 1e-7);
  }
  EXPECT_GT(worst, 1e-9);
  EXPECT_LT(worst, 1e-6);
}

TEST_F(OnePort, TurnsByTwiceTheKitsDelayMultipliedIn32Bits) {
  session->Kit1.KitDelay = 17.5467e-12f;
  Measure(TruthOf(CalKit()));  // as if without an offset
  ComputeOnePortTerms(*session);
  CalKit plain;
  const auto delay = static_cast<double>(-2.0f * 17.5467e-12f);
  for (int k = 0; k < 51; ++k) {
    ExpectNear(terms.ES[k], box.Forward.ES(F(k)) * std::polar(1.0, -2 * kPi * F(k) * delay), 1e-6);
    ExpectNear(terms.ERT[k], box.Forward.ERT(F(k)) * std::polar(1.0, -2 * kPi * F(k) * delay),
               1e-6);
    ExpectNear(terms.ED[k], box.Forward.ED(F(k)), 1e-9);
  }
}

TEST_F(OnePort, TakesTheDelayOfTheKitAndNotItsOffset) {
  session->Kit1.KitOffset = 0.1f;  // a file may disagree with itself
  session->Kit1.KitDelay = 0;
  Measure(TruthOf(session->Kit1));
  ComputeOnePortTerms(*session);
  for (int k = 0; k < 51; ++k) ExpectNear(terms.ES[k], box.Forward.ES(F(k)), 1e-6);
}

TEST_F(OnePort, TakesANegativeCapacitanceAsItComes) {
  session->Kit1.KitC0 = -6e-14;
  Measure(TruthOf(session->Kit1));
  ComputeOnePortTerms(*session);
  for (int k = 0; k < 51; ++k) ExpectNear(terms.ES[k], box.Forward.ES(F(k)), 1e-6);
}

TEST_F(OnePort, StaysFiniteOnACapacitanceOfZero) {
  session->Kit1.KitC0 = session->Kit1.KitC1 = session->Kit1.KitC2 = session->Kit1.KitC3 = 0;
  KitTruth open = TruthOf(session->Kit1);
  open.C0 = 1e-20;
  Measure(open);
  ComputeOnePortTerms(*session);
  for (int k = 0; k < 51; ++k) ExpectNear(terms.ES[k], box.Forward.ES(F(k)), 1e-6);
}

TEST_F(OnePort, SetsCalDataReadyAndTouchesOnlyThePlansPoints) {
  Measure(TruthOf(session->Kit1));
  EXPECT_TRUE(ComputeOnePortTerms(*session));
  EXPECT_TRUE(session->Cal.CalDataReady);
  EXPECT_EQ(terms.ERT[51], (Complex{0, 0}));
  EXPECT_EQ(terms.ETT[0], (Complex{0, 0}));
}

TEST_F(OnePort, ReportsALoadTableOfEqualFrequenciesAndStaysFinite) {
  GiveLoad(session->Kit1, {{0.01, 0}, {}});
  session->Kit1.KitLoadData[0].fill(1e9f);
  Measure(TruthOf(CalKit()));
  EXPECT_FALSE(ComputeOnePortTerms(*session));
  for (int k = 0; k < 51; ++k)
    EXPECT_TRUE(std::isfinite(terms.ES[k].re) && std::isfinite(terms.ERT[k].im));
}

TEST_F(OnePort, StandardsOfZeroGiveFiniteTerms) {
  ComputeOnePortTerms(*session);
  for (int k = 0; k < 51; ++k) {
    EXPECT_TRUE(std::isfinite(terms.ES[k].re) && std::isfinite(terms.ES[k].im));
    EXPECT_TRUE(std::isfinite(terms.ED[k].re) && std::isfinite(terms.ERT[k].re));
    const Complex s11 = Corrected(k, {0.5, 0.5});
    EXPECT_TRUE(std::isfinite(s11.re) && std::isfinite(s11.im));
  }
}

TEST_F(OnePort, ALoadTableThatIsNotThereIsAPerfectLoadEvenWithDataInIt) {
  GiveLoad(session->Kit1, {{0.05, 0.05}, {}});
  session->Kit1.KitHasLoad = false;
  Measure(TruthOf(CalKit()));
  ComputeOnePortTerms(*session);
  for (int k = 0; k < 51; ++k) ExpectNear(terms.ES[k], box.Forward.ES(F(k)), 1e-6);
}

// ---- response --------------------------------------------------------------------------------

TEST(ResponseTerms, WithoutTheIsolationStepKeepTheRawThroughAndAnIsolationOf0) {
  const auto session = MakePlan(51);
  session->Terms.Forward.ETT.Fill({0.5, 0.25});
  session->Terms.Forward.EX.Fill({0.1, 0});  // of an earlier calibration
  ComputeResponseTerms(*session, false);
  for (int k = 0; k < 51; ++k) {
    EXPECT_EQ(session->Terms.Forward.EX[k], (Complex{0, 0}));
    EXPECT_EQ(session->Terms.Forward.ETT[k], (Complex{0.5, 0.25}));
  }
  EXPECT_EQ(session->Terms.Forward.EX[51], (Complex{0.1, 0}));
}

TEST(ResponseTerms, TakeTheIsolationOffTheThrough) {
  const auto session = MakePlan(51);
  session->Terms.Forward.ETT.Fill({0.5, 0.25});
  session->Terms.Forward.EX.Fill({0.125, -0.25});
  ComputeResponseTerms(*session, true);
  EXPECT_EQ(session->Terms.Forward.ETT[50], (Complex{0.375, 0.5}));
  EXPECT_EQ(session->Terms.Forward.EX[50], (Complex{0.125, -0.25}));
}

TEST(EnhancedTerms, DivideTheTrackingByOnePlusSourceMatchTimesTheThroughsReflection) {
  const auto session = MakePlan(51);
  PortTerms& t = session->Terms.Forward;
  t.ED.Fill({0.1, 0});
  t.ERT.Fill({0.5, 0});
  t.ES.Fill({0.2, 0});
  t.ETT.Fill({0.8, 0});
  t.EX.Fill({0.05, 0});
  session->Standards.CalThruRefl1.Fill({0.3, 0});
  ComputeEnhancedTerms(*session, true);
  const double x = 0.2, gamma = x / (0.2 * x + 0.5);
  EXPECT_DOUBLE_EQ(session->Standards.CalThruRefl1[7].re, gamma);
  EXPECT_DOUBLE_EQ(t.ETT[7].re, (0.8 - 0.05) / (gamma * 0.2 + 1));
}

TEST(EnhancedTerms, WithoutTheIsolationStepHaveAnIsolationOf0) {
  const auto session = MakePlan(51);
  session->Terms.Forward.EX.Fill({0.05, 0});
  session->Terms.Forward.ETT.Fill({0.8, 0});
  ComputeEnhancedTerms(*session, false);
  EXPECT_EQ(session->Terms.Forward.EX[3], (Complex{0, 0}));
  EXPECT_EQ(session->Terms.Forward.ETT[3], (Complex{0.8, 0}));
}

// ---- device-dependent isolation --------------------------------------------------------------

// An analyser without errors but for its isolation: raw reflections are true ones.
struct Isolation : testing::Test {
  std::unique_ptr<Session> session = MakePlan(51);
  ErrorTerms& terms = session->Terms;

  void Compute(int method) {
    StandardsMeasured& m = session->Standards;
    session->Kit1.KitC0 = session->Kit2.KitC0 = 1e-20;
    for (CalKit* kit : {&session->Kit1, &session->Kit2}) kit->KitC1 = kit->KitC2 = kit->KitC3 = 0;
    for (ComplexArray* a : {&m.CalShort1, &m.CalShort2}) a->Fill({-1, 0});
    for (ComplexArray* a : {&m.CalOpen1, &m.CalOpen2}) a->Fill({1, 0});
    terms.Forward.ETT.Fill({1, 0});
    terms.Reverse.ETT.Fill({1, 0});
    terms.Forward.EX.Fill({0.01, 0});
    terms.Reverse.EX.Fill({0.02, 0});
    m.CalDutRefl1.Fill({0.5, 0});
    m.CalDutRefl2.Fill({-0.25, 0});
    terms.IsoFwd1.Fill({0.03, 0});
    terms.IsoRev1.Fill({0.05, 0});
    terms.IsoFwd2.Fill({0.07, 0});
    terms.IsoRev2.Fill({0.09, 0});
    session->Cal.IsoMethod = static_cast<IsoMethod>(method);
    ComputeInsertableTerms(*session);
  }
};

TEST_F(Isolation, ByTwoSweepsHasACoefficientOfEachReflection) {
  Compute(2);
  ExpectNear(terms.IsoFwd0[9], 0.01, 1e-12);
  ExpectNear(terms.IsoRev0[9], 0.02, 1e-12);
  ExpectNear(terms.IsoFwd1[9], (0.03 - 0.01) / 0.5, 1e-7);
  ExpectNear(terms.IsoFwd2[9], (0.07 - 0.01) / -0.25, 1e-7);
  ExpectNear(terms.IsoRev1[9], (0.05 - 0.02) / 0.5, 1e-7);
  ExpectNear(terms.IsoRev2[9], (0.09 - 0.02) / -0.25, 1e-7);
  EXPECT_NE(terms.IsoFwd1[9], terms.IsoFwd2[9]);
}

TEST_F(Isolation, ByOneSweepHasCoefficientsThatDifferOnlyByTheDivisionByTheReflections) {
  Compute(1);
  const double half = (0.03 + 0.01) / 2 - 0.01, halfReverse = (0.05 + 0.02) / 2 - 0.02;
  ExpectNear(terms.IsoFwd1[9], half / 0.5, 1e-7);
  ExpectNear(terms.IsoFwd2[9], half / -0.25, 1e-7);
  ExpectNear(terms.IsoRev1[9], halfReverse / 0.5, 1e-7);
  ExpectNear(terms.IsoRev2[9], halfReverse / -0.25, 1e-7);
}

TEST_F(Isolation, LeavesTheDevicesCorrectedReflectionsInPlaceOfTheRawOnes) {
  Compute(2);
  ExpectNear(session->Standards.CalDutRefl1[9], 0.5, 1e-6);
  ExpectNear(session->Standards.CalDutRefl2[9], -0.25, 1e-6);
}

TEST_F(Isolation, OfTheLoadSweepsIsNeverZeroedByAnInsertableCompute) {
  Compute(0);
  EXPECT_EQ(terms.Forward.EX[9], (Complex{0.01, 0}));
  EXPECT_EQ(terms.Reverse.EX[9], (Complex{0.02, 0}));
}

TEST_F(Isolation, CoefficientsAreClearedAtThePlansPointsOnly) {
  for (ComplexArray* a : {&terms.IsoFwd0, &terms.IsoFwd1, &terms.IsoFwd2, &terms.IsoRev0,
                          &terms.IsoRev1, &terms.IsoRev2})
    a->Fill({1, 2});
  ClearIsolationCoefficients(*session);
  for (const ComplexArray* a : {&terms.IsoFwd1, &terms.IsoFwd2, &terms.IsoRev1, &terms.IsoRev2}) {
    EXPECT_EQ((*a)[0], (Complex{0, 0}));
    EXPECT_EQ((*a)[50], (Complex{0, 0}));
    EXPECT_EQ((*a)[51], (Complex{1, 2}));
  }
  EXPECT_EQ(terms.IsoFwd0[0], (Complex{1, 2}));
  EXPECT_EQ(terms.IsoRev0[0], (Complex{1, 2}));
}

// ---- non-insertable --------------------------------------------------------------------------

TEST(NonInsertableTerms, WithoutThroughDataStayFinite) {
  const auto session = MakePlan(51);
  session->Standards.CalShort1.Fill({-1, 0});
  session->Standards.CalOpen1.Fill({1, 0});
  session->Terms.Forward.ETT.Fill({1, 0});
  EXPECT_TRUE(ComputeNonInsertableTerms(*session));
  for (int k = 0; k < 51; ++k)
    for (const Complex z : {session->Terms.Forward.EL[k], session->Terms.Forward.ETT[k],
                            session->Terms.Reverse.EL[k], session->Terms.Reverse.ETT[k]})
      EXPECT_TRUE(std::isfinite(z.re) && std::isfinite(z.im));
}

TEST(NonInsertableTerms, ReportAThroughTableOfEqualFrequencies) {
  const auto session = MakePlan(51);
  session->Kit1.KitHasThru = true;
  session->Kit1.KitThruData[0].fill(1e9f);
  EXPECT_FALSE(ComputeNonInsertableTerms(*session));
}

}  // namespace
}  // namespace qk
