// SPDX-License-Identifier: MIT
// Reader of S-parameter files in Touchstone form, version 1 and 2, for traces in memory and for
// de-embedding networks: text to table, without files or windows.
//
// A file is read line by line. Everything before the first line that begins with "#" is passed
// over. That option line says unit, format and reference resistance, in this order:
//
//     # MHZ S MA R 50
//
// Then a line is a row: the frequency and one to four pairs of numbers, for S11, S21, S12, S22.
// What stands behind a "!" is passed over, and so is a row that begins with a blank, unless all do.
// A frequency below the one before ends the table, which leaves a block of noise parameters aside.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "core/result.h"

namespace qk {

inline constexpr int kFileRows = 1000;

// The parameters that a file holds: S11; S11 and S21 (two or three pairs); all four.
enum class FileKind : std::uint8_t { None, OneParameter, WithS21, AllFour };

struct TouchstoneTable {
  using Column = std::array<float, kFileRows + 1>;

  // Column 0 is the frequency in hertz; 1 and 2 are S11, 3 and 4 S21, 5 and 6 S12, 7 and 8 S22, as
  // real and imaginary part. Rows 1 to Rows hold the data; row 0 is the knot at 0 Hz.
  std::array<Column, 9> FileTable{};
  int Rows = 0;
  int Columns = 0;  // data columns of the last row, the frequency not counted

  // Any other count of columns is of no kind. Intended: the last row decides.
  FileKind Kind() const;
};

// What becomes of a file whose reference resistance is not 50 ohms, but from 10 to 200.
enum class Reference : std::uint8_t {
  ConvertedTo50,  // the row at 0 Hz too: a file of 75 ohms is 75 ohms there
  Ignored
};

// The table of a file's text. Fails, with the line as the place: no option line, no row, a field
// that is no number or that no 32-bit float holds, a row of more than eight values or one that
// continues on the next line, more than two ports, row 1001, other parameters than S, an option
// line in another order than above.
Result<TouchstoneTable> ReadTouchstone(std::string_view text, Reference reference);

}  // namespace qk
