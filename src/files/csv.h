// SPDX-License-Identifier: MIT
// The S-parameters of the last sweep as a table for spreadsheets and scripts (CSV):
//
//     # Program: qk47-vna 0.2.0
//     # ...
//     freq_Hz,S11_re,S11_im,S21_dB
//     3000000,0.0125,-0.25,-0.0431
//
// Lines that begin with "#" describe the origin of the values. They are followed by one line of
// column names and one line per point. Independent of the locale: decimal point, comma separator,
// every number in the shortest form that reads back the same, lines ended by CR LF. Values that are
// not finite are inf, -inf or nan.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/result.h"
#include "core/session.h"
#include "files/provenance.h"

namespace qk {

// R, X, Z (magnitude), L, C and Q are of the impedance Zo (1 + S) / (1 - S), L = X / w, C = -1 / (w
// X), Q = |X| / R; they and SWR exist only for reflections. Unwrapped phase is in degrees without
// jumps of more than 180. Delay is -dphi / dw from the previous point; the first point repeats the
// second. Uncertainty is the expanded uncertainty (coverage factor 2) of the linear magnitude, only
// for S11 and S21.
enum class CsvColumn : std::uint8_t {
  Re,
  Im,
  Mag,
  Db,
  Deg,
  Unwrapped,
  Delay,
  Swr,
  R,
  X,
  Z,
  L,
  C,
  Q,
  Uncertainty
};

struct CsvColumnRow {
  std::string_view Name;  // appended to the parameter: "S11_dB"
  std::string_view Word;  // as the user selects it
  bool ReflectionOnly;
};
inline constexpr std::array<CsvColumnRow, 15> kCsvColumns{{{"re", "re", false},
                                                           {"im", "im", false},
                                                           {"mag", "mag", false},
                                                           {"dB", "dB", false},
                                                           {"deg", "deg", false},
                                                           {"unwrapped_deg", "unwrapped", false},
                                                           {"delay_s", "delay", false},
                                                           {"SWR", "SWR", true},
                                                           {"R_ohm", "R", true},
                                                           {"X_ohm", "X", true},
                                                           {"Z_ohm", "Z", true},
                                                           {"L_H", "L", true},
                                                           {"C_F", "C", true},
                                                           {"Q", "Q", true},
                                                           {"U", "U", false}}};

// The column for a word, in any case.
std::optional<CsvColumn> CsvColumnOf(std::string_view word);

struct CsvChoice {
  std::array<bool, 4> Parameters{};  // S11, S21, S12, S22
  std::array<bool, kCsvColumns.size()> Columns{};
  bool ApplyMemoryMath = false;
  bool ApplyGate = false;  // as in MeasurementChoice

  // The standard uncertainty of a parameter at a point (from 0), linear; empty if unknown.
  std::function<std::optional<double>(Parameter, int)> StandardUncertainty;

  bool Has(CsvColumn column) const { return Columns[static_cast<std::size_t>(column)]; }
  CsvChoice& With(CsvColumn column) {
    Columns[static_cast<std::size_t>(column)] = true;
    return *this;
  }
};

// The complete file, with parameters in the order S11, S21, S12, S22 and columns in the order of
// CsvColumn. The values are those of MeasurementText: after reference plane, de-embedding and
// impedance conversion, before smoothing. Fails without a parameter, or without a column for it.
Result<std::string> CsvText(Session& session, const CsvChoice& choice,
                            const std::vector<Fact>& provenance);

}  // namespace qk
