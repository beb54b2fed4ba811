// SPDX-License-Identifier: MIT
// The contract of calibration, for each kind: standards measured through a known error box, terms
// computed, and an unknown device measured through the same box comes back as it is. Where a kind
// departs from the textbook on purpose, the departure and its size are what is tested.
#include <gtest/gtest.h>

#include <algorithm>

#include "cal/apply.h"
#include "cal/correction.h"
#include "cal/error_terms.h"
#include "error_box.h"
#include "support/fake_host.h"

namespace qk {
namespace {

using namespace test;

// The kit's offset turns ES and ERT through a 32-bit phase and a constant of seven digits, also
// when it is 0.
constexpr double kTurned = 2e-6;
constexpr double kRounding = 1e-12;

struct Contract : testing::TestWithParam<std::uint64_t> {
  std::unique_ptr<Session> session = MakePlan(51);
  FakeClock clock;
  FakeHost host{clock};
  ErrorBox box = MakeErrorBox(GetParam());
  DeviceUnderTest device = MakeDevice(GetParam() + 1000);
  LoadLine load1, load2;
  std::function<TwoPortAt(double)> through = [](double) { return TwoPortAt{0, 1, 1, 0}; };

  int Points() const { return session->Plan.NumPoints; }
  double F(int k) const { return session->Plan.Frequency(k); }
  StandardsMeasured& M() { return session->Standards; }
  PortTerms& Fwd() { return session->Terms.Forward; }
  PortTerms& Rev() { return session->Terms.Reverse; }

  // The isolation is the same whatever is connected.
  void PlainIsolation() {
    for (Direction* d : {&box.Forward, &box.Reverse}) d->Iso1 = d->Iso2 = Smooth();
  }

  void MeasureReflectionStandards(bool oneKit = false) {
    const KitTruth kit1 = TruthOf(session->Kit1, load1);
    const KitTruth kit2 = oneKit ? kit1 : TruthOf(session->Kit2, load2);
    for (int k = 0; k < Points(); ++k) {
      const double f = F(k);
      const RawAt load = MeasuredPair(box, f, kit1.LoadAt(f), kit2.LoadAt(f));
      const RawAt shorted = MeasuredPair(box, f, kit1.ShortAt(f), kit2.ShortAt(f));
      const RawAt open = MeasuredPair(box, f, kit1.OpenAt(f), kit2.OpenAt(f));
      M().CalLoad1.Set(k, To(load.S11));
      M().CalLoad2.Set(k, To(load.S22));
      M().CalShort1.Set(k, To(shorted.S11));
      M().CalShort2.Set(k, To(shorted.S22));
      M().CalOpen1.Set(k, To(open.S11));
      M().CalOpen2.Set(k, To(open.S22));
      Fwd().EX.Set(k, To(load.S21));
      Rev().EX.Set(k, To(load.S12));
    }
  }

  void MeasureThrough() {
    for (int k = 0; k < Points(); ++k) {
      const RawAt raw = MeasuredTwoPort(box, F(k), through(F(k)));
      Fwd().ETT.Set(k, To(raw.S21));
      Rev().ETT.Set(k, To(raw.S12));
      M().CalThruRefl1.Set(k, To(raw.S11));
      M().CalThruRefl2.Set(k, To(raw.S22));
    }
  }

  // Method 1: the device on both ports, nothing between. Method 2: a load on the other port.
  void MeasureDeviceIsolation(int method) {
    session->Cal.IsoMethod = static_cast<IsoMethod>(method);
    for (int k = 0; k < Points(); ++k) {
      const TwoPortAt s = device.At(F(k));
      const RawAt first = MeasuredPair(box, F(k), s.S11, method == 1 ? s.S22 : 0);
      M().CalDutRefl1.Set(k, To(first.S11));
      M().CalDutRefl2.Set(k, To(first.S22));
      session->Terms.IsoFwd1.Set(k, To(first.S21));
      session->Terms.IsoRev1.Set(k, To(first.S12));
      if (method == 1) continue;
      const RawAt second = MeasuredPair(box, F(k), 0, s.S22);
      M().CalDutRefl2.Set(k, To(second.S22));
      session->Terms.IsoFwd2.Set(k, To(second.S21));
      session->Terms.IsoRev2.Set(k, To(second.S12));
    }
  }

  void MeasureDevice() {
    for (int k = 0; k < Points(); ++k)
      SetRaw(*session, k, MeasuredTwoPort(box, F(k), device.At(F(k))));
  }

