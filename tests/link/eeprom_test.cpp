// SPDX-License-Identifier: MIT
// The load of the EEPROM at start-up: tables, receiver data file, texts of every failure, and what
// a cut, doubled, garbled or late byte comes to.
#include "link/eeprom.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/link_fixture.h"
#include "support/load_eeprom.h"

namespace qk {
namespace {

using test::BytesOf;
using test::Fault;
using test::FaultKind;
using test::ScriptedInstrument;
using Texts = std::vector<std::string>;

// Bytes that come in: a status letter before each block.
constexpr std::size_t kTableBytes = 75 * 65;
constexpr std::size_t kRxStart = 2 * kTableBytes;
constexpr std::size_t kDcStart = kRxStart + 77 * 121;
constexpr std::size_t kAllBytes = kDcStart + 2;

std::filesystem::path FreshFolder() {
  static int number = 0;
  const auto folder = std::filesystem::temp_directory_path() /
                      ("qk-eeprom-" + std::to_string(getpid()) + "-" + std::to_string(++number));
  std::filesystem::create_directories(folder);
  return folder;
}

struct LoadFixture : test::ScriptedLink {
  ScriptedInstrument instrument{port};
  std::filesystem::path folder = FreshFolder();

  LoadFixture() { session->InstallFolder = folder.string(); }
  ~LoadFixture() { std::filesystem::remove_all(folder); }

