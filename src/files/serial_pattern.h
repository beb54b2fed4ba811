// SPDX-License-Identifier: MIT
// Serial numbers of a batch: which ones are taken, and which comes next. In a pattern "#" stands
// for a digit, "?" for any character, "*" for any number of characters, everything else for itself:
// "A####" takes A0001. An empty pattern takes every serial.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/result.h"

namespace qk {

bool FitsPattern(std::string_view serial, std::string_view pattern);

// A serial becomes the name of files, so it has 1 to 64 of the characters A-Z, a-z, 0-9, ".", "_"
// and
// "-", the first a letter or digit. Fails for any other, and for one that the pattern does not
// take; the message names the serial.
Result<Done> CheckSerial(std::string_view serial, std::string_view pattern);

// The serial that follows: its last digits one higher, with as many digits. Only for patterns whose
// only wildcards are "#" standing together; "A####" gives "A0001" without one before. Nothing
// behind the last one.
std::optional<std::string> NextSerial(std::string_view pattern, std::string_view last);

}  // namespace qk
