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
  EnhanceFixture bench;
  const auto caption = [&](const char* control) {
    return bench.At(std::string("EnhancePara.") + control).Caption;
  };
  EXPECT_EQ(bench.Window("EnhancePara").Caption(), "Enhancement Set Up");
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
  EXPECT_TRUE(bench.At("EnhancePara.SmoothAper").ReadOnly);
  EXPECT_EQ(bench.At("EnhancePara.ListDwell").Entries, (Texts{"0.5 ms", "2.5 ms"}));
  EXPECT_EQ(bench.At("EnhancePara.ListRefPlaneInput").Entries, (Texts{"cm", "mm", "ns", "ps"}));
  EXPECT_EQ(bench.At("EnhancePara.ListLevel").Entries.back(), "-20");
}

TEST(EnhancePara, OpensWithWhatIsInForce) {
  ScriptedProgram bench;
  bench.session.Averaging.Averages = 8;
  bench.session.Averaging.SmoothingPercent = 4;
  bench.session.Flags.DwellOn = true;
  bench.session.Plan.Port1Level = -12;
  bench.session.Display.ActiveChannel = 2;
  bench.session.Channel(2).Parameter = Parameter::S22;
  bench.session.Planes.PlaneS22 = 0.0125f;
  bench.OpenEnhancement();
  EXPECT_EQ(bench.Value("EnhancePara.InputAverages"), "8");
  EXPECT_EQ(bench.Value("EnhancePara.InputSmoothing"), "4");
  EXPECT_EQ(bench.Value("EnhancePara.SmoothAper"), "3");  // 4 % of 101 is 4, made odd
  EXPECT_EQ(bench.Value("EnhancePara.ListDwell"), "2.5 ms");
  EXPECT_EQ(bench.Value("EnhancePara.ListLevel"), "-12");
  EXPECT_EQ(bench.Value("EnhancePara.TimeInput"), "12.500");
  EXPECT_EQ(bench.Value("EnhancePara.ListRefPlaneInput"), "mm");
  EXPECT_EQ(bench.At("EnhancePara.Label4").Caption, "Ch 2, measuring S22");
}

TEST(EnhancePara, OpeningRaisesZeroAveragesToOne) {
  ScriptedProgram bench;
  bench.session.Averaging.Averages = 0;
  bench.OpenEnhancement();
  EXPECT_EQ(bench.session.Averaging.Averages, 1);
  EXPECT_EQ(bench.Value("EnhancePara.InputAverages"), "1");
}

TEST(EnhancePara, AveragesWaitForTheirSwitch) {
  EnhanceFixture bench;
  bench.Enter("InputAverages", "8");
  bench.Apply();
  EXPECT_EQ(bench.session.Averaging.AveragesSet, 8);
  EXPECT_EQ(bench.session.Averaging.Averages, 1);
  EXPECT_EQ(bench.instrument.CountOf("Y8"), 0u);
}

TEST(EnhancePara, AveragesGoOutAtOnceWhileIdleWithTheSwitchOn) {
  EnhanceFixture bench;
  bench.session.Averaging.AverOn = true;
  bench.Enter("InputAverages", "8");
  bench.Apply();
  EXPECT_EQ(bench.session.Averaging.Averages, 8);
  EXPECT_EQ(bench.instrument.CountOf("Y8"), 1u);
  EXPECT_FALSE(bench.session.Flags.AveragesChangeDue);
  bench.Apply();  // nothing changed: nothing is sent again
  EXPECT_EQ(bench.instrument.CountOf("Y8"), 1u);
}

TEST(EnhancePara, ThreeHundredAveragesShow255) {
  EnhanceFixture bench;
  bench.Enter("InputAverages", "300");
  bench.Apply();
  EXPECT_EQ(bench.Value("EnhancePara.InputAverages"), "255");
  EXPECT_EQ(bench.session.Averaging.AveragesSet, 255);
}

TEST(EnhancePara, ZeroAveragesShow0AndCorrectTheCountInForceOnly) {
  EnhanceFixture bench;
  bench.session.Averaging.Averages = 8;
  bench.Enter("InputAverages", "0");
  bench.Apply();
  EXPECT_EQ(bench.Value("EnhancePara.InputAverages"), "0");
  EXPECT_EQ(bench.session.Averaging.AveragesSet, 0);
  EXPECT_EQ(bench.session.Averaging.Averages, 1);
}

