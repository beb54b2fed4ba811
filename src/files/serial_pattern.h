// SPDX-License-Identifier: MIT
// Serial numbers of a batch: which are valid, and which is next. In a pattern "#" is a digit, "?"
// any character, "*" any number of characters; other characters match themselves: "A####" accepts
// A0001. An empty pattern accepts every serial.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/result.h"

namespace qk {

bool FitsPattern(std::string_view serial, std::string_view pattern);

// A serial becomes part of file names, so it must have 1 to 64 of the characters A-Z, a-z, 0-9,
// ".", "_" and "-", and start with a letter or digit. Fails for any other, and for one that does
// not match the pattern; the message contains the serial.
Result<Done> CheckSerial(std::string_view serial, std::string_view pattern);

// The next serial: the number in its last digits plus one, with the same number of digits. Only for
// patterns whose only wildcards are adjacent "#". Without a last serial, "A####" gives "A0001".
// Empty after the last possible one.
std::optional<std::string> NextSerial(std::string_view pattern, std::string_view last);

}  // namespace qk
