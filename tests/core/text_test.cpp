// SPDX-License-Identifier: MIT
// Number pictures, bare numbers, print zones, and the reading of typed and filed numbers.
#include "core/text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

namespace qk {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kLargest = std::numeric_limits<double>::max();

struct PictureCase {
  double Value;
  const char* Picture;
  const char* Text;
};

TEST(FormatNumber, GivesEveryPictureItsDigits) {
  const PictureCase cases[] = {
      {10, "#0.0#", "10.0"},
      {10.25, "#0.0#", "10.25"},
      {10.256, "#0.0#", "10.26"},
      {0, "#0.0#", "0.0"},
      {0.5, "#0.0#", "0.5"},
      {-3, "#0.0#", "-3.0"},
      {3, "###0.0000", "3.0000"},
      {3080.00005, "###0.0000", "3080.0001"},
      {12345.6, "###0.0000", "12345.6000"},
      {0, "###0.0000", "0.0000"},
      {0.5, "#######.0", ".5"},
      {0, "#######.0", ".0"},
      {-0.5, "#######.0", "-.5"},
      {3000, "#######.0", "3000.0"},
      {123456789, "#######.0", "123456789.0"},
      {0.1, "#######0.0", "0.1"},
      {29970, "#######0.0", "29970.0"},
      {7, "##0", "7"},
      {0, "##0", "0"},
      {255.5, "##0", "256"},
      {147, "0000", "0147"},
      {0, "0000", "0000"},
      {12345, "0000", "12345"},
      {-7, "0000", "-0007"},
      {0.126789, "#0.00###", "0.12679"},
      {0.1, "#0.00###", "0.10"},
      {1.25, "#0.00###", "1.25"},
      {0.00001, "#0.00###", "0.00001"},
      {0.000001, "#0.00###", "0.00"},
      {1.23456, "#0.00##", "1.2346"},
      {5, "#0", "5"},
      {-20, "#0", "-20"},
      {161.667, "##0.000", "161.667"},
      {-5, "#0.000", "-5.000"},
      {1234.5678, "####0.00", "1234.57"},
      {2.5, "###0.00000", "2.50000"},
      {5, "0", "5"},
      {0.4, "0", "0"},
  };
  for (const PictureCase& c : cases) EXPECT_EQ(FormatNumber(c.Value, c.Picture), c.Text);
}

TEST(FormatNumber, GivesExponentsInBothForms) {
  const PictureCase cases[] = {
      {2.5e-15, "#0.0E+00", "2.5E-15"},
      {2.9e-25, "#0.0E+00", "2.9E-25"},
      {-1e-35, "#0.0E+00", "-1.0E-35"},
      {2.4e-46, "#0.0E+00", "2.4E-46"},
      {0, "#0.0E+00", "0.0E+00"},
      {9.96e5, "#0.0E+00", "1.0E+06"},
      {1, "#0.0E+00", "1.0E+00"},
      {1e-100, "#0.0E+00", "1.0E-100"},
      {0.012345678, "0.0000E-00", "1.2346E-02"},
      {12345.678, "0.0000E-00", "1.2346E04"},
      {-1, "0.0000E-00", "-1.0000E00"},
      {0, "0.0000E-00", "0.0000E00"},
      {9.99996, "0.0000E-00", "1.0000E01"},
      {1e300, "0.0000E-00", "1.0000E300"},
  };
  for (const PictureCase& c : cases) EXPECT_EQ(FormatNumber(c.Value, c.Picture), c.Text);
}

TEST(FormatNumber, RoundsHalfAwayFromZero) {
  EXPECT_EQ(FormatNumber(0.125, "#0.00"), "0.13");
  EXPECT_EQ(FormatNumber(-0.125, "#0.00"), "-0.13");
  EXPECT_EQ(FormatNumber(2.5, "#0"), "3");
  EXPECT_EQ(FormatNumber(-2.5, "#0"), "-3");
  EXPECT_EQ(FormatNumber(0.5, "#0"), "1");
  EXPECT_EQ(FormatNumber(0.05, "#0.0"), "0.1");
  EXPECT_EQ(FormatNumber(0.049999, "#0.0"), "0.0");
}

// The binary values lie just below these; what the user typed is what is rounded.
TEST(FormatNumber, RoundsTheDecimalTextOfAValueAndNotItsBinaryExpansion) {
  EXPECT_EQ(FormatNumber(1.005, "#0.00"), "1.01");
  EXPECT_EQ(FormatNumber(2.675, "#0.00"), "2.68");
  EXPECT_EQ(FormatNumber(0.285, "#0.00"), "0.29");
}

TEST(FormatNumber, CarriesThroughAllNines) {
  EXPECT_EQ(FormatNumber(99.995, "#0.00"), "100.00");
  EXPECT_EQ(FormatNumber(-9.96, "#0.0"), "-10.0");
  EXPECT_EQ(FormatNumber(0.999, "#######.0"), "1.0");
}

TEST(FormatNumber, HasNoMinusSignOnAResultOfZero) {
  EXPECT_EQ(FormatNumber(-0.004, "#0.00"), "0.00");
  EXPECT_EQ(FormatNumber(-0.0, "#0.0#"), "0.0");
  EXPECT_EQ(FormatNumber(-1e-300, "#0"), "0");
  EXPECT_EQ(FormatNumber(-0.006, "#0.00"), "-0.01");
}

TEST(FormatNumber, PrintsHugeValuesInFull) {
  EXPECT_EQ(FormatNumber(1e22, "#0.0"), "10000000000000000000000.0");
  EXPECT_EQ(FormatNumber(kLargest, "#0").size(), 309u);
  EXPECT_EQ(FormatNumber(-1.5e15, "#0.00"), "-1500000000000000.00");
}

TEST(FormatNumber, PrintsWhatIsNotFiniteAsZeroInThePicture) {
  for (const double value : {kNan, kInfinity, -kInfinity}) {
    EXPECT_EQ(FormatNumber(value, "#0.00"), "0.00");
    EXPECT_EQ(FormatNumber(value, "0.0000E-00"), "0.0000E00");
    EXPECT_EQ(FormatNumber(value, "0000"), "0000");
  }
}

// Never further from the value than half a unit of the last place.
TEST(FormatNumber, ReadsBackToWithinHalfOfItsLastPlace) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> exponent(-6, 9), sign(-1, 1);
  for (int i = 0; i < 20000; ++i) {
    const double value = std::copysign(std::pow(10, exponent(random)), sign(random));
    double back = 0;
    ASSERT_TRUE(ParseNumber(FormatNumber(value, "#0.0000"), back));
    const double bits = 2.3e-16 * std::fabs(value);  // of the value and of what is read back
    ASSERT_NEAR(back, value, 0.5e-4 + bits);
    ASSERT_TRUE(ParseNumber(FormatNumber(value, "0.0000E-00"), back));
    ASSERT_NEAR(back, value, 0.5e-4 * std::fabs(value) + bits);
  }
}

