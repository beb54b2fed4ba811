// SPDX-License-Identifier: MIT
// Numbers with full precision, for machine-readable files: the shortest text that reads back the
// same, in any locale. Values that are not finite are "inf", "-inf" or "nan".
#pragma once

#include <charconv>
#include <string>

namespace qk {

// Plain or with an exponent, whichever is shorter.
inline void AppendDigits(std::string& line, double value) {
  char digits[40];
  line.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

// Never with an exponent: for frequencies in hertz.
inline void AppendPlainDigits(std::string& line, double value) {
  char digits[400];  // the largest double has 309 digits
  line.append(digits,
              std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed).ptr);
}

}  // namespace qk
