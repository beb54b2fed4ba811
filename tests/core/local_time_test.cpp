#include "core/local_time.h"

#include <gtest/gtest.h>

namespace qk {
namespace {

TEST(LocalTime, IsWrittenFromTheYearDownAndFromTheHourDown) {
  const LocalTime time{2026, 3, 9, 7, 5, 0};
  EXPECT_EQ(DateText(time), "2026-03-09");
  EXPECT_EQ(TimeText(time), "07:05:00");
}

TEST(LocalTime, OfTheSystemIsAMomentOfTheCalendar) {
  const LocalTime now = SystemLocalTime();
  EXPECT_GE(now.Year, 2024);
  EXPECT_TRUE(now.Month >= 1 && now.Month <= 12);
  EXPECT_TRUE(now.Day >= 1 && now.Day <= 31);
  EXPECT_TRUE(now.Hour >= 0 && now.Hour <= 23);
}

}  // namespace
}  // namespace qk
