// SPDX-License-Identifier: MIT
// Touchstone files of version 2: ours, and those of other programs.
#include "files/touchstone2.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "files/touchstone2_text.h"

namespace qk {
namespace {

constexpr const char* kPlain =
    "! a remark\n[Version] 2.0\n# HZ S RI R 50\n[Number of Ports] 2\n"
    "[Two-Port Data Order] 21_12\n[Number of Frequencies] 2\n[Reference] 50 50\n"
    "[Network Data]\n1000000 .11 -.11 .21 -.21 .12 -.12 .22 -.22\n"
    "2000000 .11 -.11 .21 -.21 .12 -.12 .22 -.22\n[End]\n";

// The text with a part of it replaced.
std::string With(std::string text, std::string_view part, std::string_view other) {
  const std::size_t at = text.find(part);
  if (at == std::string::npos) throw std::runtime_error("no such part");
  return text.replace(at, part.size(), other);
}

std::string Why(const std::string& text) {
  const Result<TouchstoneTable> table = ReadTouchstone(text, Reference::Ignored);
  return table.Ok() ? "" : table.Why().Text();
}

// S11, S21, S12, S22 of a row, real parts.
std::array<float, 4> Re(const TouchstoneTable& table, std::size_t row) {
  return {table.FileTable[1][row], table.FileTable[3][row], table.FileTable[5][row],
          table.FileTable[7][row]};
}

void ExpectThePlainTable(const std::string& text) {
  const Result<TouchstoneTable> table = ReadTouchstone(text, Reference::ConvertedTo50);
  ASSERT_TRUE(table.Ok()) << table.Why().Text() << "\n" << text;
  EXPECT_EQ(table->Rows, 2);
  EXPECT_EQ(table->Kind(), FileKind::AllFour);
  EXPECT_EQ(table->FileTable[0][2], 2e6f);
  for (std::size_t row = 1; row <= 2; ++row) {
    EXPECT_EQ(Re(*table, row), (std::array{.11f, .21f, .12f, .22f}));
    EXPECT_EQ(table->FileTable[8][row], -.22f);
  }
}

TEST(Touchstone2, APlainFileIsRead) {
  ExpectThePlainTable(kPlain);
}

TEST(Touchstone2, KeywordsMayBeInAnyCase) {
  std::string text = kPlain;
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  ExpectThePlainTable(text);
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  ExpectThePlainTable(text);
  ExpectThePlainTable(With(kPlain, "[Number of Ports]", "[ number  of\tPorts ]"));
}

TEST(Touchstone2, ArgumentsMayStandOnTheNextLines) {
  ExpectThePlainTable(With(kPlain, "[Reference] 50 50", "[Reference]\n! both\n50\n50 ! ohms"));
  ExpectThePlainTable(With(kPlain, "[Number of Ports] 2", "[Number of Ports]\n2"));
  ExpectThePlainTable(
      With(kPlain, "[Two-Port Data Order] 21_12", "[Two-Port Data Order]\n\n21_12"));
}

TEST(Touchstone2, TheOrder12Before21IsTaken) {
  const std::string text = With(With(kPlain, "21_12", "12_21"),
                                "1000000 .11 -.11 .21 -.21 .12 -.12 .22 -.22\n"
                                "2000000 .11 -.11 .21 -.21 .12 -.12 .22 -.22",
                                "1000000 .11 -.11 .12 -.12 .21 -.21 .22 -.22\n"
                                "2000000 .11 -.11 .12 -.12 .21 -.21 .22 -.22");
  ExpectThePlainTable(text);
}

TEST(Touchstone2, ARecordMayGoOnOverLines) {
  ExpectThePlainTable(With(kPlain, "1000000 .11 -.11 .21 -.21 .12 -.12 .22 -.22",
                           "1000000 .11 -.11 .21 -.21 ! port 1\n  .12 -.12\n\t.22\n -.22"));
}

TEST(Touchstone2, LowerAndUpperMatricesAreSymmetric) {
  const auto read = [](const char* word) {
    const std::string text = With(
        With(With(kPlain, "[Reference]", std::string("[Matrix Format] ") + word + "\n[Reference]"),
             "1000000 .11 -.11 .21 -.21 .12 -.12 .22 -.22", "1000000 .11 -.11 .5 -.6 .22 -.22"),
        "2000000 .11 -.11 .21 -.21 .12 -.12 .22 -.22", "2000000 .11 -.11 .5 -.6 .22 -.22");
    return ReadTouchstone(text, Reference::Ignored);
  };
  for (const char* word : {"Lower", "UPPER"}) {
    const auto table = read(word);
    ASSERT_TRUE(table.Ok()) << table.Why().Text();
    EXPECT_EQ(Re(*table, 1), (std::array{.11f, .5f, .5f, .22f}));
    EXPECT_EQ(table->FileTable[4][2], -.6f);
    EXPECT_EQ(table->FileTable[6][2], -.6f);
  }
}

TEST(Touchstone2, InformationAndNoiseArePassedOver) {
  ExpectThePlainTable(
      With(With(With(kPlain, "[Network Data]",
                     "[Begin Information]\nanything [x] at all\n[Manufacturer] Nobody\n"
                     "[End Information]\n[Number of Noise Frequencies] 1\n[Network Data]"),
                "[End]", "[Noise Data]\n1 2 3 4 5\nnot a number\n[End]"),
           "! a remark", "a remark without its mark"));
}

TEST(Touchstone2, TheOptionLineMayBeInAnyOrderAndWithoutMostOfIt) {
  ExpectThePlainTable(With(kPlain, "# HZ S RI R 50", "# R 50 RI HZ"));
  const std::string bare =
      With(With(With(kPlain, "# HZ S RI R 50", "#"), "1000000 .11 -.11", "1 2 90"), "2000000", "2");
  const auto table = ReadTouchstone(bare, Reference::Ignored);
  ASSERT_TRUE(table.Ok()) << table.Why().Text();
  EXPECT_EQ(table->FileTable[0][1], 1e9f);  // GHz
  EXPECT_NEAR(table->FileTable[1][1], 0, 1e-6);
  EXPECT_NEAR(table->FileTable[2][1], 2, 1e-6);  // magnitude and angle
}

TEST(Touchstone2, AOnePortFileIsS11) {
  const auto table = ReadTouchstone(
      "[version] 2.0\n# mhz s db r 50\n[number of ports] 1\n[number of frequencies] 1\n"
      "[network data]\n10 -20 0\n",
      Reference::Ignored);
  ASSERT_TRUE(table.Ok()) << table.Why().Text();
  EXPECT_EQ(table->Kind(), FileKind::OneParameter);
  EXPECT_EQ(table->FileTable[0][1], 1e7f);
  EXPECT_NEAR(table->FileTable[1][1], 0.1, 1e-7);
}

// A reflection of 0 at 75 ohms is one of 0.2 at 50; [Reference] counts before the option line.
TEST(Touchstone2, AnyReferenceIsConvertedForTheMemory) {
  const std::string text =
      "[Version] 2.0\n# HZ S RI R 50\n[Number of Ports] 1\n[Number of Frequencies] 1\n"
      "[Reference]\n75\n[Network Data]\n1e6 0 0\n[End]\n";
  const auto at50 = ReadTouchstone(text, Reference::ConvertedTo50);
  ASSERT_TRUE(at50.Ok()) << at50.Why().Text();
  EXPECT_NEAR(at50->FileTable[1][1], 0.2, 1e-6);
  EXPECT_EQ(ReadTouchstone(text, Reference::Ignored)->FileTable[1][1], 0);
  const auto at1 = ReadTouchstone(With(text, "75", "450"), Reference::ConvertedTo50);
  EXPECT_NEAR(at1->FileTable[1][1], 0.8, 1e-6);
}

TEST(Touchstone2, WhatIsNotReadIsRefusedWithItsLine) {
  const auto why = [](std::string_view part, std::string_view other) {
    return Why(With(kPlain, part, other));
  };
  EXPECT_EQ(why("Ports] 2", "Ports] 4"),
            "line 4: a file of 4 ports, only files of one or two ports are read");
  EXPECT_EQ(why("Ports] 2", "Ports] two"), "line 4: [Number of Ports] takes a whole number");
  EXPECT_EQ(why("[Reference] 50 50", "[Reference] 50 75"),
            "line 7: the references of the ports differ, only equal ones are read");
  EXPECT_EQ(why("[Reference] 50 50", "[Reference]\n0\n0"),
            "line 7: a reference is not a positive resistance");
  EXPECT_EQ(why("[Reference] 50 50", "[Reference] 50"),
            "line 7: [Reference] takes a resistance for each port");
  EXPECT_EQ(why("[Reference] 50 50", "[Reference] 50 x"), "line 7: \"x\" is not a number");
  EXPECT_EQ(why("[Reference] 50 50", "[Mixed-Mode Order] D1,2 C1,2"),
            "line 7: mixed-mode parameters are not read, only S parameters of single ports");
  EXPECT_EQ(why("[Reference] 50 50", "[Temperature] 20"),
            "line 7: unknown keyword \"[temperature]\"");
  EXPECT_EQ(why("[Reference] 50 50", "Reference 50 50"),
            "line 6: [Number of Frequencies] takes a whole number");
  for (const char* letter : {"Y", "Z", "G", "H"})
    EXPECT_EQ(
        why("HZ S", std::string("HZ ") + letter),
        std::string("line 3: these are ") + letter + " parameters, only S parameters are read");
  EXPECT_EQ(why("R 50\n", "R fifty\n"), "line 3: the resistance is not a positive number");
  EXPECT_EQ(why("RI R", "RX R"), "line 3: \"rx\" is not an option");
  EXPECT_EQ(why("[Number of Ports]", "# GHZ\n[Number of Ports]"), "line 4: a second option line");
  EXPECT_EQ(why("2.0", "3.0"), "line 2: only versions 1, 2.0 and 2.1 are read");
  EXPECT_EQ(why("21_12", "11_22"), "line 5: [Two-Port Data Order] is 12_21 or 21_12");
  EXPECT_EQ(why("[Two-Port Data Order] 21_12\n", ""), "line 7: [Two-Port Data Order] is missing");
  EXPECT_EQ(why("[Number of Ports] 2\n", ""), "line 7: [Number of Ports] is missing");
  EXPECT_EQ(why("[Number of Frequencies] 2\n", ""), "line 7: [Number of Frequencies] is missing");
  EXPECT_EQ(why("# HZ S RI R 50\n", ""), "line 7: the option line (# GHZ S MA R 50) is missing");
  EXPECT_EQ(why("Frequencies] 2", "Frequencies] 1001"), "line 6: more than 1000 frequencies");
  EXPECT_EQ(why("Frequencies] 2", "Frequencies] 1"),
            "line 10: more records than [Number of Frequencies] 1");
  EXPECT_EQ(why("Frequencies] 2", "Frequencies] 3"),
            "line 11: 2 records, [Number of Frequencies] says 3");
  EXPECT_EQ(why("2000000", "1000000"), "line 10: the frequency is not above the one before it");
  EXPECT_EQ(why("1000000", "-1"), "line 9: the frequency is below 0");
  EXPECT_EQ(why("-.22\n2000000", "-.22 7\n2000000"), "line 9: more values than a record has");
  EXPECT_EQ(why("-.22\n[End]", "\n[End]"), "line 11: a record is cut short");
  EXPECT_EQ(why("-.22\n[End]\n", ""), "line 10: the file ends within a record");
  EXPECT_EQ(why(".21", "nan"), "line 9: \"nan\" is not a number");
  EXPECT_EQ(why(".21", "1e60"), "line 9: \"1e60\" is too large");
  EXPECT_EQ(why("[End]", "[Reference] 50 50"),
            "line 11: \"[Reference] 50 50\" cannot follow the data");
  EXPECT_EQ(why("[Network Data]\n", "[Begin Information]\n"),
            "line 8: [Begin Information] without [End Information]");
  EXPECT_EQ(Why("[Version] 2.0\n# HZ S RI R 50\n"), "no [Network Data]");
}

// A later version of the form may give a port a complex reference, or the option line one for each
// port.
TEST(Touchstone2, OfVersion2Point1WhatVersion2KnowsIsRead) {
  const std::string later = With(kPlain, "2.0", "2.1");
  const auto table = ReadTouchstone(later, Reference::ConvertedTo50);
  const auto plain = ReadTouchstone(kPlain, Reference::ConvertedTo50);
  ASSERT_TRUE(table.Ok() && plain.Ok());
  EXPECT_EQ(table->FileTable, plain->FileTable);
  const auto why = [&](std::string_view part, std::string_view other) {
    return Why(With(later, part, other));
  };
  EXPECT_EQ(why("[Reference] 50 50", "[Reference] (50,1) (50,1)"),
            "line 7: \"(50,1)\" is not a number");
  EXPECT_EQ(why("[Reference] 50 50", "[Reference] 50 1 50 1"),
            "line 7: [Reference] takes a resistance for each port");
  EXPECT_EQ(why("R 50\n", "R 50 50\n"), "line 3: \"50\" is not an option");
  EXPECT_EQ(why("[Reference] 50 50", "[Port Names] a b"),
            "line 7: unknown keyword \"[port names]\"");
}

// Cut anywhere, a file is refused or gives whole records: nothing is made up.
TEST(Touchstone2, AFileThatIsCutNeverGivesATableOfFewerRecords) {
  const std::string text = kPlain;
  for (std::size_t length = 0; length < text.size(); ++length) {
    const auto table = ReadTouchstone(text.substr(0, length), Reference::ConvertedTo50);
    if (table) {
      EXPECT_EQ(table->Rows, 2) << length;
    }
  }
}

// ---- written
// -------------------------------------------------------------------------------------

TEST(Touchstone2Text, ComesBackWithEveryDigitThat32BitsHold) {
  const auto session = MakeSession();
  session->Plan.NumPoints = 51;
  for (int i = 0; i < 51; ++i)
    for (const Parameter p : {Parameter::S11, Parameter::S21, Parameter::S12, Parameter::S22})
      ArrayOf(session->Data, p).Set(i, {1.0 / (3 + i + 100 * static_cast<int>(p)), -2.0 / (7 + i)});
  MeasurementChoice choice;
  choice.Parameters.fill(true);
  const auto text =
      Touchstone2Text(*session, choice, "A comment\nof two lines", {{"Averages", "16"}});
  ASSERT_TRUE(text.Ok());
  EXPECT_TRUE(text->starts_with(
      "! A comment of two lines\r\n! Averages: 16\r\n[Version] 2.0\r\n# HZ S RI R 50\r\n"
      "[Number of Ports] 2\r\n[Two-Port Data Order] 21_12\r\n[Number of Frequencies] 51\r\n"
      "[Reference] 50 50\r\n[Network Data]\r\n3000000 "));
  EXPECT_TRUE(text->ends_with("\r\n[End]\r\n"));
  const auto table = ReadTouchstone(*text, Reference::ConvertedTo50);
  ASSERT_TRUE(table.Ok()) << table.Why().Text();
  ASSERT_EQ(table->Rows, 51);
  EXPECT_EQ(table->FileTable[3][51], static_cast<float>(1.0 / (3 + 50 + 100)));
  EXPECT_EQ(table->FileTable[5][1], static_cast<float>(1.0 / 203));
}

TEST(Touchstone2Text, HoldsWholePortsOnly) {
  const auto session = MakeSession();
  const auto text = [&](std::array<bool, 4> parameters) {
    MeasurementChoice choice;
    choice.Parameters = parameters;
    return Touchstone2Text(*session, choice, " ", {});
  };
  const auto s22 = text({false, false, false, true});
  ASSERT_TRUE(s22.Ok());
  EXPECT_TRUE(s22->starts_with("! Port 2 of the instrument\r\n[Version] 2.0\r\n"));
  EXPECT_NE(s22->find("[Number of Ports] 1\r\n[Number of Frequencies] 101\r\n[Network Data]\r\n"),
            std::string::npos);
  EXPECT_TRUE(ReadTouchstone(*s22, Reference::Ignored).Ok());
  constexpr const char* kWhy =
      "a file of version 2 holds all parameters of its ports: choose S11 alone, S22 alone or all "
      "four";
  for (const std::array<bool, 4> parameters :
       {std::array{true, true, false, false}, std::array{false, true, false, false},
        std::array{false, false, false, false}}) {
    const auto refused = text(parameters);
    ASSERT_FALSE(refused.Ok());
    EXPECT_EQ(refused.Why().Text(), kWhy);
  }
}

TEST(Touchstone2Text, NamesTheSystemImpedance) {
  const auto session = MakeSession();
  session->Impedance.SystemZo = 62.5f;
  MeasurementChoice choice;
  choice.Parameters.fill(true);
  const auto text = Touchstone2Text(*session, choice, "", {});
  EXPECT_NE(text->find("# HZ S RI R 62.5\r\n"), std::string::npos);
  EXPECT_NE(text->find("[Reference] 62.5 62.5\r\n"), std::string::npos);
}

}  // namespace
}  // namespace qk
