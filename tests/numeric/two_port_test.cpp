// SPDX-License-Identifier: MIT
#include "numeric/two_port.h"

#include <gtest/gtest.h>

#include <random>

namespace qk {
namespace {

void ExpectNear(Complex a, Complex b, double tolerance) {
  EXPECT_NEAR(a.re, b.re, tolerance);
  EXPECT_NEAR(a.im, b.im, tolerance);
}

void ExpectNear(const TwoPort& a, const TwoPort& b, double tolerance) {
  ExpectNear(a.p11, b.p11, tolerance);
  ExpectNear(a.p12, b.p12, tolerance);
  ExpectNear(a.p21, b.p21, tolerance);
  ExpectNear(a.p22, b.p22, tolerance);
}

TEST(ConvertZo, OfAShuntResistorIsItsTextbookValueAtTheNewImpedance) {
  // R to ground: S11 = -Zo / (Zo + 2 R), S21 = 2 R / (Zo + 2 R); all four impedances are R.
  const auto shunt = [](double r, double zo) {
    const double reflection = -zo / (zo + 2 * r);
    const double through = 2 * r / (zo + 2 * r);
    return TwoPort{{reflection, 0}, {through, 0}, {through, 0}, {reflection, 0}};
  };
  ExpectNear(ConvertZo(50, 75, shunt(30, 50)), shunt(30, 75), 1e-12);
  ExpectNear(SToZ(50, shunt(30, 50)), {{30, 0}, {30, 0}, {30, 0}, {30, 0}}, 1e-10);
}

TEST(ConvertZo, ThereAndBackIsTheSameTwoPort) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> part(-0.6, 0.6);
  for (int run = 0; run < 500; ++run) {
    const auto value = [&] { return Complex{part(random), part(random)}; };
    const TwoPort s{value(), value(), value(), value()};
    ExpectNear(ConvertZo(75, 50, ConvertZo(50, 75, s)), s, 1e-9);
  }
}

TEST(ConvertZo, OfAnIdealThroughStaysFinite) {
  const TwoPort s = ConvertZo(50, 75, {{0, 0}, {1, 0}, {1, 0}, {0, 0}});
  for (const Complex p : {s.p11, s.p12, s.p21, s.p22}) {
    EXPECT_TRUE(std::isfinite(p.re));
    EXPECT_TRUE(std::isfinite(p.im));
  }
}

TwoPort RandomTwoPort(std::mt19937& random) {
  std::uniform_real_distribution<double> part(-0.6, 0.6);
  const auto value = [&] { return Complex{part(random), part(random)}; };
  return {value(), value(), value(), value()};
}

TEST(Transfer, ThereAndBackIsTheSameTwoPort) {
  std::mt19937 random(11);
  for (int run = 0; run < 500; ++run) {
    const TwoPort s = RandomTwoPort(random);
    ExpectNear(TToS(SToT(s)), s, 1e-7);
  }
}

TEST(Transfer, AMatrixTimesItsInverseIsOne) {
  std::mt19937 random(12);
  const TwoPort one{{1, 0}, {0, 0}, {0, 0}, {1, 0}};
  for (int run = 0; run < 500; ++run) {
    const TwoPort t = RandomTwoPort(random);
    ExpectNear(MultiplyT(InvertT(t), t), one, 1e-9);
    ExpectNear(MultiplyT(t, InvertT(t)), one, 1e-9);
  }
}

TEST(Transfer, TheProductIsThatOfTheCascade) {
  // The signal flow of two two-ports in a row, by Mason's rule.
  const auto cascade = [](const TwoPort& a, const TwoPort& b) {
    const Complex loop = OnePlus(-ComplexMultiply(a.p22, b.p11));
    const auto over = [&](Complex x) { return ComplexDivide(x, loop); };
    return TwoPort{a.p11 + over(ComplexMultiply(ComplexMultiply(a.p12, b.p11), a.p21)),
                   over(ComplexMultiply(a.p12, b.p12)), over(ComplexMultiply(a.p21, b.p21)),
                   b.p22 + over(ComplexMultiply(ComplexMultiply(b.p21, a.p22), b.p12))};
  };
  std::mt19937 random(13);
  for (int run = 0; run < 200; ++run) {
    const TwoPort a = RandomTwoPort(random), b = RandomTwoPort(random);
    ExpectNear(TToS(MultiplyT(SToT(a), SToT(b))), cascade(a, b), 1e-6);
  }
}

TEST(Transfer, ATransmissionOfZeroGivesNoFault) {
  const TwoPort t = SToT({{0.5, 0}, {0, 0}, {0, 0}, {0.5, 0}});
  for (const TwoPort& m : {t, InvertT(t), TToS(t)})
    for (const Complex p : {m.p11, m.p12, m.p21, m.p22})
      EXPECT_TRUE(std::isfinite(p.re) && std::isfinite(p.im));
}

}  // namespace
}  // namespace qk
