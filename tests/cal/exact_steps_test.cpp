// SPDX-License-Identifier: MIT
// Computes and corrections to the last bit: the formulas are written down once more, step by step
// in their order of operations, on an arithmetic of the test's own.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <utility>

#include "cal/correction.h"
#include "cal/error_terms.h"
#include "error_box.h"
#include "numeric/spline.h"

namespace qk {
namespace {

using namespace test;

// ---- the arithmetic --------------------------------------------------------------------------

struct Z {
  double re, im;
};
constexpr Z kOne{1, 0};

Z operator+(Z a, Z b) {
  return {a.re + b.re, a.im + b.im};
}
Z operator-(Z a, Z b) {
  return {a.re - b.re, a.im - b.im};
}
Z operator*(Z a, Z b) {
  return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}
Z operator/(Z a, Z b) {
  const double square = b.re * b.re + b.im * b.im;
  const double d = square < 1e-11 ? 1e-11 : square;
  return {(a.re * b.re + a.im * b.im) / d, (a.im * b.re - a.re * b.im) / d};
}
Z Half(Z a) {
  return {a.re / 2, a.im / 2};
}

// Degrees; 32 bits in radians and again in degrees.
double Degrees(Z z) {
  double radians = std::atan(z.im / z.re);
  if (std::fabs(z.re) < 1e-9)
    radians = std::atan(z.im / 1e-9);
  else if (z.re < 0)
    radians += z.im >= 0 ? 3.14159265 : -3.14159265;
  const auto single = static_cast<float>(radians);
  return static_cast<double>(static_cast<float>(static_cast<double>(single) * 180 / 3.14159265));
}

Z Turned(Z z, double delay, double f) {
  const double mag = std::sqrt(z.re * z.re + z.im * z.im);
  const double k = 0.01745329;
  double p = Degrees(z) - 360 * (f * delay);
  if (p >= 360 || p <= -360) p = p - 360 * std::trunc(p / 360);
  if (p < -180) p = p + 360;
  if (p > 180) p = p - 360;
  double im;
  if (p >= -90 && p <= 0)
    im = -mag * std::sin(-p * k);
  else if (p < -90)
    im = -mag * std::sin((p + 180) * k);
  else if (p < 90)
    im = mag * std::sin(p * k);
  else
    im = mag * std::sin((180 - p) * k);
  const double re = std::sqrt(mag * mag - im * im);
  return {p < -90 || p >= 90 ? -re : re, im};
}

// ---- one point of a session ------------------------------------------------------------------

struct Point {
  Session& S;
  int K;

  double F() const { return K * S.Plan.StepFreq + S.Plan.StartFreq; }
  Z operator()(const ComplexArray& a) const { return {a[K].re, a[K].im}; }
};

Z OpenOf(const Point& at, const CalKit& kit, bool floored) {
  const double f = at.F();
  double c = (f * f * kit.KitC2 + (kit.KitC1 * f + kit.KitC0)) + f * f * f * kit.KitC3;
  if (floored && c < 1e-20) c = 1e-20;
  const double w = f * 6.283185307;
  const double x = -1 / (w * c);
  const auto zo = static_cast<double>(at.S.Impedance.SystemZo);
  return Z{-zo, x} / Z{zo, x};
}

Z FromTable(const CalKit& kit, double f) {
  if (!kit.KitHasLoad) return {0, 0};
  CSplineObject re, im;
  for (std::size_t i = 0; i < 101; ++i) {
    re.XYAdd(static_cast<double>(kit.KitLoadData[0][i]),
             static_cast<double>(kit.KitLoadData[1][i]));
    im.XYAdd(static_cast<double>(kit.KitLoadData[0][i]),
             static_cast<double>(kit.KitLoadData[2][i]));
  }
  re.DoCoeffs();
  im.DoCoeffs();
  return {re.GetY(f), im.GetY(f)};
}

struct PortPoint {
  Z ED, ERT, ES, EX, ETT, EL;
};
PortPoint Read(const Point& at, const PortTerms& t) {
  return {at(t.ED), at(t.ERT), at(t.ES), at(t.EX), at(t.ETT), at(t.EL)};
}

void SolveCore(PortPoint& t, const Point& at, Z L, Z S, Z O, Z GO, const CalKit& kit) {
  const Z G = FromTable(kit, at.F());
  const Z n = ((((O - L) - L * GO) + S * GO) + O * G) - S * G;
  const Z d = ((Z{-S.re, -S.im} * GO + O * GO) - (L * G) * GO) + (O * G) * GO;
  t.ES = n / d;
  const Z a = (kOne + (kOne - G) * t.ES) - (t.ES * t.ES) * G;
  t.ERT = (a * (L - S)) / (kOne + G);
  t.ED = S + t.ERT / (t.ES + kOne);
  const auto delay = static_cast<double>(-2.0f * kit.KitDelay);
  t.ES = Turned(t.ES, delay, at.F());
  t.ERT = Turned(t.ERT, delay, at.F());
}

Z Reflection(const PortPoint& t, Z raw) {
  const Z x = raw - t.ED;
  return x / (t.ES * x + t.ERT);
}

// Load match and tracking of the zero-length through.
void SolveThrough(PortPoint& t, Z thru) {
  t.EL = Reflection(t, thru);
  t.ETT = t.ETT - t.EX;
  t.ETT = t.ETT * (kOne - t.ES * t.EL);
}

// ---- the tests -------------------------------------------------------------------------------

// Every array at random: the steps are arithmetic, whatever the values mean. About half of the
// kits' tables and delays are in use.
struct ExactSteps : testing::TestWithParam<int> {
  std::unique_ptr<Session> before = MakePlan(51), session = MakePlan(51);

