// SPDX-License-Identifier: MIT
// Check Calibration on the simulated bench: what a calibration left, against the error terms of
// bench and program; hints and repeated sweeps in the whole program.
#include <gtest/gtest.h>

#include "core/window_names.h"
#include "files/check_trend.h"
#include "files/whole_file.h"
#include "forms/check_cal.h"
#include "sim/front_end.h"
#include "true_device.h"

namespace qk::test {
namespace {

double Db(double size) {
  return 20 * std::log10(size);
}

// What the program's one-port terms leave of the bench's, at point k: both are bilinear maps of the
// reflection, and so is what remains.
Residual Left(const SimulatedProgram& vna, int k) {
  const auto value = [k](const ComplexArray& a) { return Phasor(a[k].re, a[k].im); };
  const PortTerms& terms = vna.session.Terms.Forward;
  const Phasor ed = value(terms.ED), es = value(terms.ES), ert = value(terms.ERT);
  const sim::SideTerms truth = sim::FrontEndAt(vna.session.Plan.Frequency(k)).Forward;
  const Phasor off = truth.Directivity - ed;
  const Phasor slope = truth.ReflectionTracking - off * truth.SourceMatch;
  const Phasor base = es * off + ert;
  Residual left;
  left.Directivity = off / base;
  left.SourceMatch = -(es * slope - ert * truth.SourceMatch) / base;
  left.Tracking = slope / base + left.Directivity * left.SourceMatch - 1.0;
  return left;
}

struct CheckWindow : testing::Test {
  SimulatedProgram vna;
  std::string loadInstead;  // what stands for the load of the calibration

