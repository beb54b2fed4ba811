// SPDX-License-Identifier: MIT
// Least-squares polynomials from running sums.
#include "numeric/regression.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace qk {
namespace {

TEST(Regression, StartsAtDegree2) {
  EXPECT_EQ(RegressionObject().Degree(), 2);
}

TEST(Regression, FindsThePolynomialThatThePairsLieOn) {
  for (std::int32_t degree = 0; degree <= 4; ++degree) {
    const double c[] = {0.5, -2, 0.25, 1.5, -0.75};
    RegressionObject fit;
    fit.SetDegree(degree);
    for (double x = -2; x <= 2; x += 0.25) {
      double y = 0;
      for (int k = degree; k >= 0; --k) y = y * x + c[k];
      fit.XYAdd(x, y);
    }
    for (int k = 0; k <= degree; ++k) EXPECT_NEAR(fit.Coeff(k), c[k], 1e-10) << degree << k;
    for (int k = degree + 1; k <= 4; ++k) EXPECT_EQ(fit.Coeff(k), 0);
  }
}

TEST(Regression, HasResidualsThatAreOrthogonalToThePowersInForce) {
  std::mt19937_64 random(2);
  std::uniform_real_distribution<double> noise(-1, 1);
  RegressionObject fit;
  fit.SetDegree(3);
  std::array<double, 41> y;
  for (int i = 0; i < 41; ++i)
    fit.XYAdd(i / 20.0 - 1, y[static_cast<std::size_t>(i)] = noise(random));
  for (int k = 0; k <= 3; ++k) {
    double sum = 0;
    for (int i = 0; i < 41; ++i) {
      const double x = i / 20.0 - 1;
      sum += (y[static_cast<std::size_t>(i)] - fit.RegVal(x)) * std::pow(x, k);
    }
    EXPECT_NEAR(sum, 0, 1e-12) << k;
  }
}

TEST(Regression, CountsItsPairs) {
  RegressionObject fit;
  EXPECT_EQ(fit.XYCount(), 0);
  fit.XYAdd(1, 1);
  fit.XYAdd(2, 1);
  EXPECT_EQ(fit.XYCount(), 2);
}

TEST(Regression, OfDegree4WithThreePairsSolvesDegree2) {
  RegressionObject fit;
  fit.SetDegree(4);
  for (const double x : {0.0, 1.0, 2.0}) fit.XYAdd(x, 1 + x * x);
  EXPECT_NEAR(fit.Coeff(0), 1, 1e-12);
  EXPECT_NEAR(fit.Coeff(1), 0, 1e-12);
  EXPECT_NEAR(fit.Coeff(2), 1, 1e-12);
  EXPECT_EQ(fit.Coeff(3), 0);
  EXPECT_EQ(fit.Coeff(4), 0);
  EXPECT_EQ(fit.Degree(), 4);
  EXPECT_NEAR(fit.RegVal(3), 10, 1e-10);
}

TEST(Regression, NeedsOnePairMoreThanItsDegree) {
  RegressionObject fit;
  fit.SetDegree(4);
  for (const double x : {0.13, 0.37, 0.71, 1.9}) fit.XYAdd(x, 1 / (1 + x));
  EXPECT_EQ(fit.Coeff(4), 0);
  EXPECT_NE(fit.Coeff(3), 0);
  EXPECT_NEAR(fit.RegVal(0.71), 1 / 1.71, 1e-9);  // degree 3 passes through four pairs
  fit.XYAdd(2.5, 1 / 3.5);
  EXPECT_NE(fit.Coeff(4), 0);
}

TEST(Regression, WithoutPairsIsZero) {
  RegressionObject fit;
  EXPECT_EQ(fit.Coeff(0), 0);
  EXPECT_EQ(fit.RegVal(5), 0);
}

TEST(Regression, TakesFurtherPairsAfterAResult) {
  RegressionObject fit;
  fit.SetDegree(1);
  fit.XYAdd(0, 5);
  EXPECT_EQ(fit.RegVal(3), 5);  // one pair: a constant
  fit.XYAdd(1, 6);
  EXPECT_NEAR(fit.RegVal(3), 8, 1e-12);
}

TEST(Regression, RefusesADegreeOutside0To4AndKeepsDegreeAndSums) {
  for (const std::int32_t bad : {5, -1}) {
    RegressionObject fit;
    fit.SetDegree(1);
    fit.XYAdd(0, 1);
    fit.XYAdd(1, 3);
    try {
      fit.SetDegree(bad);
      FAIL() << "no error for " << bad;
    } catch (const RegressionError& error) {
      EXPECT_EQ(error.Number, 6000);
      EXPECT_EQ(error.Source, "RegressionObject");
      EXPECT_EQ(error.what(),
                std::to_string(bad) + " is an invalid property value! Use 0<= Degree <= 4");
    }
    EXPECT_EQ(fit.Degree(), 1);
    EXPECT_EQ(fit.XYCount(), 2);
    EXPECT_NEAR(fit.RegVal(2), 5, 1e-12);
  }
}

TEST(Regression, DiscardsAllPairsAtAValidDegreeEvenTheSame) {
  RegressionObject fit;
  fit.XYAdd(1, 1);
  fit.SetDegree(2);
  EXPECT_EQ(fit.XYCount(), 0);
  EXPECT_EQ(fit.Coeff(0), 0);
}

TEST(Regression, InitKeepsTheDegree) {
  RegressionObject fit;
  fit.SetDegree(3);
  fit.XYAdd(1, 1);
  fit.init();
  EXPECT_EQ(fit.Degree(), 3);
  EXPECT_EQ(fit.XYCount(), 0);
}

// Two places only: a parabola through them is not determined, a line is.
TEST(Regression, LowersTheDegreeWhereTheEquationsHaveNoSolution) {
  RegressionObject fit;
  for (int i = 0; i < 2; ++i) {
    fit.XYAdd(0, 1);
    fit.XYAdd(1, 3);
  }
  EXPECT_EQ(fit.Coeff(2), 0);
  EXPECT_NEAR(fit.Coeff(1), 2, 1e-12);
  EXPECT_NEAR(fit.Coeff(0), 1, 1e-12);
}

TEST(Regression, OfOnePlaceIsTheMean) {
  RegressionObject fit;
  for (const double y : {1.0, 2.0, 6.0}) fit.XYAdd(4, y);
  EXPECT_NEAR(fit.RegVal(4), 3, 1e-12);
  EXPECT_NEAR(fit.RegVal(-100), 3, 1e-12);
}

TEST(Regression, StaysFiniteOnValuesBeyondItsSums) {
  RegressionObject fit;
  fit.SetDegree(4);
  for (const double x : {1e200, 2e200, 3e200, 4e200, 5e200, 6e200}) fit.XYAdd(x, 1e300);
  for (int k = 0; k <= 4; ++k) EXPECT_TRUE(std::isfinite(fit.Coeff(k))) << k;
}

TEST(Regression, HasNoCoefficientBelow0OrAbove4) {
  RegressionObject fit;
  fit.XYAdd(1, 1);
  EXPECT_EQ(fit.Coeff(-1), 0);
  EXPECT_EQ(fit.Coeff(5), 0);
}

}  // namespace
}  // namespace qk