TEST(Texts, NeverAskTheLocale) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "de_DE", "C.UTF-8"})
    if (std::setlocale(LC_ALL, name) != nullptr) break;
  EXPECT_EQ(FormatNumber(1234.5, "#0.00"), "1234.50");
  EXPECT_EQ(PlainNumber(0.5), "0.5");
  EXPECT_EQ(Val("1.5"), 1.5);
  EXPECT_EQ(Val("1,5"), 1);
  std::setlocale(LC_ALL, before.c_str());
}

TEST(PlainNumber, IsPlainInTheRangeOfEverydayAndElseHasAnExponent) {
  EXPECT_EQ(PlainNumber(0.0), "0");
  EXPECT_EQ(PlainNumber(-0.0), "0");
  EXPECT_EQ(PlainNumber(3e6), "3000000");
  EXPECT_EQ(PlainNumber(100.0), "100");
  EXPECT_EQ(PlainNumber(-0.25), "-0.25");
  EXPECT_EQ(PlainNumber(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(PlainNumber(0.00001), "0.00001");
  EXPECT_EQ(PlainNumber(0.000009), "9E-06");
  EXPECT_EQ(PlainNumber(-1e-11), "-1E-11");
  EXPECT_EQ(PlainNumber(2.5e-15), "2.5E-15");
  EXPECT_EQ(PlainNumber(999999999999999.0), "999999999999999");
  EXPECT_EQ(PlainNumber(1e15), "1E+15");
  EXPECT_EQ(PlainNumber(kLargest), "1.7976931348623157E+308");
  EXPECT_EQ(PlainNumber(std::numeric_limits<double>::denorm_min()), "5E-324");
}

TEST(PlainNumber, OfA32BitValueHasTheDigitsOf32Bits) {
  EXPECT_EQ(PlainNumber(0.1f), "0.1");
  EXPECT_EQ(PlainNumber(161.667f), "161.667");
  EXPECT_EQ(PlainNumber(3.08e9f), "3080000000");
  EXPECT_EQ(PlainNumber(-1.5e-12f), "-1.5E-12");
}

TEST(PlainNumber, OfWhatIsNotFiniteIsZero) {
  for (const double value : {kNan, kInfinity, -kInfinity}) EXPECT_EQ(PlainNumber(value), "0");
}

TEST(PlainNumber, ReadsBackTheSameWhateverTheBits) {
  std::mt19937_64 random(2);
  for (int i = 0; i < 50000; ++i) {
    const std::uint64_t bits = random();
    double value;
    std::memcpy(&value, &bits, sizeof value);
    if (!std::isfinite(value)) continue;
    double back = -1;
    ASSERT_TRUE(ParseNumber(PlainNumber(value), back)) << PlainNumber(value);
    ASSERT_EQ(back, value) << PlainNumber(value);
    ASSERT_EQ(Val(PlainNumber(value)), value);
  }
}

TEST(PlainNumber, OfA32BitValueReadsBackTheSameWhateverTheBits) {
  std::mt19937 random(3);
  for (int i = 0; i < 50000; ++i) {
    const std::uint32_t bits = static_cast<std::uint32_t>(random());
    float value;
    std::memcpy(&value, &bits, sizeof value);
    if (!std::isfinite(value)) continue;
    double back = -1;
    ASSERT_TRUE(ParseNumber(PlainNumber(value), back));
    ASSERT_EQ(static_cast<float>(back), value) << PlainNumber(value);
  }
}

TEST(WholeNumberText, HasALeadingBlankWhenNotNegative) {
  EXPECT_EQ(WholeNumberText(1), " 1");
  EXPECT_EQ(WholeNumberText(0), " 0");
  EXPECT_EQ(WholeNumberText(-3), "-3");
  EXPECT_EQ(WholeNumberText(1234567), " 1234567");
}

TEST(Val, ReadsTheNumberThatATypedTextBeginsWith) {
  EXPECT_EQ(Val("3"), 3);
  EXPECT_EQ(Val("  3.5 MHz"), 3.5);
  EXPECT_EQ(Val("\t7"), 7);
  EXPECT_EQ(Val("-12.25"), -12.25);
  EXPECT_EQ(Val("+4"), 4);
  EXPECT_EQ(Val(".5"), 0.5);
  EXPECT_EQ(Val("5."), 5);
  EXPECT_EQ(Val("-.5e2x"), -50);
  EXPECT_EQ(Val("1E3"), 1000);
  EXPECT_EQ(Val("1e+3"), 1000);
  EXPECT_EQ(Val("2.5E-15"), 2.5e-15);
  EXPECT_EQ(Val("007"), 7);
}

TEST(Val, StopsAtAComma) {
  EXPECT_EQ(Val("3,5"), 3);
  EXPECT_EQ(Val("1,000"), 1);
}

TEST(Val, TakesAnIncompleteExponentForTheEndOfTheNumber) {
  EXPECT_EQ(Val("1e"), 1);
  EXPECT_EQ(Val("1e+"), 1);
  EXPECT_EQ(Val("2ex"), 2);
  EXPECT_EQ(Val("1.2.3"), 1.2);
  EXPECT_EQ(Val("1-2"), 1);
}

TEST(Val, IsZeroWhereNoNumberBegins) {
  for (const char* text : {"", " ", "abc", "-", "+", ".", "-.", "e5", ".e5", "nan", "inf",
                           "-infinity", "--3", "+-3", "- 3", "0x10", "&H10", "$5", ",5"})
    EXPECT_EQ(Val(text), 0) << text;
}

TEST(Val, EndsAtTheLargestDoubleAndNeverAtInfinity) {
  EXPECT_EQ(Val("1e999"), kLargest);
  EXPECT_EQ(Val("-1e999"), -kLargest);
  EXPECT_EQ(Val("1e99999999999999999999999"), kLargest);
  EXPECT_EQ(Val(std::string(400, '9')), kLargest);
  EXPECT_EQ(Val(std::string(400, '9') + ".5"), kLargest);
  EXPECT_EQ(Val("0." + std::string(50, '0') + "1e999"), kLargest);
}

TEST(Val, OfWhatIsTooSmallForADoubleIsZero) {
  EXPECT_EQ(Val("1e-999"), 0);
  EXPECT_EQ(Val("-1e-999"), 0);
  EXPECT_EQ(Val("1e-99999999999999999999999"), 0);
  EXPECT_EQ(Val("0." + std::string(400, '0') + "1"), 0);
  EXPECT_EQ(Val("0e999"), 0);
  EXPECT_EQ(Val("0e99999999999999999999999"), 0);
}

TEST(Val, AgreesWithTheStrictReaderOnWhateverThatAccepts) {
  std::mt19937 random(4);
  const std::string_view letters = "0123456789.+-eE, x";
  std::uniform_int_distribution<std::size_t> length(0, 9), letter(0, letters.size() - 1);
  int accepted = 0;
  for (int i = 0; i < 200000; ++i) {
    std::string text;
    for (std::size_t n = length(random); n > 0; --n) text += letters[letter(random)];
    const double lenient = Val(text);
    ASSERT_TRUE(std::isfinite(lenient)) << text;
    double strict = 0;
    if (!ParseNumber(text, strict)) continue;
    ++accepted;
    ASSERT_EQ(lenient, strict) << text;
  }
  EXPECT_GT(accepted, 1000);
}

TEST(ParseNumber, ReadsAWholeTextAsOneNumber) {
  const std::pair<const char*, double> cases[] = {{"0", 0},
                                                  {"3", 3},
                                                  {"-3", -3},
                                                  {"+3", 3},
                                                  {"1.5", 1.5},
                                                  {".5", 0.5},
                                                  {"5.", 5},
                                                  {"1E-11", 1e-11},
                                                  {"1e+15", 1e15},
                                                  {" 7", 7},
                                                  {"7 ", 7},
                                                  {"\t7\t", 7},
                                                  {"-2.4E-46", -2.4e-46},
                                                  {"1e-999", 0}};
  for (const auto& [text, value] : cases) {
    double out = -99;
    EXPECT_TRUE(ParseNumber(text, out)) << text;
    EXPECT_EQ(out, value) << text;
  }
}

TEST(ParseNumber, RefusesAnythingElseAndLeavesTheValue) {
  for (const char* text :
       {"",    " ",   "x",   "3x",   "3,5",   "1 2",    "1e",     "1e+",   ".",   "-",
        "--1", "nan", "inf", "0x10", "1e999", "-1e999", "#TRUE#", "\"3\"", "3\n", "1.2.3"}) {
    double out = -99;
    EXPECT_FALSE(ParseNumber(text, out)) << text;
    EXPECT_EQ(out, -99) << text;
  }
}

TEST(NextZone, BeginsAtTheNextMultipleOf14) {
  EXPECT_EQ(NextZone("a", "b"), "a             b");
  EXPECT_EQ(NextZone("1234567890123", "b"), "1234567890123 b");
}

TEST(NextZone, MovesAZoneFurtherAfterAFieldLongerThan13) {
  EXPECT_EQ(NextZone("12345678901234", "b"), "12345678901234" + std::string(14, ' ') + "b");
  EXPECT_EQ(NextZone("123456789012345", "b"), "123456789012345" + std::string(13, ' ') + "b");
}

TEST(NextZone, TakesTheFirstItemOfALineAtItsFirstColumn) {
  EXPECT_EQ(NextZone("", "a"), "a");
  EXPECT_EQ(NextZone(NextZone(NextZone("", "a"), "b"), " "), "a             b              ");
}

TEST(Trimmed, TakesOffBlanksAndTabsAround) {
  EXPECT_EQ(Trimmed(" \t a b \t"), "a b");
  EXPECT_EQ(Trimmed("a"), "a");
  EXPECT_EQ(Trimmed(" \t"), "");
  EXPECT_EQ(Trimmed(""), "");
}

}  // namespace
}  // namespace qk
