// SPDX-License-Identifier: MIT
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
  CalFixture vna;
  const auto caption = [&](const char* control) {
    return vna.At(std::string("Calibration.") + control).Caption;
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
  EXPECT_EQ(vna.Captions(), kPlain);
}

TEST(Calibration, ShowsTheKitsInUse) {
  CalFixture vna;
  EXPECT_EQ(vna.Value("Calibration.Text4"), "Left");
  EXPECT_EQ(vna.Value("Calibration.Text5"), "Right");
}

TEST(Calibration, EachKindEnablesTheStandardsThatItNeeds) {
  CalFixture vna;
  vna.WithThroughKit();
  vna.Choose("Option3");
  EXPECT_EQ(vna.Enabled(), "O_Cal;S_Cal;M_Cal;");
  vna.Choose("Option4");
  EXPECT_EQ(vna.Enabled(), "Thru_Cal;Iso_Cal;");
  vna.Choose("Option6");
  EXPECT_EQ(vna.Enabled(), "O_Cal;S_Cal;M_Cal;Thru_Cal;Iso_Cal;");
  vna.Choose("Option5");
  EXPECT_EQ(vna.Enabled(), "O_Cal;S_Cal;M_Cal;Thru_Cal;Iso_Cal;Text5;");
  vna.Choose("Option7");
  EXPECT_EQ(vna.Enabled(), "O_Cal;S_Cal;M_Cal;Thru_Cal;");
  EXPECT_TRUE(vna.TakeMessages().empty());
}

TEST(Calibration, NonInsertableWithoutAThroughStandardFallsBackToInsertable) {
  CalFixture vna;
  vna.Choose("Option7");
  EXPECT_EQ(
      vna.TakeMessages(),
      Texts{"Calibration|Cal kit (Port 1/2) does not have calibrated Thru Standard.|none|ok"});
  EXPECT_EQ(vna.Value("Calibration.Option5"), "on");
  EXPECT_EQ(vna.Value("Calibration.Option7"), "off");
  EXPECT_EQ(vna.Enabled(), "O_Cal;S_Cal;M_Cal;Thru_Cal;Iso_Cal;Text5;");
}

struct Opening {
  const char* CalKind;
  bool CalState::*InForce;
  const char* Option;
};
class OpeningKind : public ::testing::TestWithParam<Opening> {};

TEST_P(OpeningKind, IsTheOneLastAppliedOrInForce) {
  ScriptedProgram vna;
  vna.session.Cal.CalKind = CalKindNamed(GetParam().CalKind);
  if (GetParam().InForce != nullptr) vna.session.Cal.*GetParam().InForce = true;
  vna.OpenCalibration();
  EXPECT_EQ(vna.Value(std::string("Calibration.") + GetParam().Option), "on");
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
  CalFixture vna;
  vna.session.Flags.SweepLoaded = false;
  vna.Choose("Option5");
  vna.Click(std::string("Calibration.") + GetParam().Button);
  EXPECT_EQ(vna.TakeMessages(),
            Texts{std::string(GetParam().Title) + "|Set Freq Sweep First|exclamation|ok"});
  EXPECT_EQ(vna.Captions(), kPlain);
  EXPECT_TRUE(vna.port.Writes.empty());
}

INSTANTIATE_TEST_SUITE_P(Every, WithoutASweep,
                         ::testing::Values(Unset{"M_Cal", "Load Cal"}, Unset{"S_Cal", "Short Cal"},
                                           Unset{"O_Cal", "Open Cal"},
                                           Unset{"Thru_Cal", "Through Cal"},
                                           Unset{"Iso_Cal", "Isolation Cal"}));

TEST(Calibration, AStandardIsRefusedDuringASweep) {
  CalFixture vna;
  vna.PretendSweep();
  vna.Click("Calibration.O_Cal");
  EXPECT_EQ(vna.TakeMessages(), Texts{"Calibration|Stop Measurement First|exclamation|ok"});
  EXPECT_EQ(vna.Captions(), kPlain);
}

