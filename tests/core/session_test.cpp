// SPDX-License-Identifier: MIT
// The session's defaults, and the texts that follow from the calibration state.
#include "core/session.h"

#include <gtest/gtest.h>

namespace qk {
namespace {

TEST(Session, BeginsWithThePlanOf101PointsFrom3MHzTo3GHz) {
  const auto session = MakeSession();
  const SweepPlan& plan = session->Plan;
  EXPECT_EQ(plan.StartFreq, 3e6);
  EXPECT_EQ(plan.StopFreq, 3e9);
  EXPECT_EQ(plan.StepFreq, 2.997e9 / 100);
  EXPECT_EQ(plan.NumPoints, 101);
  EXPECT_EQ(plan.Port1Level, 0);
  EXPECT_EQ(plan.Port2LevelTarget, 13);
  EXPECT_EQ(plan.FreqUnit, 1e6);
  EXPECT_EQ(plan.SavedPlan.StartFreq, 3e6);
  EXPECT_EQ(plan.SavedPlan.StopFreq, 3e9);
  EXPECT_EQ(plan.SavedPlan.NumPoints, 101);
  EXPECT_DOUBLE_EQ(plan.Frequency(100), 3e9);
}

TEST(Session, BeginsWithFourChannelsOfS11InDecibels) {
  const auto session = MakeSession();
  for (int n = 1; n <= 4; ++n) {
    const ChannelSettings& channel = session->Channel(n);
    EXPECT_EQ(channel.Units, Unit::Db);
    EXPECT_EQ(channel.Reference, 0);
    EXPECT_EQ(channel.RefPosition, 4);
    EXPECT_EQ(channel.Scale, 10);
    EXPECT_EQ(channel.Parameter, Parameter::S11);
    EXPECT_EQ(channel.GraphType, GraphType::LogMag);
    EXPECT_EQ(channel.Active, n == 1);
    EXPECT_FALSE(channel.MemoryValid);
    EXPECT_FALSE(channel.MemoryParameter);
    EXPECT_FALSE(channel.LimitsOn);
    for (const std::size_t i : {std::size_t{0}, std::size_t{1}, std::size_t{1024}}) {
      EXPECT_EQ(channel.UpperLimit[i], 1000);
      EXPECT_EQ(channel.LowerLimit[i], -1000);
      EXPECT_EQ(channel.Value[i], 0);
      EXPECT_EQ(channel.MemoryRe[i], 0);
    }
  }
}

TEST(Session, BeginsWithReflectionsThatAreFiniteInDecibels) {
  const auto session = MakeSession();
  for (const int k : {0, 500, 1023}) {
    EXPECT_EQ(session->Data.S11[k], (Complex{1e-6, 0}));
    EXPECT_EQ(session->Data.S22[k], (Complex{1e-6, 0}));
    EXPECT_EQ(session->Data.S21[k], (Complex{0, 0}));
    EXPECT_EQ(session->Data.S12[k], (Complex{0, 0}));
    EXPECT_EQ(session->Data.RawS11[k], (Complex{0, 0}));
    EXPECT_EQ(session->Terms.Forward.ERT[k], (Complex{0, 0}));
  }
}

TEST(Session, BeginsIdleUncalibratedAndAtOneAverage) {
  const auto session = MakeSession();
  EXPECT_TRUE(session->Flags.SweepIdle);
  EXPECT_TRUE(session->Flags.Idle());
  EXPECT_FALSE(session->Flags.SweepRunning);
  EXPECT_FALSE(session->Flags.SweepLoaded);
  EXPECT_FALSE(session->Cal.AnyKind());
  EXPECT_FALSE(session->Cal.CalDataReady);
  EXPECT_EQ(session->Averaging.Averages, 1);
  EXPECT_EQ(session->Averaging.SmoothingPercent, 0);
  EXPECT_EQ(session->SweepStatusText, "Sweep Off");
  EXPECT_EQ(session->Display.DisplayMode, DisplayMode::Data);
  EXPECT_EQ(session->Display.PlotRefreshPoints, 4);
  EXPECT_EQ(session->Impedance.SystemZo, 50.0f);
  EXPECT_EQ(session->Planes.RefPlaneUnits, PlaneUnit::Mm);
  EXPECT_EQ(session->TimeDomain.TdWindow, TdWindow::Rect);
  EXPECT_EQ(session->TimeDomain.TdDcTerm, TdDcTerm::Auto);
  EXPECT_EQ(session->Eeprom.RxDcCorrectionAddr, 20219);
}

TEST(Session, BeginsWithNothingDueAndNothingKnownOfTheReceiver) {
  const auto session = MakeSession();
  const SweepFlags& f = session->Flags;
  EXPECT_FALSE(f.SigGenActive || f.OffsetUpdateDue || f.AveragesChangeDue || f.AveragesOffDue ||
               f.DwellChangeDue || f.DwellOn || f.LevelChangeDue || f.ExitPending ||
               f.ReplyTimedOut);
  EXPECT_FALSE(session->Receiver.DcOffsetValid);
  EXPECT_EQ(session->Receiver.OffsetTicks, 0);
  EXPECT_EQ(session->Levels.LevelTableStart, 3e6);
  EXPECT_EQ(session->Levels.LevelTableStep, 2e7);
  EXPECT_EQ(session->Eeprom.Port1LevelTableAddr, 1024);
  EXPECT_EQ(session->Eeprom.Port2LevelTableAddr, 5888);
  EXPECT_EQ(session->Eeprom.RxCalDataAddr, 11008);
}

TEST(Session, BeginsWithFiveNanosecondsBeforeZeroInTheTimeDomainAndNoPlane) {
  const auto session = MakeSession();
  const TimeDomainState& td = session->TimeDomain;
  EXPECT_EQ(td.TdT1, -5.0f);
  EXPECT_EQ(td.TdT2, 161.667);
  EXPECT_EQ(td.TdStep, 166.667 / 1023);
  const PlaneState& p = session->Planes;
  for (const float plane : {p.ActivePlane, p.ActiveDelay, p.PlaneS11, p.DelayS11, p.PlaneS21,
                            p.DelayS21, p.PlaneS12, p.DelayS12, p.PlaneS22, p.DelayS22})
    EXPECT_EQ(plane, 0);
  const ImpedanceState& z = session->Impedance;
  EXPECT_FALSE(z.ZoConvertOn || z.ExternalZoMatch || z.DeEmbedOn);
}

TEST(Session, BeginsWithTheDefaultKits) {
  const auto session = MakeSession();
  for (const CalKit* kit : {&session->Kit1, &session->Kit2}) {
    EXPECT_EQ(kit->KitName, "Default");
    EXPECT_EQ(kit->KitC0, 2.5e-15);
    EXPECT_EQ(kit->KitC1, 2.9e-25);
    EXPECT_EQ(kit->KitC2, -1e-35);
    EXPECT_EQ(kit->KitC3, 2.4e-46);
    EXPECT_EQ(kit->KitOffset, 0);
    EXPECT_EQ(kit->KitDelay, 0);
    EXPECT_FALSE(kit->KitHasLoad);
    EXPECT_FALSE(kit->KitHasThru);
  }
  EXPECT_TRUE(session->Kit1.KitMale);
  EXPECT_FALSE(session->Kit2.KitMale);
}

TEST(InitSession, ForgetsEverythingButTheInstallFolder) {
  const auto session = MakeSession();
  session->InstallFolder = "/somewhere";
  session->Plan.NumPoints = 801;
  session->Cal.Cal12Term = true;
  session->Terms.Forward.ED.Fill({1, 1});
  session->Kit1.KitName = "Other";
  session->Averaging.SmoothOn = true;
  session->Display.DisplayMode = DisplayMode::MemoryMath;
  session->Panels[3] = "12 Term Cal";
  InitSession(*session);
  EXPECT_EQ(session->InstallFolder, "/somewhere");
  EXPECT_EQ(session->Plan.NumPoints, 101);
  EXPECT_FALSE(session->Cal.AnyKind());
  EXPECT_EQ(session->Terms.Forward.ED[5], (Complex{0, 0}));
  EXPECT_EQ(session->Kit1.KitName, "Default");
  EXPECT_FALSE(session->Averaging.SmoothOn);
  EXPECT_EQ(session->Display.DisplayMode, DisplayMode::Data);
  EXPECT_EQ(session->Panels[3], "");
}

TEST(CalStatusText, NamesTheKindInForce) {
  CalState cal;
  EXPECT_EQ(CalStatusText(cal), "UNCAL");
  cal.CalS21 = true;
  EXPECT_EQ(CalStatusText(cal), "S21 Cal");
  cal = {.CalS11 = true};
  EXPECT_EQ(CalStatusText(cal), "S11 Cal");
  cal = {.Cal12Term = true};
  EXPECT_EQ(CalStatusText(cal), "12 Term Cal");
  cal = {.CalS11S21 = true};
  EXPECT_EQ(CalStatusText(cal), "S11+S21 Cal");
}

TEST(CalStatusText, TakesTheLaterOfTheOrderS21S11TwelveTermBoth) {
  CalState cal{.CalS11 = true, .CalS21 = true};
  EXPECT_EQ(CalStatusText(cal), "S11 Cal");
  cal.Cal12Term = true;
  EXPECT_EQ(CalStatusText(cal), "12 Term Cal");
  cal.CalS11S21 = true;
  EXPECT_EQ(CalStatusText(cal), "S11+S21 Cal");
}

TEST(CalDoubtful, IsACalibrationInterpolatedOrAtAnotherLevel) {
  const auto session = MakeSession();
  EXPECT_FALSE(CalDoubtful(*session));
  session->Cal.CalInterpolated = true;
  EXPECT_TRUE(CalDoubtful(*session));
  session->Cal.CalInterpolated = false;
  session->Plan.Port1Level = -5;
  EXPECT_TRUE(CalDoubtful(*session));
  session->Plan.CalLevel = -5;
  EXPECT_FALSE(CalDoubtful(*session));
}

TEST(Colours, AreTheseSevenAtFirst) {
  const Colours colours = MakeSession()->Colour;
  EXPECT_EQ(colours.BackColour, 0xFFFFFFu);
  EXPECT_EQ(colours.GridColour, 0x808080u);
  EXPECT_EQ(colours.DataColour, 0x000080u);
  EXPECT_EQ(colours.MemoryColour, 0x808000u);
  EXPECT_EQ(colours.TextColour, 0x000000u);
  EXPECT_EQ(colours.OutlineColour, 0x000000u);
  EXPECT_EQ(colours.LimitColour, 0x800000u);
}

}  // namespace
}  // namespace qk
