// SPDX-License-Identifier: MIT
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

TEST(UtcText, IsTheUsualFormAndReadsBack) {
  EXPECT_EQ(UtcText(0), "1970-01-01T00:00:00Z");
  EXPECT_EQ(UtcText(1773065130), "2026-03-09T14:05:30Z");
  EXPECT_EQ(UtcText(1709251199), "2024-02-29T23:59:59Z");
  EXPECT_EQ(UtcText(-5), "1970-01-01T00:00:00Z");
  EXPECT_EQ(UtcText(999999999999), "9999-12-31T23:59:59Z");
  for (const std::int64_t t : {0L, 1773065130L, 1709251199L, 4107542400L})
    EXPECT_EQ(UnixSecondsFrom(UtcText(t)), t);
}

TEST(UtcText, RefusesWhatIsNoMoment) {
  for (const char* bad : {"", "2026-03-09T14:05:30", "2026-02-30T14:05:30Z", "2026-13-09T14:05:30Z",
                          "2026-03-09T24:05:30Z", "2026-03-09T14:60:30Z", "2026-03-09T14:05:60Z",
                          "2026-03-09 14:05:30Z", "20x6-03-09T14:05:30Z", "1969-12-31T23:59:59Z"})
    EXPECT_FALSE(UnixSecondsFrom(bad)) << bad;
}

}  // namespace
}  // namespace qk
