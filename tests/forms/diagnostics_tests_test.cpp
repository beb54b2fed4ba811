#include "forms/diagnostics_tests.h"

#include <gtest/gtest.h>

#include <fstream>

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
  Diagnostics bench;
  bench.fake.Enable(TimerId::Timer1, true);
  bench.Work([&] {
    EXPECT_EQ(bench.Verdicts(), Texts(5, " -"));
    EXPECT_FALSE(bench.fake.Enabled(TimerId::Timer1));
  });
  EXPECT_TRUE(bench.fake.Enabled(TimerId::Timer1));
}

TEST(DiagnosticsTests, ShowsAndLogsTheVerdicts) {
  Diagnostics bench;
  bench.Bench("fault nolock at 1.5e9");
  bench.Work([&] {
    EXPECT_TRUE(bench.Click("DiagnosticsTests.Command1"));
    EXPECT_EQ(bench.Verdicts(), (Texts{"Lock Failure", " OK", " OK", " OK", " OK"}));
    EXPECT_EQ(bench.TakeMessages(),
              (Texts{"Diagnostics|Connect Port1 to Port2 with Low Loss Cable|information|ok",
                     "Diagnostics|Remove Connection from Port1 to Port2|information|ok"}));
  });
  const auto lines = bench.LinesOf(bench.folder.File("0147-log.txt"));
  ASSERT_GE(lines.size(), 6u);
  EXPECT_TRUE(lines[lines.size() - 6].starts_with("Diagnostics Tests Started. Temp "))
      << lines[lines.size() - 6];
  EXPECT_EQ((std::vector<std::string>{lines.end() - 5, lines.end()}),
            (Texts{"Synth Range: Lock Failure\r", "Test Levels:  OK\r", "RX Levels:  OK\r",
                   "RX xTalk:  OK\r", "dc Offset:  OK\r"}));
}

TEST(DiagnosticsTests, NothingCanBePressedWhileTheyRun) {
  Diagnostics bench;
  bench.Work([&] {
    bench.fake.OnAsk = [&](const Message&) {
      EXPECT_FALSE(bench.Click("DiagnosticsTests.Command2"));
      EXPECT_FALSE(bench.Window("DiagnosticsTests").OnCloseBox());
    };
    EXPECT_TRUE(bench.Click("DiagnosticsTests.Command1"));
    EXPECT_TRUE(bench.Window("DiagnosticsTests").OnCloseBox());
  });
}

TEST(DiagnosticsTests, SavesTheCalibrationTermsAfterAQuestion) {
  Diagnostics bench;
  bench.Work([&] {
    const std::string path = bench.folder.File("terms.dat");
    bench.fake.Answers = {Answer::No, Answer::Yes, Answer::Yes};
    bench.fake.Choices = {std::nullopt, std::optional<std::string>(path)};
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(bench.Click("DiagnosticsTests.Command3"));
    EXPECT_EQ(bench.TakeMessages(), Texts(3, kSaveAsked));
    ASSERT_EQ(bench.fake.Dialogs.size(), 2u);
    EXPECT_EQ(bench.fake.Dialogs[0].Filter, "All Files (*.*)|*.*|data_files(*.dat)|*.dat|");
    const auto lines = bench.LinesOf(path);
    ASSERT_EQ(lines.size(), 8 + 51u);
    EXPECT_EQ(lines[1], "ED = Forward directivity \r");
  });
}

TEST(DiagnosticsTests, WithoutACalibrationThereIsNothingToSave) {
  ScriptedProgram bench;
  bench.Click("DiagnosticsTests.Command3");
  EXPECT_EQ(bench.TakeMessages(), Texts{kNoCal});
}

TEST(DiagnosticsTests, AFileThatCannotBeWrittenIsTold) {
  Diagnostics bench;
  bench.Work([&] {
    bench.fake.Answers = {Answer::Yes};
    bench.fake.Choices = {std::optional<std::string>(bench.folder.File("no/terms.dat"))};
    bench.Click("DiagnosticsTests.Command3");
    const Texts told = bench.TakeMessages();
    ASSERT_EQ(told.size(), 2u);
    EXPECT_TRUE(told[1].starts_with("Save Cal terms|")) << told[1];
  });
}

}  // namespace
}  // namespace qk::test
