// SPDX-License-Identifier: MIT
#include "core/quantity_text.h"

#include <gtest/gtest.h>

#include <cmath>

namespace qk {
namespace {

TEST(ReadOut, TakesThePrefixThatFitsTheValue) {
  EXPECT_EQ(ReadOut(4700, Unit::Ohm), "4.700 kohm");
  EXPECT_EQ(ReadOut(0.01, Unit::Kilohm), "10.000 ohm");
  EXPECT_EQ(ReadOut(-0.02, Unit::Ohm), "-20.000 mohm");
  EXPECT_EQ(ReadOut(2.5e6, Unit::Ohm), "2.500 Mohm");
  EXPECT_EQ(ReadOut(10, Unit::PicoFarad), "10.000 pF");
  EXPECT_EQ(ReadOut(0.012, Unit::PicoFarad), "0.012 pF");
  EXPECT_EQ(ReadOut(4.7e6, Unit::PicoFarad), "4.700 uF");
  EXPECT_EQ(ReadOut(100, Unit::NanoHenry), "100.000 nH");
  EXPECT_EQ(ReadOut(0, Unit::MicroHenry), "0.000 uH");
}

TEST(ReadOut, RoundsIntoTheNextPrefix) {
  EXPECT_EQ(ReadOut(999.9996, Unit::Ohm), "1.000 kohm");
  EXPECT_EQ(ReadOut(999.9994, Unit::Ohm), "999.999 ohm");
}

TEST(ReadOut, ChangesNoUnitWithoutPrefixes) {
  EXPECT_EQ(ReadOut(-3.0124, Unit::Db), "-3.012 dB");
  EXPECT_EQ(ReadOut(4700, Unit::MilliU), "4700.000 mU");
  EXPECT_EQ(ReadOut(0.001, Unit::Us), "0.001 us");
}

TEST(ReadOut, SaysThatThereIsNoValue) {
  EXPECT_EQ(ReadOut(std::nan(""), Unit::Ohm), "---");
  EXPECT_EQ(ReadOut(HUGE_VAL, Unit::PicoFarad), "---");
}

TEST(TypedIn, TakesUnitsAndPrefixesBehindTheNumber) {
  const auto expect = [](Unit unit, const char* text, double value) {
    const auto typed = TypedIn(unit, text);
    ASSERT_TRUE(typed.has_value()) << text;
    EXPECT_NEAR(*typed, value, 1e-12 * std::fabs(value)) << text;
  };
  expect(Unit::Ohm, "50", 50);
  expect(Unit::Ohm, " 4.7 kohm ", 4700);
  expect(Unit::Ohm, "4.7k", 4700);
  expect(Unit::Ohm, "10 mohm", 0.01);
  expect(Unit::Ohm, "10 Mohm", 1e7);
  expect(Unit::Kilohm, "75 ohms", 0.075);
  expect(Unit::Kilohm, "75\xCE\xA9", 0.075);
  expect(Unit::PicoFarad, "10p", 10);
  expect(Unit::PicoFarad, "-1.5e-3 nF", -1.5);
  expect(Unit::PicoFarad, "1e-12F", 1);
  expect(Unit::NanoHenry, "4.7 uH", 4700);
  expect(Unit::NanoHenry, "4.7 \xC2\xB5H", 4700);
}

TEST(TypedIn, LeavesNoResidueOfTheConversion) {
  EXPECT_EQ(TypedIn(Unit::PicoFarad, "4.7 nF"), 4700);
  EXPECT_EQ(TypedIn(Unit::NanoHenry, "1u"), 1000);
  EXPECT_EQ(TypedIn(Unit::NanoHenry, "1 H"), 1e9);
  EXPECT_EQ(TypedIn(Unit::PicoFarad, "0.1p"), 0.1);
}

TEST(TypedIn, RefusesWhatIsNoQuantityOfTheUnit) {
  for (const char* text : {"", "ohm", "10 nH", "1,5", "10 pp", "1 2", "nan", "10 kk", "0x10"})
    EXPECT_FALSE(TypedIn(Unit::Ohm, text).has_value()) << text;
  EXPECT_FALSE(TypedIn(Unit::PicoFarad, "10 ohm").has_value());
}

TEST(TypedIn, ReadsTheOtherUnitsAsEver) {
  EXPECT_EQ(TypedIn(Unit::Db, "3,5"), 3);
  EXPECT_EQ(TypedIn(Unit::MilliU, "7 U"), 7);
  EXPECT_EQ(TypedIn(Unit::Deg, ""), 0);
}

}  // namespace
}  // namespace qk
