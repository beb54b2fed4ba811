// SPDX-License-Identifier: MIT
// A batch by the controls of its window.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "forms/batch_fixture.h"

namespace qk::test {
namespace {

TEST_F(BatchWindow, IsWorkedByScansAlone) {
  EXPECT_FALSE(At("Batch.Serial").Enabled);
  ASSERT_TRUE(Click("Batch.Start"));
  EXPECT_TRUE(TakeMessages().empty());
  EXPECT_FALSE(At("Batch.Folder").Enabled);
  EXPECT_EQ(At("Batch.Next").Caption, "Connect A0001, then press Enter.");
  Scan("A0007 ");
  EXPECT_EQ(At("Batch.Next").Caption, "Connect A0008, then press Enter.");
  Scan("");  // too soon: a reader that ends with two line ends
  EXPECT_FALSE(Has("A0008.pdf"));
  Wait();
  Scan("");  // the next one
  EXPECT_EQ(Value("Batch.Serial"), "");
  EXPECT_EQ(At("Batch.Yield").Caption,
            "2 pieces: 2 passed, 0 failed. Yield 100.0 %, first pass 100.0 %.");
  EXPECT_TRUE(Value("Batch.List").starts_with("A0008  PASS  CH1 S21 passes by "))
      << Value("Batch.List");
  EXPECT_TRUE(Has("A0007.pdf") && Has("A0008.pdf"));
  EXPECT_TRUE(TakeMessages().empty());
}

// Without a box: the Enter of the next scan would answer it.
TEST_F(BatchWindow, AKnownSerialAsksToBeEnteredOnceMore) {
  Click("Batch.Start");
  Scan("A0001");
  Scan("A0001");
  EXPECT_FALSE(Has("A0001-2.pdf"));
  EXPECT_EQ(Value("Batch.Serial"), "");
  Scan("A0002");  // another piece: the question is over
  EXPECT_TRUE(Has("A0002.pdf"));
  Scan("A0001");
  EXPECT_FALSE(Has("A0001-2.pdf"));
  Scan("A0001");
  EXPECT_TRUE(Has("A0001-2.pdf"));
  Scan("A0001");
  EXPECT_FALSE(Has("A0001-3.pdf"));
  Click("Batch.Again");
  EXPECT_TRUE(Has("A0001-3.pdf"));
  EXPECT_TRUE(TakeMessages().empty());
}

// With the piece of the refused serial still connected.
TEST_F(BatchWindow, TheSecondEnterOfAReaderMeasuresNothing) {
  Click("Batch.Start");
  Scan("A0001");
  for (const char* serial : {"A0001", "X99"}) {  // asks, refuses
    Wait();
    Scan(serial);
    Scan("");
    for (int i = 0; i < 20; ++i) {  // a key that is held down
      clock.AdvanceMs(100);
      Scan("");
    }
    EXPECT_EQ(work.Yield().Devices, 1) << serial;
  }
  Wait();
  Scan("");
  EXPECT_TRUE(Has("A0002.pdf"));
  EXPECT_TRUE(TakeMessages().empty());
}

// No box: the next scan goes on.
TEST_F(BatchWindow, ARefusedSerialIsShownInPlaceOfTheVerdict) {
  Click("Batch.Start");
  Scan("X99");
  EXPECT_TRUE(TakeMessages().empty());
  EXPECT_EQ(Value("Batch.List"),
            "X99  not measured: the serial \"X99\" does not fit the pattern A####\n");
  Scan("A0001");
  EXPECT_TRUE(Has("A0001.pdf"));
  session.Limits.Enabled = false;
  Host host = fake.host();
  ShowLimitsAsSwitched(session, host);
  Scan("A0002");
  EXPECT_FALSE(Has("A0002.pdf"));
  EXPECT_TRUE(TakeMessages().empty());
  EXPECT_TRUE(
      Value("Batch.List").starts_with("A0002  not measured: the limits are no longer shown\n"))
      << Value("Batch.List");
}

TEST_F(BatchWindow, ASerialEnteredWhileAPieceIsMeasuredWaitsForItsOwnEnter) {
  Click("Batch.Start");
  fake.OnEvents = [this] {
    if (!session.Flags.SweepRunning) return;
    Scan("A0009");
    Scan("A0002");  // the last one counts
    Scan("");
  };
  Scan("A0001");
  fake.OnEvents = nullptr;
  EXPECT_TRUE(Has("A0001.pdf"));
  EXPECT_EQ(work.Yield().Devices, 1);
  EXPECT_EQ(Value("Batch.Serial"), "A0002");
  EXPECT_EQ(At("Batch.Next").Caption, "Connect A0002, then press Enter.");
  Click("Batch.Measure");  // the second Enter of the reader
  EXPECT_EQ(work.Yield().Devices, 1);
  EXPECT_EQ(Value("Batch.Serial"), "A0002");
  Wait();
  Click("Batch.Measure");
  EXPECT_TRUE(Has("A0002.pdf"));
  EXPECT_EQ(Value("Batch.Serial"), "");
  EXPECT_FALSE(Has("A0009.pdf"));
  EXPECT_NE(Value("Batch.List").find("A0009  not measured: A0002 was entered instead\n"),
            std::string::npos)
      << Value("Batch.List");
}

TEST_F(BatchWindow, ASerialThatGivesWayToAnotherIsListed) {
  Click("Batch.Start");
  bool scanned = false;
  fake.OnEvents = [&] {
    if (!session.Flags.SweepRunning || std::exchange(scanned, true)) return;
    Scan("A0002");
  };
  Scan("A0001");
  EXPECT_EQ(Value("Batch.Serial"), "A0002");
  EXPECT_EQ(Value("Batch.List").find("A0002"), std::string::npos) << "it waits";
  Wait();
  Scan("A0003");  // the piece of A0002 is put aside
  EXPECT_TRUE(Value("Batch.List").starts_with("A0003  PASS  ")) << Value("Batch.List");
  EXPECT_NE(Value("Batch.List").find("\nA0002  not measured: A0003 was entered instead\n"),
            std::string::npos)
      << Value("Batch.List");
  EXPECT_FALSE(Has("A0002.pdf"));
  fake.OnEvents = nullptr;
}

TEST_F(BatchWindow, TheLineNamesWhatEnterMeasuresAlsoAfterASerialThatGaveWay) {
  Click("Batch.Start");
  const auto queue = [this](const std::string& waits) {
    bool scanned = false;
    fake.OnEvents = [this, scanned, waits]() mutable {
      if (session.Flags.SweepRunning && !std::exchange(scanned, true)) Scan(waits);
    };
    Wait();
  };
  queue("A0005");
  Scan("A0001");
  EXPECT_EQ(At("Batch.Next").Caption, "Connect A0005, then press Enter.");
  fake.OnEvents = nullptr;
  Wait();
  Scan("A0001");  // known: asks, and A0005 has given way
  EXPECT_EQ(At("Batch.Next").Caption, "Connect A0002, then press Enter.");
  Wait();
  Scan("");
  EXPECT_TRUE(Has("A0002.pdf"));
  queue("A0007");
  Scan("A0003");
  fake.OnEvents = nullptr;
  EXPECT_EQ(At("Batch.Next").Caption, "Connect A0007, then press Enter.");
  Wait();
  Scan("BAD");  // refused
  EXPECT_EQ(At("Batch.Next").Caption, "Connect A0004, then press Enter.");
  Wait();
  Scan("");
  EXPECT_TRUE(Has("A0004.pdf"));
  EXPECT_FALSE(Has("A0005.pdf") || Has("A0007.pdf"));
}

TEST_F(BatchWindow, AnErrorShowsItsReasonBelowTheWord) {
  Click("Batch.Start");
  Bench("amplifier gain 40 p1db 60");
  Scan("A0001");
  RecordingCanvas canvas({420, 110});
  At("Batch.Verdict").Draw(canvas);
  EXPECT_EQ(TextsOf(canvas.Items), (Texts{"ERROR", "A0001: A receiver was overloaded."}));
  EXPECT_TRUE(Value("Batch.List").starts_with("A0001  ERROR  A receiver was overloaded."))
      << Value("Batch.List");
}

TEST_F(BatchWindow, ListsWhatWasMeasuredBeforeItGoesOn) {
  Click("Batch.Start");
  Scan("A0001");
  Bench("attenuator 4");
  Scan("A0002");
  Scan("A0002");
  Scan("A0002");
  const std::string list = Value("Batch.List");
  Click("Batch.End");
  Type("Batch.Folder", folder.File("elsewhere"));
  Click("Batch.Start");
  EXPECT_EQ(Value("Batch.List"), "");
  Click("Batch.End");
  Type("Batch.Folder", batch);
  Click("Batch.Start");
  EXPECT_TRUE(Value("Batch.List").starts_with("A0002 (run 2)  FAIL  CH1 S21 fails by "))
      << Value("Batch.List");
  EXPECT_EQ(Value("Batch.List"), list);
}

TEST_F(BatchWindow, CannotBeWorkedWhileAPieceIsMeasured) {
  Click("Batch.Start");
  bool worked = false;
  fake.OnEvents = [&] { worked = worked || Click("Batch.Measure") || Type("Batch.Prefix", "x"); };
  Scan("A0001");
  fake.OnEvents = nullptr;
  EXPECT_FALSE(worked);
}

TEST_F(BatchWindow, ReportsWhyItDoesNotStart) {
  Type("Batch.Sweeps", "many");
  Click("Batch.Start");
  EXPECT_EQ(TakeMessages(), Texts{"Batch|the sweeps of a piece are 1 to 100|exclamation|ok"});
  Type("Batch.Sweeps", "2");
  Type("Batch.Folder", "");
  Click("Batch.Start");
  EXPECT_EQ(TakeMessages(), Texts{"Batch|no folder is given|exclamation|ok"});
}

TEST_F(BatchWindow, GoesOnWithAFolderThatIsOpened) {
  Click("Batch.Start");
  Scan("A0001");
  Click("Batch.End");
  Type("Batch.Folder", folder.File("elsewhere"));
  Type("Batch.Pattern", "");
  EXPECT_FALSE(At("Batch.ItsSession").Enabled);
  fake.Choices.emplace_back(batch + "/batch.txt");
  Click("Batch.Open");
  EXPECT_EQ(Value("Batch.Pattern"), "A####");
  EXPECT_EQ(Value("Batch.ItsSession"), "on");
  Click("Batch.Start");
  EXPECT_EQ(At("Batch.Next").Caption, "Connect A0002, then press Enter.");
  EXPECT_TRUE(TakeMessages().empty());
}

// After a kill the window opens with the batch of its folder as it was set.
TEST_F(Production, TheWindowShowsTheBatchThatItsFolderHolds) {
  batch = folder.File("Batch");
  ASSERT_EQ(Begin({"L_", "A####", {false, true, false, false}, 3, "Jo"}), "");
  work.End();
  ASSERT_TRUE(Click("Form1.Batch"));
  const auto shown = [this] {
    return Value("Batch.Prefix") + " " + Value("Batch.Pattern") + " " + Value("Batch.Operator") +
           " " + Value("Batch.Sweeps") + " " + Value("Batch.S11") + " " + Value("Batch.S21") + " " +
           Value("Batch.ItsSession");
  };
  EXPECT_EQ(shown(), "L_ A#### Jo 3 off on on");
  Type("Batch.Pattern", "");
  Type("Batch.Folder", folder.File("elsewhere"));
  EXPECT_EQ(Value("Batch.ItsSession"), "off");
  EXPECT_EQ(Value("Batch.Pattern"), "") << "what is typed for a new batch stays";
  Type("Batch.Folder", batch);
  EXPECT_EQ(shown(), "L_ A#### Jo 3 off on on");
  Click("Batch.Start");
  EXPECT_TRUE(TakeMessages().empty());
  EXPECT_EQ(work.Definition().Pattern, "A####");
}

TEST_F(BatchWindow, AsksBeforeTheSessionOfABatchIsReplaced) {
  Click("Batch.Start");
  Click("Batch.End");
  EXPECT_EQ(Value("Batch.ItsSession"), "on");
  Window("Batch").Tick("ItsSession", false);
  fake.Answers = {Answer::No};
  Click("Batch.Start");
  EXPECT_FALSE(work.Running());
  EXPECT_EQ(TakeMessages().size(), 1u);
  fake.Answers = {Answer::Yes};
  Click("Batch.Start");
  EXPECT_TRUE(work.Running());
}

TEST_F(BatchWindow, ALostLinkLeavesTheNextScanItsField) {
  Click("Batch.Start");
  Bench("fault stall after 100");
  Scan("A0001");
  EXPECT_TRUE(TakeMessages().empty());
  EXPECT_TRUE(Value("Batch.List").starts_with("A0001  ERROR  The link to the instrument was lost."))
      << Value("Batch.List");
  Bench("fault none");
  Wait();
  Scan("A0002");
  EXPECT_TRUE(Has("A0002.s2p"));
  EXPECT_TRUE(TakeMessages().empty());
}

// A timer has read the offsets in vain while a piece is being connected.
TEST_F(BatchWindow, ANoticeBetweenTwoScansIsListed) {
  Click("Batch.Start");
  Scan("A0001");
  Bench("fault unplugged");
  const auto lines = [this] { return Value("Batch.List"); };
  program.Tick(TimerId::Timer1);
  EXPECT_TRUE(TakeMessages().empty());
  EXPECT_TRUE(lines().starts_with("RX ")) << lines();
  EXPECT_NE(lines().find(": No Response\n"), std::string::npos) << lines();
  EXPECT_NE(lines().find("\nA0001  PASS"), std::string::npos) << lines();
  // To the user who does something else, and without a batch, a box says so.
  {
    const PromptGate::Attended user(program.gate());
    program.Tick(TimerId::Timer1);
    EXPECT_FALSE(TakeMessages().empty());
  }
  Click("Batch.Exit");
  program.Tick(TimerId::Timer1);
  EXPECT_FALSE(TakeMessages().empty());
  EXPECT_TRUE(Click("Form1.Batch"));
  program.Tick(TimerId::Timer1);
  EXPECT_TRUE(TakeMessages().empty());
  Click("Batch.End");
  program.Tick(TimerId::Timer1);
  EXPECT_FALSE(TakeMessages().empty());
}

// However long the instrument is away, the results stay in the list.
TEST_F(BatchWindow, ARepeatedNoticeIsListedOnceBetweenTwoPieces) {
  Click("Batch.Start");
  Scan("A0001");
  Bench("fault unplugged");
  for (int i = 0; i < 20; ++i) program.Tick(TimerId::Timer1);
  const std::string lines = Value("Batch.List");
  EXPECT_TRUE(lines.starts_with("RX Temp Check: No Response\nRX Offset: No Response\nA0001  PASS"))
      << lines;
  Bench("fault replugged");
  Wait();
  Scan("A0002");
  Bench("fault unplugged");
  program.Tick(TimerId::Timer1);
  EXPECT_EQ(Value("Batch.List").find("RX Temp Check"), 0u) << Value("Batch.List");
}

TEST_F(BatchWindow, AKnownSerialSaysWhatToScan) {
  Click("Batch.Start");
  Scan("A0001");
  Scan("A0001");
  RecordingCanvas canvas({420, 110});
  At("Batch.Verdict").Draw(canvas);
  EXPECT_EQ(TextsOf(canvas.Items),
            (Texts{"AGAIN?", "A0001 was measured: PASS. Scan or type A0001 again to repeat it."}));
  EXPECT_EQ(At("Batch.Next").Caption, "Connect A0002, then press Enter.");
}

}  // namespace
}  // namespace qk::test
