// SPDX-License-Identifier: MIT
// The window Calibration: kinds, standards, steps.
#include "forms/calibration.h"

#include <gtest/gtest.h>

#include "forms/calibration_fixture.h"

namespace qk::test {
namespace {

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
  EXPECT_EQ(vna.Captions(), kPlainCaptions);
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
  EXPECT_EQ(vna.Captions(), kPlainCaptions);
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
  EXPECT_EQ(vna.Captions(), kPlainCaptions);
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
  EXPECT_EQ(vna.Captions(), kPlainCaptions);
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
  EXPECT_EQ(vna.Captions(), kPlainCaptions);
  EXPECT_EQ(vna.Value("Calibration.NextStep"), "Still to measure: Open, Short, Load");
}

TEST(Calibration, ClosingTheWindowForgetsTheSteps) {
  CalFixture vna;
  vna.Choose("Option6");
  vna.Press({"O_Cal"});
  vna.Click("Calibration.Cls_Cal");
  EXPECT_FALSE(vna.fake.IsShown("Calibration"));
  vna.OpenCalibration();
  EXPECT_EQ(vna.Captions(), kPlainCaptions);
  EXPECT_EQ(vna.Value("Calibration.Option5"), "on");
}

TEST(Calibration, LeavingTheWindowOpenKeepsTheSteps) {
  CalFixture vna;
  vna.Choose("Option3");
  vna.Press({"O_Cal"});
  vna.Click("Form1.SetCal");
  EXPECT_EQ(vna.Captions(), "Open *;Short;Load;Through;Isolation;");
}

}  // namespace
}  // namespace qk::test
