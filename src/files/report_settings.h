// SPDX-License-Identifier: MIT
// The letterhead of reports: title, the sender's own line and a logo, kept in "Report.txt" of the
// install folder as "title X", "address X", "logo PATH", a line each.
#pragma once

#include <string>
#include <string_view>

#include "core/result.h"

namespace qk {

struct ReportSettings {
  std::string Title = "Measurement report";
  std::string Address;
  std::string Logo;  // path of an image; empty: none

  bool operator==(const ReportSettings&) const = default;
};

std::string ReportSettingsText(const ReportSettings& settings);
// Lines of another form are passed over; what no line gives keeps its default.
ReportSettings ReportSettingsFrom(std::string_view text);

// Of an install folder; the defaults when there are none or they cannot be read.
ReportSettings LoadReportSettings(const std::string& folder);
Result<Done> SaveReportSettings(const std::string& folder, const ReportSettings& settings);

}  // namespace qk
