// SPDX-License-Identifier: MIT
#include "display/layout.h"

#include <gtest/gtest.h>

#include <array>

namespace qk {
namespace {

using Corners = std::array<int, 4>;

Corners At(int slot, bool table, Extent area = {1000, 600}) {
  const Rect r = GraphRect(slot, table, area);
  return {r.left, r.top, r.right, r.bottom};
}

TEST(Layout, OfThousandBySixHundredWithoutTheMarkerTable) {
  EXPECT_EQ(At(0, false), (Corners{37, 50, 963, 573}));
  EXPECT_EQ(At(1, false), (Corners{28, 50, 472, 273}));
  EXPECT_EQ(At(2, false), (Corners{37, 50, 963, 273}));
  EXPECT_EQ(At(3, false), (Corners{500, 50, 944, 273}));
  EXPECT_EQ(At(4, false), (Corners{28, 350, 472, 573}));
  EXPECT_EQ(At(5, false), (Corners{37, 350, 963, 573}));
  EXPECT_EQ(At(6, false), (Corners{500, 350, 944, 573}));
}

TEST(Layout, OfThousandBySixHundredWithTheMarkerTable) {
  EXPECT_EQ(At(0, true), (Corners{37, 50, 793, 573}));
  EXPECT_EQ(At(1, true), (Corners{24, 50, 391, 273}));
  EXPECT_EQ(At(2, true), (Corners{37, 50, 793, 273}));
  EXPECT_EQ(At(3, true), (Corners{415, 50, 782, 273}));
  EXPECT_EQ(At(4, true), (Corners{24, 337, 391, 560}));
  EXPECT_EQ(At(5, true), (Corners{37, 350, 793, 573}));
  EXPECT_EQ(At(6, true), (Corners{415, 337, 782, 560}));
}

TEST(Layout, TheMarkerTableKeepsTheRightmostSeventeenHundredths) {
  for (const Extent area : {Extent{640, 480}, Extent{1000, 600}, Extent{1920, 1080}})
    for (int slot = 0; slot <= 6; ++slot)
      EXPECT_LT(GraphRect(slot, true, area).right, 0.83 * area.width) << slot;
}

TEST(Layout, GraphsOfOneSetDoNotOverlapAndStayInTheArea) {
  for (const bool table : {false, true})
    for (const Extent area : {Extent{200, 150}, Extent{640, 480}, Extent{1920, 1080}}) {
      for (int slot = 0; slot <= 6; ++slot) {
        const Rect r = GraphRect(slot, table, area);
        EXPECT_GE(r.left, 0);
        EXPECT_GE(r.top, 0);
        EXPECT_LT(r.left, r.right);
        EXPECT_LT(r.top, r.bottom);
        EXPECT_LE(r.right, area.width);
        EXPECT_LE(r.bottom, area.height);
      }
      EXPECT_LT(GraphRect(1, table, area).right, GraphRect(3, table, area).left);
      EXPECT_LT(GraphRect(1, table, area).bottom, GraphRect(4, table, area).top);
      EXPECT_LT(GraphRect(2, table, area).bottom, GraphRect(5, table, area).top);
    }
}

TEST(Layout, TheLeastHeightHasRoomForTheTitleOverAGraph) {
  for (const int line : {9, 16, 23}) {
    const int least = LeastHeight(line);
    EXPECT_GE(GraphRect(0, false, {1000, least}).top, 2.1 * line);
    EXPECT_LT(GraphRect(0, false, {1000, least - 26}).top, 2.1 * line);
  }
}

TEST(Layout, AnAreaWithoutSizeGivesRectanglesWithoutSize) {
  for (int slot = 0; slot <= 6; ++slot) EXPECT_EQ(At(slot, false, {0, 0}), (Corners{0, 0, 0, 0}));
}

TEST(Layout, DisplaySetsChooseTheSlots) {
  EXPECT_EQ(SlotOf(DisplaySet::One, 0), 0);
  EXPECT_EQ(SlotOf(DisplaySet::OneTwo, 0), 2);
  EXPECT_EQ(SlotOf(DisplaySet::OneTwo, 1), 5);
  EXPECT_EQ(SlotOf(DisplaySet::ThreeFour, 2), 2);
  EXPECT_EQ(SlotOf(DisplaySet::ThreeFour, 3), 5);
  const int quarters[] = {1, 3, 4, 6};
  for (int graph = 0; graph < 4; ++graph)
    EXPECT_EQ(SlotOf(DisplaySet::All, graph), quarters[graph]);
}

TEST(Layout, FontsFollowTheScreenUpToALimit) {
  EXPECT_EQ(GraphFontPoints(0, 1), 10);
  EXPECT_EQ(GraphFontPoints(2, 1.25f), 12);
  EXPECT_EQ(GraphFontPoints(5, 2), 14);
  EXPECT_EQ(GraphFontPoints(1, 1), 6);
  EXPECT_EQ(GraphFontPoints(6, 1.4f), 8);
  EXPECT_EQ(GraphFontPoints(3, 3), 12);
  EXPECT_EQ(AreaFontPoints(1), 10);
  EXPECT_EQ(AreaFontPoints(0.9f), 8);
  EXPECT_EQ(AreaFontPoints(1.2f), 12);
  EXPECT_EQ(GraphFontPoints(1, 0.1f), 1);  // never no size at all
}

}  // namespace
}  // namespace qk
