// SPDX-License-Identifier: MIT
// A kit's tables at any frequency.
#include "cal/kit_tables.h"

#include <gtest/gtest.h>

#include "error_box.h"

namespace qk {
namespace {

using namespace test;

TEST(LoadTable, WithoutLoadDataIsAPerfectLoad) {
  LoadTable load{CalKit()};
  EXPECT_EQ(load.At(1e9), (Complex{0, 0}));
  EXPECT_TRUE(load.Good());
}

TEST(LoadTable, GivesItsRowsAndASplineBetweenThem) {
  CalKit kit;
  kit.KitHasLoad = true;
  for (std::size_t i = 0; i < 101; ++i) {
    const double x = static_cast<double>(i) / 100;
    kit.KitLoadData[0][i] = static_cast<float>(3e9 * x);
    kit.KitLoadData[1][i] = static_cast<float>(0.05 * std::sin(3 * x));
    kit.KitLoadData[2][i] = static_cast<float>(0.03 * std::cos(5 * x));
  }
  LoadTable load(kit);
  for (double x = 0.05; x < 0.95; x += 0.0123) {
    EXPECT_NEAR(load.At(3e9 * x).re, 0.05 * std::sin(3 * x), 1e-7);
    EXPECT_NEAR(load.At(3e9 * x).im, 0.03 * std::cos(5 * x), 1e-6);
  }
  EXPECT_TRUE(load.Good());
}

TEST(LoadTable, ReportsEqualFrequenciesOnceTheyAreMet) {
  CalKit kit;
  kit.KitHasLoad = true;
  for (std::size_t i = 0; i < 101; ++i) kit.KitLoadData[0][i] = static_cast<float>(i);
  kit.KitLoadData[0][100] = kit.KitLoadData[0][99];
  LoadTable load(kit);
  load.At(50.5);
  EXPECT_TRUE(load.Good());
  load.At(200);
  EXPECT_FALSE(load.Good());
}

TEST(ThruTable, HoldsTheFourParametersInTheKitsOrder) {
  CalKit kit;
  kit.KitHasThru = true;
  for (std::size_t i = 0; i < 101; ++i) {
    kit.KitThruData[0][i] = static_cast<float>(i) * 3e7f;
    for (std::size_t row = 1; row < 9; ++row) kit.KitThruData[row][i] = static_cast<float>(row);
  }
  ThruTable thru(kit);
  const ThruStandard t = thru.At(1.234e9);
  EXPECT_LT(std::abs(Of(t.T11) - Cx(1, 2)), 1e-12);
  EXPECT_LT(std::abs(Of(t.T21) - Cx(3, 4)), 1e-12);
  EXPECT_LT(std::abs(Of(t.T12) - Cx(5, 6)), 1e-12);
  EXPECT_LT(std::abs(Of(t.T22) - Cx(7, 8)), 1e-12);
  EXPECT_TRUE(thru.Good());
}

TEST(ThruTable, WithoutThroughDataIsAllZero) {
  ThruTable thru{CalKit()};
  const ThruStandard t = thru.At(1e9);
  for (const Complex z : {t.T11, t.T21, t.T12, t.T22}) EXPECT_EQ(z, (Complex{0, 0}));
  EXPECT_TRUE(thru.Good());
}

}  // namespace
}  // namespace qk