  void Apply(CalChoice choice, bool isoDone = true) {
    Host h = host.host();
    ApplyCalibration(*session, h, choice, isoDone);
  }

  void CorrectAll() {
    for (int k = 0; k < Points(); ++k) Correct12TermPoint(*session, k);
  }

  // The largest error of all corrected parameters over all points, twelve-term.
  double WorstOfAll() {
    MeasureDevice();
    CorrectAll();
    double worst = 0;
    for (int k = 0; k < Points(); ++k) {
      const TwoPortAt truth = device.At(F(k));
      const SParamData& d = session->Data;
      for (const double e :
           {std::abs(Of(d.S11[k]) - truth.S11), std::abs(Of(d.S21[k]) - truth.S21),
            std::abs(Of(d.S12[k]) - truth.S12), std::abs(Of(d.S22[k]) - truth.S22)})
        worst = std::max(worst, e);
    }
    return worst;
  }

  // A one-port device g behind port 1, in S11 mode.
  double WorstReflection(const Smooth& g) {
    double worst = 0;
    for (int k = 0; k < Points(); ++k) {
      session->Data.RawS11.Set(k, To(MeasuredReflection(box.Forward, F(k), g(F(k)))));
      CorrectS11Point(*session, k);
      worst = std::max(worst, std::abs(Of(session->Data.S11[k]) - g(F(k))));
    }
    return worst;
  }
};
INSTANTIATE_TEST_SUITE_P(Seeds, Contract, testing::Values(1, 2, 3, 4, 5, 6, 7, 8));

// ---- S11 -------------------------------------------------------------------------------------

TEST_P(Contract, S11GivesADevicesReflection) {
  MeasureReflectionStandards();
  Apply(CalChoice::S11);
  EXPECT_LT(WorstReflection(device.S11), kTurned);
}

TEST_P(Contract, S11WithOffsetStandardsGivesTheReflectionAtThePort) {
  GiveOffset(session->Kit1, 5.26e-3);
  MeasureReflectionStandards();
  Apply(CalChoice::S11);
  EXPECT_LT(WorstReflection(device.S11), kTurned);
  for (int k = 0; k < Points(); ++k) {
    EXPECT_LT(std::abs(Of(Fwd().ED[k]) - box.Forward.ED(F(k))), 1e-9);
    EXPECT_LT(std::abs(Of(Fwd().ES[k]) - box.Forward.ES(F(k))), 1e-6);
    EXPECT_LT(std::abs(Of(Fwd().ERT[k]) - box.Forward.ERT(F(k))), 1e-6);
  }
}

// Intentional: the denominator of ES lacks the terms S g - L g of a load that reflects g.
TEST_P(Contract, S11WithLoadDataDepartsFromTheTextbookByTheTermsMissingInES) {
  load1 = {{0.02, -0.01}, {4e-12, 9e-12}};
  GiveLoad(session->Kit1, load1);
  MeasureReflectionStandards();
  Apply(CalChoice::S11);
  const KitTruth kit = TruthOf(session->Kit1, load1);
  double departure = 0;
  for (int k = 0; k < Points(); ++k) {
    const Cx l = Of(M().CalLoad1[k]), s = Of(M().CalShort1[k]), o = Of(M().CalOpen1[k]);
    const Cx g = load1(F(k)), go = kit.OpenAt(F(k));
    const Cx numerator = o - l - l * go + s * go + o * g - s * g;
    const Cx denominator = -s * go + o * go - l * g * go + o * g * go;
    const Cx exact = numerator / (denominator + s * g - l * g);
    EXPECT_LT(std::abs(exact - box.Forward.ES(F(k))), 1e-6) << "the textbook's solution is exact";
    EXPECT_LT(std::abs(Of(Fwd().ES[k]) - numerator / denominator), 1e-6) << "and this one is not";
    departure = std::max(departure, std::abs(Of(Fwd().ES[k]) - exact));
    // Tracking and directivity follow from the ES at hand.
    const Cx es = Of(Fwd().ES[k]);
    const Cx tracking = (1.0 + (1.0 - g) * es - es * es * g) * (l - s) / (1.0 + g);
    EXPECT_LT(std::abs(Of(Fwd().ERT[k]) - tracking), 2e-6);
    EXPECT_LT(std::abs(Of(Fwd().ED[k]) - (s + tracking / (es + 1.0))), 2e-6);
  }
  // |g| of about 0.03 shifts ES by a hundredth of itself or two.
  EXPECT_GT(departure, 1e-4);
  EXPECT_LT(departure, 2e-2);
  const double error = WorstReflection(device.S11);
  EXPECT_GT(error, 1e-5);
  EXPECT_LT(error, 1e-2);
}

TEST_P(Contract, S11WithLoadDataOfAPerfectLoadIsThatWithoutData) {
  GiveLoad(session->Kit1, {});
  MeasureReflectionStandards();
  Apply(CalChoice::S11);
  EXPECT_LT(WorstReflection(device.S11), kTurned);
}

// ---- S21 -------------------------------------------------------------------------------------

TEST_P(Contract, S21GivesTheTransmissionWhereBothPortsAreMatched) {
  PlainIsolation();
  box.Forward.ES = box.Forward.EL = Smooth();
  MeasureReflectionStandards();  // the isolation, both ports terminated
  MeasureThrough();
  Apply(CalChoice::S21);
  MeasureDevice();
  for (int k = 0; k < Points(); ++k) {
    CorrectS21Point(*session, k);
    EXPECT_LT(std::abs(Of(session->Data.S21[k]) - device.S21(F(k))), kRounding);
  }
}

// Intentional: no correction of source and load match in this mode.
TEST_P(Contract, S21DepartsByTheMismatchOfThroughAndDevice) {
  PlainIsolation();
  MeasureReflectionStandards();
  MeasureThrough();
  Apply(CalChoice::S21);
  MeasureDevice();
  double departure = 0;
  for (int k = 0; k < Points(); ++k) {
    CorrectS21Point(*session, k);
    const double f = F(k);
    const Cx es = box.Forward.ES(f), el = box.Forward.EL(f);
    const TwoPortAt s = device.At(f);
    const Cx loop = 1.0 - es * s.S11 - el * s.S22 + es * el * s.Det();
    const Cx expected = s.S21 * (1.0 - es * el) / loop;
    EXPECT_LT(std::abs(Of(session->Data.S21[k]) - expected), kRounding);
    departure = std::max(departure, std::abs(expected - s.S21));
  }
  EXPECT_GT(departure, 0.01);  // matches of 0.15 cost some per cent
  EXPECT_LT(departure, 0.3);
}

TEST_P(Contract, S21WithoutTheIsolationStepKeepsTheLeakageInIt) {
  PlainIsolation();
  box.Forward.ES = box.Forward.EL = Smooth();
  MeasureReflectionStandards();
  MeasureThrough();
  Apply(CalChoice::S21, false);
  MeasureDevice();
  for (int k = 0; k < Points(); ++k) {
    CorrectS21Point(*session, k);
    const Cx leak = box.Forward.Iso0(F(k)), tracking = box.Forward.ETT(F(k));
    const Cx expected = (tracking * device.S21(F(k)) + leak) / (tracking + leak);
    EXPECT_LT(std::abs(Of(session->Data.S21[k]) - expected), kRounding);
  }
}

// ---- S11 + S21 -------------------------------------------------------------------------------

// Intentional: plus signs in the match corrections of through and device. What is left over is then
// (1 - (ES EL)^2) / ((1 - EL S22) (1 - (ES Gin)^2)), Gin being the device's loaded reflection.
TEST_P(Contract, EnhancedResponseDepartsByItsPlusSigns) {
  PlainIsolation();
  MeasureReflectionStandards();
  MeasureThrough();
  Apply(CalChoice::S11S21);
  MeasureDevice();
  double departure = 0;
  for (int k = 0; k < Points(); ++k) {
    CorrectS11Point(*session, k);
    CorrectEnhancedPoint(*session, k);
    const double f = F(k);
    const Cx es = box.Forward.ES(f), el = box.Forward.EL(f);
    const TwoPortAt s = device.At(f);
    const Cx gin = (s.S11 - el * s.Det()) / (1.0 - el * s.S22);
    EXPECT_LT(std::abs(Of(session->Data.S11[k]) - gin), kTurned);
    const Cx expected =
        s.S21 * (1.0 - es * el * es * el) / ((1.0 - el * s.S22) * (1.0 - es * gin * es * gin));
    EXPECT_LT(std::abs(Of(session->Data.S21[k]) - expected), 5 * kTurned);
    departure = std::max(departure, std::abs(expected - s.S21));
  }
  EXPECT_GT(departure, 1e-3);
  EXPECT_LT(departure, 0.2);
}

TEST_P(Contract, EnhancedResponseWithLoadDataDepartsOnlyAsMuchAsES) {
  PlainIsolation();
  load1 = {{0.02, -0.01}, {4e-12, 9e-12}};
  GiveLoad(session->Kit1, load1);
  MeasureReflectionStandards();
  MeasureThrough();
  Apply(CalChoice::S11S21);
  MeasureDevice();
  double departure = 0;
  for (int k = 0; k < Points(); ++k) {
    CorrectS11Point(*session, k);
    CorrectEnhancedPoint(*session, k);
    const double f = F(k);
    const Cx es = box.Forward.ES(f), el = box.Forward.EL(f);
    const TwoPortAt s = device.At(f);
    const Cx gin = (s.S11 - el * s.Det()) / (1.0 - el * s.S22);
    const Cx withoutData =
        s.S21 * (1.0 - es * el * es * el) / ((1.0 - el * s.S22) * (1.0 - es * gin * es * gin));
    departure = std::max(departure, std::abs(Of(session->Data.S21[k]) - withoutData));
  }
  EXPECT_GT(departure, 1e-5);
  EXPECT_LT(departure, 1e-2);
}

TEST_P(Contract, EnhancedResponseGivesBothWhereTheSourceIsMatchedAndTheDeviceLoaded) {
  PlainIsolation();
  box.Forward.ES = box.Forward.EL = Smooth();
  GiveOffset(session->Kit1, 2e-3);
  MeasureReflectionStandards();
  MeasureThrough();
  Apply(CalChoice::S11S21);
  MeasureDevice();
  for (int k = 0; k < Points(); ++k) {
    CorrectS11Point(*session, k);
    CorrectEnhancedPoint(*session, k);
    EXPECT_LT(std::abs(Of(session->Data.S11[k]) - device.S11(F(k))), kTurned);
    EXPECT_LT(std::abs(Of(session->Data.S21[k]) - device.S21(F(k))), kTurned);
  }
}

// ---- insertable ------------------------------------------------------------------------------

TEST_P(Contract, InsertableGivesAllFourParametersByTheBasicIsolation) {
  PlainIsolation();
  MeasureReflectionStandards();
  MeasureThrough();
  Apply(CalChoice::Insertable);
  EXPECT_LT(WorstOfAll(), 5 * kTurned);
}

TEST_P(Contract, InsertableGivesAllFourWithTwoKitsOfDifferentOffsets) {
  PlainIsolation();
  GiveOffset(session->Kit1, 5.26e-3);
  GiveOffset(session->Kit2, 1.1e-3);
  session->Kit2.KitC0 = 4.9e-14;
  MeasureReflectionStandards();
  MeasureThrough();
  Apply(CalChoice::Insertable);
  EXPECT_LT(WorstOfAll(), 5 * kTurned);
}

TEST_P(Contract, InsertableGivesAllFourWhenTheIsolationFollowsTheDeviceByTwoSweeps) {
  MeasureReflectionStandards();
  MeasureThrough();
  // The through looks into the other port's match, on which the isolation then depends too; the
  // routine takes the load's. The leakage beside the through is what is left.
  MeasureDeviceIsolation(2);
  Apply(CalChoice::Insertable);
  double leakage = 0;
  for (int k = 0; k < Points(); ++k) {
    const Direction& d = box.Forward;
    leakage = std::max(leakage, std::abs(d.Iso1(F(k)) * d.EL(F(k))));
    EXPECT_LT(std::abs(Of(session->Terms.IsoFwd1[k]) - d.Iso1(F(k))), 1e-8);
    EXPECT_LT(std::abs(Of(session->Terms.IsoFwd2[k]) - d.Iso2(F(k))), 1e-8);
    EXPECT_LT(std::abs(Of(session->Terms.IsoRev1[k]) - box.Reverse.Iso1(F(k))), 1e-8);
    EXPECT_LT(std::abs(Of(session->Terms.IsoRev2[k]) - box.Reverse.Iso2(F(k))), 1e-8);
  }
  EXPECT_LT(WorstOfAll(), 5 * kTurned + 6 * leakage);
}

TEST_P(Contract, InsertableGivesAllFourExactlyByTwoSweepsWhereTheLoadMatchIsPerfect) {
  box.Forward.EL = box.Reverse.EL = Smooth();
  MeasureReflectionStandards();
  MeasureThrough();
  MeasureDeviceIsolation(2);
  Apply(CalChoice::Insertable);
  EXPECT_LT(WorstOfAll(), 5 * kTurned);
}

// One sweep cannot separate the two coefficients; for the device that it was made with, the sum
// is right all the same.
TEST_P(Contract, InsertableGivesAllFourByOneDeviceSweepForThatDevice) {
  box.Forward.EL = box.Reverse.EL = Smooth();
  MeasureReflectionStandards();
  MeasureThrough();
  MeasureDeviceIsolation(1);
  Apply(CalChoice::Insertable);
  EXPECT_LT(WorstOfAll(), 5 * kTurned);
  double apart = 0;
  for (int k = 0; k < Points(); ++k)
    apart = std::max(apart, std::abs(Of(session->Terms.IsoFwd1[k]) - box.Forward.Iso1(F(k))));
  EXPECT_GT(apart, 1e-5);
}

TEST_P(Contract, InsertableByTheBasicMethodLeavesWhatFollowsTheDevice) {
  box.Forward.EL = box.Reverse.EL = Smooth();
  MeasureReflectionStandards();
  MeasureThrough();
  Apply(CalChoice::Insertable);
  const double worst = WorstOfAll();
  EXPECT_GT(worst, 1e-4);
  EXPECT_LT(worst, 5e-3);
}

TEST_P(Contract, InsertableTakesEachPortsLoadFromItsOwnKit) {
  PlainIsolation();
  load2 = {{0.1, -0.05}, {4e-12, 9e-12}};
  GiveLoad(session->Kit2, load2);
  MeasureReflectionStandards();
  MeasureThrough();
  Apply(CalChoice::Insertable);
  const KitTruth kit = TruthOf(session->Kit2, load2);
  for (int k = 0; k < Points(); ++k) {
    EXPECT_LT(std::abs(Of(Fwd().ES[k]) - box.Forward.ES(F(k))), 1e-6);
    const Cx l = Of(M().CalLoad2[k]), s = Of(M().CalShort2[k]), o = Of(M().CalOpen2[k]);
    const Cx g = load2(F(k)), go = kit.OpenAt(F(k));
    const Cx es =
        (o - l - l * go + s * go + o * g - s * g) / (-s * go + o * go - l * g * go + o * g * go);
    EXPECT_LT(std::abs(Of(Rev().ES[k]) - es), 1e-6);
  }
}

TEST_P(Contract, InsertableWithLoadDataDepartsOnlyAsMuchAsES) {
  PlainIsolation();
  load1 = load2 = {{0.02, -0.01}, {4e-12, 9e-12}};
  GiveLoad(session->Kit1, load1);
  GiveLoad(session->Kit2, load2);
  MeasureReflectionStandards();
  MeasureThrough();
  Apply(CalChoice::Insertable);
  const double worst = WorstOfAll();
  EXPECT_GT(worst, 1e-5);
  EXPECT_LT(worst, 2e-2);
}

// ---- non-insertable --------------------------------------------------------------------------

// A short line of some loss and reflection, on straight lines over frequency like the load.
struct ThroughStandard {
  LoadLine T11{{0.03, 0.01}, {1e-12, -8e-12}}, T21{{0.98, -0.01}, {-2e-11, -9e-11}},
      T12{{0.97, -0.02}, {-2e-11, -8e-11}}, T22{{-0.02, 0.015}, {3e-12, 6e-12}};
  TwoPortAt At(double f) const { return {T11(f), T21(f), T12(f), T22(f)}; }
};

void GiveThrough(CalKit& kit, const ThroughStandard& t) {
  kit.KitHasThru = true;
  for (std::size_t i = 0; i < 101; ++i) {
    const auto f = static_cast<float>(3e6 + 3.1e7 * static_cast<double>(i));
    const TwoPortAt s = t.At(static_cast<double>(f));
    kit.KitThruData[0][i] = f;
    std::size_t row = 1;
    for (const Cx z : {s.S11, s.S21, s.S12, s.S22}) {
      kit.KitThruData[row++][i] = static_cast<float>(z.real());
      kit.KitThruData[row++][i] = static_cast<float>(z.imag());
    }
  }
}

struct NonInsertable : Contract {
  ThroughStandard standard;

