// SPDX-License-Identifier: MIT
#include "forms/hardware_info.h"

#include <gtest/gtest.h>

#include "support/program_fixture.h"

namespace qk::test {
namespace {

constexpr const char* kInfoNoAnswer = "Hardware Info|No Response|critical|ok";

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
  Information vna;
  vna.fake.Show("HardwareInfo");
  EXPECT_EQ(vna.Value("HardwareInfo.Text1"), kBlock);
  EXPECT_EQ(vna.Window("HardwareInfo").Caption(), "Hardware Information");
  EXPECT_EQ(vna.At("HardwareInfo.Text1").ToolTip,
            "This window will display hardware information after the Refresh button is pressed");
  EXPECT_EQ(vna.TakeMessages(), Texts{});
  EXPECT_TRUE(vna.fake.Enabled(TimerId::Timer1));
}

TEST(HardwareInfo, AsksForEachFieldWithALinkCheckBehindIt) {
  Information vna;
  vna.fake.Show("HardwareInfo");
  std::vector<Bytes> expected = {BytesOf("Q")};
  for (int k = 0; k < 12; ++k) {
    expected.push_back({'P', 10, 0, static_cast<std::uint8_t>(10 * k)});
    expected.push_back(BytesOf("Q"));
  }
  expected.push_back(BytesOf("V"));
  EXPECT_EQ(vna.port.Writes, expected);
}

TEST(HardwareInfo, ReadsAnewAtRefreshAndShowsBytesAsTheyStand) {
  Information vna;
  vna.fake.Show("HardwareInfo");
  vna.instrument.Eeprom[10] = '9';
  vna.instrument.Eeprom[11] = 0xFF;
  EXPECT_TRUE(vna.Click("HardwareInfo.Command2"));
  const std::string text = vna.Value("HardwareInfo.Text1");
  EXPECT_NE(text.find(" S/N: \t\t9\xC3\xBF"
                      "47      \r\n"),
            std::string::npos)
      << text;
}

TEST(HardwareInfo, ReportsAnInstrumentThatGoesOnceAndKeepsTheText) {
  Information vna;
  vna.fake.Show("HardwareInfo");
  int checks = 0;
  const auto take = vna.port.OnWrite;
  vna.port.OnWrite = [&](const Bytes& bytes) {
    if (bytes == BytesOf("Q") && ++checks == 5) vna.instrument.Silent = true;
    take(bytes);
  };
  EXPECT_TRUE(vna.Click("HardwareInfo.Command2"));
  EXPECT_EQ(vna.TakeMessages(), Texts{kInfoNoAnswer});
  EXPECT_EQ(vna.Value("HardwareInfo.Text1"), kBlock);
  EXPECT_FALSE(vna.fake.Enabled(TimerId::Timer1)) << "meant: it stays off";
  vna.instrument.Silent = false;
  EXPECT_TRUE(vna.Click("HardwareInfo.Command2"));
  EXPECT_TRUE(vna.fake.Enabled(TimerId::Timer1));
}

TEST(HardwareInfo, AnEarlierReportIsCalledSoOnceAReadHasFailed) {
  Information vna;
  vna.instrument.Silent = true;
  vna.fake.Show("HardwareInfo");
  EXPECT_EQ(vna.Value("HardwareInfo.Age"), "No Response. Nothing was read.");
  EXPECT_EQ(vna.Value("HardwareInfo.Text1"), "");
  vna.instrument.Silent = false;
  EXPECT_TRUE(vna.Click("HardwareInfo.Command2"));
  const std::string read = vna.Value("HardwareInfo.Age");
  EXPECT_TRUE(read.starts_with("Read 20")) << read;
  vna.instrument.Silent = true;
  EXPECT_TRUE(vna.Click("HardwareInfo.Command2"));
  EXPECT_EQ(vna.Value("HardwareInfo.Age"), "No Response. These values were read" + read.substr(4));
  vna.instrument.Silent = false;
  EXPECT_TRUE(vna.Click("HardwareInfo.Command2"));
  EXPECT_EQ(vna.Value("HardwareInfo.Age").substr(0, 5), "Read ");
}

// Cut at each byte of all that come: the answer to a link check, a field's or the firmware's.
TEST(HardwareInfo, AReplyThatIsMissingOrAByteShortIsNoResponseWithinItsTimeOutAndNoReport) {
  constexpr std::size_t kStatus = 1, kField = 10, kFields = 12, kFirmware = 3;
  constexpr std::size_t kAll = kStatus + kFields * (kField + kStatus) + kFirmware;
  Information vna;
  vna.fake.Show("HardwareInfo");
  std::string shown = vna.Value("HardwareInfo.Text1");
  for (std::size_t at = 0; at < kAll; ++at)
    for (const bool forGood : {false, true}) {
      SCOPED_TRACE(std::to_string(at) + (forGood ? ", and nothing behind it" : ""));
      vna.instrument.Eeprom[10] =
          static_cast<std::uint8_t>('a' + (2 * at + (forGood ? 1 : 0)) % 26);
      vna.port.Fault = {FaultKind::Cut, vna.port.FedBytes + at, 0, forGood};
      const auto start = vna.clock.NowMs();
      EXPECT_TRUE(vna.Click("HardwareInfo.Command2"));
      ASSERT_EQ(vna.TakeMessages(), Texts{kInfoNoAnswer});
      ASSERT_LE(vna.clock.NowMs() - start, 5001);
      ASSERT_EQ(vna.Value("HardwareInfo.Text1"), shown);
      ASSERT_FALSE(vna.Window("HardwareInfo").Busy());

      vna.port.Fault.reset();
      EXPECT_TRUE(vna.Click("HardwareInfo.Command2"));
      ASSERT_EQ(vna.TakeMessages(), Texts{});
      ASSERT_NE(vna.Value("HardwareInfo.Text1"), shown);
      shown = vna.Value("HardwareInfo.Text1");
    }
}

TEST(HardwareInfo, LeavesASweepAndTheSignalGeneratorAlone) {
  Information vna;
  vna.fake.Show("HardwareInfo");
  vna.port.Writes.clear();
  vna.PretendSweep();
  EXPECT_TRUE(vna.Click("HardwareInfo.Command2"));
  EXPECT_EQ(vna.TakeMessages(), Texts{"VNA Hardware Info|Stop Sweep First|exclamation|ok"});
  EXPECT_TRUE(vna.port.Writes.empty());
  vna.session.Flags.SweepIdle = true;
  vna.session.Flags.SweepRunning = false;
  vna.session.Flags.SigGenActive = vna.session.Flags.SigGenWave = true;
  vna.fake.Enable(TimerId::Timer1, false);
  EXPECT_TRUE(vna.Click("HardwareInfo.Command2"));
  EXPECT_FALSE(vna.fake.Enabled(TimerId::Timer1));
}

TEST(HardwareInfo, SwitchesTheTimerOnWhileTheGeneratorsWindowIsMerelyOpen) {
  Information vna;
  vna.fake.Show("FreqGen");
  vna.fake.Enable(TimerId::Timer1, true);
  vna.fake.Show("HardwareInfo");
  EXPECT_TRUE(vna.Click("HardwareInfo.Command2"));
  EXPECT_TRUE(vna.fake.Enabled(TimerId::Timer1));
}

TEST(HardwareInfo, ExitHidesIt) {
  Information vna;
  vna.fake.Show("HardwareInfo");
  EXPECT_TRUE(vna.Click("HardwareInfo.Command1"));
  EXPECT_FALSE(vna.Window("HardwareInfo").Shown);
}

}  // namespace
}  // namespace qk::test
