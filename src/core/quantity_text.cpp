// SPDX-License-Identifier: MIT
#include "core/quantity_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "core/text.h"

namespace qk {

namespace {

struct Prefix {
  std::string_view Name;
  double Size;
};
// Longer names of a prefix come first. The empty prefix is last, because it matches every text.
constexpr std::array<Prefix, 9> kPrefixes{{{"p", 1e-12},
                                           {"n", 1e-9},
                                           {"u", 1e-6},
                                           {"\xC2\xB5", 1e-6},
                                           {"m", 1e-3},
                                           {"k", 1e3},
                                           {"M", 1e6},
                                           {"G", 1e9},
                                           {"", 1}}};

bool NamesBase(UnitFamily family, std::string_view text) {
  if (text.empty()) return true;
  if (family == UnitFamily::Farads) return text == "F";
  if (family == UnitFamily::Henries) return text == "H";
  return text == "ohm" || text == "ohms" || text == "Ohm" || text == "Ohms" || text == "\xCE\xA9" ||
         text == "\xE2\x84\xA6";
}

// To 15 significant digits: 4.7 nF are 4700 pF and not 4700.000000000001.
double WithoutResidue(double value) {
  constexpr int kDigitsBehindTheFirst = 14;
  std::array<char, 32> text{};
  const auto written = std::to_chars(text.data(), text.data() + text.size(), value,
                                     std::chars_format::scientific, kDigitsBehindTheFirst);
  double rounded = value;
  std::from_chars(text.data(), written.ptr, rounded);
  return rounded;
}

// The factor for the prefix and unit that follow a number.
std::optional<double> SizeOf(UnitFamily family, std::string_view text) {
  for (const Prefix& prefix : kPrefixes)
    if (text.starts_with(prefix.Name) && NamesBase(family, text.substr(prefix.Name.size())))
      return prefix.Size;
  return std::nullopt;
}

}  // namespace

Unit BestUnit(Unit unit, double plain) {
  const UnitFamily family = RowOf(unit).Family;
  const double size = std::fabs(plain);
  if (!(size > 0)) return unit;
  std::optional<Unit> best;
  for (std::size_t i = 0; i < kUnits.size(); ++i) {
    const UnitRow& row = kUnits[i];
    if (row.Family != family) continue;
    // A value that rounds up to the next unit at three decimals uses that unit.
    if (!best || row.Size * (1 - 5e-7) <= size) best = static_cast<Unit>(i);
  }
  return best.value_or(unit);
}

std::string ReadOut(double value, Unit unit) {
  if (!std::isfinite(value)) return std::string(kNoValue);
  if (HasPrefixes(RowOf(unit).Family)) {
    const double plain = value * RowOf(unit).Size;
    const Unit best = BestUnit(unit, plain);
    value *= RowOf(unit).Size / RowOf(best).Size;
    unit = best;
  }
  return FormatNumber(value, "#0.000") + " " + std::string(NameOf(unit));
}

std::string MegahertzNumber(double hertz) {
  return FormatNumber(hertz / 1e6, kPositionPicture);
}

std::string MegahertzText(double hertz) {
  return MegahertzNumber(hertz) + " MHz";
}

std::string NanosecondsText(double ns) {
  return FormatNumber(ns, kPositionPicture) + " ns";
}

std::string MetresText(double metres) {
  return FormatNumber(metres, kPositionPicture) + " m";
}

std::optional<double> TypedIn(Unit unit, std::string_view text) {
  const UnitRow& row = RowOf(unit);
  if (!HasPrefixes(row.Family)) return Val(text);
  const std::string_view typed = Trimmed(text);
  double number = 0;
  // The longest number at the start of the text; the rest is the unit.
  std::size_t length = typed.size();
  while (length > 0 && !ParseNumber(Trimmed(typed.substr(0, length)), number)) --length;
  if (length == 0) return std::nullopt;
  const std::string_view behind = Trimmed(typed.substr(length));
  if (behind.empty()) return number;
  const std::optional<double> size = SizeOf(row.Family, behind);
  if (!size) return std::nullopt;
  return WithoutResidue(number * (*size / row.Size));
}

}  // namespace qk
