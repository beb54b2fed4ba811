// SPDX-License-Identifier: MIT
// Text of quantities with unit prefixes: formatting for read-outs and parsing of user input.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/vocabulary.h"

namespace qk {

// The read-out for a missing value.
inline constexpr std::string_view kNoValue = "---";

// True if the units of the family differ only by prefixes (ohm, kohm; pF, nF). Read-outs then
// choose the prefix, and users may type one.
constexpr bool HasPrefixes(UnitFamily family) {
  return family == UnitFamily::Ohms || family == UnitFamily::Henries ||
         family == UnitFamily::Farads;
}

// The largest unit of the same family that does not exceed a value given in the plain unit (ohms,
// henries, farads). The smallest unit if all exceed it; the given unit for 0.
Unit BestUnit(Unit unit, double plain);

// A value with its unit and three decimals: "12.346 dB". Where the family has prefixes, the best
// one is used ("4.700 kohm" for 4700 ohm). "---" for a value that is not finite.
std::string ReadOut(double value, Unit unit);

// Positions on the axis of a graph, with four decimals.
inline constexpr const char* kPositionPicture = "###0.0000";
std::string MegahertzNumber(double hertz);  // "843.0000"
std::string MegahertzText(double hertz);    // "843.0000 MHz"
std::string NanosecondsText(double ns);     // "12.5000 ns"
std::string MetresText(double metres);      // "1.2500 m"

// Parses typed text as a number in the unit. If the family has prefixes, a unit or only a prefix
// may follow the number ("4.7 kohm", "4.7k", "10p"; "ohms", "F" and "H" are accepted too); the
// result is empty if anything else follows. Otherwise returns the number in the leading digits,
// like Val.
std::optional<double> TypedIn(Unit unit, std::string_view text);

}  // namespace qk
