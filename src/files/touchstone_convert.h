// SPDX-License-Identifier: MIT
// What a Touchstone file's rows go through after they are read, in either version.
#pragma once

#include <array>

#include "core/result.h"
#include "files/touchstone.h"
#include "files/touchstone_options.h"

namespace qk {

// The line of the file that a row of the table stood on, for messages.
using LineOfRow = std::array<int, kFileRows + 1>;

// A refusal at a line: "line 12: MESSAGE".
Failure AtLine(int line, const std::string& message);

// Rows 1 to Rows from magnitude (plain or in decibels) and angle in degrees to real and imaginary
// part. Row 0 is left as it is. Fails where a value is beyond 32 bits.
Result<Done> ToRealImaginary(TouchstoneTable& table, PairForm form, const LineOfRow& lines);

// All rows, row 0 included, from the resistance ohms to 50 ohms. Parameters that the file does not
// have are taken as 1e-6 and not written.
Result<Done> ConvertTableTo50(TouchstoneTable& table, double ohms, const LineOfRow& lines);

}  // namespace qk
