// SPDX-License-Identifier: MIT
// A value that a user types for the scale, the reference or a limit of a channel.
#pragma once

#include <optional>
#include <string_view>

#include "core/vocabulary.h"

namespace qk {

// The typed text as a number in the unit, for a graph of this type. As TypedIn, except that the
// quality factor and the unwrapped phase take nothing behind the number but their unit ("U",
// "deg"): empty for "200 mU", "5 k" and for what is no number.
std::optional<double> TypedFor(GraphType type, Unit unit, std::string_view text);

// The whole text as a number in the unit, which may follow it ("-3 dB"; with a prefix where the
// family has prefixes): empty for anything else.
std::optional<double> TypedWhole(Unit unit, std::string_view text);

// The whole text as a finite number; blanks around it are allowed.
std::optional<double> NumberAlone(std::string_view text);

}  // namespace qk
