// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "graphs_fixture.h"

namespace qk {
namespace {

using test::Drawn;

// Slot 0 of 1000 by 600: top 50, bottom 573, the middle at 311.5 (312).
constexpr int kTop = 50, kBottom = 573, kMiddle = 312;

class Traces : public test::GraphsFixture {
 protected:
  int Live() {
    const auto traces = test::GraphsFixture::Traces(surface.Overlay(), kData);
    return traces.size() == 1 ? FlatAt(traces[0]) : -2;
  }
  std::vector<Drawn> Stored(std::uint32_t colour) {
    return test::GraphsFixture::Traces(surface.Background(), colour);
  }
};

TEST_F(Traces, ANewChannelDrawsAFlatLineAtItsReference) {
  Channel(1).Reference = 17;
  Channel(1).RefPosition = 8;
  graphs.RedrawAll(true);
  EXPECT_EQ(Live(), kBottom);
  EXPECT_EQ(graphs.Trace(0, kDataTrace).Value[101], 17);
}

TEST_F(Traces, AfterTheFirstFullRedrawItShowsWhatItHolds) {
  graphs.RedrawAll(true);
  Channel(1).Reference = 20;  // the line stays at 0 dB, two divisions down
  graphs.RedrawAll(true);
  EXPECT_EQ(Live(), 442);
}

TEST_F(Traces, ANewSmithChannelIsADotAtTheCentre) {
  Channel(1).GraphType = GraphType::Smith;
  graphs.RedrawAll(true);
  const TraceRecord& trace = graphs.Trace(0, kDataTrace);
  for (const std::size_t i : {1u, 50u, 101u}) {
    EXPECT_EQ(trace.Pixel[i].x, 500);
    EXPECT_EQ(trace.Pixel[i].y, kMiddle);
  }
}

TEST_F(Traces, PlotPointStoresValueAndPixelAndDrawsNothing) {
  graphs.RedrawAll(true);
  surface.ClearLog();
  graphs.PlotPoint(1, 51, 40, 0.5);
  EXPECT_TRUE(surface.Log().empty());
  const TraceRecord& trace = graphs.Trace(0, kDataTrace);
  EXPECT_EQ(trace.Value[51], 40);
  EXPECT_EQ(trace.Value2[51], 0.5);
  EXPECT_EQ(trace.Pixel[51].x, 500);
  EXPECT_EQ(trace.Pixel[51].y, kTop);
}

TEST_F(Traces, PlotPointOutsideTheArraysIsDropped) {
  graphs.RedrawAll(true);
  graphs.PlotPoint(1, 0, 40, 0);
  graphs.PlotPoint(1, 1025, 40, 0);
  EXPECT_EQ(graphs.Trace(0, kDataTrace).Value[0], 0);
}

TEST_F(Traces, ValuesSurviveRedrawsInTheNewScale) {
  graphs.RedrawAll(true);
  Sweep(1, 10);
  graphs.RedrawAll(true);
  EXPECT_EQ(Live(), 246);  // 311.5 - 65.375
  Channel(1).Scale = 5;
  graphs.RedrawAll(true);
  EXPECT_EQ(Live(), 181);  // 311.5 - 130.75
}

TEST_F(Traces, AScaleOfNothingBecomesTheLeastInTheGraphsRecord) {
  Channel(1).Scale = 0;
  graphs.RedrawAll(true);
  EXPECT_EQ(graphs.Graph(0).Scale, 1e-14f);
  Channel(1).Scale = -1e-20;
  graphs.RedrawAll(true);
  EXPECT_EQ(graphs.Graph(0).Scale, -1e-14f);
}

TEST_F(Traces, ReplotFormatsTheStoredPointsOfTheDisplayedChannels) {
  graphs.RedrawAll(true);
  session->Data.S11.Fill({0.01, 0});  // -40 dB
  session->Data.S21.Fill({10, 0});
  graphs.ReplotAll();
  EXPECT_EQ(Live(), kBottom);
  EXPECT_NEAR(Channel(1).Value[101], -40, 1e-9);
  EXPECT_EQ(Channel(2).Value[101], 0);  // not displayed
}

TEST_F(Traces, ReplotNeverTurnsThePlaneAgain) {
  graphs.RedrawAll(true);
  session->Data.S11.Fill({0.5, 0.5});
  session->Planes.PlaneS11 = 0.1f;
  session->Planes.DelayS11 = 3.3e-10f;
  graphs.ReplotAll();
  graphs.ReplotAll();
  EXPECT_EQ(session->Data.S11[100], (Complex{0.5, 0.5}));
}

TEST_F(Traces, AChannelThatJoinsBeforeAnySweepIsFlatAtItsReference) {
  graphs.RedrawAll(true);
  session->Display.DisplaySet = DisplaySet::OneTwo;
  graphs.ReplotAll();
  EXPECT_EQ(graphs.Trace(1, kDataTrace).Value[50], 0);
  graphs.ReplotAll();  // the next one shows the data there are: none, -220 dB
  EXPECT_NEAR(graphs.Trace(1, kDataTrace).Value[50], -220, 1e-9);
}

TEST_F(Traces, AChannelThatJoinsAfterASweepShowsWhatWasMeasured) {
  graphs.RedrawAll(true);
  Sweep(1, -3);
  session->Data.S21.Fill({0.1, 0});
  session->Display.DisplaySet = DisplaySet::OneTwo;
  graphs.ReplotAll();
  EXPECT_NEAR(graphs.Trace(1, kDataTrace).Value[50], -20, 1e-9);
}

TEST_F(Traces, OfALoadedSessionAreWhatItsChannelsHold) {
  session->Display.DisplaySet = DisplaySet::All;
  for (int n = 1; n <= 4; ++n) Sweep(n, 30);  // of the session before
  graphs.RedrawAll(true);
  Channel(1).Value.fill(-10);
  Channel(2).Value.fill(0);  // never measured
  Channel(2).Reference = 20;
  Channel(3).Value.fill(-10);
  Channel(3).SmoothValue.fill(-20);
  session->Averaging.SmoothOn = true;
  session->Averaging.SmoothingPercent = 5;
  Channel(4).GraphType = GraphType::Smith;
  Channel(4).Value.fill(0.5);
  Channel(4).Value2.fill(-0.25);
  Channel(1).SmoothValue.fill(-5);
  graphs.TakeChannels();
  graphs.RedrawAll(true);
  EXPECT_EQ(graphs.Trace(0, kDataTrace).Value[50], -5);
  EXPECT_EQ(graphs.Trace(1, kDataTrace).Value[50], 20) << "flat at the reference";
  EXPECT_EQ(graphs.Trace(2, kDataTrace).Value[50], -20);
  EXPECT_EQ(graphs.Trace(3, kDataTrace).Value[50], 0.5);
  EXPECT_EQ(graphs.Trace(3, kDataTrace).Value2[50], -0.25);
}

TEST_F(Traces, ResetForgetsAllValues) {
  graphs.RedrawAll(true);
  Sweep(1, -40);
  graphs.Reset();
  EXPECT_FALSE(graphs.Graph(0).Enabled);
  graphs.RedrawAll(true);
  EXPECT_EQ(Live(), kMiddle);
}

TEST_F(Traces, TheLiveTraceIsNeverInTheBackground) {
  StoreMemory(1, {0.1, 0});
  session->Display.DisplayMode = DisplayMode::DataAndMemory;
  session->Display.ShowLimits = true;
  Channel(1).LimitsOn = true;
  graphs.RedrawAll(true);
  graphs.RedrawAll(true);
  EXPECT_TRUE(Stored(kData).empty());
  EXPECT_EQ(Live(), kMiddle);
}

TEST_F(Traces, StoredTracesShowInDataAndMemoryOnly) {
  StoreMemory(1, {0.01, 0});
  for (const char* mode : {"Data", "Memory+"}) {
    session->Display.DisplayMode = *Named<DisplayMode>(mode);
    graphs.RedrawAll(true);
    EXPECT_TRUE(Stored(kMemory).empty()) << mode;
  }
  session->Display.DisplayMode = DisplayMode::DataAndMemory;
  graphs.RedrawAll(true);
  ASSERT_EQ(Stored(kMemory).size(), 1u);
  EXPECT_EQ(FlatAt(Stored(kMemory)[0]), kBottom);
  EXPECT_EQ(Stored(kMemory)[0].Style, PenStyle::Solid);
  session->Display.DisplayMode = DisplayMode::Data;
  graphs.RedrawAll(true);
  EXPECT_TRUE(Stored(kMemory).empty());
}

TEST_F(Traces, AStoredTraceOfAnotherParameterIsNotDrawn) {
  session->Display.DisplaySet = DisplaySet::OneTwo;
  session->Display.DisplayMode = DisplayMode::DataAndMemory;
  StoreMemory(2, {0.01, 0});
  Channel(2).Parameter = Parameter::S22;
  graphs.RedrawAll(true);
  EXPECT_TRUE(Stored(kMemory).empty());
  Channel(2).Parameter = Parameter::S21;
  graphs.RedrawAll(true);
  EXPECT_EQ(Stored(kMemory).size(), 1u);
  Channel(2).MemoryValid = false;
  graphs.RedrawAll(true);
  EXPECT_TRUE(Stored(kMemory).empty());
}

TEST_F(Traces, DrawingAStoredTraceLeavesTheLiveValuesAlone) {
  StoreMemory(1, {0.01, 0});
  session->Display.DisplayMode = DisplayMode::DataAndMemory;
  session->Data.S11.Fill({0.1, 0});
  session->Averaging.SmoothOn = true;
  session->Averaging.SmoothingPercent = 5;
  graphs.ReplotAll();
  EXPECT_NEAR(Channel(1).Value[50], -20, 1e-9);
  EXPECT_NEAR(Channel(1).SmoothValue[50], -20, 1e-5f);
  EXPECT_NEAR(graphs.Trace(0, kMemoryTrace).Value[50], -40, 1e-5);
}

TEST_F(Traces, AStoredGroupDelayLeavesTheSweepsPhaseAlone) {
  Channel(1).GraphType = GraphType::GroupDelay;
  Channel(1).Units = Unit::Ns;
  StoreMemory(1, {0, 1});
  session->Display.DisplayMode = DisplayMode::DataAndMemory;
  session->Display.PrevPhaseReflection = 12.5f;
  graphs.RedrawAll(true);
  EXPECT_EQ(session->Display.PrevPhaseReflection, 12.5f);
  ASSERT_EQ(Stored(kMemory).size(), 1u);
  EXPECT_EQ(FlatAt(Stored(kMemory)[0]), kMiddle);  // a flat phase is no delay
}

TEST_F(Traces, HoldMaxKeepsTheGreatestAndHoldMinTheLeast) {
  session->Display.DisplayMode = DisplayMode::DataAndMemory;
  const auto held = [&](const char* hold, double live) {
    StoreMemory(1, {0.1, 0});
    session->Display.MemoryHold = *Named<MemoryHold>(hold);
    session->Data.S11.Fill({live, 0});
    graphs.RedrawAll(true);
    return Channel(1).MemoryRe[101];
  };
  EXPECT_EQ(held("Max", 0.5), 0.5);
  EXPECT_EQ(held("Max", 0.01), 0.1);
  EXPECT_EQ(held("Min", 0.5), 0.1);
  EXPECT_EQ(held("Min", 0.01), 0.01);
  EXPECT_EQ(held("Off", 0.5), 0.1);
}

TEST_F(Traces, HoldComparesPointByPointAndDrawsWhatIsHeld) {
  session->Display.DisplayMode = DisplayMode::DataAndMemory;
  session->Display.MemoryHold = MemoryHold::Max;
  StoreMemory(1, {0.1, 0});
  session->Data.S11.Fill({0.01, 0});
  session->Data.S11.Set(49, {1, 0});
  graphs.RedrawAll(true);
  EXPECT_NEAR(graphs.Trace(0, kMemoryTrace).Value[50], 0, 1e-9);
  EXPECT_NEAR(graphs.Trace(0, kMemoryTrace).Value[49], -20, 1e-9);
}

TEST_F(Traces, HoldWorksInDataAndMemoryOnly) {
  StoreMemory(1, {0.1, 0});
  session->Display.MemoryHold = MemoryHold::Max;
  session->Data.S11.Fill({1, 0});
  for (const char* mode : {"Data", "Memory+"}) {
    session->Display.DisplayMode = *Named<DisplayMode>(mode);
    graphs.ReplotAll();
  }
  EXPECT_EQ(Channel(1).MemoryRe[50], 0.1);
}

TEST_F(Traces, HoldOnATimeDomainChannelLeavesTheStoredTraceAlone) {
  session->Display.DisplayMode = DisplayMode::DataAndMemory;
  session->Display.MemoryHold = MemoryHold::Max;
  Channel(1).GraphType = GraphType::Td;
  StoreMemory(1, {0.1, 0});
  session->Data.S11.Fill({1, 0});
  graphs.RedrawAll(true);
  EXPECT_EQ(Channel(1).MemoryRe[50], 0.1);
}

TEST_F(Traces, AStoredTimeResponseIsDrawnAndLeavesTheSweepsSpectrumAlone) {
  session->Plan.NumPoints = 1024;
  session->Plan.StartFreq = session->Plan.StepFreq = 3e6;
  Channel(1).GraphType = GraphType::Td;
  Channel(1).Units = Unit::U;
  StoreMemory(1, {1, 0});
  session->Display.DisplayMode = DisplayMode::DataAndMemory;
  session->TdArrays.TdInRe.fill(7);  // as a running sweep has left it
  graphs.RedrawAll(true);
  EXPECT_EQ(Stored(kMemory).size(), 1u);
  EXPECT_NEAR(graphs.Trace(0, kMemoryTrace).Value[800], 1, 0.02);
  EXPECT_EQ(session->TdArrays.TdInRe[500], 7);
  EXPECT_EQ(Channel(1).Value[800], 0);
}

TEST_F(Traces, LimitsAreTwoBackgroundTracesInTheUnitsOfTheDisplay) {
  session->Display.ShowLimits = true;
  Channel(1).LimitsOn = true;
  Channel(1).UpperLimit.fill(10);
  Channel(1).LowerLimit.fill(-10);
  graphs.RedrawAll(true);
  const auto limits = Stored(kLimit);
  ASSERT_EQ(limits.size(), 2u);
  EXPECT_EQ(FlatAt(limits[0]), 246);  // 311.5 - 65.375
  EXPECT_EQ(FlatAt(limits[1]), 377);  // 311.5 + 65.375
}

TEST_F(Traces, LimitsThatMeanNoneRunAlongTheFrame) {
  session->Display.ShowLimits = true;
  Channel(1).LimitsOn = true;
  graphs.RedrawAll(true);
  ASSERT_EQ(Stored(kLimit).size(), 2u);
  EXPECT_EQ(FlatAt(Stored(kLimit)[0]), kTop);
  EXPECT_EQ(FlatAt(Stored(kLimit)[1]), kBottom);
}

TEST_F(Traces, LimitsNeedTheSwitchTheChannelAndARectangularGraph) {
  Channel(1).LimitsOn = true;
  graphs.RedrawAll(true);
  EXPECT_TRUE(Stored(kLimit).empty());
  session->Display.ShowLimits = true;
  Channel(1).GraphType = GraphType::Smith;
  graphs.RedrawAll(true);
  EXPECT_TRUE(Stored(kLimit).empty());
  Channel(1).GraphType = GraphType::LogMag;
  Channel(1).LimitsOn = false;
  Channel(2).LimitsOn = true;  // not displayed
  graphs.RedrawAll(true);
  EXPECT_TRUE(Stored(kLimit).empty());
}

}  // namespace
}  // namespace qk
