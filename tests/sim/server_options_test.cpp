// SPDX-License-Identifier: MIT
#include "sim/server_options.h"

#include <gtest/gtest.h>

namespace qk::sim::test {
namespace {

TEST(ServerOptions, NeedALinkAndHaveDefaults) {
  EXPECT_EQ(ParseServerOptions({}).Error, "--link PATH is needed");
  const ServerOptions o = ParseServerOptions({"--link", "/tmp/vna"});
  EXPECT_EQ(o.Error, "");
  EXPECT_EQ(o.Link, "/tmp/vna");
  EXPECT_EQ(o.LinePace, Pace::Baud115200);
  EXPECT_EQ(o.Box.Firmware, "1.2");
  EXPECT_EQ(o.Box.SerialNumber, "0147");
  EXPECT_EQ(o.Control, "");
}

TEST(ServerOptions, TakeEveryOption) {
  const ServerOptions o = ParseServerOptions(
      {"--link=/tmp/vna", "--pace", "fast", "--firmware", "1.05", "--control", "/tmp/pipe",
       "--seed", "42", "--serial", "0815", "--device", "line 10", "--device=noise off"});
  EXPECT_EQ(o.Error, "");
  EXPECT_EQ(o.LinePace, Pace::Unpaced);
  EXPECT_EQ(o.Box.Firmware, "1.05");
  EXPECT_EQ(o.Control, "/tmp/pipe");
  EXPECT_EQ(o.Box.Seed, 42u);
  EXPECT_EQ(o.Box.SerialNumber, "0815");
  EXPECT_EQ(o.BenchLines, (std::vector<std::string>{"line 10", "noise off"}));
}

TEST(ServerOptions, HelpComesFirst) {
  EXPECT_TRUE(ParseServerOptions({"--help"}).Help);
  EXPECT_TRUE(ParseServerOptions({"--link", "x", "-h"}).Help);
}

TEST(ServerOptions, RefuseBadOnesWithAMessage) {
  const auto error = [](std::vector<std::string> more) {
    more.insert(more.begin(), {"--link", "x"});
    return ParseServerOptions(more).Error;
  };
  EXPECT_EQ(error({"--pace", "9600"}), "--pace: 115200 or fast is expected");
  EXPECT_EQ(error({"--firmware", "2.0"}), "--firmware: 0.9, 1.0, 1.05, 1.1 or 1.2 is expected");
  EXPECT_EQ(error({"--seed", "-1"}), "--seed: a whole number of 0 or more is expected");
  EXPECT_EQ(error({"--seed", "x"}), "--seed: a whole number of 0 or more is expected");
  EXPECT_EQ(error({"--serial", "12345678901"}), "--serial: 1 to 10 characters are expected");
  EXPECT_EQ(error({"--serial="}), "--serial: 1 to 10 characters are expected");
  EXPECT_EQ(error({"--colour", "red"}), "--colour: unknown option");
  EXPECT_EQ(error({"--colour"}), "--colour: unknown option");
  EXPECT_EQ(error({"--pace"}), "--pace: a value is expected");
  EXPECT_EQ(error({"stray"}), "stray: unknown option");
}

}  // namespace
}  // namespace qk::sim::test
