// SPDX-License-Identifier: MIT
#include "files/check_trend.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>

#include "core/local_time.h"
#include "core/text.h"
#include "files/whole_file.h"

namespace qk {

namespace {
constexpr std::size_t kLargestTrend = 16u << 20;
constexpr double kMostSerial = 1e9, kMostDegC = 1000;  // larger values are invalid
constexpr std::array<std::string_view, kCheckMethods> kMethodWords{
    "standards", "shorted-line", "mismatched-line", "through",
    "isolation", "port-match",   "standards-port2"};
// The columns of a file grew twice: calibration and standard, then the terms of port 2.
constexpr std::size_t kFixedColumns = 8, kFirstTerms = 6;
constexpr std::size_t kCalibrationColumn = kFixedColumns + 2 * kFirstTerms;
constexpr std::size_t kStandardColumn = kCalibrationColumn + 1;
constexpr std::array<std::size_t, 3> kTrendColumns{kCalibrationColumn, kStandardColumn + 1,
                                                   kFixedColumns + 2 * kCheckTerms + 2};

// Of the decibels of a term; its frequency is in the next one.
constexpr std::size_t ColumnOf(std::size_t term) {
  return kFixedColumns + 2 * term + (term < kFirstTerms ? 0 : 2);
}

std::vector<std::string_view> Fields(std::string_view line) {
  std::vector<std::string_view> fields;
  for (;;) {
    const std::size_t comma = line.find(',');
    fields.push_back(line.substr(0, comma));
    if (comma == std::string_view::npos) return fields;
    line.remove_prefix(comma + 1);
  }
}

// The entry for a line; empty if the line has another format.
std::optional<CheckSummary> Parse(std::string_view line) {
  const auto fields = Fields(line);
  if (std::ranges::find(kTrendColumns, fields.size()) == kTrendColumns.end()) return std::nullopt;
  CheckSummary check;
  const auto utc = UnixSecondsFrom(fields[0]);
  const auto method = std::ranges::find(kMethodWords, fields[2]);
  double serial = 0, start = 0, stop = 0, points = 0;
  if (!utc || method == kMethodWords.end() || !ParseNumber(fields[1], serial) ||
      !ParseNumber(fields[5], start) || !ParseNumber(fields[6], stop) ||
      !ParseNumber(fields[7], points) || points < 2 || points > kMaxPoints ||
      !(std::abs(serial) <= kMostSerial))
    return std::nullopt;
  check.Utc = *utc;
  check.Serial = static_cast<int>(serial);
  check.Method = static_cast<CheckMethod>(method - kMethodWords.begin());
  check.Grid.StartFreq = start;
  check.Grid.StopFreq = stop;
  check.Grid.NumPoints = static_cast<std::int16_t>(points);
  check.Grid.StepFreq = (stop - start) / (points - 1);
  double number = 0;
  if (!fields[3].empty()) {
    if (!ParseNumber(fields[3], number) || !(std::abs(number) <= kMostDegC)) return std::nullopt;
    check.DegC = static_cast<float>(number);
  }
  if (!fields[4].empty()) {
    check.CalMadeUtc = UnixSecondsFrom(fields[4]);
    if (!check.CalMadeUtc) return std::nullopt;
  }
  for (std::size_t i = 0; i < kCheckTerms && ColumnOf(i) < fields.size(); ++i) {
    const std::string_view db = fields[ColumnOf(i)], hz = fields[ColumnOf(i) + 1];
    if (db.empty() && hz.empty()) continue;
    WorstTerm worst;
    if (!ParseNumber(db, worst.Db) || !ParseNumber(hz, worst.Hz)) return std::nullopt;
    check.Terms[i] = worst;
  }
  if (fields.size() <= kStandardColumn) return check;
  if (const std::string_view kind = fields[kCalibrationColumn]; !kind.empty()) {
    const SweepMode mode = CalKindNamed(kind);
    if (CalKindName(mode) != kind) return std::nullopt;
    check.Calibration = mode;
  }
  check.Standard = fields[kStandardColumn];
  return check;
}

// The header of a file with so many columns, without its line end.
std::string HeaderOf(std::size_t columns) {
  std::string text = "utc,serial,method,temperature_degC,calibrated_utc,start_Hz,stop_Hz,points";
  for (std::size_t i = 0; i < kCheckTerms && ColumnOf(i) < columns; ++i) {
    if (i == kFirstTerms) text += ",calibration,standard";
    const std::string_view column = RowOf(static_cast<CheckTerm>(i)).Column;
    text.append(",").append(column).append("_dB,").append(column).append("_Hz");
  }
  return columns == kStandardColumn + 1 ? text + ",calibration,standard" : text;
}

void AddTerm(std::string& text, const std::optional<WorstTerm>& term) {
  text += ",";
  if (term) text += FormatNumber(term->Db, "#0.0000");
  text += ",";
  if (term) text += PlainNumber(term->Hz);
}
}  // namespace

std::string TrendWord(std::string_view text) {
  std::string word(text);
  for (char& c : word) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == ',') c = ';';
    if (byte < 0x20 || byte == 0x7F) c = ' ';
  }
  return word;
}

