// SPDX-License-Identifier: MIT
// Reader of Touchstone files of version 2, which begin with the keyword [Version] where version 1
// has its option line:
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
// Keywords are read in any case, their arguments on the same line or the next ones. The option
// line may have its fields in any order; without them it says GHZ S MA R 50. A record begins on a
// line of its own and may go on over several. [Matrix Format] may be Full, Lower or Upper. What
// stands between [Begin Information] and [End Information], and noise data, is passed over.
#pragma once

#include <string_view>

#include "core/result.h"
#include "files/touchstone.h"

namespace qk {

// The keyword [Version] begins a line before the option line.
bool IsTouchstone2(std::string_view text);

// The table of such a file's text, with one or four parameters. Fails, with the line as the place:
// more than two ports, Y, Z, G and H parameters, mixed modes, references of the ports that differ
// or are no positive resistance, an unknown keyword, frequencies that do not rise, another count of
// records than [Number of Frequencies] says, more than 1000, a value that is no number. Any
// positive reference is converted to 50 ohms (Reference::ConvertedTo50).
Result<TouchstoneTable> ReadTouchstone2(std::string_view text, Reference reference);

}  // namespace qk
