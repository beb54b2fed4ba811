// SPDX-License-Identifier: MIT
// The reader of Touchstone files: option line, rows, what is refused and why.
#include "files/touchstone.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace qk {
namespace {

TouchstoneTable Read(std::string_view text, Reference reference = Reference::Ignored) {
  const Result<TouchstoneTable> table = ReadTouchstone(text, reference);
  if (!table) throw std::runtime_error(table.Why().Text());
  return *table;
}

// Why a text is refused; empty when it is not.
std::string WhyNot(std::string_view text) {
  const Result<TouchstoneTable> table = ReadTouchstone(text, Reference::ConvertedTo50);
  return table ? "" : table.Why().Text();
}

float At(const TouchstoneTable& table, int column, int row) {
  return table.FileTable[static_cast<std::size_t>(column)][static_cast<std::size_t>(row)];
}

// n rows of one parameter from 1 MHz on.
std::string Rows(int n) {
  std::string text = "# MHZ S RI R 50\n";
  for (int i = 1; i <= n; ++i) text += std::to_string(i) + " 0.5 0.25\n";
  return text;
}

// ---- the option line ---------------------------------------------------------------------------

TEST(TouchstoneOptionLine, SaysTheUnitOfTheFrequencies) {
  EXPECT_EQ(At(Read("# GHZ S RI R 50\n1.5 0 0\n"), 0, 1), 1.5e9f);
  EXPECT_EQ(At(Read("# MHZ S RI R 50\n1.5 0 0\n"), 0, 1), 1.5e6f);
  EXPECT_EQ(At(Read("# KHZ S RI R 50\n1.5 0 0\n"), 0, 1), 1.5e3f);
}

TEST(TouchstoneOptionLine, WithHzKeepsTheMultiplierOne) {
  EXPECT_EQ(At(Read("# HZ S RI R 50\n1.5 0 0\n"), 0, 1), 1.5f);
}

TEST(TouchstoneOptionLine, OfAnUnknownUnitIsHertz) {
  EXPECT_EQ(At(Read("# THZ S RI R 50\n1.5 0 0\n"), 0, 1), 1.5f);
  EXPECT_EQ(At(Read("#\n1.5 0 0\n"), 0, 1), 1.5f);
}

TEST(TouchstoneOptionLine, MayBeginRightBehindTheMark) {
  EXPECT_EQ(At(Read("#MHZ S RI R 50\n1.5 0 0\n"), 0, 1), 1.5e6f);
}

TEST(TouchstoneOptionLine, InLowerCaseReadsLikeUpperCase) {
  const TouchstoneTable table = Read("# mhz s ma r 50\n2 0.5 90\n");
  EXPECT_EQ(At(table, 0, 1), 2e6f);
  EXPECT_NEAR(At(table, 1, 1), 0, 1e-7);
  EXPECT_NEAR(At(table, 2, 1), 0.5, 1e-7);
}

TEST(TouchstoneOptionLine, TakesTabsForBlanks) {
  const TouchstoneTable table = Read("#\tMHZ\tS\tDB\tR\t50\n2 20 0\n");
  EXPECT_EQ(At(table, 0, 1), 2e6f);
  EXPECT_FLOAT_EQ(At(table, 1, 1), 10);
}

TEST(TouchstoneOptionLine, OfMagnitudeAndAngleTurnsThemByDegrees) {
  const TouchstoneTable table = Read("# MHZ S MA R 50\n1 2 30 1 -120 0 0 3 180\n");
  EXPECT_NEAR(At(table, 1, 1), 2 * std::cos(M_PI / 6), 1e-6);
  EXPECT_NEAR(At(table, 2, 1), 1, 1e-6);
  EXPECT_NEAR(At(table, 3, 1), -0.5, 1e-6);
  EXPECT_NEAR(At(table, 4, 1), -std::sqrt(0.75), 1e-6);
  EXPECT_NEAR(At(table, 7, 1), -3, 1e-6);
}

TEST(TouchstoneOptionLine, OfDecibelsRaisesTenToATwentieth) {
  const TouchstoneTable table = Read("# MHZ S DB R 50\n1 -20 90\n");
  EXPECT_NEAR(At(table, 1, 1), 0, 1e-8);
  EXPECT_NEAR(At(table, 2, 1), 0.1, 1e-7);
}

TEST(TouchstoneOptionLine, OfAnyOtherFormatIsRealAndImaginary) {
  for (const char* line : {"# MHZ S RI R 50", "# MHZ S XY R 50", "# MHZ S", "# MHZ", "#"}) {
    const TouchstoneTable table = Read(std::string(line) + "\n1 0.25 -0.75\n");
    EXPECT_EQ(At(table, 1, 1), 0.25f) << line;
    EXPECT_EQ(At(table, 2, 1), -0.75f) << line;
  }
}

TEST(TouchstoneOptionLine, IsTheFirstLineThatBeginsWithTheMarkAndWhatStandsBeforeNeedsNoMark) {
  EXPECT_EQ(At(Read("A remark\n12 13 14\n # GHZ\n! more\n\n# MHZ S RI R 50\n1 0 0\n"), 0, 1), 1e6f);
}

TEST(TouchstoneOptionLine, EndsAtARemark) {
  // The "r" of the remark does not begin a resistance, its "DB" is no format.
  EXPECT_EQ(WhyNot("# MHZ S MA ! for DB users\n1 0.5 0\n"), "");
}

TEST(TouchstoneOptionLine, ThatIsMissingIsReported) {
  EXPECT_EQ(WhyNot(""), "no option line (# MHZ S MA R 50)");
  EXPECT_EQ(WhyNot("1 2 3\n4 5 6\n"), "no option line (# MHZ S MA R 50)");
}

TEST(TouchstoneOptionLine, OfOtherParametersThanSIsRefused) {
  EXPECT_EQ(WhyNot("! remark\n# MHZ Y MA R 50\n1 2 3\n"),
            "line 2: these are Y parameters, only S parameters are read");
  EXPECT_EQ(WhyNot("# mhz z ri r 50\n1 2 3\n"),
            "line 1: these are Z parameters, only S parameters are read");
}

TEST(TouchstoneOptionLine, InAnotherOrderIsRefusedWhereItWouldBeMisread) {
  EXPECT_EQ(WhyNot("# S MHZ MA R 50\n1 2 3\n"),
            "line 1: MHZ is in the wrong place, the order is # MHZ S MA R 50");
  EXPECT_EQ(WhyNot("# GHZ DB S R 50\n1 2 3\n"),
            "line 1: DB is in the wrong place, the order is # MHZ S MA R 50");
}

TEST(TouchstoneOptionLine, WithAResistanceThatIsNoNumberIsRefused) {
  EXPECT_EQ(WhyNot("# MHZ S MA R fifty\n1 2 3\n"), "line 1: the resistance is not a number");
}

// ---- rows --------------------------------------------------------------------------------------

TEST(TouchstoneRows, FillTheColumnsInTheFilesOrder) {
  const TouchstoneTable table = Read("# HZ S RI R 50\n1 2 3 4 5 6 7 8 9\n2 3 4 5 6 7 8 9 10\n");
  EXPECT_EQ(table.Rows, 2);
  EXPECT_EQ(table.Columns, 8);
  for (int column = 0; column <= 8; ++column) {
    EXPECT_EQ(At(table, column, 0), 0) << column;
    EXPECT_EQ(At(table, column, 1), static_cast<float>(column + 1));
    EXPECT_EQ(At(table, column, 2), static_cast<float>(column + 2));
  }
}

TEST(TouchstoneRows, DecideTheKindByTheColumnsOfTheLastOne) {
  EXPECT_EQ(Read("#\n1 2 3\n").Kind(), FileKind::OneParameter);
  EXPECT_EQ(Read("#\n1 2 3 4 5\n").Kind(), FileKind::WithS21);
  EXPECT_EQ(Read("#\n1 2 3 4 5 6 7\n").Kind(), FileKind::WithS21);
  EXPECT_EQ(Read("#\n1 2 3 4 5 6 7 8 9\n").Kind(), FileKind::AllFour);
  EXPECT_EQ(Read("#\n1 2 3 4\n").Kind(), FileKind::None);
  EXPECT_EQ(Read("#\n1 2 3 4 5 6 7 8 9\n2 3 4\n").Kind(), FileKind::OneParameter);
}

TEST(TouchstoneRows, EndWhereAFrequencyFallsBackSoThatANoiseBlockIsLeftAside) {
  const TouchstoneTable table = Read(
      "# MHZ S DB R 50\n100 0 0 0 0 0 0 0 0\n200 0 0 0 0 0 0 0 0\n"
      "! noise\n150 1.5 0.3 40 0.2\n250 1.6 0.3 45 and what not\n");
  EXPECT_EQ(table.Rows, 2);
  EXPECT_EQ(table.Columns, 8);
  EXPECT_EQ(At(table, 0, 3), 0);
}

TEST(TouchstoneRows, OfOneFrequencyTwiceAreBothTaken) {
  EXPECT_EQ(Read("#\n1 2 3\n1 4 5\n2 6 7\n").Rows, 3);
}

TEST(TouchstoneRows, AreSplitAtTabsWhereTabsSeparate) {
  const TouchstoneTable table = Read("# HZ S RI R 50\n1\t2\t3\t4\t5\n2\t3\t4\t\t5\t6\t\n");
  EXPECT_EQ(table.Rows, 2);
  EXPECT_EQ(At(table, 4, 1), 5);
  EXPECT_EQ(At(table, 4, 2), 6);
}

TEST(TouchstoneRows, OfOneParameterWithSingleBlanksAreNotSplitAtTabs) {
  const TouchstoneTable table = Read("# HZ S RI R 50\n50000 -1.5 0.25\n");
  EXPECT_EQ(At(table, 1, 1), -1.5f);
  EXPECT_EQ(At(table, 2, 1), 0.25f);
}

TEST(TouchstoneRows, TakeSeveralBlanksForOne) {
  EXPECT_EQ(At(Read("#\n1    2      3  4   5  \n"), 4, 1), 5);
}

TEST(TouchstoneRows, ThatBeginWithABlankArePassedOver) {
  const TouchstoneTable table = Read("#\n1 2 3\n 2 3 4\n3 4 5\n");
  EXPECT_EQ(table.Rows, 2);
  EXPECT_EQ(At(table, 0, 2), 3);
}

TEST(TouchstoneRows, ThatBeginWithATabArePassedOverWhereTabsSeparate) {
  EXPECT_EQ(Read("#\n1\t2\t3\n\t2\t3\t4\n3\t4\t5\n").Rows, 2);
  EXPECT_EQ(Read("#\n1 2 3 4 5\n\t2 3 4 5 6\n").Rows, 2);  // blanks separate: the tab is none
}

TEST(TouchstoneRows, ThatAllBeginWithABlankAreTaken) {
  const TouchstoneTable table = Read("# MHZ S RI R 50\n   ! head\n   1 2 3\n  10 3 4\n\t11 4 5\n");
  EXPECT_EQ(table.Rows, 3);
  EXPECT_EQ(At(table, 0, 2), 10e6f);
}

TEST(TouchstoneRows, MayHaveRemarksAndEmptyLinesBetweenAndBehind) {
  const TouchstoneTable table = Read("#\n!a\n1 2 3 ! b\n\n! c\n2 3 4! d 5\n\n");
  EXPECT_EQ(table.Rows, 2);
  EXPECT_EQ(table.Columns, 2);
}

TEST(TouchstoneRows, MayEndWithAnyLineEndOrNone) {
  for (const char* text : {"#\n1 2 3\n2 3 4\n", "#\r\n1 2 3\r\n2 3 4\r\n", "#\r1 2 3\r2 3 4\r",
                           "#\n1 2 3\n2 3 4", "#\r\n1 2 3\r\n2 3 4\r\n\x1A garbage"}) {
    const TouchstoneTable table = Read(text);
    EXPECT_EQ(table.Rows, 2) << text;
    EXPECT_EQ(At(table, 2, 2), 4) << text;
  }
}

TEST(TouchstoneRows, TakeSignsPointsAndExponents) {
  const TouchstoneTable table = Read("#\n1e3 +.5 -5.E-1 1E+2 1e-400\n");
  EXPECT_EQ(At(table, 0, 1), 1000);
  EXPECT_EQ(At(table, 1, 1), 0.5f);
  EXPECT_EQ(At(table, 2, 1), -0.5f);
  EXPECT_EQ(At(table, 3, 1), 100);
  EXPECT_EQ(At(table, 4, 1), 0);
}

TEST(TouchstoneRows, MayBeAThousand) {
  EXPECT_EQ(Read(Rows(1000)).Rows, 1000);
  // A block of noise parameters behind them is no row 1001.
  EXPECT_EQ(Read(Rows(1000) + "5 1.1 0.3 40 0.2\n").Rows, 1000);
}

TEST(TouchstoneRows, OverAThousandAreRefused) {
  EXPECT_EQ(WhyNot(Rows(1001)), "line 1002: more than 1000 rows");
}

TEST(TouchstoneRows, ThatAreMissingAreReported) {
  EXPECT_EQ(WhyNot("# MHZ S MA R 50\n! nothing\n\n"), "no data");
}

TEST(TouchstoneRows, WithWhatIsNoNumberAreRefusedByTheirLine) {
  EXPECT_EQ(WhyNot("! a\n#\n1 2 3\n\n2 0,5 3\n"), "line 5: \"0,5\" is not a number");
  EXPECT_EQ(WhyNot("#\none 2 3\n"), "line 2: \"one\" is not a number");
  EXPECT_EQ(WhyNot("#\r\n1 2 3\r\n2 3 nan\r\n"), "line 3: \"nan\" is not a number");
  EXPECT_EQ(WhyNot("#\n1 2 inf\n"), "line 2: \"inf\" is not a number");
  EXPECT_EQ(WhyNot("#\n1 2 +-3\n"), "line 2: \"+-3\" is not a number");
  EXPECT_EQ(WhyNot("#\n1 2 0x10\n"), "line 2: \"0x10\" is not a number");
  EXPECT_EQ(WhyNot("#\n1 2 3\n# MHZ\n"), "line 3: \"#\" is not a number");
}

// Without [Version] such a line is not a keyword.
TEST(TouchstoneRows, OfVersionTwoKeywordsAreRefusedInVersionOne) {
  EXPECT_EQ(WhyNot("# MHZ S RI R 50\n[Number of Ports] 2\n"),
            "line 2: \"[Number\" is not a number");
}

TEST(TouchstoneRows, AreShownInAMessageWithoutWhatNoScreenShows) {
  EXPECT_EQ(WhyNot("#\n1 2 \x01\xFF\x7F\n"), "line 2: \"???\" is not a number");
  EXPECT_EQ(WhyNot("#\n" + std::string(100000, 'x') + "\n"),
            "line 2: \"xxxxxxxxxxxxxxxxxxxxxxxx...\" is not a number");
}

TEST(TouchstoneRows, TooLargeFor32BitsAreRefused) {
  EXPECT_EQ(WhyNot("#\n1 2 1e39\n"), "line 2: \"1e39\" is too large");
  EXPECT_EQ(WhyNot("#\n1 2 1e999\n"), "line 2: \"1e999\" is not a number");
  EXPECT_EQ(WhyNot("# GHZ\n1e30 2 3\n"), "line 2: \"1e30\" is too large");
  EXPECT_EQ(WhyNot("# MHZ S DB R 50\n1 0 0\n2 1000 0\n"), "line 3: a value is too large");
}

TEST(TouchstoneRows, OfMoreThanEightValuesAreRefused) {
  EXPECT_EQ(WhyNot("#\n1 2 3 4 5 6 7 8 9 10\n"), "line 2: more than 8 values in a row");
}

// Records of n ports, each row of the matrix on a line of its own, which breaks behind so many
// pairs; the lines that continue a record begin with the indent.
std::string Ports(int n, int pairsALine, const std::string& indent, int records) {
  std::string text = "! head\n# GHZ S RI R 50\n";
  for (int record = 1; record <= records; ++record) {
    text += std::to_string(record);
    for (int row = 0; row < n; ++row)
      for (int column = 0; column < n; ++column) {
        if (row + column > 0 && column % pairsALine == 0) text += " ! remark\n" + indent;
        text += " 0.5 0.25";
      }
    text += "\n";
  }
  return text;
}

TEST(TouchstonePorts, MoreThanTwoAreRefusedByTheirNumberOnAnyLines) {
  for (const std::string indent : {"", "      ", "\t"})
    for (int n = 3; n <= 12; ++n)
      for (const int pairs : {3, 4, n})
        for (const int records : {1, 2})
          EXPECT_EQ(WhyNot(Ports(n, pairs, indent, records)),
                    "line 3: a file of " + std::to_string(n) +
                        " ports, only files of one or two ports are read")
              << Ports(n, pairs, indent, records);
  EXPECT_EQ(WhyNot("#\n1 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18\n"),
            "line 2: a file of 3 ports, only files of one or two ports are read");
}

TEST(TouchstonePorts, MoreThanTwoAreRefusedInAFileThatIsIndentedThroughout) {
  EXPECT_EQ(WhyNot("#\n  1 2 3 4 5 6 7\n   2 3 4 5 6 7\n\n   2 3 4 5 6 7\n"),
            "line 2: a file of 3 ports, only files of one or two ports are read");
}

TEST(TouchstonePorts, OfOneAndTwoAreReadWithRemarksBetween) {
  EXPECT_EQ(Read("#\n1 2 3 4 5 6 7 8 9\n ! 2 3\n ! 4\n2 3 4 5 6 7 8 9 10\n").Rows, 2);
  EXPECT_EQ(Read("#\n1 2 3\n ! 2 3\n2 3 4\n").Rows, 2);
  EXPECT_EQ(Read("#\n1 2 3 4 5 6 7 8 9\n remarks\n2 3 4 5 6 7 8 9 10\n").Rows, 2);
}

TEST(TouchstonePorts, OfARecordThatIsCutAreRefusedByTheLineThatContinues) {
  const std::string why = ": continues the row before it, a row must be on one line";
  // A two-port on two lines, and the first lines of a four-port.
  EXPECT_EQ(WhyNot("#\n1 0.2 3 0.4 5\n0.6 7 0.8 9\n"), "line 3" + why);
  EXPECT_EQ(WhyNot("#\n1 2 3 4 5\n  6 7 8 9\n2 2 3 4 5\n  6 7 8 9\n"), "line 3" + why);
  EXPECT_EQ(WhyNot("#\n1 2 3 4 5 6 7 8 9\n\n 2 3 4 5 6 7 8 9\n"), "line 4" + why);
}

TEST(TouchstonePorts, AreNotCountedFromRowsOfOtherColumns) {
  // A row of three values is of no kind, whatever came before it.
  EXPECT_EQ(Read("#\n1 2 3 4 5 6 7 8 9\n2 3 4 5\n").Kind(), FileKind::None);
  EXPECT_EQ(Read("#\n1 2 3 4\n2 3 4 5 6 7\n").Rows, 2);
}

TEST(TouchstoneRows, OfANegativeFrequencyAreRefused) {
  EXPECT_EQ(WhyNot("#\n-1 2 3\n"), "line 2: the frequency is below 0");
}

TEST(Touchstone, CutAtAnyByteIsReadOrRefusedButNeverBreaks) {
  const std::string text =
      "\xEF\xBB\xBF! x\r\n# MHZ S DB R 75\r\n1 -3 10\t-20 30 -20 30 -5 60 ! y\r\n"
      "2\t-3\t11\t-20\t31\t-20\t31\t-5\t61\r\n1.5 1 2 3 4\r\n";
  int read = 0;
  for (std::size_t length = 0; length <= text.size(); ++length) {
    const auto table = ReadTouchstone(text.substr(0, length), Reference::ConvertedTo50);
    if (!table) continue;
    ++read;
    EXPECT_LE(table->Rows, 2);
    EXPECT_GE(table->Rows, 1);
  }
  EXPECT_GT(read, 50);
}

// ---- the reference resistance ------------------------------------------------------------------

TEST(TouchstoneReference, Of75OhmsIsConvertedTo50) {
  // A 75 ohm load in a file of 75 ohms is 0, and (75 - 50) / (75 + 50) at 50 ohms.
  const TouchstoneTable table = Read("# MHZ S MA R 75\n1 0 0\n", Reference::ConvertedTo50);
  EXPECT_NEAR(At(table, 1, 1), 0.2, 1e-6);
  EXPECT_NEAR(At(table, 2, 1), 0, 1e-6);
}

TEST(TouchstoneReference, IsConvertedOnComplexValuesWhateverTheFormat) {
  const auto ri = Read("# MHZ S RI R 75\n1 0 0.5 0.5 0 0.5 0 0 0\n", Reference::ConvertedTo50);
  const auto ma = Read("# MHZ S MA R 75\n1 0.5 90 0.5 0 0.5 0 0 0\n", Reference::ConvertedTo50);
  const auto db = Read("# MHZ S DB R 75\n1 -6.0205999 90 -6.0205999 0 -6.0205999 0 -220 0\n",
                       Reference::ConvertedTo50);
  for (int column = 1; column <= 8; ++column) {
    EXPECT_NEAR(At(ri, column, 1), At(ma, column, 1), 1e-6) << column;
    EXPECT_NEAR(At(ri, column, 1), At(db, column, 1), 1e-6) << column;
  }
}

TEST(TouchstoneReference, ConvertsTheKnotAtZeroToo) {
  EXPECT_NEAR(At(Read("# MHZ S RI R 75\n1 0 0\n", Reference::ConvertedTo50), 1, 0), 0.2, 1e-6);
  EXPECT_EQ(At(Read("# MHZ S RI R 50\n1 0 0\n", Reference::ConvertedTo50), 1, 0), 0);
}

TEST(TouchstoneReference, IsTakenFrom10To200Inclusive) {
  const auto converted = [](const char* r) {
    const std::string text = std::string("# MHZ S RI R ") + r + "\n1 0.5 0\n";
    return At(Read(text, Reference::ConvertedTo50), 1, 1) != 0.5f;
  };
  for (const char* r : {"10", "75", "200"}) EXPECT_TRUE(converted(r)) << r;
  for (const char* r : {"5", "9.99", "50", "200.1", "300", "-75"}) EXPECT_FALSE(converted(r)) << r;
}

TEST(TouchstoneReference, IsIgnoredForANetwork) {
  EXPECT_EQ(At(Read("# MHZ S RI R 75\n1 0.5 0\n", Reference::Ignored), 1, 1), 0.5f);
}

TEST(TouchstoneReference, WritesBackOnlyTheParametersOfTheFile) {
  const auto one = Read("# MHZ S RI R 75\n1 0.5 0\n", Reference::ConvertedTo50);
  for (int column = 3; column <= 8; ++column) EXPECT_EQ(At(one, column, 1), 0) << column;
  const auto two = Read("# MHZ S RI R 75\n1 0.5 0 0.25 0\n", Reference::ConvertedTo50);
  EXPECT_NE(At(two, 3, 1), 0.25f);
  for (int column = 5; column <= 8; ++column) EXPECT_EQ(At(two, column, 1), 0) << column;
  const auto three = Read("# MHZ S RI R 75\n1 0.5 0 0.25 0 0.125 0\n", Reference::ConvertedTo50);
  EXPECT_EQ(At(three, 5, 1), 0.125f);
}

}  // namespace
}  // namespace qk
