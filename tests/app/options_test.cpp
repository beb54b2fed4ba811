// SPDX-License-Identifier: MIT
#include "app/options.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include <QtGlobal>

#include "core/program_version.h"

namespace qk {
namespace {

std::string ErrorOf(const std::vector<std::string>& arguments) {
  return ParseOptions(arguments).Error;
}

TEST(Options, WithoutAnyTheWindowsOpenOnTheListedPorts) {
  const Options options = ParseOptions({});
  EXPECT_EQ(options.Error, "");
  EXPECT_FALSE(options.Console);
  EXPECT_FALSE(options.Demo);
  EXPECT_TRUE(options.Com.empty());
  EXPECT_EQ(options.Folder, "");
  EXPECT_EQ(options.DemoPace, sim::Pace::Baud115200);
}

TEST(Options, ValuesFollowAsNextWordOrBehindAnEqualsSign) {
  const Options options = ParseOptions({"--console", "--script", "a.console", "--folder=/tmp/x y",
                                        "--com", "1=/dev/ttyUSB0", "--com=16=/tmp/a=b"});
  EXPECT_EQ(options.Error, "");
  EXPECT_TRUE(options.Console);
  EXPECT_EQ(options.Script, "a.console");
  EXPECT_EQ(options.Folder, "/tmp/x y");
  EXPECT_EQ(options.Com, (std::map<int, std::string>{{1, "/dev/ttyUSB0"}, {16, "/tmp/a=b"}}));
}

TEST(Options, TheDemonstrationHasAPace) {
  EXPECT_EQ(ParseOptions({"--demo", "--pace", "fast"}).DemoPace, sim::Pace::Unpaced);
  EXPECT_EQ(ParseOptions({"--demo", "--pace", "115200"}).DemoPace, sim::Pace::Baud115200);
  EXPECT_EQ(ErrorOf({"--demo", "--pace", "slow"}), "--pace takes fast or 115200");
}

TEST(Options, HelpAndVersionAreTaken) {
  EXPECT_TRUE(ParseOptions({"--help"}).Help);
  EXPECT_TRUE(ParseOptions({"--version"}).Version);
  const std::string version = VersionText();
  EXPECT_EQ(version.rfind("qk47-vna " + std::string(ProgramVersion()) + " (commit ", 0), 0u);
  EXPECT_NE(version.find(std::string(", Qt ") + qVersion() + ")\n"), std::string::npos) << version;
}

TEST(Options, OneFileIsTakenToBeOpenedInTheWindows) {
  EXPECT_EQ(ParseOptions({"a b.cal"}).File, "a b.cal");
  EXPECT_EQ(ParseOptions({"--demo", "x.s2p", "--pace", "fast"}).File, "x.s2p");
  EXPECT_EQ(ParseOptions({"--folder", "x.s2p"}).File, "");
  EXPECT_EQ(ErrorOf({"a.cal", "b.cal"}), "one file at a time can be opened; \"b.cal\" is a second");
  for (const std::vector<std::string>& without :
       {std::vector<std::string>{"a.cal", "--console"}, {"--scpi", "-", "a.cal"}})
    EXPECT_EQ(ErrorOf(without),
              "a file to open goes with the windows, not with --console or --scpi -");
}

TEST(Options, UnknownWordsAreRefusedByName) {
  EXPECT_EQ(ErrorOf({"--loud"}), "unknown option \"--loud\"");
  EXPECT_EQ(ErrorOf({""}), "unknown option \"\"");
  EXPECT_EQ(ErrorOf({"-h"}), "unknown option \"-h\"");
}

TEST(Options, AMissingOrSuperfluousValueIsReportedByName) {
  EXPECT_EQ(ErrorOf({"--console", "--script"}), "--script takes a value");
  EXPECT_EQ(ErrorOf({"--folder="}), "--folder takes a path");
  EXPECT_EQ(ErrorOf({"--demo=yes"}), "--demo takes no value");
}

TEST(Options, AComNumberIsOneToSixteenWithADevice) {
  for (const char* bad : {"0=/dev/a", "17=/dev/a", "x=/dev/a", "1", "1=", "=/dev/a", "1x=/dev/a"})
    EXPECT_EQ(ErrorOf({"--com", bad}),
              "--com takes N=DEVICE with N from 1 to 16, not \"" + std::string(bad) + "\"");
  EXPECT_EQ(ErrorOf({"--com", "2=/dev/a", "--com", "2=/dev/b"}), "COM 2 is given twice");
}

TEST(Options, WhatDoesNotGoTogetherIsRefused) {
  EXPECT_EQ(ErrorOf({"--script", "a"}), "--script goes with --console");
  EXPECT_EQ(ErrorOf({"--pace", "fast"}), "--pace goes with --demo");
  EXPECT_EQ(ErrorOf({"--demo", "--com", "1=/dev/a"}), "--demo and --com do not go together");
}

TEST(Options, EveryOptionStandsInTheHelp) {
  for (const char* name : {"--com N=DEVICE", "--folder DIR", "--demo", "--pace fast", "--console",
                           "--script FILE", "--help", "--version"})
    EXPECT_NE(std::string(UsageText()).find(name), std::string::npos) << name;
}

TEST(Options, TheInstallFolderStandsInTheHome) {
  setenv("HOME", "/home/somebody", 1);
  EXPECT_EQ(DefaultFolder(), "/home/somebody/QK47-20-09");
  unsetenv("HOME");
  EXPECT_EQ(DefaultFolder(), "./QK47-20-09");
}

TEST(Options, RemoteControlTakesAPortOrStandardInput) {
  EXPECT_FALSE(ParseOptions({}).ScpiPort);
  EXPECT_EQ(ParseOptions({"--scpi"}).ScpiPort, 5025);
  EXPECT_EQ(ParseOptions({"--scpi=0"}).ScpiPort, 0);
  EXPECT_EQ(ParseOptions({"--scpi=6000", "--demo"}).ScpiPort, 6000);
  EXPECT_TRUE(ParseOptions({"--scpi", "-"}).ScpiStandard);
  EXPECT_TRUE(ParseOptions({"--scpi=-", "--demo"}).ScpiStandard);
  for (const char* bad : {"--scpi=", "--scpi=65536", "--scpi=-1", "--scpi=5025x", "--scpi=x"})
    EXPECT_NE(ParseOptions({bad}).Error, "") << bad;
  EXPECT_NE(ParseOptions({"--scpi", "-", "--console"}).Error, "");
  EXPECT_NE(ParseOptions({"--scpi", "-", "--scpi=1"}).Error, "");
}

}  // namespace
}  // namespace qk
