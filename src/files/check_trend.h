// SPDX-License-Identifier: MIT
// The trend of the checks of a calibration: "CalChecks.csv" in the install folder, a line for each
// check. Columns: utc, serial, method, temperature_degC, calibrated_utc, start_Hz, stop_Hz, points,
// then for each term NAME_dB and NAME_Hz, the worst value and where it was; empty where a check
// does not find the term; then calibration (S11, S21, both, All) and standard (the kit's name or
// the line's length). A file of before ends with the terms; the next check gives it the two
// columns.
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

std::string CheckTrendHeader();  // with its line end
std::string CheckTrendLine(const CheckSummary& check);

// Parses all checks of a file, in order. An unreadable line rejects the file: "line 3: CAUSE".
Result<std::vector<CheckSummary>> CheckTrendFrom(std::string_view bytes);

// The checks so far; none if there is no file.
Result<std::vector<CheckSummary>> ReadCheckTrend(const std::string& path);
// Appends a check; on a failure the file is unchanged.
Result<Done> AddToCheckTrend(const std::string& path, const CheckSummary& check);

}  // namespace qk
