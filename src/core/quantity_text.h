// SPDX-License-Identifier: MIT
// Quantities with the prefixes of their units, as text: what a read-out says, and what a user
// types.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/vocabulary.h"

namespace qk {

// What a read-out says where there is no value.
inline constexpr std::string_view kNoValue = "---";

// The family's units differ by prefixes that read-outs choose and users type (ohm, kohm; pF, nF).
constexpr bool HasPrefixes(UnitFamily family) {
  return family == UnitFamily::Ohms || family == UnitFamily::Henries ||
         family == UnitFamily::Farads;
}

// Of the unit's family, the largest unit that is not above a value in the plain unit (ohms,
// henries, farads); the smallest one below all, the unit itself for 0.
Unit BestUnit(Unit unit, double plain);

// A value in a unit: "12.346 dB", three decimals; with its best prefix where the family has some
// ("4.700 kohm" for 4700 ohm). "---" for what is no finite number.
std::string ReadOut(double value, Unit unit);

// A typed text as a number in the unit. Where the family has prefixes a unit or a prefix alone may
// stand behind the number ("4.7 kohm", "4.7k", "10p"; "ohms", "F" and "H" are taken too), and
// nothing comes back when anything else does. Elsewhere the number in the leading digits, as Val
// reads it.
std::optional<double> TypedIn(Unit unit, std::string_view text);

}  // namespace qk