TEST(Calibration, ApplyCalIsRefusedDuringASweep) {
  CalFixture vna;
  vna.Choose("Option3");
  vna.Press({"O_Cal", "S_Cal", "M_Cal"});
  vna.PretendSweep();
  vna.Click("Calibration.App_Cal");
  EXPECT_EQ(vna.TakeMessages(), Texts{"Calibration|Stop Measurement First|exclamation|ok"});
  EXPECT_FALSE(vna.session.Cal.CalS11);
}

TEST(Calibration, AFailedSweepStillMarksTheStepAndSaysMeasureAgain) {
  CalFixture vna;
  vna.Choose("Option3");
  vna.Click("Calibration.S_Cal");
  EXPECT_EQ(vna.TakeMessages(), (Texts{"Short Cal|Short Circuit on Port 1 (0.00mm)|information|ok",
                                       "Short Cal|No Response|critical|ok"}));
  EXPECT_EQ(vna.Captions(), "Open;Short *;Load;Through;Isolation;");
  EXPECT_EQ(vna.Value("Calibration.NextStep"), "Incomplete, measure again: Short");
}

TEST(Calibration, ImpedanceOtherThan50IsWarnedOfOnceAKind) {
  CalFixture vna;
  vna.session.Impedance.SystemZo = 75;
  const std::string warning =
      "Calibration|System impedance not set to 50 ohms. Ensure your cal kit suits the value "
      "chosen.|information|ok";
  vna.Choose("Option3");
  vna.Click("Calibration.O_Cal");
  EXPECT_EQ(vna.TakeMessages().front(), warning);
  vna.Click("Calibration.S_Cal");
  EXPECT_NE(vna.TakeMessages().front(), warning);
  vna.Choose("Option3");
  vna.Click("Calibration.O_Cal");
  EXPECT_EQ(vna.TakeMessages().front(), warning);
}

TEST(Calibration, ImpedanceIsWarnedOfBeforeStartIsDisabled) {
  CalFixture vna;
  vna.session.Impedance.SystemZo = 75;
  vna.Choose("Option3");
  std::string seen;
  vna.fake.OnAsk = [&](const Message& message) {
    seen += message.Title + (vna.At("Form1.StartMeasurement").Enabled ? " on;" : " off;");
  };
  vna.Click("Calibration.O_Cal");
  EXPECT_EQ(seen.substr(0, 28), "Calibration on;Open Cal off;");
  EXPECT_TRUE(vna.At("Form1.StartMeasurement").Enabled);
}

TEST(Calibration, Exactly50OhmsNeedNoWarning) {
  CalFixture vna;
  vna.Choose("Option3");
  vna.Click("Calibration.O_Cal");
  EXPECT_EQ(vna.TakeMessages().front(), "Open Cal|Open Circuit on Port 1 (0.00mm)|information|ok");
}

TEST(Calibration, StartIsDisabledWhileAStandardIsMeasured) {
  CalFixture vna;
  bool enabledAtPrompt = true;
  vna.fake.OnAsk = [&](const Message&) {
    enabledAtPrompt = vna.At("Form1.StartMeasurement").Enabled;
    EXPECT_FALSE(vna.Click("Form1.StartMeasurement"));
  };
  vna.Choose("Option3");
  vna.Click("Calibration.O_Cal");
  EXPECT_FALSE(enabledAtPrompt);
  EXPECT_TRUE(vna.At("Form1.StartMeasurement").Enabled);
}

TEST(Calibration, AStandardCannotBeStartedTwiceAtATime) {
  CalFixture vna;
  int prompts = 0;
  vna.fake.OnAsk = [&](const Message& message) {
    if (message.MessageIcon != Icon::Information) return;
    ++prompts;
    vna.Click("Calibration.S_Cal");
    vna.Click("Calibration.App_Cal");
    vna.Click("Calibration.Command1");
    vna.Click("Calibration.Option4");
    vna.Click("Calibration.Cls_Cal");
  };
  vna.Choose("Option3");
  vna.Click("Calibration.O_Cal");
  EXPECT_EQ(prompts, 1);
  EXPECT_EQ(vna.Value("Calibration.Option3"), "on");
  EXPECT_TRUE(vna.fake.IsShown("Calibration"));
  EXPECT_EQ(vna.Captions(), "Open *;Short;Load;Through;Isolation;");
}

