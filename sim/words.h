// SPDX-License-Identifier: MIT
// Words and numbers of bench commands and files.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qk::sim {

// Splits at blanks and tabs.
std::vector<std::string> Words(std::string_view line);
// Converts to lower case, ASCII only.
std::string Lower(std::string_view text);
// The whole text as a finite number; the decimal separator is a point in every locale.
std::optional<double> Number(std::string_view text);
// The whole text as a non-negative whole number.
std::optional<long long> WholeNumber(std::string_view text);
// The shortest text that reads back the same.
std::string Text(double value);
// 17 significant digits.
std::string ExactText(double value);

}  // namespace qk::sim