  std::string File() const {
    std::ifstream in(folder / "RXCal.dat", std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
  }
  Texts Lines() const {
    Texts lines;
    const std::string text = File();
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t end = text.find("\r\n", at);
      if (end == std::string::npos) {
        ADD_FAILURE() << "a line without CR LF";
        break;
      }
      lines.push_back(text.substr(at, end - at));
      at = end + 2;
    }
    return lines;
  }
};

TEST(LoadEepromData, IsExactly228Exchanges) {
  LoadFixture b;
  test::LoadEeprom(b.rig);
  EXPECT_EQ(b.instrument.CountOf("P"), 228u);
  EXPECT_EQ(b.instrument.CountOf("Q"), 228u);
  EXPECT_EQ(b.port.FedBytes, kAllBytes);
  EXPECT_TRUE(b.fake.Messages.empty());
}

TEST(LoadEepromData, AsksForItsBlocksInOrder) {
  LoadFixture b;
  test::LoadEeprom(b.rig);
  std::vector<Bytes> reads;
  for (const Bytes& c : b.instrument.Commands)
    if (c[0] == 'P') reads.push_back(c);
  ASSERT_EQ(reads.size(), 228u);
  EXPECT_EQ(reads[0], (Bytes{'P', 64, 4, 0}));
  EXPECT_EQ(reads[1], (Bytes{'P', 64, 4, 64}));
  EXPECT_EQ(reads[75], (Bytes{'P', 64, 23, 0}));
  EXPECT_EQ(reads[150], (Bytes{'P', 120, 43, 0}));
  EXPECT_EQ(reads[226], (Bytes{'P', 120, 78, 160}));  // 11008 + 76 * 120
  EXPECT_EQ(reads[227], (Bytes{'P', 1, 78, 251}));    // 20219
}

TEST(LoadEepromData, FillsBothLevelTablesFromBlocksOfTwoColumns) {
  LoadFixture b;
  test::LoadEeprom(b.rig);
  const LevelTables& levels = b.session->Levels;
  for (std::size_t f = 0; f < 149; ++f)
    for (std::size_t c = 0; c < 32; ++c) {
      const std::size_t at = f / 2 * 64 + f % 2 * 32 + c;
      ASSERT_EQ(levels.Port1LevelTable[c][f], b.instrument.Eeprom[1024 + at] - 128)
          << c << " " << f;
      ASSERT_EQ(levels.Port2LevelTable[c][f], b.instrument.Eeprom[5888 + at] - 128)
          << c << " " << f;
    }
}

TEST(LoadEepromData, TakesStoredByte128ForZeroAnd0ForMinus128) {
  LoadFixture b;
  b.instrument.Eeprom[1024] = 128;
  b.instrument.Eeprom[1025] = 0;
  b.instrument.Eeprom[1026] = 255;
  test::LoadEeprom(b.rig);
  EXPECT_EQ(b.session->Levels.Port1LevelTable[0][0], 0);
  EXPECT_EQ(b.session->Levels.Port1LevelTable[1][0], -128);
  EXPECT_EQ(b.session->Levels.Port1LevelTable[2][0], 127);
}

TEST(LoadEepromData, WritesTwoLinesAnEntryAndAWholeNumberAtTheEnd) {
  LoadFixture b;
  auto* rx = b.instrument.Eeprom.data() + 11008;
  rx[0] = 0, rx[1] = 5, rx[2] = 0;
  rx[3] = 255, rx[4] = 255, rx[5] = 255;
  rx[6] = 1, rx[7] = 0, rx[8] = 51;
  b.instrument.Eeprom[20218] = 101;
  test::LoadEeprom(b.rig);
  const Texts lines = b.Lines();
  ASSERT_EQ(lines.size(), 6141u);
  EXPECT_EQ(Texts(lines.begin(), lines.begin() + 6),
            (Texts{" 0.5", "-18", " 6553.5", "-14", " 25.6", "-17.2"}));
  EXPECT_EQ(lines.back(), " 101");
}

TEST(LoadEepromData, WritesEveryEntryInOrderAndNoFrequencies) {
  LoadFixture b;
  test::LoadEeprom(b.rig);
  const Texts lines = b.Lines();
  ASSERT_EQ(lines.size(), 6141u);
  for (std::size_t k = 0; k < 3070; ++k) {
    const auto* e = b.instrument.Eeprom.data() + 11008 + 3 * k;
    ASSERT_EQ(std::stod(lines[2 * k]), (e[0] * 256 + e[1]) / 10.0) << k;
    ASSERT_EQ(std::stod(lines[2 * k + 1]), e[2] * 4 / 255.0 - 18) << k;
    ASSERT_EQ(lines[2 * k].front(), ' ') << k;
    ASSERT_EQ(lines[2 * k + 1].front(), '-') << k;
  }
}

TEST(LoadEepromData, WritesTheFileAnewAtEveryStart) {
  LoadFixture b;
  std::ofstream(b.folder / "RXCal.dat") << std::string(200000, 'x');
  test::LoadEeprom(b.rig);
  EXPECT_EQ(b.Lines().size(), 6141u);
}

TEST(LoadEepromData, GoesOnWhenTheFileCannotBeOpened) {
  LoadFixture b;
  b.session->InstallFolder = (b.folder / "missing" / "deep").string();
  b.instrument.Eeprom[20219] = 140;
  test::LoadEeprom(b.rig);
  EXPECT_TRUE(b.fake.Messages.empty());
  EXPECT_EQ(b.instrument.CountOf("P"), 228u);
  EXPECT_EQ(b.session->Receiver.RxDcCorrection, 1.2f);
}

TEST(LoadEepromData, TakesTheDcCorrectionInTenthsAround128) {
  for (const auto& [stored, value] :
       {std::pair{128, 0.0f}, std::pair{0, -12.8f}, std::pair{255, 12.7f}}) {
    LoadFixture b;
    b.instrument.Eeprom[20219] = static_cast<std::uint8_t>(stored);
    test::LoadEeprom(b.rig);
    EXPECT_EQ(b.session->Receiver.RxDcCorrection, value);
  }
}

TEST(LoadEepromData, MovesTheBarEveryFifthBlock) {
  LoadFixture b;
  std::vector<int> bar;
  test::LoadEeprom(b.rig, [&bar](int percent) { bar.push_back(percent); });
  std::vector<int> expected{0};
  // f is odd, so its multiples of 5 are 5, 15 ... 145.
  for (int f = 5; f <= 145; f += 10) expected.push_back((25 * f * 2 + 149) / (2 * 149));
  for (int f = 5; f <= 145; f += 10) expected.push_back(25 + (25 * f * 2 + 149) / (2 * 149));
  for (int i = 5; i <= 75; i += 5) expected.push_back(50 + (50 * i * 2 + 77) / (2 * 77));
  EXPECT_EQ(bar, expected);
  EXPECT_EQ(expected.back(), 99);
}

TEST(LoadEepromData, OpensThePortThatTheSetUpLeftClosed) {
  LoadFixture b;
  EXPECT_FALSE(b.link.IsOpen());
  test::LoadEeprom(b.rig);
  EXPECT_TRUE(b.link.IsOpen());
}

// ---- failures ---------------------------------------------------------------------------------

// What a failure at an incoming byte must say.
Texts NoResponseAt(std::size_t at) {
  if (at < kRxStart) return {"Set Synth Level|No Response. Re-start Program.|exclamation|ok"};
  if (at < kDcStart) return {"Read RX Cal Data|No Response|exclamation|ok"};
  return {"Read RX dc Off Correction|No Response|exclamation|ok"};
}
Texts LinkErrorAt(std::size_t at) {
  if (at < kRxStart) return {"Set Synth Level|Link Error. Re-start Program.|exclamation|ok"};
  if (at < kDcStart) return {"Read RX Cal Data|Link Error. Re-start Program.|exclamation|ok"};
  return {"Read RX dc Off Corr|Link Error. Re-start Program.|exclamation|ok"};
}
bool IsStatus(std::size_t at) {
  if (at < kRxStart) return at % 65 == 0;
  if (at < kDcStart) return (at - kRxStart) % 121 == 0;
  return at == kDcStart;
}
int TimeoutAt(std::size_t at) {
  if (IsStatus(at)) return 2000;
  return at < kDcStart ? 200 : 100;
}

// Every byte of the first exchange of each form (a status letter, and 64, 120 or 1 bytes of data),
// and one byte of each of the other exchanges, which moves on through them.
std::vector<std::size_t> Positions() {
  std::vector<std::size_t> positions;
  std::size_t start = 0;
  for (std::size_t k = 0; k < 228; ++k) {
    const std::size_t length = k < 150 ? 65 : k < 227 ? 121 : 2;
    const bool all = k == 0 || k == 150 || k == 227;
    if (!all) positions.push_back(start + k * 7 % length);
    for (std::size_t i = 0; all && i < length; ++i) positions.push_back(start + i);
    start += length;
  }
  EXPECT_EQ(start, kAllBytes);
  return positions;
}

// Few of them, for what takes a whole load each time.
std::vector<std::size_t> SomePositions() {
  std::vector<std::size_t> some;
  const std::vector<std::size_t> positions = Positions();
  for (std::size_t i = 0; i < positions.size(); ++i)
    if (i % 19 == 0 || IsStatus(positions[i])) some.push_back(positions[i]);
  return some;
}

struct FaultyLoad : LoadFixture {
  explicit FaultyLoad(const Fault& fault) {
    port.Fault = fault;
    test::LoadEeprom(rig);
  }
};

TEST(FaultsInTheLoad, ACutReplyIsReportedAtOnceUnderItsStageAndEndsTheLoad) {
  for (const std::size_t at : Positions()) {
    FaultyLoad b({FaultKind::Cut, at});
    ASSERT_EQ(b.fake.MessageTexts(), IsStatus(at) ? NoResponseAt(at) : LinkErrorAt(at)) << at;
    ASSERT_EQ(b.ElapsedMs(), TimeoutAt(at) + 1) << at;
  }
}

TEST(FaultsInTheLoad, ADoubledDataByteIsALinkErrorWithoutAWait) {
  for (const std::size_t at : Positions()) {
    if (IsStatus(at)) continue;
    FaultyLoad b({FaultKind::Double, at});
    ASSERT_EQ(b.fake.MessageTexts(), LinkErrorAt(at)) << at;
    ASSERT_EQ(b.ElapsedMs(), 0) << at;
  }
}

TEST(FaultsInTheLoad, AGarbledStatusIsNoResponseWithoutAWait) {
  for (std::size_t at = 0; at < kAllBytes; ++at) {
    if (!IsStatus(at)) continue;
    FaultyLoad b({FaultKind::Garble, at});
    ASSERT_EQ(b.fake.MessageTexts(), NoResponseAt(at)) << at;
    ASSERT_EQ(b.ElapsedMs(), 0) << at;
  }
}

TEST(FaultsInTheLoad, ADoubledStatusAndGarbledDataPass) {
  for (const std::size_t at : SomePositions()) {
    FaultyLoad b({IsStatus(at) ? FaultKind::Double : FaultKind::Garble, at});
    ASSERT_EQ(b.fake.MessageTexts(), Texts{}) << at;
    ASSERT_EQ(b.instrument.CountOf("P"), 228u) << at;
    ASSERT_EQ(b.ElapsedMs(), 0) << at;
  }
}

TEST(FaultsInTheLoad, AByteLaterThanItsTimeOutIsReportedUnderItsStageAndEndsTheLoad) {
  for (const std::size_t at : Positions()) {
    FaultyLoad b({FaultKind::Late, at, TimeoutAt(at) + 2});
    ASSERT_EQ(b.fake.MessageTexts(), IsStatus(at) ? NoResponseAt(at) : LinkErrorAt(at)) << at;
    ASSERT_EQ(b.ElapsedMs(), TimeoutAt(at) + 1) << at;
  }
}

TEST(FaultsInTheLoad, AByteThatComesWithItsTimeOutIsInTime) {
  for (const std::size_t at : SomePositions()) {
    FaultyLoad b({FaultKind::Late, at, TimeoutAt(at)});
    ASSERT_EQ(b.fake.MessageTexts(), Texts{}) << at;
    ASSERT_EQ(b.ElapsedMs(), TimeoutAt(at)) << at;
  }
}

TEST(FaultsInTheLoad, ALineOnWhichEveryByteIs100MsLateLoadsAll) {
  FaultyLoad b({.Kind = FaultKind::Late, .LateMs = 100, .AllFrom = true});
  EXPECT_EQ(b.fake.MessageTexts(), Texts{});
  EXPECT_EQ(b.ElapsedMs(), 100 * static_cast<std::int64_t>(kAllBytes));
  EXPECT_EQ(b.Lines().size(), 6141u);
}

TEST(FaultsInTheLoad, AnAdaptorPulledOutAtAnyByteIsReportedWithoutAWait) {
  for (const std::size_t at : Positions()) {
    FaultyLoad b({FaultKind::Unplug, at});
    ASSERT_EQ(b.fake.MessageTexts(), IsStatus(at) ? NoResponseAt(at) : LinkErrorAt(at)) << at;
    ASSERT_EQ(b.ElapsedMs(), 0) << at;
  }
}

TEST(FaultsInTheLoad, WithTheAdaptorBackTheNextLoadGoesThrough) {
  for (const std::size_t at : SomePositions()) {
    FaultyLoad b({FaultKind::Unplug, at});
    b.port.Fault.reset();
    b.port.PlugIn(1);
    b.fake.Messages.clear();
    test::LoadEeprom(b.rig);
    ASSERT_EQ(b.fake.MessageTexts(), Texts{}) << at;
    ASSERT_EQ(b.Lines().size(), 6141u) << at;
  }
}

TEST(FaultsInTheLoad, KeepsWhatWasReadBeforeTheFailure) {
  LoadFixture b;
  b.port.Fault = Fault{FaultKind::Cut, 65 + 1};  // first byte of the second block
  test::LoadEeprom(b.rig);
  EXPECT_EQ(b.session->Levels.Port1LevelTable[31][1], b.instrument.Eeprom[1024 + 63] - 128);
  EXPECT_EQ(b.session->Levels.Port1LevelTable[0][2], 0);
  EXPECT_EQ(b.session->Receiver.RxDcCorrection, 0.0f);
  EXPECT_EQ(b.File(), "");
}

// ---- identity ---------------------------------------------------------------------------------

struct IdentityFixture : test::ScriptedLink {
  ScriptedInstrument instrument{port};
  IdentityFixture() { port.Open(); }
};

TEST(ReadIdentity, ReadsTheSerialNumberAndTheFirmware) {
  IdentityFixture b;
  ReadIdentity(b.rig);
  EXPECT_EQ(b.session->Id.SerialNumber, 147);
  EXPECT_EQ(b.session->Id.FirmwareVersion, "1.2");
  EXPECT_EQ(b.port.Writes,
            (std::vector<Bytes>{BytesOf("Q"), {'P', 4, 0, 10}, BytesOf("Q"), BytesOf("V")}));
}

TEST(ReadIdentity, TakesTheLeadingDigitsOfTheField) {
  for (const auto& [field, number] :
       {std::pair{"7   ", 7}, std::pair{"12AB", 12}, std::pair{" 34 ", 34}, std::pair{"9999", 9999},
        std::pair{"1e3 ", 1}, std::pair{"A123", 0}, std::pair{"-123", 0}, std::pair{"    ", 0},
        std::pair{"\xFF\xFF\xFF\xFF", 0}}) {
    IdentityFixture b;
    std::copy(field, field + 4, b.instrument.Eeprom.begin() + 10);
    ReadIdentity(b.rig);
    EXPECT_EQ(b.session->Id.SerialNumber, number) << field;
  }
}

TEST(ReadIdentity, GivesZeroAndOldestFirmwareWhenNothingAnswers) {
  IdentityFixture b;
  b.instrument.Silent = true;
  b.session->Id.SerialNumber = 55;
  b.session->Id.FirmwareVersion = "1.2";
  ReadIdentity(b.rig);
  EXPECT_EQ(b.session->Id.SerialNumber, 0);
  EXPECT_EQ(b.session->Id.FirmwareVersion, "0.0");
  EXPECT_TRUE(b.fake.Messages.empty());
  EXPECT_EQ(b.ElapsedMs(), 2 * 2001);
}

TEST(ReadIdentity, KeepsTheFourCharactersOfTheReleaseBetweenOneAndOnePointOne) {
  IdentityFixture b;
  b.instrument.Firmware = "1.05";
  ReadIdentity(b.rig);
  EXPECT_EQ(b.session->Id.FirmwareVersion, "1.05");
}

TEST(ReadIdentity, KeepsAFourthCharacterThatComesALittleLater) {
  for (const int lateMs : {1, 5, 15}) {
    IdentityFixture b;
    const auto inner = b.port.OnWrite;
    b.port.OnWrite = [&b, inner, lateMs](const Bytes& bytes) {
      inner(bytes);
      if (bytes == BytesOf("V")) b.port.Feed(BytesOf("5"), lateMs);
    };
    b.instrument.Firmware = "1.0";
    ReadIdentity(b.rig);
    EXPECT_EQ(b.session->Id.FirmwareVersion, "1.05") << lateMs;
  }
}

// In order: R, 4 of serial number, R, 3 of firmware.
TEST(FaultsInTheIdentity, ACutByteGivesZeroOrOldestFirmwareNeverHalfANumber) {
  for (std::size_t at = 0; at < 9; ++at) {
    IdentityFixture b;
    b.port.Fault = Fault{FaultKind::Cut, at};
    ReadIdentity(b.rig);
    EXPECT_EQ(b.session->Id.SerialNumber, at < 5 ? 0 : 147) << at;
    EXPECT_EQ(b.session->Id.FirmwareVersion, at < 5 ? "1.2" : "0.0") << at;
    const int quiet = at < 5 ? 20 : 0;  // behind a firmware version that came
    EXPECT_EQ(b.ElapsedMs(), (at == 0 || at == 5 ? 2001 : 101) + quiet) << at;
  }
}

TEST(FaultsInTheIdentity, ByteThatComesAfterItsTimeOutIsNoPartOfALaterReply) {
  for (std::size_t at = 0; at < 9; ++at)
    for (const int late : {102, 1500, 2500}) {
      IdentityFixture b;
      b.port.Fault = Fault{FaultKind::Late, at, late};
      ReadIdentity(b.rig);
      const bool status = at == 0 || at == 5;
      const bool inTime = status && late < 2000;
      EXPECT_EQ(b.session->Id.SerialNumber, at < 5 && !inTime ? 0 : 147) << at << " " << late;
      // What came late is before the answer to the next link check, which drops it when it
      // comes within its time-out.
      const bool firmware = at == 0 || inTime || (at < 5 && late < 2000);
      EXPECT_EQ(b.session->Id.FirmwareVersion, firmware ? "1.2" : "0.0") << at << " " << late;
      EXPECT_LE(b.ElapsedMs(), 2 * 2001 + 2 * 101) << at << " " << late;
    }
}

TEST(FaultsInTheIdentity, ADoubledDigitIsNotAnotherInstrumentsNumber) {
  for (std::size_t at = 0; at < 5; ++at) {
    IdentityFixture b;
    b.port.Fault = Fault{FaultKind::Double, at};
    ReadIdentity(b.rig);
    EXPECT_EQ(b.session->Id.SerialNumber, at == 0 ? 147 : 0) << at;
    EXPECT_EQ(b.session->Id.FirmwareVersion, "1.2") << at;
  }
}

TEST(FaultsInTheIdentity, ADoubledCharacterOfTheFirmwareStaysInItsText) {
  for (const auto& [at, text] :
       {std::pair{5, "1.2"}, std::pair{6, "11.2"}, std::pair{7, "1..2"}, std::pair{8, "1.22"}}) {
    IdentityFixture b;
    b.port.Fault = Fault{FaultKind::Double, static_cast<std::size_t>(at)};
    ReadIdentity(b.rig);
    EXPECT_EQ(b.session->Id.SerialNumber, 147);
    EXPECT_EQ(b.session->Id.FirmwareVersion, text);
    EXPECT_EQ(b.ElapsedMs(), 20);  // the quiet behind the version
  }
}

TEST(FaultsInTheIdentity, AGarbledStatusIsNoAnswerAndAGarbledDigitEndsItsNumber) {
  // In order: R, "0147", R, "1.2"; a garbled digit is a letter.
  const int numbers[] = {0, 0, 0, 1, 14, 147, 147, 147, 147};
  const char* const versions[] = {"1.2", "1.2", "1.2", "1.2", "1.2", "0.0", "k.2", "1t2", "1.h"};
  for (std::size_t at = 0; at < 9; ++at) {
    IdentityFixture b;
    b.port.Fault = Fault{FaultKind::Garble, at};
    ReadIdentity(b.rig);
    EXPECT_EQ(b.session->Id.SerialNumber, numbers[at]) << at;
    EXPECT_EQ(b.session->Id.FirmwareVersion, versions[at]) << at;
    EXPECT_EQ(b.ElapsedMs(), at == 5 ? 0 : 20) << at;
  }
}

TEST(FaultsInTheIdentity, AnAdaptorPulledOutAtAnyByteEndsWithoutAWait) {
  for (std::size_t at = 0; at < 9; ++at) {
    IdentityFixture b;
    b.port.Fault = Fault{FaultKind::Unplug, at};
    ReadIdentity(b.rig);
    EXPECT_EQ(b.session->Id.SerialNumber, at < 5 ? 0 : 147) << at;
    EXPECT_EQ(b.session->Id.FirmwareVersion, "0.0") << at;
    EXPECT_EQ(b.ElapsedMs(), 0) << at;
  }
}

}  // namespace
}  // namespace qk
