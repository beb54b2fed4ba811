// SPDX-License-Identifier: MIT
#include "sim/bench_language.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>

#include "sim/devices.h"
#include "sim/talker.h"
#include "sim/words.h"

namespace qk::sim::test {
namespace {

// A file in the temporary folder, gone with the test.
struct TemporaryFile {
  TemporaryFile(const std::string& name, const std::string& text)
      : Path((std::filesystem::temp_directory_path() / ("qk sim " + name)).string()) {
    std::ofstream(Path) << text;
  }
  ~TemporaryFile() { std::filesystem::remove(Path); }
  std::string Path;
};

std::string After(const std::string& line) {
  Instrument box;
  const BenchReply reply = box.Bench(line);
  EXPECT_TRUE(reply.Ok) << reply.Text;
  EXPECT_EQ(reply.Text, "");
  return box.Describe();
}

TEST(BenchLanguage, StartsWithTheFilter) {
  EXPECT_EQ(Instrument().Describe(), "band-pass filter 900 to 1100 MHz");
}

TEST(BenchLanguage, ConnectsStandardsToEachPort) {
  EXPECT_EQ(After("port1 short"), "port 1: short male offset 0 mm; port 2: nothing");
  EXPECT_EQ(After("port2 open"), "port 1: nothing; port 2: open female offset 0 mm");
  EXPECT_EQ(After("port1 open female offset 5.00mm"),
            "port 1: open female offset 5 mm; port 2: nothing");
  EXPECT_EQ(After("port2 short offset 3.2 mm male"),
            "port 1: nothing; port 2: short male offset 3.2 mm");
  EXPECT_EQ(After("port1 load"), "port 1: load male; port 2: nothing");
}

TEST(BenchLanguage, KeepsTheOtherPortsStandardAndTakesTwoPortsAway) {
  Instrument box;
  box.Bench("through");
  box.Bench("port1 load");
  EXPECT_EQ(box.Describe(), "port 1: load male; port 2: nothing");
  box.Bench("port2 short");
  EXPECT_EQ(box.Describe(), "port 1: load male; port 2: short female offset 0 mm");
  box.Bench("port1 nothing");
  EXPECT_EQ(box.Describe(), "port 1: nothing; port 2: short female offset 0 mm");
}

TEST(BenchLanguage, ConnectsTwoPorts) {
  EXPECT_EQ(After("through"), "through");
  EXPECT_EQ(After("attenuator 10"), "attenuator 10 dB");
  EXPECT_EQ(After("attenuator 10.5dB"), "attenuator 10.5 dB");
  EXPECT_EQ(After("line 100"), "line 100 mm");
  EXPECT_EQ(After("FILTER"), "band-pass filter 900 to 1100 MHz");
  EXPECT_EQ(After("filter off -25"), "band-pass filter 875 to 1075 MHz");
  EXPECT_EQ(After("port1 antenna"), "port 1: antenna 868 MHz; port 2: nothing");
  EXPECT_EQ(After("amplifier"), "amplifier gain 10 dB, P1dB 3 dBm, AM to PM 2 deg/dB, knee 2");
  EXPECT_EQ(After("amplifier gain 15 dB p1db -3 ampm 0.5"),
            "amplifier gain 15 dB, P1dB -3 dBm, AM to PM 0.5 deg/dB, knee 2");
  EXPECT_EQ(After("amplifier knee 4 before 6 dB behind 10 matched"),
            "amplifier gain 10 dB, P1dB 3 dBm, AM to PM 2 deg/dB, knee 4, 6 dB before it, 10 dB "
            "behind it, matched");
}

TEST(BenchLanguage, ConnectsATwoPortFileWithBlanksInItsName) {
  const TemporaryFile file("pad.s2p", "# HZ S RI R 50\n1e9 0 0 0.5 0 0.25 0 0 0\n");
  Instrument box;
  ASSERT_TRUE(box.Bench("device " + file.Path).Ok);
  EXPECT_EQ(box.Describe(), "device qk sim pad.s2p");
  EXPECT_EQ(box.Truth(1e9)[1], std::complex<double>(.5));
  EXPECT_EQ(box.Truth(1e9)[2], std::complex<double>(.25));
  ASSERT_TRUE(box.Bench("device \"" + file.Path + "\"").Ok);
}

TEST(BenchLanguage, ConnectsAOnePortFileToPort1OrToTheNamedPort) {
  const TemporaryFile file("core.s1p", "# HZ S RI R 50\n1e9 0.5 0.25\n");
  Instrument box;
  ASSERT_TRUE(box.Bench("device " + file.Path).Ok);
  EXPECT_EQ(box.Describe(), "port 1: device qk sim core.s1p; port 2: nothing");
  EXPECT_EQ(box.Truth(1e9)[0], std::complex<double>(.5, .25));
  EXPECT_EQ(box.Truth(1e9)[1], std::complex<double>(0));
  ASSERT_TRUE(box.Bench("port1 load").Ok);
  ASSERT_TRUE(box.Bench("port2 device " + file.Path).Ok);
  EXPECT_EQ(box.Truth(1e9)[3], std::complex<double>(.5, .25));
}

TEST(BenchLanguage, GivesTheExactValueWith17Digits) {
  Instrument box;
  box.Bench("attenuator 10");
  const BenchReply reply = box.Bench("truth 1e9");
  ASSERT_TRUE(reply.Ok);
  EXPECT_EQ(reply.Text, "S11 0 0 S21 0.31622776601683794 0 S12 0.31622776601683794 0 S22 0 0");
  box.Bench("filter");
  const auto words = Words(box.Bench("truth 990000000 Hz").Text);
  ASSERT_EQ(words.size(), 12u);
  EXPECT_EQ(Number(words[4]), box.Truth(9.9e8)[1].real());
  EXPECT_EQ(Number(words[11]), box.Truth(9.9e8)[3].imag());
}

TEST(BenchLanguage, ShowsWhatIsSet) {
  Instrument box;
  EXPECT_EQ(box.Bench("show").Text,
            "band-pass filter 900 to 1100 MHz; noise on; follow on; pace fast; fault none");
  for (const char* line : {"noise off", "follow off", "pace 115200", "fault stall after 7",
                           "fault late 50", "fault sweep drop at 3 count 2", "fault nolock"})
    ASSERT_TRUE(box.Bench(line).Ok);
  EXPECT_EQ(box.Bench("show").Text,
            "band-pass filter 900 to 1100 MHz; noise off; follow off; pace 115200; fault stall "
            "after 7, late 50 ms, no lock, sweep drop at 3 count 2");
  ASSERT_TRUE(box.Bench("fault none").Ok);
  EXPECT_TRUE(box.Bench("show").Text.ends_with("fault none"));
}

// What is not as at the start is shown in the words that set it.
TEST(BenchLanguage, ShowsWhatChangesTheTestSetInItsOwnWords) {
  Instrument box;
  const std::string atStart = box.Bench("show").Text;
  for (const char* line : {"temperature 30.5", "offsets 1.5 -2", "drift 0.1 -0.02",
                           "connector loose 0.5", "step -1 after 3"})
    ASSERT_TRUE(box.Bench(line).Ok) << line;
  const std::string shown = box.Bench("show").Text;
  EXPECT_TRUE(
      shown.ends_with("; pace fast; temperature 30.5; offsets 1.5 -2; drift 0.1 -0.02; "
                      "connector loose 0.5; step -1 after 3; fault none"))
      << shown;
  for (const char* line :
       {"temperature warmup", "offsets drifting", "drift none", "connector tight", "step none"})
    ASSERT_TRUE(box.Bench(line).Ok) << line;
  EXPECT_EQ(box.Bench("show").Text, atStart);
}

// Every command, with the words that come before its own.
struct NamedVerb {
  std::string_view Before;
  BenchVerb Verb;
};
std::vector<NamedVerb> AllVerbs() {
  std::vector<NamedVerb> all;
  for (const BenchVerb& verb : BenchVerbs()) all.push_back({"", verb});
  for (const BenchVerb& verb : FaultVerbs()) all.push_back({"fault ", verb});
  return all;
}

TEST(BenchLanguage, HelpsWithEveryCommand) {
  const std::string help = Instrument().Bench("help").Text;
  for (const auto& [before, verb] : AllVerbs()) {
    EXPECT_NE(help.find(verb.Word), std::string::npos) << verb.Word;
    if (verb.Usage.empty()) continue;
    const std::string line = std::string(before) + std::string(verb.Usage);
    EXPECT_NE(("\n" + help + "\n").find("\n" + line + "\n"), std::string::npos) << line;
  }
}

TEST(BenchLanguage, HasTheCommandsThatScriptsRelyOn) {
  std::vector<std::string_view> words;
  for (const BenchVerb& verb : BenchVerbs()) words.push_back(verb.Word);
  for (const char* word :
       {"port1",   "port2",    "through",   "attenuator", "line",  "filter", "amplifier",
        "device",  "standard", "follow",    "dut",        "noise", "seed",   "temperature",
        "offsets", "fault",    "pace",      "show",       "truth", "driven", "eeprom",
        "power",   "drift",    "connector", "step",       "help"})
    EXPECT_EQ(std::count(words.begin(), words.end(), word), 1) << word;
}

TEST(BenchLanguage, TakesTheExampleOfEveryCommand) {
  for (const auto& [before, verb] : AllVerbs()) {
    if (verb.Example.empty()) continue;
    EXPECT_TRUE(verb.Example.starts_with(std::string(before)));
    EXPECT_NE(verb.Example.find(verb.Word), std::string_view::npos) << verb.Example;
    const BenchReply reply = Instrument().Bench(verb.Example);
    EXPECT_TRUE(reply.Ok) << verb.Example << ": " << reply.Text;
  }
}

TEST(BenchLanguage, RefusesMoreThanACommandTakesAndChangesNothing) {
  for (const auto& [before, verb] : AllVerbs()) {
    if (verb.Example.empty()) continue;
    const bool takesText = verb.Word == "model" || verb.Word == "serial";
    if (takesText) continue;  // the rest of the line is the text
    Instrument box;
    const std::string at = box.Bench("show").Text;
    const BenchReply reply = box.Bench(std::string(verb.Example) + " 1 too-much");
    EXPECT_FALSE(reply.Ok) << verb.Example;
    EXPECT_FALSE(reply.Text.empty());
    EXPECT_EQ(box.Bench("show").Text, at) << verb.Example;
  }
}

TEST(BenchLanguage, ReportsWhatAnAmplifierDoesAtADrive) {
  Instrument box;
  box.Bench("amplifier gain 10 p1db 3 matched");
  const auto words = Words(box.Bench("driven 1e9 -6 dBm").Text);
  ASSERT_EQ(words.size(), 5u);
  EXPECT_EQ(Number(words[1]), box.Driven(1e9, -6)[1].real());
  EXPECT_EQ(Number(words[2]), box.Driven(1e9, -6)[1].imag());
  EXPECT_NEAR(*Number(words[4]), 3, 1e-12) << "one decibel below the 4 dBm of its gain";
}

TEST(BenchLanguage, ReportsAndChangesAByteOfTheEeprom) {
  Instrument box;
  EXPECT_EQ(box.Bench("eeprom 11").Text, "11 49") << "the serial number's second digit";
  EXPECT_EQ(box.Bench("eeprom 11 200").Text, "11 200");
  EXPECT_EQ(box.Bench("eeprom 11").Text, "11 200");
}

TEST(BenchLanguage, ReportsTheFaultsOfTheAnalogSide) {
  Instrument box;
  for (const char* line : {"fault nolock at 1.5e9 Hz", "fault level 16 3 dB",
                           "fault reference -14 at 1e9", "fault test 5", "fault crosstalk -60"})
    ASSERT_TRUE(box.Bench(line).Ok) << line;
  EXPECT_TRUE(box.Bench("show").Text.ends_with(
      "fault no lock at 1.5e+09, level code 16 off by 3 dB, reference -14 dB at 1e+09, "
      "test 5 dB, crosstalk -60 dB"))
      << box.Bench("show").Text;
}

struct BadLine {
  const char* Line;
  const char* Reason;
  friend std::ostream& operator<<(std::ostream& out, const BadLine& bad) { return out << bad.Line; }
};

class BenchLanguageRefuses : public ::testing::TestWithParam<BadLine> {};

TEST_P(BenchLanguageRefuses, AndChangesNothing) {
  Instrument box;
  box.Bench("line 42");
  const std::string before = box.Bench("show").Text;
  const BenchReply reply = box.Bench(GetParam().Line);
  EXPECT_FALSE(reply.Ok);
  EXPECT_EQ(reply.Text, GetParam().Reason);
  EXPECT_EQ(reply.Text.find('\n'), std::string::npos);
  EXPECT_EQ(box.Bench("show").Text, before);
}

INSTANTIATE_TEST_SUITE_P(
    BadLines, BenchLanguageRefuses,
    ::testing::Values(
        BadLine{"", "an empty line; try help"}, BadLine{"  \t ", "an empty line; try help"},
        BadLine{"solder", "\"solder\" is not a bench command; try help"},
        BadLine{"port3 short", "\"port3\" is not a bench command; try help"},
        BadLine{
            "port1",
            "port1: nothing, open, short, load, mismatch DB, antenna or device FILE is expected"},
        BadLine{
            "port2 shorts",
            "port2: nothing, open, short, load, mismatch DB, antenna or device FILE is expected"},
        BadLine{"port1 antenna 2", "\"2\" is too much"},
        BadLine{"filter off", "filter: off by -200 to 200 MHz is expected"},
        BadLine{"filter off 201", "filter: off by -200 to 200 MHz is expected"},
        BadLine{"filter on", "\"on\" is too much"},
        BadLine{"port1 short offset", "offset: millimetres from -1000 to 1000 are expected"},
        BadLine{"port1 short offset x", "offset: millimetres from -1000 to 1000 are expected"},
        BadLine{"port1 short offset 1e9", "offset: millimetres from -1000 to 1000 are expected"},
        BadLine{"port1 short neuter", "\"neuter\" is too much"},
        BadLine{"port1 mismatch", "mismatch: a return loss of 0 to 60 dB is expected"},
        BadLine{"port1 short line", "line: 0 to 100000 mm are expected"},
        BadLine{"port1 short line 300 loss -1", "loss: 0 to 60 dB at 1 GHz are expected"},
        BadLine{"drift",
                "drift: dB an hour (-20 to 20) and dB a degree (-5 to 5), or none, are expected"},
        BadLine{"drift 1",
                "drift: dB an hour (-20 to 20) and dB a degree (-5 to 5), or none, are expected"},
        BadLine{"drift none 1", "\"1\" is too much"},
        BadLine{"connector", "connector: tight, or loose and 0 to 20 dB, are expected"},
        BadLine{"connector loose", "connector: tight, or loose and 0 to 20 dB, are expected"},
        BadLine{"connector tight 1", "connector: tight, or loose and 0 to 20 dB, are expected"},
        BadLine{"step 1", "step: -20 to 20 dB after N (sweeps), or none, are expected"},
        BadLine{"step 1 after x", "step: -20 to 20 dB after N (sweeps), or none, are expected"},
        BadLine{"step none 1", "\"1\" is too much"},
        BadLine{"port1 device", "a file name is expected"},
        BadLine{"through out", "\"out\" is too much"},
        BadLine{"attenuator", "attenuator: 0 to 120 dB are expected"},
        BadLine{"attenuator -3", "attenuator: 0 to 120 dB are expected"},
        BadLine{"attenuator 10 20", "\"20\" is too much"},
        BadLine{"line -1", "line: 0 to 100000 mm are expected"},
        BadLine{"amplifier gain", "gain: -20 to 40 dB are expected"},
        BadLine{"amplifier gain 99", "gain: -20 to 40 dB are expected"},
        BadLine{"amplifier p1db x", "p1db: -40 to 60 dBm are expected"},
        BadLine{"amplifier ampm x", "ampm: -90 to 90 degrees a dB are expected"},
        BadLine{
            "amplifier loud",
            "amplifier: gain DB, p1db DBM, ampm DEG, knee N, before DB, behind DB or matched is "
            "expected"},
        BadLine{"amplifier knee 0", "knee: 0.5 to 20 is expected"},
        BadLine{"amplifier before -1", "before: an attenuator of 0 to 60 dB is expected"},
        BadLine{"amplifier behind x", "behind: an attenuator of 0 to 60 dB is expected"},
        BadLine{"driven 1e9",
                "driven: a frequency in hertz and a drive of -120 to 60 dBm are expected"},
        BadLine{"driven 0 1",
                "driven: a frequency in hertz and a drive of -120 to 60 dBm are expected"},
        BadLine{"eeprom",
                "eeprom: an address from 0 to 32767, and a byte to put there, are expected"},
        BadLine{"eeprom 32768",
                "eeprom: an address from 0 to 32767, and a byte to put there, are expected"},
        BadLine{"eeprom 1 256",
                "eeprom: an address from 0 to 32767, and a byte to put there, are expected"},
        BadLine{"power off", "power: cycle is expected"},
        BadLine{"fault nolock 1e9", "fault nolock: \"at HZ\" or nothing is expected"},
        BadLine{"fault level 32 3",
                "fault level: a code from 0 to 31 and -40 to 40 dB are expected"},
        BadLine{"fault level 3", "fault level: a code from 0 to 31 and -40 to 40 dB are expected"},
        BadLine{"fault test", "fault: -120 to 120 dB and \"at HZ\" or nothing are expected"},
        BadLine{"fault reference 3 1e9",
                "fault: -120 to 120 dB and \"at HZ\" or nothing are expected"},
        BadLine{"device", "a file name is expected"},
        BadLine{"device x.txt", "x.txt: neither an .s1p nor an .s2p file"},
        BadLine{"device /nowhere/x.s2p", "/nowhere/x.s2p: cannot be opened"},
        BadLine{"standard", "standard: a two-port (through, line MM, device FILE.s2p) is expected"},
        BadLine{"standard short",
                "standard: a two-port (through, line MM, device FILE.s2p) is expected"},
        BadLine{"noise loud", "noise: on or off is expected"},
        BadLine{"noise on on", "noise: on or off is expected"},
        BadLine{"seed -1", "seed: a whole number of 0 or more is expected"},
        BadLine{"seed 1.5", "seed: a whole number of 0 or more is expected"},
        BadLine{"temperature hot", "temperature: -40 to 54 degC or warmup is expected"},
        BadLine{"temperature 99", "temperature: -40 to 54 degC or warmup is expected"},
        BadLine{"offsets 1",
                "offsets: reference and test in mV (-500 to 500), or drifting, are expected"},
        BadLine{"follow", "follow: on or off is expected"},
        BadLine{"pace 9600", "pace: 115200 or fast is expected"},
        BadLine{"truth", "truth: a frequency in hertz is expected"},
        BadLine{"truth 0", "truth: a frequency in hertz is expected"},
        BadLine{"show me", "\"me\" is too much"}, BadLine{"help me", "\"me\" is too much"},
        BadLine{"dut now", "\"now\" is too much"},
        BadLine{"fault late", "fault late: milliseconds from 0 to 3600000 are expected"},
        BadLine{"fault late soon", "fault late: milliseconds from 0 to 3600000 are expected"},
        BadLine{"fault cut", "fault: \"after N\" with a whole number of bytes is expected"},
        BadLine{"fault cut after x", "fault: \"after N\" with a whole number of bytes is expected"},
        BadLine{"fault silence now", "fault: \"after N\" with a whole number of bytes is expected"},
        BadLine{"fault drop", "fault: \"at N\" with a whole number of bytes is expected"},
        BadLine{"fault drop at -1", "fault: \"at N\" with a whole number of bytes is expected"},
        BadLine{"fault garble at 1 count 0", "fault: \"count N\" needs a number of 1 or more"},
        BadLine{"fault double at 1 2", "fault: \"2\" is too much"},
        BadLine{"fault sweep stall", "fault sweep: drop, add, double or garble is expected"},
        BadLine{"fault stall at 3", "fault stall: \"after N\" with a whole number is expected"},
        BadLine{"fault short 0", "fault short: a number of bytes from 1 to 255 is expected"},
        BadLine{"fault serial", "fault serial: a text is expected"},
        BadLine{"fault none now", "fault: \"now\" is too much"}));

TEST(BenchLanguage, RefusesAnUnknownFaultWithTheListOfThem) {
  const BenchReply reply = Instrument().Bench("fault line");
  EXPECT_FALSE(reply.Ok);
  EXPECT_TRUE(reply.Text.starts_with("fault: none, silence,")) << reply.Text;
}

TEST(BenchLanguage, RefusesABadFileAndKeepsTheDevice) {
  const TemporaryFile file("bad.s2p", "# HZ S RI R 50\n1e9 0 0 0.5\n");
  Instrument box;
  const BenchReply reply = box.Bench("device " + file.Path);
  EXPECT_FALSE(reply.Ok);
  EXPECT_EQ(reply.Text, file.Path + ", line 2: a row of a two-port has 9 values");
  EXPECT_EQ(box.Describe(), "band-pass filter 900 to 1100 MHz");
}

TEST(BenchLanguage, SurvivesRandomLines) {
  std::mt19937 random(5);
  const std::vector<std::string> parts = {"port1 ",
                                          "port2 ",
                                          "short ",
                                          "offset ",
                                          "1e308 ",
                                          "mm ",
                                          "-",
                                          "fault ",
                                          "at ",
                                          "count ",
                                          "99999999999999999999 ",
                                          "nan ",
                                          "amplifier ",
                                          "gain ",
                                          "truth ",
                                          "standard ",
                                          "line ",
                                          "\xff\xfe "};
  Instrument box;
  for (int i = 0; i < 20000; ++i) {
    std::string line;
    for (auto n = random() % 6; n > 0; --n) line += parts[random() % parts.size()];
    const BenchReply reply = box.Bench(line);
    EXPECT_TRUE(reply.Ok || !reply.Text.empty()) << line;
  }
  const auto s = box.Truth(1e9);
  EXPECT_TRUE(std::isfinite(s[1].real()));
}

}  // namespace
}  // namespace qk::sim::test
