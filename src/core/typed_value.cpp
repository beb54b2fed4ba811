// SPDX-License-Identifier: MIT
#include "core/typed_value.h"

#include <cmath>

#include "core/quantity_text.h"
#include "core/text.h"

namespace qk {

std::optional<double> NumberAlone(std::string_view text) {
  double number = 0;
  if (!ParseNumber(text, number) || !std::isfinite(number)) return std::nullopt;
  return number;
}

std::optional<double> TypedFor(GraphType type, Unit unit, std::string_view text) {
  const bool newType = RowOf(type).HasGaps() || type == GraphType::UnwrappedPhase;
  return newType ? TypedWhole(unit, text) : TypedIn(unit, text);
}

std::optional<double> TypedWhole(Unit unit, std::string_view text) {
  const UnitRow& row = RowOf(unit);
  if (HasPrefixes(row.Family)) return TypedIn(unit, text);
  std::string_view typed = Trimmed(text);
  if (AsciiLower(typed).ends_with(AsciiLower(row.Name))) typed.remove_suffix(row.Name.size());
  return NumberAlone(typed);
}

}  // namespace qk
