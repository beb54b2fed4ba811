// SPDX-License-Identifier: MIT
// A batch on the simulated bench, by the verbs.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "files/report_settings.h"
#include "forms/batch_fixture.h"

namespace qk::test {
namespace {

namespace fs = std::filesystem;

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

// Limits are narrowed between two pieces: the next pieces are judged by the narrow ones.
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
TEST_F(Production, AChangeThatCannotBeKeptIsReportedBeforeThePieceIsMeasured) {
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
TEST_F(Production, AnotherUserOfSweepsHearsOfAPieceAndIsCalledAfterIt) {
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

// The sweep of a new calibration contains a part of the limits.
TEST_F(Production, APieceThatIsTestedInPartPassesInPart) {
  Calibrate("700", "1700");
  Bench("attenuator 2");
  ASSERT_EQ(Begin(), "");
  const auto piece = work.Measure("A1", false);
  ASSERT_TRUE(piece.Ok());
  EXPECT_EQ(WordOf(piece->Outcome), "PASS (part)");
  const std::string untested =
      "not tested: CH1 100.0000 to 700.0000 MHz, 1700.0000 to 3000.0000 MHz";
  EXPECT_TRUE(piece->Text.starts_with("CH1 S21 passes by ")) << piece->Text;
  EXPECT_TRUE(piece->Text.ends_with("; " + untested)) << piece->Text;
  EXPECT_NE(Note("A1").find(",A1,1,PASS (part),A1,\"" + untested + "\",S21,"), std::string::npos)
      << Note("A1");
  const std::string said = Said(surface.Reports.back().Report);
  EXPECT_NE(said.find("PASS (part): CH1 S21 passes by "), std::string::npos) << said;
  EXPECT_EQ(work.Yield().Text(), "1 piece: 1 passed, 0 failed. Yield 100.0 %, first pass 100.0 %.");
  // The same after a restart.
  work.End();
  ASSERT_EQ(Begin(), "");
  EXPECT_EQ(WordOf(work.Known("A1")->Outcome), "PASS (part)");
  EXPECT_EQ(work.Known("A1")->Text, piece->Text);
  // A failure fails as a whole.
  Bench("attenuator 4");
  EXPECT_EQ(Verdict("A2"), "FAIL");
  EXPECT_TRUE(work.Known("A2")->Text.ends_with("; " + untested)) << work.Known("A2")->Text;
}

TEST_F(Production, ABatchDoesNotStartWithoutTheLogoOfItsReports) {
  const std::string logo = folder.File("logo.png");
  ASSERT_TRUE(SaveReportSettings(session.InstallFolder, {"Title", "", logo}).Ok());
  surface.Unavailable = Failure{"The logo is not a picture", logo};
  EXPECT_EQ(Begin(), logo + ": The logo is not a picture");
  EXPECT_FALSE(fs::exists(batch));
  surface.Unavailable.reset();
  EXPECT_EQ(Begin(), "");
}

// A fault of the instrument is part of the result: there is no box to answer.
TEST_F(Production, ABoxOfASweepIsTheReasonOfItsPiece) {
  ASSERT_EQ(Begin(), "");
  Bench("fault stall after 100");
  EXPECT_EQ(Verdict("A1"), "ERROR");
  EXPECT_EQ(Verdict("A2"), "ERROR");  // the link check finds no answer
  Bench("fault none");
  EXPECT_EQ(Verdict("A3"), "PASS");
  EXPECT_TRUE(TakeMessages().empty());
  // Outside a batch they are boxes.
  work.End();
  Bench("fault stall after 100");
  Click("Form1.StartMeasurement");
  EXPECT_EQ(TakeMessages(), Texts{"Measure All|No Response|critical|ok"});
}

}  // namespace
}  // namespace qk::test
