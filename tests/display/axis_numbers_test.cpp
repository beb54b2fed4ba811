// SPDX-License-Identifier: MIT
// The numbers at the axes, the channel in the title, and the size of letters.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "core/text.h"
#include "display/layout.h"
#include "display/marker_symbol.h"
#include "remarks_fixture.h"
#include "trace/time_domain.h"

namespace qk {
namespace {

using test::Drawn;
using test::FindText;
using test::Remarks;

using Words = std::vector<std::string>;

class AxisNumbers : public Remarks {
 protected:
  AxisNumbers() { graphs.View = {.AxisNumbers = true, .Remarks = false}; }
  bool InBackground(const char* text) { return FindText(surface.Background(), text) != nullptr; }
};

TEST_F(AxisNumbers, StandAtTheDivisions) {
  session->Plan.StartFreq = 100e6;
  session->Plan.StepFreq = 1e6;
  session->Plan.StopFreq = 200e6;
  Channel(1).Scale = 5;
  Channel(1).Reference = -20;
  Channel(1).RefPosition = 2;
  graphs.RedrawAll(true);
  for (const char* text : {"-10", "-15", "-20", "-25", "-50"})
    EXPECT_TRUE(InBackground(text)) << text;
  for (const char* text : {"110.0", "150.0", "190.0"}) EXPECT_TRUE(InBackground(text)) << text;
  const test::Drawn* reference = FindText(surface.Background(), "-20");
  EXPECT_NEAR(reference->Points[0].y + 5, graphs.Graph(0).Top + 2 * graphs.Graph(0).Height() / 8,
              1);
}

// Beside the long texts at the ends there is no room below the first and the last division.
TEST_F(AxisNumbers, StandInOneRowInsideWhereStartAndStopAreInTheWay) {
  session->Plan.StartFreq = 3e6;
  session->Plan.StepFreq = 29.97e6;
  session->Plan.StopFreq = 3000e6;
  Channel(1).Reference = -1000;  // a wide number in the lower left corner
  for (const int width : {400, 520, 700, 1400}) {
    surface.canvas().Resize({width, 600});
    graphs.RedrawAll(true);
    const GraphRecord& graph = graphs.Graph(0);
    const auto room = [this](const test::Drawn& item) {
      const Extent size =
          Extent{6 * static_cast<int>(item.Text.size()) * item.FontSize / 10, item.FontSize};
      const CanvasPoint at = item.Points[0];
      return Rect{at.x, at.y, at.x + size.width, at.y + size.height};
    };
    std::vector<Rect> rooms;
    int inside = 0;
    for (int i = 1; i <= 9; ++i) {
      const std::string text = FormatNumber((3e6 + 299.7e6 * i) / 1e6, "#0");
      const test::Drawn* number = FindText(surface.Background(), text.c_str());
      if (width < 520 && number == nullptr) continue;
      ASSERT_NE(number, nullptr) << text << " of " << width;
      rooms.push_back(room(*number));
      EXPECT_NEAR((rooms.back().left + rooms.back().right) / 2.0,
                  graph.Left + graph.Width() * i / 10.0, 1)
          << text;
      inside += rooms.back().top < graph.Bottom ? 1 : 0;
    }
    for (const char* text : {"3.0000 MHz", "3000.0000 MHz", "-1040"})
      rooms.push_back(room(*FindText(surface.Background(), text)));
    for (std::size_t a = 0; a < rooms.size(); ++a)
      for (std::size_t b = a + 1; b < rooms.size(); ++b)
        EXPECT_FALSE(rooms[a].left < rooms[b].right && rooms[b].left < rooms[a].right &&
                     rooms[a].top < rooms[b].bottom && rooms[b].top < rooms[a].bottom)
            << width << ": " << a << ", " << b;
    EXPECT_EQ(inside, width == 1400 ? 0 : static_cast<int>(rooms.size()) - 3) << width;
    EXPECT_GE(rooms.size(), 3u + 4u) << width;
  }
}

TEST_F(AxisNumbers, AreMetresOnADistanceAxisAndNanosecondsOnATimeAxis) {
  session->Plan.NumPoints = kMaxPoints;
  session->Plan.StepFreq = 3e6;
  Channel(1).GraphType = GraphType::Td;
  session->TimeDomain.TdT1 = 0;
  session->TimeDomain.TdT2 = 100;
  session->TimeDomain.TdStep = 100.0 / (kMaxPoints - 1);
  graphs.RedrawAll(true);
  EXPECT_TRUE(InBackground("50.0"));
  session->TimeDomain.Axis = TimeAxis::Distance;
  graphs.RedrawAll(true);
  EXPECT_FALSE(InBackground("50.0"));
  // Half way between the labels at the ends.
  const GraphRecord& graph = graphs.Graph(0);
  const double middle = graph.MetresStart + (kMaxPoints - 1) * graph.MetresStep / 2;
  EXPECT_NEAR(middle, 7.5, 0.1) << "c t / 2 of 50 ns";
  bool there = false;
  for (const test::Drawn& item : surface.Background())
    if (item.What == test::Drawn::Kind::Text && !item.Text.empty() &&
        item.Points[0].y == graph.Bottom && !item.Text.ends_with("m"))
      there = there || std::abs(std::stod(item.Text) - middle) < 0.051;
  EXPECT_TRUE(there);
}

TEST_F(AxisNumbers, MoveNothing) {
  graphs.View = {};
  graphs.RedrawAll(true);
  const std::vector<test::Drawn> before = surface.Background();
  graphs.View.AxisNumbers = true;
  graphs.RedrawAll(true);
  for (const test::Drawn& item : before)
    if (item.What == test::Drawn::Kind::Text) {
      const test::Drawn* now = FindText(surface.Background(), item.Text);
      ASSERT_NE(now, nullptr) << item.Text;
      EXPECT_EQ(now->Points[0].x, item.Points[0].x) << item.Text;
      EXPECT_EQ(now->Points[0].y, item.Points[0].y) << item.Text;
    }
}

TEST_F(AxisNumbers, AreNotOnASmithChartAndTheChannelStandsBesideTheTitle) {
  session->Display.DisplaySet = DisplaySet::OneTwo;
  Channel(1).GraphType = GraphType::Smith;
  graphs.RedrawAll(true);
  EXPECT_TRUE(InBackground("CH1"));
  EXPECT_TRUE(InBackground("CH2"));
  graphs.View.AxisNumbers = false;
  graphs.RedrawAll(true);
  EXPECT_FALSE(InBackground("CH1"));
}

TEST_F(AxisNumbers, TheChannelThatIsActiveHasABoxWhereThereAreSeveral) {
  session->Display.DisplaySet = DisplaySet::OneTwo;
  Channel(1).Active = false;
  Channel(2).Active = true;
  graphs.RedrawAll(true);
  const auto boxed = [this](const char* text) {
    const test::Drawn* number = FindText(surface.Background(), text);
    if (number == nullptr) return false;
    return std::ranges::any_of(surface.Background(), [number](const test::Drawn& item) {
      return item.What == test::Drawn::Kind::Rectangle && item.Points[0].y == number->Points[0].y &&
             item.Points[0].x == number->Points[0].x - 2 &&
             item.Points[1].x > number->Points[0].x + 10;
    });
  };
  EXPECT_FALSE(boxed("CH1"));
  EXPECT_TRUE(boxed("CH2"));
  session->Display.DisplaySet = DisplaySet::One;
  Channel(1).Active = true;
  graphs.RedrawAll(true);
  EXPECT_FALSE(boxed("CH1")) << "the only one";
}

TEST_F(AxisNumbers, DoNotCoverEachOtherWhereThereIsLittleRoom) {
  surface.canvas().Resize({260, 120});
  graphs.RedrawAll(true);
  std::vector<Rect> places;
  for (const test::Drawn& item : surface.Background())
    if (item.What == test::Drawn::Kind::Text && item.Points[0].y >= graphs.Graph(0).Bottom)
      places.push_back(
          {item.Points[0].x, 0, item.Points[0].x + 6 * static_cast<int>(item.Text.size()), 0});
  std::ranges::sort(places, {}, &Rect::left);
  for (std::size_t i = 1; i < places.size(); ++i)
    EXPECT_GE(places[i].left, places[i - 1].right) << i;
}

TEST_F(AxisNumbers, AreLeftOutWhereAMarkerWouldTouchThem) {
  session->Display.MarkersOn = true;
  session->Markers.Set(0) = {true, false, true, 50};
  Channel(1).Active = true;
  graphs.RedrawAll(false);
  const auto cleared = [this] {
    graphs.RedrawOverlay();
    std::vector<Rect> fills;
    for (const test::Drawn& item : surface.Overlay()) {
      if (item.What == test::Drawn::Kind::Polyline) break;  // of a trace, which must not be cut
      if (item.What == test::Drawn::Kind::Fill)
        fills.push_back({item.Points[0].x, item.Points[0].y, item.Points[1].x, item.Points[1].y});
    }
    return fills;
  };
  EXPECT_TRUE(cleared().empty()) << "in the middle";
  MoveMarker(*session, 0, 1);
  const std::vector<Rect> fills = cleared();
  ASSERT_FALSE(fills.empty());
  const Marker& marker = session->Markers.Of(0, 0);
  const Rect symbol = MarkerBounds(surface.canvas(), graphs.Graph(0), marker);
  for (const Rect& fill : fills) {
    EXPECT_TRUE(Overlap(fill, symbol));
    EXPECT_TRUE(std::ranges::any_of(surface.Background(), [&fill](const test::Drawn& item) {
      return item.What == test::Drawn::Kind::Text && item.Points[0].x == fill.left + 1 &&
             item.Points[0].y <= fill.top && item.Points[0].y + 10 >= fill.bottom;
    })) << "the place of a number";
  }
}

TEST_F(AxisNumbers, LettersAreNeverSmallerThanNinePixels) {
  session->Display.DisplaySet = DisplaySet::All;
  session->Display.MarkersOn = session->Impedance.ZoConvertOn = true;
  session->Markers.Set(0) = {true, false, true, 50};
  Channel(1).Active = true;
  Graphs small(*session, surface, 0.6f);
  const auto smallest = [&](bool numbers) {
    small.View.AxisNumbers = numbers;
    small.RedrawAll(false);
    small.DrawGraphicsLabel("label");
    Words texts;
    int points = 99;
    for (const auto* layer : {&surface.Background(), &surface.Overlay()})
      for (const test::Drawn& item : *layer)
        if (item.What == test::Drawn::Kind::Text) {
          texts.push_back(item.Text);
          points = std::min(points, item.FontSize);
        }
    for (const char* text : {"S11 LogMag", "MARKERS", "Graph  1 S11", "[Zo=50]", "label"})
      EXPECT_NE(std::ranges::find(texts, text), texts.end()) << text;
    return points;
  };
  EXPECT_EQ(smallest(true), 7) << "points: nine pixels";
  EXPECT_EQ(smallest(false), 3);
}

// Of a picture in which the marker table is too narrow for its longest texts.
TEST_F(AxisNumbers, AMarkerTableThatIsTooNarrowKeepsItsLettersAndCutsNoText) {
  session->Display.MarkersOn = true;
  session->Markers.Set(0) = {true, false, true, 50};
  Channel(1).Parameter = Parameter::S11;
  Channel(1).GraphType = GraphType::Smith;
  Channel(1).Active = true;
  for (const int width : {640, 320}) {
    surface.canvas().Resize({width, 300});
    graphs.RedrawAll(false);
    for (const auto* layer : {&surface.Background(), &surface.Overlay()})
      for (const test::Drawn& item : *layer) {
        if (item.What != test::Drawn::Kind::Text) continue;
        EXPECT_GE(item.FontSize, kReadablePoints) << item.Text << " at " << width;
        surface.canvas().SetFontSize(item.FontSize);
        const int end = item.Points[0].x + surface.canvas().TextExtent(item.Text).width;
        EXPECT_LE(end, width) << item.Text << " at " << width;
      }
    EXPECT_EQ(Drawn("50.000,  0.000 j"), width == 640);
    EXPECT_EQ(Drawn("50.000") && Drawn("0.000 j"), width == 320) << "the parts below each other";
  }
}

}  // namespace
}  // namespace qk
