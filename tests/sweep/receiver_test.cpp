// SPDX-License-Identifier: MIT
// Offsets, level codes on the wire and temperature.
#include "sweep/receiver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <vector>

#include "support/link_fixture.h"
#include "sweep/frequency_plan.h"

namespace qk {
namespace {

using test::BytesOf;
using test::Fault;
using test::FaultKind;
using test::ScriptedInstrument;
using Texts = std::vector<std::string>;

struct RxFixture : test::ScriptedLink {
  ScriptedInstrument instrument{port};
  ReceiverState& rx = session->Receiver;

  RxFixture() {
    session->Plan.NumPoints = 51;
    session->Plan.StepFreq = 60e6;
    instrument.SweepRam[1] = 51;
  }
  void ValidOffsets() {
    FilterOffsets(rx, 32750, 32790);
    ASSERT_TRUE(rx.DcOffsetValid);
  }
  // The replies to the next "C", in order; after them the instrument's own.
  void Replies(std::vector<Bytes> replies) {
    const Bytes own = instrument.Offsets;
    replies.push_back(own);
    if (!inner_) inner_ = port.OnWrite;
    port.OnWrite = [this, replies, n = std::size_t{0}](const Bytes& bytes) mutable {
      if (bytes == BytesOf("C")) {
        instrument.Offsets = replies[n];
        if (n + 1 < replies.size()) ++n;
      }
      inner_(bytes);
    };
  }

