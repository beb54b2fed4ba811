// SPDX-License-Identifier: MIT
// An EEPROM image as text (".bak"): 4096 lines of 8 whole numbers, lowest address first.
#pragma once

#include <string>
#include <string_view>

#include "core/result.h"
#include "utilities/eeprom_copy.h"

namespace qk {

// A blank before and after each number, CR LF at the end of a line.
std::string EepromText(const EepromImage& image);
// Expects 32768 whole numbers from 0 to 255, separated by white space, and nothing else. Does not
// check the checksum.
Result<EepromImage> ParseEepromText(std::string_view text);

// Larger than any back-up: 32768 numbers of three digits, with blanks and line ends.
inline constexpr std::size_t kLargestEepromText = 1 << 20;

}  // namespace qk
