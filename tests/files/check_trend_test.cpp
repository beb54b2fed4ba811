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
      "-40.0000,843000000,,,0.0087,3000000,,,,,,,S11,300 mm,,,,,,\n");
  CheckSummary port2 = Sample();
  port2.Method = CheckMethod::Standards2;
  port2.Terms = {};
  port2.Terms[7] = WorstTerm{0.02, -33.9794, 3e6};
  EXPECT_EQ(CheckTrendLine(port2),
            "2026-03-09T14:05:30Z,147,standards-port2,24.1,2026-03-09T13:05:30Z,3000000,3003000000,"
            "401,,,,,,,,,,,,,S11,300 mm,,,-33.9794,3000000,,\n");
  EXPECT_TRUE(CheckTrendHeader().ends_with(
      ",isolation_dB,isolation_Hz,calibration,standard,port2_directivity_dB,port2_directivity_Hz,"
      "port2_source_match_dB,port2_source_match_Hz,port2_reflection_tracking_dB,"
      "port2_reflection_tracking_Hz\n"));
  EXPECT_EQ(CheckTrendFrom(CheckTrendHeader() + CheckTrendLine(port2))->at(0).Terms[7]->Db,
            -33.9794);
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

// A file of an earlier version is read, and grows by the missing columns with the next check: six
// of port 2, and before them calibration and standard.
struct EarlierTrend : testing::TestWithParam<int> {};

TEST_P(EarlierTrend, IsKeptAndContinued) {
  const test::ScratchFolder scratch;
  const std::string path = scratch.File("CalChecks.csv");
  const auto shorter = [](std::string line) {
    for (int n = 0; n < GetParam(); ++n) line.erase(line.rfind(','));
    return line + "\n";
  };
  const std::string old = shorter(CheckTrendLine(Sample()));
  ASSERT_TRUE(WriteWhole(path, shorter(CheckTrendHeader()) + old));
  const auto before = ReadCheckTrend(path);
  ASSERT_TRUE(before);
  ASSERT_EQ(before->size(), 1u);
  EXPECT_EQ((*before)[0].Calibration.has_value(), GetParam() == 6);
  EXPECT_EQ((*before)[0].Standard, GetParam() == 6 ? "300 mm" : "");
  EXPECT_EQ((*before)[0].Utc, Sample().Utc);
  EXPECT_EQ((*before)[0].Terms[2]->Hz, 3e6);
  EXPECT_FALSE((*before)[0].Terms[6]);
  ASSERT_TRUE(AddToCheckTrend(path, Sample()));
  EXPECT_EQ(ReadWhole(path, 100000).Value(),
            CheckTrendHeader() + old.substr(0, old.size() - 1) +
                std::string(static_cast<std::size_t>(GetParam()), ',') + "\n" +
                CheckTrendLine(Sample()));
  EXPECT_EQ(ReadCheckTrend(path)->size(), 2u);
}

INSTANTIATE_TEST_SUITE_P(CheckTrend, EarlierTrend, testing::Values(6, 8));

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