TEST(Calibration, AnotherKindForgetsTheSteps) {
  CalFixture vna;
  vna.Choose("Option3");
  vna.Press({"O_Cal", "S_Cal", "M_Cal"});
  EXPECT_EQ(vna.Captions(), "Open *;Short *;Load *;Through;Isolation;");
  vna.Choose("Option6");
  EXPECT_EQ(vna.Captions(), kPlain);
  vna.Choose("Option3");
  vna.Click("Calibration.App_Cal");
  EXPECT_EQ(vna.TakeMessages(),
            Texts{"Apply Calibration|S11 Calibration Not Complete|exclamation|ok"});
}

TEST(Calibration, TheSameKindChosenAgainBeginsAnew) {
  CalFixture vna;
  vna.Choose("Option3");
  vna.Press({"O_Cal", "S_Cal"});
  vna.Choose("Option3");
  EXPECT_EQ(vna.Captions(), kPlain);
  EXPECT_EQ(vna.Value("Calibration.NextStep"), "Still to measure: Open, Short, Load");
}

TEST(Calibration, ClosingTheWindowForgetsTheSteps) {
  CalFixture vna;
  vna.Choose("Option6");
  vna.Press({"O_Cal"});
  vna.Click("Calibration.Cls_Cal");
  EXPECT_FALSE(vna.fake.IsShown("Calibration"));
  vna.OpenCalibration();
  EXPECT_EQ(vna.Captions(), kPlain);
  EXPECT_EQ(vna.Value("Calibration.Option5"), "on");
}

TEST(Calibration, LeavingTheWindowOpenKeepsTheSteps) {
  CalFixture vna;
  vna.Choose("Option3");
  vna.Press({"O_Cal"});
  vna.Click("Form1.SetCal");
  EXPECT_EQ(vna.Captions(), "Open *;Short;Load;Through;Isolation;");
}

TEST(ApplyCal, S11NeedsItsThreeStandards) {
  for (const char* missing : {"O_Cal", "S_Cal", "M_Cal"}) {
    CalFixture vna;
    vna.Choose("Option3");
    for (const char* button : {"O_Cal", "S_Cal", "M_Cal"})
      if (std::string(button) != missing) vna.Press({button});
    vna.Click("Calibration.App_Cal");
    EXPECT_EQ(vna.TakeMessages(),
              Texts{"Apply Calibration|S11 Calibration Not Complete|exclamation|ok"});
    EXPECT_FALSE(vna.session.Cal.CalS11);
  }
}

TEST(ApplyCal, InsertableAndS11S21NeedAllFiveTheIsolationToo) {
  for (const char* kind : {"Option5", "Option6"}) {
    CalFixture vna;
    vna.Choose(kind);
    vna.Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal"});
    vna.Click("Calibration.App_Cal");
    EXPECT_EQ(vna.TakeMessages(),
              Texts{"Apply Calibration|Calibration Not Complete|exclamation|ok"});
    EXPECT_FALSE(vna.session.Cal.AnyKind());
  }
}

TEST(ApplyCal, S21NeedsItsThrough) {
  CalFixture vna;
  vna.Choose("Option4");
  vna.Press({"Iso_Cal"});
  vna.Click("Calibration.App_Cal");
  EXPECT_EQ(vna.TakeMessages(), Texts{"Apply Calibration|Through Cal Not Done|exclamation|ok"});
}

TEST(ApplyCal, S21AsksWhetherToGoOnWithoutIsolation) {
  CalFixture vna;
  vna.Choose("Option4");
  vna.Press({"Thru_Cal"});
  vna.fake.Answers = {Answer::No};
  vna.Click("Calibration.App_Cal");
  EXPECT_EQ(vna.TakeMessages(),
            Texts{"Apply Calibration|Isolation Not Done. Continue?|question|yes/no"});
  EXPECT_FALSE(vna.session.Cal.CalS21);
}

TEST(ApplyCal, S21WithTheIsolationDeclinedGoesOnWithoutIt) {
  CalFixture vna;
  vna.Choose("Option4");
  vna.Press({"Thru_Cal"});
  vna.session.Terms.Forward.EX.Fill({0.5, 0.5});
  vna.session.Terms.Forward.ETT.Fill({2, 1});
  vna.fake.Answers = {Answer::Yes};
  vna.Click("Calibration.App_Cal");
  EXPECT_TRUE(vna.session.Cal.CalS21);
  EXPECT_EQ(vna.session.Terms.Forward.EX[3], (Complex{0, 0}));
  EXPECT_EQ(vna.session.Terms.Forward.ETT[3], (Complex{2, 1}));
  EXPECT_EQ(vna.fake.Panels[3], "S21 Cal");
  EXPECT_EQ(vna.session.Cal.CalKind, SweepMode::S21);
}

