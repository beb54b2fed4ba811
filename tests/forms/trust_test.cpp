// SPDX-License-Identifier: MIT
// How far to trust a number, in the whole program: hints on their bench conditions and not on the
// harmless neighbours, repeated sweeps, the uncertainty on graphs, in read-outs and files.
#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>

#include "check_fixture.h"
#include "control/graph_verbs.h"
#include "control/output_verbs.h"
#include "control/report.h"
#include "core/text.h"
#include "files/whole_file.h"
#include "forms/hints.h"

namespace qk::test {
namespace {

TEST_F(Trust, StatisticsTakeTheSweepsWantedAndStop) {
  vna.Bench("attenuator 10");
  vna.Click("Form1.SweepStats");
  vna.Type("SweepStats.Sweeps", "6");
  EXPECT_TRUE(vna.Click("SweepStats.Start"));
  EXPECT_TRUE(vna.program.controller().Idle());
  EXPECT_EQ(vna.Value("SweepStats.State"), "6 of 6 sweeps");
  EXPECT_EQ(vna.Value("SweepStats.Outliers"), "No outlier");
  EXPECT_NE(vna.Value("SweepStats.Spread").find(" MHz: spread "), std::string::npos);
  const std::string path = vna.folder.File("repeats.csv");
  vna.fake.Choices.push_back(path);
  EXPECT_TRUE(vna.Click("SweepStats.Save"));
  const std::string csv = ReadWhole(path, 1 << 20).Value();
  EXPECT_TRUE(csv.starts_with("# Program: qk47-vna ")) << csv.substr(0, 200);
  EXPECT_NE(csv.find("\r\n# Statistics: 6 of 6 sweeps\r\n# Outliers: none\r\n"
                     "freq_Hz,S21_mean_re,S21_mean_im,S21_s,S21_s_mean,S21_var_re,S21_var_im,"
                     "S21_cov,"),
            std::string::npos)
      << csv.substr(0, 900);
  EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n') - std::count(csv.begin(), csv.end(), '#'),
            102);
}

TEST_F(Trust, StatisticsGiveTheSpreadOfASweepAndOfTheMean) {
  vna.Bench("attenuator 10");
  vna.Click("Form1.SweepStats");
  vna.Type("SweepStats.Sweeps", "9");
  EXPECT_TRUE(vna.Click("SweepStats.Start"));
  const PointStatistics& s21 = *vna.program.controller().quality().Run.Of(Parameter::S21);
  int worst = 0;
  for (int k = 1; k < 101; ++k)
    if (s21.Deviation(k) > s21.Deviation(worst)) worst = k;
  const std::string text = vna.Value("SweepStats.Spread");
  const std::string s = FormatNumber(s21.Deviation(worst), "0.00E+00");
  const std::string ofMean = FormatNumber(s21.Deviation(worst) / 3, "0.00E+00");
  EXPECT_TRUE(text.starts_with("S21 at ")) << text;
  EXPECT_NE(text.find(" MHz: spread s " + s + " at most, of the mean s/√9 " + ofMean + "\n"),
            std::string::npos)
      << text;
  EXPECT_NEAR(std::stod(text.substr(text.find("mean with s: ") + 13)), -10, 0.05) << text;
  EXPECT_NE(text.find(" ± 0.00"), std::string::npos) << text;
}

// Of a mean that is next to nothing a spread in decibels has an upper end alone.
TEST_F(Trust, StatisticsGiveNoDecibelsThatNobodyCanStandFor) {
  vna.Bench("port1 load");
  vna.Bench("port2 load");
  vna.Click("Form1.SweepStats");
  vna.Type("SweepStats.Sweeps", "5");
  EXPECT_TRUE(vna.Click("SweepStats.Start"));
  std::istringstream lines(vna.Value("SweepStats.Spread"));
  int count = 0;
  for (std::string line; std::getline(lines, line);) {
    if (line.find("mean with s: ") == std::string::npos) continue;
    ++count;
    const std::string db = line.substr(line.find("mean with s: ") + 13);
    const bool oneSided = db.find(" dB, at most -") != std::string::npos;
    const bool twoSided = db.find(" +") != std::string::npos || db.find(" ± ") != std::string::npos;
    EXPECT_TRUE(oneSided || twoSided) << line;
    EXPECT_LT(std::stod(db), -60) << line;
  }
  EXPECT_EQ(count, 4);
}

TEST_F(Trust, StatisticsNameTheirOutliersInTheFile) {
  vna.Bench("attenuator 10");
  vna.Click("Form1.SweepStats");
  vna.Type("SweepStats.Sweeps", "12");
  int ended = 0;
  const long before = vna.program.controller().SweepsEnded();
  vna.fake.OnEvents = [&] {
    const int now = static_cast<int>(vna.program.controller().SweepsEnded() - before);
    if (now == ended) return;
    ended = now;
    if (now == 6) vna.Bench("step 0.3 after 0");  // the seventh sweep alone
    if (now == 7) vna.Bench("step none");
  };
  EXPECT_TRUE(vna.Click("SweepStats.Start"));
  vna.fake.OnEvents = nullptr;
  EXPECT_EQ(vna.Value("SweepStats.Outliers"), "Outlier: sweep 7");
  const auto saved = [this] {
    const std::string path = vna.folder.File("outliers.csv");
    vna.fake.Choices.push_back(path);
    EXPECT_TRUE(vna.Click("SweepStats.Save"));
    return ReadWhole(path, 1 << 20).Value();
  };
  EXPECT_NE(saved().find("\r\n# Statistics: 12 of 12 sweeps\r\n# Outliers: 7, counted\r\n"),
            std::string::npos);
  EXPECT_TRUE(vna.Click("SweepStats.LeaveOut"));
  EXPECT_EQ(vna.Value("SweepStats.Outliers"), "No outlier");
  EXPECT_FALSE(vna.Click("SweepStats.LeaveOut")) << "there is none left";
  EXPECT_NE(saved().find("\r\n# Statistics: 11 of 12 sweeps, left out 7\r\n# Outliers: none\r\n"),
            std::string::npos);
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

// ---- hints: each bench condition, and its harmless neighbour -----------------------------------

TEST_F(Trust, HintsAreNoneForTheFilterAThroughAnOpenAndAGoodAmplifier) {
  for (const char* device : {"filter", "through", "port1 open, port2 load", "port1 short",
                             "amplifier gain 6 p1db 30", "attenuator 10"}) {
    const std::string_view line = device;
    vna.Bench(std::string(line.substr(0, line.find(','))));
    if (line.find(',') != line.npos) vna.Bench(std::string(line.substr(line.find(',') + 2)));
    vna.program.controller().quality().Hints.Forget();
    Sweeps(20);
    EXPECT_EQ(Hints(), Texts{}) << device;
  }
}

TEST_F(Trust, HintsComeOnALooseConnectorAndShowInTheMainWindow) {
  vna.Bench("attenuator 3");
  Sweeps(8);
  EXPECT_FALSE(vna.At("Form1.Hint").Shown);
  EXPECT_FALSE(vna.At("Form1.SilenceHint").Shown);
  vna.Bench("connector loose 1");
  Sweeps(6);
  ASSERT_FALSE(Hints().empty());
  EXPECT_TRUE(Hints()[0].starts_with("Unsteady since 14:05") ||
              Hints()[0].starts_with("Passive device"))
      << Hints()[0];
  EXPECT_TRUE(vna.At("Form1.Hint").Shown);
  EXPECT_EQ(vna.At("Form1.Hint").Caption, Hints()[0]);
  // A click explains, and silences; nothing is a box.
  const HintKind worst = vna.program.controller().quality().Hints.Active()[0].Kind;
  vna.Click("Form1.Hint");
  EXPECT_EQ(vna.fake.Documents.back(), "manual:68-trust.md#" + std::string(HintTopic(worst)));
  vna.Click("Form1.SilenceHint");
  for (const Hint& hint : vna.program.controller().quality().Hints.Active())
    EXPECT_NE(hint.Kind, worst);
  while (vna.At("Form1.SilenceHint").Shown) vna.Click("Form1.SilenceHint");
  EXPECT_EQ(Hints(), Texts{});
  EXPECT_EQ(vna.Troubles(), Texts{});
}

TEST_F(Trust, HintsAreExplainedSilencedAndSwitchedInTheirWindow) {
  vna.Bench("port1 nothing");
  vna.Bench("port2 nothing");
  Sweeps(3);
  vna.Click("Form1.Hints");
  EXPECT_TRUE(vna.Window("Hints").Shown);
  vna.Click("Hints.Manual");
  EXPECT_EQ(vna.fake.Documents.back(), "manual:68-trust.md#Nothing seems connected");
  vna.Click("Hints.Silence");
  EXPECT_FALSE(vna.At("Form1.Hint").Shown);
  EXPECT_FALSE(vna.At("Hints.Silence").Enabled);
  EXPECT_FALSE(vna.At("Hints.Manual").Enabled);
  Sweeps(2);
  EXPECT_FALSE(vna.At("Form1.Hint").Shown) << "until the program ends";
  vna.Click("Hints.Listen");
  EXPECT_TRUE(vna.At("Form1.Hint").Shown);
  vna.Window("Hints").Tick("On", false);
  EXPECT_FALSE(vna.At("Form1.Hint").Shown);
  EXPECT_EQ(vna.Value("Form1.ShowHints"), "off");
  vna.Click("Form1.ShowHints");
  EXPECT_TRUE(vna.At("Form1.Hint").Shown);
  EXPECT_EQ(vna.Value("Hints.On"), "on");
}

TEST_F(Trust, HintsWindowSaysWhyItsListIsEmpty) {
  const auto says = [this](std::string_view text) {
    EXPECT_EQ(vna.Value("Hints.List"), "No hint");
    EXPECT_EQ(vna.Value("Hints.Explanation"), text);
  };
  vna.Click("Form1.Hints");
  says("Nothing has been measured yet: hints need two whole sweeps.");
  vna.Bench("attenuator 10");
  Sweeps(1);
  says("One sweep has been measured so far: hints need two whole sweeps.");
  Sweeps(1);
  says("The last sweeps show nothing unusual.");
  vna.Bench("port1 nothing");
  vna.Bench("port2 nothing");
  Sweeps(3);
  EXPECT_EQ(vna.Value("Hints.List"), "Nothing seems connected");
  vna.Click("Hints.Silence");
  says("The last sweeps show nothing else unusual. Silenced hints: 1 (Show All Again).");
  vna.Window("Hints").Tick("On", false);
  says("Hints are switched off.");
  vna.Window("Hints").Tick("On", true);
  vna.Click("Hints.Listen");
  EXPECT_EQ(vna.Value("Hints.List"), "Nothing seems connected");
  vna.fake.OnAsk = {};
  vna.fake.Answers.push_back(Answer::Yes);  // "Keep existing Cal (interpolate new points)?"
  vna.SetSweep("3", "3000", "201");
  Sweeps(1);
  says("One sweep has been measured so far: hints need two whole sweeps.");
}

TEST_F(Trust, HintsComeOnAnInterpolatedCalibration) {
  vna.Bench("attenuator 10");
  vna.fake.OnAsk = {};
  vna.fake.Answers.push_back(Answer::Yes);  // "Keep existing Cal (interpolate new points)?"
  vna.SetSweep("3", "3000", "201");
  Sweeps(3);
  EXPECT_EQ(Hints(), Texts{"Calibration interpolated from 101 to 201 points"});
}

TEST_F(Trust, HintsComeOnAnOldCalibrationAndNotBefore8Hours) {
  vna.Bench("attenuator 10");
  vna.clock.AdvanceMs(std::int64_t{7} * 3600 * 1000);
  Sweeps(3);
  EXPECT_EQ(Hints(), Texts{});
  vna.clock.AdvanceMs(std::int64_t{2} * 3600 * 1000);
  Sweeps(3);
  ASSERT_EQ(Hints().size(), 1u);
  EXPECT_TRUE(Hints()[0].starts_with("Calibrated 9 h ago")) << Hints()[0];
}

// They spoke of a calibration that is no longer in force.
TEST_F(Trust, HintsGoWithTheCalibrationAndWithTheSession) {
  const std::string path = vna.folder.File("a.cal");
  vna.fake.Choices.push_back(path);
  vna.Click("Form1.SaveCal");
  vna.Bench("attenuator 10");
  vna.clock.AdvanceMs(std::int64_t{9} * 3600 * 1000);
  Sweeps(3);
  ASSERT_EQ(Hints().size(), 1u);
  ASSERT_TRUE(vna.At("Form1.Hint").Shown);
  vna.fake.Choices.push_back(path);
  vna.Click("Form1.LoadCal");
  EXPECT_EQ(Hints(), Texts{});
  EXPECT_FALSE(vna.At("Form1.Hint").Shown);
  Sweeps(3);
  ASSERT_TRUE(vna.At("Form1.Hint").Shown) << "the loaded one is as old";
  vna.fake.OnAsk = {};
  vna.fake.Answers = {Answer::No};  // "Keep existing Cal (interpolate new points)?"
  vna.SetSweep("3", "3000", "201");
  EXPECT_FALSE(vna.session.Cal.AnyKind());
  EXPECT_EQ(Hints(), Texts{});
  EXPECT_FALSE(vna.At("Form1.Hint").Shown);
}

// The delay of the filter is in the picture of its preset, over the whole pass band.
TEST_F(Trust, ThePresetOfAFilterShowsItsDelay) {
  vna.fake.OnAsk = {};
  vna.fake.Answers = {Answer::Yes};  // "Keep existing Cal (interpolate new points)?"
  vna.SetSweep("800", "1000", "201");
  vna.Bench("filter");
  vna.Click("Form1.PresetFilter");
  Sweeps(1);
  const ChannelSettings& s21 = vna.session.Channel(1);
  const ChannelSettings& delay = vna.session.Channel(4);
  const double top = delay.Reference + delay.RefPosition * delay.Scale;
  const double bottom = top - 8 * delay.Scale;
  int seen = 0;
  double most = 0;
  for (std::size_t i = 2; i <= 201; ++i) {
    if (s21.Value[i] < -3.5) continue;
    ++seen;
    most = std::max(most, delay.Value[i]);
    EXPECT_LT(delay.Value[i], top) << i;
    EXPECT_GT(delay.Value[i], bottom) << i;
  }
  EXPECT_GT(seen, 10);
  EXPECT_GT(most, 5);
}

TEST_F(Trust, HintsComeOnAWarmedCalibrationAndNotAtTwoDegrees) {
  vna.Bench("attenuator 10");
  vna.Bench("temperature 33");
  vna.program.Tick(TimerId::Timer1);
  Sweeps(3);
  EXPECT_EQ(Hints(), Texts{});
  vna.Bench("temperature 35");
  for (int n = 0; n < 40; ++n) vna.program.Tick(TimerId::Timer1);
  Sweeps(3);
  ASSERT_EQ(Hints().size(), 1u) << *vna.session.Receiver.Temperature;
  EXPECT_TRUE(Hints()[0].starts_with("Calibrated ") &&
              Hints()[0].find("now 35") != std::string::npos)
      << Hints()[0];
}

TEST_F(Trust, HintsComeWhereS21AndS12Differ) {
  const auto write = [this](double reverse) {
    const std::string path = vna.folder.File("skewed.s2p");
    std::ofstream file(path);
    file << "# MHz S MA R 50\n";
    for (const int mhz : {1, 1000, 3100})
      file << mhz << " 0.05 0 0.5 0 " << reverse << " 0 0.05 0\n";
    return path;
  };
  vna.Bench("device " + write(0.495));  // 1 %
  Sweeps(6);
  EXPECT_EQ(Hints(), Texts{});
  vna.Bench("device " + write(0.43));
  Sweeps(12);  // the change itself counts as noise for a while
  const Texts hints = Hints();
  EXPECT_TRUE(std::ranges::any_of(hints, [](const std::string& text) {
    return text.starts_with("S21 and S12 differ by 1.3 dB at ");
  })) << (hints.empty() ? "none" : hints[0]);
}

TEST_F(Trust, HintsComeOnAPhaseThatTurnsTooFast) {
  vna.Bench("line 3000");  // 108 degrees a point
  Sweeps(4);
  EXPECT_EQ(Hints(), Texts{});
  vna.Bench("line 5000");  // 180
  Sweeps(4);
  EXPECT_EQ(Hints(), Texts{"Phase turns too fast: more points or less span"});
}

TEST_F(Trust, HintsComeNearTheNoiseOnlyWhereSomethingReadsIt) {
  vna.Bench("attenuator 110");
  vna.session.Channel(1).Parameter = Parameter::S21;
  Sweeps(8);
  EXPECT_EQ(Hints(), Texts{});
  PutMarker(vna.program.controller(), 1, 50);
  Sweeps(6);
  ASSERT_EQ(Hints().size(), 1u);
  EXPECT_TRUE(Hints()[0].starts_with("Near the noise at ")) << Hints()[0];
  vna.Bench("attenuator 30");
  Sweeps(8);
  EXPECT_EQ(Hints(), Texts{}) << "the same marker, 80 dB higher";
}

TEST_F(Trust, HintsComeWhereNothingIsConnected) {
  vna.Bench("port1 nothing");
  vna.Bench("port2 nothing");
  Sweeps(3);
  EXPECT_EQ(Hints(), Texts{"Nothing seems connected"});
}

TEST_F(Trust, HintsAreNoneForAnOpenOrAShortWithNothingAtPort2) {
  vna.Bench("port2 nothing");
  for (const char* standard :
       {"port1 open", "port1 short", "port1 open offset 5 mm", "port1 short offset 5 mm",
        "port1 short offset 0.5 mm", "port1 open line 200", "port1 short line 100"}) {
    vna.Bench(standard);
    vna.program.controller().quality().Hints.Forget();
    Sweeps(20);
    EXPECT_EQ(Hints(), Texts{}) << standard;
  }
  vna.Bench("port1 nothing");
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

TEST_F(CheckWindow, HintsComeOnAReflectionAboveOneAndNotOnAnOpen) {
  CalibrateS11();
  vna.Bench("noise on");
  const auto hints = [this] { return vna.program.controller().quality().Hints.Active(); };
  vna.Bench("port1 open");
  for (int n = 0; n < 6; ++n) vna.Measure();
  EXPECT_TRUE(hints().empty());
  vna.Bench("step 0.5 after 0");
  for (int n = 0; n < 3; ++n) vna.Measure();
  ASSERT_FALSE(hints().empty());
  EXPECT_TRUE(std::ranges::any_of(hints(), [](const Hint& hint) {
    return hint.Kind == HintKind::ReflectionAboveOne && hint.Text.starts_with("S11 above 1 at ") &&
           hint.Text.ends_with(" MHz: connection or calibration");
  }));
}

TEST_F(CheckWindow, HintsComeOnEchoesFromBeyondTheTimeRangeAndNotWithinIt) {
  CalibrateS11("1024 (TD)");
  vna.Bench("noise on");
  ASSERT_EQ(vna.session.Plan.NumPoints, kMaxPoints);
  ASSERT_TRUE(ShowGraphType(vna.program.controller(), 1, GraphType::Td));
  const auto folds = [this] {
    const auto hints = vna.program.controller().quality().Hints.Active();
    return std::ranges::any_of(hints,
                               [](const Hint& hint) { return hint.Kind == HintKind::FoldsBack; });
  };
  for (const char* harmless :
       {"port1 short", "port1 open", "port1 load", "port1 mismatch 20", "port1 short line 300",
        "port1 short line 20000", "port1 short line 40000"}) {
    vna.Bench(harmless);
    for (int n = 0; n < 3; ++n) vna.Measure();
    EXPECT_FALSE(folds()) << harmless;
  }
  for (const char* echo : {"port1 short line 47500", "port1 short line 48000 loss 1",
                           "port1 open line 46000", "port1 mismatch 6 line 49000"}) {
    vna.Bench(echo);  // 317 ns there and back, of 333
    for (int n = 0; n < 3; ++n) vna.Measure();
    EXPECT_TRUE(folds()) << echo;
    vna.Bench("port1 short line 40000");
    for (int n = 0; n < 3; ++n) vna.Measure();
    EXPECT_FALSE(folds()) << echo;
  }
}

// ---- the uncertainty on graphs, in read-outs and in files --------------------------------------

struct Uncertain : Trust {
  Uncertain() {
    vna.Bench("attenuator 20");
    Sweeps(1);
  }
  void CheckAll() {
    for (const char* method : {"Standards", "Through", "Isolation"}) Check(method);
    vna.Bench("attenuator 20");
    Sweeps(5);
  }
  Controller& controller() { return vna.program.controller(); }
  std::vector<Drawn> Polygons() { return OfKind(vna.surface.Overlay(), Drawn::Kind::Polygon); }
  // The words beside the titles.
  std::string Words() {
    std::string all;
    for (const std::string& text : TextsOf(vna.surface.Overlay())) all += text + "\n";
    return all;
  }
};

TEST_F(Uncertain, BandIsOffAtTheStartAndChangesNothingThen) {
  CheckAll();
  vna.program.graphs().RedrawAll(true);
  EXPECT_TRUE(Polygons().empty());
  EXPECT_EQ(vna.Value("Form1.UncertaintyBand"), "off");
  EXPECT_EQ(Words().find("k=2"), std::string::npos);
}

TEST_F(Uncertain, BandSaysWhatIsMissingAndThenWhatItRestsOn) {
  vna.session.Channel(1).Parameter = Parameter::S21;
  vna.Click("Form1.UncertaintyBand");
  EXPECT_EQ(vna.Value("Form1.UncertaintyBand"), "on");
  EXPECT_TRUE(Polygons().empty());
  EXPECT_NE(Words().find("no \xC2\xB1U: not checked: transmission tracking"), std::string::npos)
      << Words();
  Check("Through");
  vna.program.graphs().RedrawOverlay();
  EXPECT_EQ(Polygons().size(), 1u);
  EXPECT_NE(Words().find(
                "without directivity, source match, isolation, noise, linearity, cables, port 2"),
            std::string::npos)
      << Words();
  vna.Bench("attenuator 20");
  Sweeps(5);
  vna.program.graphs().RedrawOverlay();
  EXPECT_NE(Words().find(
                "\xC2\xB1U k=2  without directivity, source match, isolation, linearity, cables"),
            std::string::npos)
      << Words();
  EXPECT_NE(
      UncertaintyBasis(controller().quality(), vna.session, Parameter::S21)
          .find(
              "Not checked, taken as 0: directivity, source match, isolation. Left out: linearity "
              "of the receiver, cables, connectors, errors of port 2."),
      std::string::npos);
  vna.Click("Form1.UncertaintyBand");
  EXPECT_TRUE(Polygons().empty());
}

TEST_F(Uncertain, OtherParametersAndChangedDataHaveNoneAndSaySo) {
  CheckAll();
  vna.Click("Form1.UncertaintyBand");
  const auto words = [this](Parameter parameter) {
    vna.session.Channel(1).Parameter = parameter;
    vna.program.graphs().ReplotAll();
    EXPECT_TRUE(Polygons().empty());
    return Words();
  };
  EXPECT_NE(words(Parameter::S12).find("no \xC2\xB1U: checks look at S11 and S21, not at S12"),
            std::string::npos);
  vna.session.Impedance.DeEmbedOn = true;
  EXPECT_NE(words(Parameter::S11).find("not known after de-embedding"), std::string::npos);
  vna.session.Impedance.DeEmbedOn = false;
  vna.session.Impedance.ZoConvertOn = true;
  EXPECT_NE(words(Parameter::S11).find("not known after impedance conversion"), std::string::npos);
  vna.session.Impedance.ZoConvertOn = false;
  vna.session.Channel(1).GraphType = GraphType::GroupDelay;
  EXPECT_NE(words(Parameter::S21).find("no \xC2\xB1U: Group Delay"), std::string::npos);
}

TEST_F(Uncertain, HoldsTheTruthAtNearlyEveryPoint) {
  CheckAll();
  const QualityState& quality = controller().quality();
  int inside = 0;
  for (int k = 0; k < vna.session.Plan.NumPoints; ++k) {
    const Complex z = vna.session.Data.S21[k];
    const double u = UncertaintyAt(quality, vna.session, Parameter::S21, k).value_or(0);
    EXPECT_LT(kCoverage * u, 0.01) << "0.9 dB at most on a good calibration";
    inside += std::abs(std::hypot(z.re, z.im) - 0.1) <= kCoverage * u ? 1 : 0;
  }
  EXPECT_GE(inside, vna.session.Plan.NumPoints * 93 / 100);
}

TEST_F(Uncertain, IsAColumnOfTheCsvThatSaysWhatItRestsOn) {
  const std::string path = vna.folder.File("u.csv");
  CsvChoice choice;
  choice.Parameters = {true, true, true, false};
  choice.With(CsvColumn::Mag).With(CsvColumn::Uncertainty);
  const Result<Done> refused = SaveCsv(controller(), path, choice);
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.Why().Message, "no uncertainty of S11: not checked: directivity");
  EXPECT_FALSE(std::ifstream(path).good());
  CheckAll();
  ASSERT_TRUE(SaveCsv(controller(), path, choice));
  const std::string csv = ReadWhole(path, 1 << 20).Value();
  EXPECT_NE(csv.find("\r\n# Uncertainty S21_U: Coverage k = 2 (about 95 %). Through "),
            std::string::npos)
      << csv.substr(0, 1500);
  EXPECT_NE(csv.find("\r\nfreq_Hz,S11_mag,S11_U,S21_mag,S21_U,S12_mag\r\n"), std::string::npos);
  choice.ApplyMemoryMath = true;
  EXPECT_EQ(SaveCsv(controller(), path, choice).Why().Message,
            "the uncertainty of values after memory math or a gate is not known");
}

TEST_F(Uncertain, CsvSaysThatNoiseIsLeftOutUntilFourSweepsHaveShownIt) {
  CheckAll();
  vna.Bench("attenuator 6");
  CsvChoice choice;
  choice.Parameters = {false, true, false, false};
  choice.With(CsvColumn::Uncertainty);
  const std::string path = vna.folder.File("noise.csv");
  for (int n = 1; n <= 5; ++n) {
    Sweeps(1);
    ASSERT_TRUE(SaveCsv(controller(), path, choice));
    const std::string csv = ReadWhole(path, 1 << 20).Value();
    const bool without =
        csv.find(" Left out: noise (too few sweeps so far), ") != std::string::npos;
    EXPECT_EQ(without, n < 4) << n;
  }
}

TEST_F(Uncertain, ReportCarriesTheLastCheckAlsoOfAnEarlierRun) {
  const auto report = [this] {
    std::string all;
    for (const ReportBlock& block : MakeReport(controller(), {}, {}).Blocks) {
      if (const auto* heading = std::get_if<ReportHeading>(&block)) all += "# " + heading->Text;
      if (const auto* text = std::get_if<ReportParagraph>(&block)) all += text->Text;
      if (const auto* table = std::get_if<ReportTable>(&block))
        for (const auto& row : table->Rows)
          for (const std::string& cell : row) all += cell + "|";
      all += "\n";
    }
    return all;
  };
  EXPECT_NE(
      report().find("# Last check of the calibration\nThis calibration has not been checked.\n"),
      std::string::npos)
      << report();
  CheckAll();
  const auto has = [](const std::string& all, const char* text) {
    return all.find(text) != std::string::npos;
  };
  const std::string checked = report();
  EXPECT_TRUE(has(checked, "Directivity|-")) << checked;
  EXPECT_TRUE(has(checked, "|good|Three standards (same kit)|20")) << checked;
  EXPECT_TRUE(has(checked, "Transmission tracking|0.0")) << checked;
  EXPECT_FALSE(has(checked, "Uncertainty of S11: ")) << "its band is off";
  controller().quality().Check.Forget();  // as after a new start of the program
  EXPECT_EQ(report(), checked);
  CheckAll();
  vna.Click("Form1.UncertaintyBand");
  EXPECT_TRUE(has(
      report(), "Uncertainty of S11: Coverage k = 2 (about 95 %). Three standards (same kit) 20"));
}

TEST_F(Uncertain, MarkerTableReadsItWithTheBand) {
  CheckAll();
  ASSERT_TRUE(ShowParameter(controller(), 1, Parameter::S21));
  PutMarker(controller(), 1, 30);
  vna.Click("Form1.MarkerTable");
  const std::string plain = vna.At("MarkerTable.Value11").Caption;
  EXPECT_TRUE(plain.starts_with("-20.") || plain.starts_with("-19.9")) << "(" << plain << ")";
  EXPECT_EQ(plain.find("\xC2\xB1"), std::string::npos);
  vna.Click("Form1.UncertaintyBand");
  const std::string banded = vna.At("MarkerTable.Value11").Caption;
  EXPECT_NE(banded.find(" \xC2\xB1 0.0"), std::string::npos) << banded;
  EXPECT_TRUE(banded.ends_with(" dB")) << banded;
}

TEST_F(Uncertain, StatisticsBandStandsAboutTheRunAndSaysSo) {
  vna.session.Channel(1).Parameter = Parameter::S21;
  vna.Click("Form1.StatisticsBand");
  EXPECT_NE(Words().find("no statistics: no repeated sweeps"), std::string::npos) << Words();
  vna.Click("Form1.SweepStats");
  vna.Type("SweepStats.Sweeps", "5");
  EXPECT_TRUE(vna.Click("SweepStats.Start"));
  vna.program.graphs().RedrawAll(true);
  EXPECT_EQ(Polygons().size(), 1u);
  EXPECT_NE(Words().find("mean \xC2\xB1 s of 5 sweeps  s of one sweep"), std::string::npos)
      << Words();
}

}  // namespace
}  // namespace qk::test
