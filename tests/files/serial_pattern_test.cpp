// SPDX-License-Identifier: MIT
// Serial numbers of a batch.
#include "files/serial_pattern.h"

#include <gtest/gtest.h>

namespace qk {
namespace {

TEST(SerialPattern, TakesDigitsAnyCharacterAndAnyNumberOfThem) {
  EXPECT_TRUE(FitsPattern("A0001", "A####"));
  EXPECT_FALSE(FitsPattern("A001", "A####"));
  EXPECT_FALSE(FitsPattern("A00011", "A####"));
  EXPECT_FALSE(FitsPattern("B0001", "A####"));
  EXPECT_FALSE(FitsPattern("A00x1", "A####"));
  EXPECT_TRUE(FitsPattern("Xy-7", "?y-#"));
  EXPECT_TRUE(FitsPattern("aXbXXc", "a*b*c"));
  EXPECT_TRUE(FitsPattern("abc", "a*b*c"));
  EXPECT_FALSE(FitsPattern("abcd", "a*b*c"));
  EXPECT_TRUE(FitsPattern("ab12", "*##"));
  EXPECT_FALSE(FitsPattern("ab1", "*##"));
  EXPECT_TRUE(FitsPattern("anything", ""));
  EXPECT_TRUE(FitsPattern("", "*"));
}

TEST(SerialPattern, ASerialMustNameAFile) {
  for (const char* serial : {"A0001", "7", "a.b_c-d"})
    EXPECT_TRUE(CheckSerial(serial, "").Ok()) << serial;
  for (const char* serial : {"../x", "a/b", ".hidden", "-x", "a b", "\xC3\xA4"})
    EXPECT_FALSE(CheckSerial(serial, "").Ok()) << serial;
  EXPECT_FALSE(CheckSerial(std::string(65, 'a'), "").Ok());
  EXPECT_EQ(CheckSerial("", "").Why().Text(), "the serial is empty");
  EXPECT_EQ(CheckSerial("B1", "A#").Why().Text(), "the serial \"B1\" does not fit the pattern A#");
  EXPECT_EQ(CheckSerial("a/b", "").Why().Text(),
            "the serial \"a/b\" cannot be a file name: use up to 64 letters, digits, \".\", \"_\" "
            "and \"-\", beginning with a letter or digit");
}

TEST(SerialPattern, TheNextSerialCountsInItsDigits) {
  EXPECT_EQ(NextSerial("A####", ""), "A0001");
  EXPECT_EQ(NextSerial("A####", "A0009"), "A0010");
  EXPECT_EQ(NextSerial("A##-x", "A42-x"), "A43-x");
  EXPECT_EQ(NextSerial("A##", "Z42"), "A01");  // not of the pattern: from the first on
  EXPECT_FALSE(NextSerial("A##", "A99"));
  EXPECT_FALSE(NextSerial("", "7"));
  EXPECT_FALSE(NextSerial("A##*", "A01"));
  EXPECT_FALSE(NextSerial("#-#", "1-1"));
}

}  // namespace
}  // namespace qk
