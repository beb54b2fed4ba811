// The date and the time of day, for the log and for what stands at the head of files.
#pragma once

#include <string>

namespace qk {

struct LocalTime {
  int Year = 1970, Month = 1, Day = 1;
  int Hour = 0, Minute = 0, Second = 0;
};

// The system's clock in its time zone.
LocalTime SystemLocalTime();

// "2026-11-21", whatever the locale.
std::string DateText(const LocalTime& time);
// "11:03:00".
std::string TimeText(const LocalTime& time);

}  // namespace qk