  void Calibrate() {
    PlainIsolation();
    GiveThrough(session->Kit1, standard);
    through = [this](double f) { return standard.At(f); };
    session->Kit2.KitC0 = 1;  // the second kit has no part in it
    MeasureReflectionStandards(true);
    MeasureThrough();
    Apply(CalChoice::NonInsertable);
  }
  void TakeSecondFactorOut() {
    for (int k = 0; k < Points(); ++k) {
      const double f = F(k);
      const TwoPortAt t = standard.At(f);
      const Direction &a = box.Forward, &b = box.Reverse;
      const Cx seen1 = (t.S11 - a.EL(f) * t.Det()) / (1.0 - a.EL(f) * t.S22);
      const Cx seen2 = (t.S22 - b.EL(f) * t.Det()) / (1.0 - b.EL(f) * t.S11);
      Fwd().ETT.Set(k, To(Of(Fwd().ETT[k]) / (1.0 - a.ES(f) * seen1)));
      Rev().ETT.Set(k, To(Of(Rev().ETT[k]) / (1.0 - b.ES(f) * seen2)));
    }
  }
};
INSTANTIATE_TEST_SUITE_P(Seeds, NonInsertable, testing::Values(1, 2, 3, 4, 5, 6, 7, 8));

TEST_P(NonInsertable, FindsTheLoadMatchesBehindTheThroughStandard) {
  Calibrate();
  for (int k = 0; k < Points(); ++k) {
    EXPECT_LT(std::abs(Of(Fwd().EL[k]) - box.Forward.EL(F(k))), 5 * kTurned);
    EXPECT_LT(std::abs(Of(Rev().EL[k]) - box.Reverse.EL(F(k))), 5 * kTurned);
  }
}

// Intentional: the factor 1 - ES EL of a zero-length through is applied besides the standard's own.
TEST_P(NonInsertable, HasATrackingWithBothFactors) {
  Calibrate();
  double departure = 0;
  for (int k = 0; k < Points(); ++k) {
    const double f = F(k);
    const TwoPortAt t = standard.At(f);
    const Direction &a = box.Forward, &b = box.Reverse;
    const Cx seen1 = (t.S11 - a.EL(f) * t.Det()) / (1.0 - a.EL(f) * t.S22);
    const Cx seen2 = (t.S22 - b.EL(f) * t.Det()) / (1.0 - b.EL(f) * t.S11);
    const Cx expected1 = a.ETT(f) * (1.0 - a.ES(f) * seen1);
    const Cx expected2 = b.ETT(f) * (1.0 - b.ES(f) * seen2);
    EXPECT_LT(std::abs(Of(Fwd().ETT[k]) - expected1), 5 * kTurned);
    EXPECT_LT(std::abs(Of(Rev().ETT[k]) - expected2), 5 * kTurned);
    departure = std::max(departure, std::abs(a.ES(f) * seen1));
  }
  EXPECT_GT(departure, 2e-3);  // source match 0.15 times the through's reflection
  EXPECT_LT(departure, 0.1);
}

TEST_P(NonInsertable, GivesAllFourOnceTheSecondFactorIsTakenOut) {
  Calibrate();
  const double asItIs = WorstOfAll();
  EXPECT_GT(asItIs, 1e-3);
  TakeSecondFactorOut();
  EXPECT_LT(WorstOfAll(), 5 * kTurned);
}

TEST_P(NonInsertable, GivesAllFourAsItIsWhereTheSourcesAreMatched) {
  box.Forward.ES = box.Reverse.ES = Smooth();
  GiveOffset(session->Kit1, 3e-3);
  Calibrate();
  EXPECT_LT(WorstOfAll(), 5 * kTurned);
}

TEST_P(NonInsertable, WithLoadDataAndAnOffsetDepartsOnlyAsMuchAsES) {
  load1 = {{0.02, -0.01}, {4e-12, 9e-12}};
  GiveLoad(session->Kit1, load1);
  GiveOffset(session->Kit1, 3e-3);
  Calibrate();
  TakeSecondFactorOut();
  const double worst = WorstOfAll();
  EXPECT_GT(worst, 1e-5);
  EXPECT_LT(worst, 2e-2);
}

TEST_P(NonInsertable, LeavesTheIsolationAtThatOfTheLoadSweeps) {
  Calibrate();
  MeasureDevice();
  CorrectAll();
  for (int k = 0; k < Points(); ++k) {
    EXPECT_EQ(session->Terms.IsoFwd1[k], (Complex{0, 0}));
    EXPECT_EQ(session->Terms.IsoRev2[k], (Complex{0, 0}));
    EXPECT_EQ(Fwd().EX[k], session->Terms.IsoFwd0[k]);
    EXPECT_EQ(Rev().EX[k], session->Terms.IsoRev0[k]);
    EXPECT_LT(std::abs(Of(Fwd().EX[k]) - box.Forward.Iso0(F(k))), kRounding);
  }
}

}  // namespace
}  // namespace qk
