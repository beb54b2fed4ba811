// SPDX-License-Identifier: MIT
// An EEPROM image as text (".bak"): 4096 lines of 8 whole numbers, lowest address first.
#pragma once

#include <string>
#include <string_view>

#include "core/result.h"
#include "utilities/eeprom_copy.h"

namespace qk {

// Each number with a blank before and behind it, CR LF at the end of a line.
std::string EepromText(const EepromImage& image);
// 32768 whole numbers from 0 to 255, apart by white space, and nothing else. The checksum is not
// looked at.
Result<EepromImage> ParseEepromText(std::string_view text);

// More than any back-up has: 32768 numbers of three digits, their blanks and line ends.
inline constexpr std::size_t kLargestEepromText = 1 << 20;

}  // namespace qk
