// SPDX-License-Identifier: MIT
// The record of a calibration beside its session file.
#include "files/cal_info.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "bytes.h"
#include "files/session_file.h"
#include "files/whole_file.h"
#include "random_session.h"
#include "support/scratch_folder.h"

namespace qk {
namespace {

const CalRecord kRecord{1773065130, 24.1f, "Default", "N male"};

TEST(CalInfo, HoldsTimeTemperatureAndKitsInPlainLines) {
  EXPECT_EQ(CalInfoBytes(kRecord, ""),
            "QK47-20-09 calibration record 1\nsession cbf29ce484222325\n"
            "made 2026-03-09T14:05:30Z\ntemperature 24.1\nkit1 Default\nkit2 N male\n");
}

TEST(CalInfo, ReadsBackWhatWasWritten) {
  const CalRecord noTemperature{1773065130, std::nullopt, "", "two\nlines"};
  EXPECT_EQ(CalInfoFrom(CalInfoBytes(kRecord, "abc"), "abc"), kRecord);
  CalRecord oneLine = noTemperature;
  oneLine.Kit2 = "two lines";
  EXPECT_EQ(CalInfoFrom(CalInfoBytes(noTemperature, "abc"), "abc"), oneLine);
}

TEST(CalInfo, KeepsTheFrequenciesOfLimitsAsTheyWereTyped) {
  LimitRecords limits;
  limits.Of(2).Segments[1] = {"448.0000", "1028.0000", "-1", "-3", " 500 ", "1080.5"};
  limits.Of(2).Segments[2] = {"448.0000", "1028.0000", "-1", "-3", "448", ""};  // as shown
  limits.Of(2).Segments[3].EnteredStart = "7";                                  // not used
  const TypedLimits typed = TypedLimitsOf(limits);
  EXPECT_EQ(typed, (TypedLimits{{2, "500", "1080.5", "-1", "-3"}}));
  const std::string info = CalInfoBytes({}, "abc", typed);
  EXPECT_TRUE(info.ends_with("\nlimit 2 500 1080.5 -1 -3\n")) << info;
  TypedLimits read;
  ASSERT_TRUE(CalInfoFrom(info, "abc", &read));
  EXPECT_EQ(read, typed);
  for (const char* bad : {"5 500 1080.5 -1 -3", "0 1 2 3 4", "2 500 1080.5 -1", "2 500 x -1 -3",
                          "2 500 1080.5 -1 -3 ", "2 500 1080.5 -1 -3 4", "22 1 2 3 4", ""}) {
    std::string other = info;
    other.replace(other.find("2 500"), std::string("2 500 1080.5 -1 -3").size(), bad);
    EXPECT_FALSE(CalInfoFrom(other, "abc")) << bad;
  }
  LimitRecords put;
  PutTypedLimits(read, put);
  EXPECT_EQ(put.Of(2).Segments[0].EnteredStop, "1080.5");
}

TEST(CalInfo, DoesNotApplyToOtherBytesNorInAnotherForm) {
  const std::string good = CalInfoBytes(kRecord, "abc");
  EXPECT_FALSE(CalInfoFrom(good, "abd"));
  EXPECT_FALSE(CalInfoFrom("", "abc"));
  for (const auto& [part, other] : {std::pair{"record 1", "record 2"}, std::pair{"14:05", "24:05"},
                                    std::pair{"24.1", "24.x"}}) {
    std::string bad = good;
    bad.replace(bad.find(part), std::string(part).size(), other);
    EXPECT_FALSE(CalInfoFrom(bad, "abc")) << other;
  }
}

TEST(CalInfo, GoesWithASessionFileThereAndBack) {
  const test::ScratchFolder scratch;
  const std::string path = scratch.File("bench.cal");
  const auto session = test::AnySession(5);
  session->CalMade = kRecord;
  ASSERT_TRUE(SaveSession(path, *session));
  const auto read = MakeSession();
  ASSERT_TRUE(LoadSession(path, *read));
  EXPECT_EQ(read->CalMade, kRecord);
}

// A program that is killed at any step of a save leaves the session file with its record.
TEST(CalInfo, IsThereAtEachStepOfASave) {
  const test::ScratchFolder folder;
  const std::string path = folder.File("a.cal");
  const CalRecord newer{1773065999, 30.0f, "Other", "Other"};
  PrepareCalInfo(path, "old", kRecord);  // the first save
  EXPECT_EQ(ReadCalInfo(path, "old"), kRecord);
  ASSERT_TRUE(WriteWhole(path, "old"));
  WriteCalInfo(path, "old", kRecord);
  // Killed, or the disk was full, before the session file was replaced: however often.
  for (const char* bytes : {"new", "newer", "newest", "new"}) {
    PrepareCalInfo(path, bytes, newer);
    EXPECT_EQ(ReadCalInfo(path, "old"), kRecord) << bytes;
    EXPECT_EQ(ReadCalInfo(path, bytes), newer);
  }
  ASSERT_TRUE(WriteWhole(path, "new"));  // killed behind that
  EXPECT_EQ(ReadCalInfo(path, "new"), newer);
  PrepareCalInfo(path, "fourth", kRecord);
  EXPECT_EQ(ReadCalInfo(path, "fourth"), kRecord);
  EXPECT_EQ(ReadCalInfo(path, "new"), newer);
  EXPECT_EQ(ReadCalInfo(path, "old"), CalRecord()) << "of no file";
  WriteCalInfo(path, "fourth", kRecord);
  EXPECT_EQ(ReadCalInfo(path, "new"), CalRecord());
  const Result<std::string> left = ReadWhole(CalInfoPath(path), 4096);
  ASSERT_TRUE(left);
  EXPECT_EQ(*left, CalInfoBytes(kRecord, "fourth"));
  PrepareCalInfo(path, "unknown", {});  // nothing is known of the new one
  EXPECT_EQ(ReadCalInfo(path, "fourth"), kRecord);
}

TEST(CalInfo, OfAFileThatAnotherProgramWroteIsUnknown) {
  const test::ScratchFolder scratch;
  const std::string path = scratch.File("bench.cal");
  const auto session = test::AnySession(5);
  session->CalMade = kRecord;
  ASSERT_TRUE(SaveSession(path, *session));
  ASSERT_TRUE(WriteWhole(path, SessionBytes(*test::AnySession(6))));
  ASSERT_TRUE(LoadSession(path, *session));
  EXPECT_EQ(session->CalMade, CalRecord());
}

TEST(CalInfo, OfACalibrationOfUnknownAgeLeavesNoFileOfAnEarlierOne) {
  const test::ScratchFolder scratch;
  const std::string path = scratch.File("bench.cal");
  const auto session = test::AnySession(5);
  session->CalMade = kRecord;
  ASSERT_TRUE(SaveSession(path, *session));
  session->CalMade = {};
  ASSERT_TRUE(SaveSession(path, *session));
  EXPECT_FALSE(std::filesystem::exists(CalInfoPath(path)));
}

}  // namespace
}  // namespace qk