 private:
  std::function<void(const Bytes&)> inner_;
};

// ---- the filter -------------------------------------------------------------------------------

TEST(FilterOffsets, GivesTheNewValueAtTheFirstCall) {
  ReceiverState rx;
  FilterOffsets(rx, 32767.5, 40000);
  EXPECT_NEAR(rx.DcOffsetI, 32767.5 / 65535 * 4.999924 - 2.5, 1e-14);
  EXPECT_NEAR(rx.DcOffsetQ, 40000.0 / 65535 * 4.999924 - 2.5, 1e-14);
  EXPECT_TRUE(rx.DcOffsetValid);
  for (const auto& pair : rx.DcHistory) {
    EXPECT_EQ(pair[0], 32767.5);
    EXPECT_EQ(pair[1], 40000);
  }
}

// Intentional: after the new sample the oldest entry weighs most.
TEST(FilterOffsets, WeighsTheOldestEntryMostAfterTheNewSample) {
  ReceiverState rx;
  rx.DcOffsetValid = true;
  rx.DcHistory = {{{1000, 1}, {2000, 2}, {3000, 3}, {4000, 4}, {5000, 5}}};
  FilterOffsets(rx, 30000, 40000);
  const double i = 21000 + 250 + 40 + 30 + 40 + 50;
  const double q = 28000 + 0.25 + 0.04 + 0.03 + 0.04 + 0.05;
  EXPECT_NEAR(rx.DcOffsetI, i / 65535 * 4.999924 - 2.5, 1e-12);
  EXPECT_NEAR(rx.DcOffsetQ, q / 65535 * 4.999924 - 2.5, 1e-12);
}

TEST(FilterOffsets, KeepsTheFiveLatestReadingsUnfiltered) {
  ReceiverState rx;
  FilterOffsets(rx, 1, 10);
  FilterOffsets(rx, 2, 20);
  FilterOffsets(rx, 3, 30);
  const std::array<std::array<double, 2>, 5> expected{
      {{1, 10}, {1, 10}, {1, 10}, {2, 20}, {3, 30}}};
  EXPECT_EQ(rx.DcHistory, expected);
}

// ---- the measurement --------------------------------------------------------------------------

TEST(MeasureOffsets, WritesTheOffsetRecordOnceThenOnlyMeasures) {
  RxFixture b;
  EXPECT_TRUE(MeasureOffsets(b.rig));
  EXPECT_TRUE(MeasureOffsets(b.rig));
  EXPECT_EQ(b.instrument.Names(), (Texts{"W 22 32738", "C", "C"}));
  EXPECT_EQ(b.instrument.CountOf("Q"), 3u);
}

TEST(MeasureOffsets, SendsTheRecordOf20MHzByteByByte) {
  RxFixture b;
  EXPECT_TRUE(MeasureOffsets(b.rig));
  auto reference = MakeSession();
  InitSession(*reference);
  BuildPointRecord(*reference, 2e7, 0);
  ASSERT_EQ(b.port.Writes.size(), 1u + 1 + 22 + 1 + 1);
  EXPECT_EQ(b.port.Writes[1], (Bytes{'W', 22, 127, 226}));
  for (std::size_t j = 0; j < 22; ++j) {
    EXPECT_EQ(b.port.Writes[2 + j], Bytes{reference->FreqTable[3 + j]});
    EXPECT_EQ(b.session->FreqTable[3 + j], reference->FreqTable[3 + j]);
  }
}

TEST(MeasureOffsets, DividesBy256WhateverTheAverages) {
  RxFixture b;
  b.session->Averaging.Averages = 40;
  b.instrument.Offsets = {0x7F, 0xFF, 0x80, 0x12, 0x34, 0x56};
  EXPECT_TRUE(MeasureOffsets(b.rig));
  EXPECT_EQ(b.rx.DcHistory[4][0], 0x7FFF80 / 256.0);
  EXPECT_EQ(b.rx.DcHistory[4][1], 0x123456 / 256.0);
}

TEST(MeasureOffsets, RestoresThePathOfTheCalibrationInForce) {
  const auto path = [](auto set) {
    RxFixture b;
    b.ValidOffsets();
    set(b.session->Cal);
    EXPECT_TRUE(MeasureOffsets(b.rig));
    std::vector<std::string> wire;
    for (const Bytes& c : b.instrument.Commands) wire.emplace_back(c.begin(), c.end());
    return wire;
  };
  EXPECT_EQ(path([](CalState&) {}), (Texts{"Q", "C"}));
  EXPECT_EQ(path([](CalState& c) { c.CalS11 = true; }), (Texts{"Q", "C", "YF", "Q"}));
  EXPECT_EQ(path([](CalState& c) { c.CalS21 = true; }), (Texts{"Q", "C", "YE", "Q"}));
  EXPECT_EQ(path([](CalState& c) { c.Cal12Term = true; }), (Texts{"Q", "C", "YG", "Q"}));
  EXPECT_EQ(path([](CalState& c) { c.CalS11S21 = true; }), (Texts{"Q", "C", "YP", "Q"}));
}

TEST(MeasureOffsets, SendsTheFullPathAndThenTheOtherWhereBothFlagsStand) {
  RxFixture b;
  b.ValidOffsets();
  b.session->Cal.Cal12Term = b.session->Cal.CalS11S21 = true;
  EXPECT_TRUE(MeasureOffsets(b.rig));
  EXPECT_EQ(b.instrument.Names(), (Texts{"C", "YG", "YP"}));
}

TEST(MeasureOffsets, OpensThePort) {
  RxFixture b;
  EXPECT_TRUE(MeasureOffsets(b.rig));
  EXPECT_TRUE(b.link.IsOpen());
}

const Texts kNoOffsetsMessage{"RX Offset|No Response|exclamation|ok"};

TEST(MeasureOffsets, KeepsTheOldOffsetsAndThePathWhenAnyByteOfTheExchangeFails) {
  for (const FaultKind kind :
       {FaultKind::Cut, FaultKind::Double, FaultKind::Late, FaultKind::Unplug})
    for (std::size_t at = 0; at < 7; ++at) {  // status letter, six bytes
      if (kind == FaultKind::Double && at == 0) continue;
      RxFixture b;
      b.ValidOffsets();
      b.session->Cal.CalS11 = true;
      const ReceiverState before = b.rx;
      b.port.Fault = Fault{kind, at, 2002};
      EXPECT_FALSE(MeasureOffsets(b.rig));
      EXPECT_EQ(b.fake.MessageTexts(), kNoOffsetsMessage) << at;
      EXPECT_EQ(b.rx.DcOffsetI, before.DcOffsetI);
      EXPECT_EQ(b.rx.DcOffsetQ, before.DcOffsetQ);
      EXPECT_EQ(b.rx.DcHistory, before.DcHistory);
      EXPECT_EQ(b.instrument.CountOf("YF"), 0u);
      EXPECT_LE(b.ElapsedMs(), 2001);
    }
}

TEST(MeasureOffsets, TakesAGarbledStatusForNoAnswerAndADoubledOneForOne) {
  RxFixture garbled;
  garbled.ValidOffsets();
  garbled.port.Fault = Fault{FaultKind::Garble, 0};
  EXPECT_FALSE(MeasureOffsets(garbled.rig));
  EXPECT_EQ(garbled.fake.MessageTexts(), kNoOffsetsMessage);
  EXPECT_EQ(garbled.ElapsedMs(), 0);
  RxFixture doubled;
  doubled.ValidOffsets();
  doubled.port.Fault = Fault{FaultKind::Double, 0};
  EXPECT_TRUE(MeasureOffsets(doubled.rig));
  EXPECT_EQ(doubled.rx.DcHistory[4][0], 0x800000 / 256.0);
}

TEST(MeasureOffsets, SaysNothingOfAPathThatIsNotAnsweredAndSendsTheNextOne) {
  RxFixture b;
  b.ValidOffsets();
  b.session->Cal.Cal12Term = b.session->Cal.CalS11S21 = true;
  b.port.Fault = Fault{FaultKind::Cut, 7};  // status letter, six bytes, then the path's check
  EXPECT_TRUE(MeasureOffsets(b.rig));
  EXPECT_TRUE(b.fake.Messages.empty());
  EXPECT_EQ(b.instrument.Names(), (Texts{"C", "YG", "YP", "*IDN?"}));
  EXPECT_EQ(b.ElapsedMs(), 2001);
}

TEST(MeasureOffsets, FailsBeforeTheRecordWhenNothingAnswersAtTheFirstCall) {
  RxFixture b;
  b.instrument.Silent = true;
  EXPECT_FALSE(MeasureOffsets(b.rig));
  EXPECT_EQ(b.fake.MessageTexts(), kNoOffsetsMessage);
  EXPECT_EQ(b.port.Writes, (std::vector<Bytes>{BytesOf("Q")}));
  EXPECT_FALSE(b.rx.DcOffsetValid);
}

TEST(MeasureOffsets, WritesTheRecordAgainAfterAFirstCallThatFailed) {
  RxFixture b;
  b.port.Fault = Fault{FaultKind::Cut, 2};  // two checks, then the first byte of the offsets
  EXPECT_FALSE(MeasureOffsets(b.rig));
  b.port.Fault.reset();
  EXPECT_TRUE(MeasureOffsets(b.rig));
  EXPECT_EQ(b.instrument.Names(), (Texts{"W 22 32738", "C", "*IDN?", "W 22 32738", "C"}));
}

// ---- a garbled sample -------------------------------------------------------------------------

// The reply for these counts of I and Q.
Bytes OffsetReply(int i, int q) {
  Bytes reply;
  for (const int counts : {i, q}) {
    reply.push_back(static_cast<std::uint8_t>(counts >> 8));
    reply.push_back(static_cast<std::uint8_t>(counts));
    reply.push_back(0x40);
  }
  return reply;
}

TEST(MeasureOffsets, AnyGarbledHighByteIsAskedForAgainAndLeavesNoTrace) {
  for (const std::size_t at : {0u, 3u})
    for (int flipped = 1; flipped < 256; ++flipped) {
      RxFixture b;
      b.ValidOffsets();
      const Bytes good = OffsetReply(32752, 32788);
      Bytes garbled = good;
      garbled[at] = static_cast<std::uint8_t>(garbled[at] ^ flipped);
      b.Replies({garbled, good});
      EXPECT_TRUE(MeasureOffsets(b.rig));
      EXPECT_TRUE(b.fake.Messages.empty());
      EXPECT_EQ(b.rx.DcHistory[4], (std::array{32752.25, 32788.25})) << at << " " << flipped;
      EXPECT_EQ(b.instrument.Names(), (Texts{"C", "C"}));
    }
}

TEST(MeasureOffsets, OffsetsThatHaveReallyMovedAreTakenAtTheSecondReading) {
  RxFixture b;
  b.ValidOffsets();
  b.instrument.Offsets = OffsetReply(34000, 31000);
  EXPECT_TRUE(MeasureOffsets(b.rig));
  EXPECT_EQ(b.rx.DcHistory[4], (std::array{34000.25, 31000.25}));
  EXPECT_EQ(b.instrument.CountOf("C"), 2u);
  EXPECT_TRUE(MeasureOffsets(b.rig));
  EXPECT_EQ(b.instrument.CountOf("C"), 3u) << "they stand where they are expected now";
  EXPECT_TRUE(b.fake.Messages.empty());
}

TEST(MeasureOffsets, TwoReadingsThatDisagreeAreNoResponseAndTheOldOffsetsStay) {
  RxFixture b;
  b.ValidOffsets();
  b.session->Cal.CalS11 = true;
  const ReceiverState before = b.rx;
  b.Replies({OffsetReply(40000, 32788), OffsetReply(20000, 32788)});
  EXPECT_FALSE(MeasureOffsets(b.rig));
  EXPECT_EQ(b.fake.MessageTexts(), kNoOffsetsMessage);
  EXPECT_EQ(b.rx.DcHistory, before.DcHistory);
  EXPECT_EQ(b.rx.DcOffsetI, before.DcOffsetI);
  EXPECT_EQ(b.instrument.CountOf("YF"), 0u);
  EXPECT_TRUE(b.link.Holds().PathLost);
  EXPECT_TRUE(MeasureOffsets(b.rig));
  EXPECT_FALSE(b.link.Holds().PathLost);
}

// What a sound receiver says is never asked for twice.
TEST(MeasureOffsets, ADriftOf100CountsBetweenTwoReadingsAddsNoByte) {
  RxFixture b;
  b.ValidOffsets();
  for (const int step : {99, -99}) {
    b.instrument.Offsets = OffsetReply(32750 + std::max(step, 0), 32790 + std::max(step, 0));
    EXPECT_TRUE(MeasureOffsets(b.rig));
  }
  EXPECT_EQ(b.instrument.Names(), (Texts{"C", "C"}));
  b.instrument.Offsets = OffsetReply(32750, 32790 + 101);
  EXPECT_TRUE(MeasureOffsets(b.rig));
  EXPECT_EQ(b.instrument.CountOf("C"), 4u);
  b.instrument.Offsets = OffsetReply(32750, 32790);
  EXPECT_TRUE(MeasureOffsets(b.rig));
  EXPECT_EQ(b.instrument.CountOf("C"), 6u);
}

TEST(MeasureOffsets, TheFirstReadingIsExpectedWithin35MillivoltsOfZero) {
  const auto asked = [](int i, int q) {
    RxFixture b;
    b.instrument.Offsets = OffsetReply(i, q);
    EXPECT_TRUE(MeasureOffsets(b.rig));
    EXPECT_EQ(b.rx.DcHistory[0], (std::array{i + 0.25, q + 0.25}));
    EXPECT_TRUE(b.fake.Messages.empty());
    return b.instrument.CountOf("C");
  };
  constexpr int kZero = 32768;
  EXPECT_EQ(asked(kZero + 457, kZero - 457), 1u);
  EXPECT_EQ(asked(kZero + 460, kZero), 2u) << "35 mV are 458.8 counts";
  EXPECT_EQ(asked(kZero, kZero - 460), 2u);
  RxFixture garbled;
  garbled.Replies({OffsetReply(kZero + 4096, kZero), OffsetReply(kZero, kZero)});
  EXPECT_TRUE(MeasureOffsets(garbled.rig));
  EXPECT_EQ(garbled.rx.DcHistory[0], (std::array{kZero + 0.25, kZero + 0.25}));
  RxFixture lost;
  lost.Replies({OffsetReply(kZero + 4096, kZero), OffsetReply(kZero, 4096)});
  EXPECT_FALSE(MeasureOffsets(lost.rig));
  EXPECT_EQ(lost.fake.MessageTexts(), kNoOffsetsMessage);
  EXPECT_FALSE(lost.rx.DcOffsetValid);
}

// ---- level codes on the wire ------------------------------------------------------------------

TEST(SendLevelTable, SendsOneCodeAPointEachAsItsOwnWrite) {
  RxFixture b;
  b.session->Flags.SweepLoaded = true;
  b.session->Plan.Port1Level = -3;
  // Point i is 3 columns above point i - 1.
  for (std::size_t i = 0; i < 51; ++i)
    b.session->Levels.Port1LevelTable[i % 32][std::min<std::size_t>(3 * i, 148)] = -3;
  EXPECT_TRUE(SendLevelTable(b.rig));
  std::vector<Bytes> expected{BytesOf("Q"), BytesOf("N")};
  for (int i = 0; i < 51; ++i)
    expected.push_back(
        {static_cast<std::uint8_t>(LookupLevelCodes(*b.session, 3e6 + 60e6 * i).Code1)});
  EXPECT_EQ(b.port.Writes, expected);
  EXPECT_EQ(b.port.Writes[2], Bytes{0});
  EXPECT_EQ(b.port.Writes[2 + 20], Bytes{20});
  EXPECT_EQ(b.port.Writes[2 + 40], Bytes{8});
}

TEST(SendLevelTable, MarksTheCalibrationInPanel3WhenTheLevelIsAnother) {
  RxFixture b;
  b.session->Flags.SweepLoaded = true;
  b.session->Cal.Cal12Term = true;
  b.session->Plan.CalLevel = 0;
  b.session->Plan.Port1Level = -1;
  EXPECT_TRUE(SendLevelTable(b.rig));
  EXPECT_EQ(b.fake.Panels[3], "12 Term Cal ?");
}

TEST(SendLevelTable, RefusesBeforeASweepIsLoaded) {
  RxFixture b;
  EXPECT_FALSE(SendLevelTable(b.rig));
  EXPECT_FALSE(SendPointLevel(b.rig, 1, 3e6));
  EXPECT_EQ(b.fake.MessageTexts(), (Texts{"Port1 Level Set|Sweep Not Set|exclamation|ok",
                                          "Port1 Level Set|Sweep Not Set|exclamation|ok"}));
  EXPECT_TRUE(b.port.Writes.empty());
}

TEST(SendLevelTable, ReportsASilentInstrumentAndLetsTimer1TickAgain) {
  RxFixture b;
  b.session->Flags.SweepLoaded = true;
  b.instrument.Silent = true;
  b.fake.Enable(TimerId::Timer1, true);
  EXPECT_FALSE(SendLevelTable(b.rig));
  EXPECT_EQ(b.fake.MessageTexts(), (Texts{"Port 1 Level Set|No Response|exclamation|ok"}));
  EXPECT_EQ(b.port.Writes, (std::vector<Bytes>{BytesOf("Q")}));
  EXPECT_TRUE(b.fake.Enabled(TimerId::Timer1));
}

TEST(SendLevelTable, KeepsTimer1OffWhileItTalks) {
  RxFixture b;
  b.session->Flags.SweepLoaded = true;
  b.fake.Enable(TimerId::Timer1, true);
  const auto inner = b.port.OnWrite;
  b.port.OnWrite = [&](const Bytes& bytes) {
    EXPECT_FALSE(b.fake.Enabled(TimerId::Timer1));
    inner(bytes);
  };
  EXPECT_TRUE(SendLevelTable(b.rig));
  EXPECT_TRUE(b.fake.Enabled(TimerId::Timer1));
  EXPECT_TRUE(SendPointLevel(b.rig, 1, 3e6));
  EXPECT_TRUE(b.fake.Enabled(TimerId::Timer1));
}

TEST(SendPointLevel, SendsThePointAndItsCodeInFourWrites) {
  RxFixture b;
  b.session->Flags.SweepLoaded = true;
  b.session->Plan.Port1Level = -12;
  b.session->Levels.Port1LevelTable[19][50] = -12;
  EXPECT_TRUE(SendPointLevel(b.rig, 801, 3e6 + 50 * 20e6));
  EXPECT_EQ(b.port.Writes, (std::vector<Bytes>{BytesOf("Q"), BytesOf("YK"), {3}, {33}, {19}}));
}

TEST(SendPointLevel, LeavesTimer1OffWhereAPowerSweepSwitchedItOff) {
  RxFixture b;
  b.session->Flags.SweepLoaded = true;
  EXPECT_TRUE(SendPointLevel(b.rig, 1, 3e6));
  EXPECT_FALSE(b.fake.Enabled(TimerId::Timer1));
}

TEST(SendPointLevel, ReportsASilentInstrument) {
  RxFixture b;
  b.session->Flags.SweepLoaded = true;
  b.instrument.Silent = true;
  EXPECT_FALSE(SendPointLevel(b.rig, 1, 3e6));
  EXPECT_EQ(b.fake.MessageTexts(), (Texts{"Port 1 Level Set|No Response|exclamation|ok"}));
}

// ---- temperature ------------------------------------------------------------------------------

TEST(Temperature, IsDecodedInSinglePrecision) {
  EXPECT_EQ(TemperatureFromBytes(0, 0), (0.0f - 2.45f) / 0.049f);
  EXPECT_NEAR(TemperatureFromBytes(2, 0xE6), 23.94, 0.01);  // 742 counts: 3.623 V
  EXPECT_NEAR(TemperatureFromBytes(3, 255), 51.94, 0.01);
}

TEST(ReadTemperature, ShowsItInPanel5) {
  RxFixture b;
  EXPECT_TRUE(ReadTemperature(b.rig));
  EXPECT_EQ(b.fake.Panels[5], "Temp 23.9 degC");
  EXPECT_EQ(b.port.Writes, (std::vector<Bytes>{BytesOf("Q"), BytesOf("T")}));
}

TEST(ReadTemperature, ShowsFrostWithItsSign) {
  RxFixture b;
  b.instrument.Temperature = {1, 0xEB};  // 491 counts
  EXPECT_TRUE(ReadTemperature(b.rig));
  EXPECT_EQ(b.fake.Panels[5], "Temp -1.1 degC");
}

TEST(ReadTemperature, EndsItsWaitAfterTwoSecondsInsteadOfHanging) {
  for (const FaultKind kind : {FaultKind::Cut, FaultKind::Late, FaultKind::Unplug})
    for (std::size_t at = 0; at < 3; ++at) {
      RxFixture b;
      b.fake.Panels[5] = "as it was";
      b.port.Fault = Fault{kind, at, 2002};
      EXPECT_FALSE(ReadTemperature(b.rig));
      EXPECT_EQ(b.fake.MessageTexts(), (Texts{"RX Temp Check|No Response|exclamation|ok"}));
      EXPECT_EQ(b.fake.Panels[5], "as it was");
      EXPECT_EQ(b.ElapsedMs(), kind == FaultKind::Unplug ? 0 : 2001);
    }
}

TEST(ReadTemperature, DoesNotTrustAReplyOfThreeBytesNorAGarbledStatus) {
  for (const Fault& fault :
       {Fault{FaultKind::Double, 1}, Fault{FaultKind::Double, 2}, Fault{FaultKind::Garble, 0}}) {
    RxFixture b;
    b.port.Fault = fault;
    EXPECT_FALSE(ReadTemperature(b.rig));
    EXPECT_EQ(b.fake.MessageTexts(), (Texts{"RX Temp Check|No Response|exclamation|ok"}));
    EXPECT_EQ(b.ElapsedMs(), 0);
  }
}

TEST(ExchangeTemperature, SaysNothingByItself) {
  RxFixture b;
  b.port.Open();
  EXPECT_EQ(ExchangeTemperature(b.rig), TemperatureFromBytes(2, 0xE6));
  b.instrument.Silent = true;
  EXPECT_EQ(ExchangeTemperature(b.rig), std::nullopt);
  EXPECT_TRUE(b.fake.Messages.empty());
  EXPECT_EQ(b.port.Writes, (std::vector<Bytes>{BytesOf("T"), BytesOf("T")}));
}

}  // namespace
}  // namespace qk
