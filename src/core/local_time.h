// SPDX-License-Identifier: MIT
// Date and time of day, for the log and for file headers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qk {

struct LocalTime {
  int Year = 1970, Month = 1, Day = 1;
  int Hour = 0, Minute = 0, Second = 0;
};

// The system clock in the local time zone.
LocalTime SystemLocalTime();

// Seconds since 1970-01-01T00:00:00Z from the system clock.
std::int64_t SystemUnixSeconds();

// "2026-11-22T10:12:00Z" for seconds since 1970-01-01T00:00:00Z. Values outside the years 1970 to
// 9999 are clamped to that range.
std::string UtcText(std::int64_t unixSeconds);
// The inverse of UtcText. Empty for any other form and for an invalid date.
std::optional<std::int64_t> UnixSecondsFrom(std::string_view utc);

// Date and time in the short forms of the system's locale (LC_ALL, LC_TIME, LANG): "21.11.2026" and
// "11:03:00" in Germany. "2026-11-21" and "11:03:00" if no locale is set, if the locale is not
// installed, or if its form is neither ASCII nor UTF-8.
std::string DateText(const LocalTime& time);
std::string TimeText(const LocalTime& time);

}  // namespace qk
