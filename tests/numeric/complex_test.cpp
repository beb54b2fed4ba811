// SPDX-License-Identifier: MIT
// The complex helpers: floored division, phase in 32-bit steps, floors of the logarithm and SWR.
#include "numeric/complex.h"

#include <gtest/gtest.h>

#include <complex>
#include <limits>

namespace qk {
namespace {

TEST(ComplexDivide, IsTheQuotientWhereTheDivisorIsNotSmall) {
  const Complex q = ComplexDivide({1, 2}, {3, -4});
  const std::complex<double> truth = std::complex<double>(1, 2) / std::complex<double>(3, -4);
  EXPECT_DOUBLE_EQ(q.re, truth.real());
  EXPECT_DOUBLE_EQ(q.im, truth.imag());
}

TEST(ComplexDivide, TakesASquaredDivisorBelow1e11As1e11) {
  const Complex q = ComplexDivide({1, 0}, {1e-6, 0});  // |b|^2 = 1e-12
  EXPECT_DOUBLE_EQ(q.re, 1e-6 / 1e-11);
  EXPECT_EQ(q.im, 0);
}

TEST(ComplexDivide, ByZeroIsZeroAndNoFault) {
  EXPECT_EQ(ComplexDivide({3, -5}, {0, 0}), (Complex{0, 0}));
}

TEST(ComplexMultiply, IsTheProduct) {
  EXPECT_EQ(ComplexMultiply({1, 2}, {3, -4}), (Complex{11, 2}));
}

TEST(Decibels, EndAt220BelowOne) {
  EXPECT_NEAR(MagnitudeDb(0, 0), -220, 1e-12);
  EXPECT_NEAR(MagnitudeDb(1e-12, 0), -220, 1e-12);
  EXPECT_NEAR(MagnitudeDb(0, 10), 20, 1e-12);
  EXPECT_NEAR(Log10Floored(-1), -11, 1e-12);
}

TEST(PhaseDeg, OfJIsWhatTheArcTangentOfAThousandMillionYields) {
  EXPECT_EQ(PhaseDeg(0, 1),
            static_cast<float>(static_cast<double>(static_cast<float>(std::atan(1e9))) * 180 /
                               3.14159265));
  EXPECT_NEAR(PhaseDeg(0, 1), 90, 1e-5);
}

TEST(PhaseDeg, OfASmallNegativeRealPartHasNoQuadrantCorrection) {
  EXPECT_NEAR(PhaseDeg(-1e-10, 1), 90, 1e-5);
  EXPECT_NEAR(PhaseDeg(-1e-10, -1), -90, 1e-5);
}

TEST(PhaseDeg, OfMinusOneIsPlus180) {
  EXPECT_NEAR(PhaseDeg(-1, 0), 180, 1e-4);
  EXPECT_NEAR(PhaseDeg(-1, -1e-6), -180, 1e-3);
}

TEST(PhaseDeg, FollowsTheTrueAngleInAllQuadrants) {
  for (int degrees = -179; degrees < 180; degrees += 7) {
    const double radians = degrees * 3.14159265358979 / 180;
    EXPECT_NEAR(PhaseDeg(std::cos(radians), std::sin(radians)), degrees, 2e-5) << degrees;
  }
}

TEST(PhaseDeg, PassesThrough32BitsInRadiansAndInDegrees) {
  const float radians = static_cast<float>(std::atan(0.3 / 0.7));
  EXPECT_EQ(PhaseDeg(0.7, 0.3),
            static_cast<float>(static_cast<double>(radians) * 180 / 3.14159265));
}

TEST(SwrOf, EndsAt199) {
  EXPECT_NEAR(SwrOf(1, 0), 199, 1e-3);
  EXPECT_NEAR(SwrOf(5, 5), 199, 1e-3);
  EXPECT_NEAR(SwrOf(1.0 / 3, 0), 2, 1e-6);
  EXPECT_EQ(SwrOf(0, 0), 1);
}

// Below it the real part counts as that size, with a plus sign.
TEST(PhaseDeg, TakesARealPartBelow1em9ForPlus1em9AndAtItAsItIs) {
  EXPECT_NEAR(PhaseDeg(-5e-10, 1e-9), 45, 1e-4);
  EXPECT_NEAR(PhaseDeg(0, 2e-9), 63.434949, 1e-4);
  EXPECT_NEAR(PhaseDeg(-1e-9, 1e-9), 135, 1e-4);
}

}  // namespace
}  // namespace qk
