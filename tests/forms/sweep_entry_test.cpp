// SPDX-License-Identifier: MIT
// The sweep entry of the calibration window, from typed fields to the bytes on the wire.
#include <gtest/gtest.h>

#include <algorithm>

#include "files/session_file.h"
#include "forms/sweep_entry_fixture.h"

namespace qk::test {
namespace {

TEST(SweepEntry, ShowsThePlanWhenTheWindowOpens) {
  SweepFixture vna;
  EXPECT_EQ(vna.Fields(), (Texts{"3.0000", "3000.0000", "29.9700", "101"}));
  EXPECT_EQ(vna.Value("Calibration.LvlCombo"), "0");
  EXPECT_EQ(vna.Value("Calibration.Option1"), "on");
  EXPECT_TRUE(vna.At("Calibration.Text3").ReadOnly);
}

TEST(SweepEntry, CentreAndSpanMayBeEnteredInPlaceOfStartAndStop) {
  SweepFixture vna;
  vna.Type("Calibration.Text1", "100");
  vna.Type("Calibration.Text2", "300");
  EXPECT_EQ(vna.Value("Calibration.Centre"), "200.0000");
  EXPECT_EQ(vna.Value("Calibration.Span"), "200.0000");
  vna.Type("Calibration.Span", "50");
  EXPECT_EQ(vna.Value("Calibration.Text1"), "175.0000");
  EXPECT_EQ(vna.Value("Calibration.Text2"), "225.0000");
  vna.Type("Calibration.Centre", "1000");
  EXPECT_EQ(vna.Value("Calibration.Text1"), "975.0000");
  vna.fake.host().windows.SessionChanged();
  EXPECT_EQ(vna.Value("Calibration.Text2"), "1025.0000") << "typed, so it waits for Apply";
  vna.Pick("Calibration.PntsCombo", "51");
  vna.Click("Calibration.Command1");
  EXPECT_EQ(vna.session.Plan.StartFreq, 975e6);
  EXPECT_EQ(vna.session.Plan.StopFreq, 1025e6);
  EXPECT_EQ(vna.Value("Calibration.Span"), "50.0000");
  EXPECT_EQ(vna.At("Calibration.Centre").Unit, "MHz");
  vna.Window("Calibration").Tick("Option2", true);
  EXPECT_EQ(vna.At("Calibration.Span").Unit, "kHz");
}

TEST(SweepEntry, TheStepFollowsTheEntriesAndPendsUntilTheyAreApplied) {
  SweepFixture vna;
  const auto step = [&] { return vna.Value("Calibration.Text3"); };
  const auto pends = [&] { return vna.At("Calibration.Text3").Pending(); };
  EXPECT_FALSE(pends());
  vna.Type("Calibration.Text1", "100");
  vna.Type("Calibration.Text2", "300");
  EXPECT_EQ(step(), "2.0000");
  EXPECT_TRUE(pends());
  EXPECT_TRUE(vna.At("Calibration.Centre").Pending());
  vna.Pick("Calibration.PntsCombo", "51");
  EXPECT_EQ(step(), "4.0000");
  vna.Type("Calibration.Span", "50");
  EXPECT_EQ(step(), "1.0000");
  EXPECT_TRUE(vna.At("Calibration.Text1").Pending());
  vna.Pick("Calibration.PntsCombo", "1024 (TD)");
  EXPECT_EQ(step(), "3.0000");
  vna.Pick("Calibration.PntsCombo", "51");
  vna.fake.host().windows.SessionChanged();
  EXPECT_EQ(step(), "1.0000");
  vna.Click("Calibration.Command1");
  EXPECT_EQ(step(), "1.0000");
  EXPECT_FALSE(pends());
  EXPECT_EQ(vna.session.Plan.StepFreq, 1e6);
  vna.Type("Calibration.Text2", "175.003");
  EXPECT_EQ(step(), "< 0.0001") << "Apply asks";
  vna.Type("Calibration.Text2", "175.0059");
  EXPECT_EQ(step(), "0.0001") << "118 Hz, in steps of 100 Hz";
  vna.Window("Calibration").Tick("Option2", true);
  vna.Type("Calibration.Text1", "3000");
  vna.Type("Calibration.Text2", "5000");
  EXPECT_EQ(step(), "40.0");
  EXPECT_EQ(vna.At("Calibration.Text3").Unit, "kHz");
}

// Escape answers No, which would drop the calibration or change the number of points.
TEST(SweepEntry, QuestionsWhoseNoChangesSomethingAreAnsweredByTheirButtonsAlone) {
  SweepFixture vna;
  vna.CalibratedFrom100To200MHz();
  vna.fake.Answers = {Answer::Yes, Answer::Yes};
  vna.Enter("150", "150.001", "51");
  ASSERT_EQ(vna.fake.Messages.size(), 2u);
  EXPECT_EQ(vna.fake.Messages[0].Text, "Keep existing Cal (interpolate new points)?");
  EXPECT_EQ(vna.fake.Messages[1].Text.substr(0, 33), "The freq step required is too sma");
  for (const Message& message : vna.fake.Messages) EXPECT_TRUE(message.NoActs) << message.Text;
}

TEST(SweepEntry, OffersItsChoices) {
  SweepFixture vna;
  EXPECT_EQ(vna.At("Calibration.PntsCombo").Entries,
            (Texts{"51", "101", "201", "401", "801", "1024 (TD)"}));
  const Texts levels = vna.At("Calibration.LvlCombo").Entries;
  EXPECT_EQ(levels.size(), 21u);
  EXPECT_EQ(levels.front(), "0");
  EXPECT_EQ(levels.back(), "-20");
}

TEST(SweepEntry, WhatWasMeasuredAtOtherFrequenciesIsNoMeasurementAtTheNewOnes) {
  SweepFixture vna;
  const auto measure = [&] {
    vna.program.graphs().RedrawAll(true);
    for (int i = 1; i <= 101; ++i) vna.program.graphs().PlotPoint(1, i, -20, 0);
    vna.session.Channel(1).Value.fill(-20);
    vna.session.Data.S11.Fill({0.1, 0});
    vna.session.Data.S21.Fill({0.5, 0});
  };
  const auto trace = [&] { return vna.program.graphs().Trace(0, kDataTrace).Value[50]; };
  measure();
  vna.Enter("3", "3000", "101");  // the plan in force, loaded once more
  EXPECT_EQ(trace(), -20);
  EXPECT_EQ(vna.session.Data.S11[50], (Complex{0.1, 0}));
  for (const auto& [start, stop, points] :
       {std::tuple{"3", "2000", "101"}, std::tuple{"4", "2000", "101"},
        std::tuple{"4", "2000", "201"}}) {
    measure();
    vna.Enter(start, stop, points);
    EXPECT_EQ(trace(), 0) << "flat at the reference";
    EXPECT_EQ(vna.session.Data.S11[50], (Complex{1e-6, 0}));
    EXPECT_EQ(vna.session.Data.S21[50], Complex{});
  }
}

TEST(SweepEntry, ApplyLoadsThePlanAndReportsStepAndLevel) {
  SweepFixture vna;
  vna.Pick("Calibration.LvlCombo", "-7");
  vna.Enter("10", "1010", "201");
  EXPECT_TRUE(vna.TakeMessages().empty());
  EXPECT_EQ(vna.session.Plan.StartFreq, 10e6);
  EXPECT_EQ(vna.session.Plan.StopFreq, 1010e6);
  EXPECT_EQ(vna.session.Plan.StepFreq, 5e6);
  EXPECT_EQ(vna.session.Plan.NumPoints, 201);
  EXPECT_EQ(vna.session.Plan.Port1Level, -7);
  EXPECT_TRUE(vna.session.Flags.SweepLoaded);
  EXPECT_EQ(vna.fake.Panels[7], "5.0000 MHz");
  EXPECT_EQ(vna.fake.Panels[4], "P1 Level: -7dBm");
  EXPECT_EQ(vna.fake.Panels[3], "UNCAL ?");  // no calibration was made at this level
  EXPECT_EQ(vna.Value("EnhancePara.ListLevel"), "-7");
  EXPECT_EQ(vna.Fields(), (Texts{"10.0000", "1010.0000", "5.0000", "201"}));
  EXPECT_EQ(vna.Value("Calibration.ProgressBar1"), "100");
  EXPECT_GT(vna.surface.Presented, 0);
  // The number of points precedes the records: "W" 2 0 0, then 0 201.
  EXPECT_EQ(vna.instrument.SweepRam[0], 0);
  EXPECT_EQ(vna.instrument.SweepRam[1], 201);
}

TEST(SweepEntry, KilohertzFieldsHaveOneDecimal) {
  SweepFixture vna;
  vna.Click("Calibration.Option2");
  vna.Enter("3000", "5000", "51");
  EXPECT_EQ(vna.session.Plan.FreqUnit, 1000);
  EXPECT_EQ(vna.session.Plan.StepFreq, 40000);
  EXPECT_EQ(vna.Fields(), (Texts{"3000.0", "5000.0", "40.0", "51"}));
  EXPECT_EQ(vna.fake.Panels[7], "40.0000 kHz");
}

TEST(SweepEntry, ALoadedPlanIsShownInTheFormOfALoadUntilTheNextApply) {
  SweepFixture vna;
  vna.Enter("100", "150", "101");  // 500 kHz steps
  EXPECT_EQ(vna.Fields(), (Texts{"100.0000", "150.0000", "0.5000", "101"}));
  const std::string file = vna.folder.File("a.cal");
  ASSERT_TRUE(SaveSession(file, vna.session).Ok());
  vna.Enter("200", "300", "51");
  vna.fake.Choices = {file};
  ASSERT_TRUE(vna.Click("Form1.LoadCal"));
  const Texts loaded{"100.0000", "150.0000", "500.0000 kHz", "101"};
  EXPECT_EQ(vna.Fields(), loaded);
  EXPECT_EQ(vna.At("Calibration.Text3").Unit, "");
  // Other changes of the session and opening the window again leave it.
  vna.Click("Form1.AverOn");
  EXPECT_EQ(vna.Fields(), loaded);
  vna.Click("Calibration.Cls_Cal");
  vna.OpenCalibration();
  EXPECT_EQ(vna.Fields(), loaded);
  vna.Click("Calibration.Command1");
  EXPECT_EQ(vna.Fields(), (Texts{"100.0000", "150.0000", "0.5000", "101"}));
}

TEST(SweepEntry, UnitAndKindAreChosenApart) {
  SweepFixture vna;
  vna.Click("Calibration.Option2");
  vna.Click("Calibration.Option3");
  EXPECT_EQ(vna.Value("Calibration.Option2"), "on");
  EXPECT_EQ(vna.Value("Calibration.Option3"), "on");
  EXPECT_EQ(vna.Value("Calibration.Option1"), "off");
}

TEST(SweepEntry, AStartOf3080MHzIsAccepted) {
  SweepFixture vna;
  vna.fake.Answers = {Answer::Yes};
  vna.Enter("3080", "3080", "51");
  EXPECT_EQ(vna.TakeMessages(), Texts{kStepQuestion});
  EXPECT_EQ(vna.session.Plan.StepFreq, 100);
  EXPECT_LE(vna.session.Plan.StopFreq, 3.08e9);
}

TEST(SweepEntry, AStartAboveTheRangeIsReportedAndEndsAt3Point08MHz) {
  SweepFixture vna;
  vna.Enter("3080.0001", "100", "51");
  EXPECT_EQ(vna.TakeMessages(), Texts{"Sweep Freq Set|Start Freq > 3.08GHz|exclamation|ok"});
  EXPECT_EQ(vna.session.Plan.StartFreq, 3.08e6);
}

TEST(SweepEntry, AStartBelowTheRangeIsReportedAndBecomes3MHz) {
  SweepFixture vna;
  vna.Enter("2.9", "100", "51");
  EXPECT_EQ(vna.TakeMessages(), Texts{"Sweep Freq Set|Start Freq < 3MHz|exclamation|ok"});
  EXPECT_EQ(vna.session.Plan.StartFreq, 3e6);
}

TEST(SweepEntry, AStopBelowTheStartIsReportedAndBecomes3080MHz) {
  SweepFixture vna;
  vna.Enter("100", "99", "51");
  EXPECT_EQ(vna.TakeMessages(),
            Texts{"Sweep Freq Set|Stop Frequency < Start Frequency|exclamation|ok"});
  EXPECT_EQ(vna.session.Plan.StopFreq, 100e6 + 50 * vna.session.Plan.StepFreq);
  EXPECT_NEAR(vna.session.Plan.StopFreq, 3.08e9, 2500);
}

TEST(SweepEntry, AStopAboveTheRangeIsReportedAndBecomes3080MHz) {
  SweepFixture vna;
  vna.Enter("3", "4000", "51");
  EXPECT_EQ(vna.TakeMessages(), Texts{"Sweep Freq Set|Stop Freq > 3.08GHz|exclamation|ok"});
  EXPECT_EQ(vna.session.Plan.StopFreq, 3.08e9);
}

// What a person may type instead of a frequency, and what becomes of it.
struct Typed {
  const char* Text;
  const char* Message;
  double Hz;
};
class TypedStart : public ::testing::TestWithParam<Typed> {};

TEST_P(TypedStart, IsCorrectedReportedAndUsed) {
  SweepFixture vna;
  vna.Enter(GetParam().Text, "3000", "51");
  if (GetParam().Message == nullptr)
    EXPECT_TRUE(vna.TakeMessages().empty());
  else
    EXPECT_EQ(vna.TakeMessages(),
              Texts{"Sweep Freq Set|" + std::string(GetParam().Message) + "|exclamation|ok"});
  EXPECT_EQ(vna.session.Plan.StartFreq, GetParam().Hz);
}

INSTANTIATE_TEST_SUITE_P(
    Bad, TypedStart,
    ::testing::Values(Typed{"", "Start Freq < 3MHz", 3e6}, Typed{"abc", "Start Freq < 3MHz", 3e6},
                      Typed{"-100", "Start Freq < 3MHz", 3e6},
                      Typed{"3,5", nullptr, 3e6},  // a comma ends the number
                      Typed{"12x", nullptr, 12e6}, Typed{" 7.5 ", nullptr, 7.5e6},
                      Typed{"1e300", "Start Freq > 3.08GHz", 3.08e6},
                      Typed{"1e9999999", "Start Freq > 3.08GHz", 3.08e6},
                      Typed{"-1e9999999", "Start Freq < 3MHz", 3e6},
                      Typed{"99999999999999999999999", "Start Freq > 3.08GHz", 3.08e6}));

class TypedStop : public ::testing::TestWithParam<Typed> {};

TEST_P(TypedStop, IsCorrectedReportedAndUsed) {
  SweepFixture vna;
  vna.Enter("3", GetParam().Text, "51");
  if (GetParam().Message == nullptr)
    EXPECT_TRUE(vna.TakeMessages().empty());
  else
    EXPECT_EQ(vna.TakeMessages(),
              Texts{"Sweep Freq Set|" + std::string(GetParam().Message) + "|exclamation|ok"});
  EXPECT_EQ(vna.session.Plan.StopFreq, GetParam().Hz);
}

INSTANTIATE_TEST_SUITE_P(
    Bad, TypedStop,
    ::testing::Values(Typed{"", "Stop Frequency < Start Frequency", 3.08e9},
                      Typed{"stop", "Stop Frequency < Start Frequency", 3.08e9},
                      Typed{"-5", "Stop Frequency < Start Frequency", 3.08e9},
                      Typed{"-1e9999999", "Stop Frequency < Start Frequency", 3.08e9},
                      Typed{"1000,5", nullptr, 1000e6},  // a comma ends the number
                      Typed{"1,000", "Stop Frequency < Start Frequency", 3.08e9},
                      Typed{"1e300", "Stop Freq > 3.08GHz", 3.08e9},
                      Typed{"1e9999999", "Stop Freq > 3.08GHz", 3.08e9}));

TEST(SweepEntry, BothFieldsEmptyAreReportedOneAfterTheOtherAndGiveTheWholeRange) {
  for (const char* unit : {"Calibration.Option1", "Calibration.Option2"}) {
    SweepFixture vna;
    vna.Click(unit);
    vna.Enter("", "", "51");
    EXPECT_EQ(vna.TakeMessages(),
              (Texts{"Sweep Freq Set|Start Freq < 3MHz|exclamation|ok",
                     "Sweep Freq Set|Stop Frequency < Start Frequency|exclamation|ok"}));
    EXPECT_EQ(vna.session.Plan.StartFreq, 3e6);
    EXPECT_EQ(vna.session.Plan.StopFreq, 3.08e9);
    EXPECT_TRUE(vna.session.Flags.SweepLoaded);
  }
}

TEST(SweepEntry, GoesThroughItsStepsInOrder) {
  SweepFixture vna;
  vna.Calibrated();
  vna.Pick("Calibration.LvlCombo", "-4");
  vna.session.Plan.FreqUnit = 1000;  // as the options are set, not as it was
  std::vector<std::string> order;
  vna.fake.OnAsk = [&](const Message& message) {
    if (order.empty()) {
      EXPECT_EQ(vna.session.Plan.Port1Level, 0);  // the calibration is asked about first
      EXPECT_FALSE(vna.session.Cal.CalInterpolated);
    }
    order.push_back(message.Title);
  };
  const auto inner = vna.port.OnWrite;
  vna.port.OnWrite = [&](const Bytes& bytes) {
    EXPECT_FALSE(vna.fake.Enabled(TimerId::Timer1));
    if (order.back() != "load") order.push_back("load");
    EXPECT_EQ(vna.fake.Panels[7], "40.0000 kHz");
    EXPECT_EQ(vna.fake.Panels[4], "");
    EXPECT_EQ(vna.Value("EnhancePara.ListLevel"), "0");
    inner(bytes);
  };
  vna.fake.Enable(TimerId::Timer1, true);
  vna.fake.Answers = {Answer::No};
  vna.Enter("2", "5", "51");
  EXPECT_EQ(order, (Texts{"Test Signals", "Sweep Freq Set", "load"}));
  EXPECT_EQ(vna.session.Plan.FreqUnit, 1e6);
  EXPECT_TRUE(vna.fake.Enabled(TimerId::Timer1));
  EXPECT_EQ(vna.fake.Panels[4], "P1 Level: -4dBm");
  EXPECT_EQ(vna.Value("EnhancePara.ListLevel"), "-4");
}

TEST(SweepEntry, SixtyHertzStepsRaiseTheQuestionAndYesWidens) {
  SweepFixture vna;
  vna.fake.Answers = {Answer::Yes};
  vna.Enter("3", "3.0032", "51");  // the stop goes to 3.003 MHz first
  EXPECT_EQ(vna.TakeMessages(), Texts{kStepQuestion});
  EXPECT_EQ(vna.session.Plan.NumPoints, 51);
  EXPECT_EQ(vna.session.Plan.StepFreq, 100);
  EXPECT_EQ(vna.session.Plan.StartFreq, 3e6);  // not below 3 MHz
  EXPECT_EQ(vna.session.Plan.StopFreq, 3.005e6);
}

TEST(SweepEntry, NoToTheStepQuestionTakesFewerPoints) {
  SweepFixture vna;
  vna.fake.Answers = {Answer::No};
  vna.Enter("10", "10.024", "801");  // 30 Hz: the root of 3.3 is two places
  EXPECT_EQ(vna.session.Plan.NumPoints, 201);
  EXPECT_EQ(vna.session.Plan.StepFreq, 100);
  EXPECT_EQ(vna.Value("Calibration.PntsCombo"), "201");
}

TEST(SweepEntry, NoWithTheFewestPointsEndsAt100HzInsideTheRange) {
  SweepFixture vna;
  vna.fake.Answers = {Answer::No};
  vna.Enter("3080", "3080", "801");
  EXPECT_EQ(vna.session.Plan.NumPoints, 51);
  EXPECT_EQ(vna.session.Plan.StepFreq, 100);
  EXPECT_EQ(vna.session.Plan.StartFreq, 3.08e9 - 5000);
  EXPECT_EQ(vna.session.Plan.StopFreq, 3.08e9);
}

TEST(SweepEntry, NoAtTheTopOfTheRangeMovesTheStartDown) {
  SweepFixture vna;
  vna.fake.Answers = {Answer::No};
  vna.Enter("3079.997", "3080", "51");  // 60 Hz, and no fewer points to choose
  EXPECT_EQ(vna.TakeMessages(), Texts{kStepQuestion});
  EXPECT_EQ(vna.session.Plan.NumPoints, 51);
  EXPECT_EQ(vna.session.Plan.StartFreq, 3.08e9 - 5000);
  EXPECT_EQ(vna.session.Plan.StopFreq, 3.08e9);
  EXPECT_EQ(vna.Fields(), (Texts{"3079.9950", "3080.0000", "0.0001", "51"}));
}

TEST(SweepEntry, With1024PointsAnythingEndsAs3To3072MHzWithoutAQuestion) {
  SweepFixture vna;
  vna.Enter("100", "100", "1024 (TD)");
  EXPECT_TRUE(vna.TakeMessages().empty());
  EXPECT_EQ(vna.session.Plan.NumPoints, 1024);
  EXPECT_EQ(vna.session.Plan.StartFreq, 3e6);
  EXPECT_EQ(vna.session.Plan.StopFreq, 3.072e9);
  EXPECT_EQ(vna.session.Plan.StepFreq, 3e6);
  EXPECT_EQ(vna.Fields(), (Texts{"3.0000", "3072.0000", "3.0000", "1024 (TD)"}));
}

TEST(SweepEntry, ForgetsStoredTracesStepsAndShowsData) {
  SweepFixture vna;
  vna.session.Flags.SweepLoaded = true;
  for (ChannelSettings& channel : vna.session.Channels) channel.MemoryValid = true;
  vna.session.Display.MemoryInUse = true;
  vna.session.Display.DisplayMode = DisplayMode::MemoryMath;
  vna.Click("Calibration.O_Cal");
  EXPECT_EQ(vna.At("Calibration.O_Cal").Caption, "Open *");
  vna.Enter("3", "3000", "51");
  EXPECT_EQ(vna.At("Calibration.O_Cal").Caption, "Open");
  for (const ChannelSettings& channel : vna.session.Channels) EXPECT_FALSE(channel.MemoryValid);
  EXPECT_FALSE(vna.session.Display.MemoryInUse);
  EXPECT_EQ(vna.session.Display.DisplayMode, DisplayMode::Data);
}

// What a session that is kept while a box is up comes back with: it must be one that loads, with
// the terms of its own plan.
TEST(SweepEntry, WhileABoxIsUpTheSessionIsStillOneThatCanBeKept) {
  SweepFixture vna;
  vna.Enter("100", "200", "51");
  vna.Calibrated();
  vna.TakeMessages();
  const auto back = MakeSession();
  vna.fake.OnAsk = [&](const Message& message) {
    const Result<Done> read = ReadSession(SessionBytes(vna.session), *back);
    EXPECT_TRUE(read.Ok()) << message.Text << ": " << read.Why().Text();
    EXPECT_EQ(back->Plan.StartFreq, back->Plan.SavedPlan.StartFreq) << message.Text;
    EXPECT_EQ(back->Plan.StopFreq, back->Plan.SavedPlan.StopFreq) << message.Text;
    EXPECT_EQ(back->Plan.NumPoints, back->Plan.SavedPlan.NumPoints) << message.Text;
  };
  for (const auto& [start, stop] :
       {std::pair{"1", "4000"}, {"100", "100.001"}, {"90", "190"}, {"110", "210"}, {"110", "90"}}) {
    vna.fake.Answers = {Answer::Yes, Answer::Yes};
    vna.Enter(start, stop, "801");
    EXPECT_GE(vna.TakeMessages().size(), 2u) << start;
  }
}

TEST(SweepEntry, WithoutAnInstrumentItSaysSoAndSendsNothing) {
  SweepFixture vna;
  vna.session.Id.PortNumber = 0;
  vna.Enter("3", "3000", "51");
  EXPECT_EQ(vna.TakeMessages(), Texts{"Sweep Freq Set|No Instrument Connected|exclamation|ok"});
  EXPECT_TRUE(vna.port.Writes.empty());
  EXPECT_FALSE(vna.session.Flags.SweepLoaded);
  EXPECT_EQ(vna.fake.Panels[7], "59.9400 MHz");
  EXPECT_FALSE(vna.fake.Enabled(TimerId::Timer1));
}

TEST(SweepEntry, ASilentInstrumentIsReportedAndTheSweepIsNotLoaded) {
  SweepFixture vna;
  vna.fake.Enable(TimerId::Timer1, true);
  vna.instrument.Silent = true;
  vna.Enter("3", "3000", "51");
  EXPECT_EQ(vna.TakeMessages(), Texts{"Load Freq Sweep|No Response|exclamation|ok"});
  EXPECT_FALSE(vna.session.Flags.SweepLoaded);
  EXPECT_TRUE(vna.fake.Enabled(TimerId::Timer1));
  EXPECT_EQ(vna.Value("Calibration.NextStep"), "Set the sweep first");
}

// Intentional: a step rounded up to 100 Hz carries the stop beyond the highest, where it stays;
// entered again it is refused.
TEST(SweepEntry, TheGridOf801PointsTo3080MHzEndsABitAbove) {
  SweepFixture vna;
  vna.Enter("3", "3080", "801");
  EXPECT_EQ(vna.TakeMessages(), Texts{});
  EXPECT_EQ(vna.session.Plan.StepFreq, 3846300);
  EXPECT_EQ(vna.session.Plan.StopFreq, 3080040000.0);
  vna.Click("Calibration.Command1");
  EXPECT_EQ(vna.TakeMessages(), Texts{"Sweep Freq Set|Stop Freq > 3.08GHz|exclamation|ok"});
  EXPECT_EQ(vna.session.Plan.StopFreq, 3080040000.0);
}

TEST(SweepEntry, IsDeafWhileItAsks) {
  SweepFixture vna;
  vna.fake.OnAsk = [&vna](const Message&) {
    vna.Click("Calibration.Command1");
    vna.Click("Calibration.App_Cal");
    vna.Click("Calibration.O_Cal");
  };
  vna.Enter("2", "1", "51");
  EXPECT_EQ(vna.TakeMessages(),
            (Texts{"Sweep Freq Set|Start Freq < 3MHz|exclamation|ok",
                   "Sweep Freq Set|Stop Frequency < Start Frequency|exclamation|ok"}));
  EXPECT_EQ(vna.instrument.CountOf("W}"), 9u);  // one load of 51 points
}

TEST(SweepEntry, IsRefusedDuringASweep) {
  SweepFixture vna;
  vna.PretendSweep();
  vna.Enter("100", "200", "51");
  EXPECT_EQ(vna.TakeMessages(), Texts{"Calibration|Stop Measurement First|exclamation|ok"});
  EXPECT_EQ(vna.session.Plan.StartFreq, 3e6);
  EXPECT_TRUE(vna.port.Writes.empty());
}

}  // namespace
}  // namespace qk::test
