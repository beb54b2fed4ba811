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
  check.Calibration = SweepMode::S11;
  check.Standard = "300 mm";
  check.Terms[0] = WorstTerm{0.01, -40, 843e6};
  check.Terms[2] = WorstTerm{0.001, 0.0087, 3e6};
  return check;
}

TEST(CheckTrend, IsALineForEachCheck) {
  EXPECT_EQ(
      CheckTrendLine(Sample()),
      "2026-03-09T14:05:30Z,147,shorted-line,24.1,2026-03-09T13:05:30Z,3000000,3003000000,401,"
      "-40.0000,843000000,,,0.0087,3000000,,,,,,,S11,300 mm\n");
}

TEST(CheckTrend, TakesANameWithACommaOrALineEndAsAField) {
  CheckSummary check = Sample();
  check.Standard = "N, male\n2026";
  const auto read = CheckTrendFrom(CheckTrendHeader() + CheckTrendLine(check));
  ASSERT_TRUE(read);
  EXPECT_EQ((*read)[0].Standard, "N; male 2026");
  EXPECT_EQ((*read)[0].Standard, TrendWord(check.Standard));
  EXPECT_EQ((*read)[0].Calibration, SweepMode::S11);
}

// A file without the last two columns is read, and grows by them with the next check.
TEST(CheckTrend, OfAnEarlierVersionIsKeptAndContinued) {
  const test::ScratchFolder scratch;
  const std::string path = scratch.File("CalChecks.csv");
  const auto withoutLastTwo = [](std::string line) {
    for (int n = 0; n < 2; ++n) line.erase(line.rfind(','));
    return line + "\n";
  };
  const std::string old = withoutLastTwo(CheckTrendLine(Sample()));
  ASSERT_TRUE(WriteWhole(path, withoutLastTwo(CheckTrendHeader()) + old));
  const auto before = ReadCheckTrend(path);
  ASSERT_TRUE(before);
  ASSERT_EQ(before->size(), 1u);
  EXPECT_EQ((*before)[0].Calibration, std::nullopt);
  EXPECT_EQ((*before)[0].Standard, "");
  EXPECT_EQ((*before)[0].Utc, Sample().Utc);
  ASSERT_TRUE(AddToCheckTrend(path, Sample()));
  EXPECT_EQ(ReadWhole(path, 100000).Value(),
            CheckTrendHeader() + old.substr(0, old.size() - 1) + ",,\n" + CheckTrendLine(Sample()));
  EXPECT_EQ(ReadCheckTrend(path)->size(), 2u);
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
        {CheckTrendHeader() + "2026-03-09T14:05:30Z,1,through,,,3,4,11,,,,,,,,,,,,,S12,\n",
         ": line 2: not a check of a calibration"},
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
