// SPDX-License-Identifier: MIT
#include "app/guides.h"

#include <array>
#include <filesystem>
#include <system_error>

#include "files/whole_file.h"

namespace qk {

namespace {
namespace fs = std::filesystem;

constexpr std::array kGuides = {"UsersManual.pdf", "ZoConversion.pdf"};
constexpr std::size_t kLargestGuide = 64u << 20;

// True if the file is only the first part of a guide: a copy cut off by a full disk.
bool CutShort(const std::string& path, const std::string& whole) {
  const Result<std::string> there = ReadWhole(path, kLargestGuide);
  return there && there->size() < whole.size() && whole.compare(0, there->size(), *there) == 0;
}

void BringGuide(const fs::path& source, const fs::path& target, std::uintmax_t roomForWork) {
  std::error_code failed;
  const auto written = fs::last_write_time(source, failed);
  if (failed || fs::equivalent(source, target, failed)) return;
  const auto there = fs::last_write_time(target, failed);
  const bool upToDate = !failed && there >= written;
  // The sizes are equal unless the copy was cut off or the user has replaced it.
  if (upToDate && fs::file_size(target, failed) == fs::file_size(source, failed)) return;
  const Result<std::string> guide = ReadWhole(source.string(), kLargestGuide);
  if (!guide || (upToDate && !CutShort(target.string(), *guide))) return;
  const fs::space_info disk = fs::space(target.parent_path(), failed);
  if (failed || disk.available < roomForWork || disk.available - roomForWork < guide->size())
    return;
  (void)WriteWhole(target.string(), *guide);
}

}  // namespace

std::string GuideFolder(const std::string& programFolder) {
  std::error_code ignored;
  const fs::path here = programFolder;
  if (fs::exists(here / kGuides[0], ignored)) return programFolder;
  const fs::path installed = here / ".." / "share" / "qk47-vna";
  return fs::exists(installed / kGuides[0], ignored) ? installed.string() : programFolder;
}

void CopyGuides(const std::string& from, const std::string& to, std::uintmax_t roomForWork) {
  for (const char* name : kGuides)
    BringGuide(fs::path(from) / name, fs::path(to) / name, roomForWork);
}

}  // namespace qk
