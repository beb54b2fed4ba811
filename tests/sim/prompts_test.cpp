// SPDX-License-Identifier: MIT
// Following the program's prompts.
#include "sim/prompts.h"

#include "sim/talker.h"

namespace qk::sim::test {
namespace {

std::string AfterPrompt(const std::string& prompt) {
  Instrument box;
  EXPECT_TRUE(box.FollowPrompt(prompt)) << prompt;
  return box.Describe();
}

TEST(Prompts, ConnectOneStandardToOnePort) {
  EXPECT_EQ(AfterPrompt("Matched Load on Port 1"), "port 1: load male; port 2: nothing");
  EXPECT_EQ(AfterPrompt("Matched Load on Port 2"), "port 1: nothing; port 2: load female");
  EXPECT_EQ(AfterPrompt("Short Circuit on Port 1 (5.00mm)"),
            "port 1: short male offset 5 mm; port 2: nothing");
  EXPECT_EQ(AfterPrompt("Open Circuit on Port 1 (0.00mm)"),
            "port 1: open male offset 0 mm; port 2: nothing");
}

TEST(Prompts, ConnectOneStandardOfTheTwoPortWindowsWithItsOffset) {
  EXPECT_EQ(AfterPrompt("Short Circuit on Port 2 (3.25)"),
            "port 1: nothing; port 2: short female offset 3.25 mm");
  EXPECT_EQ(AfterPrompt("Open Circuit on Port 1  (1.50)"),
            "port 1: open male offset 1.5 mm; port 2: nothing");
  EXPECT_EQ(AfterPrompt("Open Circuit on Port 2  (-1.50)"),
            "port 1: nothing; port 2: open female offset -1.5 mm");
}

TEST(Prompts, ConnectStandardsToBothPortsWithTheirOffsets) {
  EXPECT_EQ(AfterPrompt("Matched Load on Ports 1 & 2"), "port 1: load male; port 2: load female");
  EXPECT_EQ(AfterPrompt("Short Circuit on Ports 1 and 2 (5.00 / 3.00mm)"),
            "port 1: short male offset 5 mm; port 2: short female offset 3 mm");
  EXPECT_EQ(AfterPrompt("Open Circuit on Ports 1 and 2 (0.00 / 2.00mm)"),
            "port 1: open male offset 0 mm; port 2: open female offset 2 mm");
  EXPECT_EQ(AfterPrompt("Terminate Ports 1 & 2"), "port 1: load male; port 2: load female");
}

TEST(Prompts, ConnectTheThrough) {
  EXPECT_EQ(AfterPrompt("Connect Through"), "through");
  EXPECT_EQ(AfterPrompt("Connect Through (0.00 mm)"), "through");
  EXPECT_EQ(AfterPrompt("Connect through (exclude DUT and IN/OUT attenuators)"), "through");
  EXPECT_EQ(AfterPrompt("Connect Port1 to Port2 with Low Loss Cable"), "through");
  EXPECT_EQ(AfterPrompt("Remove Connection from Port1 to Port2"),
            "port 1: nothing; port 2: nothing");
}

TEST(Prompts, ConnectTheThroughStandardThatTheBenchNames) {
  EXPECT_EQ(AfterPrompt("Connect through using Through Standard"), "line 25 mm");
  Instrument box;
  box.Bench("standard line 40");
  EXPECT_TRUE(box.FollowPrompt("Connect through using Through Standard"));
  EXPECT_EQ(box.Describe(), "line 40 mm");
}

TEST(Prompts, ConnectTheDevicesReflectionForTheIsolation) {
  Instrument box;
  box.Bench("amplifier");
  const auto device = box.Truth(1e9);
  ASSERT_TRUE(box.FollowPrompt("DUT on Port 1, DUT on Port 2 "));
  EXPECT_EQ(box.Truth(1e9)[0], device[0]);
  EXPECT_EQ(box.Truth(1e9)[3], device[3]);
  EXPECT_EQ(box.Truth(1e9)[1], std::complex<double>(0)) << "nothing passes";
  ASSERT_TRUE(box.FollowPrompt("DUT on Port 1, Matched load on Port 2 "));
  EXPECT_EQ(box.Truth(1e9)[0], device[0]);
  EXPECT_EQ(box.Truth(1e9)[3], std::complex<double>(0));
  ASSERT_TRUE(box.FollowPrompt("Matched load on Port 1, DUT on Port 2 "));
  EXPECT_EQ(box.Truth(1e9)[0], std::complex<double>(0));
  EXPECT_EQ(box.Truth(1e9)[3], device[3]);
}

TEST(Prompts, RememberTheDeviceThatWasThereBeforeTheFirstOne) {
  Instrument box;
  box.Bench("attenuator 6");
  for (const char* prompt : {"Matched Load on Ports 1 & 2", "Connect Through (0.00 mm)"})
    ASSERT_TRUE(box.FollowPrompt(prompt));
  box.BackToDevice();
  EXPECT_EQ(box.Describe(), "attenuator 6 dB");
  box.BackToDevice();
  EXPECT_EQ(box.Describe(), "attenuator 6 dB");
}

TEST(Prompts, PutTheDeviceBackWhenTheyAskForIt) {
  Instrument box;
  box.Bench("amplifier gain 12");
  ASSERT_TRUE(box.FollowPrompt("Connect through (exclude DUT and IN/OUT attenuators)"));
  ASSERT_TRUE(box.FollowPrompt("Connect DUT"));
  EXPECT_TRUE(box.Describe().starts_with("amplifier gain 12 dB"));
}

TEST(Prompts, GiveWayToWhatTheBenchConnectsAfterwards) {
  for (const char* line : {"line 77", "through", "port1 short", "port2 load"}) {
    Instrument box;
    ASSERT_TRUE(box.FollowPrompt("Matched Load on Port 1"));
    box.Bench(line);
    const std::string connected = box.Describe();
    box.BackToDevice();
    EXPECT_EQ(box.Describe(), connected);
  }
}

TEST(Prompts, LeaveTheOtherPortsStandardWhereItIs) {
  Instrument box;
  ASSERT_TRUE(box.FollowPrompt("Short Circuit on Port 1 (0.00)"));
  ASSERT_TRUE(box.FollowPrompt("Short Circuit on Port 2 (0.00)"));
  EXPECT_EQ(box.Describe(), "port 1: short male offset 0 mm; port 2: short female offset 0 mm");
}

TEST(Prompts, AreNotFollowedWhenTheyNameNothing) {
  Instrument box;
  for (const char* text : {"", "No Response", "Sweep Not Set", "Set Freq Sweep First", "Load Cal",
                           "Open cal not complete. Exit anyway?", "Port 1 Overload!", "(((", ")("})
    EXPECT_FALSE(box.FollowPrompt(text)) << text;
  EXPECT_EQ(box.Describe(), "band-pass filter 900 to 1100 MHz");
}

TEST(Prompts, AreNotFollowedWhenFollowingIsOff) {
  Instrument box;
  box.Bench("follow off");
  EXPECT_FALSE(box.FollowPrompt("Connect Through"));
  EXPECT_EQ(box.Describe(), "band-pass filter 900 to 1100 MHz");
  box.Bench("follow on");
  EXPECT_TRUE(box.FollowPrompt("Connect Through"));
}

TEST(Prompts, TakeABrokenOffsetForNone) {
  EXPECT_EQ(AfterPrompt("Short Circuit on Port 1 (five mm)"),
            "port 1: short male offset 0 mm; port 2: nothing");
}

}  // namespace
}  // namespace qk::sim::test
