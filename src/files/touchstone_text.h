// SPDX-License-Identifier: MIT
// Lines, fields and numbers of Touchstone files, for the readers of both versions.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qk {

// The lines of a text, whether they end with CR LF, LF or CR. A byte order mark before the first is
// left out; the text ends at a byte 0x1A, which ended texts in old systems.
class TextLines {
 public:
  explicit TextLines(std::string_view text);

  bool Next(std::string_view& line);
  // Of the line that was given last, from 1.
  int Number() const { return number_; }

 private:
  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t feed_ = 0;  // the next LF, or the end: found once for all the CRs before it
  int number_ = 0;
};

// Blanks and tabs separate the fields of a line.
std::string_view SkipSeparators(std::string_view row);
// The field at the front of a row.
std::string_view FrontField(std::string_view row);
// What stands before a "!".
std::string_view WithoutRemark(std::string_view line);

// The number that is the whole field at the front of a row; row then begins behind it. False, and
// the row as it was, for anything else and for what a double does not hold.
bool TakeNumber(std::string_view& row, double& out);

// A field in quotes as a message can show it: its begin, with "?" for what no screen shows.
std::string ShownField(std::string_view field);

}  // namespace qk
