// SPDX-License-Identifier: MIT
#include "forms/am_to_pm_form.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "core/text.h"
#include "power_test_fixture.h"

namespace qk::test {
namespace {

constexpr const char* kAmToPmThrough =
    "AM to PM Test|Connect through (exclude DUT and IN/OUT attenuators)|information|ok";
constexpr const char* kAmToPmConnectDut = "AM to PM Test|Connect DUT|information|ok";
constexpr const char* kAmToPmNoAnswer = "AM-PM Test|No Response|critical|ok";
constexpr const char* kMaxMessage = "AM to PM Test|Max Freq is 3072 MHz|exclamation|ok";
constexpr const char* kCalAsked = "AM to PM Test|Cal Not Done. Continue?|question|yes/no";

struct AmPm : PowerTestFixture {
  AmPm() : PowerTestFixture("AMtoPM") {}
  AMtoPM& Form() { return static_cast<AMtoPM&>(Window("AMtoPM")); }
};

TEST(AMtoPM, OpensAtTheMiddleOfTheSweepWithNoResult) {
  AmPm vna;
  vna.Work([&] {
    EXPECT_EQ(vna.Of("Text1"), "1550.0000");
    EXPECT_EQ(vna.Of("Text2"), "0.0");
    EXPECT_EQ(vna.Of("Text3"), "0.0");
    EXPECT_EQ(vna.Of("Text6"), "-6.00");
    EXPECT_EQ(vna.Of("Text7"), "AM-PM Test");
    EXPECT_EQ(vna.Of("Text4"), "0.00");
    EXPECT_EQ(vna.Form().Plot().XLabel, "Pin (dBm)");
    EXPECT_EQ(vna.Form().Plot().YLabel, "(deg/dB)");
  });
}

TEST(AMtoPM, MeasuresAKnownAmplifier) {
  AmPm vna;
  vna.Bench("amplifier gain 10 p1db 5 ampm 3 matched");
  vna.Work([&] {
    vna.Calibrate();
    EXPECT_EQ(vna.TakeMessages(), Texts{kAmToPmThrough});
    EXPECT_EQ(vna.At("AMtoPM.Command5").Caption, "Calibrate*");
    vna.instrument.BackToDevice();
    vna.Start();
    EXPECT_EQ(vna.TakeMessages(), Texts{kAmToPmConnectDut});
    EXPECT_LT(Val(vna.Of("Text4")), -1);
    EXPECT_EQ(vna.Of("Text4").find('?'), std::string::npos);
    EXPECT_EQ(vna.Form().Plot().Curves.size(), 1u);
    EXPECT_EQ(vna.Of("Note"), "");
  });
}

TEST(AMtoPM, TheThroughAsDeviceHasNoPhaseSlope) {
  AmPm vna;
  vna.Bench("through");
  vna.Work([&] {
    vna.Calibrate();
    vna.Start();
    for (const double slope : vna.Form().Measured().AmPm) EXPECT_EQ(slope, 0);
    EXPECT_EQ(vna.Of("Text4"), "0.00");
  });
}

TEST(AMtoPM, AReadoutOutsideTheMeasuredSpanCarriesAQuestionMark) {
  AmPm vna;
  vna.Bench("through");
  vna.Work([&] {
    vna.Calibrate();
    for (const char* outside : {"3", "-24"}) {
      vna.Type("AMtoPM.Text6", outside);
      vna.Start();
      EXPECT_TRUE(vna.Of("Text4").ends_with(" ?")) << outside;
    }
    vna.Type("AMtoPM.Text6", "-6");
    vna.Start();
    EXPECT_EQ(vna.Of("Text4"), "0.00");
  });
}

// Intentional: unlike in the gain compression test, the question comes before the frequency is
// looked at.
TEST(AMtoPM, AsksForTheCalibrationBeforeItLooksAtTheFrequency) {
  AmPm vna;
  vna.Work([&] {
    vna.Type("AMtoPM.Text1", "3072.1");
    vna.fake.Answers = {Answer::No, Answer::Yes, Answer::Yes};
    vna.Start();
    EXPECT_EQ(vna.TakeMessages(), Texts{kCalAsked});
    vna.Start();
    EXPECT_EQ(vna.TakeMessages(), (Texts{kCalAsked, kMaxMessage}));
    vna.Type("AMtoPM.Text1", "3072");
    vna.Start();
    EXPECT_EQ(vna.TakeMessages(),
              (Texts{kCalAsked, "AM to PM Test|Test Frequency Outisde Cal Range|exclamation|ok"}));
  });
  EXPECT_EQ(vna.Written(), "");
}

TEST(AMtoPM, TheCalibrationReportsTheRangeUnderTheTwinsTitle) {
  AmPm vna;
  vna.Work([&] {
    vna.Type("AMtoPM.Text1", "3072.1");
    vna.Calibrate();
    vna.Type("AMtoPM.Text1", "3072");
    vna.Calibrate();
    EXPECT_EQ(vna.TakeMessages(),
              (Texts{"AM to PM Calibration|Max Freq is 3072 MHz|exclamation|ok",
                     "P1dB Test|Test Frequency Outisde Cal Range|exclamation|ok"}));
  });
}

TEST(AMtoPM, AMeasurementAtAnotherPointIsDoubtfulAndDropsTheCalibration) {
  AmPm vna;
  vna.Bench("through");
  vna.Work([&] {
    vna.Calibrate();
    vna.TakeMessages();
    vna.Type("AMtoPM.Text1", "1000");
    vna.fake.Answers = {Answer::No, Answer::Yes};
    vna.Start();
    EXPECT_EQ(vna.TakeMessages(),
              Texts{"AM to PM Test|Cal Not at Correct Freq. Continue?|question|yes/no"});
    vna.Start();
    EXPECT_TRUE(vna.Of("Text4").ends_with(" ?"));
    EXPECT_EQ(vna.At("AMtoPM.Command5").Caption, "Calibrate");
    vna.TakeMessages();
    vna.Start();
    EXPECT_EQ(vna.TakeMessages(), Texts{kCalAsked});
  });
}

TEST(AMtoPM, WhatTheDroppedCalibrationMeasuredStillServesItsOwnPoint) {
  AmPm vna;
  vna.Bench("through");
  vna.Work([&] {
    vna.Calibrate();
    vna.fake.Answers = {Answer::Yes, Answer::Yes};
    vna.Type("AMtoPM.Text1", "1000");
    vna.Start();
    vna.Type("AMtoPM.Text1", "1550");
    vna.Start();
    EXPECT_EQ(vna.Of("Text4").find('?'), std::string::npos) << vna.Of("Text4");
  });
}

TEST(AMtoPM, WithoutAnyCalibrationEveryPointIsDoubtfulTheFirstToo) {
  AmPm vna;
  vna.Bench("through");
  vna.Work([&] {
    vna.fake.Answers = {Answer::Yes};
    vna.Type("AMtoPM.Text1", "100");
    vna.Start();
    EXPECT_TRUE(vna.Of("Text4").ends_with(" ?")) << vna.Of("Text4");
  });
}

TEST(AMtoPM, NamesEachPassOf180DegreesAndMarksWhatRestsOnIt) {
  AmPm vna;
  vna.Bench("amplifier gain 10 p1db -4 ampm 50 matched");
  vna.Work([&] {
    vna.Calibrate();
    vna.instrument.BackToDevice();
    vna.Start();
    const AmToPmResult& result = vna.Form().Measured();
    // What the note names: the highest level of each run of marked ones.
    std::vector<std::string> places;
    for (std::size_t i = 0; i < result.Pin.size(); ++i)
      if (result.PhasePassed[i] && (i == 0 || !result.PhasePassed[i - 1]))
        places.push_back(FormatNumber(result.Pin[i], "#0.0"));
    ASSERT_GE(places.size(), 2u);
    std::string note = "The phase passes 180 degrees near ";
    for (std::size_t n = 0; n + 1 < places.size(); ++n) note += (n == 0 ? "" : ", ") + places[n];
    EXPECT_EQ(vna.Of("Note"),
              note + " and " + places.back() + " dBm: the values marked ? are not valid.");
    EXPECT_EQ(vna.session.PowerRun.Doubtful, result.PhasePassed);
    EXPECT_EQ(vna.Form().Plot().Curves[0].Doubtful[20], result.PhasePassed[0]);
    vna.Type("AMtoPM.Text6", places.back());
    vna.Start();
    EXPECT_TRUE(vna.Of("Text4").ends_with(" ?")) << vna.Of("Text4");
    vna.Type("AMtoPM.Text6", "-18");
    vna.Start();
    EXPECT_EQ(vna.Of("Text4").find('?'), std::string::npos) << "no pass so far down";
  });
}

TEST(AMtoPM, PrintsItsPlot) {
  AmPm vna;
  vna.Work([&] {
    vna.fake.Choices = {std::optional<std::string>("Laser")};
    EXPECT_TRUE(vna.Click("AMtoPM.Command3"));
    ASSERT_EQ(vna.surface.Pages.size(), 1u);
    EXPECT_EQ(vna.surface.Pages[0].Window, "AMtoPM");
    for (const char* text : {"AM-PM Test", "Pin (dBm)", "(deg/dB)"})
      EXPECT_NE(FindText(vna.surface.Pages[0].Items, text), nullptr) << text;
  });
}

TEST(AMtoPM, ReportsADeadLinkUnderItsOwnTitle) {
  for (const char* fault : {"fault unplugged", "fault cut after 1", "fault cut after 5"}) {
    AmPm vna;
    vna.Work([&] {
      vna.fake.Answers = {Answer::Yes};
      vna.When("Connect DUT", fault);
      vna.Start();
      EXPECT_EQ(vna.TakeMessages(), (Texts{kCalAsked, kAmToPmConnectDut, kAmToPmNoAnswer}))
          << fault;
    });
    vna.Bench("fault none");
    vna.Bench("fault replugged");
  }
}

TEST(AMtoPM, SavesTheSlopesWithTheirReadout) {
  AmPm vna;
  vna.Bench("amplifier gain 10 p1db 5 ampm 3 matched");
  vna.Work([&] {
    vna.Calibrate();
    vna.instrument.BackToDevice();
    vna.Type("AMtoPM.Text6", "5");
    vna.Start();
    const std::string result = vna.Of("Text4");
    ASSERT_TRUE(result.ends_with(" ?"));
    const std::string path = vna.folder.File("slopes.dat");
    vna.fake.Choices = {std::optional<std::string>(path)};
    EXPECT_TRUE(vna.Click("AMtoPM.Command2"));
    std::ifstream file(path, std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    ASSERT_EQ(lines.size(), 28u);
    EXPECT_EQ(lines[0], "AM-PM Test\r");
    EXPECT_EQ(lines[1], "2026-03-09    14:05:30\r");
    EXPECT_EQ(lines[2], "\r\r");
    EXPECT_EQ(lines[3], "Test Frequency (MHz)=1550.0000\r");
    EXPECT_EQ(lines[4], "Measured AM to PM (deg/dB)=" + result + " at Pin= 5.00 dBm\r");
    EXPECT_EQ(lines[6], "  Pin(dBm)   AM to PM (deg/dB)\r");
    EXPECT_EQ(lines[7].substr(lines[7].find_last_of(' ') + 1),
              lines[8].substr(lines[8].find_last_of(' ') + 1))
        << "the lowest level repeats the one above it";
  });
}

}  // namespace
}  // namespace qk::test
