// SPDX-License-Identifier: MIT
#include "trace/memory.h"

#include <gtest/gtest.h>

#include "plot_record.h"
#include "trace/formatting.h"

namespace qk {
namespace {

using test::PlotRecord;

class MemoryMath : public testing::Test {
 protected:
  MemoryMath() {
    session->Display.DisplayMode = DisplayMode::MemoryMath;
    channel.MemoryValid = true;
    channel.MemoryParameter = Parameter::S11;
    channel.MemoryRe[5] = 0.5;
    channel.MemoryIm[5] = 0.25;
  }
  Complex Apply(const char* function) {
    session->Display.MemoryFunction = *Named<MemoryFunction>(function);
    return ApplyMemoryMath(*session, 1, {2, 1}, 5);
  }

  std::unique_ptr<Session> session = MakeSession();
  ChannelSettings& channel = session->Channel(1);
};

TEST_F(MemoryMath, PlusAddsSubtractTakesAwayDivideDivides) {
  EXPECT_EQ(Apply("Plus"), (Complex{2.5, 1.25}));
  EXPECT_EQ(Apply("Subtract"), (Complex{1.5, 0.75}));
  EXPECT_EQ(Apply("Divide"), (Complex{4, 0}));
}

TEST_F(MemoryMath, NoFunctionChangesNothing) {
  EXPECT_EQ(Apply(""), (Complex{2, 1}));
}

TEST_F(MemoryMath, WorksInMemoryModeOnly) {
  for (const char* mode : {"Data", "Data+"}) {
    session->Display.DisplayMode = *Named<DisplayMode>(mode);
    EXPECT_EQ(Apply("Plus"), (Complex{2, 1}));
  }
}

TEST_F(MemoryMath, AChannelWithoutATraceShowsItsPlainData) {
  channel.MemoryValid = false;
  EXPECT_EQ(Apply("Plus"), (Complex{2, 1}));
}

TEST_F(MemoryMath, DivideByATraceOfZerosGivesZeroAndNoFault) {
  channel.MemoryRe[5] = channel.MemoryIm[5] = 0;
  session->Display.MemoryFunction = MemoryFunction::Divide;
  EXPECT_EQ(ApplyMemoryMath(*session, 1, {2, 1}, 5), (Complex{0, 0}));
}

TEST_F(MemoryMath, TheTraceOfAnotherParameterIsStillCombined) {
  channel.MemoryParameter = Parameter::S22;
  EXPECT_EQ(Apply("Plus"), (Complex{2.5, 1.25}));
}

TEST_F(MemoryMath, DivideInLogMagGivesTheDifferenceInDb) {
  PlotRecord sink;
  session->Display.MemoryFunction = MemoryFunction::Divide;
  channel.MemoryRe[5] = 0.1;
  channel.MemoryIm[5] = 0;
  DispatchPoint(*session, sink, {0.01, 0}, 5, Parameter::S11);
  EXPECT_NEAR(channel.Value[5], -20, 1e-12);
}

TEST_F(MemoryMath, TheStoredDataStayAsTheyWere) {
  PlotRecord sink;
  session->Display.MemoryFunction = MemoryFunction::Plus;
  session->Data.S11.Set(4, {2, 1});
  DispatchPoint(*session, sink, session->Data.S11[4], 5, Parameter::S11);
  EXPECT_EQ(session->Data.S11[4], (Complex{2, 1}));
  EXPECT_EQ(channel.MemoryRe[5], 0.5);
}

class StoredTraces : public testing::Test {
 protected:
  StoredTraces() {
    for (int n = 1; n <= 4; ++n) session->Channel(n).Parameter = static_cast<Parameter>(n - 1);
    double next = 0;
    for (const Parameter p : {Parameter::S11, Parameter::S21, Parameter::S12, Parameter::S22})
      for (int i = 0; i < kMaxPoints; ++i, ++next) ArrayOf(session->Data, p).Set(i, {next, -next});
  }
  Complex Stored(int n, int point) {
    const auto i = static_cast<std::size_t>(point);
    return {session->Channel(n).MemoryRe[i], session->Channel(n).MemoryIm[i]};
  }
  std::unique_ptr<Session> session = MakeSession();
};

TEST_F(StoredTraces, OneChannelStoresItsParameterAtThePlansPoints) {
  StoreMemory(*session, 2, 2);
  EXPECT_TRUE(session->Display.MemoryInUse);
  EXPECT_TRUE(session->Channel(2).MemoryValid);
  EXPECT_EQ(session->Channel(2).MemoryParameter, Parameter::S21);
  EXPECT_EQ(Stored(2, 1), (Complex{1024, -1024}));
  EXPECT_EQ(Stored(2, 101), (Complex{1124, -1124}));
  EXPECT_EQ(Stored(2, 102), (Complex{0, 0}));
  EXPECT_FALSE(session->Channel(1).MemoryValid);
  EXPECT_FALSE(session->Channel(1).MemoryParameter);
}

TEST_F(StoredTraces, AllChannelsStoreEachItsOwnParameter) {
  StoreMemory(*session, 1, 4);
  for (int n = 1; n <= 4; ++n) {
    EXPECT_EQ(session->Channel(n).MemoryParameter, session->Channel(n).Parameter);
    EXPECT_EQ(Stored(n, 5), ArrayOf(session->Data, session->Channel(n).Parameter)[4]);
  }
}

TEST_F(StoredTraces, EraseForgetsThemAndTheHoldButLeavesTheArraysAndTheMode) {
  StoreMemory(*session, 1, 4);
  session->Display.MemoryHold = MemoryHold::Min;
  session->Display.DisplayMode = DisplayMode::DataAndMemory;
  EraseMemory(*session);
  for (int n = 1; n <= 4; ++n) EXPECT_FALSE(session->Channel(n).MemoryValid);
  EXPECT_FALSE(session->Display.MemoryInUse);
  EXPECT_EQ(session->Display.MemoryHold, MemoryHold::Off);
  EXPECT_EQ(session->Display.DisplayMode, DisplayMode::DataAndMemory);
  EXPECT_EQ(Stored(4, 5), session->Data.S22[4]);
}

TEST(HoldWins, MaxTakesTheGreaterOrEqualMinOnlyTheLess) {
  EXPECT_TRUE(HoldWins(MemoryHold::Max, GraphType::LinMag, {2, 0}, {1, 0}));
  EXPECT_TRUE(HoldWins(MemoryHold::Max, GraphType::LinMag, {1, 0}, {1, 0}));
  EXPECT_FALSE(HoldWins(MemoryHold::Max, GraphType::LinMag, {0.5, 0}, {1, 0}));
  EXPECT_FALSE(HoldWins(MemoryHold::Min, GraphType::LinMag, {2, 0}, {1, 0}));
  EXPECT_FALSE(HoldWins(MemoryHold::Min, GraphType::LinMag, {1, 0}, {1, 0}));
  EXPECT_TRUE(HoldWins(MemoryHold::Min, GraphType::LinMag, {0.5, 0}, {1, 0}));
}

TEST(HoldWins, ComparesWhatTheGraphTypePlots) {
  const Complex a{-3, 1}, b{2, 2};  // greater in magnitude and phase, less in both parts
  EXPECT_TRUE(HoldWins(MemoryHold::Max, GraphType::LogMag, a, b));
  EXPECT_TRUE(HoldWins(MemoryHold::Max, GraphType::LinMag, a, b));
  EXPECT_TRUE(HoldWins(MemoryHold::Max, GraphType::Smith, a, b));
  EXPECT_TRUE(HoldWins(MemoryHold::Max, GraphType::Phase, a, b));
  EXPECT_FALSE(HoldWins(MemoryHold::Max, GraphType::Real, a, b));
  EXPECT_FALSE(HoldWins(MemoryHold::Max, GraphType::Imag, a, b));
}

TEST(HoldWins, PhasesThatAgreeIn32BitsAreEqual) {
  const Complex a{1, 1}, b{1, 1 + 1e-12};
  EXPECT_TRUE(HoldWins(MemoryHold::Max, GraphType::Phase, a, b));
  EXPECT_FALSE(HoldWins(MemoryHold::Min, GraphType::Phase, a, b));
}

TEST(HoldWins, BelowTheFloorOfDecibelsMagnitudesAreEqual) {
  EXPECT_TRUE(HoldWins(MemoryHold::Max, GraphType::LogMag, {0, 0}, {1e-12, 0}));
  EXPECT_FALSE(HoldWins(MemoryHold::Max, GraphType::LinMag, {0, 0}, {1e-12, 0}));
}

// Intentional: these hold nothing.
TEST(HoldWins, SwrGroupDelayAndTimeDomainNeverReplace) {
  for (const GraphType type : {GraphType::Swr, GraphType::GroupDelay, GraphType::UnwrappedPhase,
                               GraphType::Td, GraphType::TdImpedance}) {
    EXPECT_FALSE(HoldWins(MemoryHold::Max, type, {2, 2}, {1, 1})) << NameOf(type);
    EXPECT_FALSE(HoldWins(MemoryHold::Min, type, {0, 0}, {1, 1})) << NameOf(type);
  }
}

}  // namespace
}  // namespace qk
