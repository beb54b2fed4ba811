// SPDX-License-Identifier: MIT
#include "sim/touchstone.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include <random>
#include <sstream>

namespace qk::sim::test {
namespace {

TouchstoneResult Read(const std::string& text, int ports) {
  std::istringstream in(text);
  return ReadTouchstone(in, ports);
}

void ExpectNear(Complex got, Complex want) {
  EXPECT_NEAR(got.real(), want.real(), 1e-12);
  EXPECT_NEAR(got.imag(), want.imag(), 1e-12);
}

TEST(Touchstone, ReadsRealAndImaginaryInTheOrder11_21_12_22) {
  const auto r = Read("# MHZ S RI R 50\n10 .1 .2 .3 .4 .5 .6 .7 .8\n", 2);
  ASSERT_EQ(r.Error, "");
  EXPECT_EQ(r.Data.Hz, std::vector<double>{10e6});
  ExpectNear(r.Data.Points[0].S11, {.1, .2});
  ExpectNear(r.Data.Points[0].S21, {.3, .4});
  ExpectNear(r.Data.Points[0].S12, {.5, .6});
  ExpectNear(r.Data.Points[0].S22, {.7, .8});
}

TEST(Touchstone, ReadsMagnitudeAndDecibels) {
  ExpectNear(Read("# HZ S MA R 50\n1 0.5 90\n", 1).Data.Points[0].S11, {0, .5});
  ExpectNear(Read("# HZ S DB R 50\n1 -20 180\n", 1).Data.Points[0].S11, {-.1, 0});
}

TEST(Touchstone, TakesGigahertzAndMagnitudeWithoutAnOptionLine) {
  const auto r = Read("1.5 0.5 0\n", 1);
  ASSERT_EQ(r.Error, "");
  EXPECT_EQ(r.Data.Hz[0], 1.5e9);
  ExpectNear(r.Data.Points[0].S11, .5);
}

TEST(Touchstone, TakesEveryUnitInAnyCaseAndOrder) {
  EXPECT_EQ(Read("# ri kHz s r 50\n1 0 0\n", 1).Data.Hz[0], 1e3);
  EXPECT_EQ(Read("#GHZ S RI\n1 0 0\n", 1).Data.Hz[0], 1e9);
  EXPECT_EQ(Read("# R 50 Hz RI S\n1 0 0\n", 1).Data.Hz[0], 1);
}

TEST(Touchstone, PassesOverCommentsBlankLinesTabsAndCarriageReturns) {
  const auto r = Read("! begin\r\n\r\n# HZ S RI R 50 ! options\r\n1\t.5 .25 ! row\r\n!end\r\n", 1);
  ASSERT_EQ(r.Error, "");
  ExpectNear(r.Data.Points[0].S11, {.5, .25});
}

TEST(Touchstone, JoinsARowThatIsBrokenOverLines) {
  const auto r = Read("# HZ S RI R 50\n1 .1 0 .2 0\n .3 0 .4 0\n2 0 0 0 0 0 0 0 0\n", 2);
  ASSERT_EQ(r.Error, "");
  ASSERT_EQ(r.Data.Hz.size(), 2u);
  ExpectNear(r.Data.Points[0].S22, .4);
}

TEST(Touchstone, LeavesTheNoiseBlockAside) {
  const auto r = Read(
      "# MHZ S RI R 50\n10 0 0 0 0 0 0 0 0\n20 0 0 0 0 0 0 0 0\n! noise\n10 1.0 0.1 20 0.2\n"
      "15 1.1 0.1 20 0.2\n",
      2);
  ASSERT_EQ(r.Error, "");
  EXPECT_EQ(r.Data.Hz.size(), 2u);
}

TEST(Touchstone, TurnsOtherResistancesInto50Ohms) {
  // 75 ohms seen in a 75 ohm system do not reflect; in 50 ohms they reflect 25 / 125.
  ExpectNear(Read("# HZ S RI R 75\n1 0 0\n", 1).Data.Points[0].S11, .2);
  // An ideal through is one in every system.
  const auto through = Read("# HZ S RI R 75\n1 0 0 1 0 1 0 0 0\n", 2).Data.Points[0];
  ExpectNear(through.S11, 0);
  ExpectNear(through.S21, 1);
  // A series resistor of 100 ohms: S11 = R / (R + 2 Z), S21 = 2 Z / (R + 2 Z).
  const double in75 = 100 / 250.0, t75 = 150 / 250.0;
  std::ostringstream text;
  text.precision(17);
  text << "# HZ S RI R 75\n1 " << in75 << " 0 " << t75 << " 0 " << t75 << " 0 " << in75 << " 0\n";
  const auto series = Read(text.str(), 2).Data.Points[0];
  ExpectNear(series.S11, .5);
  ExpectNear(series.S21, .5);
  ExpectNear(series.S22, .5);
}

struct BadFile {
  const char* Name;
  const char* Text;
  int Ports;
  const char* Error;
  friend std::ostream& operator<<(std::ostream& out, const BadFile& bad) { return out << bad.Name; }
};

class TouchstoneRefuses : public ::testing::TestWithParam<BadFile> {};

TEST_P(TouchstoneRefuses, WithTheLine) {
  const auto r = Read(GetParam().Text, GetParam().Ports);
  EXPECT_EQ(r.Error, GetParam().Error);
  EXPECT_TRUE(r.Data.Hz.empty());
}

INSTANTIATE_TEST_SUITE_P(
    BadFiles, TouchstoneRefuses,
    ::testing::Values(
        BadFile{"Empty", "", 1, "line 0: no data"},
        BadFile{"OnlyComments", "! one\n! two\n", 1, "line 2: no data"},
        BadFile{"NoNumber", "# HZ S RI\n1 0 zero\n", 1, "line 2: \"zero\" is not a number"},
        BadFile{"HalfANumber", "# HZ S RI\n1 0 0x\n", 1, "line 2: \"0x\" is not a number"},
        BadFile{"NotFinite", "# HZ S RI\n1 nan 0\n", 1, "line 2: \"nan\" is not a number"},
        BadFile{"HugeDecibels", "# HZ S DB\n1 99999 0\n", 1, "line 2: a value without bounds"},
        BadFile{"ShortRow", "# HZ S RI\n1 0 0 0 0\n", 2, "line 2: the last row is not complete"},
        BadFile{"OnePortRows", "# HZ S RI\n1 0 0\n2 0 0\n3 0 0\n", 2,
                "line 3: a row of a two-port has 9 values"},
        BadFile{"TwoPortRow", "# HZ S RI\n1 0 0 0 0 0 0 0 0\n", 1, "line 2: more than one row"},
        BadFile{"EvenRow", "# HZ S RI\n1 0\n", 1, "line 2: a row of a one-port has 3 values"},
        BadFile{"HugeValue", "# HZ S RI\n1 1e300 0\n", 1, "line 2: a value without bounds"},
        BadFile{"HugeFrequency", "# GHZ S RI\n1e300 0 0\n", 1,
                "line 2: a frequency without bounds"},
        BadFile{"Falling", "# HZ S RI\n2 0 0\n1 0 0\n", 1, "line 3: the frequencies must rise"},
        BadFile{"Twice", "# HZ S RI\n2 0 0\n2 0 0\n", 1, "line 3: the frequencies must rise"},
        BadFile{"Negative", "# HZ S RI\n-1 0 0\n", 1, "line 2: a frequency below 0"},
        BadFile{"NoS", "# HZ Z RI\n1 0 0\n", 1, "line 1: unknown option \"Z\""},
        BadFile{"NoR", "# HZ S RI R\n1 0 0\n", 1, "line 1: R needs a positive number of ohms"},
        BadFile{"ZeroR", "# HZ S RI R 0\n1 0 0\n", 1, "line 1: R needs a positive number of ohms"},
        BadFile{"LateOptions", "1 0 0\n# HZ S RI\n", 1, "line 2: option line behind the data"},
        BadFile{"Version2", "[Version] 2.0\n", 2, "line 1: Touchstone 2 is not read"}),
    [](const auto& p) { return std::string(p.param.Name); });

TEST(Touchstone, RefusesAFileWithoutItsExtensionOrThatIsNotThere) {
  EXPECT_EQ(ReadTouchstoneFile("filter.txt").Error, "filter.txt: neither an .s1p nor an .s2p file");
  EXPECT_EQ(ReadTouchstoneFile("/nowhere/x.s2p").Error, "/nowhere/x.s2p: cannot be opened");
}

TEST(Touchstone, RefusesAPipeInsteadOfWaitingForItsWriter) {
  const std::string folder = (std::filesystem::temp_directory_path() / "qk-snp-XXXXXX").string();
  std::string made = folder;
  ASSERT_NE(mkdtemp(made.data()), nullptr);
  const std::string pipe = made + "/x.s1p";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(ReadTouchstoneFile(pipe).Error, pipe + ": is no file of data");
  std::filesystem::remove_all(made);
}

TEST(Touchstone, SurvivesRandomFilesAndGivesDataOrAnError) {
  std::mt19937 random(3);
  const std::vector<std::string> parts = {
      "#",  " HZ", " S", " RI",  " DB", " R",    " 50",
      "\n", "1",   " ",  "-2e3", ".",   "!",     "e",
      "[",  "\t",  " 7", "\r",   "nan", "1e999", std::string(1, '\0')};
  for (int i = 0; i < 20000; ++i) {
    std::string text;
    for (auto n = random() % 40; n > 0; --n) text += parts[random() % parts.size()];
    const auto r = Read(text, 1 + static_cast<int>(random() % 2));
    EXPECT_EQ(r.Error.empty(), !r.Data.Hz.empty()) << text;
    EXPECT_EQ(r.Data.Hz.size(), r.Data.Points.size());
  }
}

}  // namespace
}  // namespace qk::sim::test
