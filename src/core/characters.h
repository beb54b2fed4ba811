// SPDX-License-Identifier: MIT
// Single characters of text, and texts line by line; ASCII, in any locale.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace qk {

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// A blank or a tab.
constexpr bool IsSpaceInLine(char c) {
  return c == ' ' || c == '\t';
}

// The text with a blank for each control character, so that it stays on one line of a file.
inline std::string OnOneLine(std::string text) {
  for (char& c : text)
    if (static_cast<unsigned char>(c) < ' ' || c == '\x7F') c = ' ';
  return text;
}

// Removes the next line from the text and returns it without its end (LF or CR LF).
inline std::string_view TakeLine(std::string_view& text) {
  const std::size_t end = std::min(text.find('\n'), text.size());
  std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  if (!line.empty() && line.back() == '\r') line = line.substr(0, line.size() - 1);
  return line;
}

}  // namespace qk
