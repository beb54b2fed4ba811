// SPDX-License-Identifier: MIT
#include "files/recent_files.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <system_error>
#include <tuple>

#include "files/whole_file.h"

namespace qk {

namespace {
namespace fs = std::filesystem;

constexpr std::size_t kLargestList = std::size_t{1} << 16;

std::string ListPath(const std::string& folder) {
  return (fs::path(folder) / "RecentFiles.txt").string();
}

std::string Absolute(const std::string& path) {
  std::error_code error;
  const fs::path absolute = fs::absolute(path, error);
  return error ? path : absolute.lexically_normal().string();
}

std::vector<std::string> LinesOf(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty() && lines.size() < RecentFiles::kMost) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    const std::string path(line);
    if (!path.empty() && std::ranges::find(lines, path) == lines.end()) lines.push_back(path);
  }
  return lines;
}

void DropOldest(std::vector<std::string>& paths) {
  constexpr std::size_t kKeptOfEach = RecentFiles::kMost / 2;
  std::size_t at = paths.size();
  while (at-- > 0) {
    const FileUse use = UseOfFile(paths[at]);
    const auto same = [use](const std::string& path) { return UseOfFile(path) == use; };
    if (static_cast<std::size_t>(std::ranges::count_if(paths, same)) <= kKeptOfEach) continue;
    paths.erase(paths.begin() + static_cast<std::ptrdiff_t>(at));
    return;
  }
}
}  // namespace

FileUse UseOfFile(std::string_view path) {
  constexpr std::string_view kSession = ".cal";
  if (path.size() < kSession.size()) return FileUse::Measurement;
  const std::string_view end = path.substr(path.size() - kSession.size());
  const bool session = std::ranges::equal(end, kSession, [](char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) == b;
  });
  return session ? FileUse::Session : FileUse::Measurement;
}

RecentFiles::RecentFiles(std::string folder) : folder_(std::move(folder)) {
  ReadAgain();
}

void RecentFiles::Note(const std::string& path) {
  if (path.empty() || path.find_first_of("\r\n") != std::string::npos) return;
  ReadAgain();
  const std::string absolute = Absolute(path);
  std::erase(paths_, absolute);
  paths_.insert(paths_.begin(), absolute);
  while (paths_.size() > kMost) DropOldest(paths_);
  Save();
}

void RecentFiles::Forget(const std::string& path) {
  ReadAgain();
  if (std::erase(paths_, Absolute(path)) > 0) Save();
}

void RecentFiles::ReadAgain() {
  if (folder_.empty()) return;
  if (const Result<std::string> text = ReadWhole(ListPath(folder_), kLargestList); text)
    paths_ = LinesOf(*text);
}

void RecentFiles::Save() const {
  if (folder_.empty()) return;
  std::string text;
  for (const std::string& path : paths_) text += path + "\n";
  std::ignore = WriteWhole(ListPath(folder_), text);  // a convenience: failures are not reported
}

}  // namespace qk
