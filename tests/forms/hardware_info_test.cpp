#include "forms/hardware_info.h"

#include <gtest/gtest.h>

#include "support/program_fixture.h"

namespace qk::test {
namespace {

constexpr const char* kNoAnswer = "Hardware Info|No Response|critical|ok";

struct Information : ScriptedProgram {
  Information() {
    port.Open();
    const Texts fields = {"QK47-20-09", "0147      ", "DWG-000001", "C         ",
                          "RX-0212   ", "SYA-0188  ", "SYB-0191  ", "20-09-040 ",
                          "B         ", "unused    ", "PS-0305   ", "14 Mar 09 "};
    for (std::size_t k = 0; k < fields.size(); ++k)
      std::copy(fields[k].begin(), fields[k].end(),
                instrument.Eeprom.begin() + static_cast<std::ptrdiff_t>(10 * k));
    fake.Enable(TimerId::Timer1, true);
  }
};

constexpr const char* kBlock =
    " Model: \t\tQK47-20-09\r\n"
    " S/N: \t\t0147      \r\n"
    " DWG: \t\tDWG-000001\t\tIss: C         \r\n"
    " RX S/N: \t\tRX-0212   \r\n"
    " Synth1 S/N: \tSYA-0188  \r\n"
    " Synth2 S/N: \tSYB-0191  \r\n"
    " Controller DWG: \t20-09-040 \tIss:B         \r\n"
    " Embedded S/W:\tV1.2\r\n"
    " PSU S/N:\tPS-0305   \r\n"
    " Build Date: \t14 Mar 09 \r\n";

TEST(HardwareInfo, ReadsTwelveFieldsAndTheFirmwareWhenItOpens) {
  Information bench;
  bench.fake.Show("HardwareInfo");
  EXPECT_EQ(bench.Value("HardwareInfo.Text1"), kBlock);
  EXPECT_EQ(bench.Window("HardwareInfo").Caption(), "Hardware Information");
  EXPECT_EQ(bench.At("HardwareInfo.Text1").ToolTip,
            "This window will display hardware information after the Refresh button is pressed");
  EXPECT_EQ(bench.TakeMessages(), Texts{});
  EXPECT_TRUE(bench.fake.Enabled(TimerId::Timer1));
}

TEST(HardwareInfo, AsksForEachFieldWithALinkCheckBehindIt) {
  Information bench;
  bench.fake.Show("HardwareInfo");
  std::vector<Bytes> expected = {BytesOf("Q")};
  for (int k = 0; k < 12; ++k) {
    expected.push_back({'P', 10, 0, static_cast<std::uint8_t>(10 * k)});
    expected.push_back(BytesOf("Q"));
  }
  expected.push_back(BytesOf("V"));
  EXPECT_EQ(bench.port.Writes, expected);
}

TEST(HardwareInfo, ReadsAnewAtRefreshAndShowsBytesAsTheyStand) {
  Information bench;
  bench.fake.Show("HardwareInfo");
  bench.instrument.Eeprom[10] = '9';
  bench.instrument.Eeprom[11] = 0xFF;
  EXPECT_TRUE(bench.Click("HardwareInfo.Command2"));
  const std::string text = bench.Value("HardwareInfo.Text1");
  EXPECT_NE(text.find(" S/N: \t\t9\xC3\xBF"
                      "47      \r\n"),
            std::string::npos)
      << text;
}

TEST(HardwareInfo, TellsAnInstrumentThatGoesOnceAndKeepsTheText) {
  Information bench;
  bench.fake.Show("HardwareInfo");
  int checks = 0;
  const auto take = bench.port.OnWrite;
  bench.port.OnWrite = [&](const Bytes& bytes) {
    if (bytes == BytesOf("Q") && ++checks == 5) bench.instrument.Silent = true;
    take(bytes);
  };
  EXPECT_TRUE(bench.Click("HardwareInfo.Command2"));
  EXPECT_EQ(bench.TakeMessages(), Texts{kNoAnswer});
  EXPECT_EQ(bench.Value("HardwareInfo.Text1"), kBlock);
  EXPECT_FALSE(bench.fake.Enabled(TimerId::Timer1)) << "meant: it stays off";
  bench.instrument.Silent = false;
  EXPECT_TRUE(bench.Click("HardwareInfo.Command2"));
  EXPECT_TRUE(bench.fake.Enabled(TimerId::Timer1));
}

TEST(HardwareInfo, LeavesASweepAndTheSignalGeneratorAlone) {
  Information bench;
  bench.fake.Show("HardwareInfo");
  bench.port.Writes.clear();
  bench.PretendSweep();
  EXPECT_TRUE(bench.Click("HardwareInfo.Command2"));
  EXPECT_EQ(bench.TakeMessages(), Texts{"VNA Hardware Info|Stop Sweep First|exclamation|ok"});
  EXPECT_TRUE(bench.port.Writes.empty());
  bench.session.Flags.SweepIdle = true;
  bench.session.Flags.SweepRunning = false;
  bench.session.Flags.SigGenActive = true;
  bench.fake.Enable(TimerId::Timer1, false);
  EXPECT_TRUE(bench.Click("HardwareInfo.Command2"));
  EXPECT_FALSE(bench.fake.Enabled(TimerId::Timer1));
}

TEST(HardwareInfo, ExitHidesIt) {
  Information bench;
  bench.fake.Show("HardwareInfo");
  EXPECT_TRUE(bench.Click("HardwareInfo.Command1"));
  EXPECT_FALSE(bench.Window("HardwareInfo").Shown);
}

}  // namespace
}  // namespace qk::test
