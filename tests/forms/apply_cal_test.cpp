// SPDX-License-Identifier: MIT
// Apply Cal: what each kind needs, and the calibrated session.
#include <gtest/gtest.h>

#include "forms/calibration_fixture.h"

namespace qk::test {
namespace {

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
  EXPECT_EQ(vna.Captions(), kPlainCaptions);
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

}  // namespace
}  // namespace qk::test
