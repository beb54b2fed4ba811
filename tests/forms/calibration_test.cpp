// Kinds, standards and Apply Cal. The scripted instrument has no sweep data, so every standard here
// ends in "No Response": enough for captions, flags and messages.
#include "forms/calibration.h"

#include <gtest/gtest.h>

#include "support/program_fixture.h"

namespace qk::test {
namespace {

struct CalFixture : ScriptedProgram {
  CalFixture() {
    session.Flags.SweepLoaded = true;
    session.Kit1.KitName = "Left";
    session.Kit2.KitName = "Right";
    OpenCalibration();
  }
  std::string Captions() {
    std::string all;
    for (const char* button : {"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal"})
      all += At(std::string("Calibration.") + button).Caption + ";";
    return all;
  }
  // Enabled standards, and Text5 when the second kit is used.
  std::string Enabled() {
    std::string all;
    for (const char* control : {"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal", "Text5"})
      if (At(std::string("Calibration.") + control).Enabled) all += std::string(control) + ";";
    return all;
  }
  void Choose(const char* option) { Click(std::string("Calibration.") + option); }
  void Press(std::initializer_list<const char*> buttons) {
    for (const char* button : buttons) Click(std::string("Calibration.") + button);
    fake.Messages.clear();
  }
  // A kit with an ideal through standard.
  void WithThroughKit() {
    session.Kit1.KitHasThru = true;
    for (std::size_t i = 0; i < 101; ++i) {
      session.Kit1.KitThruData[0][i] = 3e6f + 31e6f * static_cast<float>(i);
      session.Kit1.KitThruData[3][i] = session.Kit1.KitThruData[5][i] = 1;
    }
  }
};

const char* const kPlain = "Open;Short;Load;Through;Isolation;";

TEST(Calibration, ControlsBearTheirCaptions) {
  CalFixture bench;
  const auto caption = [&](const char* control) {
    return bench.At(std::string("Calibration.") + control).Caption;
  };
  EXPECT_EQ(caption("Option1"), "MHz");
  EXPECT_EQ(caption("Option2"), "kHz");
  EXPECT_EQ(caption("Command1"), "Apply");
  EXPECT_EQ(caption("Option3"), "S11");
  EXPECT_EQ(caption("Option4"), "S21");
  EXPECT_EQ(caption("Option6"), "S11 + S21");
  EXPECT_EQ(caption("Option5"), "Insertable DUT(2 cal kits)");
  EXPECT_EQ(caption("Option7"), "Non-insertable DUT (1 cal kit)");
  EXPECT_EQ(caption("Text4"), "Port 1 / Port 2");
  EXPECT_EQ(caption("Text5"), "Port 2");
  EXPECT_EQ(caption("App_Cal"), "Apply Cal");
  EXPECT_EQ(caption("Cls_Cal"), "Close Window");
  EXPECT_EQ(bench.Captions(), kPlain);
}

TEST(Calibration, ShowsTheKitsInUse) {
  CalFixture bench;
  EXPECT_EQ(bench.Value("Calibration.Text4"), "Left");
  EXPECT_EQ(bench.Value("Calibration.Text5"), "Right");
}

TEST(Calibration, EachKindEnablesTheStandardsThatItNeeds) {
  CalFixture bench;
  bench.WithThroughKit();
  bench.Choose("Option3");
  EXPECT_EQ(bench.Enabled(), "O_Cal;S_Cal;M_Cal;");
  bench.Choose("Option4");
  EXPECT_EQ(bench.Enabled(), "Thru_Cal;Iso_Cal;");
  bench.Choose("Option6");
  EXPECT_EQ(bench.Enabled(), "O_Cal;S_Cal;M_Cal;Thru_Cal;Iso_Cal;");
  bench.Choose("Option5");
  EXPECT_EQ(bench.Enabled(), "O_Cal;S_Cal;M_Cal;Thru_Cal;Iso_Cal;Text5;");
  bench.Choose("Option7");
  EXPECT_EQ(bench.Enabled(), "O_Cal;S_Cal;M_Cal;Thru_Cal;");
  EXPECT_TRUE(bench.TakeMessages().empty());
}

TEST(Calibration, NonInsertableWithoutAThroughStandardFallsBackToInsertable) {
  CalFixture bench;
  bench.Choose("Option7");
  EXPECT_EQ(
      bench.TakeMessages(),
      Texts{"Calibration|Cal kit (Port 1/2) does not have calibrated Thru Standard.|none|ok"});
  EXPECT_EQ(bench.Value("Calibration.Option5"), "on");
  EXPECT_EQ(bench.Value("Calibration.Option7"), "off");
  EXPECT_EQ(bench.Enabled(), "O_Cal;S_Cal;M_Cal;Thru_Cal;Iso_Cal;Text5;");
}

struct Opening {
  const char* CalKind;
  bool CalState::*InForce;
  const char* Option;
};
class OpeningKind : public ::testing::TestWithParam<Opening> {};

TEST_P(OpeningKind, IsTheOneLastAppliedOrInForce) {
  ScriptedProgram bench;
  bench.session.Cal.CalKind = CalKindNamed(GetParam().CalKind);
  if (GetParam().InForce != nullptr) bench.session.Cal.*GetParam().InForce = true;
  bench.OpenCalibration();
  EXPECT_EQ(bench.Value(std::string("Calibration.") + GetParam().Option), "on");
}

INSTANTIATE_TEST_SUITE_P(All, OpeningKind,
                         ::testing::Values(Opening{"both", nullptr, "Option6"},
                                           Opening{"S21", nullptr, "Option4"},
                                           Opening{"S11", nullptr, "Option3"},
                                           Opening{"All", nullptr, "Option5"},
                                           Opening{"rubbish", nullptr, "Option5"},
                                           Opening{"All", &CalState::CalS21, "Option4"},
                                           Opening{"All", &CalState::CalS11, "Option3"},
                                           Opening{"S11", &CalState::Cal12Term, "Option5"}));

struct Unset {
  const char* Button;
  const char* Title;
};
class WithoutASweep : public ::testing::TestWithParam<Unset> {};

TEST_P(WithoutASweep, AStandardIsRefused) {
  CalFixture bench;
  bench.session.Flags.SweepLoaded = false;
  bench.Choose("Option5");
  bench.Click(std::string("Calibration.") + GetParam().Button);
  EXPECT_EQ(bench.TakeMessages(),
            Texts{std::string(GetParam().Title) + "|Set Freq Sweep First|exclamation|ok"});
  EXPECT_EQ(bench.Captions(), kPlain);
  EXPECT_TRUE(bench.port.Writes.empty());
}

INSTANTIATE_TEST_SUITE_P(Every, WithoutASweep,
                         ::testing::Values(Unset{"M_Cal", "Load Cal"}, Unset{"S_Cal", "Short Cal"},
                                           Unset{"O_Cal", "Open Cal"},
                                           Unset{"Thru_Cal", "Through Cal"},
                                           Unset{"Iso_Cal", "Isolation Cal"}));

TEST(Calibration, AStandardIsRefusedDuringASweep) {
  CalFixture bench;
  bench.PretendSweep();
  bench.Click("Calibration.O_Cal");
  EXPECT_EQ(bench.TakeMessages(), Texts{"Calibration|Stop Measurement First|exclamation|ok"});
  EXPECT_EQ(bench.Captions(), kPlain);
}

TEST(Calibration, ApplyCalIsRefusedDuringASweep) {
  CalFixture bench;
  bench.Choose("Option3");
  bench.Press({"O_Cal", "S_Cal", "M_Cal"});
  bench.PretendSweep();
  bench.Click("Calibration.App_Cal");
  EXPECT_EQ(bench.TakeMessages(), Texts{"Calibration|Stop Measurement First|exclamation|ok"});
  EXPECT_FALSE(bench.session.Cal.CalS11);
}

TEST(Calibration, AFailedSweepStillMarksTheStepAndSaysMeasureAgain) {
  CalFixture bench;
  bench.Choose("Option3");
  bench.Click("Calibration.S_Cal");
  EXPECT_EQ(bench.TakeMessages(),
            (Texts{"Short Cal|Short Circuit on Port 1 (0.00mm)|information|ok",
                   "Short Cal|No Response|critical|ok"}));
  EXPECT_EQ(bench.Captions(), "Open;Short *;Load;Through;Isolation;");
  EXPECT_EQ(bench.Value("Calibration.NextStep"), "Not measured whole, measure again: Short");
}

TEST(Calibration, ImpedanceOtherThan50IsWarnedOfOnceAKind) {
  CalFixture bench;
  bench.session.Impedance.SystemZo = 75;
  const std::string warning =
      "Calibration|System impedance not set to 50 ohms. Ensure your cal kit suits the value "
      "chosen.|information|ok";
  bench.Choose("Option3");
  bench.Click("Calibration.O_Cal");
  EXPECT_EQ(bench.TakeMessages().front(), warning);
  bench.Click("Calibration.S_Cal");
  EXPECT_NE(bench.TakeMessages().front(), warning);
  bench.Choose("Option3");
  bench.Click("Calibration.O_Cal");
  EXPECT_EQ(bench.TakeMessages().front(), warning);
}

TEST(Calibration, ImpedanceIsWarnedOfBeforeStartIsDisabled) {
  CalFixture bench;
  bench.session.Impedance.SystemZo = 75;
  bench.Choose("Option3");
  std::string seen;
  bench.fake.OnAsk = [&](const Message& message) {
    seen += message.Title + (bench.At("Form1.StartMeasurement").Enabled ? " on;" : " off;");
  };
  bench.Click("Calibration.O_Cal");
  EXPECT_EQ(seen.substr(0, 28), "Calibration on;Open Cal off;");
  EXPECT_TRUE(bench.At("Form1.StartMeasurement").Enabled);
}

TEST(Calibration, Exactly50OhmsNeedNoWarning) {
  CalFixture bench;
  bench.Choose("Option3");
  bench.Click("Calibration.O_Cal");
  EXPECT_EQ(bench.TakeMessages().front(),
            "Open Cal|Open Circuit on Port 1 (0.00mm)|information|ok");
}

TEST(Calibration, StartIsDisabledWhileAStandardIsMeasured) {
  CalFixture bench;
  bool enabledAtPrompt = true;
  bench.fake.OnAsk = [&](const Message&) {
    enabledAtPrompt = bench.At("Form1.StartMeasurement").Enabled;
    EXPECT_FALSE(bench.Click("Form1.StartMeasurement"));
  };
  bench.Choose("Option3");
  bench.Click("Calibration.O_Cal");
  EXPECT_FALSE(enabledAtPrompt);
  EXPECT_TRUE(bench.At("Form1.StartMeasurement").Enabled);
}

TEST(Calibration, AStandardCannotBeStartedTwiceAtATime) {
  CalFixture bench;
  int prompts = 0;
  bench.fake.OnAsk = [&](const Message& message) {
    if (message.MessageIcon != Icon::Information) return;
    ++prompts;
    bench.Click("Calibration.S_Cal");
    bench.Click("Calibration.App_Cal");
    bench.Click("Calibration.Command1");
    bench.Click("Calibration.Option4");
    bench.Click("Calibration.Cls_Cal");
  };
  bench.Choose("Option3");
  bench.Click("Calibration.O_Cal");
  EXPECT_EQ(prompts, 1);
  EXPECT_EQ(bench.Value("Calibration.Option3"), "on");
  EXPECT_TRUE(bench.fake.IsShown("Calibration"));
  EXPECT_EQ(bench.Captions(), "Open *;Short;Load;Through;Isolation;");
}

TEST(Calibration, AnotherKindForgetsTheSteps) {
  CalFixture bench;
  bench.Choose("Option3");
  bench.Press({"O_Cal", "S_Cal", "M_Cal"});
  EXPECT_EQ(bench.Captions(), "Open *;Short *;Load *;Through;Isolation;");
  bench.Choose("Option6");
  EXPECT_EQ(bench.Captions(), kPlain);
  bench.Choose("Option3");
  bench.Click("Calibration.App_Cal");
  EXPECT_EQ(bench.TakeMessages(),
            Texts{"Apply Calibration|S11 Calibration Not Complete|exclamation|ok"});
}

TEST(Calibration, TheSameKindChosenAgainBeginsAnew) {
  CalFixture bench;
  bench.Choose("Option3");
  bench.Press({"O_Cal", "S_Cal"});
  bench.Choose("Option3");
  EXPECT_EQ(bench.Captions(), kPlain);
  EXPECT_EQ(bench.Value("Calibration.NextStep"), "Still to measure: Open, Short, Load");
}

TEST(Calibration, ClosingTheWindowForgetsTheSteps) {
  CalFixture bench;
  bench.Choose("Option6");
  bench.Press({"O_Cal"});
  bench.Click("Calibration.Cls_Cal");
  EXPECT_FALSE(bench.fake.IsShown("Calibration"));
  bench.OpenCalibration();
  EXPECT_EQ(bench.Captions(), kPlain);
  EXPECT_EQ(bench.Value("Calibration.Option5"), "on");
}

TEST(Calibration, LeavingTheWindowOpenKeepsTheSteps) {
  CalFixture bench;
  bench.Choose("Option3");
  bench.Press({"O_Cal"});
  bench.Click("Form1.SetCal");
  EXPECT_EQ(bench.Captions(), "Open *;Short;Load;Through;Isolation;");
}

TEST(ApplyCal, S11NeedsItsThreeStandards) {
  for (const char* missing : {"O_Cal", "S_Cal", "M_Cal"}) {
    CalFixture bench;
    bench.Choose("Option3");
    for (const char* button : {"O_Cal", "S_Cal", "M_Cal"})
      if (std::string(button) != missing) bench.Press({button});
    bench.Click("Calibration.App_Cal");
    EXPECT_EQ(bench.TakeMessages(),
              Texts{"Apply Calibration|S11 Calibration Not Complete|exclamation|ok"});
    EXPECT_FALSE(bench.session.Cal.CalS11);
  }
}

TEST(ApplyCal, InsertableAndS11S21NeedAllFiveTheIsolationToo) {
  for (const char* kind : {"Option5", "Option6"}) {
    CalFixture bench;
    bench.Choose(kind);
    bench.Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal"});
    bench.Click("Calibration.App_Cal");
    EXPECT_EQ(bench.TakeMessages(),
              Texts{"Apply Calibration|Calibration Not Complete|exclamation|ok"});
    EXPECT_FALSE(bench.session.Cal.AnyKind());
  }
}

TEST(ApplyCal, S21NeedsItsThrough) {
  CalFixture bench;
  bench.Choose("Option4");
  bench.Press({"Iso_Cal"});
  bench.Click("Calibration.App_Cal");
  EXPECT_EQ(bench.TakeMessages(), Texts{"Apply Calibration|Through Cal Not Done|exclamation|ok"});
}

TEST(ApplyCal, S21AsksWhetherToGoOnWithoutIsolation) {
  CalFixture bench;
  bench.Choose("Option4");
  bench.Press({"Thru_Cal"});
  bench.fake.Answers = {Answer::No};
  bench.Click("Calibration.App_Cal");
  EXPECT_EQ(bench.TakeMessages(),
            Texts{"Apply Calibration|Isolation Not Done. Continue?|question|yes/no"});
  EXPECT_FALSE(bench.session.Cal.CalS21);
}

TEST(ApplyCal, S21WithTheIsolationDeclinedGoesOnWithoutIt) {
  CalFixture bench;
  bench.Choose("Option4");
  bench.Press({"Thru_Cal"});
  bench.session.Terms.Forward.EX.Fill({0.5, 0.5});
  bench.session.Terms.Forward.ETT.Fill({2, 1});
  bench.fake.Answers = {Answer::Yes};
  bench.Click("Calibration.App_Cal");
  EXPECT_TRUE(bench.session.Cal.CalS21);
  EXPECT_EQ(bench.session.Terms.Forward.EX[3], (Complex{0, 0}));
  EXPECT_EQ(bench.session.Terms.Forward.ETT[3], (Complex{2, 1}));
  EXPECT_EQ(bench.fake.Panels[3], "S21 Cal");
  EXPECT_EQ(bench.session.Cal.CalKind, SweepMode::S21);
}

TEST(ApplyCal, BringsTheSessionIntoTheCalibratedState) {
  CalFixture bench;
  bench.session.Plan.Port1Level = -5;
  bench.session.Cal.CalS21 = true;
  bench.session.Cal.CalInterpolated = true;
  bench.session.Planes.PlaneS11 = bench.session.Planes.ActivePlane = 0.1f;
  bench.OpenEnhancement();
  EXPECT_EQ(bench.Value("EnhancePara.TimeInput"), "100.000");
  bench.Choose("Option3");
  bench.Press({"O_Cal", "S_Cal", "M_Cal"});
  const int presented = bench.surface.Presented;
  bench.Click("Calibration.App_Cal");
  const CalState& cal = bench.session.Cal;
  EXPECT_TRUE(bench.TakeMessages().empty());
  EXPECT_TRUE(cal.CalS11 && cal.CalDataReady);
  EXPECT_FALSE(cal.CalS21 || cal.CalS11S21 || cal.Cal12Term || cal.CalInterpolated);
  EXPECT_EQ(cal.CalKind, SweepMode::S11);
  EXPECT_EQ(bench.fake.Panels[3], "S11 Cal");
  EXPECT_EQ(bench.fake.Panels[4], "P1 Level: -5dBm");
  EXPECT_EQ(bench.session.Plan.CalLevel, -5);
  EXPECT_EQ(bench.session.Planes.PlaneS11, 0);
  EXPECT_EQ(bench.Value("EnhancePara.TimeInput"), "0.000");
  EXPECT_EQ(bench.session.Plan.SavedPlan.NumPoints, bench.session.Plan.NumPoints);
  EXPECT_EQ(bench.Captions(), kPlain);
  EXPECT_GT(bench.surface.Presented, presented);
  EXPECT_EQ(bench.Value("Calibration.NextStep"), "Calibration applied: START measures");
}

TEST(ApplyCal, ASecondTimeAtOnceIsRefused) {
  CalFixture bench;
  bench.Choose("Option3");
  bench.Press({"O_Cal", "S_Cal", "M_Cal"});
  bench.Click("Calibration.App_Cal");
  bench.TakeMessages();
  bench.Click("Calibration.App_Cal");
  EXPECT_EQ(bench.TakeMessages(),
            Texts{"Apply Calibration|S11 Calibration Not Complete|exclamation|ok"});
  EXPECT_TRUE(bench.session.Cal.CalS11);  // the first stays in force
}

TEST(ApplyCal, RenewsTheImpedanceWarning) {
  CalFixture bench;
  bench.session.Impedance.SystemZo = 75;
  bench.Choose("Option3");
  bench.Press({"O_Cal", "S_Cal", "M_Cal"});
  bench.Click("Calibration.App_Cal");
  bench.Click("Calibration.O_Cal");
  EXPECT_EQ(bench.TakeMessages().front().substr(0, 30), "Calibration|System impedance n");
}

TEST(ApplyCal, InsertableKeepsTheLoadsIsolationWithTheBasicMethod) {
  CalFixture bench;
  bench.Choose("Option5");
  bench.fake.OnModal = [&](Form&) { bench.Click("IsoMethod.Command1"); };
  bench.Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal"});
  const std::size_t writes = bench.port.Writes.size();
  bench.Click("Calibration.Iso_Cal");
  EXPECT_EQ(bench.port.Writes.size(), writes);  // nothing is measured
  EXPECT_TRUE(bench.TakeMessages().empty());
  EXPECT_EQ(bench.At("Calibration.Iso_Cal").Caption, "Isolation *");
  bench.session.Terms.IsoFwd1.Fill({3, 3});
  bench.Click("Calibration.App_Cal");
  EXPECT_TRUE(bench.session.Cal.Cal12Term);
  EXPECT_EQ(bench.session.Terms.IsoFwd1[0], (Complex{0, 0}));
  EXPECT_EQ(bench.session.Cal.CalKind, SweepMode::All);
  EXPECT_EQ(bench.fake.Panels[3], "12 Term Cal");
}

TEST(IsoMethod, OffersThreeMethodsAndOpensWithTheBasicOne) {
  CalFixture bench;
  bench.session.Cal.IsoMethod = 2;
  const Form& form = bench.Window("IsoMethod");
  EXPECT_EQ(form.Caption(), "Isolation Calibration (optional step)");
  EXPECT_EQ(form.At("Label1").Caption, "Single step, basic (part of load calibration)");
  for (const char* button : {"Command1", "Command2", "Command3"})
    EXPECT_EQ(form.At(button).Caption, "Click to select this method");
  bench.Choose("Option5");
  bench.fake.OnModal = [&](Form& modal) {
    EXPECT_EQ(modal.Name(), "IsoMethod");
    EXPECT_EQ(bench.session.Cal.IsoMethod, 0);
    bench.fake.Hide("IsoMethod");  // closed without a choice
  };
  bench.Click("Calibration.Iso_Cal");
  EXPECT_EQ(bench.session.Cal.IsoMethod, 0);
  EXPECT_TRUE(bench.TakeMessages().empty());
}

TEST(IsoMethod, OneDeviceSweepIsPromptedWithTheDeviceOnBothPorts) {
  CalFixture bench;
  bench.Choose("Option5");
  bench.fake.OnModal = [&](Form&) { bench.Click("IsoMethod.Command2"); };
  bench.Click("Calibration.Iso_Cal");
  EXPECT_EQ(bench.session.Cal.IsoMethod, 1);
  EXPECT_FALSE(bench.fake.IsShown("IsoMethod"));
  EXPECT_EQ(bench.TakeMessages().front(), "Iso Cal|DUT on Port 1, DUT on Port 2 |information|ok");
}

TEST(IsoMethod, TwoDeviceSweepsBeginWithTheDeviceOnPort1) {
  CalFixture bench;
  bench.Choose("Option5");
  bench.fake.OnModal = [&](Form&) { bench.Click("IsoMethod.Command3"); };
  bench.Click("Calibration.Iso_Cal");
  EXPECT_EQ(bench.session.Cal.IsoMethod, 2);
  EXPECT_EQ(bench.TakeMessages().front(),
            "Iso Cal|DUT on Port 1, Matched load on Port 2 |information|ok");
}

TEST(IsoMethod, SecondKindsMeasureIsolationWithoutTheWindow) {
  CalFixture bench;
  bench.fake.OnModal = [](Form& modal) { ADD_FAILURE() << modal.Name(); };
  bench.Choose("Option4");
  bench.Click("Calibration.Iso_Cal");
  EXPECT_EQ(bench.TakeMessages().front(), "Iso Cal|Terminate Ports 1 & 2|information|ok");
}

struct Prompted {
  const char* Option;
  const char* Button;
  const char* Prompt;
};
class Prompt : public ::testing::TestWithParam<Prompted> {};

TEST_P(Prompt, TellsWhatToConnect) {
  CalFixture bench;
  bench.session.Kit1.KitOffset = 0.005f;
  bench.session.Kit2.KitOffset = 0.0032f;
  bench.Choose(GetParam().Option);
  bench.Click(std::string("Calibration.") + GetParam().Button);
  EXPECT_EQ(bench.TakeMessages().front(), std::string(GetParam().Prompt) + "|information|ok");
}

INSTANTIATE_TEST_SUITE_P(
    Every, Prompt,
    ::testing::Values(
        Prompted{"Option3", "O_Cal", "Open Cal|Open Circuit on Port 1 (5.00mm)"},
        Prompted{"Option3", "S_Cal", "Short Cal|Short Circuit on Port 1 (5.00mm)"},
        Prompted{"Option3", "M_Cal", "Load Cal|Matched Load on Port 1"},
        Prompted{"Option4", "Thru_Cal", "Through Cal|Connect Through"},
        Prompted{"Option4", "Iso_Cal", "Iso Cal|Terminate Ports 1 & 2"},
        Prompted{"Option5", "O_Cal", "Open Cal|Open Circuit on Ports 1 and 2 (5.00 / 3.20mm)"},
        Prompted{"Option5", "S_Cal", "Short Cal|Short Circuit on Ports 1 and 2 (5.00 / 3.20mm)"},
        Prompted{"Option5", "M_Cal", "Load Cal|Matched Load on Ports 1 & 2"},
        Prompted{"Option5", "Thru_Cal", "Through Cal|Connect Through (0.00 mm)"},
        Prompted{"Option6", "O_Cal", "Open Cal|Open Circuit on Port 1 (5.00mm)"},
        Prompted{"Option6", "S_Cal", "Short Cal|Short Circuit on Port 1 (5.00mm)"},
        Prompted{"Option6", "M_Cal", "Load Cal|Matched Load on Port 1"},
        Prompted{"Option6", "Thru_Cal", "Through Cal|Connect Through"},
        Prompted{"Option6", "Iso_Cal", "Iso Cal|Terminate Ports 1 & 2"}));

TEST(NextStep, LeadsThroughEachKind) {
  CalFixture bench;
  bench.WithThroughKit();
  const auto next = [&](const char* option) {
    bench.Choose(option);
    return bench.Value("Calibration.NextStep");
  };
  EXPECT_EQ(next("Option3"), "Still to measure: Open, Short, Load");
  EXPECT_EQ(next("Option4"), "Still to measure: Through, Isolation");
  EXPECT_EQ(next("Option5"), "Still to measure: Open, Short, Load, Through, Isolation");
  EXPECT_EQ(next("Option6"), "Still to measure: Open, Short, Load, Through, Isolation");
  EXPECT_EQ(next("Option7"), "Still to measure: Open, Short, Load, Through");
}

TEST(NextStep, NamesTheStandardThatIsBeingMeasured) {
  CalFixture bench;
  bench.Choose("Option3");
  for (const auto& [button, line] :
       {std::pair{"O_Cal", "Measuring Open ..."}, std::pair{"S_Cal", "Measuring Short ..."},
        std::pair{"M_Cal", "Measuring Load ..."}}) {
    std::string seen;
    bool bar = false;
    bench.fake.OnBreathe = [&] {
      seen = bench.Value("Calibration.NextStep");
      bar = bench.At("Calibration.ProgressBar1").Shown;
    };
    bench.Press({button});
    EXPECT_EQ(seen, line);
    EXPECT_TRUE(bar) << line;
    EXPECT_FALSE(bench.At("Calibration.ProgressBar1").Shown) << line;
  }
}

TEST(NextStep, AsksForTheSweepFirst) {
  ScriptedProgram bench;
  bench.OpenCalibration();
  EXPECT_EQ(bench.Value("Calibration.NextStep"), "Set the sweep first");
}

// The windows of one standard, one port at a time.
struct PortWindow {
  const char* Button;
  const char* Window;
  const char* Title;
  const char* Port1;
  const char* Port2;
  const char* Prompt1;
  const char* Prompt2;
};
class PortCal : public ::testing::TestWithParam<PortWindow> {
 protected:
  PortCal() {
    bench_.WithThroughKit();
    bench_.session.Kit1.KitOffset = 0.005f;
    bench_.Choose("Option7");
  }
  std::string Path(const char* control) const {
    return std::string(GetParam().Window) + "." + control;
  }
  void PressButton() { bench_.Click(std::string("Calibration.") + GetParam().Button); }

