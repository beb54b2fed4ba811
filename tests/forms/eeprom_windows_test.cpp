// SPDX-License-Identifier: MIT
// Back-up and restore of the EEPROM, over a scripted instrument that keeps what is written.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <numeric>
#include <sstream>

#include "files/eeprom_text.h"
#include "support/full_disk.h"
#include "support/program_fixture.h"

namespace qk::test {
namespace {

constexpr const char* kBackUpAsked =
    "Eeprom Backup|This will create a copy of EEPROM data to your hard disk. Continue?|question|"
    "yes/no";
constexpr const char* kRestoreAsked =
    "Restore EEPROM|This will restore the EEPROM data in your VNA from data in your hard disk. "
    "Continue?|question|yes/no";
constexpr const char* kWriteAsked =
    "Restore EEPROM|Data appears valid. Writing to EEPROM will take several minutes. Are you sure "
    "you want to continue?|question|yes/no";
constexpr const char* kInvalid = "Restore EEPROM|Invalid data or file. Aborting.|critical|ok";
constexpr const char* kBackUpSilent = "Eeprom Backup|No Response|critical|ok";
constexpr const char* kRestoreSilent = "Restore EEPROM|No Response|critical|ok";

struct EepromFixture : ScriptedProgram {
  EepromFixture() {
    port.Open();
    SetChecksum();
    fake.SetInterval(TimerId::Timer1, 1);
    fake.Enable(TimerId::Timer1, true);
  }
  void SetChecksum() {
    auto& eeprom = instrument.Eeprom;
    eeprom[32767] =
        static_cast<std::uint8_t>(std::accumulate(eeprom.begin(), eeprom.end() - 1, 0u));
  }
  // Shows the modal window, presses its first button, and closes it when it has not done so.
  void Run(std::string_view window, std::optional<std::string> path) {
    fake.Answers = {Answer::Yes, Answer::Yes};
    fake.Choices = {std::move(path)};
    const std::string name(window);
    fake.OnModal = [this, name](Form&) { EXPECT_TRUE(Click(name + ".Command1")); };
    fake.Show(window);
  }
  Texts BackUp(const std::string& path) {
    Run("EepromBk", path);
    return TakeMessages();
  }
  Texts Restore(const std::string& path) {
    Run("EepromRest", path);
    return TakeMessages();
  }
  // The instrument falls silent at this link check, counted from 1.
  void DieAtCheck(int number) {
    int checks = 0;
    const auto take = port.OnWrite;
    port.OnWrite = [this, take, checks, number](const Bytes& bytes) mutable {
      if (bytes == BytesOf("Q") && ++checks == number) instrument.Silent = true;
      take(bytes);
    };
  }
  // ... or does not answer this read of a block, counted from 1.
  void DieAtRead(int number) {
    int reads = 0;
    const auto take = port.OnWrite;
    port.OnWrite = [this, take, reads, number](const Bytes& bytes) mutable {
      if (bytes[0] == 'P' && ++reads == number) instrument.Silent = true;
      take(bytes);
    };
  }
  void StartWatch() { start_ = clock.NowMs(); }
  std::int64_t ElapsedMs() const { return clock.NowMs() - start_; }
  std::int64_t start_ = 0;
  static std::string Content(const std::string& path) {
    std::stringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
  }
};

TEST(EepromWindows, ABackUpReads256BlocksAndWritesThemDown) {
  EepromFixture vna;
  const std::string path = vna.folder.File("a.bak");
  EXPECT_EQ(vna.BackUp(path), Texts{kBackUpAsked});
  std::vector<Bytes> expected;
  for (int i = 0; i < 256; ++i) {
    expected.push_back(BytesOf("Q"));
    expected.push_back({'P', 128, static_cast<std::uint8_t>(i * 128 / 256),
                        static_cast<std::uint8_t>(i * 128 % 256)});
  }
  EXPECT_EQ(vna.port.Writes, expected);
  const auto image = ParseEepromText(EepromFixture::Content(path));
  ASSERT_TRUE(image.Ok());
  EXPECT_TRUE(std::equal(image->begin(), image->end(), vna.instrument.Eeprom.begin()));
  EXPECT_FALSE(vna.Window("EepromBk").Shown);
  const auto& bars = vna.fake.Progresses["EepromBk"];
  ASSERT_GE(bars.size(), 51u);
  EXPECT_EQ(bars.back(), 99) << "of 256 blocks the 255th is the last told";
  EXPECT_EQ(vna.fake.Dialogs.back().Filter, "All Files (*.*)|*.*|bak_files(*.bak)|*.bak|");
  EXPECT_EQ(vna.fake.Dialogs.back().FilterIndex, 2);
}

TEST(EepromWindows, EventsRunBetweenTheBlocksAndTimer1DoesNot) {
  EepromFixture vna;
  const int before = vna.fake.EventRuns;
  vna.BackUp(vna.folder.File("a.bak"));
  EXPECT_EQ(vna.fake.EventRuns - before, 256);
  EXPECT_EQ(vna.instrument.CountOf("C"), 0u) << "a tick would have measured the offsets";
  EXPECT_TRUE(vna.fake.Enabled(TimerId::Timer1));
}

TEST(EepromWindows, ABackUpThatIsDeclinedOrHasNoFileDoesNothing) {
  EepromFixture vna;
  vna.fake.OnModal = [&](Form&) { vna.Click("EepromBk.Command1"); };
  vna.fake.Answers = {Answer::No};
  vna.fake.Show("EepromBk");
  vna.Run("EepromBk", std::nullopt);
  EXPECT_EQ(vna.TakeMessages(), (Texts{kBackUpAsked, kBackUpAsked}));
  EXPECT_TRUE(vna.port.Writes.empty());
}

TEST(EepromWindows, ExitEndsABackUpAtOnceAndLeavesNoFile) {
  EepromFixture vna;
  const std::string path = vna.folder.File("a.bak");
  int runs = 0;
  vna.fake.OnEvents = [&] {
    if (++runs == 100) {
      EXPECT_TRUE(vna.Click("EepromBk.Command2"));
    }
  };
  EXPECT_EQ(vna.BackUp(path), Texts{kBackUpAsked});
  EXPECT_EQ(vna.instrument.CountOf("P"), 100u);
  EXPECT_FALSE(std::ifstream(path).is_open());
  EXPECT_TRUE(vna.At("EepromBk.Command1").Enabled);
}

TEST(EepromWindows, ABackUpOfABadChecksumWritesNoFile) {
  EepromFixture vna;
  vna.instrument.Eeprom[5] ^= 1;
  const int sum =
      std::accumulate(vna.instrument.Eeprom.begin(), vna.instrument.Eeprom.end() - 1, 0) & 0xFF;
  const std::string path = vna.folder.File("a.bak");
  EXPECT_EQ(vna.BackUp(path),
            (Texts{kBackUpAsked, "Eeprom Backup|Incorrect CheckSum. Cannot Continue." +
                                     std::to_string(sum) + "|critical|ok"}));
  EXPECT_FALSE(std::ifstream(path).is_open());
}

TEST(EepromWindows, AShortBlockIsALinkError) {
  EepromFixture vna;
  vna.port.Fault = Fault{.Kind = FaultKind::Cut, .Position = 1000};
  EXPECT_EQ(vna.BackUp(vna.folder.File("a.bak")),
            (Texts{kBackUpAsked, "Eeprom Backup|Link Error. Re-start Program.|critical|ok"}));
}

TEST(EepromWindows, AFileThatCannotBeWrittenIsReported) {
  EepromFixture vna;
  const Texts told = vna.BackUp(vna.folder.File("no/a.bak"));
  ASSERT_EQ(told.size(), 2u);
  EXPECT_TRUE(told[1].starts_with("Eeprom Backup|")) << told[1];
}

TEST(EepromWindows, OnAFullDiskTheOldBackUpStaysAndTheCauseIsReported) {
  EepromFixture vna;
  const std::string path = vna.folder.File("a.bak");
  vna.BackUp(path);
  const std::string old = EepromFixture::Content(path);
  const FullDisk disk(old.size() / 2);
  EXPECT_EQ(vna.BackUp(path),
            (Texts{kBackUpAsked,
                   "Eeprom Backup|" + path + ": cannot be written: File too large|critical|ok"}));
  EXPECT_EQ(EepromFixture::Content(path), old);
}

TEST(EepromWindows, ABackUpFromAnInstrumentThatDiesAtAnyBlockIsReportedAndWritesNoFile) {
  for (int block = 1; block <= 256; ++block) {
    EepromFixture vna;
    vna.DieAtCheck(block);
    const std::string path = vna.folder.File("a.bak");
    ASSERT_EQ(vna.BackUp(path), (Texts{kBackUpAsked, kBackUpSilent})) << block;
    ASSERT_FALSE(std::ifstream(path).is_open());
    ASSERT_TRUE(vna.fake.Enabled(TimerId::Timer1));
  }
}

TEST(EepromWindows, ABackUpFromAnInstrumentThatDiesWithinAnyBlockIsALinkError) {
  for (int block = 1; block <= 256; ++block) {
    EepromFixture vna;
    vna.DieAtRead(block);
    const std::string path = vna.folder.File("a.bak");
    vna.StartWatch();
    ASSERT_EQ(vna.BackUp(path),
              (Texts{kBackUpAsked, "Eeprom Backup|Link Error. Re-start Program.|critical|ok"}))
        << block;
    ASSERT_NEAR(static_cast<double>(vna.ElapsedMs()), 500, 20);
    ASSERT_FALSE(std::ifstream(path).is_open());
    ASSERT_TRUE(vna.At("EepromBk.Command1").Enabled);
  }
}

TEST(EepromWindows, ARestoreWritesBackWhatABackUpRead) {
  EepromFixture vna;
  const std::string path = vna.folder.File("a.bak");
  vna.BackUp(path);
  const std::vector<std::uint8_t> before = vna.instrument.Eeprom;
  vna.instrument.Eeprom[12345] ^= 0x55;
  vna.port.Writes.clear();
  vna.instrument.Commands.clear();
  EXPECT_EQ(vna.Restore(path), (Texts{kRestoreAsked, kWriteAsked}));
  EXPECT_EQ(vna.instrument.Eeprom, before);
  EXPECT_FALSE(vna.Window("EepromRest").Shown);
  EXPECT_EQ(vna.session.Panels[3], "EEPROM restored. Re-Start Program to use it");
  // Each block: the check that the one before is digested, the head, and 128 writes of a byte.
  // At the end one more check: the last block is digested too.
  EXPECT_EQ(vna.port.Writes.size(), 256 * (1 + 1 + 128u) + 1);
  EXPECT_EQ(vna.port.Writes.back(), BytesOf("Q"));
  EXPECT_EQ(vna.port.Writes[0], BytesOf("Q"));
  EXPECT_EQ(vna.port.Writes[1], (Bytes{'E', 'E', 128, 0, 0}));
  EXPECT_EQ(vna.port.Writes[2], Bytes{before[0]});
  EXPECT_EQ(vna.port.Writes[131], (Bytes{'E', 'E', 128, 0, 128}));
  EXPECT_EQ(vna.instrument.CountOf("C"), 0u) << "no tick of Timer1 came between";
}

TEST(EepromWindows, ABadFileIsRefusedAndNothingIsSent) {
  EepromFixture vna;
  const std::string path = vna.folder.File("a.bak");
  vna.BackUp(path);
  const std::string good = EepromFixture::Content(path);
  const auto with = [&](std::string_view what, std::string_view instead) {
    std::string text = good;
    return text.replace(text.find(what), what.size(), instead);
  };
  const std::string first = good.substr(0, good.find_first_of(' ', 1) + 1);
  const std::vector<std::string> bad = {
      with(first, first == " 1 " ? " 2 " : " 1 "),  // one number changed
      with(first, " x "),
      with(first, " 256 "),
      with(first, " -1 "),
      with(first, " 1.5 "),
      good.substr(0, good.size() / 2),
      good + " 0 ",
      "",
      std::string(2 << 20, ' ')};
  vna.port.Writes.clear();
  for (const std::string& text : bad) {
    std::ofstream(path, std::ios::binary) << text;
    EXPECT_EQ(vna.Restore(path), (Texts{kRestoreAsked, kInvalid})) << text.substr(0, 20);
  }
  EXPECT_EQ(vna.Restore(vna.folder.File("none.bak")), (Texts{kRestoreAsked, kInvalid}));
  EXPECT_TRUE(vna.port.Writes.empty());
}

TEST(EepromWindows, AFileWhoseNumbersSumRightPassesWhateverItHolds) {
  EepromFixture vna;
  const std::string path = vna.folder.File("zero.bak");
  std::string zeros;
  for (int i = 0; i < 32768; ++i) zeros += "0\n";
  std::ofstream(path, std::ios::binary) << zeros;
  EXPECT_EQ(vna.Restore(path), (Texts{kRestoreAsked, kWriteAsked}));
  EXPECT_EQ(vna.instrument.Eeprom, std::vector<std::uint8_t>(32768, 0));
}

TEST(EepromWindows, ARestoreThatIsDeclinedAtEitherQuestionSendsNothing) {
  EepromFixture vna;
  const std::string path = vna.folder.File("a.bak");
  vna.BackUp(path);
  vna.port.Writes.clear();
  vna.fake.OnModal = [&](Form&) { vna.Click("EepromRest.Command1"); };
  vna.fake.Answers = {Answer::No};
  vna.fake.Show("EepromRest");
  EXPECT_EQ(vna.TakeMessages(), Texts{kRestoreAsked});
  vna.fake.Answers = {Answer::Yes, Answer::No};
  vna.fake.Choices = {std::optional<std::string>(path)};
  vna.fake.Show("EepromRest");
  EXPECT_EQ(vna.TakeMessages(), (Texts{kRestoreAsked, kWriteAsked}));
  vna.Run("EepromRest", std::nullopt);
  EXPECT_EQ(vna.TakeMessages(), Texts{kRestoreAsked});
  EXPECT_TRUE(vna.port.Writes.empty());
}

TEST(EepromWindows, ARestoreCannotBeInterrupted) {
  constexpr const char* kWarning =
      "Restore EEPROM|Writing to EEPROM. Cannot Interrupt|exclamation|ok";
  EepromFixture vna;
  const std::string path = vna.folder.File("a.bak");
  vna.BackUp(path);
  const std::vector<std::uint8_t> before = vna.instrument.Eeprom;
  const std::function<void()> byExit = [&] { EXPECT_TRUE(vna.Click("EepromRest.Command2")); };
  const std::function<void()> byTitleBar = [&] {
    EXPECT_FALSE(vna.Window("EepromRest").OnCloseBox());
  };
  const std::function<void()> byStart = [&] { EXPECT_FALSE(vna.Click("EepromRest.Command1")); };
  for (const auto* act : {&byExit, &byTitleBar, &byStart}) {
    vna.instrument.Eeprom.assign(32768, 1);
    int runs = 0;
    vna.fake.OnEvents = [&] {
      if (++runs == 100) (*act)();
    };
    EXPECT_EQ(vna.Restore(path), act == &byStart ? (Texts{kRestoreAsked, kWriteAsked})
                                                 : (Texts{kRestoreAsked, kWriteAsked, kWarning}));
    EXPECT_EQ(vna.instrument.Eeprom, before);
  }
}

TEST(EepromWindows, TheWritingContinuesBehindTheBoxToItsEndAlsoWhereItFails) {
  for (const bool fails : {false, true}) {
    EepromFixture vna;
    const std::string path = vna.folder.File("a.bak");
    vna.BackUp(path);
    const std::vector<std::uint8_t> before = vna.instrument.Eeprom;
    vna.instrument.Eeprom.assign(32768, 1);
    int runs = 0;
    vna.fake.OnEvents = [&] {
      if (++runs != 100) return;
      if (fails) vna.instrument.Silent = true;
      EXPECT_TRUE(vna.Click("EepromRest.Command2"));
      // The box has been open since; no events have been handled.
      if (!fails) {
        EXPECT_EQ(vna.instrument.Eeprom, before);
      }
    };
    constexpr const char* kWarning =
        "Restore EEPROM|Writing to EEPROM. Cannot Interrupt|exclamation|ok";
    const Texts told = vna.Restore(path);
    EXPECT_EQ(told, fails ? (Texts{kRestoreAsked, kWriteAsked, kWarning, kRestoreSilent})
                          : (Texts{kRestoreAsked, kWriteAsked, kWarning}));
    EXPECT_EQ(runs, 100);
    EXPECT_EQ(vna.Window("EepromRest").Shown, false);
    EXPECT_EQ(vna.Value("EepromRest.State").empty(), !fails);
  }
}

TEST(EepromWindows, BothQuestionsOfARestoreAreAnsweredNoByEnter) {
  EepromFixture vna;
  const std::string path = vna.folder.File("a.bak");
  vna.BackUp(path);
  vna.fake.Messages.clear();
  vna.Run("EepromRest", path);
  ASSERT_EQ(vna.fake.Messages.size(), 2u);
  for (const Message& message : vna.fake.Messages) EXPECT_TRUE(message.NoByDefault);
}

TEST(EepromWindows, ABackUpSaysInPanel3WhenItIsDone) {
  EepromFixture vna;
  vna.BackUp(vna.folder.File("a.bak"));
  EXPECT_EQ(vna.session.Panels[3], "EEPROM saved in a.bak");
  EXPECT_TRUE(vna.fake.Enabled(TimerId::Timer2)) << "it passes";
}

TEST(EepromWindows, ARestoreIntoAnInstrumentThatDiesAtAnyBlockSaysWhatToDo) {
  EepromFixture whole;
  // Data bytes go out one by one: none shall look like a link check.
  std::replace(whole.instrument.Eeprom.begin(), whole.instrument.Eeprom.end(), std::uint8_t{'Q'},
               std::uint8_t{'R'});
  whole.SetChecksum();
  ASSERT_NE(whole.instrument.Eeprom.back(), 'Q');
  const std::string path = whole.folder.File("a.bak");
  whole.BackUp(path);
  // The check behind the last block is the 257th.
  for (int block = 1; block <= 257; ++block) {
    EepromFixture vna;
    vna.DieAtCheck(block);
    vna.StartWatch();
    ASSERT_EQ(vna.Restore(path), (Texts{kRestoreAsked, kWriteAsked, kRestoreSilent})) << block;
    ASSERT_NEAR(static_cast<double>(vna.ElapsedMs()), 2000, 20);
    ASSERT_EQ(vna.instrument.CountOf("EE"), static_cast<std::size_t>(block - 1));
    // With the first block nothing has been written.
    ASSERT_EQ(vna.Value("EepromRest.State"),
              block == 1 ? ""
                         : "The EEPROM is written in part only. Run the restore again before the "
                           "instrument is switched off.");
    ASSERT_TRUE(vna.Window("EepromRest").OnCloseBox()) << "it can be closed again";
    ASSERT_TRUE(vna.At("EepromRest.Command1").Enabled);
  }
}

}  // namespace
}  // namespace qk::test
