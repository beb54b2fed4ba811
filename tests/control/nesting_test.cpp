// SPDX-License-Identifier: MIT
// Handlers that run nested in a sweep, at every point of it: one talker on the line, and what they
// asked for is served once, in its order, between two sweeps.
#include <gtest/gtest.h>

#include "control/control_fixture.h"

namespace qk::test {
namespace {

// What a handler does in mid-sweep, and what goes over the wire between that sweep and the next.
struct Interference {
  const char* Name;
  std::function<void(SweepingControl&)> Act;
  std::string Served;  // "PATH" is replaced by the path of the kind
};

const std::vector<Interference>& Interferences() {
  static const std::vector<Interference> all = {
      {"tick", [](SweepingControl& b) { b.control.Tick(TimerId::Timer1); }, " Q C PATH Q Q T"},
      {"three ticks",
       [](SweepingControl& b) {
         for (int i = 0; i < 3; ++i) b.control.Tick(TimerId::Timer1);
       },
       " Q C PATH Q Q T"},
      {"averaging on", [](SweepingControl& b) { b.control.AverOn(); }, " Q Y8:7"},
      {"averaging off", [](SweepingControl& b) { b.control.AverOff(); }, " Q Y8:1"},
      {"averaging on and off",
       [](SweepingControl& b) {
         b.control.AverOn();
         b.control.AverOff();
       },
       " Q Y8:1"},
      {"averaging off and on",
       [](SweepingControl& b) {
         b.control.AverOff();
         b.control.AverOn();
       },
       " Q Y8:7"},
      {"dwell",
       [](SweepingControl& b) {
         b.session->Flags.DwellOn = true;
         b.session->Flags.DwellChangeDue = true;
       },
       " Q D:1"},
      {"level", [](SweepingControl& b) { b.session->Flags.LevelChangeDue = true; }, " Q N"},
      {"all",
       [](SweepingControl& b) {
         b.session->Flags.LevelChangeDue = true;
         b.session->Flags.DwellChangeDue = true;
         b.control.AverOn();
         b.control.Tick(TimerId::Timer1);
       },
       " Q C PATH Q Q T Q Y8:7 Q D:0 Q N"},
      {"START", [](SweepingControl& b) { b.control.StartMeasurement(); }, ""},
      {"smoothing",
       [](SweepingControl& b) {
         b.session->Averaging.SmoothOn = !b.session->Averaging.SmoothOn;
         b.control.SmoothChanged();
       },
       ""},
      {"another display",
       [](SweepingControl& b) {
         b.session->Display.DisplaySet = DisplaySet::All;
         b.session->Channel(1).GraphType = GraphType::Phase;
         b.graphs.ReplotAll();
       },
       ""},
      {"status and alarm ticks",
       [](SweepingControl& b) {
         b.control.Tick(TimerId::Timer2);
         b.control.Tick(TimerId::Timer3);
       },
       ""},
      {"Exit answered No",
       [](SweepingControl& b) {
         b.fake.Answers = {Answer::No};
         b.control.Exit();
       },
       ""},
      {"Re-Start cancelled",
       [](SweepingControl& b) {
         b.fake.Answers = {Answer::Yes, Answer::Cancel};
         b.control.ReStart();
       },
       ""}};
  return all;
}

class Nested : public ::testing::TestWithParam<KindOfSweep> {};

INSTANTIATE_TEST_SUITE_P(Sweeps, Nested, ::testing::ValuesIn(KindsOfSweep()),
                         [](const auto& kind) { return std::string("kind") + kind.param.Trigger; });

TEST_P(Nested, EveryHandlerAtEveryPointWaitsForTheSweepsEnd) {
  for (const Interference& what : Interferences()) {
    SweepingControl b;
    b.MakeReady(GetParam());
    b.session->Averaging.AveragesSet = 7;
    std::string served = what.Served;
    if (const auto at = served.find("PATH"); at != std::string::npos)
      served.replace(at, 4, GetParam().Path);
    const std::string t = GetParam().Trigger;
    for (int point = 1; point <= kPoints; ++point) {
      const long first = b.port.Triggers + 1;
      b.AtPoint(first, point, [&] {
        const std::size_t written = b.port.BytesWritten;
        what.Act(b);
        EXPECT_EQ(b.port.BytesWritten, written) << what.Name << " at " << point;
      });
      b.StopAtPoint(first + 1, kPoints);
      b.control.StartMeasurement();
      ASSERT_EQ(b.port.TakeAllCommands(), "Q " + t + served + " " + t)
          << what.Name << " at " << point;
      EXPECT_TRUE(b.Idle());
      EXPECT_EQ(b.session->Averaging.Averages, static_cast<int>(b.port.Averages));
    }
    EXPECT_EQ(b.port.Intrusions, std::vector<std::string>{}) << what.Name;
    EXPECT_EQ(b.control.SweepsEnded(), 2 * kPoints);
  }
}

TEST_P(Nested, StopAtEveryPointAbortsAndStartWorksAgain) {
  SweepingControl b;
  b.MakeReady(GetParam());
  const std::string t = GetParam().Trigger;
  for (int point = 1; point <= kPoints; ++point) {
    b.StopAtPoint(b.port.Triggers + 1, point);
    b.control.StartMeasurement();
    ASSERT_EQ(b.port.TakeAllCommands(), "Q " + t + (point < kPoints ? " O" : "")) << point;
    ASSERT_TRUE(b.Idle());
    ASSERT_EQ(b.port.InBufferCount(), 0u);
  }
  EXPECT_EQ(b.Messages(), "");
}

TEST_P(Nested, ExitAtEveryPointEndsTheSweepFirst) {
  for (int point = 1; point <= kPoints; ++point) {
    SweepingControl b;
    b.MakeReady(GetParam());
    b.fake.Answers = {Answer::Yes};
    b.AtPoint(1, point, [&] {
      b.control.Exit();
      EXPECT_FALSE(b.fake.ExitCode);
    });
    b.control.StartMeasurement();
    ASSERT_EQ(b.port.TakeAllCommands(),
              std::string("Q ") + GetParam().Trigger + (point < kPoints ? " O" : ""));
    EXPECT_EQ(b.fake.ExitCode, 0);
    EXPECT_FALSE(b.fake.IsShown("ShuttingDown"));
  }
}

TEST_P(Nested, ReStartAtEveryPointTalksOnlyAfterTheSweep) {
  for (int point = 1; point <= kPoints; point += 5) {
    SweepingControl b;
    b.MakeReady(GetParam());
    b.fake.Answers = {Answer::Yes, Answer::Ok};
    b.AtPoint(1, point, [&] {
      const std::size_t written = b.port.BytesWritten;
      b.control.ReStart();
      EXPECT_EQ(b.port.BytesWritten, written);
    });
    b.control.StartMeasurement();
    const std::string before =
        std::string("Q ") + GetParam().Trigger + (point < kPoints ? " O" : "");
    ASSERT_EQ(b.port.TakeAllCommands().substr(0, before.size() + 8), before + " Q *IDN?");
    EXPECT_EQ(b.port.Intrusions, std::vector<std::string>{});
    EXPECT_EQ(b.session->Panels[1], "SN. 147");
    EXPECT_TRUE(b.Idle());
    // The session is new, and measures once it is calibrated again.
    b.MakeReady(GetParam());
    b.Measure();
    EXPECT_EQ(b.port.WholeSweeps, point < kPoints ? 1 : 2);
  }
}

TEST_P(Nested, AMessageBoxInMidSweepCostsNoTimeOut) {
  SweepingControl b;
  b.MakeReady(GetParam());
  b.session->Averaging.AveragesSet = 1;
  b.fake.OnAsk = [&](const Message&) { b.clock.AdvanceMs(60'000); };
  b.AtPoint(1, 20, [&] { b.control.AverOn(); });
  b.StopAtPoint(1, kPoints);
  b.control.StartMeasurement();
  EXPECT_EQ(b.Messages(), "Set Averages|Averages currently set to 1|none|ok\n");
  EXPECT_EQ(b.port.WholeSweeps, 1);
}

TEST_P(Nested, AFailedServiceReportsAndTheSweepsGoOn) {
  SweepingControl b;
  b.MakeReady(GetParam());
  b.session->Averaging.AveragesSet = 7;
  b.AtPoint(1, kPoints, [&] {
    b.control.AverOn();
    b.session->Flags.DwellChangeDue = true;
    b.session->Flags.LevelChangeDue = true;
    b.control.Tick(TimerId::Timer1);
    b.port.Status = "?";
  });
  b.fake.OnAsk = [&](const Message& m) {
    if (m.Title == "Port 1 Level Set") b.port.Status = "R";
  };
  b.StopAtPoint(2, kPoints);
  b.control.StartMeasurement();
  EXPECT_EQ(b.Messages(),
            "RX Offset|No Response|exclamation|ok\nRX Temp Check|No Response|exclamation|ok\n"
            "Set Averages|No Response|exclamation|ok\nDwell Time Set|No Response|exclamation|ok\n"
            "Port 1 Level Set|No Response|exclamation|ok\n");
  // The count that did not reach the instrument goes out before the next sweep, with all that is
  // not known to be held any more.
  EXPECT_EQ(b.session->Averaging.Averages, 7);
  EXPECT_EQ(b.port.Averages, 7u);
  const std::string t = GetParam().Trigger;
  std::string failed, plan = "W";  // its number of points, then nine blocks
  for (int i = 0; i < 4; ++i) failed += "*IDN? Q Q ";
  for (int i = 0; i < 9; ++i) plan += " W Q";
  EXPECT_EQ(b.port.TakeAllCommands(), "Q " + t + " Q Q " + failed + "*IDN? Q Y8:7 Q D:0 Q " + plan +
                                          " " + GetParam().Path + " Q Q " + t);
  EXPECT_FALSE(b.session->Flags.AveragesChangeDue);
}

TEST(NestedHandlers, WhatIsServedOnceIsNotServedAgain) {
  SweepingControl b;
  b.MakeReady();
  b.AtPoint(1, 9, [&] { b.control.Tick(TimerId::Timer1); });
  b.StopAtPoint(4, kPoints);
  b.control.StartMeasurement();
  EXPECT_EQ(b.port.TakeAllCommands(), "Q M Q C YF Q Q T M M M");
}

TEST(NestedHandlers, TheRealTimerTicksTooWhileASweepRuns) {
  SweepingControl b;
  b.MakeReady();
  b.port.PointUs = 300'000;  // a sweep of 15 s, a tick at 10 s
  b.StopAtPoint(2, kPoints);
  b.control.StartMeasurement();
  EXPECT_EQ(b.port.TakeAllCommands(), "Q M Q C YF Q Q T M Q C YF Q Q T");
}

}  // namespace
}  // namespace qk::test
