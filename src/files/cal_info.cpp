// SPDX-License-Identifier: MIT
#include "files/cal_info.h"

#include <charconv>
#include <cstdio>
#include <filesystem>

#include "core/local_time.h"
#include "core/text.h"
#include "files/whole_file.h"

namespace qk {

namespace {
constexpr std::string_view kHeader = "QK47-20-09 calibration record 1";
constexpr std::size_t kLargest = 4096;

std::string Hash(std::string_view bytes) {
  std::uint64_t hash = 14695981039346656037u;
  for (const char c : bytes) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211u;
  char text[17];
  std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(hash));
  return text;
}

// A kit's name as one line.
std::string OneLine(std::string name) {
  for (char& c : name)
    if (static_cast<unsigned char>(c) < ' ') c = ' ';
  return name;
}

// The next line, without its end; moves text behind it.
std::string_view NextLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

// What follows "word " on a line, if it begins so.
std::optional<std::string_view> After(std::string_view word, std::string_view line) {
  if (!line.starts_with(word) || line.size() <= word.size() || line[word.size()] != ' ')
    return std::nullopt;
  return line.substr(word.size() + 1);
}

std::optional<float> Number(std::string_view text) {
  float value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}
}  // namespace

std::string CalInfoPath(const std::string& sessionPath) {
  return sessionPath + "-info";
}

std::string CalInfoBytes(const CalRecord& record, std::string_view sessionBytes) {
  std::string text = std::string(kHeader) + "\nsession " + Hash(sessionBytes) + "\n";
  if (record.MadeUtc) text += "made " + UtcText(*record.MadeUtc) + "\n";
  if (record.DegC)
    text += "temperature " + FormatNumber(static_cast<double>(*record.DegC), "#0.0") + "\n";
  text += "kit1 " + OneLine(record.Kit1) + "\nkit2 " + OneLine(record.Kit2) + "\n";
  return text;
}

std::optional<CalRecord> CalInfoFrom(std::string_view info, std::string_view sessionBytes) {
  if (NextLine(info) != kHeader) return std::nullopt;
  if (After("session", NextLine(info)) != Hash(sessionBytes)) return std::nullopt;
  CalRecord record;
  while (!info.empty()) {
    const std::string_view line = NextLine(info);
    if (const auto made = After("made", line)) {
      record.MadeUtc = UnixSecondsFrom(*made);
      if (!record.MadeUtc) return std::nullopt;
    } else if (const auto degC = After("temperature", line)) {
      record.DegC = Number(*degC);
      if (!record.DegC) return std::nullopt;
    } else if (const auto kit1 = After("kit1", line)) {
      record.Kit1 = *kit1;
    } else if (const auto kit2 = After("kit2", line)) {
      record.Kit2 = *kit2;
    }
  }
  return record;
}

CalRecord ReadCalInfo(const std::string& sessionPath, std::string_view sessionBytes) {
  const Result<std::string> info = ReadWhole(CalInfoPath(sessionPath), kLargest);
  if (!info) return {};
  return CalInfoFrom(*info, sessionBytes).value_or(CalRecord());
}

void WriteCalInfo(const std::string& sessionPath, std::string_view sessionBytes,
                  const CalRecord& record) {
  const std::string path = CalInfoPath(sessionPath);
  if (record.MadeUtc && WriteWhole(path, CalInfoBytes(record, sessionBytes))) return;
  std::error_code ignored;
  if (std::filesystem::is_regular_file(path, ignored)) std::filesystem::remove(path, ignored);
}

}  // namespace qk
