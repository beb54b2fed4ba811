// SPDX-License-Identifier: MIT
#include "files/eeprom_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace qk::test {
namespace {

EepromImage Random() {
  EepromImage image;
  std::mt19937 random(3);
  for (auto& byte : image) byte = static_cast<std::uint8_t>(random());
  return image;
}

TEST(EepromText, HoldsEightNumbersALine) {
  EepromImage image{};
  for (std::size_t i = 0; i < 9; ++i) image[i] = static_cast<std::uint8_t>(i * 31);
  const std::string text = EepromText(image);
  EXPECT_TRUE(text.starts_with(" 0  31  62  93  124  155  186  217 \r\n 248  0 "))
      << text.substr(0, 60);
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 4096);
}

TEST(EepromText, ComesBackAsItWas) {
  const EepromImage image = Random();
  const auto back = ParseEepromText(EepromText(image));
  ASSERT_TRUE(back.Ok());
  EXPECT_EQ(*back, image);
}

TEST(EepromText, IsReadWhateverWhiteSpacePartsTheNumbers) {
  const EepromImage image = Random();
  std::string text = EepromText(image);
  std::replace(text.begin(), text.end(), '\r', '\t');
  EXPECT_TRUE(ParseEepromText(text).Ok());
}

TEST(EepromText, EveryShorteningIsRefused) {
  const EepromImage image{};
  const std::string text = EepromText(image);
  // Each number is " 0 ": all but the last line end and blank are needed.
  for (std::size_t cut = 4; cut < text.size(); cut += 997)
    EXPECT_FALSE(ParseEepromText(text.substr(0, text.size() - cut)).Ok()) << cut;
}

TEST(EepromText, GarbledTextIsRefusedOrGivesBytes) {
  std::mt19937 random(11);
  const std::string good = EepromText(Random());
  int refused = 0;
  for (int run = 0; run < 300; ++run) {
    std::string text = good;
    text[random() % text.size()] = static_cast<char>(random() % 256);
    refused += ParseEepromText(text).Ok() ? 0 : 1;
  }
  EXPECT_GT(refused, 100);
}

TEST(EepromChecksum, IsTheLowByteOfTheSumOfAllButTheLast) {
  EepromImage image{};
  image[0] = 200;
  image[32766] = 100;
  image[32767] = 7;
  EXPECT_EQ(EepromChecksum(image), 44);
  EXPECT_FALSE(ChecksumHolds(image));
  image[32767] = 44;
  EXPECT_TRUE(ChecksumHolds(image));
}

}  // namespace
}  // namespace qk::test
