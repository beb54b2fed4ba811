// SPDX-License-Identifier: MIT
// START and its conditions, the reduction of a stream, and what single kinds of sweep do of their
// own.
#include <gtest/gtest.h>

#include <cmath>

#include "control/control_fixture.h"
#include "control/known_samples.h"
#include "trace/reference_plane.h"

namespace qk::test {
namespace {

class Measuring : public ::testing::Test, public SweepingControl {};

// ---- START ------------------------------------------------------------------------------------

TEST_F(Measuring, StartWithoutACalibrationSaysSo) {
  MakeReady();
  session->Cal.CalS11 = false;
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
  session->Flags.SigGenActive = true;
  fake.Enable(TimerId::Timer1, false);
  session->Cal.CalS11 = false;
  control.StartMeasurement();
  EXPECT_FALSE(session->Flags.SigGenActive);
  EXPECT_TRUE(fake.Enabled(TimerId::Timer1));
}

TEST_F(Measuring, TheFirstKindInForceIsMeasured) {
  MakeReady();
  session->Cal.CalS21 = session->Cal.CalS11S21 = session->Cal.Cal12Term = true;
  Measure();
  EXPECT_EQ(port.TakeAllCommands(), "Q M");
  session->Cal.CalS11 = false;
  Measure();
  EXPECT_EQ(port.TakeAllCommands(), "Q S");
  session->Cal.CalS21 = false;
  Measure();
  EXPECT_EQ(port.TakeAllCommands(), "Q YO");
  session->Cal.CalS11S21 = false;
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
  port.Volts = KnownVolts;
  Measure();
  EXPECT_EQ(Messages(), "");
  ExpectNear(session->Data.RawS11[0], Ratio(0, 2, 4, 1, 3), "RawS11", 0);
}

// ---- the plan and the numbers
// --------------------------------------------------------------------

TEST_F(Measuring, TheLargestSweepIsTakenWhole) {
  MakeReady(KindsOfSweep()[3], 1024);
  port.PointUs = 100;
  Measure();
  EXPECT_EQ(port.BytesStreamed, 36864u);
  EXPECT_EQ(control.SweepsEnded(), 1);
  EXPECT_EQ(session->Display.PointCounter, 1024);
}

TEST_F(Measuring, AZeroReferenceGivesFiniteValues) {
  MakeReady();
  port.Volts = [](int, int) { return std::vector<double>{0, 1, 0, 1}; };
  session->Receiver.DcOffsetI = 32768.0 / 65535 * 4.999924 - 2.5;
  Measure();
  EXPECT_EQ(session->Data.RawS11[10].re, 0);
  EXPECT_TRUE(std::isfinite(session->Data.S11[10].re));
  EXPECT_TRUE(std::isfinite(session->Data.S11[10].im));
  EXPECT_TRUE(std::isfinite(session->Channel(1).Value[11]));
}

TEST_F(Measuring, OffsetsComeOffTheReferenceWithIAndTheTestWithQ) {
  MakeReady();
  port.Volts = [](int, int) { return std::vector<double>{1.5, 0.9, 0.5, 0.9}; };
  session->Receiver.DcOffsetI = 0.5;
  session->Receiver.DcOffsetQ = 0.4;
  Measure();
  EXPECT_NEAR(session->Data.RawS11[0].re, 0.5, 1e-3);
  EXPECT_NEAR(session->Data.RawS11[0].im, 0.5, 1e-3);
}

TEST_F(Measuring, AveragesDivideTheSamples) {
  MakeReady();
  session->Averaging.Averages = 128;
  port.Averages = 128;
  port.Volts = KnownVolts;
  Measure();
  const Complex z = Ratio(9, 2, 4, 1, 3);
  EXPECT_NEAR(session->Data.RawS11[9].re, z.re, 1e-3);
  EXPECT_NEAR(session->Data.RawS11[9].im, z.im, 1e-3);
}

TEST_F(Measuring, ACountChangedInMidSweepLeavesTheSweepAsItWasTriggered) {
  MakeReady();
  session->Averaging.Averages = 8;
  port.Averages = 8;
  port.Volts = KnownVolts;
  AtPoint(1, 20, [&] { session->Averaging.Averages = 1; });
  Measure();
  EXPECT_NEAR(session->Data.RawS11[40].re, Ratio(40, 2, 4, 1, 3).re, 1e-3);
}

TEST_F(Measuring, TransmissionIsDividedByTheReflectionAtItsPlane) {
  MakeReady(KindsOfSweep()[2]);
  session->Terms.Forward.ES.Fill({0.3, 0.1});
  session->Planes.PlaneS11 = 0.05f;
  session->Planes.DelayS11 = 0.05f / 299792458.0f;
  session->Plan.StepFreq = 2e7;
  port.Volts = KnownVolts;
  Measure();
  const int p = 30;
  const Complex raw = session->Data.RawS11[p];
  const Complex es{0.3, 0.1};
  const Complex es_x = ComplexMultiply(es, raw);
  const Complex corrected = ComplexDivide(raw, {es_x.re + 1, es_x.im});
  const Complex s11 = ApplyReferencePlane(*session, corrected, p + 1, Parameter::S11);
  ExpectNear(session->Data.S11[p], s11, "S11", p);
  const Complex d = ComplexMultiply(s11, es);
  ExpectNear(session->Data.S21[p], ComplexDivide(session->Data.RawS21[p], {d.re + 1, d.im}), "S21",
             p);
}

TEST_F(Measuring, AllFourAreDispatchedTransmissionFirst) {
  MakeReady(KindsOfSweep()[3]);
  // The previous phases of group delay show the order: S12 is the last transmission, S22 the last
  // reflection.
  session->Display.DisplaySet = DisplaySet::All;
  const char* parameters[] = {"S11", "S21", "S12", "S22"};
  for (int ch = 1; ch <= 4; ++ch) {
    session->Channel(ch).Parameter = *Named<Parameter>(parameters[ch - 1]);
    session->Channel(ch).GraphType = GraphType::GroupDelay;
    session->Channel(ch).Units = Unit::Ns;
  }
  port.Volts = [](int p, int samples) {
    auto volts = KnownVolts(p, samples);
    volts[1] += 0.5, volts[8] -= 0.3, volts[7] += 0.2;
    return volts;
  };
  float transmission = 0, reflection = 0;
  AtPoint(1, 30, [&] {
    transmission = session->Display.PrevPhaseTransmission;
    reflection = session->Display.PrevPhaseReflection;
  });
  Measure();
  const auto phase = [&](const ComplexArray& a) { return PhaseDeg(a[29].re, a[29].im); };
  EXPECT_EQ(transmission, phase(session->Data.S12));
  EXPECT_EQ(reflection, phase(session->Data.S22));
  EXPECT_NE(transmission, phase(session->Data.S21));
  EXPECT_NE(reflection, phase(session->Data.S11));
}

// Intentional: only the S21 measurement takes a standing time-out as its sweep's end.
TEST_F(Measuring, AStandingTimeOutEndsTheSweepOfS21Only) {
  for (const KindOfSweep& kind : KindsOfSweep()) {
    SweepingControl b;
    b.MakeReady(kind);
    b.session->Id.FirmwareVersion = "1.0";
    b.AtPoint(1, 20, [&] {
      b.session->Flags.ReplyTimedOut = true;
      b.control.StopMeasurement();
    });
    b.control.StartMeasurement();
    EXPECT_EQ(b.Messages(), "");
    EXPECT_EQ(b.session->Display.PointCounter == 20, kind.Mode == SweepMode::S21) << kind.Trigger;
  }
}

}  // namespace
}  // namespace qk::test
