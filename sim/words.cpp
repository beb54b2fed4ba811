// SPDX-License-Identifier: MIT
#include "sim/words.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace qk::sim {

namespace {
constexpr std::string_view kBlanks = " \t\r\n\f\v";
}  // namespace

std::vector<std::string> Words(std::string_view line) {
  std::vector<std::string> words;
  std::size_t at = line.find_first_not_of(kBlanks);
  while (at != std::string_view::npos) {
    const std::size_t end = std::min(line.find_first_of(kBlanks, at), line.size());
    words.emplace_back(line.substr(at, end - at));
    at = line.find_first_not_of(kBlanks, end);
  }
  return words;
}

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return lower;
}

std::optional<double> Number(std::string_view text) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  double value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end || !std::isfinite(value)) return std::nullopt;
  return value;
}

std::optional<long long> WholeNumber(std::string_view text) {
  long long value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end || value < 0) return std::nullopt;
  return value;
}

std::string Text(double value) {
  std::array<char, 32> buffer;
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  return {buffer.data(), result.ptr};
}

std::string ExactText(double value) {
  std::array<char, 40> buffer;
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                    std::chars_format::general, 17);
  return {buffer.data(), result.ptr};
}

}  // namespace qk::sim