  CalFixture bench_;
};

TEST_P(PortCal, MeasuresEachPortAndMarksItsButton) {
  bench_.fake.OnModal = [&](Form& form) {
    EXPECT_EQ(form.Name(), GetParam().Window);
    EXPECT_EQ(form.At("Label1").Caption, "Click to Measure");
    EXPECT_EQ(form.At("Command1").Caption, GetParam().Port1);
    EXPECT_EQ(form.At("Command2").Caption, GetParam().Port2);
    EXPECT_EQ(form.At("Command3").Caption, "Exit");
    bench_.Click(Path("Command1"));
    EXPECT_EQ(bench_.TakeMessages().front(),
              std::string(GetParam().Title) + "|" + GetParam().Prompt1 + "|information|ok");
    EXPECT_EQ(form.At("Command1").Caption, std::string(GetParam().Port1) + " *");
    bench_.Click(Path("Command1"));  // again: one star
    EXPECT_EQ(form.At("Command1").Caption, std::string(GetParam().Port1) + " *");
    bench_.TakeMessages();
    bench_.Click(Path("Command2"));
    EXPECT_EQ(bench_.TakeMessages().front(),
              std::string(GetParam().Title) + "|" + GetParam().Prompt2 + "|information|ok");
    EXPECT_EQ(form.At("Command2").Caption, std::string(GetParam().Port2) + " *");
    bench_.Click(Path("Command3"));
    EXPECT_FALSE(form.Shown);
  };
  PressButton();
  EXPECT_TRUE(bench_.TakeMessages().empty());  // both ports were pressed: no question
  EXPECT_EQ(bench_.At(std::string("Calibration.") + GetParam().Button).Caption.back(), '*');
}

TEST_P(PortCal, ExitWithAPortMissingAsksAndNoStays) {
  bench_.fake.OnModal = [&](Form& form) {
    bench_.Click(Path("Command2"));
    bench_.TakeMessages();
    bench_.fake.Answers = {Answer::No, Answer::No, Answer::Yes};
    bench_.Click(Path("Command3"));
    EXPECT_EQ(bench_.TakeMessages(), Texts{std::string(GetParam().Title) +
                                           "|Open cal not complete. Exit anyway?|question|yes/no"});
    EXPECT_TRUE(form.Shown);
    EXPECT_FALSE(form.OnCloseBox());  // the close box asks likewise
    bench_.Click(Path("Command3"));
    EXPECT_FALSE(form.Shown);
  };
  PressButton();
  // Meant: the step counts as done all the same; only the window's advice tells.
  EXPECT_EQ(bench_.At(std::string("Calibration.") + GetParam().Button).Caption.back(), '*');
  EXPECT_EQ(bench_.Value("Calibration.NextStep").substr(0, 34),
            "Not measured whole, measure again:");
}

TEST_P(PortCal, CaptionsArePlainAgainAtTheNextOpening) {
  bench_.fake.OnModal = [&](Form&) { bench_.Click(Path("Command1")); };
  PressButton();
  bench_.fake.OnModal = [&](Form& form) {
    EXPECT_EQ(form.At("Command1").Caption, GetParam().Port1);
  };
  PressButton();
}

INSTANTIATE_TEST_SUITE_P(
    Each, PortCal,
    ::testing::Values(PortWindow{"O_Cal", "OpenCal", "Open Cal", "Port 1 Open", "Port 2 Open",
                                 "Open Circuit on Port 1  (5.00)",
                                 "Open Circuit on Port 2  (5.00)"},
                      PortWindow{"S_Cal", "ShortCal", "Short Cal", "Port 1 Short", "Port 2 Short",
                                 "Short Circuit on Port 1 (5.00)",
                                 "Short Circuit on Port 2 (5.00)"},
                      PortWindow{"M_Cal", "MatchCal", "Load Cal", "Port 1 Load", "Port 2 Load",
                                 "Matched Load on Port 1", "Matched Load on Port 2"}));

TEST(ThruCalForm, MeasuresTheThroughStandard) {
  CalFixture bench;
  bench.WithThroughKit();
  bench.Choose("Option7");
  bench.fake.OnModal = [&](Form& form) {
    EXPECT_EQ(form.At("Command1").Caption, "Measure");
    EXPECT_EQ(form.At("Command2").Caption, "Exit");
    bench.Click("ThruCalForm.Command1");
    EXPECT_EQ(form.At("Command1").Caption, "Measure *");
    EXPECT_EQ(bench.TakeMessages().front(),
              "Through Cal|Connect through using Through Standard|information|ok");
    bench.Click("ThruCalForm.Command2");
    EXPECT_FALSE(form.Shown);
  };
  bench.Click("Calibration.Thru_Cal");
  EXPECT_EQ(bench.At("Calibration.Thru_Cal").Caption, "Through *");
}

TEST(NonInsertable, TheLoadButtonBringsTheIsolationStep) {
  CalFixture bench;
  bench.WithThroughKit();
  bench.Choose("Option7");
  bench.fake.OnModal = [&](Form& form) {
    bench.fake.Answers = {Answer::Yes};
    bench.fake.Hide(form.Name());
  };
  bench.Press({"O_Cal", "S_Cal", "Thru_Cal"});
  bench.Click("Calibration.App_Cal");
  EXPECT_EQ(bench.TakeMessages(),
            Texts{"Apply Calibration|Calibration Not Complete|exclamation|ok"});
  bench.Press({"M_Cal"});
  bench.Click("Calibration.App_Cal");
  EXPECT_TRUE(bench.TakeMessages().empty());
  EXPECT_TRUE(bench.session.Cal.Cal12Term);
  EXPECT_EQ(bench.session.Cal.CalKind, SweepMode::All);
}

TEST(NonInsertable, APortThatWasLeftOutDoesNotHoldApplyCalBack) {
  // Meant: the check sees the step buttons, not which port was measured; the other port's array
  // keeps what it held.
  CalFixture bench;
  bench.WithThroughKit();
  bench.Choose("Option7");
  bench.session.Standards.CalLoad2.Fill({0.25, 0.5});
  bench.fake.OnModal = [&](Form& form) {
    if (form.Name() != "MatchCal") return;
    bench.Click("MatchCal.Command1");
    bench.fake.Answers = {Answer::Yes};
    bench.Click("MatchCal.Command3");
  };
  bench.Press({"M_Cal"});
  EXPECT_EQ(bench.session.Standards.CalLoad2[0], (Complex{0.25, 0.5}));
  bench.Click("Calibration.App_Cal");
  EXPECT_EQ(bench.TakeMessages(),
            Texts{"Apply Calibration|Calibration Not Complete|exclamation|ok"});
  bench.Press({"O_Cal", "S_Cal", "Thru_Cal"});
  bench.Click("Calibration.App_Cal");
  EXPECT_TRUE(bench.session.Cal.Cal12Term);
}

TEST(NonInsertable, ApplyCalMakesThePortWindowsCaptionsPlain) {
  CalFixture bench;
  bench.WithThroughKit();
  bench.Choose("Option7");
  bench.fake.OnModal = [&](Form& form) {
    bench.Click(form.Name() + ".Command1");
    bench.fake.Hide(form.Name());
  };
  bench.Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal"});
  EXPECT_EQ(bench.At("ThruCalForm.Command1").Caption, "Measure *");
  bench.Click("Calibration.App_Cal");
  EXPECT_EQ(bench.At("OpenCal.Command1").Caption, "Port 1 Open");
  EXPECT_EQ(bench.At("ShortCal.Command1").Caption, "Port 1 Short");
  EXPECT_EQ(bench.At("MatchCal.Command1").Caption, "Port 1 Load");
  EXPECT_EQ(bench.At("ThruCalForm.Command1").Caption, "Measure");
}

}  // namespace
}  // namespace qk::test
