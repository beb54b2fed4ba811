// SPDX-License-Identifier: MIT
// Error texts, the queue and the registers of one client.
#include "scpi/status.h"

#include <gtest/gtest.h>

namespace qk::scpi {
namespace {

TEST(ErrorText, IsNumberAndQuotedText) {
  EXPECT_EQ(ErrorText({}), "0,\"No error\"");
  EXPECT_EQ(ErrorText({kUndefinedHeader, "FOO"}), "-113,\"Undefined header;FOO\"");
  EXPECT_EQ(ErrorText({kExecution, "a \"b\"\n\xff"}), "-200,\"Execution error;a \"\"b\"\"??\"");
  EXPECT_EQ(ErrorText({kExecution, std::string(1000, 'x')}).size(), 5u + 255u + 2u);
}

TEST(ClientStatus, KeepsErrorsInTheirOrder) {
  ClientStatus status;
  status.Push({kUndefinedHeader, "A"});
  status.Push({kHardware, "B"});
  EXPECT_EQ(status.Errors(), 2u);
  EXPECT_EQ(status.Pop().Number, kUndefinedHeader);
  EXPECT_EQ(status.Pop().Detail, "B");
  EXPECT_EQ(status.Pop().Number, kNoError);
}

TEST(ClientStatus, ReportsAnOverflowInPlaceOfTheLast) {
  ClientStatus status;
  for (int i = 0; i < 40; ++i) status.Push({kExecution, std::to_string(i)});
  EXPECT_EQ(status.Errors(), 32u);
  EXPECT_EQ(status.TakeEvents(), 128 + 16 + 8);
  for (int i = 0; i < 31; ++i) EXPECT_EQ(status.Pop().Detail, std::to_string(i));
  EXPECT_EQ(ErrorText(status.Pop()), "-350,\"Queue overflow\"");
  EXPECT_EQ(status.Pop().Number, kNoError);
}

TEST(ClientStatus, SetsTheEventBitOfAnError) {
  ClientStatus status;
  EXPECT_EQ(status.TakeEvents(), 128);  // power on
  status.Push({kUndefinedHeader, ""});
  EXPECT_EQ(status.TakeEvents(), 32);
  status.Push({kSettingsConflict, ""});
  EXPECT_EQ(status.TakeEvents(), 16);
  status.Push({kInputOverrun, ""});
  EXPECT_EQ(status.TakeEvents(), 8);
  EXPECT_EQ(status.TakeEvents(), 0);
  status.Raise(Event::UserRequest);
  EXPECT_EQ(status.TakeEvents(), 64);
}

TEST(ClientStatus, SumsUpInTheStatusByte) {
  ClientStatus status;
  status.TakeEvents();
  EXPECT_EQ(status.StatusByte(), 0);
  status.Push({kExecution, ""});
  EXPECT_EQ(status.StatusByte(), 4);
  status.EventEnable = 16;
  EXPECT_EQ(status.StatusByte(), 4 + 32);
  status.ServiceEnable = 32;
  EXPECT_EQ(status.StatusByte(), 4 + 32 + 64);
  status.Operation.Enable = kSweeping;
  status.Operation.SetCondition(kSweeping);
  status.Questionable.Enable = kLinkLost;
  status.Questionable.SetCondition(kLinkLost);
  EXPECT_EQ(status.StatusByte(), 4 + 8 + 32 + 64 + 128);
  status.Clear();
  EXPECT_EQ(status.StatusByte(), 0);
  EXPECT_EQ(status.Operation.Condition(), kSweeping);
}

TEST(StatusGroup, KeepsARiseUntilItIsRead) {
  StatusGroup group;
  group.SetCondition(8);
  group.SetCondition(0);
  EXPECT_EQ(group.Condition(), 0);
  EXPECT_EQ(group.TakeEvent(), 8);
  EXPECT_EQ(group.TakeEvent(), 0);
  group.SetCondition(8);
  EXPECT_EQ(group.TakeEvent(), 8);
  group.SetCondition(8);  // still there: no rise
  EXPECT_EQ(group.TakeEvent(), 0);
}

}  // namespace
}  // namespace qk::scpi