std::string CheckTrendPath(const Session& session) {
  return (std::filesystem::path(session.InstallFolder) / "CalChecks.csv").string();
}

std::string CheckTrendHeader() {
  return HeaderOf(kTrendColumns.back()) + "\n";
}

std::string CheckTrendLine(const CheckSummary& check) {
  std::string text = UtcText(check.Utc) + "," + std::to_string(check.Serial) + "," +
                     std::string(kMethodWords[static_cast<std::size_t>(check.Method)]) + ",";
  if (check.DegC) text += FormatNumber(static_cast<double>(*check.DegC), "#0.0");
  text += ",";
  if (check.CalMadeUtc) text += UtcText(*check.CalMadeUtc);
  text += "," + PlainNumber(check.Grid.StartFreq) + "," + PlainNumber(check.Grid.StopFreq) + "," +
          std::to_string(check.Grid.NumPoints);
  for (std::size_t i = 0; i < kFirstTerms; ++i) AddTerm(text, check.Terms[i]);
  text += ",";
  if (check.Calibration) text += CalKindName(*check.Calibration);
  text += "," + TrendWord(check.Standard);
  for (std::size_t i = kFirstTerms; i < kCheckTerms; ++i) AddTerm(text, check.Terms[i]);
  return text + "\n";
}

Result<std::vector<CheckSummary>> CheckTrendFrom(std::string_view bytes) {
  std::vector<CheckSummary> checks;
  for (int number = 1; !bytes.empty(); ++number) {
    const std::size_t end = bytes.find('\n');
    std::string_view line = bytes.substr(0, end);
    bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.empty()) continue;
    const std::string place = "line " + std::to_string(number);
    if (number == 1) {
      if (std::ranges::none_of(kTrendColumns, [&](std::size_t n) { return line == HeaderOf(n); }))
        return Failure{"not a trend of calibration checks", place};
      continue;
    }
    const auto check = Parse(line);
    if (!check) return Failure{"not a check of a calibration", place};
    checks.push_back(*check);
  }
  return checks;
}

Result<std::vector<CheckSummary>> ReadCheckTrend(const std::string& path) {
  std::error_code unseen;
  if (!std::filesystem::exists(path, unseen) && !unseen) return std::vector<CheckSummary>();
  const Result<std::string> bytes = ReadWhole(path, kLargestTrend);
  if (!bytes) return bytes.Why();
  auto checks = CheckTrendFrom(*bytes);
  if (!checks) return Failure{checks.Why().Text(), path};
  return checks;
}

namespace {
// Adds the columns that an older file does not have, with empty values.
std::string WithNewColumns(std::string_view bytes) {
  if (Fields(bytes.substr(0, bytes.find('\n'))).size() == kTrendColumns.back())
    return std::string(bytes);
  std::string text = CheckTrendHeader();
  for (bool header = true; !bytes.empty(); header = false) {
    const std::size_t end = bytes.find('\n');
    std::string_view line = bytes.substr(0, end);
    bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (header || line.empty()) continue;
    text.append(line).append(kTrendColumns.back() - Fields(line).size(), ',').append(1, '\n');
  }
  return text;
}
}  // namespace

Result<Done> AddToCheckTrend(const std::string& path, const CheckSummary& check) {
  std::string text = CheckTrendHeader();
  std::error_code unseen;
  if (std::filesystem::exists(path, unseen) || unseen) {
    const Result<std::string> bytes = ReadWhole(path, kLargestTrend);
    if (!bytes) return bytes.Why();
    // Never append to a file of another format.
    if (const auto checks = CheckTrendFrom(*bytes); !checks)
      return Failure{checks.Why().Text(), path};
    text = bytes->empty() ? CheckTrendHeader() : WithNewColumns(*bytes);
    if (text.back() != '\n') text += '\n';
  }
  return WriteWhole(path, text + CheckTrendLine(check));
}

}  // namespace qk