  ExactSteps() {
    Dice dice(static_cast<std::uint64_t>(GetParam()));
    StandardsMeasured& m = before->Standards;
    ErrorTerms& t = before->Terms;
    SParamData& d = before->Data;
    for (ComplexArray* a :
         {&m.CalLoad1, &m.CalShort1,    &m.CalOpen1,     &m.CalLoad2,    &m.CalShort2,
          &m.CalOpen2, &m.CalThruRefl1, &m.CalThruRefl2, &m.CalDutRefl1, &m.CalDutRefl2,
          &t.IsoFwd0,  &t.IsoFwd1,      &t.IsoFwd2,      &t.IsoRev0,     &t.IsoRev1,
          &t.IsoRev2,  &d.S11,          &d.RawS11,       &d.RawS21,      &d.RawS12,
          &d.RawS22})
      FillAtRandom(*a, dice);
    for (PortTerms* p : {&t.Forward, &t.Reverse})
      for (ComplexArray* a : {&p->ED, &p->ERT, &p->ES, &p->EX, &p->ETT, &p->EL})
        FillAtRandom(*a, dice);
    for (CalKit* kit : {&before->Kit1, &before->Kit2}) {
      if (dice.Between(0, 1) < 0.5) GiveOffset(*kit, dice.Between(0, 0.05));
      if (dice.Between(0, 1) < 0.5)
        GiveLoad(*kit, {{dice.Between(-0.1, 0.1), dice.Between(-0.1, 0.1)}, {3e-12, -2e-12}});
      kit->KitC0 = dice.Between(-2e-15, 5e-14);
    }
    before->Impedance.SystemZo = dice.Between(0, 1) < 0.5 ? 50.0f : 75.1f;
    *session = *before;
  }

