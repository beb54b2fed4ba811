// From clicks to corrected S-parameters: every kind of calibration on the simulated instrument,
// whose front end is unknown to the program, compared with what is truly connected.
#include <gtest/gtest.h>

#include "true_device.h"

namespace qk::test {
namespace {

TEST(CalibratedMeasurement, StartUpIsReadyForASweep) {
  SimulatedProgram bench;
  EXPECT_TRUE(bench.Troubles().empty());
  EXPECT_TRUE(bench.fake.IsShown("Form1"));
  EXPECT_EQ(bench.Value("Calibration.NextStep"), "Set the sweep first");
}

TEST(CalibratedMeasurement, S11OfADeviceWithOnePortAndWithTwo) {
  SimulatedProgram bench;
  DeviceFile device;
  bench.SetSweep("3", "3080", "201");
  bench.Choose("Option3");
  bench.Press({"O_Cal", "S_Cal", "M_Cal"});
  bench.ApplyAndMeasure("port1 device " + device.Path());
  EXPECT_EQ(bench.fake.Panels[3], "S11 Cal");
  EXPECT_TRUE(bench.Troubles().empty());
  ExpectTrue(bench, bench.session.Data.S11, kS11);
  bench.Bench("device " + device.Path());  // its far end is terminated by the S11 path
  bench.Measure();
  ExpectTrue(bench, bench.session.Data.S11, kS11);
}

TEST(CalibratedMeasurement, S11WithAKitThatHasAnOffset) {
  SimulatedProgram bench;
  DeviceFile device;
  bench.session.Kit1.KitOffset = 0.005f;
  bench.session.Kit1.KitDelay = static_cast<float>(0.005 / kSpeedOfLight);
  bench.SetSweep("3", "3080", "101");
  bench.Choose("Option3");
  bench.Press({"M_Cal", "S_Cal", "O_Cal"});
  bench.ApplyAndMeasure("port1 device " + device.Path());
  ExpectTrue(bench, bench.session.Data.S11, kS11);
}

TEST(CalibratedMeasurement, S21OfAThrough) {
  SimulatedProgram bench;
  bench.SetSweep("3", "3080", "101");
  bench.Choose("Option4");
  bench.Press({"Thru_Cal", "Iso_Cal"});
  bench.ApplyAndMeasure("through");
  EXPECT_EQ(bench.fake.Panels[3], "S21 Cal");
  EXPECT_TRUE(bench.Troubles().empty());
  ExpectTrue(bench, bench.session.Data.S21, kS21);
}

TEST(CalibratedMeasurement, S21LeavesTheMatchOfThePortsUncorrected) {
  SimulatedProgram bench;
  bench.SetSweep("3", "3080", "101");
  bench.Choose("Option4");
  bench.Press({"Thru_Cal", "Iso_Cal"});
  bench.ApplyAndMeasure("attenuator 20");
  const Difference worst = Compare(bench, bench.session.Data.S21, kS21);
  EXPECT_LT(worst.Db, 0.5);
  EXPECT_GT(worst.Db, 0.02);
}

TEST(CalibratedMeasurement, S11AndS21Together) {
  SimulatedProgram bench;
  DeviceFile device;
  bench.SetSweep("3", "3080", "101");
  bench.Choose("Option6");
  bench.Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal"});
  bench.ApplyAndMeasure("through");
  EXPECT_EQ(bench.fake.Panels[3], "S11+S21 Cal");
  EXPECT_TRUE(bench.Troubles().empty());
  ExpectTrue(bench, bench.session.Data.S21, kS21);
  bench.Bench("port1 device " + device.Path());
  bench.Measure();
  ExpectTrue(bench, bench.session.Data.S11, kS11);
}

TEST(CalibratedMeasurement, AllFourParametersWithTwoKits) {
  SimulatedProgram bench;
  DeviceFile device;
  bench.fake.OnModal = [&](Form&) { bench.Click("IsoMethod.Command1"); };
  bench.SetSweep("3", "3080", "201");
  bench.Choose("Option5");
  bench.Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal"});
  bench.ApplyAndMeasure("device " + device.Path());
  EXPECT_EQ(bench.fake.Panels[3], "12 Term Cal");
  EXPECT_TRUE(bench.Troubles().empty());
  ExpectAllTrue(bench);
}

TEST(CalibratedMeasurement, DeviceSweepsForTheIsolationKeepTheFourParametersTrue) {
  for (const char* method : {"IsoMethod.Command2", "IsoMethod.Command3"}) {
    SimulatedProgram bench;
    DeviceFile device;
    bench.Bench("device " + device.Path());
    bench.fake.OnModal = [&](Form&) { bench.Click(method); };
    bench.SetSweep("3", "3080", "51");
    bench.Choose("Option5");
    bench.Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal"});
    bench.ApplyAndMeasure("device " + device.Path());
    EXPECT_TRUE(bench.Troubles().empty());
    ExpectAllTrue(bench);
  }
}

// The through standard's parameters as a kit holds them, read off the bench.
void LoadThroughData(SimulatedProgram& bench) {
  bench.instrument.FollowPrompt("Connect through using Through Standard");
  CalKit& kit = bench.session.Kit1;
  kit.KitHasThru = true;
  for (std::size_t i = 0; i < 101; ++i) {
    const double f = 3e6 + 30.77e6 * static_cast<double>(i);
    const auto s = bench.instrument.Truth(f);
    kit.KitThruData[0][i] = static_cast<float>(f);
    for (std::size_t k = 0; k < 4; ++k) {
      kit.KitThruData[1 + 2 * k][i] = static_cast<float>(s[k].real());
      kit.KitThruData[2 + 2 * k][i] = static_cast<float>(s[k].imag());
    }
  }
  bench.instrument.BackToDevice();
}

struct NonInsertableFixture : SimulatedProgram {
  NonInsertableFixture() {
    Bench("standard line 20");
    LoadThroughData(*this);
    fake.OnModal = [this](Form& form) {
      Click(form.Name() + ".Command1");
      if (form.Find("Command3") != nullptr) {
        Click(form.Name() + ".Command2");
        Click(form.Name() + ".Command3");
      } else {
        Click(form.Name() + ".Command2");
      }
    };
    SetSweep("3", "3080", "101");
    Choose("Option7");
    Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal"});
  }
};

TEST(CalibratedMeasurement, BothReflectionsWithOneKit) {
  NonInsertableFixture bench;
  DeviceFile device;
  bench.ApplyAndMeasure("port1 device " + device.Path());
  EXPECT_EQ(bench.fake.Panels[3], "12 Term Cal");
  EXPECT_TRUE(bench.Troubles().empty());
  ExpectTrue(bench, bench.session.Data.S11, kS11);
  bench.Bench("port2 device " + device.Path());
  bench.Measure();
  ExpectTrue(bench, bench.session.Data.S22, kS22);
}

// Meant: the tracking carries the factor 1 - ES EL of the insertable kind besides its own.
TEST(CalibratedMeasurement, TransmissionWithOneKitCarriesTheDoubleFactorOfItsTracking) {
  NonInsertableFixture bench;
  DeviceFile device;
  bench.ApplyAndMeasure("device " + device.Path());
  for (const std::size_t parameter : {kS21, kS12}) {
    const SParamData& data = bench.session.Data;
    const Difference asItIs = Compare(bench, parameter == kS21 ? data.S21 : data.S12, parameter);
    EXPECT_GT(asItIs.Db, 0.02) << parameter;
    EXPECT_LT(asItIs.Db, 0.15) << parameter;
    EXPECT_LT(asItIs.Deg, 1) << parameter;
  }
  const auto takeOut = [&](PortTerms& terms, const ComplexArray& thruReflection) {
    for (int i = 0; i < bench.session.Plan.NumPoints; ++i) {
      const Phasor es = PointOf(terms.ES, i);
      const Phasor x = PointOf(thruReflection, i) - PointOf(terms.ED, i);
      const Phasor el = x / (es * x + PointOf(terms.ERT, i));
      const Phasor tracking = PointOf(terms.ETT, i) / (1.0 - es * el);
      terms.ETT.Set(i, {tracking.real(), tracking.imag()});
    }
  };
  takeOut(bench.session.Terms.Forward, bench.session.Standards.CalThruRefl1);
  takeOut(bench.session.Terms.Reverse, bench.session.Standards.CalThruRefl2);
  bench.Measure();
  ExpectAllTrue(bench);
}

TEST(CalibratedMeasurement, StandardsAreMeasuredWithSixteenAveragesAndFourComeBack) {
  SimulatedProgram bench;
  bench.SetSweep("3", "3080", "51");
  bench.Click("Form1.SetEnhancement");
  bench.Type("EnhancePara.InputAverages", "4");
  bench.Click("Form1.AverOn");
  bench.Click("EnhancePara.ApplyEnhance");
  EXPECT_EQ(bench.session.Averaging.Averages, 4);
  bench.Choose("Option3");
  int atPrompt = 0;
  bench.fake.OnAsk = [&](const Message& message) {
    atPrompt = bench.session.Averaging.Averages;
    bench.instrument.FollowPrompt(message.Text);
  };
  bench.Press({"O_Cal"});
  EXPECT_EQ(atPrompt, 16);
  EXPECT_EQ(bench.session.Averaging.Averages, 4);
}

TEST(CalibratedMeasurement, AKeptCalibrationMeasuresTrueOnASpanInsideItsOwn) {
  SimulatedProgram bench;
  DeviceFile device;
  bench.SetSweep("3", "3080", "401");
  bench.Choose("Option3");
  bench.Press({"O_Cal", "S_Cal", "M_Cal"});
  bench.Click("Calibration.App_Cal");
  bench.fake.Answers = {Answer::Yes};
  bench.SetSweep("500", "1500", "101");
  EXPECT_EQ(bench.fake.Panels[3], "S11 Cal ?");
  bench.instrument.BackToDevice();
  bench.Bench("port1 device " + device.Path());
  bench.Measure();
  const Difference worst = Compare(bench, bench.session.Data.S11, kS11);
  EXPECT_LT(worst.Db, 0.05);
  EXPECT_LT(worst.Deg, 0.5);
}

TEST(CalibratedMeasurement, AStalledStandardIsToldAndMeasuredAgain) {
  SimulatedProgram bench;
  bench.SetSweep("3", "3080", "51");
  bench.Choose("Option3");
  bench.Press({"O_Cal", "S_Cal"});
  bench.Bench("fault stall after 100");
  bench.Press({"M_Cal"});
  EXPECT_EQ(bench.fake.Messages.back().Text, "No Response");
  EXPECT_EQ(bench.Value("Calibration.NextStep"), "Not measured whole, measure again: Load");
  bench.Bench("fault none");
  bench.Press({"M_Cal"});
  EXPECT_EQ(bench.Value("Calibration.NextStep"), "All standards measured: click Apply Cal");
}

TEST(CalibratedMeasurement, TheProgressBarRunsToItsEnd) {
  SimulatedProgram bench;
  bench.SetSweep("3", "3080", "51");
  bench.Choose("Option3");
  bench.fake.Progresses.clear();
  bench.Press({"O_Cal"});
  const auto& progress = bench.fake.Progresses["Calibration"];
  ASSERT_FALSE(progress.empty());
  EXPECT_EQ(progress.front(), 0);
  EXPECT_EQ(progress.back(), 100);
}

TEST(CalibratedMeasurement, AClickOnExitInsideASweepEndsAfterIt) {
  SimulatedProgram bench;
  bench.SetSweep("3", "3080", "51");
  bench.Choose("Option3");
  bench.Press({"O_Cal", "S_Cal", "M_Cal"});
  bench.Click("Calibration.App_Cal");
  bool clicked = false;
  bench.fake.OnEvents = [&] {
    if (clicked) return;
    clicked = true;
    bench.fake.Answers = {Answer::Yes};
    bench.Click("Form1.Exit");
    EXPECT_FALSE(bench.fake.ExitCode.has_value());  // the sweep is still on the stack
    EXPECT_TRUE(bench.fake.IsShown("ShuttingDown"));
  };
  bench.Click("Form1.StartMeasurement");
  EXPECT_EQ(bench.fake.ExitCode, 0);
  EXPECT_FALSE(bench.fake.IsShown("ShuttingDown"));
}

TEST(CalibratedMeasurement, ReStartInsideASweepStopsItAndForgetsTheCalibration) {
  SimulatedProgram bench;
  bench.SetSweep("3", "3080", "51");
  bench.Choose("Option3");
  bench.Press({"O_Cal", "S_Cal", "M_Cal"});
  bench.Click("Calibration.App_Cal");
  bool clicked = false;
  bench.fake.OnEvents = [&] {
    if (clicked) return;
    clicked = true;
    bench.fake.Answers = {Answer::Yes, Answer::Ok};
    bench.Click("Form1.ReStart");
  };
  bench.Click("Form1.StartMeasurement");
  EXPECT_TRUE(bench.program.controller().Idle());
  EXPECT_FALSE(bench.session.Cal.AnyKind());
  EXPECT_FALSE(bench.fake.IsShown("Calibration"));
  EXPECT_EQ(bench.fake.Panels[3], "UNCAL");
  EXPECT_TRUE(bench.fake.Panels[1].starts_with("SN. "));
}

TEST(CalibratedMeasurement, AStandardOfTheSessionThatHasGoneIsNotApplied) {
  SimulatedProgram bench;
  bench.SetSweep("3", "3080", "51");
  bench.Choose("Option3");
  bench.Press({"O_Cal", "S_Cal", "M_Cal"});
  bench.fake.Answers = {Answer::Yes, Answer::Ok};
  bench.Click("Form1.ReStart");
  bench.Click("Form1.SetCal");
  bench.Choose("Option3");
  bench.Click("Calibration.App_Cal");
  EXPECT_EQ(bench.fake.Messages.back().Text, "S11 Calibration Not Complete");
}

TEST(CalibratedMeasurement, DisplaySettingsChangeInTheMiddleOfASweep) {
  SimulatedProgram bench;
  bench.SetSweep("3", "3080", "51");
  bench.Choose("Option3");
  bench.Press({"O_Cal", "S_Cal", "M_Cal"});
  bench.Click("Calibration.App_Cal");
  bench.Click("Form1.SetDisplay");
  int turn = 0;
  bench.fake.OnEvents = [&] {
    ++turn;
    if (turn == 20) {
      bench.Pick("DisplayPara.ListGraphType", "SWR");
      bench.Type("DisplayPara.SensInput", "1");
      bench.Click("DisplayPara.ApplyDisplay");
    }
    if (bench.program.controller().SweepsEnded() == 2 && bench.session.Flags.SweepRunning)
      bench.Click("Form1.StopMeasurement");
  };
  bench.Click("Form1.StartMeasurement");
  EXPECT_EQ(bench.session.Channel(1).GraphType, GraphType::Swr);
  for (std::size_t i = 1; i <= 51; ++i) EXPECT_GE(bench.session.Channel(1).Value[i], 1.0);
}

}  // namespace
}  // namespace qk::test
