// SPDX-License-Identifier: MIT
// The option line of a Touchstone file: "# MHZ S MA R 50".
#pragma once

#include <cstdint>
#include <string_view>

#include "core/result.h"

namespace qk {

enum class PairForm : std::uint8_t { RealImaginary, MagnitudeAngle, DecibelAngle };

struct TouchstoneOptions {
  float HertzPerUnit = 1;  // intentional: an unknown or missing unit means hertz
  PairForm Form = PairForm::RealImaginary;
  double R = 0;  // ohms; 0 if not given
};

// Parses the text after the "#" by position: the unit; after the next "S" the format; after the
// next "R" the resistance. Case-insensitive, tabs count as blanks. Missing fields keep their
// defaults. Fails for Y, Z, G and H parameters, for a resistance that is not a number, and for a
// unit or a format at any other position, which would be ignored.
Result<TouchstoneOptions> ReadOptionLine(std::string_view line);

}  // namespace qk
