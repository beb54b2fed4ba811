// SPDX-License-Identifier: MIT
#include "core/local_time.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "support/own_locale.h"

namespace qk {
namespace {

constexpr LocalTime kTime{2026, 3, 9, 7, 5, 0};

// The environment with one locale set, or none.
class Environment {
 public:
  explicit Environment(const char* variable = nullptr, const char* value = "") {
    for (const char* name : kNames) ::unsetenv(name);
    if (variable != nullptr) ::setenv(variable, value, 1);
  }
  ~Environment() {
    for (const char* name : kNames) ::unsetenv(name);
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  static constexpr const char* kNames[] = {"LC_ALL", "LC_TIME", "LANG"};
};

TEST(LocalTime, WithoutALocaleIsWrittenFromTheYearDownAndFromTheHourDown) {
  const auto expectPlain = [] {
    EXPECT_EQ(DateText(kTime), "2026-03-09");
    EXPECT_EQ(TimeText(kTime), "07:05:00");
  };
  {
    const Environment none;
    expectPlain();
  }
  for (const char* value : {"C", "POSIX", "C.UTF-8", "", "zz_ZZ.not-installed"})
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
      const Environment set(variable, value);
      expectPlain();
    }
}

TEST(LocalTime, IsWrittenInTheShortFormsOfTheLocale) {
  const test::OwnLocale locale("LC_TIME\nd_fmt \"%d.%m.%Y\"\nt_fmt \"%Hh%M\"\nEND LC_TIME\n");
  if (!locale.Made()) GTEST_SKIP() << "localedef is missing";
  EXPECT_EQ(DateText(kTime), "09.03.2026");
  EXPECT_EQ(TimeText(kTime), "07h05");
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