TEST(EnhancePara, ZeroAveragesWithTheSwitchOnAreSentAsOne) {
  EnhanceFixture bench;
  bench.session.Averaging.AverOn = true;
  bench.Enter("InputAverages", "0");
  bench.Apply();
  EXPECT_EQ(bench.instrument.Commands.at(1), (Bytes{'Y', '8', 1}));
  EXPECT_EQ(bench.session.Averaging.Averages, 1);
}

TEST(EnhancePara, ZeroAveragesDuringASweepAreDueAtItsEnd) {
  EnhanceFixture bench;
  bench.session.Averaging.AverOn = true;
  bench.session.Averaging.Averages = 8;
  bench.PretendSweep();
  bench.Enter("InputAverages", "0");
  bench.Apply();
  EXPECT_EQ(bench.session.Averaging.Averages, 1);
  EXPECT_EQ(bench.session.Averaging.AveragesSet, 0);
  EXPECT_TRUE(bench.session.Flags.AveragesChangeDue);
  EXPECT_TRUE(bench.port.Writes.empty());
}

class TypedAverages : public ::testing::TestWithParam<std::pair<const char*, int>> {};
TEST_P(TypedAverages, AreLimitedNotRefused) {
  EnhanceFixture bench;
  bench.Enter("InputAverages", GetParam().first);
  EXPECT_TRUE(bench.Apply().empty());
  EXPECT_EQ(bench.session.Averaging.AveragesSet, GetParam().second);
}
INSTANTIATE_TEST_SUITE_P(Bad, TypedAverages,
                         ::testing::Values(std::pair{"", 0}, std::pair{"abc", 0},
                                           std::pair{"1e300", 255}, std::pair{"99999999", 255},
                                           std::pair{"16,5", 16}, std::pair{"-1e300", -32768},
                                           std::pair{"12.4", 12}));

class TypedSmoothing : public ::testing::TestWithParam<std::pair<const char*, int>> {};
TEST_P(TypedSmoothing, IsLimitedNotRefused) {
  EnhanceFixture bench;
  bench.Enter("InputSmoothing", GetParam().first);
  EXPECT_TRUE(bench.Apply().empty());
  EXPECT_EQ(bench.session.Averaging.SmoothingPercent, GetParam().second);
  EXPECT_EQ(bench.Value("EnhancePara.InputSmoothing"), std::to_string(GetParam().second));
}
INSTANTIATE_TEST_SUITE_P(Bad, TypedSmoothing,
                         ::testing::Values(std::pair{"12", 10}, std::pair{"-3", 0},
                                           std::pair{"", 0}, std::pair{"x", 0},
                                           std::pair{"1e300", 10}, std::pair{"4,9", 4}));

TEST(EnhancePara, ApplyShowsTheSmoothedPoints) {
  EnhanceFixture bench;
  bench.Enter("InputSmoothing", "6");
  bench.Apply();
  EXPECT_EQ(bench.Value("EnhancePara.SmoothAper"), "5");
  bench.Enter("InputSmoothing", "1");
  bench.Apply();
  EXPECT_EQ(bench.Value("EnhancePara.SmoothAper"), "1");
}

TEST(EnhancePara, DwellGoesOutWithEachApplyWhileIdle) {
  EnhanceFixture bench;
  bench.Pick("EnhancePara.ListDwell", "2.5 ms");
  bench.Apply();
  EXPECT_TRUE(bench.session.Flags.DwellOn);
  EXPECT_EQ(bench.instrument.Commands.back(), (Bytes{'D', 1}));
  bench.Pick("EnhancePara.ListDwell", "0.5 ms");
  bench.Apply();
  EXPECT_EQ(bench.instrument.Commands.back(), (Bytes{'D', 0}));
}

