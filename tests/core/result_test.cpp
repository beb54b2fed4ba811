// SPDX-License-Identifier: MIT
#include "core/result.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace qk {
namespace {

Result<int> Half(int x) {
  if (x % 2 != 0) return Failure{"odd number", "line 3"};
  return x / 2;
}

TEST(Result, HoldsAValue) {
  const Result<int> half = Half(8);
  ASSERT_TRUE(half.Ok());
  EXPECT_EQ(*half, 4);
}

TEST(Result, HoldsWhyThereIsNone) {
  const Result<int> half = Half(7);
  ASSERT_FALSE(half);
  EXPECT_EQ(half.Why().Text(), "line 3: odd number");
  EXPECT_THROW(half.Value(), std::bad_variant_access);
}

TEST(Result, AFailureWithoutAPlaceIsItsMessage) {
  EXPECT_EQ((Failure{"no room", ""}).Text(), "no room");
}

TEST(Result, CarriesWhatCannotBeCopied) {
  Result<std::unique_ptr<int>> r = std::make_unique<int>(5);
  ASSERT_TRUE(r.Ok());
  const std::unique_ptr<int> taken = std::move(*r);
  EXPECT_EQ(*taken, 5);
}

}  // namespace
}  // namespace qk
