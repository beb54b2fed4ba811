// SPDX-License-Identifier: MIT
// The load of a plan into sweep RAM: exact writes, pacing, progress and failures at every write.
#include <gtest/gtest.h>

#include "support/link_fixture.h"
#include "sweep/frequency_plan.h"

namespace qk {
namespace {

using test::BytesOf;
using test::Fault;
using test::FaultKind;
using test::ScriptedInstrument;
using Texts = std::vector<std::string>;

const Texts kNoResponse{"Load Freq Sweep|No Response|exclamation|ok"};

struct LoadFixture : test::ScriptedLink {
  ScriptedInstrument instrument{port};
  explicit LoadFixture(std::int16_t points = 101) {
    SweepPlan& plan = session->Plan;
    plan.NumPoints = points;
    plan.StartFreq = 3e6;
    plan.StepFreq = points == 1024 ? 3e6 : 1e6;
    plan.StopFreq = plan.StartFreq + (points - 1) * plan.StepFreq;
  }
};

TEST(LoadFreqSweep, WritesTheNumberOfPointsAndThenBlocksOf125EachBehindALinkCheck) {
  LoadFixture b;
  EXPECT_TRUE(LoadFreqSweep(b.rig));
  const auto& table = b.session->FreqTable;
  std::vector<Bytes> expected{BytesOf("Q"), {'W', 2, 0, 0, 0, 101}};
  for (int k = 0; k <= 17; ++k) {
    const int address = 2 + 125 * k;
    expected.push_back({'W', 125, static_cast<std::uint8_t>(address / 256),
                        static_cast<std::uint8_t>(address % 256)});
    expected.emplace_back(table.begin() + 125 * k + 3, table.begin() + 125 * k + 128);
    expected.push_back(BytesOf("Q"));
  }
  EXPECT_EQ(b.port.Writes, expected);
}

TEST(LoadFreqSweep, LeavesEveryPointsRecordInSweepRam) {
  for (const int points : {51, 101, 201, 401, 801, 1024}) {
    LoadFixture b(static_cast<std::int16_t>(points));
    ASSERT_TRUE(LoadFreqSweep(b.rig));
    const auto& ram = b.instrument.SweepRam;
    EXPECT_EQ(ram[0] * 256 + ram[1], points);
    for (int i = 0; i < points; ++i) {
      auto reference = MakeSession();
      BuildPointRecord(*reference, b.session->Plan.Frequency(i), 0);
      ASSERT_TRUE(std::equal(ram.begin() + 2 + 22 * i, ram.begin() + 24 + 22 * i,
                             reference->FreqTable.begin() + 3))
          << points << " " << i;
      if (points > 201) i += 13;
    }
    EXPECT_TRUE(b.session->Flags.SweepLoaded);
    EXPECT_TRUE(b.fake.Messages.empty());
  }
}

TEST(LoadFreqSweep, LoadsTheTimeDomainPlanIn181Blocks) {
  LoadFixture b(1024);
  EXPECT_TRUE(LoadFreqSweep(b.rig));
  EXPECT_EQ(b.instrument.CountOf("W}"), 181u);  // "}" is 125
  EXPECT_EQ(b.instrument.CountOf("Q"), 182u);
}

TEST(LoadFreqSweep, MovesTheBarFromNothingToAll) {
  LoadFixture b;
  std::vector<int> bar;
  EXPECT_TRUE(LoadFreqSweep(b.rig, [&bar](int percent) { bar.push_back(percent); }));
  std::vector<int> expected{0};
  for (int k = 0; k <= 17; ++k) expected.push_back(100 * k / 17);
  EXPECT_EQ(bar, expected);
  EXPECT_EQ(expected.back(), 100);
}

TEST(LoadFreqSweep, ShowsTheCalibrationInPanel3WithAMarkWhenItIsDoubtful) {
  LoadFixture b;
  b.session->Cal.CalS11 = true;
  b.session->Plan.CalLevel = b.session->Plan.Port1Level = -5;
  EXPECT_TRUE(LoadFreqSweep(b.rig));
  EXPECT_EQ(b.fake.Panels[3], "S11 Cal");
  b.session->Cal.CalInterpolated = true;
  EXPECT_TRUE(LoadFreqSweep(b.rig));
  EXPECT_EQ(b.fake.Panels[3], "S11 Cal ?");
  b.session->Cal.CalInterpolated = false;
  b.session->Plan.Port1Level = -6;
  EXPECT_TRUE(LoadFreqSweep(b.rig));
  EXPECT_EQ(b.fake.Panels[3], "S11 Cal ?");
}

TEST(LoadFreqSweep, BuildsTheWholeTableBeforeTheFirstByteGoesOut) {
  LoadFixture b;
  Bytes atFirstWrite;
  const auto inner = b.port.OnWrite;
  b.port.OnWrite = [&](const Bytes& bytes) {
    if (atFirstWrite.empty())
      atFirstWrite.assign(b.session->FreqTable.begin(), b.session->FreqTable.end());
    inner(bytes);
  };
  EXPECT_TRUE(LoadFreqSweep(b.rig));
  EXPECT_TRUE(std::equal(atFirstWrite.begin(), atFirstWrite.end(), b.session->FreqTable.begin()));
  EXPECT_NE(b.session->FreqTable[22 * 100 + 3], 0);
}

TEST(LoadFreqSweep, ReportsASilentInstrumentOnceAndSendsNothingMore) {
  LoadFixture b;
  b.instrument.Silent = true;
  EXPECT_FALSE(LoadFreqSweep(b.rig));
  EXPECT_EQ(b.fake.MessageTexts(), kNoResponse);
  EXPECT_EQ(b.port.Writes, (std::vector<Bytes>{BytesOf("Q")}));
  EXPECT_FALSE(b.session->Flags.SweepLoaded);
  EXPECT_EQ(b.ElapsedMs(), 2001);
}

TEST(LoadFreqSweep, StopsWhereTheLinkFailsAndLeavesTheStatusAlone) {
  for (std::size_t check = 0; check < 19; ++check) {
    LoadFixture b;
    b.fake.Panels[3] = "as it was";
    b.port.Fault = Fault{FaultKind::Cut, check};
    ASSERT_FALSE(LoadFreqSweep(b.rig)) << check;
    EXPECT_EQ(b.fake.MessageTexts(), kNoResponse) << check;
    EXPECT_EQ(b.instrument.CountOf("W}"), check) << check;
    EXPECT_FALSE(b.session->Flags.SweepLoaded) << check;
    EXPECT_EQ(b.fake.Panels[3], "as it was") << check;
    EXPECT_EQ(b.ElapsedMs(), 2001) << check;
  }
}

TEST(LoadFreqSweep, StopsAtAnyGarbledAnswerAndAtAnUnpluggedOneWithoutAWait) {
  for (const FaultKind kind : {FaultKind::Garble, FaultKind::Unplug})
    for (std::size_t check = 0; check < 19; ++check) {
      LoadFixture b;
      b.port.Fault = Fault{kind, check};
      EXPECT_FALSE(LoadFreqSweep(b.rig)) << check;
      EXPECT_EQ(b.fake.MessageTexts(), kNoResponse) << check;
      EXPECT_EQ(b.instrument.CountOf("W}"), check) << check;
      EXPECT_FALSE(b.session->Flags.SweepLoaded) << check;
      EXPECT_EQ(b.ElapsedMs(), 0) << check;
    }
}

TEST(LoadFreqSweep, TakesADoubledAnswerForOne) {
  for (std::size_t check = 0; check < 19; ++check) {
    LoadFixture b;
    b.port.Fault = Fault{FaultKind::Double, check};
    EXPECT_TRUE(LoadFreqSweep(b.rig)) << check;
    EXPECT_EQ(b.instrument.CountOf("W}"), 18u) << check;
    EXPECT_TRUE(b.fake.Messages.empty()) << check;
  }
}

TEST(LoadFreqSweep, GivesTheInstrumentTwoSecondsForABlock) {
  LoadFixture b;
  b.port.Fault = Fault{FaultKind::Late, 9, 2000};
  EXPECT_TRUE(LoadFreqSweep(b.rig));
  EXPECT_TRUE(b.fake.Messages.empty());
  EXPECT_EQ(b.ElapsedMs(), 2000);
}

TEST(LoadFreqSweep, KeepsTheFlagOfAnEarlierLoadWhenAReloadFails) {
  LoadFixture b;
  b.session->Flags.SweepLoaded = true;
  b.instrument.Silent = true;
  EXPECT_FALSE(LoadFreqSweep(b.rig));
  EXPECT_TRUE(b.session->Flags.SweepLoaded);
}

TEST(LoadFreqSweep, ReportsAnAdaptorPulledOutAtAnyWriteWithoutAWaitAndLoadsWhenItIsBack) {
  for (std::size_t write = 1; write <= 56; ++write) {
    LoadFixture b;
    b.port.UnplugAtWrite(write);
    ASSERT_FALSE(LoadFreqSweep(b.rig)) << write;
    ASSERT_EQ(b.fake.MessageTexts(), kNoResponse) << write;
    ASSERT_EQ(b.ElapsedMs(), 0) << write;
    ASSERT_FALSE(b.session->Flags.SweepLoaded) << write;
    b.port.PlugIn(1);
    b.instrument.PowerUp();
    ASSERT_TRUE(LoadFreqSweep(b.rig)) << write;
    ASSERT_TRUE(b.session->Flags.SweepLoaded) << write;
  }
}

TEST(SendPointRecord, SendsTheHeaderAndThenByteByByte) {
  LoadFixture b;
  b.port.Open();
  BuildPointRecord(*b.session, 2e7, 0);
  SendPointRecord(b.rig, 32738);
  ASSERT_EQ(b.port.Writes.size(), 23u);
  EXPECT_EQ(b.port.Writes[0], (Bytes{'W', 22, 127, 226}));
  for (std::size_t j = 0; j < 22; ++j)
    EXPECT_EQ(b.port.Writes[1 + j], Bytes{b.session->FreqTable[3 + j]});
}

}  // namespace
}  // namespace qk
