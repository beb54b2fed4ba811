// SPDX-License-Identifier: MIT
#include "files/serial_pattern.h"

#include <algorithm>

#include "core/characters.h"

namespace qk {

namespace {
bool IsLetterOrDigit(char c) {
  return IsDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
}  // namespace

// Backtracks to the last "*": on a mismatch it matches one more character.
bool FitsPattern(std::string_view serial, std::string_view pattern) {
  if (pattern.empty()) return true;
  std::size_t s = 0, p = 0, star = std::string_view::npos, taken = 0;
  while (s < serial.size()) {
    const char wanted = p < pattern.size() ? pattern[p] : '\0';
    const bool fits = p < pattern.size() && wanted != '*' &&
                      (wanted == '?' || (wanted == '#' ? IsDigit(serial[s]) : wanted == serial[s]));
    if (fits) {
      ++s;
      ++p;
    } else if (p < pattern.size() && wanted == '*') {
      star = p++;
      taken = s;
    } else if (star != std::string_view::npos) {
      p = star + 1;
      s = ++taken;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

Result<Done> CheckSerial(std::string_view serial, std::string_view pattern) {
  constexpr std::size_t kMost = 64;
  std::string shown(serial.substr(0, kMost));
  for (char& c : shown)
    if (c < ' ' || c > '~') c = '?';
  if (serial.empty()) return Failure{"the serial is empty", {}};
  const bool name = serial.size() <= kMost && IsLetterOrDigit(serial.front()) &&
                    std::ranges::all_of(serial, [](char c) {
                      return IsLetterOrDigit(c) || c == '.' || c == '_' || c == '-';
                    });
  if (!name)
    return Failure{"the serial \"" + shown +
                       "\" cannot be a file name: use up to 64 letters, digits, \".\", \"_\" and "
                       "\"-\", beginning with a letter or digit",
                   {}};
  if (!FitsPattern(serial, pattern))
    return Failure{"the serial \"" + shown + "\" does not fit the pattern " + std::string(pattern),
                   {}};
  return Done{};
}

std::optional<std::string> NextSerial(std::string_view pattern, std::string_view last) {
  const std::size_t from = pattern.find('#');
  if (from == std::string_view::npos || pattern.find_first_of("*?") != std::string_view::npos)
    return std::nullopt;
  std::size_t to = from;
  while (to < pattern.size() && pattern[to] == '#') ++to;
  if (pattern.find('#', to) != std::string_view::npos) return std::nullopt;
  std::string next(pattern);
  const bool follows = FitsPattern(last, pattern);
  for (std::size_t i = from; i < to; ++i) next[i] = follows ? last[i] : '0';
  std::size_t i = to;
  while (i-- > from) {
    if (next[i] != '9') {
      ++next[i];
      return next;
    }
    next[i] = '0';
  }
  return std::nullopt;
}

}  // namespace qk
