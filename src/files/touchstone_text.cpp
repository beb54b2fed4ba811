// SPDX-License-Identifier: MIT
#include "files/touchstone_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

#include "core/text.h"

namespace qk {

namespace {
constexpr char kEndMark = '\x1A';

bool IsSeparator(char c) {
  return c == ' ' || c == '\t';
}
}  // namespace

TextLines::TextLines(std::string_view text) : text_(text.substr(0, text.find(kEndMark))) {
  if (text_.substr(0, 3) == "\xEF\xBB\xBF") at_ = 3;
}

bool TextLines::Next(std::string_view& line) {
  if (at_ >= text_.size()) return false;
  if (feed_ < at_ || number_ == 0) feed_ = std::min(text_.find('\n', at_), text_.size());
  const std::string_view rest = text_.substr(at_, feed_ - at_);
  line = rest.substr(0, rest.find('\r'));
  at_ += line.size();
  at_ += text_.substr(at_, 2) == "\r\n" ? 2 : 1;
  ++number_;
  return true;
}

std::string_view SkipSeparators(std::string_view row) {
  std::size_t blanks = 0;
  while (blanks < row.size() && IsSeparator(row[blanks])) ++blanks;
  return row.substr(blanks);
}

std::string_view FrontField(std::string_view row) {
  std::size_t length = 0;
  while (length < row.size() && !IsSeparator(row[length])) ++length;
  return row.substr(0, length);
}

std::string_view WithoutRemark(std::string_view line) {
  return line.substr(0, line.find('!'));
}

bool TakeNumber(std::string_view& row, double& out) {
  const char* from = row.data();
  const char* const end = from + row.size();
  if (row.size() > 1 && *from == '+' && from[1] != '-') ++from;
  const auto [behind, error] = std::from_chars(from, end, out);
  if (error == std::errc{} && (behind == end || IsSeparator(*behind))) {
    if (!std::isfinite(out)) return false;
    row.remove_prefix(static_cast<std::size_t>(behind - row.data()));
    return true;
  }
  const std::string_view field = FrontField(row);
  if (!ParseNumber(field, out)) return false;  // true for values such as 1e-400, which is 0
  row.remove_prefix(field.size());
  return true;
}

std::string ShownField(std::string_view field) {
  constexpr std::size_t kMost = 24;
  std::string shown(field.substr(0, kMost));
  for (char& c : shown)
    if (c < ' ' || c > '~') c = '?';
  return "\"" + shown + (field.size() > kMost ? "...\"" : "\"");
}

}  // namespace qk
