// SPDX-License-Identifier: MIT
#include "ui/tile_record.h"

#include <gtest/gtest.h>

namespace qk::test {
namespace {

constexpr int kTile = TileRecord::kTile;

TEST(TileRecord, NeighboursOfARowAreOneRunCutAtTheEdgeOfTheImage) {
  TileRecord record;
  record.Resize({3 * kTile - 5, 2 * kTile});
  EXPECT_TRUE(record.Runs().empty());
  record.Add(QRectF(kTile + 1, 1, kTile, 2));
  ASSERT_EQ(record.Runs().size(), 1u);
  EXPECT_EQ(record.Runs()[0], QRect(kTile, 0, 2 * kTile - 5, kTile));
}

TEST(TileRecord, WhatIsDrawnOutsideMarksNothingAndWhatSticksOutItsPart) {
  TileRecord record;
  record.Resize({2 * kTile, 2 * kTile});
  record.Add(QRectF(-50, 0, 10, 10));
  record.Add(QRectF(0, 1000, 10, 10));
  EXPECT_TRUE(record.Runs().empty());
  record.Add(QRectF(-50, -50, 60, 60));
  ASSERT_EQ(record.Runs().size(), 1u);
  EXPECT_EQ(record.Runs()[0], QRect(0, 0, kTile, kTile));
}

TEST(TileRecord, RecordsJoinAndClear) {
  TileRecord first, second;
  for (TileRecord* record : {&first, &second}) record->Resize({4 * kTile, kTile});
  first.Add(QRectF(1, 1, 1, 1));
  second.Add(QRectF(2 * kTile + 1, 1, 1, 1));
  first.Add(second);
  EXPECT_EQ(first.Runs().size(), 2u);
  first.AddAll();
  EXPECT_EQ(first.Runs().size(), 1u);
  first.Clear();
  EXPECT_TRUE(first.Runs().empty());
}

}  // namespace
}  // namespace qk::test
