// SPDX-License-Identifier: MIT
// The folder of a batch: its definition, and its table, which survives a power cut.
#include "files/batch_folder.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include "bytes.h"
#include "files/report_settings.h"
#include "support/scratch_folder.h"

namespace qk {
namespace {

using test::Get;
using test::Put;
using test::ScratchFolder;

BatchRow RowFor(const std::string& serial, Verdict verdict, int run = 1) {
  BatchRow row;
  row.Utc = "2026-03-09T14:05:30Z";
  row.Serial = serial;
  row.Run = run;
  row.Outcome = verdict;
  row.File = serial + (run > 1 ? "-" + std::to_string(run) : "");
  row.Channels[1] = {"S21", "0.25", "dB", "1500000000"};
  row.Markers = "CH1 S21 Marker 1 100.0000 MHz -3.012 dB";
  row.Operator = "Miller, \"Jo\"\nx";
  return row;
}

std::unique_ptr<BatchLog> Opened(const ScratchFolder& scratch) {
  auto log = BatchLog::Open(scratch.Text());
  if (!log) throw std::runtime_error(log.Why().Text());
  return std::move(*log);
}

std::string WhyNot(const ScratchFolder& scratch) {
  const auto log = BatchLog::Open(scratch.Text());
  return log.Ok() ? "" : log.Why().Message;
}

TEST(BatchDefinition, ComesBackAsItWasWritten) {
  BatchDefinition definition{"LOT7_", "A####", {true, true, false, false}, 3, "Jo Miller"};
  EXPECT_EQ(BatchText(definition),
            "QK47-20-09 batch 1\nprefix LOT7_\npattern A####\nparameters S11 S21\nsweeps 3\n"
            "operator Jo Miller\n");
  EXPECT_EQ(ReadBatchText(BatchText(definition)).Value(), definition);
  const ScratchFolder scratch;
  ASSERT_TRUE(SaveBatch(scratch.Text(), definition).Ok());
  EXPECT_EQ(LoadBatch(scratch.Text()).Value(), definition);
}

TEST(BatchDefinition, AFaultIsReportedWithItsLine) {
  const auto why = [](const std::string& text) { return ReadBatchText(text).Why().Text(); };
  EXPECT_EQ(why("something"), "line 1: not a batch (it begins with QK47-20-09 batch 1)");
  const std::string head = "QK47-20-09 batch 1\r\n# a remark\r\n";
  EXPECT_EQ(why(head + "sweeps 0\n"), "line 3: sweeps are 1 to 100");
  EXPECT_EQ(why(head + "sweeps many\n"), "line 3: sweeps are 1 to 100");
  EXPECT_EQ(why(head + "\nparameters S11 S31\n"), "line 4: parameters are S11, S21, S12 and S22");
  EXPECT_EQ(why(head + "colour red\n"), "line 3: unknown word");
  const ScratchFolder scratch;
  EXPECT_EQ(LoadBatch(scratch.Text()).Why().Place, scratch.File("batch.txt"));
}

TEST(BatchLog, RowsComeBackWithTheNextOpening) {
  const ScratchFolder scratch;
  {
    const auto log = Opened(scratch);
    ASSERT_TRUE(log->Append(RowFor("A1", Verdict::Fail)).Ok());
    ASSERT_TRUE(log->Append(RowFor("A1", Verdict::Pass, 2)).Ok());
  }
  const auto log = Opened(scratch);
  ASSERT_EQ(log->Entries().size(), 2u);
  ASSERT_NE(log->LastOf("A1"), nullptr);
  EXPECT_EQ(log->LastOf("A1")->Run, 2);
  EXPECT_EQ(log->LastOf("A1")->Outcome, Verdict::Pass);
  EXPECT_EQ(log->LastOf("A1")->File, "A1-2");
  EXPECT_EQ(log->LastOf("A2"), nullptr);
  const std::string text = Get(scratch.File("batch.csv"));
  EXPECT_NE(text.find("\r\n2026-03-09T14:05:30Z,A1,1,FAIL,A1,,,,,,S21,0.25,dB,1500000000,"),
            std::string::npos);
  EXPECT_NE(text.find(",\"Miller, \"\"Jo\"\" x\"\r\n"), std::string::npos);
}

// A row cut at any place: the rows before it stay, the piece counts as not measured.
TEST(BatchLog, ARowThatAPowerCutTookPartOfIsTakenOff) {
  const ScratchFolder scratch(test::InMemory());
  {
    const auto log = Opened(scratch);
    ASSERT_TRUE(log->Append(RowFor("A1", Verdict::Pass)).Ok());
  }
  const std::string whole = Get(scratch.File("batch.csv"));
  {
    const auto log = Opened(scratch);
    ASSERT_TRUE(log->Append(RowFor("A2", Verdict::Pass)).Ok());
  }
  const std::string both = Get(scratch.File("batch.csv"));
  for (std::size_t length = 0; length < both.size(); ++length) {
    Put(scratch.File("batch.csv"), both.substr(0, length));
    const auto log = Opened(scratch);
    EXPECT_EQ(log->Entries().size(), length < whole.size() ? 0u : 1u) << length;
    ASSERT_TRUE(log->Append(RowFor("A9", Verdict::Fail)).Ok());
    EXPECT_TRUE(Get(scratch.File("batch.csv")).ends_with("x\"\r\n"));
  }
}

// A disk that was full, and a part of a row that could not be removed then.
TEST(BatchLog, ARowIsWrittenBehindWholeRowsOnly) {
  const ScratchFolder scratch(test::InMemory());
  const auto log = Opened(scratch);
  ASSERT_TRUE(log->Append(RowFor("A1", Verdict::Pass)).Ok());
  const std::string before = Get(scratch.File("batch.csv"));
  std::ofstream(scratch.File("batch.csv"), std::ios::app | std::ios::binary) << "2026-03-09T14:0";
  ASSERT_TRUE(log->Append(RowFor("A2", Verdict::Pass)).Ok());
  const std::string after = Get(scratch.File("batch.csv"));
  EXPECT_TRUE(after.starts_with(before));
  EXPECT_EQ(after.find("14:02026"), std::string::npos);
  const auto entries = BatchLog::EntriesOf(after);
  ASSERT_TRUE(entries.Ok()) << entries.Why().Text();
  ASSERT_EQ(entries->size(), 2u);
  EXPECT_EQ((*entries)[1].Serial, "A2");
}

TEST(BatchLog, ATableOfAnotherFormIsRefusedAndLeftAlone) {
  const ScratchFolder scratch;
  Put(scratch.File("batch.csv"), "a;b;c\n");
  EXPECT_EQ(WhyNot(scratch), "not the table of a batch");
  EXPECT_EQ(Get(scratch.File("batch.csv")), "a;b;c\n");
  std::filesystem::remove(scratch.File("batch.csv"));
  { const auto log = Opened(scratch); }
  const std::string head = Get(scratch.File("batch.csv"));
  Put(scratch.File("batch.csv"), head + "2026,A1,1,MAYBE,A1\r\n");
  EXPECT_EQ(WhyNot(scratch), "not a row of a batch");
}

TEST(BatchLog, TwoProgramsDoNotShareABatch) {
  const ScratchFolder scratch;
  const auto log = Opened(scratch);
  const pid_t child = fork();
  if (child == 0) _exit(WhyNot(scratch) == "is in use by another program" ? 0 : 1);
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
}

TEST(BatchLog, FilesOfTwoRunsNeverHaveOneName) {
  const ScratchFolder scratch;
  const auto log = Opened(scratch);
  EXPECT_EQ(log->NextFile("P_", "A"), "P_A");
  ASSERT_TRUE(log->Append(RowFor("A", Verdict::Fail)).Ok());
  EXPECT_EQ(log->NextFile("", "A"), "A-2");
  ASSERT_TRUE(log->Append(RowFor("A", Verdict::Fail, 2)).Ok());
  // A piece that is really called A-2.
  EXPECT_EQ(log->NextFile("", "A-2"), "A-2-2");
}

// batch.csv is the table and a data file's name for some parameters, on some disks in any case.
TEST(BatchLog, NoRunHasTheNameOfTheFoldersOwnFiles) {
  const ScratchFolder scratch;
  const auto log = Opened(scratch);
  EXPECT_EQ(log->NextFile("", "batch"), "batch-2");
  EXPECT_EQ(log->NextFile("Ba", "TCH"), "BaTCH-2");
  EXPECT_EQ(log->NextFile("", "batch1"), "batch1");
  EXPECT_EQ(log->NextFile("L_", "batch"), "L_batch");
}

TEST(BatchLog, TheYieldIsByTheLastVerdict) {
  const ScratchFolder scratch;
  const auto log = Opened(scratch);
  EXPECT_EQ(log->Yield().Text(), "0 pieces: 0 passed, 0 failed. Yield -, first pass -.");
  for (int n = 1; n <= 20; ++n)
    ASSERT_TRUE(
        log->Append(RowFor("A" + std::to_string(n), n <= 3 ? Verdict::Fail : Verdict::Pass)).Ok());
  EXPECT_EQ(log->Yield().Text(),
            "20 pieces: 17 passed, 3 failed. Yield 85.0 %, first pass 85.0 %.");
  ASSERT_TRUE(log->Append(RowFor("A1", Verdict::Error, 2)).Ok());
  ASSERT_TRUE(log->Append(RowFor("A2", Verdict::Pass, 2)).Ok());
  EXPECT_EQ(log->Yield().Text(),
            "20 pieces: 18 passed, 1 failed, 1 not tested. Yield 94.7 %, first pass 85.0 %.");
}

TEST(ReportSettings, ComeBackAndWhatIsMissingKeepsItsDefault) {
  const ScratchFolder scratch;
  EXPECT_EQ(LoadReportSettings(scratch.Text()).Title, "Measurement report");
  const ReportSettings settings{"Filter test", "Example Ltd, 1 High St\n", "/a b/logo.svg"};
  ASSERT_TRUE(SaveReportSettings(scratch.Text(), settings).Ok());
  const ReportSettings loaded = LoadReportSettings(scratch.Text());
  EXPECT_EQ(loaded.Title, "Filter test");
  EXPECT_EQ(loaded.Address, "Example Ltd, 1 High St ");
  EXPECT_EQ(loaded.Logo, "/a b/logo.svg");
  EXPECT_EQ(ReportSettingsFrom("nonsense\ntitle X\n").Address, "");
  EXPECT_EQ(ReportSettingsFrom("address Y\r\n").Title, "Measurement report");
}

}  // namespace
}  // namespace qk
