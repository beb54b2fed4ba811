// SPDX-License-Identifier: MIT
#include "files/cal_info.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <tuple>

#include "core/characters.h"
#include "core/local_time.h"
#include "core/text.h"
#include "files/session_file.h"
#include "files/whole_file.h"

namespace qk {

namespace {
constexpr std::string_view kNextHeader = "\nQK47-20-09 calibration record 1";
constexpr std::string_view kHeader = kNextHeader.substr(1);
constexpr std::size_t kLargestInfo = 3 * 4096;  // three records, as earlier versions left them

std::string Hash(std::string_view bytes) {
  std::uint64_t hash = 14695981039346656037u;
  for (const char c : bytes) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211u;
  char text[17];
  std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(hash));
  return text;
}

// The text after "word " on a line that begins with it.
std::optional<std::string_view> After(std::string_view word, std::string_view line) {
  if (!line.starts_with(word) || line.size() <= word.size() || line[word.size()] != ' ')
    return std::nullopt;
  return line.substr(word.size() + 1);
}

// The record that belongs to a session file; empty if there is none.
std::string_view RecordOf(std::string_view info, std::string_view sessionBytes) {
  const std::string hash = Hash(sessionBytes);
  while (info.starts_with(kHeader)) {
    const std::size_t end = info.find(kNextHeader);
    const std::string_view record = info.substr(0, end == std::string_view::npos ? end : end + 1);
    info.remove_prefix(record.size());
    std::string_view lines = record;
    if (TakeLine(lines) == kHeader && After("session", TakeLine(lines)) == hash) return record;
  }
  return {};
}

std::optional<float> Number(std::string_view text) {
  float value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// "1 500 1080.5 0 -40".
std::optional<TypedLimit> LimitOf(std::string_view text) {
  std::array<std::string, 5> fields;
  for (std::size_t f = 0; f < fields.size(); ++f) {
    const std::size_t end = text.find(' ');
    if ((end == std::string_view::npos) != (f + 1 == fields.size())) return std::nullopt;
    fields[f] = text.substr(0, end);
    if (!Number(fields[f])) return std::nullopt;
    if (f + 1 < fields.size()) text.remove_prefix(end + 1);
  }
  if (fields[0].size() != 1 || fields[0][0] < '1' || fields[0][0] > '0' + kChannels)
    return std::nullopt;
  return TypedLimit{fields[0][0] - '0', fields[1], fields[2], fields[3], fields[4]};
}
}  // namespace

std::string CalInfoPath(const std::string& sessionPath) {
  return sessionPath + "-info";
}

TypedLimits TypedLimitsOf(const LimitRecords& limits) {
  const auto plain = [](const std::string& text) { return PlainNumber(Val(text)); };
  TypedLimits typed;
  for (int channel = 1; channel <= kChannels; ++channel)
    for (const LimitSegment& segment : limits.Of(channel).Segments) {
      if (segment.Stop.empty()) continue;
      const std::string start = plain(segment.StartAsEntered());
      const std::string stop = plain(segment.StopAsEntered());
      if (start == plain(segment.Start) && stop == plain(segment.Stop)) continue;
      typed.push_back({channel, start, stop, plain(segment.Upper), plain(segment.Lower)});
    }
  return typed;
}

void PutTypedLimits(const TypedLimits& typed, LimitRecords& limits) {
  for (ChannelLimits& channel : limits.OfChannels) channel.Segments = {};
  std::array<std::size_t, kChannels> used{};
  for (const TypedLimit& limit : typed) {
    std::size_t& next = used[static_cast<std::size_t>(limit.Channel - 1)];
    if (next == kLimitSegments) continue;
    limits.Of(limit.Channel).Segments[next++] = {limit.Start, limit.Stop,  limit.Upper,
                                                 limit.Lower, limit.Start, limit.Stop};
  }
}

std::string CalInfoBytes(const CalRecord& record, std::string_view sessionBytes,
                         const TypedLimits& typed) {
  std::string text = std::string(kHeader) + "\nsession " + Hash(sessionBytes) + "\n";
  if (record.MadeUtc) text += "made " + UtcText(*record.MadeUtc) + "\n";
  if (record.DegC)
    text += "temperature " + FormatNumber(static_cast<double>(*record.DegC), "#0.0") + "\n";
  text += "kit1 " + OnOneLine(record.Kit1) + "\nkit2 " + OnOneLine(record.Kit2) + "\n";
  for (const TypedLimit& limit : typed)
    text += "limit " + std::to_string(limit.Channel) + " " + limit.Start + " " + limit.Stop + " " +
            limit.Upper + " " + limit.Lower + "\n";
  return text;
}

std::optional<CalRecord> CalInfoFrom(std::string_view info, std::string_view sessionBytes,
                                     TypedLimits* typed) {
  std::string_view lines = RecordOf(info, sessionBytes);
  if (lines.empty()) return std::nullopt;
  CalRecord record;
  while (!lines.empty()) {
    const std::string_view line = TakeLine(lines);
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
    } else if (const auto limit = After("limit", line)) {
      const std::optional<TypedLimit> one = LimitOf(*limit);
      if (!one) return std::nullopt;
      if (typed != nullptr) typed->push_back(*one);
    }
  }
  return record;
}

CalRecord ReadCalInfo(const std::string& sessionPath, std::string_view sessionBytes,
                      TypedLimits* typed) {
  const Result<std::string> info = ReadWhole(CalInfoPath(sessionPath), kLargestInfo);
  if (!info) return {};
  std::optional<CalRecord> record = CalInfoFrom(*info, sessionBytes, typed);
  if (!record && typed != nullptr) typed->clear();
  return record.value_or(CalRecord());
}

namespace {
bool IsWorthAFile(const CalRecord& record, const TypedLimits& typed) {
  return record.MadeUtc || !typed.empty();
}
}  // namespace

void PrepareCalInfo(const std::string& sessionPath, std::string_view sessionBytes,
                    const CalRecord& record, const TypedLimits& typed) {
  const std::string path = CalInfoPath(sessionPath);
  if (!IsWorthAFile(record, typed)) return;
  std::string both = CalInfoBytes(record, sessionBytes, typed);
  if (const Result<std::string> now = ReadWhole(path, kLargestInfo); now)
    if (const Result<std::string> session = ReadWhole(sessionPath, kLargestSession); session)
      both += RecordOf(*now, *session);
  // A failure leaves the old records: WriteCalInfo writes again, or leaves none.
  std::ignore = WriteWhole(path, both);
}

void WriteCalInfo(const std::string& sessionPath, std::string_view sessionBytes,
                  const CalRecord& record, const TypedLimits& typed) {
  const std::string path = CalInfoPath(sessionPath);
  if (IsWorthAFile(record, typed) && WriteWhole(path, CalInfoBytes(record, sessionBytes, typed)))
    return;
  std::error_code ignored;
  if (std::filesystem::is_regular_file(path, ignored)) std::filesystem::remove(path, ignored);
}

}  // namespace qk
