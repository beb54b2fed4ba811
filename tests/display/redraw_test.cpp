// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "graphs_fixture.h"

namespace qk {
namespace {

using test::Drawn;
using test::FindText;
using test::OfKind;
using test::TextsOf;

class Redraw : public test::GraphsFixture {};

std::vector<std::string> FrameLog(const char* title) {
  std::vector<std::string> log = {"rectangle"};
  log.insert(log.end(), 16, "line");
  for (const char* item : {"polyline 4", "polyline 4", "text 10.0 dB/DIV", "text 0.0 dB"})
    log.push_back(item);
  log.push_back(std::string("text ") + title);
  log.push_back("text 3.0000 MHz");
  log.push_back("text 3000.0000 MHz");
  return log;
}

std::vector<std::string> Joined(std::vector<std::vector<std::string>> parts) {
  std::vector<std::string> all;
  for (const auto& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

TEST_F(Redraw, OfPlainDataClearsFramesCommitsAndDrawsTheOverlay) {
  graphs.RedrawAll(true);
  EXPECT_EQ(surface.Log(), Joined({{"fill", "commit", "wipe"},
                                   FrameLog("S11 LogMag"),
                                   {"commit"},
                                   {"commit", "wipe"},
                                   {"commit", "wipe"},
                                   {"polyline 101", "present"}}));
}

TEST_F(Redraw, DrawsTheImpedanceTagBeforeTheFrames) {
  session->Impedance.ZoConvertOn = true;
  graphs.RedrawAll(true);
  EXPECT_EQ(surface.Log()[3], "text [Zo=50]");
  EXPECT_EQ(surface.Log()[4], "rectangle");
  EXPECT_NE(FindText(surface.Background(), "[Zo=50]"), nullptr);
}

TEST_F(Redraw, DrawsMemoryThenLimitsIntoTheBackgroundEachAfterAWipe) {
  StoreMemory(1, {0.1, 0});
  session->Display.DisplayMode = DisplayMode::DataAndMemory;
  session->Display.ShowLimits = true;
  Channel(1).LimitsOn = true;
  graphs.RedrawAll(true);
  EXPECT_EQ(surface.Log(),
            Joined({{"fill", "commit", "wipe"},
                    FrameLog("S11 LogMag"),
                    {"commit"},
                    {"wipe", "polyline 101", "commit", "wipe"},
                    {"wipe", "polyline 101", "polyline 101", "polyline 101", "commit", "wipe"},
                    {"polyline 101", "present"}}));
}

TEST_F(Redraw, FillsTheWholeAreaWithTheBackColour) {
  session->Colour.BackColour = 0x123456;
  graphs.RedrawAll(true);
  const Drawn& fill = surface.Background().front();
  EXPECT_EQ(fill.What, Drawn::Kind::Fill);
  EXPECT_EQ(fill.Colour, 0x123456u);
  EXPECT_EQ(fill.Points[0].x, 0);
  EXPECT_EQ(fill.Points[0].y, 0);
  EXPECT_EQ(fill.Points[1].x, 1000);
  EXPECT_EQ(fill.Points[1].y, 600);
}

TEST_F(Redraw, LeavesNothingOfThePictureBefore) {
  graphs.RedrawAll(true);
  const std::size_t items = surface.Background().size();
  graphs.RedrawAll(true);
  EXPECT_EQ(surface.Background().size(), items);
  EXPECT_EQ(surface.Overlay().size(), 1u);
}

TEST_F(Redraw, SetOneShowsChannelOneWhateverChannelIsActive) {
  session->Display.ActiveChannel = 3;
  Channel(1).Active = false;
  Channel(3).Active = true;
  graphs.RedrawAll(true);
  EXPECT_NE(FindText(surface.Background(), "S11 LogMag"), nullptr);
  EXPECT_EQ(OfKind(surface.Background(), Drawn::Kind::Rectangle).size(), 1u);
  EXPECT_TRUE(graphs.Graph(0).Enabled);
  for (int graph = 1; graph < 4; ++graph) EXPECT_FALSE(graphs.Graph(graph).Enabled);
}

TEST_F(Redraw, EverySetShowsItsChannelsInAscendingOrder) {
  const auto titles = [&](const char* set) {
    session->Display.DisplaySet = *Named<DisplaySet>(set);
    graphs.RedrawAll(true);
    std::vector<std::string> found;
    for (const std::string& text : TextsOf(surface.Background()))
      if (text.ends_with("LogMag")) found.push_back(text);
    return found;
  };
  using Titles = std::vector<std::string>;
  EXPECT_EQ(titles("one"), (Titles{"S11 LogMag"}));
  EXPECT_EQ(titles("one-two"), (Titles{"S11 LogMag", "S21 LogMag"}));
  EXPECT_EQ(titles("three-four"), (Titles{"S12 LogMag", "S22 LogMag"}));
  EXPECT_EQ(titles("all"), (Titles{"S11 LogMag", "S21 LogMag", "S12 LogMag", "S22 LogMag"}));
}

TEST_F(Redraw, TakesTheGraphFromItsChannel) {
  ChannelSettings& channel = Channel(2);
  channel.Active = true;
  channel.Scale = 0.3;
  channel.Reference = -7.25;
  channel.RefPosition = 6;
  channel.Units = Unit::MilliU;
  channel.GraphType = GraphType::Td;
  session->Display.DisplaySet = DisplaySet::OneTwo;
  graphs.RedrawAll(true);
  const GraphRecord& graph = graphs.Graph(1);
  EXPECT_TRUE(graph.Enabled);
  EXPECT_TRUE(graph.IsActive);
  EXPECT_TRUE(graph.IsTime);
  EXPECT_FALSE(graph.IsSmith);
  EXPECT_EQ(graph.Slot, 5);
  EXPECT_EQ(graph.Scale, 0.3f);
  EXPECT_EQ(graph.Reference, -7.25);
  EXPECT_EQ(graph.RefPosition, 6);
  EXPECT_EQ(graph.Units, Unit::MilliU);
  EXPECT_EQ(graph.NumPoints, 101);
  EXPECT_EQ(graph.XStart, 3e6);
  EXPECT_EQ(graph.XStep, session->Plan.StepFreq);
  EXPECT_EQ(graph.TimeStart, -5);
  EXPECT_EQ(graph.TimeStep, static_cast<float>(session->TimeDomain.TdStep));
  EXPECT_EQ(graph.Top, 350);
}

TEST_F(Redraw, GraphsThatAreNotDisplayedStandAtTheirDefaults) {
  session->Display.DisplaySet = DisplaySet::All;
  for (int n = 1; n <= 4; ++n) {
    Channel(n).Scale = 3;
    Channel(n).Reference = 2;
    Channel(n).RefPosition = 7;
    Channel(n).Units = Unit::U;
    Channel(n).GraphType = GraphType::LinMag;
  }
  graphs.RedrawAll(true);
  session->Display.DisplaySet = DisplaySet::One;
  graphs.RedrawAll(true);
  const GraphRecord& graph = graphs.Graph(3);
  EXPECT_FALSE(graph.Enabled);
  EXPECT_EQ(graph.Scale, 1);
  EXPECT_EQ(graph.Reference, 0);
  EXPECT_EQ(graph.RefPosition, 5);
  EXPECT_EQ(graph.Units, Unit::Db);
  EXPECT_EQ(graph.NumPoints, 101);
}

TEST_F(Redraw, MarkersNarrowTheGraphs) {
  graphs.RedrawAll(true);
  EXPECT_EQ(graphs.Graph(0).Right, 963);
  session->Display.MarkersOn = true;
  graphs.RedrawAll(true);
  EXPECT_EQ(graphs.Graph(0).Right, 793);
}

TEST_F(Redraw, FollowsTheSizeOfTheAreaWithoutNewData) {
  graphs.RedrawAll(true);
  Sweep(1, -40);  // the bottom edge
  surface.canvas().Resize({500, 300});
  graphs.RedrawAll(true);
  const auto traces = Traces(surface.Overlay(), kData);
  ASSERT_EQ(traces.size(), 1u);
  EXPECT_EQ(graphs.Graph(0).Bottom, 287);
  EXPECT_EQ(FlatAt(traces[0]), 287);
  EXPECT_EQ(traces[0].Points.back().x, graphs.Graph(0).Right);
}

TEST_F(Redraw, FontsFollowTheSlotAndTheScreen) {
  Graphs large(*session, surface, 1.25f);
  large.RedrawAll(true);
  EXPECT_EQ(FindText(surface.Background(), "S11 LogMag")->FontSize, 12);
  session->Display.DisplaySet = DisplaySet::All;
  large.RedrawAll(true);
  EXPECT_EQ(FindText(surface.Background(), "S11 LogMag")->FontSize, 7);
}

TEST_F(Redraw, ASmithChannelHasItsFrameAndNoReference) {
  Channel(1).GraphType = GraphType::Smith;
  graphs.RedrawAll(true);
  EXPECT_EQ(OfKind(surface.Background(), Drawn::Kind::Arc).size(), 10u);
  EXPECT_TRUE(OfKind(surface.Background(), Drawn::Kind::Rectangle).empty());
  EXPECT_TRUE(OfKind(surface.Background(), Drawn::Kind::Polyline).empty());
  EXPECT_EQ(FindText(surface.Background(), "10.0 dB/DIV"), nullptr);
  EXPECT_EQ(FindText(surface.Background(), "0.0 dB"), nullptr);
  EXPECT_NE(FindText(surface.Background(), "S11 Reflection Z"), nullptr);
}

TEST_F(Redraw, AnAreaWithoutSizeIsHarmless) {
  surface.canvas().Resize({0, 0});
  session->Display.DisplaySet = DisplaySet::All;
  Channel(4).GraphType = GraphType::Smith;
  graphs.RedrawAll(true);
  Sweep(1, 3);
  graphs.DrawOverlay();
  EXPECT_EQ(graphs.Trace(0, kDataTrace).Pixel[7].x, 0);
}

// ---- on a page
// -----------------------------------------------------------------------------------

class PaintPage : public test::GraphsFixture {};

TEST_F(PaintPage, HasNumbersAtItsAxesAndLettersForPaperAndLeavesTheScreenAlone) {
  session->Display.DisplaySet = DisplaySet::All;
  session->Display.MarkersOn = true;
  session->Markers.Set(0).Shown = true;
  graphs.RedrawAll(false);
  for (int n = 1; n <= 4; ++n) Sweep(n, -20);
  graphs.RedrawOverlay();
  const auto screen = graphs.Graph(3);
  const CanvasPoint pixel = graphs.Trace(3, kDataTrace).Pixel[7];
  const MarkerRecords markers = session->Markers;

  test::RecordingCanvas page({720, 432});
  graphs.PaintPage(page, "A label", 8);
  bool axisNumber = false, label = false;
  std::vector<Drawn> traces;
  for (const Drawn& item : page.Items) {
    if (item.What != Drawn::Kind::Text) continue;
    EXPECT_GE(item.FontSize, 8) << item.Text;
    axisNumber = axisNumber || item.Text == "CH4";
    label = label || item.Text == "A label";
  }
  EXPECT_TRUE(axisNumber && label);
  // The trace lies in its graph of the page: the same part of its height as on the screen.
  const auto drawn = Traces(page.Items, kData);
  ASSERT_EQ(drawn.size(), 4u);
  EXPECT_NEAR(FlatAt(drawn[3]) / 432.0, pixel.y / 600.0, 0.003);

  EXPECT_FALSE(graphs.View.AxisNumbers);
  EXPECT_EQ(graphs.Graph(3).Right, screen.Right);
  EXPECT_EQ(graphs.Trace(3, kDataTrace).Pixel[7].y, pixel.y);
  EXPECT_EQ(session->Markers.Of(0, 0).Point, markers.Of(0, 0).Point);
}

}  // namespace
}  // namespace qk
