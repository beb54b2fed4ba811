// SPDX-License-Identifier: MIT
#include "forms/p1db_form.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "control/inside.h"
#include "control/verbs.h"
#include "core/text.h"
#include "power_test_fixture.h"

namespace qk::test {
namespace {

constexpr const char* kP1dBThrough =
    "P1dB Calibration|Connect through (exclude DUT and IN/OUT attenuators)|information|ok";
constexpr const char* kP1dBConnectDut = "P1dB Test|Connect DUT|information|ok";
constexpr const char* kP1dBNoAnswer = "P1dB Test|No Response|critical|ok";

struct P1dB : PowerTestFixture {
  P1dB() : PowerTestFixture("P1dBForm") {}
  P1dBForm& Form() { return static_cast<P1dBForm&>(Window("P1dBForm")); }
};

TEST(P1dBForm, OpensAtTheMiddleOfTheSweepWithNoResult) {
  P1dB vna;
  vna.Work([&] {
    EXPECT_EQ(vna.Of("Text1"), "1550.0000");
    EXPECT_EQ(vna.Of("Text2"), "0.0");
    EXPECT_EQ(vna.Of("Text3"), "0.0");
    EXPECT_EQ(vna.Of("Text5"), "0.0");
    EXPECT_EQ(vna.Of("Text7"), "P1dB Test");
    EXPECT_EQ(vna.Of("Text4"), "-99.00");
    EXPECT_EQ(vna.Of("Text6"), "-99.00");
    EXPECT_EQ(vna.At("P1dBForm.Command5").Caption, "Calibrate");
    EXPECT_TRUE(vna.Window("P1dBForm").Style().Modal);
  });
}

TEST(P1dBForm, MeasuresAKnownAmplifier) {
  P1dB vna;
  vna.Bench("amplifier gain 12 p1db 3 before 1 behind 2 matched");
  vna.Work([&] {
    vna.Calibrate();
    EXPECT_EQ(vna.TakeMessages(), Texts{kP1dBThrough});
    EXPECT_EQ(vna.At("P1dBForm.Command5").Caption, "Calibrate*");
    vna.instrument.BackToDevice();
    vna.Type("P1dBForm.Text2", "1");
    vna.Type("P1dBForm.Text3", "2");
    vna.Start();
    EXPECT_EQ(vna.TakeMessages(), Texts{kP1dBConnectDut});
    EXPECT_NEAR(vna.Form().Measured().P1dBValue, 3, 0.1);
    EXPECT_NEAR(Val(vna.Of("Text4")), 3, 0.1);
    EXPECT_NEAR(Val(vna.Of("Text6")), 12, 0.1);
    EXPECT_EQ(vna.Of("Text4").find('?'), std::string::npos);
    EXPECT_EQ(vna.Of("Text2"), "1.00");
    EXPECT_EQ(vna.Of("Text3"), "2.00");
    EXPECT_EQ(vna.Of("Text5"), "0.00");
    EXPECT_EQ(vna.Form().Plot().Curves.size(), 2u);
  });
  EXPECT_EQ(vna.session.Plan.Port1Level, 0);
}

// It answers as before, but holds no plan.
TEST(P1dBForm, AnInstrumentThatWasSwitchedOffAndOnIsReportedAndTheNextStartIsRight) {
  for (const int averages : {1, 2, 16}) {
    P1dB vna;
    vna.Bench("amplifier gain 12 p1db 3 before 1 behind 2 matched");
    if (averages > 1) {
      vna.session.Averaging.AveragesSet = static_cast<std::int16_t>(averages);
      vna.program.controller().AverOn();
    }
    vna.Work([&] {
      vna.Calibrate();
      vna.instrument.BackToDevice();
      vna.Type("P1dBForm.Text2", "1");
      vna.Type("P1dBForm.Text3", "2");
      vna.Start();
      EXPECT_NEAR(Val(vna.Of("Text4")), 3, 0.1);
      EXPECT_NEAR(Val(vna.Of("Text6")), 12, 0.1);
      vna.TakeMessages();
      vna.Bench("power cycle");
      vna.Start();
      EXPECT_EQ(vna.TakeMessages(), (Texts{kP1dBConnectDut, kP1dBNoAnswer})) << averages;
      EXPECT_EQ(vna.Of("Text4"), "-99.00");
      EXPECT_EQ(vna.Of("Text6"), "-99.00");
      vna.Start();
      EXPECT_EQ(vna.TakeMessages(), Texts{kP1dBConnectDut}) << averages;
      EXPECT_NEAR(Val(vna.Of("Text4")), 3, 0.1);
      EXPECT_NEAR(Val(vna.Of("Text6")), 12, 0.1);
      vna.Bench("power cycle");
      vna.Calibrate();
      EXPECT_EQ(vna.TakeMessages().size(), 2u);
      EXPECT_EQ(vna.At("P1dBForm.Command5").Caption, "Calibrate");
    });
  }
}

TEST(P1dBForm, AnAmplifierThatNeverCompressesCarriesAQuestionMark) {
  P1dB vna;
  vna.Bench("attenuator 3");
  vna.Work([&] {
    vna.Calibrate();
    vna.Start();
    EXPECT_TRUE(vna.Of("Text4").ends_with(" ?")) << vna.Of("Text4");
    EXPECT_NEAR(Val(vna.Of("Text6")), -3, 0.1);
    EXPECT_TRUE(vna.Of("Note").starts_with("The gain falls by only "));
  });
}

TEST(P1dBForm, MovesTheFrequencyToTheNearestPointAndRoundsTheAttenuations) {
  P1dB vna;
  vna.Work([&] {
    vna.Type("P1dBForm.Text1", "1570");
    vna.Type("P1dBForm.Text2", "3.14159");
    vna.Type("P1dBForm.Text5", "-0.005");
    vna.Calibrate();
    EXPECT_EQ(vna.Of("Text1"), "1550.0000");
    EXPECT_EQ(vna.Of("Text2"), "3.14");
    EXPECT_EQ(vna.Of("Text5"), "-0.01");
  });
}

TEST(P1dBForm, RefusesFrequenciesAbove3072AndOutsideTheSweep) {
  P1dB vna;
  vna.Work([&] {
    vna.Type("P1dBForm.Text1", "3072.1");
    vna.Calibrate();
    vna.Start();
    EXPECT_EQ(vna.TakeMessages(), (Texts{"P1dB Test|Max Freq is 3072 MHz|exclamation|ok",
                                         "P1dB Test|Max Freq is 3072 MHz|exclamation|ok"}));
    // 3072 passes that check, and lies outside this sweep.
    vna.Type("P1dBForm.Text1", "3072");
    vna.Calibrate();
    vna.Start();
    EXPECT_EQ(vna.TakeMessages(),
              (Texts{"P1dB Calibrate|Test Frequency Outisde Cal Range|exclamation|ok",
                     "P1dB Test|Test Frequency Outisde Cal Range|exclamation|ok"}));
    vna.Type("P1dBForm.Text1", "70.9");
    vna.Start();
    EXPECT_EQ(vna.TakeMessages(),
              Texts{"P1dB Test|Test Frequency Outisde Cal Range|exclamation|ok"});
    EXPECT_EQ(vna.Of("Text1"), "70.9");
  });
  EXPECT_EQ(vna.Written(), "");
}

TEST(P1dBForm, AsksBeforeAStartWithoutACalibrationAndNumbersStayFinite) {
  P1dB vna;
  vna.Bench("amplifier");
  vna.Work([&] {
    vna.fake.Answers = {Answer::No, Answer::Yes};
    vna.Start();
    EXPECT_EQ(vna.TakeMessages(), Texts{"P1dB Test|Cal Not Done. Continue?|question|yes/no"});
    EXPECT_EQ(vna.Written(), "");
    vna.Start();
    EXPECT_EQ(vna.TakeMessages(),
              (Texts{"P1dB Test|Cal Not Done. Continue?|question|yes/no", kP1dBConnectDut}));
    for (const double gain : vna.Form().Measured().Gain) EXPECT_TRUE(std::isfinite(gain));
    EXPECT_TRUE(std::isfinite(vna.Form().Measured().P1dBValue));
    EXPECT_EQ(vna.Of("Note"), "Measured without a calibration: gain and input power mean nothing.");
  });
}

TEST(P1dBForm, AsksBeforeAStartAtAnotherPointThanTheCalibratedOne) {
  P1dB vna;
  vna.Work([&] {
    vna.Calibrate();
    vna.TakeMessages();
    vna.Type("P1dBForm.Text1", "1000");
    vna.fake.Answers = {Answer::No, Answer::Yes};
    vna.Start();
    EXPECT_EQ(vna.TakeMessages(),
              Texts{"P1dB Test|Cal Not at Correct Freq. Continue?|question|yes/no"});
    vna.Start();
    EXPECT_EQ(
        vna.TakeMessages(),
        (Texts{"P1dB Test|Cal Not at Correct Freq. Continue?|question|yes/no", kP1dBConnectDut}));
    EXPECT_EQ(vna.At("P1dBForm.Command5").Caption, "Calibrate*") << "the calibration stays";
    EXPECT_EQ(vna.Of("Note"),
              "Calibrated at another frequency: gain and input power are wrong by the change in "
              "the response of the through.");
  });
}

TEST(P1dBForm, KeepsItsCalibrationWhileThePlanStandsAndDropsItWithThePlan) {
  P1dB vna;
  vna.Work([&] { vna.Calibrate(); });
  vna.Work([&] { EXPECT_EQ(vna.At("P1dBForm.Command5").Caption, "Calibrate*"); });
  vna.SetSweep("100", "2000", "51");
  vna.Work([&] {
    EXPECT_EQ(vna.At("P1dBForm.Command5").Caption, "Calibrate");
    EXPECT_EQ(vna.Of("Text1"), "1050.0000");
  });
}

TEST(P1dBForm, ReportsADeadLinkAtEachStageAndPutsTheLevelBack) {
  struct Stage {
    const char* Box;
    const char* Fault;
    const char* Button;
    Texts Told;
  };
  const std::vector<Stage> stages = {
      {"Connect through (exclude DUT and IN/OUT attenuators)",
       "fault unplugged",
       "P1dBForm.Command5",
       {kP1dBThrough, "P1dB Calibrate|No Response|critical|ok"}},
      {"Connect DUT", "fault unplugged", "P1dBForm.Command1", {kP1dBConnectDut, kP1dBNoAnswer}},
      // The link check is answered, "T" and its two bytes are not.
      {"Connect DUT", "fault cut after 1", "P1dBForm.Command1", {kP1dBConnectDut, kP1dBNoAnswer}},
      // ... nor is the first level set.
      {"Connect DUT",
       "fault cut after 3",
       "P1dBForm.Command1",
       {kP1dBConnectDut, "Port 1 Level Set|No Response|exclamation|ok", kP1dBNoAnswer}},
      {"Connect DUT", "fault cut after 4", "P1dBForm.Command1", {kP1dBConnectDut, kP1dBNoAnswer}},
      // ... nor the check behind the point's selection.
      {"Connect DUT", "fault cut after 5", "P1dBForm.Command1", {kP1dBConnectDut, kP1dBNoAnswer}},
      // ... nor the reading, whole or in part.
      {"Connect DUT", "fault cut after 6", "P1dBForm.Command1", {kP1dBConnectDut, kP1dBNoAnswer}},
      {"Connect DUT", "fault cut after 16", "P1dBForm.Command1", {kP1dBConnectDut, kP1dBNoAnswer}}};
  for (const Stage& stage : stages) {
    P1dB vna;
    SetPort1Level(vna.program.controller().rig(), -7);
    vna.fake.Enable(TimerId::Timer1, true);
    vna.Work([&] {
      vna.fake.Answers = {Answer::Yes};
      vna.When(stage.Box, stage.Fault);
      EXPECT_TRUE(vna.Click(stage.Button));
      Texts told = vna.TakeMessages();
      std::erase(told, "P1dB Test|Cal Not Done. Continue?|question|yes/no");
      EXPECT_EQ(told, stage.Told) << stage.Fault;
      EXPECT_EQ(vna.Of("Text4"), "-99.00");
      EXPECT_FALSE(vna.Window("P1dBForm").Busy());
    });
    EXPECT_EQ(vna.session.Plan.Port1Level, -7) << stage.Fault;
    EXPECT_TRUE(vna.fake.Enabled(TimerId::Timer1));
  }
}

TEST(P1dBForm, ALevelLeftBehindByABrokenRunIsPutBackBeforeTheNextSweep) {
  P1dB vna;
  SetPort1Level(vna.program.controller().rig(), -7);
  vna.Work([&] {
    vna.fake.Answers = {Answer::Yes};
    vna.When("Connect DUT", "fault cut after 16");
    vna.Start();
  });
  EXPECT_NE(WhatIsWrongInside(vna.instrument, vna.session), "") << "the run left the point at 0";
  vna.Bench("fault none");
  vna.clock.AdvanceMs(10'000);
  vna.fake.OnEvents = [&] {
    if (vna.session.Display.PointCounter > 3) vna.program.controller().StopMeasurement();
  };
  vna.Click("Form1.StartMeasurement");
  EXPECT_EQ(WhatIsWrongInside(vna.instrument, vna.session), "");
}

TEST(P1dBForm, SaysSoWhenTheReceiversTableCannotBeRead) {
  for (const bool missing : {true, false}) {
    P1dB vna;
    const auto path = std::filesystem::path(vna.folder.Text()) / "RXCal.dat";
    if (missing)
      std::filesystem::remove(path);
    else
      std::ofstream(path) << " 1\r\n 2\r\n";
    vna.Work([&] {
      vna.fake.Answers = {Answer::Yes};
      vna.Start();
      EXPECT_EQ(vna.TakeMessages().back(), "P1dB Test|I/O File Error|exclamation|ok");
      EXPECT_EQ(vna.Of("Text4"), "-99.00");
    });
  }
}

TEST(P1dBForm, AnOverloadOfPort2IsReportedAndStopsNothing) {
  P1dB vna;
  vna.Bench("amplifier gain 20 p1db 20 matched");
  vna.Work([&] {
    vna.Type("P1dBForm.Text1", "100");
    vna.fake.Answers = {Answer::Yes};
    vna.Start();
    EXPECT_EQ(vna.fake.Panels[3], "Port 2 Overload!");
    EXPECT_EQ(vna.fake.Beeps, 1);
    EXPECT_TRUE(vna.fake.Enabled(TimerId::Timer2));
    EXPECT_NE(vna.Of("Text6"), "-99.00");
    EXPECT_EQ(vna.Of("Note"),
              "Port 2 was overloaded: clipped values read too low. Put an attenuator between the "
              "device and port 2.")
        << "it outlasts the panel";
  });
}

TEST(P1dBForm, SavesAFileThatPrintZonesCanBeReadFrom) {
  P1dB vna;
  vna.Bench("amplifier gain 12 p1db 3 matched");
  vna.Work([&] {
    vna.Calibrate();
    vna.instrument.BackToDevice();
    vna.Type("P1dBForm.Text7", "Driver, first lot");
    vna.Start();
    // What is typed after the measurement is not what was measured.
    vna.Type("P1dBForm.Text1", "999");
    const std::string path = vna.folder.File("driver.dat");
    vna.fake.Choices = {std::optional<std::string>(path)};
    EXPECT_TRUE(vna.Click("P1dBForm.Command4"));
    EXPECT_EQ(vna.fake.Dialogs.back().Filter, "All Files (*.*)|*.*|data_files(*.dat)|*.dat|");
    EXPECT_EQ(vna.fake.Dialogs.back().Folder, vna.folder.Text());
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    ASSERT_EQ(lines.size(), 28u);
    EXPECT_EQ(lines[0], "Driver, first lot\r");
    EXPECT_EQ(lines[2], "\r\r");
    EXPECT_EQ(lines[3], "Test Frequency (MHz)=1550.0000\r");
    EXPECT_EQ(lines[4], "Measured P1dB (dBm)=" + vna.Of("Text4") + "\r");
    EXPECT_EQ(lines[5], "\r");
    EXPECT_EQ(lines[6], "  Pin(dBm)   Gain(dB)    Pout(dBm)\r");
    for (std::size_t i = 7; i < 28; ++i) {
      const double pin = Val(lines[i].substr(0, 14)), gain = Val(lines[i].substr(14, 14));
      EXPECT_NEAR(Val(lines[i].substr(28)), pin + gain, 0.02) << lines[i];
    }
    EXPECT_LT(Val(lines[7]), -19) << "the lowest level comes first";
  });
  EXPECT_TRUE(vna.TakeMessages().size() == 2u);
}

TEST(P1dBForm, PrintsItsPlotUnderTheTitleThatStandsInTheWindow) {
  P1dB vna;
  vna.Bench("amplifier gain 12 p1db 3 matched");
  vna.Work([&] {
    vna.Calibrate();
    vna.instrument.BackToDevice();
    vna.Start();
    vna.TakeMessages();
    vna.Type("P1dBForm.Text7", "Driver, first lot");
    vna.fake.Choices = {std::optional<std::string>("Laser")};
    EXPECT_TRUE(vna.Click("P1dBForm.Command3"));
    EXPECT_EQ(vna.fake.Dialogs.back().Kind, DialogKind::Print);
    ASSERT_EQ(vna.surface.Pages.size(), 1u);
    const auto& page = vna.surface.Pages[0];
    EXPECT_EQ(page.Printer, "Laser");
    EXPECT_EQ(page.Window, "P1dBForm");
    // 560 by 400 as large as it goes in 0.8 of the page, in the middle.
    EXPECT_EQ(page.Place->left, 900);
    EXPECT_EQ(page.Place->right, 8100);
    for (const char* text : {"Driver, first lot", "Pin (dBm)", "(dB/dBm)", "Gain", "Pout"})
      EXPECT_NE(FindText(page.Items, text), nullptr) << text;
    EXPECT_EQ(vna.Form().Plot().Title, "Driver, first lot");
  });
  EXPECT_EQ(vna.TakeMessages(), Texts{});
}

}  // namespace
}  // namespace qk::test
