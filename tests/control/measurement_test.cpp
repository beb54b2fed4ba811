// The four kinds of sweep: what goes over the wire, what becomes of the points, what a user is
// told, and what is served between two sweeps.
#include <gtest/gtest.h>

#include <cmath>

#include "control/control_bench.h"
#include "control/due_changes.h"

namespace qk::test {
namespace {

class Measuring : public ::testing::Test, public ControlBench {};

// Sample values that tell every sample and every point apart, well inside the range.
std::vector<double> Told(int p, int samples) {
  std::vector<double> volts;
  for (int s = 0; s < samples; ++s) volts.push_back(0.3 + 0.11 * s - 0.004 * p);
  return volts;
}

// The ratio of two samples pairs, as the instrument holds them in counts.
Complex Ratio(int p, int testI, int testQ, int refI, int refQ) {
  const auto v = [p](int s) {
    const double volts = Told(p, 12)[static_cast<std::size_t>(s - 1)];
    return static_cast<double>(std::lround((volts + 2.5) / 4.999924 * 65535)) / 65535 * 4.999924 -
           2.5;
  };
  return ComplexDivide({v(testI), v(testQ)}, {v(refI), v(refQ)});
}

void ExpectNear(Complex a, Complex b, const char* what, int p) {
  EXPECT_NEAR(a.re, b.re, 1e-12) << what << " " << p;
  EXPECT_NEAR(a.im, b.im, 1e-12) << what << " " << p;
}

class EachKind : public ::testing::TestWithParam<KindOfSweep>, public ControlBench {};

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
    EXPECT_TRUE(session.Flags.SweepRunning);
    EXPECT_FALSE(session.Flags.SweepIdle);
    EXPECT_EQ(session.SweepStatusText, "SWEEP ON");
  });
  Measure();
  EXPECT_EQ(fake.Events, (std::vector<std::string>{"panel 6 SWEEP ON", "panel 6 Sweep Off"}));
  EXPECT_EQ(session.SweepStatusText, "Sweep Off");
}