TEST(ApplyCal, BringsTheSessionIntoTheCalibratedState) {
  CalFixture vna;
  vna.session.Plan.Port1Level = -5;
  vna.session.Cal.CalS21 = true;
  vna.session.Cal.CalInterpolated = true;
  vna.session.Planes.PlaneS11 = vna.session.Planes.ActivePlane = 0.1f;
  vna.OpenEnhancement();
  EXPECT_EQ(vna.Value("EnhancePara.TimeInput"), "100.000");
  vna.Choose("Option3");
  vna.Press({"O_Cal", "S_Cal", "M_Cal"});
  const int presented = vna.surface.Presented;
  vna.Click("Calibration.App_Cal");
  const CalState& cal = vna.session.Cal;
  EXPECT_TRUE(vna.TakeMessages().empty());
  EXPECT_TRUE(cal.CalS11 && cal.CalDataReady);
  EXPECT_FALSE(cal.CalS21 || cal.CalS11S21 || cal.Cal12Term || cal.CalInterpolated);
  EXPECT_EQ(cal.CalKind, SweepMode::S11);
  EXPECT_EQ(vna.fake.Panels[3], "S11 Cal");
  EXPECT_EQ(vna.fake.Panels[4], "P1 Level: -5dBm");
  EXPECT_EQ(vna.session.Plan.CalLevel, -5);
  EXPECT_EQ(vna.session.Planes.PlaneS11, 0);
  EXPECT_EQ(vna.Value("EnhancePara.TimeInput"), "0.000");
  EXPECT_EQ(vna.session.Plan.SavedPlan.NumPoints, vna.session.Plan.NumPoints);
  EXPECT_EQ(vna.Captions(), kPlain);
  EXPECT_GT(vna.surface.Presented, presented);
  EXPECT_EQ(vna.Value("Calibration.NextStep"), "Calibration applied: START measures");
}

TEST(ApplyCal, ASecondTimeAtOnceIsRefused) {
  CalFixture vna;
  vna.Choose("Option3");
  vna.Press({"O_Cal", "S_Cal", "M_Cal"});
  vna.Click("Calibration.App_Cal");
  vna.TakeMessages();
  vna.Click("Calibration.App_Cal");
  EXPECT_EQ(vna.TakeMessages(),
            Texts{"Apply Calibration|S11 Calibration Not Complete|exclamation|ok"});
  EXPECT_TRUE(vna.session.Cal.CalS11);  // the first stays in force
}

TEST(ApplyCal, RenewsTheImpedanceWarning) {
  CalFixture vna;
  vna.session.Impedance.SystemZo = 75;
  vna.Choose("Option3");
  vna.Press({"O_Cal", "S_Cal", "M_Cal"});
  vna.Click("Calibration.App_Cal");
  vna.Click("Calibration.O_Cal");
  EXPECT_EQ(vna.TakeMessages().front().substr(0, 30), "Calibration|System impedance n");
}

TEST(ApplyCal, InsertableKeepsTheLoadsIsolationWithTheBasicMethod) {
  CalFixture vna;
  vna.Choose("Option5");
  vna.fake.OnModal = [&](Form&) { vna.Click("IsoMethod.Command1"); };
  vna.Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal"});
  const std::size_t writes = vna.port.Writes.size();
  vna.Click("Calibration.Iso_Cal");
  EXPECT_EQ(vna.port.Writes.size(), writes);  // nothing is measured
  EXPECT_TRUE(vna.TakeMessages().empty());
  EXPECT_EQ(vna.At("Calibration.Iso_Cal").Caption, "Isolation *");
  vna.session.Terms.IsoFwd1.Fill({3, 3});
  vna.Click("Calibration.App_Cal");
  EXPECT_TRUE(vna.session.Cal.Cal12Term);
  EXPECT_EQ(vna.session.Terms.IsoFwd1[0], (Complex{0, 0}));
  EXPECT_EQ(vna.session.Cal.CalKind, SweepMode::All);
  EXPECT_EQ(vna.fake.Panels[3], "12 Term Cal");
}

