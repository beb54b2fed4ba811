#include "core/local_time.h"

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

std::string DateText(const LocalTime& time) {
  return Digits(time.Year, 4) + "-" + Digits(time.Month, 2) + "-" + Digits(time.Day, 2);
}

std::string TimeText(const LocalTime& time) {
  return Digits(time.Hour, 2) + ":" + Digits(time.Minute, 2) + ":" + Digits(time.Second, 2);
}

}  // namespace qk
