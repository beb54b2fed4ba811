// SPDX-License-Identifier: MIT
#include "files/eeprom_text.h"

#include <algorithm>
#include <charconv>

namespace qk {

namespace {
constexpr std::size_t kNumbersALine = 8;
constexpr std::string_view kWhiteSpace = " \t\r\n";
}  // namespace

std::string EepromText(const EepromImage& image) {
  std::string text;
  for (std::size_t i = 0; i < image.size(); ++i) {
    text += " " + std::to_string(image[i]) + " ";
    if (i % kNumbersALine == kNumbersALine - 1) text += "\r\n";
  }
  return text;
}

Result<EepromImage> ParseEepromText(std::string_view text) {
  EepromImage image;
  std::size_t count = 0;
  for (;;) {
    text.remove_prefix(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
    if (text.empty()) break;
    const std::string_view word = text.substr(0, text.find_first_of(kWhiteSpace));
    text.remove_prefix(word.size());
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(),
                                              image[std::min(count, image.size() - 1)]);
    if (error != std::errc() || end != word.data() + word.size() || count == image.size())
      return Failure{"no EEPROM byte", "number " + std::to_string(count + 1)};
    ++count;
  }
  if (count < image.size()) return Failure{"not all of an EEPROM", ""};
  return image;
}

}  // namespace qk