TEST(IsoMethod, OffersThreeMethodsAndOpensWithTheBasicOne) {
  CalFixture vna;
  vna.session.Cal.IsoMethod = IsoMethod::TwoSweeps;
  const Form& form = vna.Window("IsoMethod");
  EXPECT_EQ(form.Caption(), "Isolation Calibration (optional step)");
  EXPECT_EQ(form.At("Label1").Caption, "Single step, basic (part of load calibration)");
  for (const char* button : {"Command1", "Command2", "Command3"})
    EXPECT_EQ(form.At(button).Caption, "Click to select this method");
  vna.Choose("Option5");
  vna.fake.OnModal = [&](Form& modal) {
    EXPECT_EQ(modal.Name(), "IsoMethod");
    EXPECT_EQ(vna.session.Cal.IsoMethod, IsoMethod::Basic);
    vna.fake.Hide("IsoMethod");  // closed without a choice
  };
  vna.Click("Calibration.Iso_Cal");
  EXPECT_EQ(vna.session.Cal.IsoMethod, IsoMethod::Basic);
  EXPECT_TRUE(vna.TakeMessages().empty());
}

TEST(IsoMethod, OneDeviceSweepIsPromptedWithTheDeviceOnBothPorts) {
  CalFixture vna;
  vna.Choose("Option5");
  vna.fake.OnModal = [&](Form&) { vna.Click("IsoMethod.Command2"); };
  vna.Click("Calibration.Iso_Cal");
  EXPECT_EQ(vna.session.Cal.IsoMethod, IsoMethod::OneSweep);
  EXPECT_FALSE(vna.fake.IsShown("IsoMethod"));
  EXPECT_EQ(vna.TakeMessages().front(), "Iso Cal|DUT on Port 1, DUT on Port 2 |information|ok");
}

TEST(IsoMethod, TwoDeviceSweepsBeginWithTheDeviceOnPort1) {
  CalFixture vna;
  vna.Choose("Option5");
  vna.fake.OnModal = [&](Form&) { vna.Click("IsoMethod.Command3"); };
  vna.Click("Calibration.Iso_Cal");
  EXPECT_EQ(vna.session.Cal.IsoMethod, IsoMethod::TwoSweeps);
  EXPECT_EQ(vna.TakeMessages().front(),
            "Iso Cal|DUT on Port 1, Matched load on Port 2 |information|ok");
}

TEST(IsoMethod, SecondKindsMeasureIsolationWithoutTheWindow) {
  CalFixture vna;
  vna.fake.OnModal = [](Form& modal) { ADD_FAILURE() << modal.Name(); };
  vna.Choose("Option4");
  vna.Click("Calibration.Iso_Cal");
  EXPECT_EQ(vna.TakeMessages().front(), "Iso Cal|Terminate Ports 1 & 2|information|ok");
}

struct Prompted {
  const char* Option;
  const char* Button;
  const char* Prompt;
};
class Prompt : public ::testing::TestWithParam<Prompted> {};

TEST_P(Prompt, PromptsForWhatToConnect) {
  CalFixture vna;
  vna.session.Kit1.KitOffset = 0.005f;
  vna.session.Kit2.KitOffset = 0.0032f;
  vna.Choose(GetParam().Option);
  vna.Click(std::string("Calibration.") + GetParam().Button);
  EXPECT_EQ(vna.TakeMessages().front(), std::string(GetParam().Prompt) + "|information|ok");
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
  CalFixture vna;
  vna.WithThroughKit();
  const auto next = [&](const char* option) {
    vna.Choose(option);
    return vna.Value("Calibration.NextStep");
  };
  EXPECT_EQ(next("Option3"), "Still to measure: Open, Short, Load");
  EXPECT_EQ(next("Option4"), "Still to measure: Through, Isolation");
  EXPECT_EQ(next("Option5"), "Still to measure: Open, Short, Load, Through, Isolation");
  EXPECT_EQ(next("Option6"), "Still to measure: Open, Short, Load, Through, Isolation");
  EXPECT_EQ(next("Option7"), "Still to measure: Open, Short, Load, Through");
}

