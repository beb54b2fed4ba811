// SPDX-License-Identifier: MIT
#include "files/touchstone_convert.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <string>

#include "core/instrument_limits.h"
#include "numeric/two_port.h"

namespace qk {

namespace {
constexpr const char* kTooLarge = "a value is too large";

bool Turn(PairForm form, float& a, float& b) {
  double m = static_cast<double>(a);
  if (form == PairForm::DecibelAngle) m = std::pow(10.0, m / 20);
  if (m > kLargestPart) return false;
  const double radians = static_cast<double>(b) * 3.14159265 / 180;
  a = static_cast<float>(m * std::cos(radians));
  b = static_cast<float>(m * std::sin(radians));
  return true;
}

Complex Value(const TouchstoneTable& table, std::size_t parameter, std::size_t row) {
  constexpr Complex kAbsent{1e-6, 0};
  if (static_cast<int>(2 * parameter + 1) > table.Columns) return kAbsent;
  return {static_cast<double>(table.FileTable[2 * parameter + 1][row]),
          static_cast<double>(table.FileTable[2 * parameter + 2][row])};
}
}  // namespace

Failure AtLine(int line, const std::string& message) {
  return {message, "line " + std::to_string(line)};
}

Result<Done> ToRealImaginary(TouchstoneTable& table, PairForm form, const LineOfRow& lines) {
  if (form == PairForm::RealImaginary) return Done{};
  const auto pairs = static_cast<std::size_t>(table.Columns / 2);
  for (std::size_t row = 1; row <= static_cast<std::size_t>(table.Rows); ++row)
    for (std::size_t pair = 0; pair < pairs; ++pair)
      if (!Turn(form, table.FileTable[2 * pair + 1][row], table.FileTable[2 * pair + 2][row]))
        return AtLine(lines[row], kTooLarge);
  return Done{};
}

Result<Done> ConvertTableTo50(TouchstoneTable& table, double ohms, const LineOfRow& lines) {
  const FileKind kind = table.Kind();
  const std::size_t kept = kind == FileKind::AllFour ? 4 : kind == FileKind::WithS21 ? 2 : 1;
  for (std::size_t row = 0; row <= static_cast<std::size_t>(table.Rows); ++row) {
    TwoPort s{Value(table, 0, row), Value(table, 2, row), Value(table, 1, row),
              Value(table, 3, row)};
    s = ConvertZo(ohms, kInstrumentOhms, s);
    const std::array<Complex, 4> converted{s.p11, s.p21, s.p12, s.p22};
    for (std::size_t p = 0; p < kept; ++p) {
      const Complex z = converted[p];
      if (!(std::fabs(z.re) <= kLargestPart && std::fabs(z.im) <= kLargestPart))
        return AtLine(lines[row], kTooLarge);
      table.FileTable[2 * p + 1][row] = static_cast<float>(z.re);
      table.FileTable[2 * p + 2][row] = static_cast<float>(z.im);
    }
  }
  return Done{};
}

}  // namespace qk
