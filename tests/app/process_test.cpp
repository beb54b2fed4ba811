// SPDX-License-Identifier: MIT
// What the process has from its system.
#include "app/process.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include <poll.h>
#include <unistd.h>

#include "app/port_reasons.h"
#include "support/scratch_folder.h"

namespace qk::test {
namespace {

TEST(Scripts, AFileIsTaken) {
  const ScratchFolder folder;
  std::ofstream(folder.File("x")) << "quit\n";
  const Result<int> script = OpenScript(folder.File("x"));
  ASSERT_TRUE(script.Ok());
  close(*script);
}

TEST(Scripts, AFolderADeviceAndNothingAreRefusedByName) {
  const ScratchFolder folder;
  EXPECT_EQ(OpenScript(folder.Text()).Why().Message,
            "cannot read the script \"" + folder.Text() + "\": it is a folder");
  EXPECT_EQ(OpenScript("/dev/zero").Why().Message,
            "cannot read the script \"/dev/zero\": it is not a file of commands");
  EXPECT_EQ(OpenScript("/no/such").Why().Message,
            "cannot read the script \"/no/such\": No such file or directory");
}

TEST(EndSignals, EachIsReportedThroughTheDescriptor) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const EndSignals caught;
    EXPECT_FALSE(caught.Came());
    std::raise(signal);
    EXPECT_TRUE(caught.Came());
    pollfd entry{caught.Descriptor(), POLLIN, 0};
    EXPECT_EQ(poll(&entry, 1, 0), 1);
  }
}

TEST(EndSignals, TheSecondOneEndsTheProcessAtOnce) {
  EXPECT_EXIT(
      {
        const EndSignals caught;
        std::raise(SIGTERM);
        std::raise(SIGTERM);
      },
      ::testing::ExitedWithCode(128 + SIGTERM), "");
}

TEST(EndSignals, WhatWasIgnoredStaysIgnored) {
  std::signal(SIGHUP, SIG_IGN);
  {
    const EndSignals caught;
    std::raise(SIGHUP);
    EXPECT_FALSE(caught.Came());
  }
  EXPECT_EQ(std::signal(SIGHUP, SIG_DFL), SIG_IGN);
}

TEST(PortReasons, EachIsReportedOnceAndAllStandTogether) {
  std::vector<std::string> told;
  int changes = 0;
  PortReasons reasons([&](const std::string& why) { told.push_back(why); });
  reasons.OnChange = [&] { ++changes; };
  for (const char* why : {"a: missing", "b: held", "a: missing"}) reasons.Add(why);
  EXPECT_EQ(told, (std::vector<std::string>{"a: missing", "b: held"}));
  EXPECT_EQ(changes, 2);
  EXPECT_EQ(reasons.All(), "a: missing\nb: held");
}

}  // namespace
}  // namespace qk::test
