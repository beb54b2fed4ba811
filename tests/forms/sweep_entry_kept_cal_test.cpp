// SPDX-License-Identifier: MIT
// The sweep entry while a calibration is in force: dropped, interpolated or restored.
#include <gtest/gtest.h>

#include "forms/sweep_entry_fixture.h"

namespace qk::test {
namespace {

TEST(SweepEntry, NoDropsTheCalibration) {
  SweepFixture vna;
  vna.Calibrated();
  vna.session.Cal.CalInterpolated = true;
  vna.fake.Answers = {Answer::No};
  vna.fake.OnAsk = [&vna](const Message&) {
    EXPECT_FALSE(vna.session.Cal.CalInterpolated);
    vna.session.Flags.SweepRunning = true;
  };
  vna.Enter("100", "200", "51");
  EXPECT_EQ(vna.TakeMessages(), Texts{kKeepQuestion});
  EXPECT_FALSE(vna.session.Cal.AnyKind());
  EXPECT_TRUE(vna.session.Cal.CalDataReady);  // intentional: left as it was
  EXPECT_FALSE(vna.session.Cal.CalInterpolated);
  EXPECT_FALSE(vna.session.Flags.SweepRunning);
  const auto& events = vna.fake.Events;
  EXPECT_NE(std::find(events.begin(), events.end(), "panel 3 UnCal"), events.end());
  EXPECT_EQ(vna.fake.Panels[3], "UNCAL");  // after the load
  // The calibration dropped is not asked for again, nor its plan and terms used.
  vna.session.Terms.Forward.ED.Fill({9, 9});
  vna.Enter("2", "3000", "101");
  EXPECT_EQ(vna.fake.MessageTexts().size(), 1u);  // the start below the range
  EXPECT_EQ(vna.session.Terms.Forward.ED[7].re, 9);
}

TEST(SweepEntry, YesInterpolatesTheTermsToTheNewGrid) {
  SweepFixture vna;
  vna.Calibrated();  // 3 MHz to 3 GHz, 101 points
  vna.fake.Answers = {Answer::Yes};
  vna.Enter("32.97", "2970.03", "51");  // every second point of the calibration, from the second
  EXPECT_EQ(vna.TakeMessages(), Texts{kKeepQuestion});
  EXPECT_TRUE(vna.session.Cal.CalInterpolated);
  EXPECT_TRUE(vna.session.Cal.CalS11);
  EXPECT_EQ(vna.fake.Panels[3], "S11 Cal ?");
  EXPECT_EQ(vna.Value("Calibration.NextStep").find("Calibration in force: START measures. "), 0u);
  const double perHertz = 0.01 / 29.97e6;
  for (int i = 0; i < 51; ++i)
    EXPECT_NEAR(vna.session.Terms.Forward.ED[i].re,
                (vna.session.Plan.Frequency(i) - 3e6) * perHertz, 1e-7)  // 32-bit knots
        << i;
}

TEST(SweepEntry, TheSamePlanRestoresTheTermsAndClearsTheMark) {
  SweepFixture vna;
  vna.Calibrated();
  vna.session.Terms.Forward.ED.Fill({9, 9});
  vna.fake.Answers = {Answer::Yes};
  vna.Enter("3", "3000", "101");
  EXPECT_FALSE(vna.session.Cal.CalInterpolated);
  EXPECT_EQ(vna.session.Terms.Forward.ED[7].re, 0.07);
  EXPECT_EQ(vna.fake.Panels[3], "S11 Cal");
}

TEST(SweepEntry, APlanThatDiffersInOneValueOnlyIsInterpolated) {
  struct Plan {
    const char *Start, *Stop, *Points;
  };
  for (const Plan& plan :
       {Plan{"3", "3000", "51"}, Plan{"32.97", "3000", "101"}, Plan{"3", "2970.03", "101"}}) {
    SweepFixture vna;
    vna.Calibrated();  // 3 MHz to 3 GHz, 101 points
    vna.fake.Answers = {Answer::Yes};
    vna.Enter(plan.Start, plan.Stop, plan.Points);
    EXPECT_TRUE(vna.session.Cal.CalInterpolated);
    EXPECT_EQ(vna.Value("Calibration.PntsCombo"), plan.Points);
    EXPECT_EQ(vna.fake.Panels[3], "S11 Cal ?");
  }
}

TEST(SweepEntry, AStartOutsideTheSavedSpanRestoresPlanAndTerms) {
  SweepFixture vna;
  vna.CalibratedFrom100To200MHz();
  vna.Click("Calibration.Option2");
  vna.fake.Answers = {Answer::Yes};
  vna.Enter("99000", "150000", "51");
  EXPECT_EQ(vna.TakeMessages(),
            (Texts{kKeepQuestion,
                   "Test Signals|Start frequency outside existing calibration span. Calibration "
                   "values will be restored|exclamation|ok"}));
  EXPECT_FALSE(vna.session.Cal.CalInterpolated);
  EXPECT_EQ(vna.session.Plan.FreqUnit, 1e6);
  EXPECT_EQ(vna.Value("Calibration.Option1"), "on");
  EXPECT_EQ(vna.Fields(), (Texts{"100.0000", "200.0000", "1.0000", "101"}));
  EXPECT_EQ(vna.fake.Panels[7], "1.0000 MHz");
  EXPECT_EQ(vna.session.Plan.NumPoints, 101);
  EXPECT_EQ(vna.instrument.SweepRam[1], 101);
  EXPECT_EQ(vna.fake.Panels[3], "S11 Cal");
}

TEST(SweepEntry, AStopOutsideTheSavedSpanRestoresPlanAndTerms) {
  SweepFixture vna;
  vna.CalibratedFrom100To200MHz();
  vna.fake.Answers = {Answer::Yes};
  vna.Enter("100", "201", "51");
  EXPECT_EQ(vna.TakeMessages(),
            (Texts{kKeepQuestion,
                   "Test Signals|Stop frequency outside existing calibration span. Calibration "
                   "values will be restored|exclamation|ok"}));
  EXPECT_EQ(vna.session.Plan.StopFreq, 200e6);
}

TEST(SweepEntry, BothEndsOutsideTheSavedSpanAreReportedOnce) {
  SweepFixture vna;
  vna.CalibratedFrom100To200MHz();
  vna.fake.Answers = {Answer::Yes};
  vna.Enter("50", "250", "51");
  EXPECT_EQ(vna.TakeMessages().size(), 2u);  // the question and one message
}

TEST(SweepEntry, AnInterpolationStartsAgainFromTheTermsAsCalibrated) {
  SweepFixture vna;
  vna.Calibrated();
  vna.fake.Answers = {Answer::Yes, Answer::Yes};
  vna.Enter("500", "600", "51");
  vna.Enter("3", "3000", "101");
  EXPECT_FALSE(vna.session.Cal.CalInterpolated);
  EXPECT_EQ(vna.session.Terms.Forward.ED[100].re, 1.0);
}

TEST(SweepEntry, AnotherLevelMarksAKeptCalibration) {
  SweepFixture vna;
  vna.Calibrated();
  vna.fake.Answers = {Answer::Yes};
  vna.Pick("Calibration.LvlCombo", "-10");
  vna.Enter("3", "3000", "101");
  EXPECT_FALSE(vna.session.Cal.CalInterpolated);
  EXPECT_EQ(vna.fake.Panels[3], "S11 Cal ?");
}

}  // namespace
}  // namespace qk::test
