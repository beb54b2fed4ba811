// SPDX-License-Identifier: MIT
#include "files/report_settings.h"

#include <algorithm>
#include <filesystem>

#include "core/characters.h"
#include "files/provenance.h"
#include "files/whole_file.h"

namespace qk {

namespace {
constexpr std::size_t kLargestSettings = std::size_t{1} << 16;
constexpr std::size_t kLargestLogo = std::size_t{16} << 20;

std::string PathIn(const std::string& folder) {
  return (std::filesystem::path(folder) / "Report.txt").string();
}
}  // namespace

Result<std::string> LogoBytes(const std::string& path) {
  Result<std::string> bytes = ReadWhole(path, kLargestLogo);
  if (!bytes) return Failure{"The logo " + bytes.Why().Message, path};
  return bytes;
}

std::string ReportSettingsText(const ReportSettings& settings) {
  return "title " + OnOneLine(settings.Title) + "\naddress " + OnOneLine(settings.Address) +
         "\nlogo " + OnOneLine(settings.Logo) + "\n";
}

ReportSettings ReportSettingsFrom(std::string_view text) {
  ReportSettings settings;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    const std::size_t blank = line.find(' ');
    if (blank == std::string_view::npos) continue;
    const std::string_view word = line.substr(0, blank);
    const std::string value(line.substr(blank + 1));
    if (word == "title") settings.Title = value;
    if (word == "address") settings.Address = value;
    if (word == "logo") settings.Logo = value;
  }
  return settings;
}

ReportSettings LoadReportSettings(const std::string& folder) {
  const Result<std::string> text = ReadWhole(PathIn(folder), kLargestSettings);
  return text ? ReportSettingsFrom(*text) : ReportSettings();
}

Result<Done> SaveReportSettings(const std::string& folder, const ReportSettings& settings) {
  return WriteWhole(PathIn(folder), ReportSettingsText(settings));
}

}  // namespace qk
