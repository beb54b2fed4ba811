// SPDX-License-Identifier: MIT
#include "files/csv.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <limits>
#include <memory>
#include <numbers>

#include "files/digits.h"
#include "files/measurement_text.h"
#include "quality/uncertainty.h"

namespace qk {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

bool IsWritten(Parameter parameter, std::size_t column) {
  if (static_cast<CsvColumn>(column) == CsvColumn::Uncertainty)
    return parameter == Parameter::S11 || parameter == Parameter::S21;
  return !kCsvColumns[column].ReflectionOnly || RowOf(parameter).Reflection;
}

double Degrees(Complex z) {
  return std::atan2(z.im, z.re) * 180 / std::numbers::pi;
}

// One parameter of a sweep: its points, and the unwrapped phase.
struct Sweep {
  std::vector<Complex> Points;
  std::vector<double> Unwrapped;  // degrees
  std::vector<double> Expanded;   // uncertainty; nan if unknown
};

Sweep SweepOf(Session& session, const CsvChoice& choice, Parameter parameter) {
  const auto points = std::make_unique<GateArrays::Points>();
  SavedPoints(session, {.ApplyMemoryMath = choice.ApplyMemoryMath, .ApplyGate = choice.ApplyGate},
              parameter, *points);
  Sweep sweep;
  const auto& known = choice.StandardUncertainty;
  double before = 0, turns = 0;
  for (std::size_t i = 1; i <= static_cast<std::size_t>(session.Plan.NumPoints); ++i) {
    const Complex z = (*points)[i];
    const double phase = Degrees(z);
    if (i > 1 && phase - before > 180) turns -= 360;
    if (i > 1 && phase - before < -180) turns += 360;
    before = phase;
    sweep.Points.push_back(z);
    sweep.Unwrapped.push_back(phase + turns);
    const auto u = known ? known(parameter, static_cast<int>(i) - 1) : std::nullopt;
    sweep.Expanded.push_back(u ? kCoverage * *u : std::numeric_limits<double>::quiet_NaN());
  }
  return sweep;
}

// Zo (1 + S) / (1 - S); infinite at S = 1.
Complex Impedance(Complex s, double zo) {
  const double re = 1 - s.re, d = re * re + s.im * s.im;
  if (d == 0) return {kInfinity, 0};
  return {zo * (1 - s.re * s.re - s.im * s.im) / d, zo * 2 * s.im / d};
}

double Delay(const Sweep& sweep, std::size_t i, double stepHz) {
  if (sweep.Points.size() < 2) return 0;
  const std::size_t to = std::max<std::size_t>(i, 1);
  return -(sweep.Unwrapped[to] - sweep.Unwrapped[to - 1]) / (360 * stepHz);
}

double Value(CsvColumn column, const Sweep& sweep, std::size_t i, const PlanGrid& plan, double zo) {
  const Complex s = sweep.Points[i];
  const double mag = std::hypot(s.re, s.im);
  const Complex z = Impedance(s, zo);
  const double w = 2 * std::numbers::pi * plan.Frequency(static_cast<int>(i));
  switch (column) {
    case CsvColumn::Re:
      return s.re;
    case CsvColumn::Im:
      return s.im;
    case CsvColumn::Mag:
      return mag;
    case CsvColumn::Db:
      return 20 * std::log10(mag);
    case CsvColumn::Deg:
      return Degrees(s);
    case CsvColumn::Unwrapped:
      return sweep.Unwrapped[i];
    case CsvColumn::Delay:
      return Delay(sweep, i, plan.StepFreq);
    case CsvColumn::Swr:
      return mag < 1 ? (1 + mag) / (1 - mag) : kInfinity;
    case CsvColumn::R:
      return z.re;
    case CsvColumn::X:
      return z.im;
    case CsvColumn::Z:
      return std::hypot(z.re, z.im);
    case CsvColumn::L:
      return z.im / w;
    case CsvColumn::C:
      return -1 / (w * z.im);
    case CsvColumn::Q:
      return std::fabs(z.im) / z.re;
    case CsvColumn::Uncertainty:
      return sweep.Expanded[i];
  }
  return 0;
}

}  // namespace

std::optional<CsvColumn> CsvColumnOf(std::string_view word) {
  const auto same = [word](const CsvColumnRow& row) {
    return std::ranges::equal(word, row.Word, [](char a, char b) {
      return std::tolower(static_cast<unsigned char>(a)) ==
             std::tolower(static_cast<unsigned char>(b));
    });
  };
  const auto row = std::ranges::find_if(kCsvColumns, same);
  if (row == kCsvColumns.end()) return std::nullopt;
  return static_cast<CsvColumn>(row - kCsvColumns.begin());
}

Result<std::string> CsvText(Session& session, const CsvChoice& choice,
                            const std::vector<Fact>& provenance) {
  struct Field {
    std::size_t Sweep;
    CsvColumn Column;
  };
  std::vector<Sweep> sweeps;
  std::vector<Field> fields;
  std::string text = FactLines(provenance, "# ", "\r\n") + "freq_Hz";
  for (const Parameter parameter : kWrittenOrder) {
    if (!choice.Parameters[static_cast<std::size_t>(parameter)]) continue;
    sweeps.push_back(SweepOf(session, choice, parameter));
    const std::size_t before = fields.size();
    for (std::size_t c = 0; c < kCsvColumns.size(); ++c) {
      if (!choice.Columns[c] || !IsWritten(parameter, c)) continue;
      fields.push_back({sweeps.size() - 1, static_cast<CsvColumn>(c)});
      text.append(",").append(NameOf(parameter)).append("_").append(kCsvColumns[c].Name);
    }
    if (fields.size() == before)
      return Failure{"no column is chosen that " + std::string(NameOf(parameter)) + " has", {}};
  }
  if (sweeps.empty()) return Failure{"no parameter is chosen", {}};
  text += "\r\n";
  const auto zo = static_cast<double>(session.Impedance.SystemZo);
  for (std::size_t i = 0; i < static_cast<std::size_t>(session.Plan.NumPoints); ++i) {
    AppendPlainDigits(text, session.Plan.Frequency(static_cast<int>(i)));
    for (const Field& field : fields) {
      text += ',';
      AppendDigits(text, Value(field.Column, sweeps[field.Sweep], i, session.Plan, zo));
    }
    text += "\r\n";
  }
  return text;
}

}  // namespace qk