TEST(EnhancePara, LevelGoesOutAtOnceWhileIdle) {
  EnhanceFixture bench;
  bench.session.Flags.SweepLoaded = true;
  bench.session.Flags.LevelChangeDue = true;
  bench.Pick("EnhancePara.ListLevel", "-3");
  EXPECT_TRUE(bench.Apply().empty());
  EXPECT_EQ(bench.session.Plan.Port1Level, -3);
  EXPECT_EQ(bench.fake.Panels[4], "P1 Level: -3dBm");
  EXPECT_EQ(bench.instrument.CountOf("N"), 1u);
  EXPECT_FALSE(bench.session.Flags.LevelChangeDue);
  bench.Apply();  // the same level is not sent again
  EXPECT_EQ(bench.instrument.CountOf("N"), 1u);
}

TEST(EnhancePara, ALevelBeforeTheSweepIsSetIsTold) {
  EnhanceFixture bench;
  bench.Pick("EnhancePara.ListLevel", "-3");
  EXPECT_EQ(bench.Apply(), Texts{"Port1 Level Set|Sweep Not Set|exclamation|ok"});
}

TEST(EnhancePara, DuringASweepEverythingWaitsForItsEnd) {
  EnhanceFixture bench;
  bench.session.Averaging.AverOn = true;
  bench.session.Flags.SweepLoaded = true;
  bench.PretendSweep();
  bench.Enter("InputAverages", "8");
  bench.Pick("EnhancePara.ListDwell", "2.5 ms");
  bench.Pick("EnhancePara.ListLevel", "-3");
  EXPECT_TRUE(bench.Apply().empty());
  const SweepFlags& flags = bench.session.Flags;
  EXPECT_TRUE(flags.AveragesChangeDue && flags.DwellChangeDue && flags.LevelChangeDue);
  EXPECT_EQ(bench.session.Averaging.Averages, 1);
  EXPECT_TRUE(bench.fake.IsShown("Updating"));
  EXPECT_TRUE(bench.port.Writes.empty());
}

TEST(EnhancePara, EachDueChangeAloneShowsTheUpdatingWindow) {
  // Dwell is always due in a sweep; a level or a count only when it changes.
  EnhanceFixture bench;
  bench.PretendSweep();
  bench.Apply();
  EXPECT_TRUE(bench.session.Flags.DwellChangeDue);
  EXPECT_FALSE(bench.session.Flags.AveragesChangeDue || bench.session.Flags.LevelChangeDue);
  EXPECT_TRUE(bench.fake.IsShown("Updating"));
}

TEST(EnhancePara, NothingDueShowsNoUpdatingWindow) {
  EnhanceFixture bench;
  bench.Apply();
  EXPECT_FALSE(bench.fake.IsShown("Updating"));
}

TEST(EnhancePara, WithoutAnAnswerTheInstrumentIsToldSilent) {
  EnhanceFixture bench;
  bench.instrument.Silent = true;
  bench.session.Averaging.AverOn = true;
  bench.Enter("InputAverages", "8");
  EXPECT_EQ(bench.Apply(), (Texts{"Set Averages|No Response|exclamation|ok",
                                  "Dwell Time Set|No Response|exclamation|ok"}));
  EXPECT_EQ(bench.session.Averaging.Averages, 1);  // what the instrument has in force
}

struct PlaneEntry {
  const char* Unit;
  const char* Value;
  double Metres;
};
class TypedPlane : public ::testing::TestWithParam<PlaneEntry> {};
TEST_P(TypedPlane, BecomesMetresAndADelay) {
  EnhanceFixture bench;
  bench.Pick("EnhancePara.ListRefPlaneInput", GetParam().Unit);
  bench.Enter("TimeInput", GetParam().Value);
  EXPECT_TRUE(bench.Apply().empty());
  const PlaneState& planes = bench.session.Planes;
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
  EnhanceFixture bench;
  bench.Enter("TimeInput", "1e300");
  bench.Apply();
  EXPECT_TRUE(std::isfinite(bench.session.Planes.PlaneS11));
  EXPECT_TRUE(std::isfinite(bench.session.Planes.DelayS11));
}

TEST(EnhancePara, ZeroClearsThePlaneOfTheActiveParameter) {
  ScriptedProgram bench;
  bench.session.Display.ActiveChannel = 4;
  bench.session.Channel(4).Parameter = Parameter::S12;
  bench.session.Planes.PlaneS12 = 0.5f;
  bench.session.Planes.DelayS12 = 1e-9f;
  bench.OpenEnhancement();
  bench.Type("EnhancePara.TimeInput", "0");
  bench.Click("EnhancePara.ApplyEnhance");
  EXPECT_EQ(bench.session.Planes.PlaneS12, 0);
  EXPECT_EQ(bench.session.Planes.DelayS12, 0);
}

