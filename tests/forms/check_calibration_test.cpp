// SPDX-License-Identifier: MIT
// Check Calibration on the simulated bench: what a calibration left, against the error terms of
// bench and program.
#include "check_fixture.h"
#include "files/check_trend.h"
#include "forms/check_cal.h"
#include "sim/front_end.h"
#include "true_device.h"

namespace qk::test {
namespace {

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
            "The kit used for the calibration shows drift and repeatability only; another kit "
            "shows the residuals.");
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

// What was wrong with a calibration, or has become wrong since.
struct Wrong {
  const char* Name;
  const char* Prompt;
  const char* Bench;
  double StepDb;
  bool TrackingSeen;  // by a line: not what acts as a longer one, nor next to nothing
};
constexpr const char* kLoadPrompt = "Matched Load on Port 1";
constexpr const char* kShortPrompt = "Short Circuit on Port 1 (0.00mm)";
constexpr const char* kOpenPrompt = "Open Circuit on Port 1 (0.00mm)";
constexpr Wrong kWrongs[] = {
    {"Load32", kLoadPrompt, "port1 mismatch 32", 0, false},
    {"Load26", kLoadPrompt, "port1 mismatch 26", 0, false},
    {"ShortOffset", kShortPrompt, "port1 short offset 0.4 mm", 0, false},
    {"OpenOffset", kOpenPrompt, "port1 open offset 0.4 mm", 0, false},
    {"Tracking01", kLoadPrompt, "port1 mismatch 40", 0.1, true},
    {"Tracking03", kLoadPrompt, "port1 mismatch 40", 0.3, true},
    {"TrackingLess03", kLoadPrompt, "port1 mismatch 36", -0.3, true},
};

struct WrongStandard : CheckWindow, testing::WithParamInterface<Wrong> {
  void Calibrate(const char* points) {
    instead[GetParam().Prompt] = GetParam().Bench;
    CalibrateS11(points);
    if (GetParam().StepDb != 0) vna.Bench("step " + std::to_string(GetParam().StepDb) + " after 0");
  }
  Residual Truth(int k) { return Left(vna, k, GetParam().StepDb); }
  // Smaller ones are rounding of the samples.
  void Near(CheckTerm term, int k, const Cplx& truth, double db, double least) {
    if (std::abs(truth) < least) return;
    ++compared;
    EXPECT_NEAR(Db(SizeAt(term, k)), Db(std::abs(truth)), db)
        << RowOf(term).Name << " at point " << k;
  }
  int compared = 0;
};

TEST_P(WrongStandard, IsFoundByThreeStandardsWithin0_1Db) {
  Calibrate("201");
  Check("Standards");
  ASSERT_EQ(vna.Troubles(), Texts{});
  constexpr double kLeast = 1e-3;
  for (int k = 0; k < vna.session.Plan.NumPoints; ++k) {
    const Residual left = Truth(k);
    Near(CheckTerm::Directivity, k, left.Directivity, 0.1, kLeast);
    Near(CheckTerm::SourceMatch, k, left.SourceMatch, 0.1, kLeast);
    Near(CheckTerm::Tracking, k, left.Tracking, 0.1, kLeast);
  }
  EXPECT_GT(compared, 201);
}

TEST_P(WrongStandard, IsFoundByAShortBehind300MillimetresWithin4Db) {
  Calibrate("401");
  Check("ShortedLine");
  ASSERT_EQ(vna.Troubles(), Texts{});
  constexpr double kLeast = 3e-3;
  const TermFound& found = Found().Of(CheckTerm::Directivity);
  for (int k = found.First; k <= found.Last; ++k) {
    const Residual left = Truth(k);
    Near(CheckTerm::Directivity, k, left.Directivity, 4, kLeast);
    Near(CheckTerm::SourceMatch, k, left.SourceMatch, 4, kLeast);
    if (GetParam().TrackingSeen) Near(CheckTerm::Tracking, k, left.Tracking, 4, kLeast);
  }
  EXPECT_GT(compared, 300);
}

INSTANTIATE_TEST_SUITE_P(CheckCalibration, WrongStandard, testing::ValuesIn(kWrongs),
                         [](const auto& wrong) { return std::string(wrong.param.Name); });

// The load match that a wrong load left of a calibration of both directions, against the bench: a
// through measured again shows it together with the directivity, which it cancels.
TEST_F(CheckWindow, ByAThroughFindsTheLoadMatchThatAWrongLoadLeft) {
  instead["Matched Load on Ports 1 & 2"] = "port1 mismatch 32";
  CalibrateAll();
  instead.clear();
  Check("Standards");
  Check("Through");
  EXPECT_EQ(vna.Troubles(), Texts{});
  for (int k = 0; k < vna.session.Plan.NumPoints; ++k) {
    const Complex el = vna.session.Terms.Forward.EL[k];
    const Phasor truth = sim::FrontEndAt(vna.session.Plan.Frequency(k)).Forward.LoadMatch;
    const double left = std::abs(truth - Phasor(el.re, el.im));
    EXPECT_GT(left, 0.02);
    EXPECT_NEAR(SizeAt(CheckTerm::LoadMatch, k), left, 0.02 * left) << k;
  }
}

// Wrong loads at both ports: the through shows nothing of them.
TEST_F(CheckWindow, ByAThroughAloneIsGoodOnlyAsFarAsAThroughShows) {
  instead["Matched Load on Ports 1 & 2"] = "port1 mismatch 26;port2 mismatch 26";
  CalibrateAll();
  instead.clear();
  Check("Through");
  EXPECT_EQ(vna.Value("CheckCal.Verdict"),
            "Good as far as a through shows; not checked: directivity, source match");
  const auto trend = ReadCheckTrend(CheckTrendPath(vna.session));
  ASSERT_TRUE(trend);
  EXPECT_EQ(trend->back().Standard, "");
}

// A through with loss is not good, and reads what it is; a pad of 60 dB is not good isolation.
TEST_F(CheckWindow, SaysTheLossOfAThroughInDbAndCallsNoIsolationGood) {
  CalibrateAll();
  instead["Connect Through (0.00 mm)"] = "attenuator 0.5";
  Check("Through");
  EXPECT_TRUE(vna.Value("CheckCal.Verdict").starts_with("Transmission tracking 0.500 dB at "))
      << vna.Value("CheckCal.Verdict");
  EXPECT_NE(vna.Value("CheckCal.Note").find("It reads -0.500 dB, 0.0 deg at "), std::string::npos)
      << vna.Value("CheckCal.Note");
  instead["Terminate Ports 1 & 2"] = "attenuator 60";
  Check("Isolation");
  EXPECT_EQ(vna.Troubles(), Texts{});
  EXPECT_TRUE(vna.Value("CheckCal.Verdict").starts_with("Isolation -59.9 dB at "))
      << vna.Value("CheckCal.Verdict");
  EXPECT_NE(vna.Value("CheckCal.Verdict").find(" MHz: no limit\nDirectivity of port 2 -"),
            std::string::npos);
}

// Too short to be refused: the verdict is on what the band takes for the error.
TEST_F(CheckWindow, OfAThroughOfAMillimetreIsNotGoodAndTheBandSaysTheSame) {
  CalibrateAll();
  instead["Connect Through (0.00 mm)"] = "line 1";
  Check("Through");
  EXPECT_EQ(vna.Troubles(), Texts{});
  const double turn = 2 * M_PI * 3e9 * 1e-3 / 299792458, error = 2 * std::sin(turn / 2);
  const std::string db = TermDbText(CheckTerm::TransmissionTracking, Db(1 + error));
  EXPECT_EQ(vna.Value("CheckCal.Verdict"),
            "Transmission tracking " + db + " at 3000 MHz: above 0.05 dB");
  EXPECT_NE(vna.Value("CheckCal.Note").find(" dB, -3.6 deg at 3000 MHz."), std::string::npos)
      << vna.Value("CheckCal.Note");
  EXPECT_NEAR(Found().SizesAt(3e9).TransmissionTracking, error, 0.2 * error);
}

// Below 330 MHz a short line turns the phase by less than 2 degrees: it is known by the slope over
// frequency, which a constant phase does not have.
TEST_F(CheckWindow, OfALineAtLowFrequenciesIsRefusedAndAConstantPhaseIsJudged) {
  vna.SetSweep("3", "300", "101");
  vna.Choose("Option5");
  vna.Press({"O_Cal", "S_Cal", "M_Cal", "Iso_Cal", "Thru_Cal"});
  vna.Click("Calibration.App_Cal");
  vna.fake.Messages.clear();
  vna.Click("Form1.CheckCal");
  Check("Through");
  EXPECT_EQ(vna.Troubles(), Texts{});
  for (const char* length : {"3", "5"}) {
    vna.fake.Messages.clear();
    instead["Connect Through (0.00 mm)"] = std::string("line ") + length;
    Check("Through");
    EXPECT_EQ(vna.Troubles(),
              Texts{std::string("Check Calibration: S21 has the phase of a line of ") + length +
                    ".0 mm: the through must have zero length, now and in the calibration."});
  }
  vna.fake.Messages.clear();
  const std::string path = vna.folder.File("turned.s2p");
  std::ofstream(path) << "# MHz S MA R 50\n1 0 0 1 -1 1 -1 0 0\n3200 0 0 1 -1 1 -1 0 0\n";
  instead["Connect Through (0.00 mm)"] = "device " + path;
  Check("Through");
  EXPECT_EQ(vna.Troubles(), Texts{});
  EXPECT_TRUE(vna.Value("CheckCal.Verdict").starts_with("Transmission tracking 0.15"))
      << vna.Value("CheckCal.Verdict");
}

// The wrong one may be that of the calibration.
TEST_F(CheckWindow, OfACalibrationWithALineAsThroughIsRefused) {
  instead["Connect Through (0.00 mm)"] = "line 5";
  CalibrateAll();
  instead.clear();
  Check("Through");
  EXPECT_EQ(vna.Troubles(),
            Texts{"Check Calibration: S21 has the phase of a line of -5.0 mm: the through must "
                  "have zero length, now and in the calibration."});
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
  Check("Standards2");
  EXPECT_EQ(vna.Value("CheckCal.Verdict"), "Good");
  Check("Through");
  EXPECT_EQ(vna.Value("CheckCal.Verdict"), "Good");
  vna.Click("CheckCal.Exit");
  vna.Click("Form1.CheckCal");
  EXPECT_EQ(vna.Value("CheckCal.Verdict"), "Good") << "the check still holds";
  Check("Isolation");
  EXPECT_EQ(vna.Troubles(), Texts{});
  for (std::size_t i = 0; i < kCheckTerms; ++i)
    EXPECT_TRUE(Found().Of(static_cast<CheckTerm>(i)).Known) << i;
  const auto trend = ReadCheckTrend(CheckTrendPath(vna.session));
  ASSERT_TRUE(trend);
  ASSERT_EQ(trend->size(), 5u);
  EXPECT_EQ((*trend)[0].Serial, vna.session.Id.SerialNumber);
  EXPECT_EQ((*trend)[0].CalMadeUtc, vna.session.CalMade.MadeUtc);
  EXPECT_FALSE(dynamic_cast<CheckCal&>(vna.Window("CheckCal")).Trend().Curves.empty());
}

TEST_F(CheckWindow, KnowsAnotherKitFromTheOneThatCalibrated) {
  CalibrateAll();
  Check("Standards");
  EXPECT_TRUE(Found().Of(CheckTerm::Directivity).SameKit);
  vna.session.Kit1.KitName = "N, checking";
  Check("Standards");
  EXPECT_FALSE(Found().Of(CheckTerm::Directivity).SameKit);
  EXPECT_EQ(vna.Value("CheckCal.Note"), "");
  Check("Through");
  EXPECT_FALSE(Found().Of(CheckTerm::LoadMatch).SameKit);
  const auto trend = ReadCheckTrend(CheckTrendPath(vna.session));
  ASSERT_TRUE(trend);
  ASSERT_EQ(trend->size(), 3u);
  EXPECT_EQ((*trend)[0].Standard, "Default");
  EXPECT_EQ((*trend)[1].Standard, "N; checking");
  EXPECT_EQ((*trend)[1].Calibration, SweepMode::All);
  EXPECT_EQ((*trend)[2].Standard, "less directivity");
}

TEST_F(CheckWindow, DrawsTheTrendOfTheChosenMethodAndKit) {
  CalibrateAll();
  const auto checks = [this] {
    const PowerPlot& trend = dynamic_cast<CheckCal&>(vna.Window("CheckCal")).Trend();
    return trend.Curves.empty() ? 0 : static_cast<int>(trend.Curves[0].X.size());
  };
  for (int n = 0; n < 3; ++n) Check("Standards");
  EXPECT_EQ(checks(), 3);
  Check("Through");
  EXPECT_EQ(checks(), 1);
  vna.Window("CheckCal").Tick("Standards", true);
  EXPECT_EQ(checks(), 3);
  vna.session.Kit1.KitName = "Other";
  Check("Standards");
  EXPECT_EQ(checks(), 1);
}

TEST_F(CheckWindow, OfACalibrationOfS21FindsTheMatchesOfThePorts) {
  CalibrateS21();
  Check("Standards");
  EXPECT_EQ(vna.Troubles(), Texts{"Check Calibration: The calibration in force has no S11."});
  vna.fake.Messages.clear();
  Check("PortMatch");
  EXPECT_EQ(vna.Troubles(), Texts{});
  EXPECT_TRUE(vna.Value("CheckCal.Verdict").starts_with("Source match -"));
  EXPECT_NE(vna.Value("CheckCal.Verdict").find(" MHz: no limit\nLoad match -"), std::string::npos)
      << vna.Value("CheckCal.Verdict");
  for (int k = 0; k < vna.session.Plan.NumPoints; ++k) {
    const sim::SideTerms truth = sim::FrontEndAt(vna.session.Plan.Frequency(k)).Forward;
    EXPECT_NEAR(SizeAt(CheckTerm::SourceMatch, k), std::abs(truth.SourceMatch), 1e-4) << k;
    EXPECT_NEAR(SizeAt(CheckTerm::LoadMatch, k), std::abs(truth.LoadMatch), 1e-4) << k;
  }
  CalibrateAll();
  Check("PortMatch");
  EXPECT_EQ(
      vna.Troubles(),
      Texts{"Check Calibration: Only a calibration of S21 alone leaves both matches uncorrected."});
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

TEST_F(CheckWindow, CancelAtAPromptEndsTheCheckAndNothingIsMeasured) {
  CalibrateS11();
  Check("Standards");
  const double before = SizeAt(CheckTerm::Directivity, 50);
  vna.fake.Messages.clear();
  vna.fake.Answers = {Answer::Ok, Answer::Cancel};
  Check("Standards");
  EXPECT_EQ(vna.fake.Messages.size(), 2u) << "the third device is not asked for";
  EXPECT_EQ(vna.Value("CheckCal.Note"), "Cancelled: earlier results are kept.");
  EXPECT_EQ(SizeAt(CheckTerm::Directivity, 50), before);
  EXPECT_EQ(ReadCheckTrend(CheckTrendPath(vna.session))->size(), 1u);
  EXPECT_FALSE(vna.At("CheckCal.ProgressBar1").Shown);
  EXPECT_TRUE(vna.At("CheckCal.Check").Enabled);
}

TEST_F(CheckWindow, CancelEndsTheSweepAndWhatWasFoundBeforeStays) {
  CalibrateS11();
  EXPECT_FALSE(vna.At("CheckCal.CancelCheck").Enabled);
  Check("Standards");
  const double before = SizeAt(CheckTerm::Directivity, 50);
  vna.instrument.SetPace(sim::Pace::Baud115200);
  loadInstead = "port1 mismatch 10";
  vna.fake.OnBreathe = [&] {
    if (vna.fake.Messages.size() == 2 && vna.At("CheckCal.ProgressBar1").Percent == 30) {
      EXPECT_TRUE(vna.Click("CheckCal.CancelCheck"));
    }
  };
  vna.fake.Messages.clear();
  Check("Standards");
  EXPECT_EQ(vna.fake.Messages.size(), 2u) << "the third device is not asked for";
  EXPECT_EQ(vna.Troubles(), Texts{});
  EXPECT_EQ(vna.Value("CheckCal.Note"), "Cancelled: earlier results are kept.");
  EXPECT_EQ(vna.Value("CheckCal.Verdict"), "");
  EXPECT_EQ(SizeAt(CheckTerm::Directivity, 50), before);
  EXPECT_EQ(ReadCheckTrend(CheckTrendPath(vna.session))->size(), 1u);
  EXPECT_FALSE(vna.At("CheckCal.CancelCheck").Enabled);
  EXPECT_FALSE(vna.At("CheckCal.ProgressBar1").Shown);
  // The line is in step: the next check comes in whole.
  vna.fake.OnBreathe = nullptr;
  loadInstead.clear();
  Check("Standards");
  EXPECT_EQ(vna.Value("CheckCal.Verdict"), "Good");
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
            Texts{"Check Calibration: More points are needed: at least 12 in 500 MHz."});
}

// A wrong standard is no verdict on the calibration: it is refused, and neither stored nor
// recorded.
struct WrongDevice {
  const char* Name;
  const char* Method;
  const char* Prompt;
  const char* Bench;
  const char* Message;  // its start, after the title
};
constexpr const char* kLinePrompt = "Short Circuit on Port 1 behind the air line of 300 mm";
constexpr const char* kMismatchPrompt = "Mismatch on Port 1 behind the air line of 300 mm";
constexpr WrongDevice kWrongDevices[] = {
    {"MismatchForShort", "ShortedLine", kLinePrompt, "port1 mismatch 20 line 300 mm",
     "What was measured reflects -2"},
    {"LoadForShort", "ShortedLine", kLinePrompt, "port1 load", "What was measured reflects -"},
    {"OpenForShort", "ShortedLine", kLinePrompt, "port1 open line 300 mm",
     "What was measured is not a short behind a line of this length."},
    {"ShortWithoutLine", "ShortedLine", kLinePrompt, "port1 short",
     "The phase is that of a line of "},
    {"OtherLine", "ShortedLine", kLinePrompt, "port1 short line 250 mm",
     "The phase is that of a line of 25"},
    {"ShortForMismatch", "MismatchedLine", kMismatchPrompt, "port1 short line 300 mm",
     "What was measured reflects "},
    {"OtherLineForMismatch", "MismatchedLine", kMismatchPrompt, "port1 mismatch 20 line 150 mm",
     "The phase is that of a line of 1"},
    {"ShortForOpen", "Standards", "Open Circuit on Port 1 (0.00mm)", "port1 short",
     "What was measured is not the open of the kit, or the calibration was made with a wrong "
     "standard."},
    {"OpenForShortOfKit", "Standards", "Short Circuit on Port 1 (0.00mm)", "port1 open",
     "What was measured is not the short of the kit"},
    {"OpenForLoad", "Standards", "Matched Load on Port 1", "port1 open",
     "What was measured is not the load of the kit"},
    {"NothingForThrough", "Through", "Connect Through (0.00 mm)", "port1 nothing",
     "What was measured is not a through of zero length (S21 -"},
    {"PadForThrough", "Through", "Connect Through (0.00 mm)", "attenuator 3",
     "What was measured is not a through of zero length (S21 -3.0 dB)"},
    {"SmallPadForThrough", "Through", "Connect Through (0.00 mm)", "attenuator 1",
     "What was measured is not a through of zero length (S21 -1.0 dB)"},
    {"LineForThrough", "Through", "Connect Through (0.00 mm)", "line 100",
     "What was measured is not a through of zero length (S21 0.0 dB)"},
    {"ShortLineForThrough", "Through", "Connect Through (0.00 mm)", "line 5",
     "S21 has the phase of a line of 5.0 mm: the through must have zero length, now and in the "
     "calibration."},
    {"ShortForOpenOfPort2", "Standards2", "Open Circuit on Port 2 (0.00mm)", "port2 short",
     "What was measured is not the open of the kit, or the calibration was made with a wrong "
     "standard."},
    {"ShortOnPort2ForLoads", "Isolation", "Terminate Ports 1 & 2", "port2 short",
     "Port 2 reflects 0.0 dB: connect loads to both ports."},
    {"OpenOnPort2ForLoads", "Isolation", "Terminate Ports 1 & 2", "port2 open",
     "Port 2 reflects 0.0 dB: connect loads to both ports."},
    {"OpenOnPort1ForLoads", "Isolation", "Terminate Ports 1 & 2", "port1 open",
     "Port 1 reflects 0.0 dB: connect loads to both ports."},
    {"ThroughForLoads", "Isolation", "Terminate Ports 1 & 2", "through",
     "Between the ports 0.0 dB is transmitted: terminate both of them."},
};

struct WrongDeviceInACheck : CheckWindow, testing::WithParamInterface<WrongDevice> {};

TEST_P(WrongDeviceInACheck, IsRefused) {
  const WrongDevice& wrong = GetParam();
  CalibrateAll("401");
  Check(wrong.Method);
  EXPECT_EQ(vna.Troubles(), Texts{}) << "the right one";
  const std::string verdict = vna.Value("CheckCal.Verdict");
  EXPECT_NE(verdict, "");
  const auto found = std::make_unique<CalCheck>(Found());
  instead[wrong.Prompt] = wrong.Bench;
  Check(wrong.Method);
  ASSERT_EQ(vna.Troubles().size(), 1u);
  EXPECT_TRUE(vna.Troubles()[0].starts_with(std::string("Check Calibration: ") + wrong.Message))
      << vna.Troubles()[0];
  EXPECT_EQ(vna.Value("CheckCal.Verdict"), "");
  EXPECT_EQ(vna.Value("CheckCal.Note"), "");
  EXPECT_EQ(ReadCheckTrend(CheckTrendPath(vna.session))->size(), 1u);
  for (std::size_t i = 0; i < kCheckTerms; ++i)
    EXPECT_EQ(Found().Of(static_cast<CheckTerm>(i)).Size, found->Of(static_cast<CheckTerm>(i)).Size)
        << i << ": earlier results are kept";
}

INSTANTIATE_TEST_SUITE_P(CheckCalibration, WrongDeviceInACheck, testing::ValuesIn(kWrongDevices),
                         [](const auto& wrong) { return std::string(wrong.param.Name); });

TEST_F(CheckWindow, OfTheMatchOfThePortsRefusesWrongStandards) {
  CalibrateS21();
  instead["Open Circuit on Port 1 (0.00mm)"] = "port1 short";
  Check("PortMatch");
  EXPECT_EQ(vna.Troubles(),
            Texts{"Check Calibration: Two of the three standards measure the same: no result."});
  vna.fake.Messages.clear();
  instead.clear();
  instead["Connect Through (0.00 mm)"] = "port1 open";
  Check("PortMatch");
  ASSERT_EQ(vna.Troubles().size(), 1u);
  EXPECT_TRUE(vna.Troubles()[0].ends_with(" dB: connect the ports directly to each other."))
      << vna.Troubles()[0];
  EXPECT_FALSE(Found().Any());
}

// A typed length that is not the line's is refused, and no verdict of an earlier check remains.
TEST_F(CheckWindow, OfALineOfAnotherLengthThanTypedIsRefused) {
  CalibrateS11("401");
  Check("ShortedLine");
  EXPECT_EQ(vna.Value("CheckCal.Verdict"),
            "Good as far as a line shows; not checked: tracking like length or loss");
  vna.Type("CheckCal.LineLength", "9");
  vna.Click("CheckCal.Check");
  EXPECT_EQ(vna.Value("CheckCal.Verdict"), "");
  EXPECT_EQ(vna.Value("CheckCal.Note"), "");
  for (const char* method : {"ShortedLine", "MismatchedLine"})
    for (const char* typed : {"100", "200", "280", "330", "600"}) {
      vna.Type("CheckCal.LineLength", typed);
      vna.fake.Messages.clear();
      const std::string prompt = std::string(method[0] == 'S' ? "Short Circuit" : "Mismatch") +
                                 " on Port 1 behind the air line of " + typed + " mm";
      instead[prompt] =
          method[0] == 'S' ? "port1 short line 300 mm" : "port1 mismatch 20 line 300 mm";
      Check(method);
      ASSERT_EQ(vna.Troubles().size(), 1u) << method << " " << typed;
      EXPECT_NE(vna.Troubles()[0].find("The phase is that of a line of "), std::string::npos)
          << vna.Troubles()[0];
      EXPECT_NE(vna.Troubles()[0].find(" mm, not of " + std::string(typed)), std::string::npos)
          << vna.Troubles()[0];
    }
  // An offset of the standard behind the line is no other line.
  vna.fake.Messages.clear();
  vna.Type("CheckCal.LineLength", "296");
  instead["Short Circuit on Port 1 behind the air line of 296 mm"] = "port1 short line 300 mm";
  Check("ShortedLine");
  EXPECT_EQ(vna.Troubles(), Texts{});
  EXPECT_NE(vna.Value("CheckCal.Note")
                .find("Tracking that acts like length or loss of the line is "
                      "not found: if the line has exactly 296 mm, -"),
            std::string::npos)
      << vna.Value("CheckCal.Note");
}

TEST_F(CheckWindow, OfASilentInstrumentReportsItAndFindsNothing) {
  CalibrateS11();
  vna.Bench("fault silence");
  Check("Standards");
  EXPECT_EQ(vna.Troubles(), (Texts{"Set Averages: No Response", "Check Calibration: No Response"}));
  EXPECT_FALSE(Found().Any());
  EXPECT_TRUE(ReadCheckTrend(CheckTrendPath(vna.session))->empty());
}

}  // namespace
}  // namespace qk::test
