// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "core/window_names.h"
#include "support/program_fixture.h"

namespace qk {
namespace {

using test::Texts;

struct LimitsWindow : testing::Test, test::ScriptedProgram {
  LimitsWindow() {
    session.Plan.StartFreq = 3e6;
    session.Plan.StopFreq = 103e6;
    session.Plan.StepFreq = 1e6;
    session.Plan.NumPoints = 101;
    fake.Show(window::kNewLimitsSet);
  }
  std::string Text(int number) { return Value("NewLimitsSet.Text" + std::to_string(number)); }
  void Put(int number, std::string_view text) {
    ASSERT_TRUE(Type("NewLimitsSet.Text" + std::to_string(number), text));
  }
  void PutSegment(int first, const char* start, const char* stop, const char* upper,
                  const char* lower) {
    Put(first, start);
    Put(first + 1, stop);
    Put(first + 2, upper);
    Put(first + 3, lower);
  }
  void Tick(const char* control, bool on = true) { Window("NewLimitsSet").Tick(control, on); }
  void Press(const char* control) { Click(std::string("NewLimitsSet.") + control); }
  float Upper(int channel, int i) {
    return session.Channel(channel).UpperLimit[static_cast<std::size_t>(i)];
  }
};

TEST_F(LimitsWindow, FieldsAreEmptyWithNoLimitsAtFirst) {
  EXPECT_EQ(Window("NewLimitsSet").Caption(), "Limit Lines Set Up");
  for (const int base : {1, 33, 65, 97})
    for (int s = 0; s < 6; ++s) {
      EXPECT_EQ(Text(base + 4 * s), "");
      EXPECT_EQ(Text(base + 4 * s + 1), "");
      EXPECT_EQ(Text(base + 4 * s + 2), "1000");
      EXPECT_EQ(Text(base + 4 * s + 3), "-1000");
    }
}

TEST_F(LimitsWindow, TheTipOfALimitSaysInWhatUnitItIsTyped) {
  const auto tip = [this](int number) {
    return At("NewLimitsSet.Text" + std::to_string(number)).ToolTip;
  };
  EXPECT_EQ(tip(1), "Seg 1: Start MHz");
  EXPECT_EQ(tip(3), "Seg 1: Upper limit, in the unit that the channel shows");
  EXPECT_EQ(tip(120), "Seg 6: Lower limit, in the unit that the channel shows");
}

TEST_F(LimitsWindow, TheFourTabsDifferOnlyInFieldsButtonAndChannel) {
  const struct {
    int First;
    const char* Apply;
  } tabs[] = {{1, "Command2"}, {33, "Command3"}, {65, "Command6"}, {97, "Command8"}};
  for (int channel = 1; channel <= 4; ++channel) {
    const auto& tab = tabs[channel - 1];
    PutSegment(tab.First + 20, "10.4", "20.2", "5", "-5");  // segment 6
    Press(tab.Apply);
    EXPECT_EQ(Text(tab.First + 20), "10.0000");
    EXPECT_EQ(Text(tab.First + 21), "20.0000");
    for (int other = 1; other <= 4; ++other)
      EXPECT_EQ(Upper(other, 8), other <= channel ? 5 : 1000) << channel << " " << other;
    EXPECT_TRUE(TakeMessages().empty());
  }
}

TEST_F(LimitsWindow, ARefusalIsReportedByItsSegment) {
  PutSegment(9, "30", "20", "5", "-5");
  Press("Command2");
  EXPECT_EQ(TakeMessages(),
            Texts{"Limit Lines Set|Seg 3: Stop Freq must be > Start Freq|exclamation|ok"});
  PutSegment(9, "1", "20", "5", "-5");
  Press("Command2");
  EXPECT_EQ(TakeMessages(), Texts{"Limit Lines Set|Seg 3: Invalid Start Freq|exclamation|ok"});
  PutSegment(9, "10", "200", "5", "-5");
  Press("Command2");
  EXPECT_EQ(TakeMessages(), Texts{"Limit Lines Set|Seg 3: Invalid StopFreq|exclamation|ok"});
  PutSegment(9, "10.5", "20", "", "-5");
  Press("Command2");
  EXPECT_EQ(TakeMessages(), Texts{"Limit Lines Set|Seg 3: Invalid Limit Value(s)|exclamation|ok"});
  EXPECT_EQ(Text(9), "10.0000");
  PutSegment(9, "10", "20", "5", "5");
  Press("Command2");
  EXPECT_EQ(TakeMessages(),
            Texts{"Limit Lines Set|Seg 3: Invalid Seg1 Limit Values(s)|exclamation|ok"});
}

TEST_F(LimitsWindow, ApplyAndExitShowsWhatIsEnabledTickedAndApplied) {
  PutSegment(33, "10", "20", "5", "-5");
  Press("Command3");
  Tick("Check3");
  Tick("Check37");
  EXPECT_FALSE(session.Display.ShowLimits);
  Press("Command1");
  EXPECT_TRUE(session.Display.ShowLimits);
  EXPECT_TRUE(session.Channel(2).LimitsOn);
  EXPECT_FALSE(session.Display.LimitAlarmOn);
  EXPECT_FALSE(fake.IsShown("NewLimitsSet"));
}

TEST_F(LimitsWindow, TheAlarmIsArmedOnTheWayOut) {
  Tick("Check37");
  Tick("Check38");
  EXPECT_FALSE(session.Display.LimitAlarmOn);
  Press("Command1");
  EXPECT_TRUE(session.Display.LimitAlarmOn);
}

TEST_F(LimitsWindow, SegmentsThatAreNotAppliedPend) {
  const auto pending = [this](int number) {
    return At("NewLimitsSet.Text" + std::to_string(number)).Pending();
  };
  PutSegment(1, "10.4", "20.2", "5", "6");
  Put(33, "30");
  fake.SessionChanged();
  EXPECT_TRUE(pending(1) && pending(2) && pending(3) && pending(4) && pending(33));
  EXPECT_FALSE(pending(5));
  Press("Command2");
  EXPECT_EQ(TakeMessages().size(), 1u);
  EXPECT_TRUE(pending(3) && pending(4)) << "refused";
  Put(4, "-5");
  Press("Command2");
  for (const int number : {1, 2, 3, 4}) EXPECT_FALSE(pending(number)) << number;
  EXPECT_TRUE(pending(33)) << "another channel";
  fake.Hide(window::kNewLimitsSet);
  fake.Show(window::kNewLimitsSet);
  EXPECT_TRUE(pending(33));
  Window("NewLimitsSet").OnSessionLoaded();
  EXPECT_FALSE(pending(33));
}

// Display Set Up leaves the limits of another graph on.
TEST_F(LimitsWindow, SaysWhatTheLimitsThatAreShownAreForWhereTheGraphShowsSomethingElse) {
  const auto foot = [this] { return At("NewLimitsSet.Waiting").Caption; };
  session.Channel(2).Parameter = Parameter::S21;
  PutSegment(1, "10", "90", "5", "1");
  PutSegment(33, "10", "90", "5", "1");
  Press("Command2");
  Press("Command3");
  Tick("Check1");
  Tick("Check3");
  Tick("Check37");
  Press("Command1");
  fake.Show(window::kNewLimitsSet);
  EXPECT_EQ(foot(), "");
  EXPECT_FALSE(At("NewLimitsSet.Waiting").Shown);
  session.Channel(1).GraphType = GraphType::Swr;
  session.Channel(1).Units = Unit::U;
  session.Channel(2).Parameter = Parameter::S12;
  fake.host().windows.SessionChanged();
  EXPECT_EQ(foot(),
            "CH1 shows S11 SWR in U: limits are for S11 LogMag in dB\n"
            "CH2 shows S12 LogMag in dB: limits are for S21 LogMag in dB");
  EXPECT_TRUE(At("NewLimitsSet.Waiting").Shown);
  Press("Command2");
  Press("Command3");
  EXPECT_EQ(foot(), "") << "applied again for what is shown";
}

TEST_F(LimitsWindow, SaysWhereAppliedLimitsAreNotShown) {
  const auto said = [this] {
    Press("Command1");
    fake.Show(window::kNewLimitsSet);
    return program.controller().notice().Text();
  };
  EXPECT_EQ(said(), "") << "there are none";
  PutSegment(33, "10", "90", "5", "1");
  Press("Command3");
  constexpr const char* kNone = "No limits are shown: tick Show Limits and Enable Limits";
  EXPECT_EQ(said(), kNone);
  program.controller().notice().Say("");
  Tick("Check37");
  EXPECT_EQ(said(), kNone);
  program.controller().notice().Say("");
  Tick("Check3");
  EXPECT_EQ(said(), "");
}

// Drawn along the frame, such a segment looks like a limit.
TEST_F(LimitsWindow, SaysWhichAppliedSegmentsSetNoLimit) {
  const auto foot = [this] { return At("NewLimitsSet.Waiting").Caption; };
  PutSegment(1, "10", "20", "5", "1");
  PutSegment(5, "20", "30", "1000", "-1000");
  PutSegment(9, "30", "40", "1000", "1");
  EXPECT_EQ(foot(), "");
  Press("Command2");
  EXPECT_EQ(foot(), "CH1 Seg 2: 1000 and -1000 set no limit, nothing is tested there");
  EXPECT_TRUE(At("NewLimitsSet.Waiting").Shown);
  PutSegment(33, "10", "90", "1e4", "-2000");
  Press("Command3");
  EXPECT_EQ(foot(),
            "CH1 Seg 2: 1000 and -1000 set no limit, nothing is tested there\n"
            "CH2 Seg 1: 1000 and -1000 set no limit, nothing is tested there");
  Put(8, "-60");
  Put(36, "1");
  Press("Command2");
  Press("Command3");
  EXPECT_EQ(foot(), "");
}

TEST_F(LimitsWindow, WhatWasTypedIsThereAgain) {
  Put(1, "12");
  Tick("Check11");
  fake.Hide(window::kNewLimitsSet);
  fake.Show(window::kNewLimitsSet);
  EXPECT_EQ(Text(1), "12");
  EXPECT_EQ(Value("NewLimitsSet.Check11"), "on");
}

}  // namespace
}  // namespace qk
