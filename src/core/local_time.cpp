// SPDX-License-Identifier: MIT
#include "core/local_time.h"

#include <langinfo.h>
#include <locale.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <string_view>

namespace qk {

namespace {
std::string Digits(int value, std::size_t least) {
  std::string digits = std::to_string(value);
  if (digits.size() < least) digits.insert(0, least - digits.size(), '0');
  return digits;
}

std::string IsoDate(const LocalTime& time) {
  return Digits(time.Year, 4) + "-" + Digits(time.Month, 2) + "-" + Digits(time.Day, 2);
}

std::string IsoTime(const LocalTime& time) {
  return Digits(time.Hour, 2) + ":" + Digits(time.Minute, 2) + ":" + Digits(time.Second, 2);
}

// True if the environment sets a locale with its own date and time forms.
bool LocaleIsSet() {
  for (const char* name : {"LC_ALL", "LC_TIME", "LANG"}) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value == '\0') continue;
    const std::string_view locale(value);
    return locale != "C" && locale != "POSIX" && !locale.starts_with("C.");
  }
  return false;
}

// The time in one of the locale's forms ("%x" the date, "%X" the time); empty if there is none.
std::string LocaleText(const LocalTime& time, const char* form) {
  if (!LocaleIsSet()) return {};
  const locale_t locale = ::newlocale(LC_CTYPE_MASK | LC_TIME_MASK, "", nullptr);
  if (locale == nullptr) return {};
  std::tm t{};
  t.tm_year = time.Year - 1900;
  t.tm_mon = time.Month - 1;
  t.tm_mday = time.Day;
  t.tm_hour = time.Hour;
  t.tm_min = time.Minute;
  t.tm_sec = time.Second;
  t.tm_isdst = -1;
  timegm(&t);  // sets the day of the week
  std::array<char, 100> text{};
  const std::size_t length = ::strftime_l(text.data(), text.size(), form, &t, locale);
  const bool unicode = std::string_view(::nl_langinfo_l(CODESET, locale)) == "UTF-8";
  ::freelocale(locale);
  const std::string shown(text.data(), length);
  const bool ascii = std::all_of(shown.begin(), shown.end(), [](char c) { return c >= ' '; });
  return ascii || unicode ? shown : std::string();
}
}  // namespace

LocalTime SystemLocalTime() {
  const std::time_t now = std::time(nullptr);
  std::tm t{};
  localtime_r(&now, &t);
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
  return IsoDate(utc) + "T" + IsoTime(utc) + "Z";
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
  if (std::string local = LocaleText(time, "%x"); !local.empty()) return local;
  return IsoDate(time);
}

std::string TimeText(const LocalTime& time) {
  if (std::string local = LocaleText(time, "%X"); !local.empty()) return local;
  return IsoTime(time);
}

}  // namespace qk
