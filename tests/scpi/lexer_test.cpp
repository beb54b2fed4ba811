// SPDX-License-Identifier: MIT
// How a message is cut into units and parameters, and what a malformed one is refused with.
#include "scpi/lexer.h"

#include <gtest/gtest.h>

namespace qk::scpi {
namespace {

struct Read {
  std::string Header;
  bool Query;
  std::string Items;  // W:word N:value[unit] T:text B:block
  int Wrong;
  bool operator==(const Read&) const = default;
};
void PrintTo(const Read& read, std::ostream* out) {
  *out << read.Header << (read.Query ? "?" : "") << " " << read.Items << " " << read.Wrong;
}

std::vector<Read> All(std::string_view message) {
  MessageReader reader(message);
  std::vector<Read> units;
  Unit unit;
  while (reader.Next(unit)) {
    Read read{std::string(unit.Header), unit.Query, "", unit.Wrong.Number};
    for (const Item& item : unit.Items) {
      if (!read.Items.empty()) read.Items += ' ';
      switch (item.Kind) {
        case ItemKind::Word:
          read.Items += "W:" + std::string(item.Raw);
          break;
        case ItemKind::Number:
          read.Items += "N:" + std::to_string(item.Value) + std::string(item.Unit);
          break;
        case ItemKind::Text:
          read.Items += "T:" + Unquoted(item);
          break;
        case ItemKind::Block:
          read.Items += "B:" + std::string(item.Raw);
          break;
      }
    }
    units.push_back(read);
  }
  return units;
}

Read One(std::string_view message) {
  const auto units = All(message);
  EXPECT_EQ(units.size(), 1u) << message;
  return units.empty() ? Read{} : units.front();
}

using Reads = std::vector<Read>;

TEST(Lexer, CutsAMessageAtSemicolons) {
  EXPECT_EQ(All(":SENS1:FREQ:STAR 100 MHZ; STOP 2e9 ;*OPC?"),
            (Reads{{":SENS1:FREQ:STAR", false, "N:100.000000MHZ", 0},
                   {"STOP", false, "N:2000000000.000000", 0},
                   {"*OPC", true, "", 0}}));
  EXPECT_EQ(All("A;B?;*C"), (Reads{{"A", false, "", 0}, {"B", true, "", 0}, {"*C", false, "", 0}}));
  EXPECT_EQ(All(" ; ;A ;"), (Reads{{"A", false, "", 0}}));
  EXPECT_EQ(All(""), Reads{});
}

TEST(Lexer, ReadsNumbersWithTheirUnits) {
  EXPECT_EQ(One("F 100 MHZ"), (Read{"F", false, "N:100.000000MHZ", 0}));
  EXPECT_EQ(One("F 1.5ghz,-2,+3,.5,1E3"),
            (Read{"F", false, "N:1.500000ghz N:-2.000000 N:3.000000 N:0.500000 N:1000.000000", 0}));
  // White space is allowed on both sides of the E.
  EXPECT_EQ(
      One("F 1 E9,1E 3,1.5 e\t-1 HZ,-2 E +2mhz"),
      (Read{"F", false, "N:1000000000.000000 N:1000.000000 N:0.150000HZ N:-200.000000mhz", 0}));
  EXPECT_EQ(One("F 1 EHZ,2E3 E4,3 E,4e +"),
            (Read{"F", false, "N:1.000000EHZ N:2000.000000E4 N:3.000000E N:4.000000e",
                  kInvalidSeparator}));
  EXPECT_EQ(One("F #H1F,#Q17,#B101"), (Read{"F", false, "N:31.000000 N:15.000000 N:5.000000", 0}));
}

TEST(Lexer, ReadsWordsAndStringsInEitherQuote) {
  EXPECT_EQ(One("F ed,MAX"), (Read{"F", false, "W:ed W:MAX", 0}));
  EXPECT_EQ(One("F 'a;b','it''s',\"say \"\"x\"\"\""),
            (Read{"F", false, "T:a;b T:it's T:say \"x\"", 0}));
  EXPECT_EQ(One("F ''"), (Read{"F", false, "T:", 0}));
}

TEST(Lexer, ReadsABlockWithAnyBytesInside) {
  EXPECT_EQ(One(std::string_view("F ed,#15a;\n\"b", 14)), (Read{"F", false, "W:ed B:a;\n\"b", 0}));
  EXPECT_EQ(All("F #10;G"), (Reads{{"F", false, "B:", 0}, {"G", false, "", 0}}));
}

struct Bad {
  const char* Message;
  int Number;
};
class Malformed : public testing::TestWithParam<Bad> {};
TEST_P(Malformed, IsRefusedWithItsNumber) {
  EXPECT_EQ(One(GetParam().Message).Wrong, GetParam().Number);
}
INSTANTIATE_TEST_SUITE_P(
    Lexer, Malformed,
    testing::Values(
        Bad{"F\x80", kInvalidCharacter}, Bad{"F \x81", kInvalidCharacter},
        Bad{"F 1\xc2\xb5S", kInvalidCharacter}, Bad{"F 1 \xb5S", kInvalidCharacter},
        Bad{"F ON\xe9", kInvalidCharacter}, Bad{"F 'a'\xff", kInvalidCharacter},
        Bad{"F 1,\x7f", kInvalidCharacter}, Bad{"F 1 E999", kOutOfRange}, Bad{"&F", kSyntaxError},
        Bad{"F::G", kSyntaxError}, Bad{"F:", kSyntaxError}, Bad{"*", kSyntaxError},
        Bad{"?", kSyntaxError}, Bad{"F\"x\"", kSyntaxError}, Bad{"F 1,", kSyntaxError},
        Bad{"F ,1", kSyntaxError}, Bad{"F 1,,2", kSyntaxError}, Bad{"F 1 2", kInvalidSeparator},
        Bad{"F a b", kInvalidSeparator}, Bad{"F (1)", kSyntaxError}, Bad{"F +", kSyntaxError},
        Bad{"F -x", kSyntaxError}, Bad{"F .", kSyntaxError}, Bad{"F 1e999", kOutOfRange},
        Bad{"F 'a", kInvalidString}, Bad{"F \"a\"\"", kInvalidString},
        Bad{"F #0abc", kInvalidBlock}, Bad{"F #", kInvalidBlock}, Bad{"F #15ab", kInvalidBlock},
        Bad{"F #3ab", kInvalidBlock}, Bad{"F #2-1x", kInvalidBlock}, Bad{"1F", kSyntaxError}));

TEST(Lexer, GoesOnBehindAMalformedUnit) {
  EXPECT_EQ(All("F 1 2 ';';G?"),
            (Reads{{"F", false, "N:1.000000", kInvalidSeparator}, {"G", true, "", 0}}));
}

// Bytes of a block that are blanks elsewhere belong to it.
TEST(Lexer, ABlockAtTheEndOfAUnitIsReportedWhole) {
  const std::string_view block("D #13a\x01 ");
  for (const std::string& message : {std::string(block), std::string(block) + " ;E"}) {
    MessageReader reader(message);
    Unit unit;
    ASSERT_TRUE(reader.Next(unit));
    EXPECT_EQ(unit.Written, block);
    ASSERT_EQ(unit.Items.size(), 1u);
    EXPECT_EQ(unit.Items[0].Raw.size(), 3u);
  }
}

TEST(Lexer, ReportsAUnitAsItWasWritten) {
  MessageReader reader(" SENS:FREQ 1 ;  *IDN? ");
  Unit unit;
  ASSERT_TRUE(reader.Next(unit));
  EXPECT_EQ(unit.Written, "SENS:FREQ 1");
  ASSERT_TRUE(reader.Next(unit));
  EXPECT_EQ(unit.Written, "*IDN?");
  EXPECT_FALSE(reader.Next(unit));
}

}  // namespace
}  // namespace qk::scpi
