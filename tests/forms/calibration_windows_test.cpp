// SPDX-License-Identifier: MIT
// The windows beside Calibration: isolation method, one standard port by port, the through; and the
// line with the next step.
#include <gtest/gtest.h>

#include "forms/calibration_fixture.h"

namespace qk::test {
namespace {

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
