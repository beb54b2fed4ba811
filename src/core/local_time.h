// SPDX-License-Identifier: MIT
// The date and the time of day, for the log and for what stands at the head of files.
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

// The system's clock in its time zone.
LocalTime SystemLocalTime();

// Seconds since 1970-01-01T00:00:00Z by the system's clock.
std::int64_t SystemUnixSeconds();

// "2026-11-22T10:12:00Z" for seconds since 1970, years 1970 to 9999; anything else is brought
// inside.
std::string UtcText(std::int64_t unixSeconds);
// The reverse; nothing for any other form, or a date that is none.
std::optional<std::int64_t> UnixSecondsFrom(std::string_view utc);

// "2026-11-21", whatever the locale.
std::string DateText(const LocalTime& time);
// "11:03:00".
std::string TimeText(const LocalTime& time);

}  // namespace qk
