#include "forms/freq_gen.h"

#include <gtest/gtest.h>

#include "support/program_fixture.h"

namespace qk::test {
namespace {

constexpr const char* kNoAnswer = "Signal Gen|No Response|critical|ok";

struct Generator : ScriptedProgram {
  Generator() {
    session.Plan.StartFreq = 100e6;
    session.Plan.Port1Level = -3;
    for (std::size_t code = 0; code < 32; ++code)
      session.Levels.Port1LevelTable[code].fill(static_cast<std::int8_t>(code) - 27);
    port.Open();
    fake.Enable(TimerId::Timer1, true);
    fake.Show("FreqGen");
  }
  std::string Apply(const char* megahertz) {
    Type("FreqGen.Text1", megahertz);
    EXPECT_TRUE(Click("FreqGen.Command1"));
    return Value("FreqGen.Text1");
  }
  // The records written to point 0, in order.
  std::vector<Bytes> Records() {
    std::vector<Bytes> records;
    for (const Bytes& c : instrument.Commands)
      if (c[0] == 'W') records.emplace_back(c.begin() + 4, c.end());
    return records;
  }
  static int LevelCode(const Bytes& record) { return record[14] & 0x1F; }
};

TEST(FreqGen, OpensAt1000MegahertzAnd0DbmAndOwnsTheInstrument) {
  Generator bench;
  EXPECT_EQ(bench.Value("FreqGen.Text1"), "1000.0000");
  EXPECT_EQ(bench.Value("FreqGen.Combo1"), "0");
  EXPECT_EQ(bench.At("FreqGen.Combo1").Entries.size(), 21u);
  EXPECT_EQ(bench.At("FreqGen.Combo1").Entries.back(), "-20");
  EXPECT_EQ(bench.Window("FreqGen").Caption(), "Signal Generator Mode");
  EXPECT_TRUE(bench.session.Flags.SigGenActive);
  EXPECT_TRUE(bench.fake.Enabled(TimerId::Timer1)) << "off from the first Apply";
}

TEST(FreqGen, LendsPoint0ToTheGeneratorAndPutsItBack) {
  Generator bench;
  bench.Pick("FreqGen.Combo1", "-12");
  EXPECT_EQ(bench.Apply("500"), "500.0000");
  EXPECT_EQ(bench.TakeMessages(), Texts{});
  std::vector<std::string> sent;
  for (const Bytes& c : bench.instrument.Commands)
    sent.emplace_back(c.begin(), c.begin() + std::min<std::ptrdiff_t>(4, std::ssize(c)));
  EXPECT_EQ(sent, (Texts{"Q", std::string("W\x16\x00\x02", 4), "Q", std::string("Z\0", 2), "Q",
                         std::string("W\x16\x00\x02", 4)}));
  // Each byte of a record is its own write.
  EXPECT_EQ(bench.port.Writes.size(), 1 + 1 + 22 + 1 + 1 + 1 + 1 + 22u);
  const auto records = bench.Records();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(Generator::LevelCode(records[0]), 15) << "27 - 12";
  EXPECT_EQ(Generator::LevelCode(records[1]), 24) << "the sweep's own level";
  EXPECT_EQ(bench.session.Plan.Port1Level, -3);
  EXPECT_FALSE(bench.fake.Enabled(TimerId::Timer1));
}

TEST(FreqGen, RaisesWhatLiesBelow3Megahertz) {
  Generator bench;
  EXPECT_EQ(bench.Apply("2.5"), "3.0000");
  EXPECT_EQ(bench.TakeMessages(), Texts{"Signal Gen|Value < 3MHz not allowed|exclamation|ok"});
  EXPECT_EQ(bench.Apply("no number"), "3.0000");
}

// Meant: as with the start frequency of a sweep.
TEST(FreqGen, WhatLiesAbove3080MegahertzBecomes3Point08) {
  Generator bench;
  EXPECT_EQ(bench.Apply("3100"), "3.0800");
  EXPECT_EQ(bench.TakeMessages(), Texts{"Signal Gen|Value > 3.08GHz not allowed|exclamation|ok"});
  EXPECT_EQ(bench.Apply("3080"), "3080.0000");
  EXPECT_EQ(bench.TakeMessages(), Texts{});
}

TEST(FreqGen, RoundsTo100Hertz) {
  Generator bench;
  EXPECT_EQ(bench.Apply("12.34567"), "12.3457");
}

TEST(FreqGen, TellsADeadLinkAndKeepsTheLevel) {
  Generator bench;
  bench.instrument.Silent = true;
  bench.Pick("FreqGen.Combo1", "-12");
  bench.Apply("500");
  EXPECT_EQ(bench.TakeMessages(), Texts{kNoAnswer});
  EXPECT_EQ(bench.session.Plan.Port1Level, -3);
}

TEST(FreqGen, APointThatCouldNotBePutBackIsPutBackAtExit) {
  Generator bench;
  // The second of three link checks finds nobody.
  int checks = 0;
  const auto take = bench.port.OnWrite;
  bench.port.OnWrite = [&](const Bytes& bytes) {
    if (bytes == BytesOf("Q")) bench.instrument.Silent = ++checks == 2;
    take(bytes);
  };
  bench.Apply("500");
  EXPECT_EQ(bench.TakeMessages(), Texts{kNoAnswer});
  EXPECT_EQ(bench.Records().size(), 1u);
  EXPECT_TRUE(bench.Click("FreqGen.Command2"));
  ASSERT_EQ(bench.Records().size(), 2u);
  EXPECT_EQ(Generator::LevelCode(bench.Records()[1]), 24);
}

TEST(FreqGen, ExitGivesTheInstrumentBack) {
  for (const bool byTitleBar : {false, true}) {
    Generator bench;
    bench.Apply("500");
    if (byTitleBar)
      EXPECT_FALSE(bench.Window("FreqGen").OnCloseBox()) << "it has hidden itself";
    else
      EXPECT_TRUE(bench.Click("FreqGen.Command2"));
    EXPECT_FALSE(bench.Window("FreqGen").Shown);
    EXPECT_FALSE(bench.session.Flags.SigGenActive);
    EXPECT_TRUE(bench.fake.Enabled(TimerId::Timer1));
  }
}

TEST(FreqGen, StartClearsItAndARunningSweepIsNotDisturbed) {
  Generator bench;
  bench.Apply("500");
  bench.Click("Form1.StartMeasurement");
  EXPECT_FALSE(bench.session.Flags.SigGenActive);
  EXPECT_TRUE(bench.fake.Enabled(TimerId::Timer1));
  bench.TakeMessages();
  const std::size_t before = bench.port.Writes.size();
  bench.PretendSweep();
  bench.Apply("600");
  EXPECT_EQ(bench.TakeMessages(), Texts{"Signal Generator|Stop Sweep First|exclamation|ok"});
  EXPECT_EQ(bench.port.Writes.size(), before);
}

TEST(FreqGen, ApplyAfterASweepOwnsTheInstrumentAgain) {
  Generator bench;
  bench.Click("Form1.StartMeasurement");
  bench.Apply("500");
  EXPECT_TRUE(bench.session.Flags.SigGenActive);
}

}  // namespace
}  // namespace qk::test