  CheckWindow() {
    vna.Bench("noise off");
    vna.fake.OnAsk = [this](const Message& message) {
      vna.instrument.FollowPrompt(message.Text);
      if (!loadInstead.empty() && message.Text == "Matched Load on Port 1") vna.Bench(loadInstead);
    };
  }
  void CalibrateS11(const char* points = "201") {
    vna.SetSweep("3", "3000", points);
    vna.Choose("Option3");
    vna.Press({"O_Cal", "S_Cal", "M_Cal"});
    vna.Click("Calibration.App_Cal");
    loadInstead.clear();
    vna.fake.Messages.clear();
    vna.Click("Form1.CheckCal");
  }
  void CalibrateAll() {
    vna.SetSweep("3", "3000", "101");
    vna.Choose("Option5");
    vna.Press({"O_Cal", "S_Cal", "M_Cal", "Iso_Cal", "Thru_Cal"});
    vna.Click("Calibration.App_Cal");
    vna.fake.Messages.clear();
    vna.Click("Form1.CheckCal");
  }
  void Check(const char* method) {
    vna.Window("CheckCal").Tick(method, true);
    EXPECT_TRUE(vna.Click("CheckCal.Check"));
  }
  const CalCheck& Found() { return vna.program.controller().quality().Check; }
  double SizeAt(CheckTerm term, int k) { return *Found().At(term, vna.session.Plan.Frequency(k)); }
};

TEST_F(CheckWindow, ByThreeStandardsFindsWhatAWrongLoadLeft) {
  loadInstead = "port1 mismatch 32";
  CalibrateS11();
  Check("Standards");
  EXPECT_EQ(vna.Troubles(), Texts{});
  for (int k = 0; k < vna.session.Plan.NumPoints; ++k) {
    const Residual left = Left(vna, k);
    EXPECT_NEAR(Db(SizeAt(CheckTerm::Directivity, k)), Db(std::abs(left.Directivity)), 0.1) << k;
    EXPECT_NEAR(Db(SizeAt(CheckTerm::SourceMatch, k)), Db(std::abs(left.SourceMatch)), 0.1) << k;
    EXPECT_NEAR(Db(SizeAt(CheckTerm::Tracking, k)), Db(std::abs(left.Tracking)), 0.2) << k;
  }
  EXPECT_TRUE(vna.Value("CheckCal.Verdict").starts_with("Directivity -3"))
      << vna.Value("CheckCal.Verdict");
  EXPECT_EQ(vna.Value("CheckCal.Note"),
            "The kit that calibrated shows drift and repeatability only; another kit shows the "
            "residuals.");
}

TEST_F(CheckWindow, ByAShortBehind300MillimetresFindsItWithin4Db) {
  loadInstead = "port1 mismatch 32";
  CalibrateS11("401");
  Check("ShortedLine");
  EXPECT_EQ(vna.Troubles(), Texts{});
  const TermFound& found = Found().Of(CheckTerm::Directivity);
  ASSERT_TRUE(found.Known);
  EXPECT_LT(found.Grid.Frequency(found.First), 270e6);
  EXPECT_GT(found.Grid.Frequency(found.Last), 2730e6);
  for (int k = found.First; k <= found.Last; ++k) {
    const Residual left = Left(vna, k);
    EXPECT_NEAR(Db(SizeAt(CheckTerm::Directivity, k)), Db(std::abs(left.Directivity)), 4) << k;
  }
  EXPECT_TRUE(vna.Value("CheckCal.Note").starts_with("Line of 300.")) << vna.Value("CheckCal.Note");
}

TEST_F(CheckWindow, ByAMismatchBehindALineFindsTheDirectivity) {
  loadInstead = "port1 mismatch 32";
  CalibrateS11("401");
  Check("MismatchedLine");
  const TermFound& found = Found().Of(CheckTerm::Directivity);
  ASSERT_TRUE(found.Known);
  EXPECT_FALSE(Found().Of(CheckTerm::SourceMatch).Known);
  for (int k = found.First; k <= found.Last; ++k)
    EXPECT_NEAR(Db(SizeAt(CheckTerm::Directivity, k)), Db(std::abs(Left(vna, k).Directivity)), 2)
        << k;
}

TEST_F(CheckWindow, OfAGoodCalibrationSaysGoodAndKeepsATrend) {
  CalibrateAll();
  for (int n = 0; n < 2; ++n) {
    Check("Standards");
    EXPECT_EQ(vna.Value("CheckCal.Verdict"), "Good");
  }
  Check("Through");
  EXPECT_EQ(vna.Value("CheckCal.Verdict"), "Good");
  Check("Isolation");
  EXPECT_EQ(vna.Troubles(), Texts{});
  for (std::size_t i = 0; i < kCheckTerms; ++i)
    EXPECT_TRUE(Found().Of(static_cast<CheckTerm>(i)).Known) << i;
  const auto trend = ReadCheckTrend(CheckTrendPath(vna.session));
  ASSERT_TRUE(trend);
  ASSERT_EQ(trend->size(), 4u);
  EXPECT_EQ((*trend)[0].Serial, vna.session.Id.SerialNumber);
  EXPECT_EQ((*trend)[0].CalMadeUtc, vna.session.CalMade.MadeUtc);
  EXPECT_FALSE(dynamic_cast<CheckCal&>(vna.Window("CheckCal")).Trend().Curves.empty());
}

TEST_F(CheckWindow, LeavesTheMeasuredDataAlone) {
  CalibrateAll();
  vna.Bench("attenuator 10");
  vna.Measure();
  const auto before = std::make_unique<SParamData>(vna.session.Data);
  Check("Through");
  EXPECT_EQ(before->S21.re, vna.session.Data.S21.re);
  EXPECT_EQ(before->RawS11.im, vna.session.Data.RawS11.im);
}

TEST_F(CheckWindow, IsForgottenWithAnotherCalibration) {
  CalibrateS11();
  Check("Standards");
  vna.Measure();
  EXPECT_TRUE(Found().Any());
  vna.clock.AdvanceMs(5000);
  vna.Press({"O_Cal", "S_Cal", "M_Cal"});
  vna.Click("Calibration.App_Cal");
  vna.Measure();
  EXPECT_FALSE(Found().Any());
}

TEST_F(CheckWindow, RefusesWhatCannotBeChecked) {
  vna.Click("Form1.CheckCal");
  Check("Standards");
  EXPECT_EQ(vna.Troubles(), Texts{"Check Calibration: No Calibration"});
  vna.fake.Messages.clear();
  CalibrateS11("51");
  Check("Through");
  EXPECT_EQ(vna.Troubles(), Texts{"Check Calibration: The calibration in force has no S21."});
  vna.fake.Messages.clear();
  vna.Window("CheckCal").Tick("ShortedLine", true);
  for (const char* bad : {"", "9", "5001", "long", "300x"}) {
    vna.Type("CheckCal.LineLength", bad);
    vna.Click("CheckCal.Check");
    EXPECT_EQ(vna.Troubles(), Texts{"Check Calibration: The length of the line is 10 to 5000 mm."})
        << bad;
    vna.fake.Messages.clear();
  }
  vna.Type("CheckCal.LineLength", "300");
  vna.Click("CheckCal.Check");
  EXPECT_EQ(vna.Troubles(),
            Texts{"Check Calibration: More points are needed: 500 MHz must hold 12 of them."});
}

TEST_F(CheckWindow, OfASilentInstrumentTellsItAndFindsNothing) {
  CalibrateS11();
  vna.Bench("fault silence");
  Check("Standards");
  EXPECT_EQ(vna.Troubles(), (Texts{"Set Averages: No Response", "Check Calibration: No Response"}));
  EXPECT_FALSE(Found().Any());
  EXPECT_TRUE(ReadCheckTrend(CheckTrendPath(vna.session))->empty());
}

// ---- repeated sweeps and hints in the whole program --------------------------------------------

struct Trust : CheckWindow {
  Trust() {
    CalibrateAll();
    vna.Bench("noise on");
  }
  void Sweeps(int count) {
    for (int n = 0; n < count; ++n) vna.Measure();
  }
  Texts Hints() {
    Texts texts;
    for (const Hint& hint : vna.program.controller().quality().Hints.Standing())
      texts.push_back(hint.Text);
    return texts;
  }
};

TEST_F(Trust, StatisticsTakeTheSweepsWantedAndStop) {
  vna.Bench("attenuator 10");
  vna.Click("Form1.SweepStats");
  vna.Type("SweepStats.Sweeps", "6");
  EXPECT_TRUE(vna.Click("SweepStats.Start"));
  EXPECT_TRUE(vna.program.controller().Idle());
  EXPECT_EQ(vna.Value("SweepStats.State"), "6 of 6 sweeps");
  EXPECT_EQ(vna.Value("SweepStats.Outliers"), "No outlier");
  EXPECT_NE(vna.Value("SweepStats.Spread").find("S21: spread "), std::string::npos);
  const std::string path = vna.folder.File("repeats.csv");
  vna.fake.Choices.push_back(path);
  EXPECT_TRUE(vna.Click("SweepStats.Save"));
  EXPECT_TRUE(ReadWhole(path, 1 << 20).Value().starts_with("freq_Hz,S21_mean_re"));
}

TEST_F(Trust, StatisticsRefuseAnotherNumberOfSweeps) {
  vna.Click("Form1.SweepStats");
  for (const char* bad : {"1", "201", "2.5", "many", ""}) {
    vna.Type("SweepStats.Sweeps", bad);
    vna.Click("SweepStats.Start");
    EXPECT_EQ(vna.Troubles(), Texts{"Sweep Statistics: The number of sweeps is 2 to 200."}) << bad;
    vna.fake.Messages.clear();
  }
}

TEST_F(Trust, HintsAreNoneForTheFilterAThroughAndAGoodAmplifier) {
  for (const char* device : {"filter", "through", "amplifier gain 6 p1db 30", "attenuator 10"}) {
    vna.Bench(device);
    vna.program.controller().quality().Hints.Forget();
    Sweeps(20);
    EXPECT_EQ(Hints(), Texts{}) << device;
  }
}

TEST_F(Trust, HintsComeOnALooseConnectorAndShowInTheMainWindow) {
  vna.Bench("attenuator 3");
  Sweeps(8);
  EXPECT_FALSE(vna.At("Form1.Hint").Shown);
  vna.Bench("connector loose 1");
  Sweeps(6);
  ASSERT_FALSE(Hints().empty());
  EXPECT_TRUE(Hints()[0].starts_with("Unsteady since 14:05") ||
              Hints()[0].starts_with("Passive device"))
      << Hints()[0];
  EXPECT_TRUE(vna.At("Form1.Hint").Shown);
  EXPECT_EQ(vna.At("Form1.Hint").Caption, Hints()[0]);
  vna.Click("Form1.Hint");
  EXPECT_TRUE(vna.Window("Hints").Shown);
  while (vna.At("Hints.Silence").Enabled) vna.Click("Hints.Silence");
  EXPECT_FALSE(vna.At("Form1.Hint").Shown);
  vna.Click("Hints.Listen");
  EXPECT_TRUE(vna.At("Form1.Hint").Shown);
  vna.Window("Hints").Tick("On", false);
  EXPECT_FALSE(vna.At("Form1.Hint").Shown);
}

TEST_F(Trust, HintsComeWhereNothingIsConnected) {
  vna.Bench("port1 nothing");
  vna.Bench("port2 nothing");
  Sweeps(3);
  EXPECT_EQ(Hints(), Texts{"Nothing seems connected"});
}

TEST_F(Trust, HintsComeWhenTheTestSetHasDrifted) {
  vna.Bench("port1 short");
  vna.Bench("port2 load");
  Sweeps(3);
  EXPECT_EQ(Hints(), Texts{});
  vna.Bench("step 0.5 after 0");
  Sweeps(3);
  ASSERT_FALSE(Hints().empty());
  EXPECT_TRUE(Hints()[0].starts_with("Passive device gives out power at ")) << Hints()[0];
}

TEST_F(Trust, HintsComeOnAnOverload) {
  vna.Bench("amplifier gain 30 p1db 30 matched");
  Sweeps(3);
  ASSERT_FALSE(Hints().empty());
  EXPECT_EQ(Hints()[0], "Port 2 overloaded: lower the level or add an attenuator");
}

}  // namespace
}  // namespace qk::test
