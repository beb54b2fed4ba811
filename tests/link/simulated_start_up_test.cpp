// SPDX-License-Identifier: MIT
// Start-up's exchanges with the simulated instrument at 115200 baud.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>

#include "sim/eeprom_image.h"
#include "support/link_fixture.h"
#include "support/load_eeprom.h"
#include "sweep/frequency_plan.h"
#include "sweep/settings.h"

namespace qk {
namespace {

using Texts = std::vector<std::string>;

struct StartUpFixture : test::SimulatedLink {
  std::filesystem::path folder =
      std::filesystem::temp_directory_path() / ("qk-start-up-" + std::to_string(getpid()));
  explicit StartUpFixture(sim::Pace pace = sim::Pace::Baud115200) : SimulatedLink(pace) {
    std::filesystem::create_directories(folder);
    session->InstallFolder = folder.string();
  }
  ~StartUpFixture() { std::filesystem::remove_all(folder); }
};

TEST(SimulatedStartUp, FindsLoadsAndIdentifiesTheInstrument) {
  StartUpFixture b;
  b.Connect();
  EXPECT_EQ(b.session->Id.PortNumber, 1);
  EXPECT_LT(b.ElapsedMs(), 100);
  b.StartWatch();
  b.port.TakeWritten();
  test::LoadEeprom(b.rig);
  // 228 exchanges of "Q" and "P" n hi lo.
  EXPECT_EQ(b.port.TakeWritten().size(), 228u * 5);
  // 19069 bytes back are 1.7 s on the line.
  EXPECT_GT(b.ElapsedMs(), 1600);
  EXPECT_LT(b.ElapsedMs(), 10000);
  ReadIdentity(b.rig);
  EXPECT_EQ(b.session->Id.SerialNumber, 147);
  EXPECT_EQ(b.session->Id.FirmwareVersion, "1.2");
  EXPECT_TRUE(b.fake.Messages.empty());

  const sim::Eeprom image = sim::FactoryEeprom("QK47-20-09", "0147", "1.2");
  for (std::size_t f = 0; f < 149; ++f)
    for (std::size_t c = 0; c < 32; ++c) {
      const std::size_t at = 32 * f + c;
      ASSERT_EQ(b.session->Levels.Port1LevelTable[c][f], image[1024 + at] - 128);
      ASSERT_EQ(b.session->Levels.Port2LevelTable[c][f], image[5888 + at] - 128);
    }
  EXPECT_EQ(b.session->Receiver.RxDcCorrection, static_cast<float>(image[20219] - 128) / 10);
  EXPECT_GT(std::filesystem::file_size(b.folder / "RXCal.dat"), 6141u * 3);
}

TEST(SimulatedStartUp, WithoutTheLinesPaceAllExchangesTakeUnderASecond) {
  StartUpFixture b(sim::Pace::Unpaced);
  const auto before = std::chrono::steady_clock::now();
  b.Connect();
  b.port.TakeWritten();
  test::LoadEeprom(b.rig);
  EXPECT_EQ(b.port.TakeWritten().size(), 228u * 5);
  ReadIdentity(b.rig);
  EXPECT_EQ(b.session->Id.SerialNumber, 147);
  EXPECT_TRUE(b.fake.Messages.empty());
  // Neither on the program's clock, which counts what it waited, nor on the wall's.
  EXPECT_LT(b.ElapsedMs(), 1000);
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(1));
}

TEST(SimulatedStartUp, ReportsAnotherModel) {
  StartUpFixture b;
  ASSERT_TRUE(b.instrument.Bench("fault model QK47-21-00").Ok);
  b.Connect();
  EXPECT_EQ(b.session->Id.PortNumber, 0);
  EXPECT_EQ(b.fake.MessageTexts(), (Texts{"Instrument ID|Wrong model instrument|critical|ok"}));
}

TEST(SimulatedStartUp, ReportsAShortBlock) {
  StartUpFixture b;
  b.Connect();
  ASSERT_TRUE(b.instrument.Bench("fault short 1").Ok);
  test::LoadEeprom(b.rig);
  EXPECT_EQ(b.fake.MessageTexts(),
            (Texts{"Set Synth Level|Link Error. Re-start Program.|exclamation|ok"}));
}

TEST(SimulatedStartUp, ASerialNumberWithoutDigitsReadsAsZero) {
  StartUpFixture b;
  b.Connect();
  ASSERT_TRUE(b.instrument.Bench("fault serial ABCD").Ok);
  ReadIdentity(b.rig);
  EXPECT_EQ(b.session->Id.SerialNumber, 0);
}

TEST(SimulatedStartUp, ACableOutAtAnyMomentIsReportedOnceAndTheNextLoadGoesThrough) {
  for (int moment = 1; moment < 4000; moment += 391) {
    StartUpFixture b;
    b.Connect();
    int waits = 0;
    std::int64_t out = 0;
    b.OnSleep = [&] {
      if (++waits != moment) return;
      ASSERT_TRUE(b.instrument.Bench("fault unplugged").Ok);
      out = b.clock.NowMs();
    };
    test::LoadEeprom(b.rig);
    if (out == 0) {  // the load was over before
      EXPECT_GT(moment, 228);
      EXPECT_TRUE(b.fake.Messages.empty());
      break;
    }
    ASSERT_EQ(b.fake.Messages.size(), 1u) << moment;
    EXPECT_LE(b.clock.NowMs() - out, 6) << moment;  // noticed within a slice of the wait
    EXPECT_FALSE(b.link.IsOpen());
    b.Replug();
    test::LoadEeprom(b.rig);
    EXPECT_TRUE(b.fake.Messages.empty()) << moment;
  }
}

// A program that was killed leaves its sweep behind: whenever the next one starts, it finds the
// instrument and loads whole tables.
TEST(SimulatedStartUp, FindsAnInstrumentThatStillSweepsForAnEarlierProgram) {
  for (const int averages : {1, 16, 128}) {
    for (int phase = 0; phase < 6; ++phase) {
      StartUpFixture b;
      b.Connect();
      ASSERT_TRUE(LoadFreqSweep(b.rig));
      ASSERT_TRUE(PutAveragesInForce(b.rig, static_cast<std::int16_t>(averages)));
      b.link.SendCommand("A");
      b.clock.AdvanceMs(40 + 37 * phase);
      ASSERT_GT(b.port.InBufferCount(), 0u);
      ASSERT_NE(b.instrument.NextUs(), sim::Instrument::kNever);  // in the middle of it
      b.Connect();
      EXPECT_EQ(b.session->Id.PortNumber, 1) << averages << " averages, phase " << phase;
      test::LoadEeprom(b.rig);
      ReadIdentity(b.rig);
      EXPECT_EQ(b.session->Id.SerialNumber, 147);
      EXPECT_EQ(b.session->Id.FirmwareVersion, "1.2");
      EXPECT_EQ(b.fake.MessageTexts(), Texts{});
    }
  }
}

}  // namespace
}  // namespace qk
