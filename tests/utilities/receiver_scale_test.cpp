// SPDX-License-Identifier: MIT
// The receiver as a power meter.
#include "utilities/receiver_scale.h"

#include <gtest/gtest.h>

#include <fstream>

#include "support/scratch_folder.h"

namespace qk::test {
namespace {

// Entry i is 100 + i mV for -18 dBm; temperature byte 130.
std::string Table(int numbers = 6141) {
  std::string text;
  for (int i = 0; i < numbers - 1; ++i)
    text += i % 2 == 0 ? " " + std::to_string(100 + i / 2) + ".5\r\n" : "-18\r\n";
  return text + " 130\r\n";
}

TEST(ReceiverScale, TakesTwoNumbersAnEntryAndTheTemperatureLast) {
  const auto scale = ParseReceiverScale(Table());
  ASSERT_TRUE(scale.Ok());
  EXPECT_EQ(scale->CalTable.size(), 3070u);
  EXPECT_EQ(scale->CalTable[7].Millivolts, 107.5f);
  EXPECT_EQ(scale->CalTable[3069].Dbm, -18);
  EXPECT_EQ(scale->CalTemperature, 28);
}

TEST(ReceiverScale, RefusesWhatIsNotWhole) {
  EXPECT_FALSE(ParseReceiverScale("").Ok());
  EXPECT_FALSE(ParseReceiverScale(Table(6139)).Ok());
  EXPECT_FALSE(ParseReceiverScale(Table(6143)).Ok());
  std::string text = Table();
  EXPECT_FALSE(ParseReceiverScale(text.replace(20, 1, "x")).Ok());
  for (std::size_t cut = 1; cut < 40; ++cut)
    EXPECT_FALSE(ParseReceiverScale(Table().substr(0, Table().size() - cut)).Ok()) << cut;
}

TEST(ReceiverScale, IsReadFromTheInstallFolder) {
  const ScratchFolder folder;
  EXPECT_FALSE(ReadReceiverScale(folder.Text()).Ok());
  std::ofstream(folder.File("RXCal.dat"), std::ios::binary) << Table();
  EXPECT_TRUE(ReadReceiverScale(folder.Text()).Ok());
  std::ofstream(folder.File("RXCal.dat"), std::ios::binary) << std::string(2 << 20, ' ');
  EXPECT_FALSE(ReadReceiverScale(folder.Text()).Ok());
}

TEST(ReceiverScale, HasAnEntryAMegahertzFrom3) {
  SweepPlan plan;
  plan.StartFreq = 100.4e6;
  plan.StepFreq = 10e6;
  EXPECT_EQ(ScaleEntryOf(plan, 0), 97u);
  EXPECT_EQ(ScaleEntryOf(plan, 2), 117u);
  plan.StartFreq = 3e6;
  EXPECT_EQ(ScaleEntryOf(plan, 0), 0u);
  plan.StartFreq = 3072e6;
  EXPECT_EQ(ScaleEntryOf(plan, 0), 3069u);
  plan.StartFreq = 3080e6;
  EXPECT_EQ(ScaleEntryOf(plan, 0), 3069u) << "held within the table";
}

TEST(PowerMeter, ReportsDbmByTheTablesRatioAndTheTemperature) {
  const ReceiverScale scale = *ParseReceiverScale(Table());
  SweepPlan plan;
  plan.StartFreq = 3e6;
  const PowerMeter meter = MeterFor(scale, plan, 0, 32);
  EXPECT_NEAR(meter.Dbm(1005), -18 + 20 + 4 * 0.05, 1e-6);
  EXPECT_NEAR(MeterFor(scale, plan, 0, 28).Dbm(100.5), -18, 1e-6);
}

TEST(PowerMeter, MeetsTheFloorWhereNothingIsPositive) {
  EXPECT_NEAR((PowerMeter{{100, -18}, 0}.Dbm(-5)), -18 - 220, 1e-9);
  EXPECT_TRUE(std::isfinite(PowerMeter{{0, -18}, 0}.Dbm(5)));
}

TEST(NearestPoint, RoundsToThePlanAndEndsWithIt) {
  SweepPlan plan;
  plan.StartFreq = 100e6;
  plan.StepFreq = 10e6;
  plan.NumPoints = 51;
  EXPECT_EQ(NearestPoint(plan, 104.9), 0);
  EXPECT_EQ(NearestPoint(plan, 105), 1);
  EXPECT_EQ(NearestPoint(plan, 95), 0);
  EXPECT_EQ(NearestPoint(plan, 94.9), std::nullopt);
  EXPECT_EQ(NearestPoint(plan, 604.9), 50);
  EXPECT_EQ(NearestPoint(plan, 605), std::nullopt);
  EXPECT_EQ(NearestPoint(plan, 1e300), std::nullopt);
}

}  // namespace
}  // namespace qk::test
