// SPDX-License-Identifier: MIT
// Reader for S-parameter files in Touchstone format, version 1 and 2, for traces in memory and for
// de-embedding networks: converts text to a table, without files or windows.
//
// A file is read line by line. Everything before the first line that begins with "#" is skipped.
// That option line contains unit, format and reference resistance, in this order:
//
//     # MHZ S MA R 50
//
// After it, each line is a row: the frequency and one to four pairs of numbers, for S11, S21, S12,
// S22. Text after "!" is skipped, and so is a row that begins with a blank, unless all rows do. A
// frequency below the previous one ends the table; this skips a block of noise parameters.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "core/result.h"

namespace qk {

inline constexpr int kFileRows = 1000;

// The parameters in a file: S11; S11 and S21 (two or three pairs); all four.
enum class FileKind : std::uint8_t { None, OneParameter, WithS21, AllFour };

struct TouchstoneTable {
  using Column = std::array<float, kFileRows + 1>;

  // Column 0 is the frequency in hertz; 1 and 2 are S11, 3 and 4 S21, 5 and 6 S12, 7 and 8 S22, as
  // real and imaginary part. Rows 1 to Rows contain the data; row 0 is the knot at 0 Hz.
  std::array<Column, 9> FileTable{};
  int Rows = 0;
  int Columns = 0;  // data columns of the last row, without the frequency

  // None for any other number of columns. Intentional: the last row decides.
  FileKind Kind() const;
};

// How to handle a file whose reference resistance is from 10 to 200 ohms, but not 50.
enum class Reference : std::uint8_t {
  ConvertedTo50,  // includes the row at 0 Hz: a 75 ohm file is 75 ohms there
  Ignored
};

// Parses the text of a file. Fails, with the line as the place, for: no option line, no row, a
// field that is not a number or does not fit a 32-bit float, a row of more than eight values or one
// that continues on the next line, more than two ports, row 1001, parameters other than S, an
// option line in another order than above.
Result<TouchstoneTable> ReadTouchstone(std::string_view text, Reference reference);

}  // namespace qk
