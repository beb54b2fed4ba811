// SPDX-License-Identifier: MIT
// The bytes of every command, and the judging of short replies.
#include "link/command_set.h"

#include <gtest/gtest.h>

namespace qk {
namespace {

TEST(CommandSet, ReadingTheReceiverDataSendsItsAddressHighByteFirst) {
  EXPECT_EQ(command::ReadEeprom(120, 11008), (Bytes{'P', 120, 43, 0}));
}

TEST(CommandSet, ReadingTheSerialNumberNamesFourBytesAtTen) {
  EXPECT_EQ(command::ReadEeprom(4, 10), (Bytes{'P', 4, 0, 10}));
}

TEST(CommandSet, WritingTheEepromHasTwoLetters) {
  EXPECT_EQ(command::WriteEeprom(128, 32640), (Bytes{'E', 'E', 128, 127, 128}));
}

TEST(CommandSet, TheOffsetRecordStandsAt32738) {
  EXPECT_EQ(command::WriteSweepRam(22, command::kOffsetRecordAddress), (Bytes{'W', 22, 127, 226}));
}

TEST(CommandSet, DwellAveragesAndContinuousWaveCarryOneRawByte) {
  EXPECT_EQ(command::Dwell(true), (Bytes{'D', 1}));
  EXPECT_EQ(command::Dwell(false), (Bytes{'D', 0}));
  EXPECT_EQ(command::SetAverages(255), (Bytes{'Y', '8', 255}));
  EXPECT_EQ(command::ContinuousWave(), (Bytes{'Z', 0}));
}

TEST(CommandSet, EitherOfTheTwoStatusLettersIsASignOfLife) {
  EXPECT_TRUE(command::IsSignOfLife(Bytes{'R'}));
  EXPECT_TRUE(command::IsSignOfLife(Bytes{'S'}));
  EXPECT_FALSE(command::IsSignOfLife(Bytes{'Q'}));
  EXPECT_FALSE(command::IsSignOfLife(Bytes{'r'}));
  EXPECT_FALSE(command::IsSignOfLife(Bytes{}));
}

TEST(CommandSet, AReplyIsWholeAtItsLengthAndNotBeforeOrBehind) {
  EXPECT_EQ(command::StateOfReply(0, 12), command::ReplyState::NeedMore);
  EXPECT_EQ(command::StateOfReply(11, 12), command::ReplyState::NeedMore);
  EXPECT_EQ(command::StateOfReply(12, 12), command::ReplyState::Whole);
  EXPECT_EQ(command::StateOfReply(13, 12), command::ReplyState::TooLong);
}

}  // namespace
}  // namespace qk
