// SPDX-License-Identifier: MIT
// The minimum work of any reader of numbers: converts the numbers of a text by from_chars, one by
// one.
#pragma once

#include <charconv>
#include <string_view>
#include <system_error>

namespace qk::benchmarks {

template <class Take>
void EachNumber(std::string_view text, Take take) {
  const char* at = text.data();
  const char* const end = at + text.size();
  while (at < end) {
    double value = 0;
    const auto [behind, error] = std::from_chars(at, end, value);
    if (error == std::errc{}) take(value);
    at = error == std::errc{} ? behind + 1 : at + 1;
  }
}

inline double SumOfNumbers(std::string_view text) {
  double sum = 0;
  EachNumber(text, [&sum](double number) { sum += number; });
  return sum;
}

}  // namespace qk::benchmarks
