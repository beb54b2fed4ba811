// SPDX-License-Identifier: MIT
#include "forms/diagnostics_tests.h"

#include <gtest/gtest.h>

#include <fstream>

#include "support/full_disk.h"
#include "utility_fixture.h"

namespace qk::test {
namespace {

constexpr const char* kNoCal = "Save Cal terms|No calibration!|exclamation|ok";
constexpr const char* kSaveAsked =
    "Save Cal terms|This will save a copy of the current calibration terms to your hard disk. "
    "Continue?|question|yes/no";

struct Diagnostics : UtilityFixture {
  void Work(const std::function<void()>& work) { In("DiagnosticsTests", work); }
  Texts Verdicts() {
    Texts verdicts;
    for (const char* field : {"Text1", "Text3", "Text4", "Text5", "Text6"})
      verdicts.push_back(Value(std::string("DiagnosticsTests.") + field));
    return verdicts;
  }
  std::vector<std::string> LinesOf(const std::string& path) {
    std::vector<std::string> lines;
    std::ifstream file(path, std::ios::binary);
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
  }
};

TEST(DiagnosticsTests, OpensWithoutVerdictsAndKeepsTimer1Off) {
  Diagnostics vna;
  vna.fake.Enable(TimerId::Timer1, true);
  vna.Work([&] {
    EXPECT_EQ(vna.Verdicts(), Texts(5, " -"));
    EXPECT_FALSE(vna.fake.Enabled(TimerId::Timer1));
  });
  EXPECT_TRUE(vna.fake.Enabled(TimerId::Timer1));
}

// It goes off at Apply of the generator, not at opening its window.
TEST(DiagnosticsTests, SwitchesTimer1OnWhileTheGeneratorsWindowIsMerelyOpenAndSoDoesDisplay) {
  for (const char* window : {"DiagnosticsTests", "DisplayPara"})
    for (const bool wave : {false, true}) {
      Diagnostics vna;
      vna.fake.Show("FreqGen");
      vna.fake.Enable(TimerId::Timer1, !wave);
      vna.session.Flags.SigGenActive = true;
      vna.session.Flags.SigGenWave = wave;
      vna.In(window, [] {});
      EXPECT_EQ(vna.fake.Enabled(TimerId::Timer1), !wave) << window;
    }
}

TEST(DiagnosticsTests, ShowsAndLogsTheVerdicts) {
  Diagnostics vna;
  vna.Bench("fault nolock at 1.5e9");
  vna.Work([&] {
    EXPECT_TRUE(vna.Click("DiagnosticsTests.Command1"));
    EXPECT_EQ(vna.Verdicts(), (Texts{"Lock Failure", " OK", " OK", " OK", " OK"}));
    EXPECT_EQ(vna.TakeMessages(),
              (Texts{"Diagnostics|Connect Port1 to Port2 with Low Loss Cable|information|ok",
                     "Diagnostics|Remove Connection from Port1 to Port2|information|ok"}));
  });
  const auto lines = vna.LinesOf(vna.folder.File("0147-log.txt"));
  ASSERT_GE(lines.size(), 6u);
  EXPECT_TRUE(lines[lines.size() - 6].starts_with("Diagnostics Tests Started. Temp "))
      << lines[lines.size() - 6];
  EXPECT_EQ((std::vector<std::string>{lines.end() - 5, lines.end()}),
            (Texts{"Synth Range: Lock Failure\r", "Test Levels:  OK\r", "RX Levels:  OK\r",
                   "RX xTalk:  OK\r", "dc Offset:  OK\r"}));
}

TEST(DiagnosticsTests, ARunningTestCannotBeStartedTwice) {
  Diagnostics vna;
  vna.Work([&] {
    int boxes = 0;
    vna.fake.OnAsk = [&](const Message&) {
      ++boxes;
      EXPECT_FALSE(vna.Click("DiagnosticsTests.Command1"));
      EXPECT_FALSE(vna.Click("DiagnosticsTests.Command3"));
    };
    EXPECT_TRUE(vna.Click("DiagnosticsTests.Command1"));
    EXPECT_EQ(boxes, 2);
    EXPECT_TRUE(vna.At("DiagnosticsTests.Command1").Enabled);
    EXPECT_TRUE(vna.At("DiagnosticsTests.Command3").Enabled);
  });
}

TEST(DiagnosticsTests, ExitEndsARunningTestAtTheNextExchange) {
  Diagnostics vna;
  const std::int64_t start = vna.clock.NowMs();
  vna.Work([&] {
    vna.Bench("fault silence");  // each exchange takes its two seconds
    vna.fake.At(start + 3000, [&] { EXPECT_TRUE(vna.Click("DiagnosticsTests.Command2")); });
    EXPECT_TRUE(vna.Click("DiagnosticsTests.Command1"));
    EXPECT_LT(vna.clock.NowMs(), start + 10'000);
    EXPECT_FALSE(vna.fake.IsShown("DiagnosticsTests"));
    // No prompt to connect anything came up behind it, and the tests that did not run have no
    // verdict.
    for (const std::string& text : vna.TakeMessages())
      EXPECT_FALSE(text.starts_with("Diagnostics|"));
    EXPECT_EQ(vna.Verdicts(), (Texts{"No Response", " -", " -", " -", " -"}));
  });
  EXPECT_TRUE(vna.At("DiagnosticsTests.Command1").Enabled);
  vna.Bench("fault none");
  vna.clock.AdvanceMs(10'000);
  vna.program.controller().StopMeasurement();
  EXPECT_TRUE(vna.session.Flags.Idle());
}

TEST(DiagnosticsTests, SavesTheCalibrationTermsAfterAQuestion) {
  Diagnostics vna;
  vna.Work([&] {
    const std::string path = vna.folder.File("terms.dat");
    vna.fake.Answers = {Answer::No, Answer::Yes, Answer::Yes};
    vna.fake.Choices = {std::nullopt, std::optional<std::string>(path)};
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(vna.Click("DiagnosticsTests.Command3"));
    EXPECT_EQ(vna.TakeMessages(), Texts(3, kSaveAsked));
    ASSERT_EQ(vna.fake.Dialogs.size(), 2u);
    EXPECT_EQ(vna.fake.Dialogs[0].Filter, "All Files (*.*)|*.*|data_files(*.dat)|*.dat|");
    const auto lines = vna.LinesOf(path);
    ASSERT_EQ(lines.size(), 8 + 51u);
    EXPECT_EQ(lines[1], "ED = Forward directivity \r");
  });
}

TEST(DiagnosticsTests, WithoutACalibrationThereIsNothingToSave) {
  ScriptedProgram vna;
  vna.Click("DiagnosticsTests.Command3");
  EXPECT_EQ(vna.TakeMessages(), Texts{kNoCal});
}

TEST(DiagnosticsTests, AFileThatCannotBeWrittenIsReported) {
  Diagnostics vna;
  vna.Work([&] {
    vna.fake.Answers = {Answer::Yes};
    vna.fake.Choices = {std::optional<std::string>(vna.folder.File("no/terms.dat"))};
    vna.Click("DiagnosticsTests.Command3");
    const Texts told = vna.TakeMessages();
    ASSERT_EQ(told.size(), 2u);
    EXPECT_TRUE(told[1].starts_with("Save Cal terms|")) << told[1];
  });
}

TEST(DiagnosticsTests, OnAFullDiskTheOldTermsStayAndTheCauseIsReported) {
  Diagnostics vna;
  vna.Work([&] {
    const std::string path = vna.folder.File("terms.dat");
    vna.fake.Answers = {Answer::Yes, Answer::Yes};
    vna.fake.Choices = {std::optional<std::string>(path), std::optional<std::string>(path)};
    vna.Click("DiagnosticsTests.Command3");
    const auto old = vna.LinesOf(path);
    {
      const FullDisk disk(1000);
      vna.Click("DiagnosticsTests.Command3");
    }
    EXPECT_EQ(
        vna.TakeMessages(),
        (Texts{kSaveAsked, kSaveAsked,
               "Save Cal terms|" + path + ": cannot be written: File too large|exclamation|ok"}));
    EXPECT_EQ(vna.LinesOf(path), old);
  });
}

}  // namespace
}  // namespace qk::test
