// SPDX-License-Identifier: MIT
// The phase turn by a delay, against the plain complex exponential and in its own odd steps.
#include "numeric/rotation.h"

#include <gtest/gtest.h>

#include <complex>
#include <random>

namespace qk {
namespace {

constexpr double kTwoPi = 6.283185307179586;

std::complex<double> Turned(Complex z, double delay, double f) {
  return std::complex<double>(z.re, z.im) * std::polar(1.0, -kTwoPi * f * delay);
}

TEST(Rotate, SubtractsPhaseForAPositiveDelay) {
  const Complex z = Rotate({1, 0}, 0.125e-9, 1e9);  // an eighth of a turn
  EXPECT_NEAR(z.re, std::sqrt(0.5), 1e-7);
  EXPECT_NEAR(z.im, -std::sqrt(0.5), 1e-7);
}

TEST(Rotate, AddsPhaseForANegativeDelay) {
  const Complex z = Rotate({1, 0}, -0.25e-9, 1e9);
  EXPECT_NEAR(z.re, 0, 1e-6);
  EXPECT_NEAR(z.im, 1, 1e-6);
}

TEST(Rotate, AgreesWithTheComplexExponentialInAllQuadrantsAndOverManyTurns) {
  std::mt19937_64 random(11);
  std::uniform_real_distribution<double> part(-1, 1), delay(-5e-9, 5e-9), frequency(3e6, 3.08e9);
  for (int i = 0; i < 20000; ++i) {
    const Complex z{part(random), part(random)};
    const double d = delay(random), f = frequency(random);
    const Complex turned = Rotate(z, d, f);
    const auto truth = Turned(z, d, f);
    ASSERT_NEAR(turned.re, truth.real(), 2e-6) << z.re << " " << z.im << " " << d << " " << f;
    ASSERT_NEAR(turned.im, truth.imag(), 2e-6) << z.re << " " << z.im << " " << d << " " << f;
  }
}

TEST(Rotate, KeepsTheMagnitude) {
  std::mt19937_64 random(12);
  std::uniform_real_distribution<double> part(-2, 2), delay(-1e-8, 1e-8);
  for (int i = 0; i < 5000; ++i) {
    const Complex z{part(random), part(random)};
    const Complex turned = Rotate(z, delay(random), 2.4e9);
    ASSERT_NEAR(Magnitude(turned.re, turned.im), Magnitude(z.re, z.im), 1e-13);
  }
}

// The constant 0.01745329 and the 32-bit phase leave a trace even without a delay.
TEST(Rotate, ByNothingAgreesOnlyToThe32BitsOfThePhase) {
  double worst = 0;
  for (int degrees = -180; degrees <= 180; ++degrees) {
    const double a = degrees * kTwoPi / 360;
    const Complex z{std::cos(a), std::sin(a)};
    const Complex turned = Rotate(z, 0, 1e9);
    worst = std::max({worst, std::fabs(turned.re - z.re), std::fabs(turned.im - z.im)});
  }
  EXPECT_GT(worst, 1e-9);
  EXPECT_LT(worst, 1e-6);
}

TEST(Rotate, RebuildsByQuadrantWithTheTruncatedConstant) {
  const double k = 0.01745329;
  const auto phase = static_cast<double>(PhaseDeg(-0.6, 0.8));  // second quadrant
  const double im = 1.0 * std::sin((180 - phase) * k);
  const Complex z = Rotate({-0.6, 0.8}, 0, 1e9);
  EXPECT_DOUBLE_EQ(z.im, im);
  EXPECT_DOUBLE_EQ(z.re, -std::sqrt(1.0 - im * im));
}

TEST(Rotate, OfZeroIsZero) {
  const Complex z = Rotate({0, 0}, 1e-9, 1e9);
  EXPECT_EQ(Magnitude(z.re, z.im), 0);
}

TEST(Rotate, ByWholeTurnsComesBack) {
  for (const double turns : {-3.0, -1.0, 1.0, 2.0, 50.0}) {
    const Complex z = Rotate({0.3, -0.4}, turns * 1e-9, 1e9);
    EXPECT_NEAR(z.re, 0.3, 1e-6) << turns;
    EXPECT_NEAR(z.im, -0.4, 1e-6) << turns;
  }
}

}  // namespace
}  // namespace qk
