// SPDX-License-Identifier: MIT
// The trend of calibration checks: "CalChecks.csv" in the install folder, one line per check.
// Columns: utc, serial, method, temperature_degC, calibrated_utc, start_Hz, stop_Hz, points, then
// for each term NAME_dB and NAME_Hz, the worst value and its frequency, empty if a check does not
// find the term; then calibration (S11, S21, both, All) and standard (the kit's name or the line's
// length); then the same two columns for each term of port 2. An older file ends before one of the
// last two groups; the next check adds the columns.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/result.h"
#include "quality/cal_check.h"

namespace qk {

std::string CheckTrendPath(const Session& session);

// A name as a field of the file: without commas and line ends.
std::string TrendWord(std::string_view text);

std::string CheckTrendHeader();  // including its line end
std::string CheckTrendLine(const CheckSummary& check);

// Parses all checks of a file, in order. An unreadable line rejects the file: "line 3: CAUSE".
Result<std::vector<CheckSummary>> CheckTrendFrom(std::string_view bytes);

// The checks so far; none if there is no file.
Result<std::vector<CheckSummary>> ReadCheckTrend(const std::string& path);
// Appends a check; on a failure the file is unchanged.
Result<Done> AddToCheckTrend(const std::string& path, const CheckSummary& check);

}  // namespace qk