TEST(NextStep, NamesTheStandardThatIsBeingMeasured) {
  CalFixture vna;
  vna.Choose("Option3");
  for (const auto& [button, line] :
       {std::pair{"O_Cal", "Measuring Open ..."}, std::pair{"S_Cal", "Measuring Short ..."},
        std::pair{"M_Cal", "Measuring Load ..."}}) {
    std::string seen;
    bool bar = false;
    vna.fake.OnBreathe = [&] {
      seen = vna.Value("Calibration.NextStep");
      bar = vna.At("Calibration.ProgressBar1").Shown;
    };
    vna.Press({button});
    EXPECT_EQ(seen, line);
    EXPECT_TRUE(bar) << line;
    EXPECT_FALSE(vna.At("Calibration.ProgressBar1").Shown) << line;
  }
}

TEST(NextStep, AsksForTheSweepFirst) {
  ScriptedProgram vna;
  vna.OpenCalibration();
  EXPECT_EQ(vna.Value("Calibration.NextStep"), "Set the sweep first");
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
    vna_.WithThroughKit();
    vna_.session.Kit1.KitOffset = 0.005f;
    vna_.Choose("Option7");
  }
  std::string Path(const char* control) const {
    return std::string(GetParam().Window) + "." + control;
  }
  void PressButton() { vna_.Click(std::string("Calibration.") + GetParam().Button); }

  CalFixture vna_;
};

TEST_P(PortCal, MeasuresEachPortAndMarksItsButton) {
  vna_.fake.OnModal = [&](Form& form) {
    EXPECT_EQ(form.Name(), GetParam().Window);
    EXPECT_EQ(form.At("Label1").Caption, "Click to Measure");
    EXPECT_EQ(form.At("Command1").Caption, GetParam().Port1);
    EXPECT_EQ(form.At("Command2").Caption, GetParam().Port2);
    EXPECT_EQ(form.At("Command3").Caption, "Exit");
    vna_.Click(Path("Command1"));
    EXPECT_EQ(vna_.TakeMessages().front(),
              std::string(GetParam().Title) + "|" + GetParam().Prompt1 + "|information|ok");
    EXPECT_EQ(form.At("Command1").Caption, std::string(GetParam().Port1) + " *");
    vna_.Click(Path("Command1"));  // again: one star
    EXPECT_EQ(form.At("Command1").Caption, std::string(GetParam().Port1) + " *");
    vna_.TakeMessages();
    vna_.Click(Path("Command2"));
    EXPECT_EQ(vna_.TakeMessages().front(),
              std::string(GetParam().Title) + "|" + GetParam().Prompt2 + "|information|ok");
    EXPECT_EQ(form.At("Command2").Caption, std::string(GetParam().Port2) + " *");
    vna_.Click(Path("Command3"));
    EXPECT_FALSE(form.Shown);
  };
  PressButton();
  EXPECT_TRUE(vna_.TakeMessages().empty());  // both ports were pressed: no question
  EXPECT_EQ(vna_.At(std::string("Calibration.") + GetParam().Button).Caption.back(), '*');
}

TEST_P(PortCal, ExitWithAPortMissingAsksAndNoStays) {
  vna_.fake.OnModal = [&](Form& form) {
    vna_.Click(Path("Command2"));
    vna_.TakeMessages();
    vna_.fake.Answers = {Answer::No, Answer::No, Answer::Yes};
    vna_.Click(Path("Command3"));
    EXPECT_EQ(vna_.TakeMessages(), Texts{std::string(GetParam().Title) +
                                         "|Open cal not complete. Exit anyway?|question|yes/no"});
    EXPECT_TRUE(form.Shown);
    EXPECT_FALSE(form.OnCloseBox());  // the close box asks likewise
    vna_.Click(Path("Command3"));
    EXPECT_FALSE(form.Shown);
  };
  PressButton();
  // Intentional: the step counts as done all the same; only the window's advice says so.
  EXPECT_EQ(vna_.At(std::string("Calibration.") + GetParam().Button).Caption.back(), '*');
  EXPECT_EQ(vna_.Value("Calibration.NextStep").substr(0, 26), "Incomplete, measure again:");
}

