#include "forms/am_to_pm_form.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "core/text.h"
#include "utility_fixture.h"

namespace qk::test {
namespace {

constexpr const char* kThrough =
    "AM to PM Test|Connect through (exclude DUT and IN/OUT attenuators)|information|ok";
constexpr const char* kConnectDut = "AM to PM Test|Connect DUT|information|ok";
constexpr const char* kNoAnswer = "AM-PM Test|No Response|critical|ok";
constexpr const char* kMaxTold = "AM to PM Test|Max Freq is 3072 MHz|exclamation|ok";
constexpr const char* kCalAsked = "AM to PM Test|Cal Not Done. Continue?|question|yes/no";

struct AmPm : UtilityFixture {
  AMtoPM& Form() { return static_cast<AMtoPM&>(Window("AMtoPM")); }
  void Work(const std::function<void()>& work) { In("AMtoPM", work); }
  void Calibrate() { EXPECT_TRUE(Click("AMtoPM.Command5")); }
  void Start() { EXPECT_TRUE(Click("AMtoPM.Command1")); }
  std::string Of(const char* control) { return Value(std::string("AMtoPM.") + control); }
};

TEST(AMtoPM, OpensAtTheMiddleOfTheSweepWithNoResult) {
  AmPm bench;
  bench.Work([&] {
    EXPECT_EQ(bench.Of("Text1"), "1550.0000");
    EXPECT_EQ(bench.Of("Text2"), "0.0");
    EXPECT_EQ(bench.Of("Text3"), "0.0");
    EXPECT_EQ(bench.Of("Text6"), "-6.00");
    EXPECT_EQ(bench.Of("Text7"), "AM-PM Test");
    EXPECT_EQ(bench.Of("Text4"), "0.00");
    EXPECT_EQ(bench.Form().Plot().XLabel, "Pin (dBm)");
    EXPECT_EQ(bench.Form().Plot().YLabel, "(deg/dB)");
  });
}

TEST(AMtoPM, MeasuresAKnownAmplifier) {
  AmPm bench;
  bench.Bench("amplifier gain 10 p1db 5 ampm 3 matched");
  bench.Work([&] {
    bench.Calibrate();
    EXPECT_EQ(bench.TakeMessages(), Texts{kThrough});
    EXPECT_EQ(bench.At("AMtoPM.Command5").Caption, "Calibrate*");
    bench.instrument.BackToDevice();
    bench.Start();
    EXPECT_EQ(bench.TakeMessages(), Texts{kConnectDut});
    EXPECT_LT(Val(bench.Of("Text4")), -1);
    EXPECT_EQ(bench.Of("Text4").find('?'), std::string::npos);
    EXPECT_EQ(bench.Form().Plot().Curves.size(), 1u);
    EXPECT_EQ(bench.Of("Note"), "");
  });
}

TEST(AMtoPM, TheThroughAsDeviceHasNoPhaseSlope) {
  AmPm bench;
  bench.Bench("through");
  bench.Work([&] {
    bench.Calibrate();
    bench.Start();
    for (const double slope : bench.Form().Measured().AmPm) EXPECT_EQ(slope, 0);
    EXPECT_EQ(bench.Of("Text4"), "0.00");
  });
}

TEST(AMtoPM, AReadoutOutsideTheMeasuredSpanCarriesAQuestionMark) {
  AmPm bench;
  bench.Bench("through");
  bench.Work([&] {
    bench.Calibrate();
    for (const char* outside : {"3", "-24"}) {
      bench.Type("AMtoPM.Text6", outside);
      bench.Start();
      EXPECT_TRUE(bench.Of("Text4").ends_with(" ?")) << outside;
    }
    bench.Type("AMtoPM.Text6", "-6");
    bench.Start();
    EXPECT_EQ(bench.Of("Text4"), "0.00");
  });
}

// Meant: unlike in the gain compression test, the question comes before the frequency is looked at.
TEST(AMtoPM, AsksForTheCalibrationBeforeItLooksAtTheFrequency) {
  AmPm bench;
  bench.Work([&] {
    bench.Type("AMtoPM.Text1", "3072.1");
    bench.fake.Answers = {Answer::No, Answer::Yes, Answer::Yes};
    bench.Start();
    EXPECT_EQ(bench.TakeMessages(), Texts{kCalAsked});
    bench.Start();
    EXPECT_EQ(bench.TakeMessages(), (Texts{kCalAsked, kMaxTold}));
    bench.Type("AMtoPM.Text1", "3072");
    bench.Start();
    EXPECT_EQ(bench.TakeMessages(),
              (Texts{kCalAsked, "AM to PM Test|Test Frequency Outisde Cal Range|exclamation|ok"}));
  });
  EXPECT_EQ(bench.Written(), "");
}

TEST(AMtoPM, TheCalibrationTellsTheRangeUnderTheTwinsTitle) {
  AmPm bench;
  bench.Work([&] {
    bench.Type("AMtoPM.Text1", "3072.1");
    bench.Calibrate();
    bench.Type("AMtoPM.Text1", "3072");
    bench.Calibrate();
    EXPECT_EQ(bench.TakeMessages(),
              (Texts{"AM to PM Calibration|Max Freq is 3072 MHz|exclamation|ok",
                     "P1dB Test|Test Frequency Outisde Cal Range|exclamation|ok"}));
  });
}

TEST(AMtoPM, AMeasurementAtAnotherPointIsDoubtfulAndDropsTheCalibration) {
  AmPm bench;
  bench.Bench("through");
  bench.Work([&] {
    bench.Calibrate();
    bench.TakeMessages();
    bench.Type("AMtoPM.Text1", "1000");
    bench.fake.Answers = {Answer::No, Answer::Yes};
    bench.Start();
    EXPECT_EQ(bench.TakeMessages(),
              Texts{"AM to PM Test|Cal Not at Correct Freq. Continue?|question|yes/no"});
    bench.Start();
    EXPECT_TRUE(bench.Of("Text4").ends_with(" ?"));
    EXPECT_EQ(bench.At("AMtoPM.Command5").Caption, "Calibrate");
    bench.TakeMessages();
    bench.Start();
    EXPECT_EQ(bench.TakeMessages(), Texts{kCalAsked});
  });
}

TEST(AMtoPM, WhatTheDroppedCalibrationMeasuredStillServesItsOwnPoint) {
  AmPm bench;
  bench.Bench("through");
  bench.Work([&] {
    bench.Calibrate();
    bench.fake.Answers = {Answer::Yes, Answer::Yes};
    bench.Type("AMtoPM.Text1", "1000");
    bench.Start();
    bench.Type("AMtoPM.Text1", "1550");
    bench.Start();
    EXPECT_EQ(bench.Of("Text4").find('?'), std::string::npos) << bench.Of("Text4");
  });
}

TEST(AMtoPM, WithoutAnyCalibrationEveryPointIsDoubtfulTheFirstToo) {
  AmPm bench;
  bench.Bench("through");
  bench.Work([&] {
    bench.fake.Answers = {Answer::Yes};
    bench.Type("AMtoPM.Text1", "100");
    bench.Start();
    EXPECT_TRUE(bench.Of("Text4").ends_with(" ?")) << bench.Of("Text4");
  });
}

TEST(AMtoPM, PrintsItsPlot) {
  AmPm bench;
  bench.Work([&] {
    bench.fake.Choices = {std::optional<std::string>("Laser"), std::nullopt,
                          std::optional<std::string>("Laser")};
    EXPECT_TRUE(bench.Click("AMtoPM.Command3"));
    ASSERT_EQ(bench.surface.Pages.size(), 1u);
    EXPECT_EQ(bench.surface.Pages[0].Window, "AMtoPM");
    for (const char* text : {"AM-PM Test", "Pin (dBm)", "(deg/dB)"})
      EXPECT_NE(FindText(bench.surface.Pages[0].Items, text), nullptr) << text;
    EXPECT_TRUE(bench.Click("AMtoPM.Command3"));
    EXPECT_EQ(bench.TakeMessages(), Texts{}) << "a cancelled dialog is quiet";
    bench.surface.Unavailable = Failure{"out of paper", "Laser"};
    EXPECT_TRUE(bench.Click("AMtoPM.Command3"));
    EXPECT_EQ(bench.TakeMessages(), Texts{"AM to PM Test|Error 482 selecting printer.\nLaser: out "
                                          "of paper|exclamation|ok"});
  });
}

TEST(AMtoPM, NothingCanBePressedAndItCannotBeClosedInMidRun) {
  AmPm bench;
  bench.Work([&] {
    int boxes = 0;
    bench.fake.OnAsk = [&](const Message& message) {
      bench.instrument.FollowPrompt(message.Text);
      if (!message.Text.starts_with("Connect")) return;
      ++boxes;
      for (const char* button : {"Command1", "Command5", "Command2", "Command3", "Command4"})
        EXPECT_FALSE(bench.Click(std::string("AMtoPM.") + button)) << button;
      EXPECT_FALSE(bench.Window("AMtoPM").OnCloseBox());
    };
    bench.Calibrate();
    bench.Start();
    EXPECT_EQ(boxes, 2);
    EXPECT_TRUE(bench.Window("AMtoPM").OnCloseBox());
  });
}

TEST(AMtoPM, TellsADeadLinkUnderItsOwnTitle) {
  for (const char* fault : {"fault unplugged", "fault cut after 1", "fault cut after 5"}) {
    AmPm bench;
    bench.Work([&] {
      bench.fake.Answers = {Answer::Yes};
      bench.When("Connect DUT", fault);
      bench.Start();
      EXPECT_EQ(bench.TakeMessages(), (Texts{kCalAsked, kConnectDut, kNoAnswer})) << fault;
    });
    bench.Bench("fault none");
    bench.Bench("fault replugged");
  }
}

TEST(AMtoPM, SavesTheSlopesWithTheirReadout) {
  AmPm bench;
  bench.Bench("amplifier gain 10 p1db 5 ampm 3 matched");
  bench.Work([&] {
    bench.Calibrate();
    bench.instrument.BackToDevice();
    bench.Type("AMtoPM.Text6", "5");
    bench.Start();
    const std::string result = bench.Of("Text4");
    ASSERT_TRUE(result.ends_with(" ?"));
    const std::string path = bench.folder.File("slopes.dat");
    bench.fake.Choices = {std::optional<std::string>(path)};
    EXPECT_TRUE(bench.Click("AMtoPM.Command2"));
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
