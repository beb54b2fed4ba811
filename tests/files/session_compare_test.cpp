// SPDX-License-Identifier: MIT
// Two sessions compared as text.
#include "files/session_compare.h"

#include <gtest/gtest.h>

#include <set>

namespace qk {
namespace {

struct Comparison : testing::Test {
  std::unique_ptr<Session> one = MakeSession(), other = MakeSession();
  std::string Text() { return CompareSessions(*one, "a.cal", *other, "b.cal"); }
  static constexpr const char* kHead = "--- a.cal\n+++ b.cal\n";
};

TEST_F(Comparison, OfEqualSessionsSaysSo) {
  EXPECT_EQ(Text(), std::string(kHead) + "No differences.\n");
}

TEST_F(Comparison, NamesEachSettingWithBothValues) {
  other->Averaging.AveragesSet = 16;
  other->Channel(2).Parameter = Parameter::S21;
  EXPECT_EQ(Text(), std::string(kHead) + "Averages\n- 1\n+ 16\nCH2 parameter\n- S11\n+ S21\n");
}

TEST_F(Comparison, OfArraysTheLargestDifferenceIsTold) {
  other->Terms.Forward.ED.Set(10, {0.25, 0});
  other->Terms.Forward.ED.Set(50, {0, -0.5});
  other->Channel(3).UpperLimit[1] = 7;
  one->Channel(3).UpperLimit[1] = 5;
  EXPECT_EQ(Text(), std::string(kHead) +
                        "Error term ED\n  largest difference 0.5 at 1501.5 MHz\n"
                        "CH3 upper limit\n  largest difference 2 at 3 MHz\n");
}

TEST_F(Comparison, OfTwoSweepsNoPointsAreCompared) {
  other->Plan.StartFreq = 6e6;
  other->Terms.Forward.ED.Set(10, {0.25, 0});
  EXPECT_NE(Text().find("Sweep\n- 3 MHz to 3000 MHz, 101 points, step 29.97 MHz\n+ 6 MHz to"),
            std::string::npos);
  EXPECT_NE(Text().find("are not compared: the sweeps differ\n"), std::string::npos);
  EXPECT_EQ(Text().find("Error term ED"), std::string::npos);
}

TEST_F(Comparison, ATextFromAFileNeverBreaksItsLine) {
  other->Kit1.KitName = "a\n+ b";
  EXPECT_NE(Text().find("Kit 1 name\n- Default\n+ a + b\n"), std::string::npos);
}

TEST_F(Comparison, EveryFactHasANameOfItsOwn) {
  std::set<std::string> names;
  for (const Fact& fact : SessionFacts(*one))
    EXPECT_TRUE(names.insert(fact.Name).second) << fact.Name;
}

}  // namespace
}  // namespace qk
