// SPDX-License-Identifier: MIT
// The option line of a Touchstone file: "# MHZ S MA R 50".
#pragma once

#include <cstdint>
#include <string_view>

#include "core/result.h"

namespace qk {

enum class PairForm : std::uint8_t { RealImaginary, MagnitudeAngle, DecibelAngle };

struct TouchstoneOptions {
  float HertzPerUnit = 1;  // intended: an unknown unit, or none, is hertz
  PairForm Form = PairForm::RealImaginary;
  double R = 0;  // ohms; 0 when none is given
};

// Reads the line by its positions, as it stands behind the "#": the unit; behind the next "S" the
// format; behind the next "R" the resistance. Upper and lower case alike, tabs as blanks. What is
// not found keeps its default. Fails for Y, Z, G and H parameters, for a resistance that is no
// number, and where a unit or a format stands at another place, which would be read past.
Result<TouchstoneOptions> ReadOptionLine(std::string_view line);

}  // namespace qk