  static void FillAtRandom(ComplexArray& array, Dice& dice) {
    for (int k = 0; k < 51; ++k) array.Set(k, {dice.Between(-1, 1), dice.Between(-1, 1)});
  }
  void Is(const ComplexArray& array, int k, Z expected, const char* name) const {
    EXPECT_EQ(array[k].re, expected.re) << name << " " << k;
    EXPECT_EQ(array[k].im, expected.im) << name << " " << k;
  }
  void Are(const PortTerms& terms, int k, const PortPoint& expected) const {
    Is(terms.ED, k, expected.ED, "ED");
    Is(terms.ERT, k, expected.ERT, "ERT");
    Is(terms.ES, k, expected.ES, "ES");
    Is(terms.EX, k, expected.EX, "EX");
    Is(terms.ETT, k, expected.ETT, "ETT");
    Is(terms.EL, k, expected.EL, "EL");
  }
  // The twelve terms of the insertable kind, with kit2 on port 2.
  std::pair<PortPoint, PortPoint> TwoPorts(const Point& at, const CalKit& kit2) const {
    const StandardsMeasured& m = before->Standards;
    const CalKit& kit1 = before->Kit1;
    PortPoint f = Read(at, before->Terms.Forward), r = Read(at, before->Terms.Reverse);
    SolveCore(f, at, at(m.CalLoad1), at(m.CalShort1), at(m.CalOpen1), OpenOf(at, kit1, true), kit1);
    SolveThrough(f, at(m.CalThruRefl1));
    SolveCore(r, at, at(m.CalLoad2), at(m.CalShort2), at(m.CalOpen2), OpenOf(at, kit2, true), kit2);
    SolveThrough(r, at(m.CalThruRefl2));
    return {f, r};
  }
};
INSTANTIATE_TEST_SUITE_P(Seeds, ExactSteps, testing::Range(1, 13));

TEST_P(ExactSteps, OfTheOnePortTerms) {
  ComputeOnePortTerms(*session);
  const StandardsMeasured& m = before->Standards;
  for (int k = 0; k < 51; ++k) {
    const Point at{*before, k};
    PortPoint t = Read(at, before->Terms.Forward);
    SolveCore(t, at, at(m.CalLoad1), at(m.CalShort1), at(m.CalOpen1),
              OpenOf(at, before->Kit1, false), before->Kit1);
    Are(session->Terms.Forward, k, t);
    Are(session->Terms.Reverse, k, Read(at, before->Terms.Reverse));
  }
}

TEST_P(ExactSteps, OfTheResponseAndEnhancedTerms) {
  for (const bool isoDone : {false, true}) {
    *session = *before;
    ComputeResponseTerms(*session, isoDone);
    const auto enhanced = std::make_unique<Session>(*before);
    ComputeEnhancedTerms(*enhanced, isoDone);
    for (int k = 0; k < 51; ++k) {
      const Point at{*before, k};
      PortPoint t = Read(at, before->Terms.Forward);
      if (!isoDone) t.EX = {0, 0};
      t.ETT = t.ETT - t.EX;
      Are(session->Terms.Forward, k, t);
      const Z through = Reflection(t, at(before->Standards.CalThruRefl1));
      t.ETT = t.ETT / (through * t.ES + kOne);
      Are(enhanced->Terms.Forward, k, t);
      Is(enhanced->Standards.CalThruRefl1, k, through, "CalThruRefl1");
    }
  }
}

TEST_P(ExactSteps, OfTheInsertableTermsByEachIsolationMethod) {
  for (const int method : {0, 1, 2}) {
    *session = *before;
    session->Cal.IsoMethod = static_cast<IsoMethod>(method);
    ComputeInsertableTerms(*session);
    const ErrorTerms& raw = before->Terms;
    for (int k = 0; k < 51; ++k) {
      const Point at{*before, k};
      const auto [f, r] = TwoPorts(at, before->Kit2);
      Are(session->Terms.Forward, k, f);
      Are(session->Terms.Reverse, k, r);
      Z fwd1 = at(raw.IsoFwd1), rev1 = at(raw.IsoRev1);
      Z fwd2 = at(raw.IsoFwd2), rev2 = at(raw.IsoRev2);
      if (method == 1) {
        fwd2 = fwd1 = Half(fwd1 + f.EX);
        rev2 = rev1 = Half(rev1 + r.EX);
      }
      const Z g1 = Reflection(f, at(before->Standards.CalDutRefl1));
      const Z g2 = Reflection(r, at(before->Standards.CalDutRefl2));
      const ErrorTerms& t = session->Terms;
      Is(t.IsoFwd1, k, (fwd1 - f.EX) / g1, "IsoFwd1");
      Is(t.IsoFwd2, k, (fwd2 - f.EX) / g2, "IsoFwd2");
      Is(t.IsoFwd0, k, f.EX, "IsoFwd0");
      Is(t.IsoRev1, k, (rev1 - r.EX) / g1, "IsoRev1");
      Is(t.IsoRev2, k, (rev2 - r.EX) / g2, "IsoRev2");
      Is(t.IsoRev0, k, r.EX, "IsoRev0");
      Is(session->Standards.CalDutRefl1, k, g1, "CalDutRefl1");
      Is(session->Standards.CalDutRefl2, k, g2, "CalDutRefl2");
    }
  }
}

TEST_P(ExactSteps, OfTheNonInsertableTerms) {
  CalKit& kit = before->Kit1;
  kit.KitHasThru = true;
  const double values[] = {0.03, 0.02, 0.9, -0.3, 0.88, -0.28, -0.04, 0.01};
  for (std::size_t i = 0; i < 101; ++i) {
    kit.KitThruData[0][i] = 3e6f + 3.1e7f * static_cast<float>(i);
    for (std::size_t row = 0; row < 8; ++row)
      kit.KitThruData[row + 1][i] =
          static_cast<float>(values[row] * (1 + 0.003 * static_cast<double>(i)));
  }
  *session = *before;
  session->Cal.IsoMethod = IsoMethod::OneSweep;  // no part of this kind
  ComputeNonInsertableTerms(*session);
  std::array<CSplineObject, 8> rows;
  for (std::size_t row = 0; row < 8; ++row) {
    for (std::size_t i = 0; i < 101; ++i)
      rows[row].XYAdd(static_cast<double>(kit.KitThruData[0][i]),
                      static_cast<double>(kit.KitThruData[row + 1][i]));
    rows[row].DoCoeffs();
  }
  for (int k = 0; k < 51; ++k) {
    const Point at{*before, k};
    auto [f, r] = TwoPorts(at, kit);
    const auto value = [&](std::size_t row) {
      return Z{rows[row].GetY(at.F()), rows[row + 1].GetY(at.F())};
    };
    const Z t11 = value(0), t21 = value(2), t12 = value(4), t22 = value(6);
    const Z d1 = kOne - f.ES * t11;
    const Z eda = f.ED + (f.ERT * t11) / d1;
    const Z a = t21 / d1;
    const Z b = (f.ERT * t12) / d1;
    const Z esa = (f.ES * t21 * t12) / d1 + t22;
    const Z d2 = kOne - r.ES * t22;
    const Z edb = r.ED + (r.ERT * t22) / d2;
    const Z p = (r.ERT * t21) / d2;
    const Z q = t12 / d2;
    const Z esb = t11 + (r.ES * t21 * t12) / d2;
    const Z x = at(before->Standards.CalThruRefl1) - eda;
    const Z y = at(before->Standards.CalThruRefl2) - edb;
    f.EL = x / (esa * x + a * b);
    r.EL = y / (esb * y + p * q);
    f.ETT = (f.ETT * (kOne - f.EL * esa)) / a;
    r.ETT = (r.ETT * (kOne - r.EL * esb)) / q;
    Are(session->Terms.Forward, k, f);
    Are(session->Terms.Reverse, k, r);
  }
}

TEST_P(ExactSteps, OfTheFourCorrections) {
  const SParamData& d = before->Data;
  const ErrorTerms& e = before->Terms;
  const auto enhanced = std::make_unique<Session>(*before);
  for (int k = 0; k < 51; ++k) {
    const Point at{*before, k};
    const PortPoint f = Read(at, e.Forward), r = Read(at, e.Reverse);
    CorrectS11Point(*session, k);
    Is(session->Data.S11, k, Reflection(f, at(d.RawS11)), "S11");
    CorrectS21Point(*session, k);
    Is(session->Data.S21, k, (at(d.RawS21) - f.EX) / f.ETT, "S21");
    CorrectEnhancedPoint(*enhanced, k);
    const Z match = at(d.S11) * f.ES + kOne;
    Is(enhanced->Data.S21, k, ((at(d.RawS21) - f.EX) / match) / f.ETT, "enhanced S21");

    Correct12TermPoint(*session, k);
    const Z g1 = Reflection(f, at(d.RawS11)), g2 = Reflection(r, at(d.RawS22));
    const Z ex = (at(e.IsoFwd1) * g1 + at(e.IsoFwd0)) + at(e.IsoFwd2) * g2;
    const Z ex2 = (at(e.IsoRev1) * g1 + at(e.IsoRev0)) + at(e.IsoRev2) * g2;
    const Z a = (at(d.RawS11) - f.ED) / f.ERT, b = (at(d.RawS21) - ex) / f.ETT;
    const Z c = (at(d.RawS12) - ex2) / r.ETT, dd = (at(d.RawS22) - r.ED) / r.ERT;
    const Z w = (kOne + a * f.ES) * (kOne + dd * r.ES) - ((b * f.EL) * r.EL) * c;
    Is(session->Terms.Forward.EX, k, ex, "EX");
    Is(session->Terms.Reverse.EX, k, ex2, "EX'");
    Is(session->Data.S21, k, (b * (kOne + dd * (r.ES - f.EL))) / w, "S21 of 12");
    Is(session->Data.S11, k, (a * (kOne + dd * r.ES) - (b * f.EL) * c) / w, "S11 of 12");
    Is(session->Data.S12, k, (c * (kOne + a * (f.ES - r.EL))) / w, "S12 of 12");
    Is(session->Data.S22, k, (dd * (kOne + a * f.ES) - (b * r.EL) * c) / w, "S22 of 12");
  }
}

}  // namespace
}  // namespace qk
