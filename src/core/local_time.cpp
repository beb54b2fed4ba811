// SPDX-License-Identifier: MIT
#include "core/local_time.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <ctime>

namespace qk {

namespace {
std::string Digits(int value, std::size_t least) {
  std::string digits = std::to_string(value);
  if (digits.size() < least) digits.insert(0, least - digits.size(), '0');
  return digits;
}
}  // namespace

LocalTime SystemLocalTime() {
  const std::time_t now = std::time(nullptr);
  std::tm t{};
#ifdef _WIN32
  localtime_s(&t, &now);
#else
  localtime_r(&now, &t);
#endif
  return {t.tm_year + 1900, t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec};
}

std::int64_t SystemUnixSeconds() {
  return static_cast<std::int64_t>(std::time(nullptr));
}

std::string UtcText(std::int64_t unixSeconds) {
  namespace chr = std::chrono;
  constexpr std::int64_t kLast = 253402300799;  // 9999-12-31T23:59:59Z
  const chr::sys_seconds moment{chr::seconds{std::clamp<std::int64_t>(unixSeconds, 0, kLast)}};
  const auto days = chr::floor<chr::days>(moment);
  const chr::year_month_day date{days};
  const chr::hh_mm_ss<chr::seconds> clock{moment - days};
  const LocalTime utc{static_cast<int>(date.year()),
                      static_cast<int>(static_cast<unsigned>(date.month())),
                      static_cast<int>(static_cast<unsigned>(date.day())),
                      static_cast<int>(clock.hours().count()),
                      static_cast<int>(clock.minutes().count()),
                      static_cast<int>(clock.seconds().count())};
  return DateText(utc) + "T" + TimeText(utc) + "Z";
}

std::optional<std::int64_t> UnixSecondsFrom(std::string_view utc) {
  namespace chr = std::chrono;
  constexpr std::string_view kForm = "0000-00-00T00:00:00Z";
  if (utc.size() != kForm.size()) return std::nullopt;
  for (std::size_t i = 0; i < kForm.size(); ++i) {
    const bool digit = utc[i] >= '0' && utc[i] <= '9';
    if (kForm[i] == '0' ? !digit : utc[i] != kForm[i]) return std::nullopt;
  }
  const auto number = [utc](std::size_t at, std::size_t digits) {
    int value = 0;
    std::from_chars(utc.data() + at, utc.data() + at + digits, value);
    return value;
  };
  const chr::year_month_day date{chr::year{number(0, 4)},
                                 chr::month{static_cast<unsigned>(number(5, 2))},
                                 chr::day{static_cast<unsigned>(number(8, 2))}};
  const int hour = number(11, 2), minute = number(14, 2), second = number(17, 2);
  if (!date.ok() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
  const std::int64_t days = chr::sys_days{date}.time_since_epoch().count();
  const std::int64_t seconds = days * 86400 + hour * 3600 + minute * 60 + second;
  if (seconds < 0) return std::nullopt;
  return seconds;
}

std::string DateText(const LocalTime& time) {
  return Digits(time.Year, 4) + "-" + Digits(time.Month, 2) + "-" + Digits(time.Day, 2);
}

std::string TimeText(const LocalTime& time) {
  return Digits(time.Hour, 2) + ":" + Digits(time.Minute, 2) + ":" + Digits(time.Second, 2);
}

}  // namespace qk
