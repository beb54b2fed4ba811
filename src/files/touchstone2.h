// SPDX-License-Identifier: MIT
// Reader for Touchstone files of version 2, which begin with the keyword [Version] before the
// option line:
//
//     ! a remark
//     [Version] 2.0
//     # HZ S RI R 50
//     [Number of Ports] 2
//     [Two-Port Data Order] 21_12
//     [Number of Frequencies] 2
//     [Reference] 50 50
//     [Network Data]
//     1e6  0.1 0  0.9 0  0.9 0  0.1 0
//     2e6  0.1 0  0.9 0  0.9 0  0.1 0
//     [End]
//
// Keywords are accepted in any case, with their arguments on the same line or the following ones.
// The fields of the option line may be in any order; the default is GHZ S MA R 50. A record starts
// on a line of its own and may continue over several. [Matrix Format] may be Full, Lower or Upper.
// The text between [Begin Information] and [End Information], and noise data, are skipped.
#pragma once

#include <string_view>

#include "core/result.h"
#include "files/touchstone.h"

namespace qk {

// True if the keyword [Version] begins a line before the option line.
bool IsTouchstone2(std::string_view text);

// Parses the text of such a file, with one or four parameters. Fails, with the line as the place,
// for: more than two ports, Y, Z, G and H parameters, mixed modes, port references that differ or
// are not a positive resistance, an unknown keyword, frequencies that are not ascending, another
// number of records than [Number of Frequencies], more than 1000, a value that is not a number. Any
// positive reference is converted to 50 ohms (Reference::ConvertedTo50).
Result<TouchstoneTable> ReadTouchstone2(std::string_view text, Reference reference);

}  // namespace qk
