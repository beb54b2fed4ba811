// SPDX-License-Identifier: MIT
// Lines, fields and numbers of Touchstone files, for the readers of both versions.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qk {

// Splits a text into lines that end with CR LF, LF or CR. Skips a byte order mark at the start. The
// text ends at a byte 0x1A, an end-of-text mark of old systems.
class TextLines {
 public:
  explicit TextLines(std::string_view text);

  bool Next(std::string_view& line);
  // The number of the line returned last, from 1.
  int Number() const { return number_; }

 private:
  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t feed_ = 0;  // the next LF, or the end; found once for all CRs before it
  int number_ = 0;
};

// Skips the blanks and tabs that separate the fields of a line.
std::string_view SkipSeparators(std::string_view row);
// The first field of a row.
std::string_view FrontField(std::string_view row);
// The part of the line before "!".
std::string_view WithoutRemark(std::string_view line);

// Reads the first field of a row as a number and removes it from row. Returns false and leaves row
// unchanged for anything else and for a number that does not fit a double.
bool TakeNumber(std::string_view& row, double& out);

// A field in quotes for a message: its beginning, with "?" for characters that cannot be displayed.
std::string ShownField(std::string_view field);

}  // namespace qk