TEST_P(PortCal, CaptionsArePlainAgainAtTheNextOpening) {
  vna_.fake.OnModal = [&](Form&) { vna_.Click(Path("Command1")); };
  PressButton();
  vna_.fake.OnModal = [&](Form& form) { EXPECT_EQ(form.At("Command1").Caption, GetParam().Port1); };
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
  CalFixture vna;
  vna.WithThroughKit();
  vna.Choose("Option7");
  vna.fake.OnModal = [&](Form& form) {
    EXPECT_EQ(form.At("Command1").Caption, "Measure");
    EXPECT_EQ(form.At("Command2").Caption, "Exit");
    vna.Click("ThruCalForm.Command1");
    EXPECT_EQ(form.At("Command1").Caption, "Measure *");
    EXPECT_EQ(vna.TakeMessages().front(),
              "Through Cal|Connect through using Through Standard|information|ok");
    vna.Click("ThruCalForm.Command2");
    EXPECT_FALSE(form.Shown);
  };
  vna.Click("Calibration.Thru_Cal");
  EXPECT_EQ(vna.At("Calibration.Thru_Cal").Caption, "Through *");
}

TEST(NonInsertable, TheLoadButtonBringsTheIsolationStep) {
  CalFixture vna;
  vna.WithThroughKit();
  vna.Choose("Option7");
  vna.fake.OnModal = [&](Form& form) {
    vna.fake.Answers = {Answer::Yes};
    vna.fake.Hide(form.Name());
  };
  vna.Press({"O_Cal", "S_Cal", "Thru_Cal"});
  vna.Click("Calibration.App_Cal");
  EXPECT_EQ(vna.TakeMessages(), Texts{"Apply Calibration|Calibration Not Complete|exclamation|ok"});
  vna.Press({"M_Cal"});
  vna.Click("Calibration.App_Cal");
  EXPECT_TRUE(vna.TakeMessages().empty());
  EXPECT_TRUE(vna.session.Cal.Cal12Term);
  EXPECT_EQ(vna.session.Cal.CalKind, SweepMode::All);
}

TEST(NonInsertable, APortThatWasLeftOutDoesNotHoldApplyCalBack) {
  // Intentional: the check sees the step buttons, not which port was measured; the other port's
  // array keeps what it held.
  CalFixture vna;
  vna.WithThroughKit();
  vna.Choose("Option7");
  vna.session.Standards.CalLoad2.Fill({0.25, 0.5});
  vna.fake.OnModal = [&](Form& form) {
    if (form.Name() != "MatchCal") return;
    vna.Click("MatchCal.Command1");
    vna.fake.Answers = {Answer::Yes};
    vna.Click("MatchCal.Command3");
  };
  vna.Press({"M_Cal"});
  EXPECT_EQ(vna.session.Standards.CalLoad2[0], (Complex{0.25, 0.5}));
  vna.Click("Calibration.App_Cal");
  EXPECT_EQ(vna.TakeMessages(), Texts{"Apply Calibration|Calibration Not Complete|exclamation|ok"});
  vna.Press({"O_Cal", "S_Cal", "Thru_Cal"});
  vna.Click("Calibration.App_Cal");
  EXPECT_TRUE(vna.session.Cal.Cal12Term);
}

TEST(NonInsertable, ApplyCalMakesThePortWindowsCaptionsPlain) {
  CalFixture vna;
  vna.WithThroughKit();
  vna.Choose("Option7");
  vna.fake.OnModal = [&](Form& form) {
    vna.Click(form.Name() + ".Command1");
    vna.fake.Hide(form.Name());
  };
  vna.Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal"});
  EXPECT_EQ(vna.At("ThruCalForm.Command1").Caption, "Measure *");
  vna.Click("Calibration.App_Cal");
  EXPECT_EQ(vna.At("OpenCal.Command1").Caption, "Port 1 Open");
  EXPECT_EQ(vna.At("ShortCal.Command1").Caption, "Port 1 Short");
  EXPECT_EQ(vna.At("MatchCal.Command1").Caption, "Port 1 Load");
  EXPECT_EQ(vna.At("ThruCalForm.Command1").Caption, "Measure");
}

}  // namespace
}  // namespace qk::test
