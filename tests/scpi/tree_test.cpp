// SPDX-License-Identifier: MIT
// How headers are found in a table of rows.
#include "scpi/tree.h"

#include <gtest/gtest.h>

namespace qk::scpi {
namespace {

void Nothing(Call&) {}

constexpr Row kRows[] = {
    {.Pattern = "*IDN", .Query = Nothing, .Help = "who"},
    {.Pattern = "SENSe#1:AVERage[:STATe]", .Set = Nothing, .Query = Nothing, .Takes = "ON|OFF"},
    {.Pattern = "CALCulate#1:PARameter#4:DEFine", .Set = Nothing, .Query = Nothing},
    {.Pattern = "INITiate#1[:IMMediate]", .Set = Nothing},
    {.Pattern = "STATus:OPERation[:EVENt]", .Query = Nothing},
};
const Tree kTree({kRows});

int Which(std::string_view header) {
  const Found found = kTree.Find(header);
  return found.Which == nullptr ? -1 : static_cast<int>(found.Which - kRows);
}

TEST(Tree, TakesShortAndLongFormsInAnyCase) {
  for (const char* header :
       {"SENS:AVER:STAT", "sense:average:state", "Sens1:Average:STAT", "SENS:AVER", "SENSE1:AVER"})
    EXPECT_EQ(Which(header), 1) << header;
  EXPECT_EQ(Which("*idn"), 0);
  EXPECT_EQ(Which("INIT"), 3);
  EXPECT_EQ(Which("INIT:IMM"), 3);
  EXPECT_EQ(Which("STAT:OPER"), 4);
}

TEST(Tree, TakesNothingBetweenTheForms) {
  for (const char* header : {"SEN:AVER", "SENSES:AVER", "SENS:AVERA", "SENS", "SENS:AVER:STAT:X",
                             "AVER", "*IDN2", "IDN", "SENS:AVER2", "SENS:AVER:STAT1", ""})
    EXPECT_EQ(Which(header), -1) << header;
}

TEST(Tree, GivesTheSuffix) {
  EXPECT_EQ(kTree.Find("CALC:PAR3:DEF").Index, 3);
  EXPECT_EQ(kTree.Find("CALC1:PAR:DEF").Index, 1);
  EXPECT_FALSE(kTree.Find("CALC1:PAR4:DEF").SuffixOutOfRange);
}

TEST(Tree, ReportsASuffixOutOfRange) {
  for (const char* header : {"CALC2:PAR:DEF", "CALC:PAR5:DEF", "CALC:PAR0:DEF", "SENS2:AVER",
                             "CALC:PAR99999999999:DEF"}) {
    EXPECT_GE(Which(header), 0) << header;
    EXPECT_TRUE(kTree.Find(header).SuffixOutOfRange) << header;
  }
}

TEST(Tree, RefusesATableThatIsWrong) {
  constexpr Row twice[] = {{.Pattern = "A"}, {.Pattern = "A"}};
  constexpr Row open[] = {{.Pattern = "A[:B"}};
  constexpr Row empty[] = {{.Pattern = ""}};
  constexpr Row suffix[] = {{.Pattern = "A#"}};
  EXPECT_THROW(Tree({twice}), std::logic_error);
  EXPECT_THROW(Tree({open}), std::logic_error);
  EXPECT_THROW(Tree({empty}), std::logic_error);
  EXPECT_THROW(Tree({suffix}), std::logic_error);
}

TEST(Tree, ListsItsHeaders) {
  EXPECT_EQ(HeaderList(kTree),
            "*IDN?/qonly/\n:SENSe:AVERage[:STATe]\n:CALCulate:PARameter<n>:DEFine\n"
            ":INITiate[:IMMediate]/nquery/\n:STATus:OPERation[:EVENt]?/qonly/\n");
}

TEST(Tree, MakesTheTableOfTheManual) {
  EXPECT_EQ(ManualTable(Tree({std::span(kRows).subspan(0, 2)})),
            "| Command | Parameters | What it does |\n|---|---|---|\n| `*IDN?` |  | who |\n"
            "| `SENSe:AVERage[:STATe][?]` | `ON\\|OFF` |  |\n");
}

}  // namespace
}  // namespace qk::scpi
