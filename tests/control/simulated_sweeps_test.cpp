// SPDX-License-Identifier: MIT
// Control over the simulated instrument, at the pace of its line: start-up to sweeps, byte for
// byte.
#include <gtest/gtest.h>

#include <string>

#include "control/simulated_control.h"

namespace qk::test {
namespace {

TEST(SimulatedSweeps, StartUpReachesReady) {
  SimulatedControl b;
  b.control.StartUp();
  EXPECT_TRUE(b.fake.Messages.empty());
  EXPECT_EQ(b.session->Panels[1], "SN. 147");
  EXPECT_EQ(b.session->Panels[2], " 1, 115.2 Kb/s");
  EXPECT_EQ(b.session->Panels[3], "UNCAL");
  EXPECT_EQ(b.session->Panels[6], "Sweep Off");
  EXPECT_EQ(b.session->Id.FirmwareVersion, "1.2");
  EXPECT_TRUE(b.session->Receiver.DcOffsetValid);
}

struct Kind {
  bool CalState::*Flag;
  const char* Trigger;
};

TEST(SimulatedSweeps, EachKindMeasuresTwoSweepsWithNothingElseOnTheWire) {
  for (const Kind& kind : {Kind{&CalState::CalS11, "M"}, Kind{&CalState::CalS21, "S"},
                           Kind{&CalState::CalS11S21, "YO"}, Kind{&CalState::Cal12Term, "A"}}) {
    SimulatedControl b;
    b.MakeReady(kind.Flag);
    b.StopAfter(2);
    b.control.StartMeasurement();
    EXPECT_EQ(b.Written(), std::string("Q") + kind.Trigger + kind.Trigger);
    EXPECT_EQ(b.control.SweepsEnded(), 2);
    EXPECT_TRUE(b.fake.Messages.empty());
    EXPECT_TRUE(b.control.Idle());
    EXPECT_EQ(b.port.InBufferCount(), 0u);
    const SParamData& data = b.session->Data;
    const ComplexArray& measured = kind.Flag == &CalState::CalS21 ? data.S21 : data.S11;
    EXPECT_GT(Magnitude(measured[25].re, measured[25].im), 1e-6);
  }
}

TEST(SimulatedSweeps, AStopAtAnyPointLeavesTheLineCleanForTheNextStart) {
  SimulatedControl b;
  b.MakeReady(&CalState::Cal12Term);
  for (int point = 1; point < 51; point += 7) {
    b.OnPoint = [&](int counter) {
      if (counter == point) b.control.StopMeasurement();
    };
    b.control.StartMeasurement();
    EXPECT_EQ(b.Written(), "QAO") << point;
    EXPECT_EQ(b.port.InBufferCount(), 0u);
    b.StopAfter(1);
    b.control.StartMeasurement();
    EXPECT_EQ(b.Written(), "QA") << point;
  }
  EXPECT_TRUE(b.fake.Messages.empty());
}

TEST(SimulatedSweeps, AveragesAndOffsetsAreServedBetweenSweeps) {
  SimulatedControl b;
  b.MakeReady(&CalState::CalS11);
  b.session->Averaging.AveragesSet = 4;
  bool done = false;
  b.OnPoint = [&](int counter) {
    if (counter == 10 && !done) {
      done = true;
      b.control.Tick(TimerId::Timer1);
      b.control.AverOn();
    }
    if (b.control.SweepsEnded() == 1 && counter == 51) b.control.StopMeasurement();
  };
  b.control.StartMeasurement();
  EXPECT_EQ(b.Written(), std::string("QMQCYFQQTQY8\x04M"));
  EXPECT_TRUE(b.fake.Messages.empty());
}

TEST(SimulatedSweeps, AStalledInstrumentIsReportedAndStartsAgainWhenItIsMended) {
  SimulatedControl b;
  b.MakeReady(&CalState::CalS21);
  ASSERT_TRUE(b.instrument.Bench("fault stall").Ok);
  b.control.StartMeasurement();
  ASSERT_EQ(b.fake.MessageTexts(), std::vector<std::string>{"Measure S21|No Response|critical|ok"});
  EXPECT_TRUE(b.control.Idle());
  b.fake.Messages.clear();
  ASSERT_TRUE(b.instrument.Bench("fault none").Ok);
  b.clock.AdvanceMs(2000);
  b.StopAfter(1);
  b.control.StartMeasurement();
  EXPECT_TRUE(b.fake.Messages.empty());
  EXPECT_EQ(b.control.SweepsEnded(), 1);
}

TEST(SimulatedSweeps, AMinuteAtThePaceOfTheLineKeepsItsBytes) {
  SimulatedControl b;
  b.MakeReady(&CalState::CalS11);
  long ticks = 0;
  b.fake.OnTick = [&](TimerId timer) {
    ++ticks;
    b.control.Tick(timer);
  };
  b.OnSleep = [&] { b.clock.AdvanceUs(2000); };  // a busy machine: bytes come in lumps
  const auto start = b.clock.NowMs();
  b.OnPoint = [&](int counter) {
    if (b.clock.NowMs() - start > 60'000 && counter == 51) b.control.StopMeasurement();
  };
  b.control.StartMeasurement();
  std::string written = b.Written();
  ASSERT_EQ(written[0], 'Q');
  long sweeps = 0, served = 0;
  for (std::size_t i = 1; i < written.size();) {
    if (written[i] == 'M') {
      ++sweeps, ++i;
    } else {
      ASSERT_EQ(written.substr(i, 7), "QCYFQQT") << i;
      ++served, i += 7;
    }
  }
  EXPECT_EQ(sweeps, b.control.SweepsEnded());
  EXPECT_EQ(served, ticks);
  EXPECT_GE(ticks, 5);
  EXPECT_TRUE(b.fake.Messages.empty());
}

}  // namespace
}  // namespace qk::test
