// SPDX-License-Identifier: MIT
// The sequential comma form: what is written, what is read, what is refused and where.
#include "files/comma_form.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace qk {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

template <class... Items>
std::string Written(const Items&... items) {
  CommaWriter file;
  file.Line(items...);
  return file.Bytes();
}

// Why reading a T from text fails; empty when it does not.
template <class T>
std::string WhyNot(const std::string& text) {
  CommaReader file(text);
  T value{};
  file.Line(value);
  return file.Good() ? "" : file.Why().Text();
}

template <class T>
T Read(const std::string& text) {
  CommaReader file(text);
  T value{};
  file.Line(value);
  EXPECT_TRUE(file.Good()) << text;
  return value;
}

TEST(CommaForm, WritesTextsInQuotesFlagsAsTrueAndFalseAndLinesWithCrLf) {
  EXPECT_EQ(Written(std::string("Kit"), true, false, std::int16_t{-7}, 0.5, 2.5f),
            "\"Kit\",#TRUE#,#FALSE#,-7,0.5,2.5\r\n");
  EXPECT_EQ(Written("calfile02"), "\"calfile02\"\r\n");
  CommaWriter file;
  file.Print("EOF");
  EXPECT_EQ(file.Bytes(), "EOF\r\n");
}

TEST(CommaForm, WritesNumbersInTheShortestFormThatReadsBackTheSame) {
  EXPECT_EQ(Written(0.1, 0.1f, 2.4e-46, 29970000.0), "0.1,0.1,2.4e-46,29970000\r\n");
  EXPECT_EQ(Written(-0.0), "-0\r\n");
}

TEST(CommaForm, WritesWhatIsNotFiniteSoThatTheFileReadsBack) {
  EXPECT_EQ(Written(std::nan(""), kInf, -kInf),
            "0,1.7976931348623157e+308,-1.7976931348623157e+308\r\n");
  EXPECT_EQ(Written(std::numeric_limits<float>::infinity()), "3.4028235e+38\r\n");
}

TEST(CommaForm, ReadsBackEveryBitOfAnyNumber) {
  std::mt19937_64 dice(4);
  for (int i = 0; i < 20000; ++i) {
    const auto bits = dice();
    double wide;
    float narrow;
    std::memcpy(&wide, &bits, sizeof wide);
    std::memcpy(&narrow, &bits, sizeof narrow);
    if (!std::isfinite(wide) || !std::isfinite(narrow)) continue;
    const auto whole = static_cast<std::int16_t>(bits);
    const std::string line = Written(wide, narrow, whole);
    CommaReader file(line);
    double wideRead = 1;
    float narrowRead = 1;
    std::int16_t wholeRead = 1;
    file.Line(wideRead, narrowRead, wholeRead);
    ASSERT_TRUE(file.Good()) << line;
    ASSERT_EQ(std::memcmp(&wide, &wideRead, sizeof wide), 0) << line;
    ASSERT_EQ(std::memcmp(&narrow, &narrowRead, sizeof narrow), 0) << line;
    ASSERT_EQ(whole, wholeRead);
  }
}

TEST(CommaForm, NeverAsksTheLocale) {
  for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "C.UTF-8"}) std::setlocale(LC_ALL, name);
  EXPECT_EQ(Written(1234.5), "1234.5\r\n");
  EXPECT_EQ(Read<double>("1234.5\r\n"), 1234.5);
  std::setlocale(LC_ALL, "C");
}

TEST(CommaForm, DoublesAQuoteInsideATextAndKeepsATextOnItsLine) {
  const std::string text = "3\" line, \xC3\xA4 'x'";
  EXPECT_EQ(Written(text), "\"3\"\" line, \xC3\xA4 'x'\"\r\n");
  EXPECT_EQ(Read<std::string>(Written(text)), text);
  EXPECT_EQ(Written("a\r\nb"), "\"a  b\"\r\n");
  EXPECT_EQ(Read<std::string>("\"\"\r\n"), "");
  EXPECT_EQ(Read<std::string>("\"\"\"\""), "\"");
}

TEST(CommaForm, CutsALongTextBetweenTwoCharacters) {
  std::string text(kMaxText - 1, 'x');
  text += "\xC3\xA4";
  EXPECT_EQ(Read<std::string>(Written(text)), std::string(kMaxText - 1, 'x'));
}

TEST(CommaForm, DoesNotCareWhereLinesEndAndWhetherItemsStandBetweenCommasOrBlanks) {
  for (const char* text : {"1,2.5,\"t\",#TRUE#\r\n", "1\r\n2.5\r\n\"t\"\r\n#TRUE#\r\n",
                           "1 2.5\t\"t\" , #true#", "\n\n1\r2.5\n\"t\",\nTrue\n"}) {
    CommaReader file(text);
    std::int16_t whole = 0;
    double number = 0;
    std::string word;
    bool flag = false;
    file.Line(whole, number, word, flag);
    EXPECT_TRUE(file.Good()) << text;
    EXPECT_EQ(whole, 1);
    EXPECT_EQ(number, 2.5);
    EXPECT_EQ(word, "t");
    EXPECT_TRUE(flag);
    EXPECT_TRUE(file.AtEnd()) << text;
  }
}

TEST(CommaForm, TakesNumbersPlainOrWithAnExponent) {
  EXPECT_EQ(Read<double>("1E+3,"), 1000);
  EXPECT_EQ(Read<double>("+.5,"), 0.5);
  EXPECT_EQ(Read<double>("-2.5e-15,"), -2.5e-15);
  EXPECT_EQ(Read<std::int16_t>("1E2,"), 100);
  EXPECT_EQ(Read<double>("1e-400,"), 0);
  EXPECT_EQ(Read<float>("2.4e-46,"), 0.0f);
}

