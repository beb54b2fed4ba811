// SPDX-License-Identifier: MIT
// The letterhead of reports: title, address line and logo, stored in "Report.txt" in the install
// folder as "title X", "address X", "logo PATH", one line each.
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

// The bytes of a logo file. Fails, as "The logo ...", if it cannot be read or is larger than 16
// MiB.
Result<std::string> LogoBytes(const std::string& path);

std::string ReportSettingsText(const ReportSettings& settings);
// Ignores lines of any other form; settings without a line keep their defaults.
ReportSettings ReportSettingsFrom(std::string_view text);

// Loads from an install folder; the defaults if there are none or they cannot be read.
ReportSettings LoadReportSettings(const std::string& folder);
Result<Done> SaveReportSettings(const std::string& folder, const ReportSettings& settings);

}  // namespace qk
