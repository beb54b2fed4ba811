// SPDX-License-Identifier: MIT
// Words and numbers of bench lines and files.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qk::sim {

// Split at blanks and tabs.
std::vector<std::string> Words(std::string_view line);
// Lower case, ASCII only.
std::string Lower(std::string_view text);
// The whole text as a finite number, point as separator whatever the locale.
std::optional<double> Number(std::string_view text);
// The whole text as a whole number of 0 or more.
std::optional<long long> WholeNumber(std::string_view text);
// The shortest text that reads back the same.
std::string Text(double value);
// 17 significant digits.
std::string ExactText(double value);

}  // namespace qk::sim
