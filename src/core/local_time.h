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

// Date and time in the short forms of the system's locale (LC_ALL, LC_TIME, LANG): "21.11.2026" and
// "11:03:00" in Germany. "2026-11-21" and "11:03:00" where no locale is set, where the one set is
// not installed, and where its form is neither ASCII nor UTF-8.
std::string DateText(const LocalTime& time);
std::string TimeText(const LocalTime& time);

}  // namespace qk
