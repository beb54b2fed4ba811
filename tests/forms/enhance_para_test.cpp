// SPDX-License-Identifier: MIT
#include "forms/enhance_para.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "control/verbs.h"
#include "support/program_fixture.h"

namespace qk::test {
namespace {

struct EnhanceFixture : ScriptedProgram {
  EnhanceFixture() { OpenEnhancement(); }
  void Enter(const char* field, const char* text) {
    Type(std::string("EnhancePara.") + field, text);
  }
  Texts Apply() {
    Click("EnhancePara.ApplyEnhance");
    return TakeMessages();
  }
};

TEST(EnhancePara, ControlsBearTheirCaptions) {
  EnhanceFixture vna;
  const auto caption = [&](const char* control) {
    return vna.At(std::string("EnhancePara.") + control).Caption;
  };
  EXPECT_EQ(vna.Window("EnhancePara").Caption(), "Enhancement Set Up");
  EXPECT_EQ(caption("InputAverages"), "Averages (1-255)");
  EXPECT_EQ(caption("InputSmoothing"), "Smoothing (0-10%)");
  EXPECT_EQ(caption("SmoothAper"), "Smoothing  (pts)");
  EXPECT_EQ(caption("ListDwell"), "Dwell Time");
  EXPECT_EQ(caption("ListLevel"), "Port 1 Level        (dBm)");
  EXPECT_EQ(caption("TimeInput"), "Enter Value");
  EXPECT_EQ(caption("ListRefPlaneInput"), "Select Units");
  EXPECT_EQ(caption("Command1"), "Auto Ref");
  EXPECT_EQ(caption("ApplyEnhance"), "Apply");
  EXPECT_EQ(caption("CloseEnhance"), "Exit");
  EXPECT_EQ(caption("Label4"), "Ch 1, measuring S11");
  EXPECT_TRUE(vna.At("EnhancePara.SmoothAper").ReadOnly);
  EXPECT_EQ(vna.At("EnhancePara.ListDwell").Entries, (Texts{"0.5 ms", "2.5 ms"}));
  EXPECT_EQ(vna.At("EnhancePara.ListRefPlaneInput").Entries, (Texts{"cm", "mm", "ns", "ps"}));
  EXPECT_EQ(vna.At("EnhancePara.ListLevel").Entries.back(), "-20");
}

TEST(EnhancePara, OpensWithWhatIsInForce) {
  ScriptedProgram vna;
  vna.session.Averaging.Averages = 8;
  vna.session.Averaging.SmoothingPercent = 4;
  vna.session.Flags.DwellOn = true;
  vna.session.Plan.Port1Level = -12;
  vna.session.Display.ActiveChannel = 2;
  vna.session.Channel(2).Parameter = Parameter::S22;
  vna.session.Planes.PlaneS22 = 0.0125f;
  vna.OpenEnhancement();
  EXPECT_EQ(vna.Value("EnhancePara.InputAverages"), "8");
  EXPECT_EQ(vna.Value("EnhancePara.InputSmoothing"), "4");
  EXPECT_EQ(vna.Value("EnhancePara.SmoothAper"), "3");  // 4 % of 101 is 4, made odd
  EXPECT_EQ(vna.Value("EnhancePara.ListDwell"), "2.5 ms");
  EXPECT_EQ(vna.Value("EnhancePara.ListLevel"), "-12");
  EXPECT_EQ(vna.Value("EnhancePara.TimeInput"), "12.500");
  EXPECT_EQ(vna.Value("EnhancePara.ListRefPlaneInput"), "mm");
  EXPECT_EQ(vna.At("EnhancePara.Label4").Caption, "Ch 2, measuring S22");
}

TEST(EnhancePara, OpeningRaisesZeroAveragesToOne) {
  ScriptedProgram vna;
  vna.session.Averaging.Averages = 0;
  vna.OpenEnhancement();
  EXPECT_EQ(vna.session.Averaging.Averages, 1);
  EXPECT_EQ(vna.Value("EnhancePara.InputAverages"), "1");
}

TEST(EnhancePara, AveragesWaitForTheirSwitch) {
  EnhanceFixture vna;
  vna.Enter("InputAverages", "8");
  vna.Apply();
  EXPECT_EQ(vna.session.Averaging.AveragesSet, 8);
  EXPECT_EQ(vna.session.Averaging.Averages, 1);
  EXPECT_EQ(vna.instrument.CountOf("Y8"), 0u);
}

TEST(EnhancePara, AveragesGoOutAtOnceWhileIdleWithTheSwitchOn) {
  EnhanceFixture vna;
  vna.session.Averaging.AverOn = true;
  vna.Enter("InputAverages", "8");
  vna.Apply();
  EXPECT_EQ(vna.session.Averaging.Averages, 8);
  EXPECT_EQ(vna.instrument.CountOf("Y8"), 1u);
  EXPECT_FALSE(vna.session.Flags.AveragesChangeDue);
  vna.Apply();  // nothing changed: nothing is sent again
  EXPECT_EQ(vna.instrument.CountOf("Y8"), 1u);
}

TEST(EnhancePara, ThreeHundredAveragesShow255) {
  EnhanceFixture vna;
  vna.Enter("InputAverages", "300");
  vna.Apply();
  EXPECT_EQ(vna.Value("EnhancePara.InputAverages"), "255");
  EXPECT_EQ(vna.session.Averaging.AveragesSet, 255);
}

TEST(EnhancePara, ZeroAveragesShow0AndCorrectTheCountInForceOnly) {
  EnhanceFixture vna;
  vna.session.Averaging.Averages = 8;
  vna.Enter("InputAverages", "0");
  vna.Apply();
  EXPECT_EQ(vna.Value("EnhancePara.InputAverages"), "0");
  EXPECT_EQ(vna.session.Averaging.AveragesSet, 0);
  EXPECT_EQ(vna.session.Averaging.Averages, 1);
}

TEST(EnhancePara, ZeroAveragesWithTheSwitchOnAreSentAsOne) {
  EnhanceFixture vna;
  vna.session.Averaging.AverOn = true;
  vna.Enter("InputAverages", "0");
  vna.Apply();
  EXPECT_EQ(vna.instrument.Commands.at(1), (Bytes{'Y', '8', 1}));
  EXPECT_EQ(vna.session.Averaging.Averages, 1);
}

TEST(EnhancePara, ZeroAveragesDuringASweepAreDueAtItsEnd) {
  EnhanceFixture vna;
  vna.session.Averaging.AverOn = true;
  vna.session.Averaging.Averages = 8;
  vna.PretendSweep();
  vna.Enter("InputAverages", "0");
  vna.Apply();
  EXPECT_EQ(vna.session.Averaging.Averages, 1);
  EXPECT_EQ(vna.session.Averaging.AveragesSet, 0);
  EXPECT_TRUE(vna.session.Flags.AveragesChangeDue);
  EXPECT_TRUE(vna.port.Writes.empty());
}

class TypedAverages : public ::testing::TestWithParam<std::pair<const char*, int>> {};
TEST_P(TypedAverages, AreLimitedNotRefused) {
  EnhanceFixture vna;
  vna.Enter("InputAverages", GetParam().first);
  EXPECT_TRUE(vna.Apply().empty());
  EXPECT_EQ(vna.session.Averaging.AveragesSet, GetParam().second);
}
INSTANTIATE_TEST_SUITE_P(Bad, TypedAverages,
                         ::testing::Values(std::pair{"", 0}, std::pair{"abc", 0},
                                           std::pair{"1e300", 255}, std::pair{"99999999", 255},
                                           std::pair{"16,5", 16}, std::pair{"-1e300", -32768},
                                           std::pair{"12.4", 12}));

class TypedSmoothing : public ::testing::TestWithParam<std::pair<const char*, int>> {};
TEST_P(TypedSmoothing, IsLimitedNotRefused) {
  EnhanceFixture vna;
  vna.Enter("InputSmoothing", GetParam().first);
  EXPECT_TRUE(vna.Apply().empty());
  EXPECT_EQ(vna.session.Averaging.SmoothingPercent, GetParam().second);
  EXPECT_EQ(vna.Value("EnhancePara.InputSmoothing"), std::to_string(GetParam().second));
}
INSTANTIATE_TEST_SUITE_P(Bad, TypedSmoothing,
                         ::testing::Values(std::pair{"12", 10}, std::pair{"-3", 0},
                                           std::pair{"", 0}, std::pair{"x", 0},
                                           std::pair{"1e300", 10}, std::pair{"4,9", 4}));

TEST(EnhancePara, WhatDiffersFromWhatIsInForcePendsUntilApply) {
  EnhanceFixture vna;
  const auto pending = [&vna](const char* control) {
    return vna.At(std::string("EnhancePara.") + control).Pending();
  };
  constexpr const char* kEntries[] = {"InputAverages", "InputSmoothing", "Text1", "Check3"};
  for (const char* control : kEntries) EXPECT_FALSE(pending(control)) << control;
  vna.Type("EnhancePara.InputAverages", "8");
  vna.Type("EnhancePara.InputSmoothing", "5");
  vna.Type("EnhancePara.Text1", "75");
  vna.Window("EnhancePara").Tick("Check3", true);
  for (const char* control : kEntries) EXPECT_TRUE(pending(control)) << control;
  vna.Click("EnhancePara.ApplyEnhance");
  for (const char* control : kEntries) EXPECT_FALSE(pending(control)) << control;
}

TEST(EnhancePara, ApplyShowsTheSmoothedPoints) {
  EnhanceFixture vna;
  vna.Enter("InputSmoothing", "6");
  vna.Apply();
  EXPECT_EQ(vna.Value("EnhancePara.SmoothAper"), "5");
  vna.Enter("InputSmoothing", "1");
  vna.Apply();
  EXPECT_EQ(vna.Value("EnhancePara.SmoothAper"), "1");
}

TEST(EnhancePara, DwellGoesOutWithEachApplyWhileIdle) {
  EnhanceFixture vna;
  vna.Pick("EnhancePara.ListDwell", "2.5 ms");
  vna.Apply();
  EXPECT_TRUE(vna.session.Flags.DwellOn);
  EXPECT_EQ(vna.instrument.Commands.back(), (Bytes{'D', 1}));
  vna.Pick("EnhancePara.ListDwell", "0.5 ms");
  vna.Apply();
  EXPECT_EQ(vna.instrument.Commands.back(), (Bytes{'D', 0}));
}

TEST(EnhancePara, LevelGoesOutAtOnceWhileIdle) {
  EnhanceFixture vna;
  vna.session.Flags.SweepLoaded = true;
  vna.session.Flags.LevelChangeDue = true;
  vna.Pick("EnhancePara.ListLevel", "-3");
  EXPECT_TRUE(vna.Apply().empty());
  EXPECT_EQ(vna.session.Plan.Port1Level, -3);
  EXPECT_EQ(vna.fake.Panels[4], "P1 Level: -3dBm");
  EXPECT_EQ(vna.instrument.CountOf("N"), 1u);
  EXPECT_FALSE(vna.session.Flags.LevelChangeDue);
  vna.Apply();  // the same level is not sent again
  EXPECT_EQ(vna.instrument.CountOf("N"), 1u);
}

TEST(EnhancePara, ALevelBeforeTheSweepIsSetIsReported) {
  EnhanceFixture vna;
  vna.Pick("EnhancePara.ListLevel", "-3");
  EXPECT_EQ(vna.Apply(), Texts{"Port1 Level Set|Sweep Not Set|exclamation|ok"});
}

TEST(EnhancePara, DuringASweepEverythingWaitsForItsEnd) {
  EnhanceFixture vna;
  vna.session.Averaging.AverOn = true;
  vna.session.Flags.SweepLoaded = true;
  vna.PretendSweep();
  vna.Enter("InputAverages", "8");
  vna.Pick("EnhancePara.ListDwell", "2.5 ms");
  vna.Pick("EnhancePara.ListLevel", "-3");
  EXPECT_TRUE(vna.Apply().empty());
  const SweepFlags& flags = vna.session.Flags;
  EXPECT_TRUE(flags.AveragesChangeDue && flags.DwellChangeDue && flags.LevelChangeDue);
  EXPECT_EQ(vna.session.Averaging.Averages, 1);
  EXPECT_TRUE(vna.fake.IsShown("Updating"));
  EXPECT_TRUE(vna.port.Writes.empty());
}

TEST(EnhancePara, EachDueChangeAloneShowsTheUpdatingWindow) {
  // Dwell is always due in a sweep; a level or a count only when it changes.
  EnhanceFixture vna;
  vna.PretendSweep();
  vna.Apply();
  EXPECT_TRUE(vna.session.Flags.DwellChangeDue);
  EXPECT_FALSE(vna.session.Flags.AveragesChangeDue || vna.session.Flags.LevelChangeDue);
  EXPECT_TRUE(vna.fake.IsShown("Updating"));
}

TEST(EnhancePara, NothingDueShowsNoUpdatingWindow) {
  EnhanceFixture vna;
  vna.Apply();
  EXPECT_FALSE(vna.fake.IsShown("Updating"));
}

TEST(EnhancePara, WithoutAnAnswerTheInstrumentIsReportedSilent) {
  EnhanceFixture vna;
  vna.instrument.Silent = true;
  vna.session.Averaging.AverOn = true;
  vna.Enter("InputAverages", "8");
  EXPECT_EQ(vna.Apply(), (Texts{"Set Averages|No Response|exclamation|ok",
                                "Dwell Time Set|No Response|exclamation|ok"}));
  EXPECT_EQ(vna.session.Averaging.Averages, 1);  // what the instrument has in force
}

struct PlaneEntry {
  const char* Unit;
  const char* Value;
  double Metres;
};
class TypedPlane : public ::testing::TestWithParam<PlaneEntry> {};
TEST_P(TypedPlane, BecomesMetresAndADelay) {
  EnhanceFixture vna;
  vna.Pick("EnhancePara.ListRefPlaneInput", GetParam().Unit);
  vna.Enter("TimeInput", GetParam().Value);
  EXPECT_TRUE(vna.Apply().empty());
  const PlaneState& planes = vna.session.Planes;
  const double tolerance = std::abs(GetParam().Metres) * 1e-6;
  EXPECT_EQ(NameOf(planes.RefPlaneUnits), GetParam().Unit);
  EXPECT_NEAR(planes.PlaneS11, GetParam().Metres, tolerance);
  EXPECT_NEAR(planes.DelayS11 * kSpeedOfLight, GetParam().Metres, tolerance);
  EXPECT_EQ(planes.ActivePlane, planes.PlaneS11);
  EXPECT_EQ(planes.ActiveDelay, planes.DelayS11);
  EXPECT_EQ(planes.PlaneS21, 0);
}
INSTANTIATE_TEST_SUITE_P(Every, TypedPlane,
                         ::testing::Values(PlaneEntry{"cm", "10", 0.1},
                                           PlaneEntry{"mm", "-100", -0.1},
                                           PlaneEntry{"ns", "2", 0.599584916},
                                           PlaneEntry{"ps", "500", 0.149896229},
                                           PlaneEntry{"mm", "", 0}, PlaneEntry{"ns", "abc", 0},
                                           PlaneEntry{"mm", "2,5", 0.002}));

TEST(EnhancePara, AnEndlessPlaneStaysANumber) {
  EnhanceFixture vna;
  vna.Enter("TimeInput", "1e300");
  vna.Apply();
  EXPECT_TRUE(std::isfinite(vna.session.Planes.PlaneS11));
  EXPECT_TRUE(std::isfinite(vna.session.Planes.DelayS11));
}

TEST(EnhancePara, ZeroClearsThePlaneOfTheActiveParameter) {
  ScriptedProgram vna;
  vna.session.Display.ActiveChannel = 4;
  vna.session.Channel(4).Parameter = Parameter::S12;
  vna.session.Planes.PlaneS12 = 0.5f;
  vna.session.Planes.DelayS12 = 1e-9f;
  vna.OpenEnhancement();
  vna.Type("EnhancePara.TimeInput", "0");
  vna.Click("EnhancePara.ApplyEnhance");
  EXPECT_EQ(vna.session.Planes.PlaneS12, 0);
  EXPECT_EQ(vna.session.Planes.DelayS12, 0);
}

TEST(EnhancePara, AnAppliedPlaneStaysAsTypedUntilAnotherParameterIsActive) {
  EnhanceFixture vna;
  vna.session.Channel(2).Parameter = Parameter::S21;
  vna.session.Planes.PlaneS21 = 0.25f;
  vna.Pick("EnhancePara.ListRefPlaneInput", "ns");
  vna.Enter("TimeInput", "10");
  vna.Apply();
  EXPECT_EQ(vna.Value("EnhancePara.TimeInput"), "10");
  EXPECT_EQ(vna.Value("EnhancePara.ListRefPlaneInput"), "ns");
  vna.OpenDisplay();
  vna.Click("DisplayPara.Option1");
  vna.Pick("DisplayPara.ActChSel", "2");
  vna.Click("DisplayPara.ApplyDisplay");
  EXPECT_EQ(vna.Value("EnhancePara.TimeInput"), "250.000");
  EXPECT_EQ(vna.Value("EnhancePara.ListRefPlaneInput"), "mm");
  vna.Apply();
  EXPECT_EQ(vna.session.Planes.PlaneS21, 0.25f);
}

TEST(EnhancePara, APlaneThatIsShownRoundedStaysWhenSomethingElseIsApplied) {
  for (const PlaneUnit unit : {PlaneUnit::Mm, PlaneUnit::Ns}) {
    EnhanceFixture vna;
    SetActivePlane(vna.session, vna.fake.host().windows, 0.1310273);
    vna.session.Planes.RefPlaneUnits = unit;
    vna.fake.SessionLoaded();  // a session file was loaded
    EXPECT_EQ(vna.Value("EnhancePara.TimeInput"), unit == PlaneUnit::Ns ? "0.437" : "131.027");
    vna.Enter("InputSmoothing", "2");
    vna.Apply();
    EXPECT_EQ(vna.session.Planes.PlaneS11, 0.1310273f);
    EXPECT_EQ(vna.session.Planes.RefPlaneUnits, unit);
    vna.Enter("TimeInput", "0.437");  // entered unchanged: taken
    vna.Apply();
    EXPECT_NE(vna.session.Planes.PlaneS11, 0.1310273f);
  }
}

TEST(EnhancePara, AnotherUnitForATypedNumberIsAnotherPlane) {
  EnhanceFixture vna;
  vna.Enter("TimeInput", "10");
  vna.Pick("EnhancePara.ListRefPlaneInput", "cm");
  EXPECT_EQ(vna.Value("EnhancePara.TimeInput"), "10");
  vna.Apply();
  EXPECT_FLOAT_EQ(vna.session.Planes.PlaneS11, 0.1f);
}

TEST(EnhancePara, AnotherUnitShowsThePlaneInForceInThatUnitAndMovesItNot) {
  EnhanceFixture vna;
  SetActivePlane(vna.session, vna.fake.host().windows, 0.1);
  vna.fake.SessionLoaded();
  const float plane = vna.session.Planes.PlaneS11;
  for (const auto& [unit, text] :
       {std::pair{"cm", "10.000"}, {"ns", "0.334"}, {"ps", "333.564"}, {"mm", "100.000"}}) {
    vna.Pick("EnhancePara.ListRefPlaneInput", unit);
    EXPECT_EQ(vna.Value("EnhancePara.TimeInput"), text) << unit;
    vna.Apply();
    EXPECT_EQ(vna.session.Planes.PlaneS11, plane) << unit;
    EXPECT_EQ(NameOf(vna.session.Planes.RefPlaneUnits), unit);
  }
}

// 100 mm, cm chosen, applied: still 100 mm.
TEST(EnhancePara, AnAppliedPlaneIsReExpressedByAnotherUnitToo) {
  EnhanceFixture vna;
  vna.Enter("TimeInput", "100");
  vna.Apply();
  vna.Pick("EnhancePara.ListRefPlaneInput", "cm");
  EXPECT_EQ(vna.Value("EnhancePara.TimeInput"), "10.000");
  vna.Apply();
  EXPECT_FLOAT_EQ(vna.session.Planes.PlaneS11, 0.1f);
}

TEST(EnhancePara, APlaneTypedForOneParameterIsNotAppliedToAnother) {
  EnhanceFixture vna;
  vna.session.Channel(2).Parameter = Parameter::S21;
  vna.Enter("TimeInput", "10");
  SelectActiveChannel(vna.session, vna.fake.host().windows, 2);
  EXPECT_EQ(vna.Value("EnhancePara.TimeInput"), "0.000");
}

TEST(EnhancePara, AnAppliedLevelAndDwellFollowTheSession) {
  EnhanceFixture vna;
  vna.Pick("EnhancePara.ListLevel", "-3");
  vna.Pick("EnhancePara.ListDwell", "2.5 ms");
  vna.Apply();
  vna.session.Flags.DwellOn = false;
  SetPort1Level(vna.program.controller().rig(), -7);  // as the calibration window does
  EXPECT_EQ(vna.Value("EnhancePara.ListLevel"), "-7");
  EXPECT_EQ(vna.Value("EnhancePara.ListDwell"), "0.5 ms");
}

TEST(EnhancePara, AfterASessionFileItsAveragesAreShown) {
  EnhanceFixture vna;
  vna.Enter("InputAverages", "4");
  vna.Apply();
  vna.session.Averaging.Averages = 16;
  vna.fake.SessionLoaded();
  EXPECT_EQ(vna.Value("EnhancePara.InputAverages"), "16");
  vna.Enter("InputAverages", "7");
  vna.fake.SessionLoaded();
  EXPECT_EQ(vna.Value("EnhancePara.InputAverages"), "7");  // typed, not applied
}

TEST(EnhancePara, AfterASessionFileThePlaneIsShownInItsUnits) {
  const std::pair<PlaneUnit, const char*> rows[] = {{PlaneUnit::Cm, "29.979"},
                                                    {PlaneUnit::Mm, "299.792"},
                                                    {PlaneUnit::Ns, "1.000"},
                                                    {PlaneUnit::Ps, "1000.000"}};
  EnhanceFixture vna;
  for (const auto& [unit, text] : rows) {
    vna.session.Planes.ActivePlane = 0.299792458f;
    vna.session.Planes.RefPlaneUnits = unit;
    vna.fake.SessionLoaded();
    EXPECT_EQ(vna.Value("EnhancePara.ListRefPlaneInput"), NameOf(unit));
    EXPECT_EQ(vna.Value("EnhancePara.TimeInput"), text);
  }
}

struct AutoRefFixture : EnhanceFixture {
  AutoRefFixture() { session.Cal.Cal12Term = true; }
  // A line of that delay in the parameter's data; steps small enough not to wrap.
  void Line(ComplexArray& data, double seconds) {
    for (int i = 0; i < session.Plan.NumPoints; ++i) {
      const double phase = -2 * std::numbers::pi * session.Plan.Frequency(i) * seconds;
      data.Set(i, {std::cos(phase), std::sin(phase)});
    }
  }
  Texts AutoRef() {
    Click("EnhancePara.Command1");
    return TakeMessages();
  }
  // The first difference counts twice over the number of points: N / N of an even delay.
  void Activate(const char* parameter) {
    session.Channel(1).Parameter = *Named<Parameter>(parameter);
  }
};

TEST(AutoRef, FindsTheLengthOfALineInTransmission) {
  AutoRefFixture vna;
  vna.Activate("S21");
  vna.Line(vna.session.Data.S21, 1e-9);
  EXPECT_TRUE(vna.AutoRef().empty());
  EXPECT_NEAR(vna.session.Planes.PlaneS21, 0.299792458, 1e-5);
  EXPECT_NEAR(vna.session.Planes.DelayS21, 1e-9, 1e-13);
  EXPECT_EQ(vna.Value("EnhancePara.ListRefPlaneInput"), "mm");
  EXPECT_EQ(vna.Value("EnhancePara.TimeInput").substr(0, 5), "299.7");
}

TEST(AutoRef, TakesHalfTheWayOfAReflection) {
  AutoRefFixture vna;
  vna.Line(vna.session.Data.S11, 1e-9);
  EXPECT_TRUE(vna.AutoRef().empty());
  EXPECT_NEAR(vna.session.Planes.PlaneS11, 0.149896229, 1e-5);
}

TEST(AutoRef, TheMarkerTableReportsThePlaneThatItFound) {
  AutoRefFixture vna;
  vna.session.Display.MarkersOn = true;
  vna.program.graphs().RedrawAll(true);
  vna.Line(vna.session.Data.S11, 1e-9);
  vna.AutoRef();
  EXPECT_NE(FindText(vna.surface.Background(), "149.90 mm"), nullptr);
}

TEST(AutoRef, CountsTheFirstDifferenceTwiceOverTheNumberOfPoints) {
  AutoRefFixture vna;
  vna.Activate("S21");
  vna.session.Plan.NumPoints = 51;
  vna.session.Plan.StepFreq = 1e6;
  // One step of -1 degree between the first two points, nothing behind.
  const double rad = std::numbers::pi / 180;
  for (int i = 0; i < 51; ++i)
    vna.session.Data.S21.Set(i, i == 0 ? Complex{1, 0} : Complex{std::cos(rad), -std::sin(rad)});
  vna.AutoRef();
  const double step = 1 / 360.0 / 1e6;
  EXPECT_NEAR(vna.session.Planes.DelayS21, 2 * step / 51, 1e-4 * step);
}

TEST(AutoRef, NeedsACalibration) {
  AutoRefFixture vna;
  vna.session.Cal.Cal12Term = false;
  EXPECT_EQ(vna.AutoRef(), Texts{"AutoRef|No Calibration|exclamation|ok"});
}

TEST(AutoRef, NeedsTheParameterThatTheCalibrationMeasures) {
  AutoRefFixture vna;
  vna.session.Cal.Cal12Term = false;
  vna.session.Cal.CalS21 = true;
  EXPECT_EQ(vna.AutoRef(), Texts{"AutoRef|Warning: No Cal for Active Graph|none|ok"});
  vna.session.Cal.CalS21 = false;
  vna.session.Cal.CalS11 = true;
  vna.Activate("S22");
  EXPECT_EQ(vna.AutoRef(), Texts{"AutoRef|Warning: No Cal for Active Graph|none|ok"});
}

TEST(AutoRef, RefusesANonZeroPlaneInWhicheverUnitItWasTyped) {
  for (const char* unit : {"cm", "mm", "ns", "ps"}) {
    AutoRefFixture vna;
    vna.Pick("EnhancePara.ListRefPlaneInput", unit);
    vna.Enter("TimeInput", "1");
    vna.Apply();
    const float plane = vna.session.Planes.PlaneS11;
    EXPECT_EQ(vna.AutoRef(),
              Texts{"AutoRef Start Value|Set Ref Plane value to 0mm and Apply first|none|ok"});
    EXPECT_EQ(vna.session.Planes.PlaneS11, plane);
  }
}

TEST(EnhancePara, ExitClosesWithoutApplying) {
  EnhanceFixture vna;
  vna.Enter("InputSmoothing", "5");
  vna.Click("EnhancePara.CloseEnhance");
  EXPECT_FALSE(vna.fake.IsShown("EnhancePara"));
  EXPECT_EQ(vna.session.Averaging.SmoothingPercent, 0);
}

TEST(AutoRef, TakesTheActiveParametersPlaneBeforeItRefuses) {
  AutoRefFixture vna;
  vna.session.Cal.Cal12Term = false;
  vna.session.Cal.CalS21 = true;
  vna.session.Planes.ActivePlane = 0.5f;
  vna.session.Planes.PlaneS11 = 0.25f;
  EXPECT_EQ(vna.AutoRef(), Texts{"AutoRef|Warning: No Cal for Active Graph|none|ok"});
  EXPECT_EQ(vna.session.Planes.ActivePlane, 0.25f);
  // Another channel's plane is no reason to refuse.
  vna.Activate("S21");
  EXPECT_TRUE(vna.AutoRef().empty());
}

// The 32-bit plane takes the typed number first and is then multiplied: rounded once in 64 bits,
// each of these would end in another digit.
TEST(EnhancePara, ATypedPlaneIsRoundedTo32BitsBeforeItsUnitAndAfter) {
  struct Typed {
    const char *Unit, *Number;
    float Metres;
  };
  for (const Typed& typed :
       {Typed{"cm", "0.03", 0.000299999985f}, Typed{"cm", "0.06", 0.00059999997f},
        Typed{"mm", "0.05", 5.00000024e-05f}, Typed{"mm", "0.1", 0.000100000005f},
        Typed{"ns", "0.23", 0.0689522699f}, Typed{"ns", "0.43", 0.128910765f},
        Typed{"ps", "0.01", 2.99792441e-06f}, Typed{"ps", "0.02", 5.99584882e-06f}}) {
    EnhanceFixture vna;
    vna.Pick("EnhancePara.ListRefPlaneInput", typed.Unit);
    vna.Enter("TimeInput", typed.Number);
    vna.Apply();
    EXPECT_EQ(vna.session.Planes.PlaneS11, typed.Metres) << typed.Number << " " << typed.Unit;
  }
}

}  // namespace
}  // namespace qk::test
