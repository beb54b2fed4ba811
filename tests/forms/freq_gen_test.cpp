// SPDX-License-Identifier: MIT
#include "forms/freq_gen.h"

#include <gtest/gtest.h>

#include "support/program_fixture.h"
#include "utility_fixture.h"

namespace qk::test {
namespace {

constexpr const char* kGenNoAnswer = "Signal Gen|No Response|critical|ok";

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
  Generator vna;
  EXPECT_EQ(vna.Value("FreqGen.Text1"), "1000.0000");
  EXPECT_EQ(vna.Value("FreqGen.Combo1"), "0");
  EXPECT_EQ(vna.At("FreqGen.Combo1").Entries.size(), 21u);
  EXPECT_EQ(vna.At("FreqGen.Combo1").Entries.back(), "-20");
  EXPECT_EQ(vna.Window("FreqGen").Caption(), "Signal Generator Mode");
  EXPECT_TRUE(vna.session.Flags.SigGenActive);
  EXPECT_TRUE(vna.fake.Enabled(TimerId::Timer1)) << "off from the first Apply";
}

TEST(FreqGen, LendsPoint0ToTheGeneratorAndPutsItBack) {
  Generator vna;
  vna.Pick("FreqGen.Combo1", "-12");
  EXPECT_EQ(vna.Apply("500"), "500.0000");
  EXPECT_EQ(vna.TakeMessages(), Texts{});
  std::vector<std::string> sent;
  for (const Bytes& c : vna.instrument.Commands)
    sent.emplace_back(c.begin(), c.begin() + std::min<std::ptrdiff_t>(4, std::ssize(c)));
  EXPECT_EQ(sent, (Texts{"Q", std::string("W\x16\x00\x02", 4), "Q", std::string("Z\0", 2), "Q",
                         std::string("W\x16\x00\x02", 4)}));
  // Each byte of a record is its own write.
  EXPECT_EQ(vna.port.Writes.size(), 1 + 1 + 22 + 1 + 1 + 1 + 1 + 22u);
  const auto records = vna.Records();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(Generator::LevelCode(records[0]), 15) << "27 - 12";
  EXPECT_EQ(Generator::LevelCode(records[1]), 24) << "the sweep's own level";
  EXPECT_EQ(vna.session.Plan.Port1Level, -3);
  EXPECT_FALSE(vna.fake.Enabled(TimerId::Timer1));
}

TEST(FreqGen, RaisesWhatLiesBelow3Megahertz) {
  Generator vna;
  EXPECT_EQ(vna.Apply("2.5"), "3.0000");
  EXPECT_EQ(vna.TakeMessages(), Texts{"Signal Gen|Value < 3MHz not allowed|exclamation|ok"});
  EXPECT_EQ(vna.Apply("no number"), "3.0000");
}

// Intentional: as with the start frequency of a sweep.
TEST(FreqGen, WhatLiesAbove3080MegahertzBecomes3Point08) {
  Generator vna;
  EXPECT_EQ(vna.Apply("3100"), "3.0800");
  EXPECT_EQ(vna.TakeMessages(), Texts{"Signal Gen|Value > 3.08GHz not allowed|exclamation|ok"});
  EXPECT_EQ(vna.Apply("3080"), "3080.0000");
  EXPECT_EQ(vna.TakeMessages(), Texts{});
}

TEST(FreqGen, RoundsTo100Hertz) {
  Generator vna;
  EXPECT_EQ(vna.Apply("12.34567"), "12.3457");
}

TEST(FreqGen, ReportsADeadLinkAndKeepsTheLevel) {
  Generator vna;
  vna.instrument.Silent = true;
  vna.Pick("FreqGen.Combo1", "-12");
  vna.Apply("500");
  EXPECT_EQ(vna.TakeMessages(), Texts{kGenNoAnswer});
  EXPECT_EQ(vna.session.Plan.Port1Level, -3);
}

TEST(FreqGen, APointThatCouldNotBePutBackIsPutBackAtExit) {
  Generator vna;
  // The second of three link checks gets no answer.
  int checks = 0;
  const auto take = vna.port.OnWrite;
  vna.port.OnWrite = [&](const Bytes& bytes) {
    if (bytes == BytesOf("Q")) vna.instrument.Silent = ++checks == 2;
    take(bytes);
  };
  vna.Apply("500");
  EXPECT_EQ(vna.TakeMessages(), Texts{kGenNoAnswer});
  EXPECT_EQ(vna.Records().size(), 1u);
  EXPECT_TRUE(vna.Click("FreqGen.Command2"));
  ASSERT_EQ(vna.Records().size(), 2u);
  EXPECT_EQ(Generator::LevelCode(vna.Records()[1]), 24);
}

TEST(FreqGen, SaysWhatWasAppliedAndThatStartEndedIt) {
  Generator vna;
  EXPECT_EQ(vna.Value("FreqGen.State"), "Not applied");
  vna.Pick("FreqGen.Combo1", "-12");
  vna.Apply("500");
  EXPECT_EQ(vna.Value("FreqGen.State"), "Applied: 500.0000 MHz at -12 dBm");
  vna.Type("FreqGen.Text1", "600");
  EXPECT_EQ(vna.Value("FreqGen.State"), "Applied: 500.0000 MHz at -12 dBm") << "typed alone";
  vna.Click("Form1.StartMeasurement");
  EXPECT_EQ(vna.Value("FreqGen.State"), "Not applied");
  vna.TakeMessages();
  vna.Apply("600");
  EXPECT_EQ(vna.Value("FreqGen.State"), "Applied: 600.0000 MHz at -12 dBm");
  vna.instrument.Silent = true;
  vna.Apply("700");
  EXPECT_EQ(vna.Value("FreqGen.State"), "Not applied") << "what port 1 gives is not known";
  vna.instrument.Silent = false;
  vna.Apply("700");
  EXPECT_TRUE(vna.Click("FreqGen.Command2"));
  vna.fake.Show("FreqGen");
  EXPECT_EQ(vna.Value("FreqGen.State"), "Not applied");
}

TEST(FreqGen, SaysThatAnotherWindowHasTakenTheSourceSince) {
  UtilityFixture vna;
  vna.fake.Show("FreqGen");
  const auto ends = [&vna](const char* who, const std::function<void()>& takes) {
    vna.Type("FreqGen.Text1", "500");
    EXPECT_TRUE(vna.Click("FreqGen.Command1"));
    EXPECT_EQ(vna.Value("FreqGen.State"), "Applied: 500.0000 MHz at 0 dBm") << who;
    takes();
    EXPECT_EQ(vna.Value("FreqGen.State"), "Not applied") << who;
  };
  ends("self-test",
       [&vna] { vna.In("DiagnosticsTests", [&vna] { vna.Click("DiagnosticsTests.Command1"); }); });
  ends("gain compression",
       [&vna] { vna.In("P1dBForm", [&vna] { vna.Click("P1dBForm.Command5"); }); });
  ends("AM to PM", [&vna] { vna.In("AMtoPM", [&vna] { vna.Click("AMtoPM.Command5"); }); });
  ends("a standard", [&vna] { vna.Press({"Iso_Cal"}); });
  vna.In("HardwareInfo", [] {});
  vna.Click("FreqGen.Command1");
  vna.In("P1dBForm", [] {});
  EXPECT_EQ(vna.Value("FreqGen.State"), "Applied: 500.0000 MHz at 0 dBm") << "opened alone";
}

TEST(FreqGen, WindowsThatHoldTimer1UpLeaveItOffForTheWave) {
  UtilityFixture vna;
  vna.fake.Show("FreqGen");
  EXPECT_TRUE(vna.Click("FreqGen.Command1"));
  vna.Click("Form1.SetDisplay");
  vna.Click("DisplayPara.CloseDisplayPara");
  EXPECT_FALSE(vna.fake.Enabled(TimerId::Timer1)) << "Display Set Up";
  vna.In("DiagnosticsTests", [] {});
  EXPECT_FALSE(vna.fake.Enabled(TimerId::Timer1)) << "Hardware Diagnostics";
  EXPECT_TRUE(vna.Click("FreqGen.Command2"));
  EXPECT_TRUE(vna.fake.Enabled(TimerId::Timer1)) << "the generator itself gives it back";
}

TEST(FreqGen, ExitGivesTheInstrumentBack) {
  for (const bool byTitleBar : {false, true}) {
    Generator vna;
    vna.Apply("500");
    if (byTitleBar)
      EXPECT_FALSE(vna.Window("FreqGen").OnCloseBox()) << "it has hidden itself";
    else
      EXPECT_TRUE(vna.Click("FreqGen.Command2"));
    EXPECT_FALSE(vna.Window("FreqGen").Shown);
    EXPECT_FALSE(vna.session.Flags.SigGenActive);
    EXPECT_TRUE(vna.fake.Enabled(TimerId::Timer1));
  }
}

TEST(FreqGen, StartClearsItAndARunningSweepIsNotDisturbed) {
  Generator vna;
  vna.Apply("500");
  vna.Click("Form1.StartMeasurement");
  EXPECT_FALSE(vna.session.Flags.SigGenActive);
  EXPECT_TRUE(vna.fake.Enabled(TimerId::Timer1));
  vna.TakeMessages();
  const std::size_t before = vna.port.Writes.size();
  vna.PretendSweep();
  vna.Apply("600");
  EXPECT_EQ(vna.TakeMessages(), Texts{"Signal Generator|Stop Sweep First|exclamation|ok"});
  EXPECT_EQ(vna.port.Writes.size(), before);
}

TEST(FreqGen, ApplyAfterASweepOwnsTheInstrumentAgain) {
  Generator vna;
  vna.Click("Form1.StartMeasurement");
  vna.Apply("500");
  EXPECT_TRUE(vna.session.Flags.SigGenActive);
}

}  // namespace
}  // namespace qk::test