TEST(EnhancePara, AnAppliedPlaneStaysAsTypedUntilAnotherParameterIsActive) {
  EnhanceFixture bench;
  bench.session.Channel(2).Parameter = Parameter::S21;
  bench.session.Planes.PlaneS21 = 0.25f;
  bench.Pick("EnhancePara.ListRefPlaneInput", "ns");
  bench.Enter("TimeInput", "10");
  bench.Apply();
  EXPECT_EQ(bench.Value("EnhancePara.TimeInput"), "10");
  EXPECT_EQ(bench.Value("EnhancePara.ListRefPlaneInput"), "ns");
  bench.OpenDisplay();
  bench.Click("DisplayPara.Option1");
  bench.Pick("DisplayPara.ActChSel", "2");
  bench.Click("DisplayPara.ApplyDisplay");
  EXPECT_EQ(bench.Value("EnhancePara.TimeInput"), "250.000");
  EXPECT_EQ(bench.Value("EnhancePara.ListRefPlaneInput"), "mm");
  bench.Apply();
  EXPECT_EQ(bench.session.Planes.PlaneS21, 0.25f);
}

TEST(EnhancePara, APlaneTypedForOneParameterIsNotAppliedToAnother) {
  EnhanceFixture bench;
  bench.session.Channel(2).Parameter = Parameter::S21;
  bench.Enter("TimeInput", "10");
  SelectActiveChannel(bench.session, bench.fake.host().windows, 2);
  EXPECT_EQ(bench.Value("EnhancePara.TimeInput"), "0.000");
}

TEST(EnhancePara, AnAppliedLevelAndDwellFollowTheSession) {
  EnhanceFixture bench;
  bench.Pick("EnhancePara.ListLevel", "-3");
  bench.Pick("EnhancePara.ListDwell", "2.5 ms");
  bench.Apply();
  bench.session.Flags.DwellOn = false;
  SetPort1Level(bench.program.controller().rig(), -7);  // as the calibration window does
  EXPECT_EQ(bench.Value("EnhancePara.ListLevel"), "-7");
  EXPECT_EQ(bench.Value("EnhancePara.ListDwell"), "0.5 ms");
}

TEST(EnhancePara, AfterASessionFileItsAveragesAreShown) {
  EnhanceFixture bench;
  bench.Enter("InputAverages", "4");
  bench.Apply();
  bench.session.Averaging.Averages = 16;
  bench.fake.Refresh("EnhancePara");
  EXPECT_EQ(bench.Value("EnhancePara.InputAverages"), "16");
  bench.Enter("InputAverages", "7");
  bench.fake.Refresh("EnhancePara");
  EXPECT_EQ(bench.Value("EnhancePara.InputAverages"), "7");  // typed, not applied
}

