// SPDX-License-Identifier: MIT
// A batch on the simulated bench, and the report of a measurement: by the window's controls and by
// the verbs.
#include "control/batch.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "control/output_verbs.h"
#include "control/report.h"
#include "core/local_time.h"
#include "forms/simulated_program.h"
#include "limits/limit_segments.h"

namespace qk::test {
namespace {

namespace fs = std::filesystem;

// A calibrated two-port measurement of S21 with limits of -3 to -1 dB.
struct Production : testing::Test, SimulatedProgram {
  std::string batch = folder.File("lot");
  Batch& work = program.batch();

  Production() {
    SetSweep("100", "3000", "51");
    Choose("Option5");
    fake.OnModal = [this](Form&) { Click("IsoMethod.Command1"); };
    Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal"});
    fake.OnModal = nullptr;
    Click("Calibration.App_Cal");
    instrument.BackToDevice();
    session.Channel(1).Parameter = Parameter::S21;
    LowerLimit("-3");
    session.Markers.Set(0).Shown = true;
    session.Display.MarkersOn = true;
    program.graphs().RedrawAll(false);
    Bench("attenuator 2");
    fake.Messages.clear();
  }
  // Limits of -1 dB above and of so much below, shown.
  void LowerLimit(const std::string& lower) {
    session.Limits.Of(1).Segments[0] = {"100", "3000", "-1", lower};
    EXPECT_TRUE(ApplyLimits(session, 1).Ok());
    session.Limits.Enabled = session.Limits.Of(1).Show = true;
    Host host = fake.host();
    ShowLimitsAsSwitched(session, host);
  }
  // Starts a batch; why it does not.
  std::string Begin(BatchDefinition definition = {}) {
    const Result<Done> started = work.Start(batch, definition, false);
    return started ? "" : started.Why().Text();
  }
  // The verdict of a piece, or why there is none.
  std::string Verdict(const std::string& serial, bool again = false) {
    const auto piece = work.Measure(serial, again);
    return piece ? std::string(WordOf(piece->Outcome)) : piece.Why().Text();
  }
  std::string Text(const std::string& name) {
    std::ostringstream text;
    text << std::ifstream(fs::path(batch) / name, std::ios::binary).rdbuf();
    return text.str();
  }
  bool Has(const std::string& name) { return fs::exists(fs::path(batch) / name); }
  std::string Note(const std::string& serial) {
    const std::string text = Text("batch.csv");
    const std::size_t at = text.find("," + serial + ",");
    const std::string row = text.substr(at, text.find('\r', at) - at);
    return row;
  }
  // What a report says, its blocks joined.
  std::string Said(const ReportDocument& report) {
    std::string text = report.Title + "\n" + report.Address + "\n" + report.Footer + "\n";
    for (const ReportBlock& block : report.Blocks) {
      if (const auto* heading = std::get_if<ReportHeading>(&block)) text += heading->Text + "\n";
      if (const auto* words = std::get_if<ReportParagraph>(&block)) text += words->Text + "\n";
      if (const auto* verdict = std::get_if<ReportVerdict>(&block))
        text += verdict->Word + ": " + verdict->Text + "\n";
      if (const auto* data = std::get_if<ReportDataFile>(&block))
        text += data->Name + " " + std::to_string(data->Bytes.size()) + "\n";
      if (const auto* table = std::get_if<ReportTable>(&block))
        for (const auto& row : table->Rows) {
          for (const std::string& cell : row) text += cell + " | ";
          text += "\n";
        }
    }
    return text;
  }
};

TEST_F(Production, OfTwentyPiecesThreeAreBad) {
  ASSERT_EQ(Begin({"L_", "A####", {true, true, true, true}, 1, "Jo"}), "");
  const std::set<int> bad{4, 11, 12};
  for (int n = 1; n <= 20; ++n) {
    Bench(bad.contains(n) ? "attenuator 4" : "attenuator 2");
    const auto next = work.Next();
    ASSERT_TRUE(next);
    EXPECT_EQ(Verdict(*next), bad.contains(n) ? "FAIL" : "PASS") << n;
  }
  EXPECT_EQ(work.Yield().Text(),
            "20 pieces: 17 passed, 3 failed. Yield 85.0 %, first pass 85.0 %.");
  // Rows, files and verdicts agree.
  ASSERT_EQ(surface.Reports.size(), 20u);
  for (int n = 1; n <= 20; ++n) {
    const std::string serial = std::string(n < 10 ? "A000" : "A00") + std::to_string(n);
    const char* verdict = bad.contains(n) ? "FAIL" : "PASS";
    EXPECT_TRUE(Has("L_" + serial + ".s2p")) << serial;
    EXPECT_TRUE(Has("L_" + serial + ".pdf")) << serial;
    EXPECT_NE(Note(serial).find("," + serial + ",1," + verdict + ",L_" + serial + ",,S21,"),
              std::string::npos)
        << Note(serial);
    const auto& report = surface.Reports[static_cast<std::size_t>(n - 1)];
    EXPECT_EQ(report.Path, (fs::path(batch) / ("L_" + serial + ".pdf")).string());
    const std::string said = Said(report.Report);
    EXPECT_NE(said.find("Serial | " + serial), std::string::npos);
    EXPECT_NE(said.find(std::string(verdict) + ": CH1 S21 "), std::string::npos) << said;
    EXPECT_NE(said.find("CH1 S21 | Marker 1 | "), std::string::npos) << said;
    EXPECT_NE(said.find("Operator | Jo"), std::string::npos);
    EXPECT_NE(
        said.find("L_" + serial + ".s2p " + std::to_string(Text("L_" + serial + ".s2p").size())),
        std::string::npos);
    EXPECT_FALSE(report.Picture.empty());
  }
}

TEST_F(Production, APieceThatFailsIsMeasuredAgainAtOnceUnderAnotherName) {
  ASSERT_EQ(Begin(), "");
  Bench("attenuator 4");
  EXPECT_EQ(Verdict("A1"), "FAIL");
  EXPECT_EQ(Verdict("A1"), "A1 was measured: FAIL");
  Bench("attenuator 2");
  EXPECT_EQ(Verdict("A1", true), "PASS");
  EXPECT_TRUE(Has("A1.s2p") && Has("A1-2.s2p") && Has("A1-2.pdf"));
  EXPECT_EQ(work.Yield().Text(), "1 piece: 1 passed, 0 failed. Yield 100.0 %, first pass 0.0 %.");
  EXPECT_NE(Said(surface.Reports[1].Report).find("Run | 2 | "), std::string::npos);
}

TEST_F(Production, TheFirstSweepIsDiscardedAndTheFirstThatFailsDecides) {
  ASSERT_EQ(Begin({"", "", {false, true, false, false}, 3, ""}), "");
  const long before = program.controller().SweepsEnded();
  EXPECT_EQ(Verdict("A1"), "PASS");
  EXPECT_EQ(program.controller().SweepsEnded() - before, 4);
  EXPECT_TRUE(Has("A1.csv"));  // S21 alone is no port
  Bench("attenuator 4");
  EXPECT_EQ(Verdict("A2"), "FAIL");
  EXPECT_EQ(program.controller().SweepsEnded() - before, 6);
}

TEST_F(Production, AnInterpolatedCalibrationIsAnError) {
  ASSERT_EQ(Begin(), "");
  session.Cal.CalInterpolated = true;
  EXPECT_EQ(Verdict("A1"), "ERROR");
  EXPECT_NE(Note("A1").find(",The calibration is interpolated to another sweep.,"),
            std::string::npos);
  EXPECT_NE(Said(surface.Reports[0].Report)
                .find("ERROR: The calibration is interpolated to another sweep."),
            std::string::npos);
}

TEST_F(Production, AnOverloadIsAnErrorAndNeverAPass) {
  ASSERT_EQ(Begin(), "");
  Bench("amplifier gain 40 p1db 60");
  EXPECT_EQ(Verdict("A1"), "ERROR");
  EXPECT_NE(Note("A1").find(",A receiver was overloaded.,"), std::string::npos) << Note("A1");
}

TEST_F(Production, ALostLinkIsAnErrorWithoutValues) {
  ASSERT_EQ(Begin(), "");
  Bench("fault stall after 100");
  EXPECT_EQ(Verdict("A1"), "ERROR");
  EXPECT_NE(Note("A1").find(",The link to the instrument was lost.,"), std::string::npos);
  EXPECT_FALSE(Has("A1.s2p"));
  EXPECT_TRUE(Has("A1.pdf"));
  EXPECT_TRUE(surface.Reports[0].Picture.empty());
  EXPECT_EQ(work.Yield().Text(),
            "1 piece: 0 passed, 0 failed, 1 not tested. Yield -, first pass -.");
  // The instrument is back: the piece is measured again.
  Bench("fault none");
  EXPECT_EQ(Verdict("A1", true), "PASS");
}

// A byte of noise: the sweep counts for nothing, and the piece is swept again.
TEST_F(Production, ASweepWithAByteTooManyDecidesNothing) {
  ASSERT_EQ(Begin(), "");
  int disturbed = 2;
  std::vector<bool> sweeps;
  program.controller().OnSweepEnded = [&](bool complete) {
    sweeps.push_back(complete);
    Bench("fault none");
    if (--disturbed > 0) Bench("fault sweep add at 100");
    return true;
  };
  Bench("fault sweep add at 100");
  EXPECT_EQ(Verdict("A1"), "PASS");
  EXPECT_EQ(sweeps, (std::vector<bool>{false, false, true, true}));
  // One that does not end.
  program.controller().OnSweepEnded = [&](bool complete) {
    EXPECT_FALSE(complete);
    Bench("fault none");
    Bench("fault sweep add at 100");
    return true;
  };
  Bench("fault sweep add at 100");
  EXPECT_EQ(Verdict("A2"), "ERROR");
  EXPECT_NE(Note("A2").find(",The line to the instrument is disturbed.,"), std::string::npos);
  EXPECT_FALSE(Has("A2.s2p"));
  program.controller().OnSweepEnded = {};
  Bench("fault none");
  EXPECT_EQ(Verdict("A2", true), "PASS");
}

TEST_F(Production, APieceThatIsStoppedLeavesNoRowAndNoFile) {
  ASSERT_EQ(Begin(), "");
  fake.OnEvents = [this] {
    if (session.Flags.SweepRunning) Click("Form1.StopMeasurement");
  };
  EXPECT_EQ(Verdict("A1"), "stopped: A1 was not measured");
  fake.OnEvents = nullptr;
  EXPECT_EQ(work.Yield().Devices, 0);
  EXPECT_FALSE(Has("A1.s2p") || Has("A1.pdf"));
  EXPECT_EQ(Verdict("A1"), "PASS");
}

TEST_F(Production, AReportThatCannotBeWrittenLeavesNoRow) {
  ASSERT_EQ(Begin(), "");
  surface.Unavailable = Failure{"No space left on device", "A1.pdf"};
  EXPECT_EQ(Verdict("A1"), "A1.pdf: No space left on device");
  EXPECT_EQ(work.Yield().Devices, 0);
  EXPECT_FALSE(Has("A1.s2p")) << "no data file without its report";
  surface.Unavailable.reset();
  EXPECT_EQ(Verdict("A1"), "PASS");
  EXPECT_TRUE(Has("A1.s2p"));
}

// A logo that is no picture, for example.
TEST_F(Production, AReportThatIsRefusedWritesNothing) {
  Measure();
  surface.Unavailable = Failure{"The logo is not a picture", "logo.svg"};
  const std::string report = folder.File("r.pdf"), data = folder.File("r.s2p");
  const auto save = [&] {
    const Result<Done> saved = SaveReport(program.controller(), report, {}, {});
    return saved ? std::string() : saved.Why().Text();
  };
  EXPECT_EQ(save(), "logo.svg: The logo is not a picture");
  EXPECT_FALSE(fs::exists(data) || fs::exists(report));
  std::ofstream(data) << "mine";
  EXPECT_EQ(save(), "logo.svg: The logo is not a picture");
  std::ostringstream text;
  text << std::ifstream(data).rdbuf();
  EXPECT_EQ(text.str(), "mine");
  surface.Unavailable.reset();
  EXPECT_EQ(save(), "");
  EXPECT_TRUE(fs::exists(report) && fs::file_size(data) > 1000);
}

TEST_F(Production, OnlyAPieceThatWasMeasuredIsMeasuredAgain) {
  ASSERT_EQ(Begin(), "");
  const long before = program.controller().SweepsEnded();
  EXPECT_EQ(Verdict("A1", true), "A1 has not been measured in this batch");
  EXPECT_EQ(program.controller().SweepsEnded(), before);
  EXPECT_EQ(Verdict(" A1\t"), "PASS");
  EXPECT_EQ(work.LastSerial(), "A1") << "blanks are no part of it";
  EXPECT_EQ(Verdict("A1 ", true), "PASS");
  EXPECT_TRUE(Has("A1-2.pdf"));
}

TEST_F(Production, ASecondPieceDuringTheFirstIsRefusedByName) {
  ASSERT_EQ(Begin(), "");
  std::string why;
  fake.OnEvents = [&] {
    if (session.Flags.SweepRunning && why.empty()) why = Verdict("A2");
  };
  EXPECT_EQ(Verdict("A1"), "PASS");
  fake.OnEvents = nullptr;
  EXPECT_EQ(why, "A1 is being measured: wait for its verdict");
}

TEST_F(Production, TheSessionIsSavedAgainForSettingsAlone) {
  ASSERT_EQ(Begin(), "");
  const std::string cal = batch + "/batch.cal";
  const auto write = [&] { std::ofstream(cal) << "untouched"; };
  write();
  EXPECT_EQ(Verdict("A1"), "PASS");
  Bench("attenuator 2.5");
  EXPECT_EQ(Verdict("A2"), "PASS");
  EXPECT_EQ(Verdict("A3"), "PASS");
  EXPECT_EQ(Text("batch.cal"), "untouched");
  EXPECT_NE(Text("A2.s2p"), Text("A1.s2p"));
  LowerLimit("-4");
  EXPECT_EQ(Verdict("A4"), "PASS");
  EXPECT_GT(Text("batch.cal").size(), 1000u);
  write();
  session.Markers.Set(0).Shown = false;
  EXPECT_EQ(Verdict("A5"), "PASS");
  EXPECT_GT(Text("batch.cal").size(), 1000u);
}

TEST_F(Production, SerialsThatDoNotFitAreRefusedWithoutASweep) {
  ASSERT_EQ(Begin({"", "A##", {true, true, true, true}, 1, ""}), "");
  const long before = program.controller().SweepsEnded();
  EXPECT_EQ(Verdict("B1"), "the serial \"B1\" does not fit the pattern A##");
  EXPECT_EQ(Verdict(""), "the serial is empty");
  EXPECT_EQ(program.controller().SweepsEnded(), before);
}

TEST_F(Production, ABatchDoesNotStartWithoutWhatItNeeds) {
  session.Limits.Enabled = false;
  Host host = fake.host();
  ShowLimitsAsSwitched(session, host);
  EXPECT_EQ(Begin(), "no displayed channel has limits that are shown (Limit Lines)");
  EXPECT_FALSE(work.Running());
  session.Limits.Enabled = true;
  ShowLimitsAsSwitched(session, host);
  EXPECT_EQ(Begin({"a/", "", {true, true, true, true}, 1, ""}),
            "the prefix cannot be part of a file name");
  EXPECT_EQ(Begin({"", "", {true, true, true, true}, 0, ""}), "the sweeps of a piece are 1 to 100");
  session.Cal.Cal12Term = false;
  EXPECT_EQ(Begin(), "no calibration is in force, nothing is measured");
  session.Cal.CalS11S21 = true;
  EXPECT_EQ(Begin(), "S12 is not measured by the calibration in force (S11+S21 Cal)");
  session.Cal.CalS11S21 = false;
  session.Cal.Cal12Term = true;
  EXPECT_FALSE(fs::exists(batch));  // a refusal leaves nothing behind
  EXPECT_EQ(Begin(), "");
  EXPECT_EQ(Begin(), "a batch is running");
}

TEST_F(Production, ARelativeFolderIsOneOfTheInstallFolder) {
  ASSERT_TRUE(work.Start("lots/7", {}, false).Ok());
  EXPECT_TRUE(fs::exists(folder.File("lots/7/batch.csv")));
  EXPECT_TRUE(work.IsIn("lots/7"));
}

// The folder alone is enough: another start of the program, another session in force.
TEST_F(Production, ABatchGoesOnWithTheSessionOfItsFolder) {
  const BatchDefinition definition{"L_", "A####", {true, true, true, true}, 1, "Jo"};
  ASSERT_EQ(Begin(definition), "");
  EXPECT_EQ(Verdict("A0001"), "PASS");
  work.End();
  EXPECT_FALSE(work.Running());
  session.Channel(1).UpperLimit.fill(kNoUpperLimit);
  session.Channel(1).LowerLimit.fill(kNoLowerLimit);
  session.Channel(1).Parameter = Parameter::S11;
  EXPECT_TRUE(work.IsIn(batch));
  const auto kept = LoadBatch(batch);
  ASSERT_TRUE(kept.Ok());
  EXPECT_EQ(*kept, definition);
  ASSERT_TRUE(work.Start(batch, *kept, true).Ok());
  EXPECT_EQ(session.Channel(1).Parameter, Parameter::S21);
  EXPECT_EQ(work.Next(), "A0002");
  EXPECT_EQ(Verdict("A0001"), "A0001 was measured: PASS");
  EXPECT_EQ(Verdict("A0002"), "PASS");
  EXPECT_EQ(work.Yield().Devices, 2);
}

// Limits are narrowed between two pieces: whoever goes on judges by the narrow ones.
TEST_F(Production, ABatchGoesOnWithWhatWasChangedInIt) {
  ASSERT_EQ(Begin(), "");
  EXPECT_EQ(Verdict("A1"), "PASS");
  LowerLimit("-1.5");
  session.CalMade.MadeUtc = 1800000000;
  EXPECT_EQ(Verdict("A3"), "FAIL");
  work.End();

  LowerLimit("-3");
  session.CalMade.MadeUtc.reset();
  ASSERT_TRUE(work.Start(batch, {}, true).Ok());
  EXPECT_EQ(session.Limits.Of(1).Segments[0].Lower, "-1.5");
  EXPECT_EQ(session.CalMade.MadeUtc, 1800000000);
  EXPECT_EQ(Verdict("A4"), "FAIL");
}

// A folder that takes no file any more: no piece is judged by limits that the folder does not hold.
TEST_F(Production, AChangeThatCannotBeKeptIsToldBeforeThePieceIsMeasured) {
  ASSERT_EQ(Begin(), "");
  LowerLimit("-1.5");
  const long before = program.controller().SweepsEnded();
  fs::remove(fs::path(batch) / "batch.cal");
  fs::create_directories(fs::path(batch) / "batch.cal" / "in the way");
  EXPECT_NE(Verdict("A1").find("batch.cal"), std::string::npos);
  EXPECT_EQ(program.controller().SweepsEnded(), before);
  EXPECT_EQ(work.Yield().Devices, 0);
  fs::remove_all(fs::path(batch) / "batch.cal");
  EXPECT_EQ(Verdict("A1"), "FAIL");
}

// What it shows and sends after a piece is of that piece.
TEST_F(Production, AnotherUserOfSweepsHearsOfAPieceAndIsToldBehindIt) {
  ASSERT_EQ(Begin(), "");
  int told = 0;
  bool goesOn = true;
  program.controller().OnSweepEnded = [&](bool) {
    ++told;
    return goesOn;
  };
  EXPECT_EQ(Verdict("A1"), "PASS");
  const int ofThePiece = told;
  EXPECT_GT(ofThePiece, 0);
  goesOn = false;
  Click("Form1.StartMeasurement");
  EXPECT_EQ(told, ofThePiece + 1);
}

// ---- the window --------------------------------------------------------------------------------

struct BatchWindow : Production {
  BatchWindow() {
    EXPECT_TRUE(Click("Form1.Batch"));
    Type("Batch.Folder", batch);
    Type("Batch.Pattern", "A####");
  }
  // What it takes to connect another piece.
  void Wait() { clock.AdvanceMs(1000); }
  // What a barcode reader types, its Enter included.
  void Scan(const std::string& serial) {
    Type("Batch.Serial", serial);
    Click("Batch.Measure");
  }
};

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

TEST_F(BatchWindow, TellsWhyItDoesNotStart) {
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

// ---- the report --------------------------------------------------------------------------------

TEST_F(Production, AReportStatesWhatIsOnDisplayAndItsDataFile) {
  Measure();
  Click("Form1.Report");
  Type("Report.Serial", "F-17");
  Type("Report.Title", "Acceptance test");
  Type("Report.Address", "Example Ltd, 1 High Street");
  fake.Choices.emplace_back(folder.File("r.pdf"));
  Click("Report.Save");
  EXPECT_TRUE(TakeMessages().empty());
  EXPECT_EQ(At("Form1.Notice").Caption, "saved r.pdf");
  EXPECT_EQ(fake.Dialogs.back().Name, "F-17-2026-03-09");
  ASSERT_EQ(surface.Reports.size(), 1u);
  EXPECT_TRUE(fs::exists(folder.File("r.s2p")));
  const std::string said = Said(surface.Reports[0].Report);
  for (const char* part :
       {"Acceptance test\nExample Ltd, 1 High Street\n", "Serial | F-17 | ",
        "PASS: CH1 S21 passes by", "CH1 | S21 LogMag | PASS | ",
        "CH1 | 100 MHz | 3000 MHz | -3 dB | -1 dB | 100.0000 MHz to 3000.0000 MHz | ",
        "Calibration\nKind | 12 Term Cal | \nMade | 2026-03-09 ", " UTC | \nTemperature then | ",
        "Kit of port 1 | Default | ", "Interpolated | no | ", "Averages | 1 | ",
        "Program | qk47-vna ", "r.s2p "})
    EXPECT_NE(said.find(part), std::string::npos) << part << "\n" << said;
  // The letterhead is there at the next opening.
  Click("Report.Exit");
  Type("Report.Title", "x");
  Click("Form1.Report");
  EXPECT_EQ(Value("Report.Title"), "Acceptance test");
}

// What was typed, though the limits are at points of the sweep, 58 MHz apart.
TEST_F(Production, AReportStatesLimitsAsTheyWereTypedAlsoOfALoadedSession) {
  Measure();
  Click("Form1.LimiLines");
  const auto limit = [&](const char* start, const char* stop) {
    Type("NewLimitsSet.Text1", start);
    Type("NewLimitsSet.Text2", stop);
    Click("NewLimitsSet.Command2");
    Click("NewLimitsSet.Command1");
    Click("Form1.LimiLines");
  };
  const auto said = [&] {
    ReportDocument report = MakeReport(program.controller(), {}, {});
    return Said(report);
  };
  limit("500", "1080.5");
  EXPECT_EQ(Value("NewLimitsSet.Text1"), "448.0000");
  Click("NewLimitsSet.Command2");  // again, as shown
  Click("NewLimitsSet.Command1");
  const char* limits = "CH1 | 500 MHz | 1080.5 MHz | -3 dB | -1 dB | ";
  EXPECT_NE(said().find(limits + std::string("448.0000 MHz to 1028.0000 MHz | ")),
            std::string::npos)
      << said();
  fake.Choices.emplace_back(folder.File("a.cal"));
  Click("Form1.SaveCal");
  limit("448", "1080.5");  // the point itself
  EXPECT_NE(said().find("CH1 | 448 MHz | 1080.5 MHz | "), std::string::npos) << said();
  limit("700", "900");
  fake.Choices.emplace_back(folder.File("a.cal"));
  Click("Form1.LoadCal");
  EXPECT_EQ(Value("NewLimitsSet.Text1"), "448.0000");
  Measure();
  EXPECT_NE(said().find(limits + std::string("448.0000 MHz to 1028.0000 MHz | ")),
            std::string::npos)
      << said();
  // A sweep that contains a part of them.
  fake.Answers = {Answer::Yes};  // "Keep existing Cal (interpolate new points)?"
  SetSweep("700", "1700", "51");
  Measure();
  EXPECT_NE(said().find(limits + std::string("700.0000 MHz to 1020.0000 MHz | ")),
            std::string::npos)
      << said();
}

TEST_F(Production, AReportAndACsvFileStateWhenTheSweepWasAndWhenTheyWereWritten) {
  Measure();
  const std::string swept = UtcText(fake.UnixSeconds());
  clock.AdvanceMs(3'600'000);
  const std::string written = UtcText(fake.UnixSeconds());
  ASSERT_NE(swept, written);
  const std::string said = Said(MakeReport(program.controller(), {}, {}));
  const auto moment = [](const std::string& utc) {
    return utc.substr(0, 10) + " " + utc.substr(11, 8) + " UTC";
  };
  EXPECT_NE(said.find("Measured | " + moment(swept)), std::string::npos) << said;
  EXPECT_NE(said.find("Written | " + moment(written)), std::string::npos) << said;
  CsvChoice choice;
  choice.Parameters = {true, false, false, false};
  choice.With(CsvColumn::Re);
  ASSERT_TRUE(SaveCsv(program.controller(), folder.File("a.csv"), choice).Ok());
  std::ostringstream csv;
  csv << std::ifstream(folder.File("a.csv")).rdbuf();
  EXPECT_NE(csv.str().find("# Measured: " + swept), std::string::npos) << csv.str();
  EXPECT_NE(csv.str().find("# Written: " + written), std::string::npos) << csv.str();
}

TEST_F(Production, AReportDoesNotReplaceADataFileUnasked) {
  Measure();
  std::ofstream(folder.File("r.s2p")) << "mine";
  Click("Form1.Report");
  fake.Choices.emplace_back(folder.File("r.pdf"));
  fake.Answers = {Answer::No};
  Click("Report.Save");
  EXPECT_EQ(TakeMessages().size(), 1u);
  EXPECT_TRUE(surface.Reports.empty());
}

TEST_F(Production, WithoutAMeasurementThereIsNoReport) {
  session.Display.SweepCounted = false;
  Click("Form1.Report");
  Click("Report.Save");
  EXPECT_EQ(TakeMessages(), Texts{"Report|nothing has been measured yet (START)|exclamation|ok"});
  EXPECT_TRUE(fake.Dialogs.empty());
}

// The traces of its file are on display, and are no measurement.
TEST_F(Production, OfALoadedSessionThereIsNoReport) {
  Measure();
  fake.Choices.emplace_back(folder.File("a.cal"));
  Click("Form1.SaveCal");
  fake.Choices.emplace_back(folder.File("a.cal"));
  Click("Form1.LoadCal");
  TakeMessages();
  Click("Form1.Report");
  Click("Report.Save");
  EXPECT_EQ(TakeMessages(),
            Texts{"Report|the traces are those of the loaded session: measure first (START)|"
                  "exclamation|ok"});
  fake.Answers = {Answer::No};  // "Keep existing Cal (interpolate new points)?"
  SetSweep("100", "3000", "101");
  Click("Report.Save");
  EXPECT_EQ(TakeMessages().back(), "Report|nothing has been measured yet (START)|exclamation|ok");
}

TEST_F(Production, SessionsAreComparedInTheirWindow) {
  fake.Choices.emplace_back(folder.File("a.cal"));
  Click("Form1.SaveCal");
  session.Averaging.AveragesSet = 16;
  Click("Form1.CompareSessions");
  Type("CompareSessions.First", folder.File("a.cal"));
  Click("CompareSessions.Compare");
  EXPECT_EQ(Value("CompareSessions.Text"),
            "--- " + folder.File("a.cal") + "\n+++ (session in force)\nAverages\n- 1\n+ 16\n");
  Type("CompareSessions.Second", folder.File("none.cal"));
  Click("CompareSessions.Compare");
  EXPECT_EQ(TakeMessages().size(), 1u);
}

}  // namespace
}  // namespace qk::test