TEST(CommaForm, RefusesWhatIsNoNumber) {
  EXPECT_EQ(WhyNot<double>("abc\r\n"), "line 1: a number is expected, not 'abc'");
  EXPECT_EQ(WhyNot<double>("1.5x\r\n"), "line 1: a number is expected, not '1.5x'");
  EXPECT_EQ(WhyNot<double>("0x10\r\n"), "line 1: a number is expected, not '0x10'");
  EXPECT_EQ(WhyNot<double>("1;5\r\n"), "line 1: a number is expected, not '1;5'");
  EXPECT_EQ(WhyNot<double>("+-1\r\n"), "line 1: a number is expected, not '+-1'");
  EXPECT_EQ(WhyNot<double>(",1\r\n"), "line 1: a number is expected, not ''");
  EXPECT_EQ(WhyNot<double>("\"1\"\r\n"), "line 1: a number is expected, not '\"1\"'");
}

TEST(CommaForm, RefusesWhatIsNotFiniteOrTooLarge) {
  EXPECT_EQ(WhyNot<double>("nan\r\n"), "line 1: the number 'nan' is out of range");
  EXPECT_EQ(WhyNot<double>("-inf\r\n"), "line 1: the number '-inf' is out of range");
  EXPECT_EQ(WhyNot<double>("1e309\r\n"), "line 1: the number '1e309' is out of range");
  EXPECT_EQ(WhyNot<float>("1e39\r\n"), "line 1: the number '1e39' is out of range");
  EXPECT_EQ(WhyNot<std::int16_t>("32768\r\n"),
            "line 1: a whole number from -32768 to 32767 is expected, not '32768'");
  EXPECT_EQ(WhyNot<std::int16_t>("1.5\r\n"),
            "line 1: a whole number from -32768 to 32767 is expected, not '1.5'");
}

TEST(CommaForm, RefusesFlagsAndTextsThatAreNone) {
  EXPECT_EQ(WhyNot<bool>("#TRUX#\r\n"), "line 1: #TRUE# or #FALSE# is expected, not '#TRUX#'");
  EXPECT_EQ(WhyNot<bool>("1\r\n"), "line 1: #TRUE# or #FALSE# is expected, not '1'");
  EXPECT_EQ(WhyNot<std::string>("abc\r\n"), "line 1: a text in quotes is expected, not 'abc'");
  EXPECT_EQ(WhyNot<std::string>("\"abc\r\n\"\r\n"), "line 1: a text is not closed");
  EXPECT_EQ(WhyNot<std::string>("\"abc"), "line 1: a text is not closed");
  EXPECT_EQ(WhyNot<std::string>("\"abc\"d\r\n"), "line 1: a text is not closed by a comma");
  EXPECT_EQ(WhyNot<std::string>("\"" + std::string(1 << 20, 'x') + "\"\r\n"),
            "line 1: a text is too long");
}

TEST(CommaForm, ShowsAForeignItemShortAndPrintable) {
  EXPECT_EQ(WhyNot<double>(std::string(50, 'y') + "\r\n"),
            "line 1: a number is expected, not '" + std::string(40, 'y') + "...'");
  EXPECT_EQ(WhyNot<double>(std::string("a\0\x1b\xff", 4) + "\r\n"),
            "line 1: a number is expected, not 'a...'");
}

TEST(CommaForm, ReportsTheLineWhateverEndsIt) {
  for (const char* text : {"1\r\n2\r\nx\r\n", "1\n2\nx\n", "1\r2\rx\r"}) {
    CommaReader file(text);
    double a = 0, b = 0, c = 0;
    file.Line(a, b, c);
    EXPECT_EQ(file.Why().Message, "line 3: a number is expected, not 'x'");
  }
}

TEST(CommaForm, ANumberThatTheEndOfTheFileCutsIsNotTaken) {
  EXPECT_EQ(WhyNot<double>("12"), "line 1: the file ends inside a number");
  EXPECT_EQ(WhyNot<double>("1.2e"), "line 1: the file ends inside a number");
  EXPECT_EQ(WhyNot<double>(""), "line 1: the file ends too soon");
  const std::string cut = "1,2";
  CommaReader file(cut);
  double a = 0, b = 5;
  file.Line(a, b);
  EXPECT_TRUE(file.Ended());
  EXPECT_EQ(b, 5);
}

TEST(CommaForm, TheFirstFaultStaysAndWhatFollowsItChangesNothing) {
  const std::string text = "x\r\n5\r\n\"t\"\r\n";
  CommaReader file(text);
  double a = 1, b = 2;
  std::string word = "kept";
  file.Line(a, b, word);
  file.Refuse("another");
  EXPECT_EQ(file.Why().Message, "line 1: a number is expected, not 'x'");
  EXPECT_FALSE(file.Ended());
  EXPECT_EQ(b, 2);
  EXPECT_EQ(word, "kept");
  EXPECT_EQ(file.AnyItem(), "");
}

TEST(CommaForm, TakesATextInQuotesOrBareAndNothingElse) {
  for (const char* text : {"\"EOF\"\r\n7,", "EOF\r\n7,", " EOF \r\n7,"}) {
    CommaReader file(text);
    EXPECT_FALSE(file.Takes("EOX"));
    EXPECT_TRUE(file.Takes("EOF")) << text;
    double seven = 0;
    file.Line(seven);
    EXPECT_EQ(seven, 7);
  }
  CommaReader empty("");
  EXPECT_FALSE(empty.Takes("EOF"));
  EXPECT_TRUE(empty.Good());
}

}  // namespace
}  // namespace qk
