// SPDX-License-Identifier: MIT
// Conversions applied to the rows of a Touchstone file after reading, for both versions.
#pragma once

#include <array>
#include <limits>

#include "core/result.h"
#include "files/touchstone.h"
#include "files/touchstone_options.h"

namespace qk {

// The largest magnitude of a real or imaginary part: values are stored as float.
inline constexpr double kLargestPart = static_cast<double>(std::numeric_limits<float>::max());

// The line of the file for each row of the table, for messages.
using LineOfRow = std::array<int, kFileRows + 1>;

// An error at a line: "line 12: MESSAGE".
Failure AtLine(int line, const std::string& message);

// Converts rows 1 to Rows from magnitude (plain or in decibels) and angle in degrees to real and
// imaginary part. Row 0 is unchanged. Fails if a value does not fit 32 bits.
Result<Done> ToRealImaginary(TouchstoneTable& table, PairForm form, const LineOfRow& lines);

// Converts all rows, including row 0, from the resistance ohms to 50 ohms. Parameters that the file
// does not contain are taken as 1e-6 and not written.
Result<Done> ConvertTableTo50(TouchstoneTable& table, double ohms, const LineOfRow& lines);

}  // namespace qk
