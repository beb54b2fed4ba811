// SPDX-License-Identifier: MIT
// From clicks to corrected S-parameters: every kind of calibration on the simulated instrument,
// whose front end is unknown to the program, compared with what is truly connected.
#include <gtest/gtest.h>

#include "true_device.h"

namespace qk::test {
namespace {

TEST(CalibratedMeasurement, StartUpIsReadyForASweep) {
  SimulatedProgram vna;
  EXPECT_TRUE(vna.Troubles().empty());
  EXPECT_TRUE(vna.fake.IsShown("Form1"));
  EXPECT_EQ(vna.Value("Calibration.NextStep"), "Set the sweep first");
}

TEST(CalibratedMeasurement, S11OfADeviceWithOnePortAndWithTwo) {
  SimulatedProgram vna;
  DeviceFile device;
  vna.SetSweep("3", "3080", "201");
  vna.Choose("Option3");
  vna.Press({"O_Cal", "S_Cal", "M_Cal"});
  vna.ApplyAndMeasure("port1 device " + device.Path());
  EXPECT_EQ(vna.fake.Panels[3], "S11 Cal");
  EXPECT_TRUE(vna.Troubles().empty());
  ExpectTrue(vna, vna.session.Data.S11, kS11);
  vna.Bench("device " + device.Path());  // its far end is terminated by the S11 path
  vna.Measure();
  ExpectTrue(vna, vna.session.Data.S11, kS11);
}

TEST(CalibratedMeasurement, S11WithAKitThatHasAnOffset) {
  SimulatedProgram vna;
  DeviceFile device;
  vna.session.Kit1.KitOffset = 0.005f;
  vna.session.Kit1.KitDelay = static_cast<float>(0.005 / kSpeedOfLight);
  vna.SetSweep("3", "3080", "101");
  vna.Choose("Option3");
  vna.Press({"M_Cal", "S_Cal", "O_Cal"});
  vna.ApplyAndMeasure("port1 device " + device.Path());
  ExpectTrue(vna, vna.session.Data.S11, kS11);
}

TEST(CalibratedMeasurement, S21OfAThrough) {
  SimulatedProgram vna;
  vna.SetSweep("3", "3080", "101");
  vna.Choose("Option4");
  vna.Press({"Thru_Cal", "Iso_Cal"});
  vna.ApplyAndMeasure("through");
  EXPECT_EQ(vna.fake.Panels[3], "S21 Cal");
  EXPECT_TRUE(vna.Troubles().empty());
  ExpectTrue(vna, vna.session.Data.S21, kS21);
}

TEST(CalibratedMeasurement, S21LeavesTheMatchOfThePortsUncorrected) {
  SimulatedProgram vna;
  vna.SetSweep("3", "3080", "101");
  vna.Choose("Option4");
  vna.Press({"Thru_Cal", "Iso_Cal"});
  vna.ApplyAndMeasure("attenuator 20");
  const Difference worst = Compare(vna, vna.session.Data.S21, kS21);
  EXPECT_LT(worst.Db, 0.5);
  EXPECT_GT(worst.Db, 0.02);
}

TEST(CalibratedMeasurement, S11AndS21Together) {
  SimulatedProgram vna;
  DeviceFile device;
  vna.SetSweep("3", "3080", "101");
  vna.Choose("Option6");
  vna.Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal"});
  vna.ApplyAndMeasure("through");
  EXPECT_EQ(vna.fake.Panels[3], "S11+S21 Cal");
  EXPECT_TRUE(vna.Troubles().empty());
  ExpectTrue(vna, vna.session.Data.S21, kS21);
  vna.Bench("port1 device " + device.Path());
  vna.Measure();
  ExpectTrue(vna, vna.session.Data.S11, kS11);
}

TEST(CalibratedMeasurement, AllFourParametersWithTwoKits) {
  SimulatedProgram vna;
  DeviceFile device;
  vna.fake.OnModal = [&](Form&) { vna.Click("IsoMethod.Command1"); };
  vna.SetSweep("3", "3080", "201");
  vna.Choose("Option5");
  vna.Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal"});
  vna.ApplyAndMeasure("device " + device.Path());
  EXPECT_EQ(vna.fake.Panels[3], "12 Term Cal");
  EXPECT_TRUE(vna.Troubles().empty());
  ExpectAllTrue(vna);
}

TEST(CalibratedMeasurement, DeviceSweepsForTheIsolationKeepTheFourParametersTrue) {
  for (const char* method : {"IsoMethod.Command2", "IsoMethod.Command3"}) {
    SimulatedProgram vna;
    DeviceFile device;
    vna.Bench("device " + device.Path());
    vna.fake.OnModal = [&](Form&) { vna.Click(method); };
    vna.SetSweep("3", "3080", "51");
    vna.Choose("Option5");
    vna.Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal"});
    vna.ApplyAndMeasure("device " + device.Path());
    EXPECT_TRUE(vna.Troubles().empty());
    ExpectAllTrue(vna);
  }
}

// The through standard's parameters as a kit holds them, read off the bench.
void LoadThroughData(SimulatedProgram& vna) {
  vna.instrument.FollowPrompt("Connect through using Through Standard");
  CalKit& kit = vna.session.Kit1;
  kit.KitHasThru = true;
  for (std::size_t i = 0; i < 101; ++i) {
    const double f = 3e6 + 30.77e6 * static_cast<double>(i);
    const auto s = vna.instrument.Truth(f);
    kit.KitThruData[0][i] = static_cast<float>(f);
    for (std::size_t k = 0; k < 4; ++k) {
      kit.KitThruData[1 + 2 * k][i] = static_cast<float>(s[k].real());
      kit.KitThruData[2 + 2 * k][i] = static_cast<float>(s[k].imag());
    }
  }
  vna.instrument.BackToDevice();
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
  NonInsertableFixture vna;
  DeviceFile device;
  vna.ApplyAndMeasure("port1 device " + device.Path());
  EXPECT_EQ(vna.fake.Panels[3], "12 Term Cal");
  EXPECT_TRUE(vna.Troubles().empty());
  ExpectTrue(vna, vna.session.Data.S11, kS11);
  vna.Bench("port2 device " + device.Path());
  vna.Measure();
  ExpectTrue(vna, vna.session.Data.S22, kS22);
}

// Intentional: the tracking carries the factor 1 - ES EL of the insertable kind besides its own.
TEST(CalibratedMeasurement, TransmissionWithOneKitCarriesTheDoubleFactorOfItsTracking) {
  NonInsertableFixture vna;
  DeviceFile device;
  vna.ApplyAndMeasure("device " + device.Path());
  for (const std::size_t parameter : {kS21, kS12}) {
    const SParamData& data = vna.session.Data;
    const Difference asItIs = Compare(vna, parameter == kS21 ? data.S21 : data.S12, parameter);
    EXPECT_GT(asItIs.Db, 0.02) << parameter;
    EXPECT_LT(asItIs.Db, 0.15) << parameter;
    EXPECT_LT(asItIs.Deg, 1) << parameter;
  }
  const auto takeOut = [&](PortTerms& terms, const ComplexArray& thruReflection) {
    for (int i = 0; i < vna.session.Plan.NumPoints; ++i) {
      const Phasor es = PointOf(terms.ES, i);
      const Phasor x = PointOf(thruReflection, i) - PointOf(terms.ED, i);
      const Phasor el = x / (es * x + PointOf(terms.ERT, i));
      const Phasor tracking = PointOf(terms.ETT, i) / (1.0 - es * el);
      terms.ETT.Set(i, {tracking.real(), tracking.imag()});
    }
  };
  takeOut(vna.session.Terms.Forward, vna.session.Standards.CalThruRefl1);
  takeOut(vna.session.Terms.Reverse, vna.session.Standards.CalThruRefl2);
  vna.Measure();
  ExpectAllTrue(vna);
}

TEST(CalibratedMeasurement, StandardsAreMeasuredWithSixteenAveragesAndFourComeBack) {
  SimulatedProgram vna;
  vna.SetSweep("3", "3080", "51");
  vna.Click("Form1.SetEnhancement");
  vna.Type("EnhancePara.InputAverages", "4");
  vna.Click("Form1.AverOn");
  vna.Click("EnhancePara.ApplyEnhance");
  EXPECT_EQ(vna.session.Averaging.Averages, 4);
  vna.Choose("Option3");
  int atPrompt = 0;
  vna.fake.OnAsk = [&](const Message& message) {
    atPrompt = vna.session.Averaging.Averages;
    vna.instrument.FollowPrompt(message.Text);
  };
  vna.Press({"O_Cal"});
  EXPECT_EQ(atPrompt, 16);
  EXPECT_EQ(vna.session.Averaging.Averages, 4);
}

TEST(CalibratedMeasurement, AKeptCalibrationMeasuresTrueOnASpanInsideItsOwn) {
  SimulatedProgram vna;
  DeviceFile device;
  vna.SetSweep("3", "3080", "401");
  vna.Choose("Option3");
  vna.Press({"O_Cal", "S_Cal", "M_Cal"});
  vna.Click("Calibration.App_Cal");
  vna.fake.Answers = {Answer::Yes};
  vna.SetSweep("500", "1500", "101");
  EXPECT_EQ(vna.fake.Panels[3], "S11 Cal ?");
  vna.instrument.BackToDevice();
  vna.Bench("port1 device " + device.Path());
  vna.Measure();
  const Difference worst = Compare(vna, vna.session.Data.S11, kS11);
  EXPECT_LT(worst.Db, 0.05);
  EXPECT_LT(worst.Deg, 0.5);
}

TEST(CalibratedMeasurement, AStalledStandardIsReportedAndMeasuredAgain) {
  SimulatedProgram vna;
  vna.SetSweep("3", "3080", "51");
  vna.Choose("Option3");
  vna.Press({"O_Cal", "S_Cal"});
  vna.Bench("fault stall after 100");
  vna.Press({"M_Cal"});
  EXPECT_EQ(vna.fake.Messages.back().Text, "No Response");
  EXPECT_EQ(vna.Value("Calibration.NextStep"), "Incomplete, measure again: Load");
  vna.Bench("fault none");
  vna.Press({"M_Cal"});
  EXPECT_EQ(vna.Value("Calibration.NextStep"), "All standards measured: click Apply Cal");
}

TEST(CalibratedMeasurement, TheProgressBarRunsToItsEnd) {
  SimulatedProgram vna;
  vna.SetSweep("3", "3080", "51");
  vna.Choose("Option3");
  vna.fake.Progresses.clear();
  vna.Press({"O_Cal"});
  const auto& progress = vna.fake.Progresses["Calibration"];
  ASSERT_FALSE(progress.empty());
  EXPECT_EQ(progress.front(), 0);
  EXPECT_EQ(progress.back(), 100);
}

TEST(CalibratedMeasurement, AClickOnExitInsideASweepEndsAfterIt) {
  SimulatedProgram vna;
  vna.SetSweep("3", "3080", "51");
  vna.Choose("Option3");
  vna.Press({"O_Cal", "S_Cal", "M_Cal"});
  vna.Click("Calibration.App_Cal");
  bool clicked = false;
  vna.fake.OnEvents = [&] {
    if (clicked) return;
    clicked = true;
    vna.fake.Answers = {Answer::Yes};
    vna.Click("Form1.Exit");
    EXPECT_FALSE(vna.fake.ExitCode.has_value());  // the sweep is still on the stack
    EXPECT_TRUE(vna.fake.IsShown("ShuttingDown"));
  };
  vna.Click("Form1.StartMeasurement");
  EXPECT_EQ(vna.fake.ExitCode, 0);
  EXPECT_FALSE(vna.fake.IsShown("ShuttingDown"));
}

TEST(CalibratedMeasurement, ReStartInsideASweepStopsItAndForgetsTheCalibration) {
  SimulatedProgram vna;
  vna.SetSweep("3", "3080", "51");
  vna.Choose("Option3");
  vna.Press({"O_Cal", "S_Cal", "M_Cal"});
  vna.Click("Calibration.App_Cal");
  bool clicked = false;
  vna.fake.OnEvents = [&] {
    if (clicked) return;
    clicked = true;
    vna.fake.Answers = {Answer::Yes, Answer::Ok};
    vna.Click("Form1.ReStart");
  };
  vna.Click("Form1.StartMeasurement");
  EXPECT_TRUE(vna.program.controller().Idle());
  EXPECT_FALSE(vna.session.Cal.AnyKind());
  EXPECT_FALSE(vna.fake.IsShown("Calibration"));
  EXPECT_EQ(vna.fake.Panels[3], "UNCAL");
  EXPECT_TRUE(vna.fake.Panels[1].starts_with("SN. "));
}

TEST(CalibratedMeasurement, AStandardOfTheSessionThatHasGoneIsNotApplied) {
  SimulatedProgram vna;
  vna.SetSweep("3", "3080", "51");
  vna.Choose("Option3");
  vna.Press({"O_Cal", "S_Cal", "M_Cal"});
  vna.fake.Answers = {Answer::Yes, Answer::Ok};
  vna.Click("Form1.ReStart");
  vna.Click("Form1.SetCal");
  vna.Choose("Option3");
  vna.Click("Calibration.App_Cal");
  EXPECT_EQ(vna.fake.Messages.back().Text, "S11 Calibration Not Complete");
}

TEST(CalibratedMeasurement, DisplaySettingsChangeInTheMiddleOfASweep) {
  SimulatedProgram vna;
  vna.SetSweep("3", "3080", "51");
  vna.Choose("Option3");
  vna.Press({"O_Cal", "S_Cal", "M_Cal"});
  vna.Click("Calibration.App_Cal");
  vna.Click("Form1.SetDisplay");
  int turn = 0;
  vna.fake.OnEvents = [&] {
    ++turn;
    if (turn == 20) {
      vna.Pick("DisplayPara.ListGraphType", "SWR");
      vna.Type("DisplayPara.SensInput", "1");
      vna.Click("DisplayPara.ApplyDisplay");
    }
    if (vna.program.controller().SweepsEnded() == 2 && vna.session.Flags.SweepRunning)
      vna.Click("Form1.StopMeasurement");
  };
  vna.Click("Form1.StartMeasurement");
  EXPECT_EQ(vna.session.Channel(1).GraphType, GraphType::Swr);
  for (std::size_t i = 1; i <= 51; ++i) EXPECT_GE(vna.session.Channel(1).Value[i], 1.0);
}

}  // namespace
}  // namespace qk::test