TEST(EnhancePara, AfterASessionFileThePlaneIsShownInItsUnits) {
  const std::pair<PlaneUnit, const char*> rows[] = {{PlaneUnit::Cm, "29.979"},
                                                    {PlaneUnit::Mm, "299.792"},
                                                    {PlaneUnit::Ns, "1.000"},
                                                    {PlaneUnit::Ps, "1000.000"}};
  EnhanceFixture bench;
  for (const auto& [unit, text] : rows) {
    bench.session.Planes.ActivePlane = 0.299792458f;
    bench.session.Planes.RefPlaneUnits = unit;
    bench.fake.Refresh("EnhancePara");
    EXPECT_EQ(bench.Value("EnhancePara.ListRefPlaneInput"), NameOf(unit));
    EXPECT_EQ(bench.Value("EnhancePara.TimeInput"), text);
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
  AutoRefFixture bench;
  bench.Activate("S21");
  bench.Line(bench.session.Data.S21, 1e-9);
  EXPECT_TRUE(bench.AutoRef().empty());
  EXPECT_NEAR(bench.session.Planes.PlaneS21, 0.299792458, 1e-5);
  EXPECT_NEAR(bench.session.Planes.DelayS21, 1e-9, 1e-13);
  EXPECT_EQ(bench.Value("EnhancePara.ListRefPlaneInput"), "mm");
  EXPECT_EQ(bench.Value("EnhancePara.TimeInput").substr(0, 5), "299.7");
}

TEST(AutoRef, TakesHalfTheWayOfAReflection) {
  AutoRefFixture bench;
  bench.Line(bench.session.Data.S11, 1e-9);
  EXPECT_TRUE(bench.AutoRef().empty());
  EXPECT_NEAR(bench.session.Planes.PlaneS11, 0.149896229, 1e-5);
}

TEST(AutoRef, CountsTheFirstDifferenceTwiceOverTheNumberOfPoints) {
  AutoRefFixture bench;
  bench.Activate("S21");
  bench.session.Plan.NumPoints = 51;
  bench.session.Plan.StepFreq = 1e6;
  // One step of -1 degree between the first two points, nothing behind.
  const double rad = std::numbers::pi / 180;
  for (int i = 0; i < 51; ++i)
    bench.session.Data.S21.Set(i, i == 0 ? Complex{1, 0} : Complex{std::cos(rad), -std::sin(rad)});
  bench.AutoRef();
  const double step = 1 / 360.0 / 1e6;
  EXPECT_NEAR(bench.session.Planes.DelayS21, 2 * step / 51, 1e-4 * step);
}

TEST(AutoRef, NeedsACalibration) {
  AutoRefFixture bench;
  bench.session.Cal.Cal12Term = false;
  EXPECT_EQ(bench.AutoRef(), Texts{"AutoRef|No Calibration|exclamation|ok"});
}

TEST(AutoRef, NeedsTheParameterThatTheCalibrationMeasures) {
  AutoRefFixture bench;
  bench.session.Cal.Cal12Term = false;
  bench.session.Cal.CalS21 = true;
  EXPECT_EQ(bench.AutoRef(), Texts{"AutoRef|Warning: No Cal for Active Graph|none|ok"});
  bench.session.Cal.CalS21 = false;
  bench.session.Cal.CalS11 = true;
  bench.Activate("S22");
  EXPECT_EQ(bench.AutoRef(), Texts{"AutoRef|Warning: No Cal for Active Graph|none|ok"});
}

TEST(AutoRef, RefusesANonZeroPlaneInWhicheverUnitItWasTyped) {
  for (const char* unit : {"cm", "mm", "ns", "ps"}) {
    AutoRefFixture bench;
    bench.Pick("EnhancePara.ListRefPlaneInput", unit);
    bench.Enter("TimeInput", "1");
    bench.Apply();
    const float plane = bench.session.Planes.PlaneS11;
    EXPECT_EQ(bench.AutoRef(),
              Texts{"AutoRef Start Value|Set Ref Plane value to 0mm and Apply first|none|ok"});
    EXPECT_EQ(bench.session.Planes.PlaneS11, plane);
  }
}

TEST(EnhancePara, ExitClosesWithoutApplying) {
  EnhanceFixture bench;
  bench.Enter("InputSmoothing", "5");
  bench.Click("EnhancePara.CloseEnhance");
  EXPECT_FALSE(bench.fake.IsShown("EnhancePara"));
  EXPECT_EQ(bench.session.Averaging.SmoothingPercent, 0);
}

TEST(AutoRef, TakesTheActiveParametersPlaneBeforeItRefuses) {
  AutoRefFixture bench;
  bench.session.Cal.Cal12Term = false;
  bench.session.Cal.CalS21 = true;
  bench.session.Planes.ActivePlane = 0.5f;
  bench.session.Planes.PlaneS11 = 0.25f;
  EXPECT_EQ(bench.AutoRef(), Texts{"AutoRef|Warning: No Cal for Active Graph|none|ok"});
  EXPECT_EQ(bench.session.Planes.ActivePlane, 0.25f);
  // Another channel's plane is no reason to refuse.
  bench.Activate("S21");
  EXPECT_TRUE(bench.AutoRef().empty());
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
    EnhanceFixture bench;
    bench.Pick("EnhancePara.ListRefPlaneInput", typed.Unit);
    bench.Enter("TimeInput", typed.Number);
    bench.Apply();
    EXPECT_EQ(bench.session.Planes.PlaneS11, typed.Metres) << typed.Number << " " << typed.Unit;
  }
}

}  // namespace
}  // namespace qk::test