TEST_P(EachKind, LetsEventsRunAfterEveryPoint) {
  MakeReady(GetParam());
  port.PointUs = 10;  // the whole stream is there at once
  std::vector<int> seen;
  fake.OnEvents = [&] {
    const int counter = session.Display.PointCounter;
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
  session.Cal.CalDataReady = session.Cal.CalThruReady = false;
  control.StartMeasurement();
  const bool s21 = GetParam().Mode == SweepMode::S21;
  EXPECT_EQ(Messages(), std::string(GetParam().Title) + "|" +
                            (s21 ? "No Thru Calibration" : "No Calibration") + "|exclamation|ok\n");
  EXPECT_TRUE(Idle());
  EXPECT_EQ(port.TakeAllCommands(), "");
  // The next click works.
  session.Cal.CalDataReady = session.Cal.CalThruReady = true;
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
  // Meant: an S21 measurement leaves Timer1 off here.
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
  EXPECT_TRUE(session.Flags.ReplyTimedOut);
  EXPECT_EQ(session.Panels[6], "Sweep Off");
  EXPECT_EQ(session.Display.PointCounter, 20);
  EXPECT_EQ(control.SweepsEnded(), 0);

  port.PointsInStream = -1;
  Measure();
  EXPECT_EQ(Messages(), "");
  EXPECT_EQ(control.SweepsEnded(), 1);
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
  session.Averaging.Averages = 4;
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
  session.Flags.OffsetUpdateDue = false;
  Measure();
  EXPECT_EQ(Messages(), "");
  EXPECT_EQ(control.SweepsEnded(), 1);
}

TEST_P(EachKind, ADoubledStreamPoisonsNothing) {
  MakeReady(GetParam());
  port.Volts = Told;
  AtPoint(1, 51, [&] { port.PointsInStream = -1; });
  port.PointsInStream = 102;
  port.PointUs = 500;
  AtPoint(2, 51, [&] { control.StopMeasurement(); });
  session.Flags.OffsetUpdateDue = true;
  control.StartMeasurement();
  EXPECT_EQ(Messages(), "");
  EXPECT_EQ(control.SweepsEnded(), 2);
  EXPECT_EQ(port.InBufferCount(), 0u);
  EXPECT_EQ(port.Intrusions, std::vector<std::string>{});
}

TEST_P(EachKind, SurplusBytesDoNotShiftTheNextSweep) {
  MakeReady(GetParam());
  port.Volts = Told;
  port.Surplus = {1, 2, 3, 4, 5};
  Measure(3);
  EXPECT_EQ(control.SweepsEnded(), 3);
  const Complex z =
      GetParam().Mode == SweepMode::S11 ? Ratio(7, 2, 4, 1, 3) : session.Data.RawS21[7];
  if (GetParam().Mode == SweepMode::S11) {
    ExpectNear(session.Data.RawS11[7], z, "RawS11", 7);
  } else {
    const bool six = GetParam().Mode != SweepMode::S21;
    ExpectNear(z, six ? Ratio(7, 2, 5, 1, 4) : Ratio(7, 2, 4, 1, 3), "RawS21", 7);
  }
}

TEST_P(EachKind, RawRatiosAreTheirSamplesOfEachPoint) {
  MakeReady(GetParam());
  port.Volts = Told;
  Measure();
  const SParamData& data = session.Data;
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
  session.Data.RawS12.Fill({7, 8});
  session.Data.S22.Fill({5, 6});
  session.Data.RawS11.Fill({3, 4});
  session.Data.RawS21.Fill({1, 2});
  port.Volts = Told;
  Measure();
  const SweepMode mode = GetParam().Mode;
  EXPECT_EQ(session.Data.RawS12[3].re == 7, mode != SweepMode::All);
  EXPECT_EQ(session.Data.S22[3].re == 5, mode != SweepMode::All);
  EXPECT_EQ(session.Data.RawS11[3].re == 3, mode == SweepMode::S21);
  EXPECT_EQ(session.Data.RawS21[3].re == 1, mode == SweepMode::S11);
}

TEST_P(EachKind, ThePlaneOfEachParameterTurnsItsData) {
  MakeReady(GetParam());
  PlaneState& planes = session.Planes;
  planes.PlaneS11 = 0.1f, planes.DelayS11 = 0.1f / 299792458.0f;
  planes.PlaneS21 = 0.2f, planes.DelayS21 = 0.2f / 299792458.0f;
  planes.PlaneS12 = 0.3f, planes.DelayS12 = 0.3f / 299792458.0f;
  planes.PlaneS22 = 0.4f, planes.DelayS22 = 0.4f / 299792458.0f;
  session.Plan.StepFreq = 1e7;
  port.Volts = Told;
  Measure();
  const SweepMode mode = GetParam().Mode;
  const auto turned = [&](const ComplexArray& raw, Parameter parameter) {
    return ApplyReferencePlane(session, raw[40], 41, parameter);
  };
  const SParamData& d = session.Data;
  if (mode != SweepMode::S21) ExpectNear(d.S11[40], turned(d.RawS11, Parameter::S11), "S11", 40);
  if (mode != SweepMode::S11) ExpectNear(d.S21[40], turned(d.RawS21, Parameter::S21), "S21", 40);
  if (mode != SweepMode::All) return;
  ExpectNear(d.S12[40], turned(d.RawS12, Parameter::S12), "S12", 40);
  ExpectNear(d.S22[40], turned(d.RawS22, Parameter::S22), "S22", 40);
}

TEST_P(EachKind, PointsReachTheChannelsThatShowThem) {
  MakeReady(GetParam());
  session.Display.DisplaySet = "all";
  const char* parameters[] = {"S11", "S21", "S12", "S22"};
  for (int ch = 1; ch <= 4; ++ch) {
    session.Channel(ch).Parameter = parameters[ch - 1];
    session.Channel(ch).GraphType = "Real";
    session.Channel(ch).Units = "U";
  }
  port.Volts = Told;
  Measure();
  const SParamData& d = session.Data;
  const ComplexArray* arrays[] = {&d.S11, &d.S21, &d.S12, &d.S22};
  const SweepMode mode = GetParam().Mode;
  const bool delivered[] = {mode != SweepMode::S21, mode != SweepMode::S11, mode == SweepMode::All,
                            mode == SweepMode::All};
  for (int ch = 1; ch <= 4; ++ch) {
    const double value = session.Channel(ch).Value[21];
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
  session.Averaging.AveragesSet = 3;
  AtPoint(1, 20, [&] {
    fake.OnTick(TimerId::Timer1);
    fake.OnTick(TimerId::Timer1);
    control.AverOn();
    session.Flags.DwellOn = true;
    session.Flags.DwellChangeDue = true;
    session.Flags.LevelChangeDue = true;
    EXPECT_TRUE(fake.IsShown("Updating"));
  });
  AtPoint(2, 1, [&] { EXPECT_FALSE(fake.IsShown("Updating")); });
  AtPoint(2, 51, [&] { control.StopMeasurement(); });
  control.StartMeasurement();
  const std::string t = GetParam().Trigger;
  EXPECT_EQ(port.TakeAllCommands(),
            "Q " + t + " Q C " + GetParam().Path + " Q Q T Q Y8:3 Q D:1 Q N " + t);
  EXPECT_EQ(session.Averaging.Averages, 3);
  EXPECT_EQ(session.Panels[5], "Temp 23.9 degC");
  const SweepFlags& f = session.Flags;
  EXPECT_FALSE(f.OffsetUpdateDue || f.AveragesChangeDue || f.DwellChangeDue || f.LevelChangeDue);
  EXPECT_EQ(port.Intrusions, std::vector<std::string>{});
}

// ---- START ------------------------------------------------------------------------------------

TEST_F(Measuring, StartWithoutACalibrationSaysSo) {
  MakeReady();
  session.Cal.CalS11 = false;
  control.StartMeasurement();
  EXPECT_EQ(Messages(), "Start Measurement|No Calibration|exclamation|ok\n");
  EXPECT_TRUE(Idle());
}

TEST_F(Measuring, StartDuringASweepIsIgnored) {
  MakeReady();
  int started = 0;
  control.OnStart = [&] { ++started; };
  AtPoint(1, 5, [&] { control.StartMeasurement(); });
  AtPoint(1, 6, [&] {
    control.StopMeasurement();
    control.StartMeasurement();  // stopping, not idle
  });
  control.StartMeasurement();
  EXPECT_EQ(started, 1);
  EXPECT_EQ(port.TakeAllCommands(), "Q M O");
}

TEST_F(Measuring, StartTakesTheInstrumentBackFromTheSignalGenerator) {
  MakeReady();
  session.Flags.SigGenActive = true;
  fake.Enable(TimerId::Timer1, false);
  session.Cal.CalS11 = false;
  control.StartMeasurement();
  EXPECT_FALSE(session.Flags.SigGenActive);
  EXPECT_TRUE(fake.Enabled(TimerId::Timer1));
}

TEST_F(Measuring, TheFirstKindInForceIsMeasured) {
  MakeReady();
  session.Cal.CalS21 = session.Cal.CalS11S21 = session.Cal.Cal12Term = true;
  Measure();
  EXPECT_EQ(port.TakeAllCommands(), "Q M");
  session.Cal.CalS11 = false;
  Measure();
  EXPECT_EQ(port.TakeAllCommands(), "Q S");
  session.Cal.CalS21 = false;
  Measure();
  EXPECT_EQ(port.TakeAllCommands(), "Q YO");
  session.Cal.CalS11S21 = false;
  Measure();
  EXPECT_EQ(port.TakeAllCommands(), "Q A");
}

TEST_F(Measuring, Timer1IsOffOnlyDuringTheLinkCheck) {
  MakeReady();
  port.Silent = true;
  bool off = false;
  fake.OnBreathe = [&] { off = !fake.Enabled(TimerId::Timer1); };
  control.StartMeasurement();
  EXPECT_TRUE(off);
  EXPECT_TRUE(fake.Enabled(TimerId::Timer1));
}

TEST_F(Measuring, StartOpensAClosedPort) {
  MakeReady();
  port.Close();
  Measure();
  EXPECT_EQ(control.SweepsEnded(), 1);
}

TEST_F(Measuring, AnyKindOfWrongAnswerToTheCheckIsNoResponse) {
  MakeReady();
  port.Status = "X";
  const auto start = clock.NowMs();
  control.StartMeasurement();
  EXPECT_LT(clock.NowMs() - start, 100);
  EXPECT_EQ(Messages(), "Measure S11|No Response|exclamation|ok\n");
}

TEST_F(Measuring, StaleBytesDoNotMeetTheLinkCheckOrTheStream) {
  MakeReady();
  port.SendUnasked({'X', 'X', 7});
  port.Volts = Told;
  Measure();
  EXPECT_EQ(Messages(), "");
  ExpectNear(session.Data.RawS11[0], Ratio(0, 2, 4, 1, 3), "RawS11", 0);
}

// ---- the plan and the numbers
// --------------------------------------------------------------------

TEST_F(Measuring, TheLargestSweepIsTakenWhole) {
  MakeReady(KindsOfSweep()[3], 1024);
  port.PointUs = 100;
  Measure();
  EXPECT_EQ(port.BytesStreamed, 36864u);
  EXPECT_EQ(control.SweepsEnded(), 1);
  EXPECT_EQ(session.Display.PointCounter, 1024);
}

TEST_F(Measuring, AZeroReferenceGivesFiniteValues) {
  MakeReady();
  port.Volts = [](int, int) { return std::vector<double>{0, 1, 0, 1}; };
  session.Receiver.DcOffsetI = 32768.0 / 65535 * 4.999924 - 2.5;
  Measure();
  EXPECT_EQ(session.Data.RawS11[10].re, 0);
  EXPECT_TRUE(std::isfinite(session.Data.S11[10].re));
  EXPECT_TRUE(std::isfinite(session.Data.S11[10].im));
  EXPECT_TRUE(std::isfinite(session.Channel(1).Value[11]));
}

TEST_F(Measuring, OffsetsComeOffTheReferenceWithIAndTheTestWithQ) {
  MakeReady();
  port.Volts = [](int, int) { return std::vector<double>{1.5, 0.9, 0.5, 0.9}; };
  session.Receiver.DcOffsetI = 0.5;
  session.Receiver.DcOffsetQ = 0.4;
  Measure();
  EXPECT_NEAR(session.Data.RawS11[0].re, 0.5, 1e-3);
  EXPECT_NEAR(session.Data.RawS11[0].im, 0.5, 1e-3);
}

TEST_F(Measuring, AveragesDivideTheSamples) {
  MakeReady();
  session.Averaging.Averages = 128;
  port.Averages = 128;
  port.Volts = Told;
  Measure();
  const Complex z = Ratio(9, 2, 4, 1, 3);
  EXPECT_NEAR(session.Data.RawS11[9].re, z.re, 1e-3);
  EXPECT_NEAR(session.Data.RawS11[9].im, z.im, 1e-3);
}

TEST_F(Measuring, ACountChangedInMidSweepLeavesTheSweepAsItWasTriggered) {
  MakeReady();
  session.Averaging.Averages = 8;
  port.Averages = 8;
  port.Volts = Told;
  AtPoint(1, 20, [&] { session.Averaging.Averages = 1; });
  Measure();
  EXPECT_NEAR(session.Data.RawS11[40].re, Ratio(40, 2, 4, 1, 3).re, 1e-3);
}

TEST_F(Measuring, TransmissionIsDividedByTheReflectionAtItsPlane) {
  MakeReady(KindsOfSweep()[2]);
  session.Terms.Forward.ES.Fill({0.3, 0.1});
  session.Planes.PlaneS11 = 0.05f;
  session.Planes.DelayS11 = 0.05f / 299792458.0f;
  session.Plan.StepFreq = 2e7;
  port.Volts = Told;
  Measure();
  const int p = 30;
  const Complex raw = session.Data.RawS11[p];
  const Complex es{0.3, 0.1};
  const Complex es_x = ComplexMultiply(es, raw);
  const Complex corrected = ComplexDivide(raw, {es_x.re + 1, es_x.im});
  const Complex s11 = ApplyReferencePlane(session, corrected, p + 1, Parameter::S11);
  ExpectNear(session.Data.S11[p], s11, "S11", p);
  const Complex d = ComplexMultiply(s11, es);
  ExpectNear(session.Data.S21[p], ComplexDivide(session.Data.RawS21[p], {d.re + 1, d.im}), "S21",
             p);
}

TEST_F(Measuring, AllFourAreDispatchedTransmissionFirst) {
  MakeReady(KindsOfSweep()[3]);
  // The previous phases of group delay tell the order: S12 is the last transmission, S22 the last
  // reflection.
  session.Display.DisplaySet = "all";
  const char* parameters[] = {"S11", "S21", "S12", "S22"};
  for (int ch = 1; ch <= 4; ++ch) {
    session.Channel(ch).Parameter = parameters[ch - 1];
    session.Channel(ch).GraphType = "Group Delay";
    session.Channel(ch).Units = "ns";
  }
  port.Volts = [](int p, int samples) {
    auto volts = Told(p, samples);
    volts[1] += 0.5, volts[8] -= 0.3, volts[7] += 0.2;
    return volts;
  };
  float transmission = 0, reflection = 0;
  AtPoint(1, 30, [&] {
    transmission = session.Display.PrevPhaseTransmission;
    reflection = session.Display.PrevPhaseReflection;
  });
  Measure();
  const auto phase = [&](const ComplexArray& a) { return PhaseDeg(a[29].re, a[29].im); };
  EXPECT_EQ(transmission, phase(session.Data.S12));
  EXPECT_EQ(reflection, phase(session.Data.S22));
  EXPECT_NE(transmission, phase(session.Data.S21));
  EXPECT_NE(reflection, phase(session.Data.S11));
}

// ---- redraw -------------------------------------------------------------------------------------

TEST_F(Measuring, TheRefreshIntervalFollowsAveragesAndPoints) {
  EXPECT_EQ(PlotRefreshPointsFor(1, 51), 2);  // b = 0
  EXPECT_EQ(PlotRefreshPointsFor(200, 51), 2);
  EXPECT_EQ(PlotRefreshPointsFor(1, 401), 10);  // 5 * 4
  EXPECT_EQ(PlotRefreshPointsFor(1, 101), 5);
  EXPECT_EQ(PlotRefreshPointsFor(2, 101), 4);   // Int(4.87)
  EXPECT_EQ(PlotRefreshPointsFor(16, 201), 6);  // Int(3.05) * 2
  EXPECT_EQ(PlotRefreshPointsFor(40, 401), 2);  // Int(-0.07) is -1
  EXPECT_EQ(PlotRefreshPointsFor(255, 1024), 2);
}

TEST_F(Measuring, TheIntervalIsSetAtEachSweepsEnd) {
  MakeReady(KindsOfSweep()[0], 101);
  Measure();
  EXPECT_EQ(session.Display.PlotRefreshPoints, 5);
}

TEST_F(Measuring, TheLiveLayerIsRedrawnEveryFewPointsAndAtTheLast) {
  MakeReady();
  session.Display.PlotRefreshPoints = 4;
  std::vector<int> at;
  int presented = 0;
  AtPoint(1, 1, [&] { surface.ClearLog(); });
  fake.OnEvents = [&] {
    const int counter = session.Display.PointCounter;
    if (counter > 0 && surface.Presented != presented) at.push_back(counter);
    presented = surface.Presented;
    if (counter == 51) control.StopMeasurement();
  };
  presented = surface.Presented;
  control.StartMeasurement();
  // The first entry is the redraw at the start.
  EXPECT_EQ(std::vector<int>(at.begin() + (at.front() == 1 ? 1 : 0), at.end()),
            (std::vector<int>{4, 8, 12, 16, 20, 24, 28, 32, 36, 40, 44, 48, 51}));
}

TEST_F(Measuring, APartialRedrawWipesFirstAndCommitsNothing) {
  MakeReady();
  session.Display.PlotRefreshPoints = 10;
  std::vector<std::string> log;
  AtPoint(1, 9, [&] { surface.ClearLog(); });
  AtPoint(1, 10, [&] { log = surface.Log(); });
  Measure();
  ASSERT_FALSE(log.empty());
  EXPECT_EQ(log.front(), "wipe");
  EXPECT_EQ(log.back(), "present");
  EXPECT_EQ(std::count(log.begin(), log.end(), "commit"), 0);
}

TEST_F(Measuring, AMemoryHoldIsReplottedAtTheSweepsEndInDataAndMemoryOnly) {
  for (const bool hold : {false, true}) {
    for (const std::string mode : {"Data", "Data+", "Memory+"}) {
      ControlBench b;
      b.MakeReady();
      b.session.Display.DisplayMode = mode;
      b.session.Display.MemoryHold = hold ? "Max" : "Off";
      int commits = 0;
      b.AtPoint(1, 51, [&] { b.surface.ClearLog(); });
      b.AtPoint(2, 1, [&] {
        const auto& log = b.surface.Log();
        commits = static_cast<int>(std::count(log.begin(), log.end(), "commit"));
      });
      b.AtPoint(2, 51, [&] { b.control.StopMeasurement(); });
      b.control.StartMeasurement();
      EXPECT_EQ(commits > 0, hold && mode == "Data+") << mode << hold;
    }
  }
}

// ---- overload -----------------------------------------------------------------------------------

std::vector<double> Quiet(int, int samples) {
  return std::vector<double>(static_cast<std::size_t>(samples), 0.5);
}

TEST_F(Measuring, AnOverloadOfPort2IsToldForFiveSeconds) {
  MakeReady(KindsOfSweep()[1]);
  port.Volts = [](int p, int samples) {
    auto volts = Quiet(p, samples);
    if (p == 10) volts[1] = 2.49;
    return volts;
  };
  AtPoint(1, 11, [&] {
    EXPECT_EQ(session.Panels[3], "Port 2 Overload!");
    EXPECT_EQ(fake.Beeps, 1);
    EXPECT_TRUE(fake.Enabled(TimerId::Timer2));
  });
  AtPoint(1, 51, [&] {
    port.Volts = Quiet;
    control.StopMeasurement();
  });
  control.StartMeasurement();
  fake.RunFor(4800);
  EXPECT_EQ(session.Panels[3], "Port 2 Overload!");
  fake.RunFor(200);
  EXPECT_EQ(session.Panels[3], "S21 Cal");
  EXPECT_FALSE(fake.Enabled(TimerId::Timer2));
}

TEST_F(Measuring, AContinuousOverloadBeepsOnceAndLastsUntilFiveSecondsAfterTheLast) {
  MakeReady(KindsOfSweep()[1]);
  port.PointUs = 200'000;  // a sweep of ten seconds
  port.Volts = [](int p, int samples) {
    auto volts = Quiet(p, samples);
    if (p < 40) volts[1] = -2.5;
    return volts;
  };
  std::int64_t last = 0, restored = 0;
  AtPoint(1, 40, [&] { last = clock.NowMs(); });
  AtPoint(1, 51, [&] { control.StopMeasurement(); });
  fake.OnTick = [&](TimerId timer) {
    control.Tick(timer);
    if (timer == TimerId::Timer2) restored = clock.NowMs();
  };
  control.StartMeasurement();
  fake.RunFor(6000);
  EXPECT_EQ(fake.Beeps, 1);
  EXPECT_NEAR(static_cast<double>(restored - last), 5000, 20);
  EXPECT_EQ(session.Panels[3], "S21 Cal");
  EXPECT_EQ(std::count(fake.Events.begin(), fake.Events.end(), "panel 3 Port 2 Overload!"), 1);
}

TEST_F(Measuring, TheReverseHalfTellsAnOverloadOfPort1) {
  MakeReady(KindsOfSweep()[3]);
  port.Volts = [](int p, int samples) {
    auto volts = Quiet(p, samples);
    if (p == 20) volts[8] = 2.495;
    if (p == 30) volts[1] = 2.495;
    return volts;
  };
  AtPoint(1, 21, [&] { EXPECT_EQ(session.Panels[3], "Port 1 Overload!"); });
  AtPoint(1, 31, [&] { EXPECT_EQ(session.Panels[3], "Port 2 Overload!"); });
  Measure();
  EXPECT_EQ(session.Panels[3], "Port 2 Overload!");
}

TEST_F(Measuring, AReflectionSweepTellsNoOverload) {
  MakeReady();
  port.Volts = [](int, int) { return std::vector<double>{0.5, 2.495, 0.5, 2.495}; };
  Measure();
  EXPECT_EQ(fake.Beeps, 0);
  EXPECT_NE(session.Panels[3], "Port 2 Overload!");
}

TEST_F(Measuring, JustBelowTheLimitIsNoOverload) {
  MakeReady(KindsOfSweep()[1]);
  port.Volts = [](int, int) { return std::vector<double>{0.5, 2.489, 0.5, 0}; };
  Measure();
  EXPECT_EQ(fake.Beeps, 0);
}

// Meant: only the S21 measurement takes a standing time-out as its sweep's end.
TEST_F(Measuring, AStandingTimeOutEndsTheSweepOfS21Only) {
  for (const KindOfSweep& kind : KindsOfSweep()) {
    ControlBench b;
    b.MakeReady(kind);
    b.session.Id.FirmwareVersion = "1.0";
    b.AtPoint(1, 20, [&] {
      b.session.Flags.ReplyTimedOut = true;
      b.control.StopMeasurement();
    });
    b.control.StartMeasurement();
    EXPECT_EQ(b.Messages(), "");
    EXPECT_EQ(b.session.Display.PointCounter == 20, kind.Mode == SweepMode::S21) << kind.Trigger;
  }
}

}  // namespace
}  // namespace qk::test
