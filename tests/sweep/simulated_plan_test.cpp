// SPDX-License-Identifier: MIT
// The plan, the receiver and the settings against the simulated instrument.
#include <gtest/gtest.h>

#include "sim/instrument_state.h"
#include "support/link_fixture.h"
#include "sweep/frequency_plan.h"
#include "sweep/receiver.h"
#include "sweep/reduction.h"
#include "sweep/settings.h"

namespace qk {
namespace {

using Texts = std::vector<std::string>;

// Reads one sweep as it streams in.
Bytes Sweep(test::SimulatedLink& b, SweepMode mode) {
  const SweepWire form = WireOf(mode);
  b.link.SendCommand(form.Trigger);
  return b.link.ReadReply(static_cast<std::size_t>(b.session->Plan.NumPoints * form.BytesPerPoint),
                          3000);
}

RawPoint Point(const test::SimulatedLink& b, SweepMode mode, const Bytes& stream, int i) {
  return ReducePoint(mode, stream.data() + i * WireOf(mode).BytesPerPoint, b.session->Receiver,
                     b.session->Averaging.Averages);
}

TEST(SimulatedPlan, LoadsOffsetsTemperatureAndSettingsWithoutAWord) {
  test::SimulatedLink b;
  b.Connect();
  EXPECT_TRUE(MeasureOffsets(b.rig));
  EXPECT_TRUE(ReadTemperature(b.rig));
  EXPECT_TRUE(LoadFreqSweep(b.rig));
  EXPECT_TRUE(SetAverages(b.rig));
  EXPECT_TRUE(SendDwell(b.rig));
  EXPECT_TRUE(SendLevelTable(b.rig));
  EXPECT_TRUE(b.fake.Messages.empty());
  EXPECT_EQ(b.fake.Panels[5].substr(0, 5), "Temp ");
  EXPECT_LT(std::abs(b.session->Receiver.DcOffsetI), 0.2);
  EXPECT_LT(std::abs(b.session->Receiver.DcOffsetQ), 0.2);
}

TEST(SimulatedPlan, SweepsDeliverExactlyTheBytesOfTheirForm) {
  test::SimulatedLink b;
  b.Connect();
  ASSERT_TRUE(LoadFreqSweep(b.rig));
  for (const SweepMode mode : {SweepMode::S11, SweepMode::S21, SweepMode::S11S21, SweepMode::All}) {
    const Bytes stream = Sweep(b, mode);
    EXPECT_EQ(stream.size(), 101u * static_cast<std::size_t>(WireOf(mode).BytesPerPoint));
    EXPECT_FALSE(b.session->Flags.ReplyTimedOut);
    EXPECT_TRUE(b.link.LinkCheck());
  }
}

TEST(SimulatedPlan, RawReflectionsOfOpenAndShortStandAgainstEachOther) {
  test::SimulatedLink b;
  b.Connect();
  ASSERT_TRUE(MeasureOffsets(b.rig));
  ASSERT_TRUE(LoadFreqSweep(b.rig));
  ASSERT_TRUE(b.instrument.Bench("port1 open").Ok);
  const Bytes open = Sweep(b, SweepMode::S11);
  ASSERT_TRUE(b.instrument.Bench("port1 short").Ok);
  const Bytes shorted = Sweep(b, SweepMode::S11);
  ASSERT_TRUE(b.instrument.Bench("port1 load").Ok);
  const Bytes load = Sweep(b, SweepMode::S11);
  for (int i = 0; i < 101; ++i) {
    const Complex zo = Point(b, SweepMode::S11, load, i).S11;
    const Complex o = Point(b, SweepMode::S11, open, i).S11 - zo;
    const Complex s = Point(b, SweepMode::S11, shorted, i).S11 - zo;
    const Complex ratio = ComplexDivide(s, o);
    EXPECT_LT(ratio.re, 0) << i;
    EXPECT_NEAR(Magnitude(ratio.re, ratio.im), 1, 0.4) << i;
  }
}

TEST(SimulatedPlan, AveragesChangeTheSumNotTheRatio) {
  test::SimulatedLink b;
  b.Connect();
  ASSERT_TRUE(MeasureOffsets(b.rig));
  ASSERT_TRUE(LoadFreqSweep(b.rig));
  ASSERT_TRUE(b.instrument.Bench("port1 open").Ok);
  const Complex one = Point(b, SweepMode::S11, Sweep(b, SweepMode::S11), 50).S11;
  b.session->Averaging.Averages = 16;
  ASSERT_TRUE(SetAverages(b.rig));
  const Complex many = Point(b, SweepMode::S11, Sweep(b, SweepMode::S11), 50).S11;
  EXPECT_NEAR(one.re, many.re, 2e-3);
  EXPECT_NEAR(one.im, many.im, 2e-3);
}

TEST(SimulatedPlan, ACableOutAtAnyMomentOfTheLoadIsReportedOnceAndTheNextLoadGoesThrough) {
  for (int moment = 1;; moment += 7) {
    test::SimulatedLink b;
    b.Connect();
    int waits = 0;
    std::int64_t out = 0;
    b.OnSleep = [&] {
      if (++waits != moment) return;
      ASSERT_TRUE(b.instrument.Bench("fault unplugged").Ok);
      out = b.clock.NowMs();
    };
    const bool loaded = LoadFreqSweep(b.rig);
    ASSERT_EQ(loaded, out == 0);
    if (loaded) {
      EXPECT_GT(moment, 19);
      break;
    }
    ASSERT_EQ(b.fake.MessageTexts(), (Texts{"Load Freq Sweep|No Response|exclamation|ok"}));
    EXPECT_LE(b.clock.NowMs() - out, 6) << moment;
    EXPECT_FALSE(b.session->Flags.SweepLoaded);
    b.Replug();
    EXPECT_TRUE(LoadFreqSweep(b.rig)) << moment;
  }
}

}  // namespace
}  // namespace qk
