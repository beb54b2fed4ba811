// SPDX-License-Identifier: MIT
// What all four kinds of sweep have in common: the wire, the states, the time-outs, the data, and
// what is served between two sweeps.
#include <gtest/gtest.h>

#include "control/control_fixture.h"
#include "control/known_samples.h"
#include "trace/reference_plane.h"

namespace qk::test {
namespace {

class EachKind : public ::testing::TestWithParam<KindOfSweep>, public SweepingControl {};

INSTANTIATE_TEST_SUITE_P(Sweeps, EachKind, ::testing::ValuesIn(KindsOfSweep()),
                         [](const auto& kind) { return std::string("kind") + kind.param.Trigger; });

TEST_P(EachKind, SendsALinkCheckAndOneTriggerASweep) {
  MakeReady(GetParam());
  Measure(3);
  const std::string t = GetParam().Trigger;
  EXPECT_EQ(port.TakeAllCommands(), "Q " + t + " " + t + " " + t);
  EXPECT_EQ(port.WholeSweeps, 3);
  EXPECT_EQ(control.SweepsEnded(), 3);
  EXPECT_TRUE(Idle());
  EXPECT_EQ(Messages(), "");
  EXPECT_EQ(port.InBufferCount(), 0u);
}

TEST_P(EachKind, ShowsItsStateAndRedrawsAtStartAndEnd) {
  MakeReady(GetParam());
  AtPoint(1, 10, [&] {
    EXPECT_TRUE(session->Flags.SweepRunning);
    EXPECT_FALSE(session->Flags.SweepIdle);
    EXPECT_EQ(session->SweepStatusText, "SWEEP ON");
  });
  Measure();
  EXPECT_EQ(fake.Events, (std::vector<std::string>{"panel 6 SWEEP ON", "panel 6 Sweep Off"}));
  EXPECT_EQ(session->SweepStatusText, "Sweep Off");
}

TEST_P(EachKind, LetsEventsRunAfterEveryPoint) {
  MakeReady(GetParam());
  port.PointUs = 0;  // the whole stream is there at once
  std::vector<int> seen;
  fake.OnEvents = [&] {
    const int counter = session->Display.PointCounter;
    if (seen.empty() ? counter > 0 : counter != seen.back()) seen.push_back(counter);
    if (counter == 51) control.StopMeasurement();
  };
  control.StartMeasurement();
  std::vector<int> every;
  for (int p = 1; p <= 51; ++p) every.push_back(p);
  EXPECT_EQ(seen, every);
}

TEST_P(EachKind, WithoutItsCalibrationDataSaysSoAndIsIdleAgain) {
  MakeReady(GetParam());
  session->Cal.CalDataReady = session->Cal.CalThruReady = false;
  control.StartMeasurement();
  const bool s21 = GetParam().Mode == SweepMode::S21;
  EXPECT_EQ(Messages(), std::string(GetParam().Title) + "|" +
                            (s21 ? "No Thru Calibration" : "No Calibration") + "|exclamation|ok\n");
  EXPECT_TRUE(Idle());
  EXPECT_EQ(port.TakeAllCommands(), "");
  // The next click works.
  session->Cal.CalDataReady = session->Cal.CalThruReady = true;
  Measure();
  EXPECT_EQ(port.WholeSweeps, 1);
}

TEST_P(EachKind, SwitchedOffSaysNoResponseAndStartsAtTheNextClickAfterSwitchingOn) {
  MakeReady(GetParam());
  port.Silent = true;
  const auto start = clock.NowMs();
  control.StartMeasurement();
  EXPECT_EQ(Messages(),
            std::string(GetParam().Title) + "|No Response|" + GetParam().LinkIcon + "|ok\n");
  EXPECT_GT(clock.NowMs() - start, 2000);
  EXPECT_LT(clock.NowMs() - start, 2100);
  EXPECT_TRUE(Idle());
  EXPECT_EQ(fake.Panels[6], "");
  // Intentional: an S21 measurement leaves Timer1 off here.
  EXPECT_EQ(fake.Enabled(TimerId::Timer1), GetParam().Mode != SweepMode::S21);

  port.Silent = false;
  Measure();
  EXPECT_EQ(port.WholeSweeps, 1);
  EXPECT_EQ(Messages(), "");
  EXPECT_TRUE(fake.Enabled(TimerId::Timer1));
}

TEST_P(EachKind, AStallEndsTheSweepAndTheNextClickStartsAgain) {
  MakeReady(GetParam());
  port.PointsInStream = 20;
  std::int64_t lastPoint = 0;
  AtPoint(1, 20, [&] { lastPoint = clock.NowMs(); });
  control.StartMeasurement();
  // 250 ms an average and 10 ms a point after the last whole point.
  EXPECT_GT(clock.NowMs() - lastPoint, 250 + 510);
  EXPECT_LT(clock.NowMs() - lastPoint, 250 + 510 + 10);
  EXPECT_EQ(Messages(),
            std::string(GetParam().StallTitle) + "|No Response|" + GetParam().StallIcon + "|ok\n");
  EXPECT_TRUE(Idle());
  EXPECT_TRUE(session->Flags.ReplyTimedOut);
  EXPECT_EQ(session->Panels[6], "Sweep Off");
  EXPECT_EQ(session->Display.PointCounter, 20);
  EXPECT_EQ(control.SweepsEnded(), 0);

  port.PointsInStream = -1;
  Measure();
  EXPECT_EQ(Messages(), "");
  EXPECT_EQ(control.SweepsEnded(), 1);
}

// A point that trickles in, byte by byte: its bytes do not renew the time-out, the whole point
// does.
TEST_P(EachKind, OnlyAWholePointRenewsTheTimeOutAndNoByteOfOne) {
  constexpr int kTimeOutMs = 250 + 510;
  const int bytes = WireOf(GetParam().Mode).BytesPerPoint;
  MakeReady(GetParam());
  std::int64_t lastPoint = 0;
  const auto trickle = [&](int pointMs) {
    port.ByteUs = pointMs * 1000 / bytes;
    port.PointUs = pointMs * 1000;
  };
  AtPoint(1, 19, [&] {
    lastPoint = clock.NowMs();
    trickle(kTimeOutMs + 200);
  });
  control.StartMeasurement();
  EXPECT_EQ(Messages(),
            std::string(GetParam().StallTitle) + "|No Response|" + GetParam().StallIcon + "|ok\n");
  EXPECT_EQ(session->Display.PointCounter, 19);
  EXPECT_GT(port.Taken(), static_cast<std::size_t>(19 * bytes + bytes / 2)) << "most of the next";
  EXPECT_GT(clock.NowMs() - lastPoint, kTimeOutMs);
  EXPECT_LT(clock.NowMs() - lastPoint, kTimeOutMs + 10);

  port.Mend();
  port.PointUs = 2000;
  port.ByteUs = 0;
  AtPoint(2, 1, [&] { trickle(kTimeOutMs - 100); });
  Measure();
  EXPECT_EQ(Messages(), "") << "slow points that are whole in time";
  EXPECT_EQ(session->Display.PointCounter, 51);
}

TEST_P(EachKind, OneByteShortOfCompleteIsAStall) {
  MakeReady(GetParam());
  port.DropByteAt = 100;
  control.StartMeasurement();
  EXPECT_EQ(Messages(),
            std::string(GetParam().StallTitle) + "|No Response|" + GetParam().StallIcon + "|ok\n");
  EXPECT_TRUE(Idle());
  EXPECT_EQ(port.InBufferCount(), 0u);
}

TEST_P(EachKind, TheTimeOutIsIdleAndGrowsWithTheAverages) {
  MakeReady(GetParam());
  session->Averaging.Averages = 4;
  port.Averages = 4;
  port.PointUs = 1'500'000;  // 1 s for the averages and 510 ms for the points
  Measure();
  EXPECT_EQ(Messages(), "");
  EXPECT_EQ(port.WholeSweeps, 1);
  port.PointUs = 1'520'000;
  control.StartMeasurement();
  EXPECT_EQ(Messages(),
            std::string(GetParam().StallTitle) + "|No Response|" + GetParam().StallIcon + "|ok\n");
}

TEST_P(EachKind, WaitingSleepsInThePortAndNeverSpins) {
  MakeReady(GetParam());
  port.PointUs = 100'000;
  Measure();
  // 51 points a tenth of a second apart, sleeps of 5 ms at most, and little beside them.
  EXPECT_LT(port.Waits, 51 * 100 / 5 + 200);
  EXPECT_LT(fake.EventRuns, 51 * 100 / 5 + 300);
  EXPECT_GT(fake.EventRuns, 51 * 100 / 5 - 100);
}

TEST_P(EachKind, AnUnpluggedPortEndsTheSweepAtOnce) {
  MakeReady(GetParam());
  AtPoint(1, 15, [&] { port.Unplug(); });
  const auto start = clock.NowMs();
  control.StartMeasurement();
  EXPECT_LT(clock.NowMs() - start, 100);
  EXPECT_EQ(Messages(),
            std::string(GetParam().StallTitle) + "|No Response|" + GetParam().StallIcon + "|ok\n");
  EXPECT_TRUE(Idle());

  // Plugged in again, the next click opens the port.
  port.Plugged = true;
  session->Flags.OffsetUpdateDue = false;
  Measure();
  EXPECT_EQ(Messages(), "");
  EXPECT_EQ(control.SweepsEnded(), 1);
}

TEST_P(EachKind, ADoubledStreamPoisonsNothing) {
  MakeReady(GetParam());
  port.Volts = KnownVolts;
  AtPoint(1, 51, [&] { port.PointsInStream = -1; });
  port.PointsInStream = 102;
  port.PointUs = 500;
  AtPoint(2, 51, [&] { control.StopMeasurement(); });
  session->Flags.OffsetUpdateDue = true;
  control.StartMeasurement();
  EXPECT_EQ(Messages(), "");
  EXPECT_EQ(control.SweepsEnded(), 2);
  EXPECT_EQ(port.InBufferCount(), 0u);
  EXPECT_EQ(port.Intrusions, std::vector<std::string>{});
}

TEST_P(EachKind, SurplusBytesDoNotShiftTheNextSweep) {
  MakeReady(GetParam());
  port.Volts = KnownVolts;
  port.Surplus = {1, 2, 3, 4, 5};
  Measure(3);
  EXPECT_EQ(control.SweepsEnded(), 3);
  const Complex z =
      GetParam().Mode == SweepMode::S11 ? Ratio(7, 2, 4, 1, 3) : session->Data.RawS21[7];
  if (GetParam().Mode == SweepMode::S11) {
    ExpectNear(session->Data.RawS11[7], z, "RawS11", 7);
  } else {
    const bool six = GetParam().Mode != SweepMode::S21;
    ExpectNear(z, six ? Ratio(7, 2, 5, 1, 4) : Ratio(7, 2, 4, 1, 3), "RawS21", 7);
  }
}

// A byte of noise shifts every sample behind it, and shows as one byte too many.
TEST_P(EachKind, ASweepWithAByteTooManyIsWholeToNobody) {
  for (const std::int64_t behindUs : {0, 1500}) {
    MakeReady(GetParam());
    port.PointUs = behindUs;  // the surplus comes so much behind the last point
    port.Surplus = {0x80};
    std::vector<bool> complete;
    control.OnSweepEnded = [&](bool is) {
      complete.push_back(is);
      EXPECT_EQ(session->Display.SweepDisturbed, !is);
      if (complete.size() == 2) port.Surplus.clear();
      return complete.size() < 4;
    };
    control.StartMeasurement();
    control.OnSweepEnded = {};
    EXPECT_EQ(complete, (std::vector<bool>{false, false, true, true})) << behindUs;
    EXPECT_EQ(Messages(), "");
    EXPECT_EQ(port.Intrusions, std::vector<std::string>{});
  }
}

// Behind the last sweep of a run the line is heard for longer, and before the next exchange
// whatever waits there was surplus.
TEST_P(EachKind, ALateByteTooManyDisturbsTheSweepBeforeIt) {
  for (const std::int64_t behindUs : {15'000, 40'000}) {
    MakeReady(GetParam());
    port.PointUs = behindUs;
    port.Surplus = {0x80};
    std::vector<bool> complete;
    control.OnSweepEnded = [&](bool is) {
      complete.push_back(is);
      port.Surplus.clear();
      return true;
    };
    control.SingleSweep();
    control.OnSweepEnded = {};
    EXPECT_EQ(complete,
              behindUs == 15'000 ? (std::vector<bool>{false, true}) : (std::vector<bool>{true}));
    EXPECT_FALSE(session->Display.SweepDisturbed);
    clock.AdvanceMs(50);
    control.Tick(TimerId::Timer1);
    EXPECT_EQ(session->Display.SweepDisturbed, behindUs == 40'000);
    EXPECT_EQ(Messages(), "");
    control.SingleSweep();
    EXPECT_FALSE(session->Display.SweepDisturbed);
    // Behind an exchange since, a byte says nothing about the sweep.
    control.Tick(TimerId::Timer1);
    port.SendUnasked({0x80});
    control.Tick(TimerId::Timer1);
    EXPECT_FALSE(session->Display.SweepDisturbed);
    port.PointUs = 2000;
  }
}

TEST_P(EachKind, AByteThatIsMissingDisturbsTheSweepThatItEnds) {
  MakeReady(GetParam());
  port.DropByteAt = 20 * 12;
  Measure();
  EXPECT_TRUE(Idle());
  EXPECT_NE(Messages(), "");
  EXPECT_TRUE(session->Display.SweepDisturbed);
  port.Mend();
  Measure();
  EXPECT_EQ(Messages(), "");
  EXPECT_FALSE(session->Display.SweepDisturbed);
}

TEST_P(EachKind, RawRatiosAreTheirSamplesOfEachPoint) {
  MakeReady(GetParam());
  port.Volts = KnownVolts;
  Measure();
  const SParamData& data = session->Data;
  for (int p = 0; p < 51; ++p) {
    switch (GetParam().Mode) {
      case SweepMode::S11:
        ExpectNear(data.RawS11[p], Ratio(p, 2, 4, 1, 3), "RawS11", p);
        ExpectNear(data.S11[p], Ratio(p, 2, 4, 1, 3), "S11", p);
        break;
      case SweepMode::S21:
        ExpectNear(data.RawS21[p], Ratio(p, 2, 4, 1, 3), "RawS21", p);
        ExpectNear(data.S21[p], Ratio(p, 2, 4, 1, 3), "S21", p);
        break;
      case SweepMode::All:
        ExpectNear(data.RawS22[p], Ratio(p, 8, 11, 7, 10), "RawS22", p);
        ExpectNear(data.RawS12[p], Ratio(p, 9, 12, 7, 10), "RawS12", p);
        ExpectNear(data.S22[p], Ratio(p, 8, 11, 7, 10), "S22", p);
        ExpectNear(data.S12[p], Ratio(p, 9, 12, 7, 10), "S12", p);
        [[fallthrough]];
      case SweepMode::S11S21:
        ExpectNear(data.RawS11[p], Ratio(p, 3, 6, 1, 4), "RawS11", p);
        ExpectNear(data.RawS21[p], Ratio(p, 2, 5, 1, 4), "RawS21", p);
        ExpectNear(data.S11[p], Ratio(p, 3, 6, 1, 4), "S11", p);
        ExpectNear(data.S21[p], Ratio(p, 2, 5, 1, 4), "S21", p);
        break;
    }
  }
}

TEST_P(EachKind, WhatItDoesNotDeliverKeepsItsLastValue) {
  MakeReady(GetParam());
  session->Data.RawS12.Fill({7, 8});
  session->Data.S22.Fill({5, 6});
  session->Data.RawS11.Fill({3, 4});
  session->Data.RawS21.Fill({1, 2});
  port.Volts = KnownVolts;
  Measure();
  const SweepMode mode = GetParam().Mode;
  EXPECT_EQ(session->Data.RawS12[3].re == 7, mode != SweepMode::All);
  EXPECT_EQ(session->Data.S22[3].re == 5, mode != SweepMode::All);
  EXPECT_EQ(session->Data.RawS11[3].re == 3, mode == SweepMode::S21);
  EXPECT_EQ(session->Data.RawS21[3].re == 1, mode == SweepMode::S11);
}

TEST_P(EachKind, ThePlaneOfEachParameterTurnsItsData) {
  MakeReady(GetParam());
  PlaneState& planes = session->Planes;
  planes.PlaneS11 = 0.1f, planes.DelayS11 = 0.1f / 299792458.0f;
  planes.PlaneS21 = 0.2f, planes.DelayS21 = 0.2f / 299792458.0f;
  planes.PlaneS12 = 0.3f, planes.DelayS12 = 0.3f / 299792458.0f;
  planes.PlaneS22 = 0.4f, planes.DelayS22 = 0.4f / 299792458.0f;
  session->Plan.StepFreq = 1e7;
  port.Volts = KnownVolts;
  Measure();
  const SweepMode mode = GetParam().Mode;
  const auto turned = [&](const ComplexArray& raw, Parameter parameter) {
    return ApplyReferencePlane(*session, raw[40], 41, parameter);
  };
  const SParamData& d = session->Data;
  if (mode != SweepMode::S21) ExpectNear(d.S11[40], turned(d.RawS11, Parameter::S11), "S11", 40);
  if (mode != SweepMode::S11) ExpectNear(d.S21[40], turned(d.RawS21, Parameter::S21), "S21", 40);
  if (mode != SweepMode::All) return;
  ExpectNear(d.S12[40], turned(d.RawS12, Parameter::S12), "S12", 40);
  ExpectNear(d.S22[40], turned(d.RawS22, Parameter::S22), "S22", 40);
}

TEST_P(EachKind, PointsReachTheChannelsThatShowThem) {
  MakeReady(GetParam());
  session->Display.DisplaySet = DisplaySet::All;
  const char* parameters[] = {"S11", "S21", "S12", "S22"};
  for (int ch = 1; ch <= 4; ++ch) {
    session->Channel(ch).Parameter = *Named<Parameter>(parameters[ch - 1]);
    session->Channel(ch).GraphType = GraphType::Real;
    session->Channel(ch).Units = Unit::U;
  }
  port.Volts = KnownVolts;
  Measure();
  const SParamData& d = session->Data;
  const ComplexArray* arrays[] = {&d.S11, &d.S21, &d.S12, &d.S22};
  const SweepMode mode = GetParam().Mode;
  const bool delivered[] = {mode != SweepMode::S21, mode != SweepMode::S11, mode == SweepMode::All,
                            mode == SweepMode::All};
  for (int ch = 1; ch <= 4; ++ch) {
    const double value = session->Channel(ch).Value[21];
    if (delivered[ch - 1]) {
      EXPECT_EQ(value, (*arrays[ch - 1])[20].re) << ch;
      EXPECT_EQ(graphs.Trace(ch - 1, 0).Value[21], value) << ch;
    } else {
      EXPECT_EQ(value, 0) << ch;
    }
  }
}

TEST_P(EachKind, DueChangesAreServedOnceInTheirOrderBetweenSweeps) {
  MakeReady(GetParam());
  session->Averaging.AveragesSet = 3;
  AtPoint(1, 20, [&] {
    fake.OnTick(TimerId::Timer1);
    fake.OnTick(TimerId::Timer1);
    control.AverOn();
    session->Flags.DwellOn = true;
    session->Flags.DwellChangeDue = true;
    session->Flags.LevelChangeDue = true;
    EXPECT_TRUE(fake.IsShown("Updating"));
  });
  AtPoint(2, 1, [&] { EXPECT_FALSE(fake.IsShown("Updating")); });
  AtPoint(2, 51, [&] { control.StopMeasurement(); });
  control.StartMeasurement();
  const std::string t = GetParam().Trigger;
  EXPECT_EQ(port.TakeAllCommands(),
            "Q " + t + " Q C " + GetParam().Path + " Q Q T Q Y8:3 Q D:1 Q N " + t);
  EXPECT_EQ(session->Averaging.Averages, 3);
  EXPECT_EQ(session->Panels[5], "Temp 23.9 degC");
  const SweepFlags& f = session->Flags;
  EXPECT_FALSE(f.OffsetUpdateDue || f.AveragesChangeDue || f.DwellChangeDue || f.LevelChangeDue);
  EXPECT_EQ(port.Intrusions, std::vector<std::string>{});
}

}  // namespace
}  // namespace qk::test
