// SPDX-License-Identifier: MIT
// The trend of the checks as a file.
#include "files/check_trend.h"

#include <gtest/gtest.h>

#include "files/whole_file.h"
#include "support/scratch_folder.h"

namespace qk {
namespace {

CheckSummary Sample() {
  CheckSummary check;
  check.Utc = 1773065130;
  check.Serial = 147;
  check.Method = CheckMethod::ShortedLine;
  check.DegC = 24.1f;
  check.CalMadeUtc = 1773061530;
  check.Grid = {3e6, 3.003e9, 7.5e6, 401};
  check.Terms[0] = WorstTerm{0.01, -40, 843e6};
  check.Terms[2] = WorstTerm{0.001, 0.0087, 3e6};
  return check;
}

TEST(CheckTrend, IsALineForEachCheck) {
  EXPECT_EQ(
      CheckTrendLine(Sample()),
      "2026-03-09T14:05:30Z,147,shorted-line,24.1,2026-03-09T13:05:30Z,3000000,3003000000,401,"
      "-40.0000,843000000,,,0.0087,3000000,,,,,,\n");
}

TEST(CheckTrend, GrowsByEachCheckAndReadsBack) {
  const test::ScratchFolder scratch;
  const std::string path = scratch.File("CalChecks.csv");
  EXPECT_TRUE(ReadCheckTrend(path).Value().empty());
  CheckSummary second = Sample();
  second.DegC.reset();
  second.CalMadeUtc.reset();
  second.Method = CheckMethod::Through;
  ASSERT_TRUE(AddToCheckTrend(path, Sample()));
  ASSERT_TRUE(AddToCheckTrend(path, second));
  const auto checks = ReadCheckTrend(path);
  ASSERT_TRUE(checks);
  ASSERT_EQ(checks->size(), 2u);
  EXPECT_EQ(CheckTrendLine((*checks)[0]), CheckTrendLine(Sample()));
  EXPECT_EQ(CheckTrendLine((*checks)[1]), CheckTrendLine(second));
  EXPECT_NEAR((*checks)[0].Grid.StepFreq, 7.5e6, 1e-3);
}

TEST(CheckTrend, IsNeverWrittenBehindLinesOfSomethingElse) {
  const test::ScratchFolder scratch;
  const std::string path = scratch.File("CalChecks.csv");
  for (const auto& [text, why] :
       {std::pair<std::string, std::string>{"name,price\n",
                                            ": line 1: not a trend of calibration checks"},
        {CheckTrendHeader() + "2026\n", ": line 2: not a check of a calibration"},
        {CheckTrendHeader() + CheckTrendLine(Sample()) + "x" + CheckTrendLine(Sample()),
         ": line 3: not a check of a calibration"}}) {
    ASSERT_TRUE(WriteWhole(path, text));
    const auto added = AddToCheckTrend(path, Sample());
    ASSERT_FALSE(added);
    EXPECT_EQ(added.Why().Text(), path + why);
    EXPECT_EQ(ReadWhole(path, 100000).Value(), text);
  }
}

}  // namespace
}  // namespace qk
