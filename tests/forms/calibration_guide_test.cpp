// SPDX-License-Identifier: MIT
// The Calibration window as a guided list: steps, the live picture, Cancel, and what is asked
// before something measured is dropped.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "cal/apply.h"
#include "files/kit_file.h"
#include "forms/open_file.h"
#include "forms/simulated_program.h"
#include "support/recording_canvas.h"

namespace qk::test {
namespace {

struct GuidedCal : SimulatedProgram {
  // Bytes come at the pace of the line.
  GuidedCal() : SimulatedProgram(sim::Pace::Baud115200) {
    SetSweep("100", "1000", "101");
    Choose("Option3");
    fake.Messages.clear();
  }
  std::string Guide() { return Value("Calibration.Guide"); }
  // Cancel is pressed as soon as the bar of the next sweep has come so far.
  void CancelAt(int percent, const char* window = "Calibration") {
    cancelled = false;
    fake.OnBreathe = [this, percent, window] {
      if (cancelled || At("Calibration.ProgressBar1").Percent < percent) return;
      cancelled = Click(std::string(window) + ".CancelStandard");
      EXPECT_TRUE(cancelled);
    };
  }
  bool cancelled = false;
};

const std::string kDone = "\u2713 ", kNow = "\u25B6 ", kToDo = "\u25CB ";

TEST(CalGuide, ReportsWhatIsDoneAndWhatIsNext) {
  SimulatedProgram vna;
  vna.Choose("Option3");
  EXPECT_EQ(vna.Value("Calibration.Guide"), kNow + "Set the sweep: next\n" + kToDo + "Open\n" +
                                                kToDo + "Short\n" + kToDo + "Load\n" + kToDo +
                                                "Apply Cal");
  EXPECT_EQ(vna.Value("Calibration.Expected"), " ");
  vna.SetSweep("100", "1000", "101");
  EXPECT_EQ(vna.Value("Calibration.Guide"), kDone + "Sweep set\n" + kNow + "Open: next\n" + kToDo +
                                                "Short\n" + kToDo + "Load\n" + kToDo + "Apply Cal");
  EXPECT_EQ(vna.Value("Calibration.Expected"),
            "An open reflects fully: the raw trace is flat, near 0 dB.");
  vna.Press({"S_Cal"});
  EXPECT_EQ(vna.Value("Calibration.Guide"), kDone + "Sweep set\n" + kNow + "Open: next\n" + kDone +
                                                "Short\n" + kToDo + "Load\n" + kToDo + "Apply Cal");
  EXPECT_EQ(vna.Value("Calibration.Expected"),
            "A short reflects fully: the raw trace is flat, near 0 dB.")
      << "of what is drawn";
  vna.Press({"O_Cal", "M_Cal"});
  EXPECT_EQ(vna.Value("Calibration.Guide"), kDone + "Sweep set\n" + kDone + "Open\n" + kDone +
                                                "Short\n" + kDone + "Load\n" + kNow +
                                                "Apply Cal: next");
  vna.Press({"App_Cal"});
  EXPECT_EQ(vna.Value("Calibration.Guide"), kDone + "Sweep set\n" + kDone + "Open\n" + kDone +
                                                "Short\n" + kDone + "Load\n" + kDone + "Applied");
}

TEST(CalGuide, APromptStandsBesideWhatIsExpectedOfItsOwnStandard) {
  SimulatedProgram vna;
  vna.SetSweep("100", "1000", "101");
  vna.Choose("Option3");
  vna.Press({"O_Cal"});
  std::string expected;
  std::size_t lines = 0;
  vna.fake.OnAsk = [&](const Message& message) {
    vna.instrument.FollowPrompt(message.Text);
    expected = vna.Value("Calibration.Expected");
    RecordingCanvas canvas({300, 130});
    vna.At("Calibration.StandardTrace").Draw(canvas);
    for (const Drawn& item : canvas.Items)
      if (item.What == Drawn::Kind::Polyline) ++lines;
  };
  vna.Press({"M_Cal"});  // not the next one
  EXPECT_EQ(expected, "A load hardly reflects: the raw trace is far below that of open and short.");
  EXPECT_EQ(lines, 0u) << "of the open";
  EXPECT_EQ(vna.Value("Calibration.Expected"), expected) << "of what is drawn";
}

TEST(CalGuide, AStandardThatFailedIsToBeMeasuredAgain) {
  GuidedCal vna;
  vna.Bench("fault stall after 200");
  vna.Press({"O_Cal"});
  EXPECT_NE(vna.Guide().find(kNow + "Open: measure again"), std::string::npos) << vna.Guide();
}

TEST(RawTracePicture, IsDarkBesideDarkGraphs) {
  SimulatedProgram vna;
  const auto paper = [&vna] {
    RecordingCanvas canvas({300, 130});
    vna.At("Calibration.StandardTrace").Draw(canvas);
    return canvas.Items.front().Colour;
  };
  EXPECT_EQ(paper(), 0xFFFFFFu);
  vna.session.Colour.BackColour = 0x101010;
  EXPECT_LT(paper() & 0xFF, 0x40u);
}

struct Expectation {
  const char *Kind, *Button;
  double FromDb, ToDb;  // of the median
  const char* Names;
};
class RawTrace : public ::testing::TestWithParam<Expectation> {};

TEST_P(RawTrace, IsWhatTheWordsSayOfEachStandard) {
  SimulatedProgram vna;
  vna.SetSweep("100", "1000", "101");
  vna.Choose(GetParam().Kind);
  vna.fake.Answers = {Answer::Yes};
  vna.Press({GetParam().Button});
  RecordingCanvas canvas({300, 130});
  vna.At("Calibration.StandardTrace").Draw(canvas);
  std::size_t lines = 0, names = 0;
  for (const Drawn& item : canvas.Items) {
    if (item.What == Drawn::Kind::Polyline) {
      ++lines;
      EXPECT_EQ(item.Points.size(), 101u);
    }
    if (item.What == Drawn::Kind::Text && item.Text.find(", raw ") != std::string::npos) ++names;
  }
  EXPECT_EQ(lines, std::string(GetParam().Names).size() / 3);
  EXPECT_EQ(names, lines);
  for (const Drawn& item : canvas.Items)
    for (const CanvasPoint& at : item.Points) {
      EXPECT_GE(at.x, 0);
      EXPECT_LE(at.x, 300);
      EXPECT_GE(at.y, 0);
      EXPECT_LE(at.y, 130);
    }
}

INSTANTIATE_TEST_SUITE_P(Each, RawTrace,
                         ::testing::Values(Expectation{"Option3", "O_Cal", -12, 12, "S11"},
                                           Expectation{"Option3", "M_Cal", -90, -10, "S11"},
                                           Expectation{"Option5", "S_Cal", -12, 12, "S11S22"},
                                           Expectation{"Option5", "Thru_Cal", -12, 12, "S21S12"},
                                           Expectation{"Option6", "Thru_Cal", -12, 12, "S21"},
                                           Expectation{"Option4", "Iso_Cal", -200, -40, "S21"}));

TEST(CalGuide, ThePictureGrowsWhileTheStandardIsMeasured) {
  GuidedCal vna;
  std::vector<std::size_t> points;
  vna.fake.OnBreathe = [&] {
    RecordingCanvas canvas({300, 130});
    vna.At("Calibration.StandardTrace").Draw(canvas);
    for (const Drawn& item : canvas.Items)
      if (item.What == Drawn::Kind::Polyline) points.push_back(item.Points.size());
  };
  vna.Press({"O_Cal"});
  ASSERT_FALSE(points.empty());
  EXPECT_LT(points.front(), 101u);
  EXPECT_TRUE(std::is_sorted(points.begin(), points.end()));
}

TEST(CalGuide, CancelEndsTheSweepAndKeepsWhatWasMeasuredBefore) {
  GuidedCal vna;
  EXPECT_FALSE(vna.At("Calibration.CancelStandard").Enabled) << "nothing is measured";
  vna.Press({"O_Cal", "S_Cal"});
  const auto before = vna.session.Standards.CalShort1[50];
  const int averages = vna.session.Averaging.Averages;
  vna.Bench("port1 load");
  vna.fake.OnAsk = nullptr;  // a short is not what is connected
  vna.CancelAt(20);
  vna.Press({"S_Cal"});
  EXPECT_TRUE(vna.cancelled);
  EXPECT_EQ(vna.session.Standards.CalShort1[50], before);
  EXPECT_EQ(vna.At("Calibration.S_Cal").Caption, "Short *") << "it was measured before";
  EXPECT_EQ(vna.session.Averaging.Averages, averages);
  EXPECT_FALSE(vna.At("Calibration.CancelStandard").Enabled);
  EXPECT_TRUE(vna.At("Form1.StartMeasurement").Enabled);
  EXPECT_EQ(vna.Troubles(), Texts{});
  vna.CancelAt(20);
  vna.Press({"M_Cal"});
  EXPECT_TRUE(vna.cancelled);
  EXPECT_EQ(vna.At("Calibration.M_Cal").Caption, "Load") << "no star for what was cancelled";
  EXPECT_NE(vna.Guide().find(kNow + "Load: next"), std::string::npos) << vna.Guide();
  // The line is in step: the next standard comes in whole.
  vna.fake.OnBreathe = nullptr;
  vna.Press({"M_Cal", "App_Cal"});
  EXPECT_TRUE(vna.session.Cal.CalS11);
  EXPECT_EQ(vna.Troubles(), Texts{});
}

TEST(CalGuide, OldFirmwareRunsOutAndTheStandardIsNotTaken) {
  GuidedCal vna;
  vna.session.Id.FirmwareVersion = "0.9";
  vna.CancelAt(20);
  vna.Press({"O_Cal"});
  EXPECT_TRUE(vna.cancelled);
  EXPECT_EQ(vna.At("Calibration.ProgressBar1").Percent, 100);
  EXPECT_EQ(vna.At("Calibration.O_Cal").Caption, "Open");
  EXPECT_EQ(vna.session.Standards.CalOpen1[50], Complex{});
}

TEST(CalGuide, EachStandardLeadsToTheButtonOfTheNext) {
  GuidedCal vna;
  const auto wish = [&vna](const char* button) {
    vna.Press({button});
    return vna.Window("Calibration").TakeFocusRequest();
  };
  EXPECT_EQ(wish("S_Cal"), "O_Cal") << "in the order of the list";
  EXPECT_EQ(wish("O_Cal"), "M_Cal");
  EXPECT_EQ(wish("M_Cal"), "App_Cal");
}

TEST(CalGuide, EnterAfterApplyCalLeadsToClose) {
  GuidedCal vna;
  vna.Press({"O_Cal", "S_Cal", "M_Cal", "App_Cal"});
  EXPECT_EQ(vna.Window("Calibration").TakeFocusRequest(), "Cls_Cal");
  vna.Press({"App_Cal"});  // refused: nothing is measured any more
  EXPECT_EQ(vna.Window("Calibration").TakeFocusRequest(), "");
}

struct AskingCal : GuidedCal {
  AskingCal() {
    Window("Calibration").Tick("AskFirst", true);
    Press({"O_Cal", "S_Cal"});
    fake.Messages.clear();
  }
};

const char* const kTwo =
    "Calibration|2 measured standards would be dropped. Continue?|question|yes/no";

TEST(CalGuide, AnotherKindAsksBeforeStarsAreDropped) {
  AskingCal vna;
  vna.fake.Answers = {Answer::No};
  vna.Choose("Option4");
  EXPECT_EQ(vna.TakeMessages(), Texts{kTwo});
  EXPECT_EQ(vna.Value("Calibration.Option3"), "on");
  EXPECT_EQ(vna.At("Calibration.O_Cal").Caption, "Open *");
  vna.fake.Answers = {Answer::Yes};
  vna.Choose("Option4");
  EXPECT_EQ(vna.Value("Calibration.Option4"), "on");
  EXPECT_EQ(vna.At("Calibration.O_Cal").Caption, "Open");
  vna.fake.Messages.clear();
  vna.Choose("Option3");
  EXPECT_EQ(vna.TakeMessages(), Texts{}) << "there is nothing to drop";
}

TEST(CalGuide, AnotherSweepClosingAndALoadedSessionAskToo) {
  AskingCal vna;
  vna.Click("Calibration.Command1");
  vna.Click("Calibration.Cls_Cal");
  EXPECT_FALSE(vna.Window("Calibration").OnCloseBox());
  vna.Click("Form1.LoadCal");
  EXPECT_EQ(vna.TakeMessages(),
            (Texts{"Sweep Freq Set|2 measured standards would be dropped. Continue?|question|"
                   "yes/no",
                   kTwo, kTwo,
                   "Load Cal|2 measured standards would be dropped. Continue?|question|yes/no"}));
  EXPECT_TRUE(vna.fake.IsShown("Calibration"));
  EXPECT_TRUE(vna.fake.Dialogs.empty());
  EXPECT_EQ(vna.At("Calibration.S_Cal").Caption, "Short *");
  vna.fake.Answers = {Answer::Yes};
  vna.Click("Calibration.Cls_Cal");
  EXPECT_FALSE(vna.fake.IsShown("Calibration"));
}

struct UnsavedCal : GuidedCal {
  UnsavedCal() {
    Press({"O_Cal", "S_Cal", "M_Cal", "App_Cal"});
    Window("Calibration").Tick("AskFirst", true);
    fake.Messages.clear();
  }
  void Save(const char* name) {
    fake.Choices.emplace_back(folder.File(name));
    Click("Form1.SaveCal");
  }
  static Texts Asked(const std::string& title) {
    return {title +
            "|The calibration, which is in none of the files used last, would be dropped. "
            "Continue?|question|"
            "yes/no"};
  }
};

TEST(CalGuide, ASessionAsksBeforeItDropsACalibrationThatIsInNoFile) {
  UnsavedCal vna;
  vna.Click("Form1.LoadCal");
  EXPECT_EQ(vna.TakeMessages(), UnsavedCal::Asked("Load Cal"));
  EXPECT_TRUE(vna.fake.Dialogs.empty()) << "No: nothing to choose";
  EXPECT_TRUE(vna.session.Cal.CalS11);
  vna.Press({"O_Cal"});
  vna.fake.Messages.clear();
  vna.Click("Form1.LoadCal");
  EXPECT_EQ(vna.TakeMessages(),
            Texts{"Load Cal|One measured standard and the calibration, which is in none of "
                  "the files used last, would be dropped. Continue?|question|yes/no"});
  vna.fake.Answers = {Answer::Yes};
  vna.Click("Form1.LoadCal");
  EXPECT_EQ(vna.fake.Dialogs.size(), 1u);
}

TEST(CalGuide, ARecentSessionAsksLikeLoadCalUntilTheCalibrationIsSaved) {
  UnsavedCal vna;
  const auto open = [&vna](const char* name) {
    return OpenFile(vna.program.controller(), vna.folder.File(name), "Open Recent");
  };
  vna.Save("first.cal");
  vna.fake.Messages.clear();
  EXPECT_TRUE(open("first.cal")) << "it is in this file";
  EXPECT_EQ(vna.TakeMessages(), Texts{});
  vna.fake.UnixStart += 60;
  vna.Press({"O_Cal", "S_Cal", "M_Cal", "App_Cal"});
  vna.fake.Messages.clear();
  EXPECT_FALSE(open("first.cal")) << "another calibration";
  EXPECT_EQ(vna.TakeMessages(), UnsavedCal::Asked("Open Recent"));
  vna.Save("second.cal");
  EXPECT_TRUE(open("first.cal"));
  EXPECT_EQ(vna.TakeMessages(), Texts{});
  EXPECT_TRUE(open("second.cal"));
  std::filesystem::remove(vna.folder.File("second.cal"));
  EXPECT_FALSE(open("first.cal")) << "its file is gone";
  EXPECT_EQ(vna.TakeMessages(), UnsavedCal::Asked("Open Recent"));
  // Without a calibration there is nothing to lose, and scripts are not asked.
  vna.Window("Calibration").Tick("AskFirst", false);
  EXPECT_TRUE(open("first.cal"));
  vna.Window("Calibration").Tick("AskFirst", true);
  DropCal(vna.session, vna.fake);
  EXPECT_TRUE(open("first.cal"));
  EXPECT_EQ(vna.TakeMessages(), Texts{});
}

TEST(CalGuide, WithoutTheTickNothingIsAsked) {
  GuidedCal vna;
  vna.Press({"O_Cal"});
  vna.fake.Messages.clear();
  vna.Choose("Option4");
  EXPECT_EQ(vna.TakeMessages(), Texts{});
  EXPECT_EQ(vna.At("Calibration.O_Cal").Caption, "Open");
}

TEST(CalGuide, KeepIsAskedOnlyWhereItCanBeKept) {
  GuidedCal vna;
  vna.Press({"O_Cal", "S_Cal", "M_Cal", "App_Cal"});
  vna.Window("Calibration").Tick("AskFirst", true);
  vna.fake.Messages.clear();
  vna.SetSweep("50", "1000", "101");
  EXPECT_EQ(
      vna.TakeMessages(),
      Texts{"Sweep Freq Set|The calibration covers 100.0 to 1000.0 MHz only and cannot be kept "
            "for this sweep. Drop it?|question|yes/no"});
  EXPECT_TRUE(vna.session.Cal.CalS11) << "No leaves all as it is";
  EXPECT_DOUBLE_EQ(vna.session.Plan.StartFreq, 100e6);
  EXPECT_EQ(vna.Value("Calibration.Text1"), "50") << "what is typed stays";
  vna.fake.Answers = {Answer::Yes};
  vna.SetSweep("100", "2000", "101");
  EXPECT_FALSE(vna.session.Cal.AnyKind());
  EXPECT_DOUBLE_EQ(vna.session.Plan.StopFreq, 2000e6);
}

TEST(CalGuide, KeepIsAskedInsideTheSpan) {
  GuidedCal vna;
  vna.Press({"O_Cal", "S_Cal", "M_Cal", "App_Cal"});
  vna.Window("Calibration").Tick("AskFirst", true);
  vna.fake.Messages.clear();
  vna.fake.Answers = {Answer::Yes};
  vna.SetSweep("200", "900", "201");
  EXPECT_EQ(vna.TakeMessages(),
            Texts{"Test Signals|Keep existing Cal (interpolate new points)?|question|yes/no"});
  EXPECT_TRUE(vna.session.Cal.CalInterpolated);
}

// Standards measured with one kit need the through of that kit.
TEST(CalGuide, AKitWithoutAThroughDropsStandardsOfOneKitOnlyAfterAQuestion) {
  GuidedCal vna;
  vna.Window("Calibration").Tick("AskFirst", true);
  vna.session.Kit1.KitHasThru = true;
  vna.session.Kit1.KitName = "With through";
  vna.Choose("Option7");
  vna.fake.OnModal = [&](Form& form) { vna.fake.Hide(form.Name()); };
  vna.Press({"O_Cal", "S_Cal"});
  const auto kept = [&] {
    return vna.Value("Calibration.Option7") == "on" && vna.session.Kit1.KitHasThru &&
           vna.At("Calibration.O_Cal").Caption == "Open *";
  };
  ASSERT_TRUE(kept());
  vna.fake.Show("CalKitForm");
  const std::string file = vna.folder.File("plain.kit");
  CalKit plain;
  plain.KitName = "Plain";
  ASSERT_TRUE(SaveKit(file, plain, KitPort::Port1));
  const auto load = [&](const char* button, Answer answer) {
    vna.fake.Messages.clear();
    vna.fake.Choices = {file};
    vna.fake.Answers = {answer};
    vna.Click(std::string("CalKitForm.") + button);
    return vna.TakeMessages();
  };
  const Texts asked{"Load Kit|2 measured standards would be dropped. Continue?|question|yes/no"};
  EXPECT_EQ(load("Command1", Answer::No), asked);
  EXPECT_TRUE(kept());
  EXPECT_EQ(vna.session.Kit1.KitName, "With through");
  EXPECT_EQ(load("Command5", Answer::No), Texts{}) << "the kit of port 2 has no through";
  EXPECT_TRUE(kept());
  vna.Window("CalKitForm").Tick("Check3", false);
  EXPECT_EQ(load("Command4", Answer::No),
            Texts{"Calibration Kit Parameters|2 measured standards would be dropped. "
                  "Continue?|question|yes/no"});
  EXPECT_TRUE(kept());
  EXPECT_EQ(load("Command1", Answer::Yes), asked);
  EXPECT_EQ(vna.session.Kit1.KitName, "Plain");
  EXPECT_EQ(vna.Value("Calibration.Option5"), "on");
  EXPECT_EQ(vna.At("Calibration.O_Cal").Caption, "Open");
  EXPECT_EQ(load("Command1", Answer::No), Texts{}) << "nothing is lost";
}

TEST(CalGuide, APortWindowCancelsItsSweepAlone) {
  GuidedCal vna;
  vna.session.Kit1.KitHasThru = true;
  vna.fake.Messages.clear();
  vna.Choose("Option7");
  vna.fake.OnModal = [&](Form& form) {
    vna.CancelAt(20, "OpenCal");
    EXPECT_TRUE(form.Click("Command1"));
    vna.fake.OnBreathe = nullptr;
    EXPECT_EQ(vna.At("OpenCal.Command1").Caption, "Port 1 Open");
    EXPECT_TRUE(form.Click("Command2"));
    EXPECT_EQ(vna.At("OpenCal.Command2").Caption, "Port 2 Open *");
    EXPECT_FALSE(vna.At("OpenCal.CancelStandard").Enabled);
  };
  vna.Press({"O_Cal"});
  EXPECT_TRUE(vna.cancelled);
  EXPECT_EQ(vna.session.Standards.CalOpen1[50], Complex{});
  EXPECT_NE(vna.session.Standards.CalOpen2[50], Complex{});
}

}  // namespace
}  // namespace qk::test
