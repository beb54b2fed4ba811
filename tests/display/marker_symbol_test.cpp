// SPDX-License-Identifier: MIT
#include "display/marker_symbol.h"

#include <gtest/gtest.h>

#include <memory>

#include "support/recording_canvas.h"

namespace qk {
namespace {

using test::Drawn;

// The number " 1" is 12 by 10 pixels at font size 10; the point is at 500, 300 (or near the
// top), so that each offset can be read off.
class Symbol : public testing::Test {
 protected:
  Symbol() {
    graph.Top = 100;
    graph.Bottom = 500;
    graph.NumPoints = 101;
    data->Colour = 0xD0;
    data->Shown = memory->Shown = true;
    memory->Colour = 0xE0;
    marker.Point = 51;
    marker.State = MarkerState::Shown;
  }
  void PlaceAt(int y) { data->Pixel[51] = memory->Pixel[51] = {500, y}; }
  void Draw(MarkerState state, int y) {
    PlaceAt(y);
    marker.State = state;
    canvas.Items.clear();
    if (state == MarkerState::Fixed) {  // it follows no trace
      marker.X = 500;
      marker.Y = y;
    }
    DrawMarker(canvas, {graph, *data, *memory}, marker);
  }
  void ExpectItem(std::size_t i, Drawn::Kind kind, const std::vector<std::pair<int, int>>& points) {
    ASSERT_LT(i, canvas.Items.size());
    const Drawn& item = canvas.Items[i];
    EXPECT_EQ(item.What, kind);
    ASSERT_EQ(item.Points.size(), points.size());
    for (std::size_t k = 0; k < points.size(); ++k) {
      EXPECT_EQ(item.Points[k].x, points[k].first) << "item " << i << " point " << k;
      EXPECT_EQ(item.Points[k].y, points[k].second) << "item " << i << " point " << k;
    }
  }

  using K = Drawn::Kind;
  GraphRecord graph;
  std::unique_ptr<TraceRecord> data = std::make_unique<TraceRecord>();
  std::unique_ptr<TraceRecord> memory = std::make_unique<TraceRecord>();
  Marker marker;
  test::RecordingCanvas canvas{{1000, 600}};
};

TEST_F(Symbol, ShownIsAStemAndANumber) {
  Draw(MarkerState::Shown, 300);
  ExpectItem(0, K::Line, {{500, 300}, {500, 290}});
  ExpectItem(1, K::Text, {{493, 281}});
  EXPECT_EQ(canvas.Items[1].Text, " 1");
  EXPECT_EQ(marker.LabelY, 286);
  EXPECT_EQ(canvas.Items.size(), 2u);
}

TEST_F(Symbol, ShownBelowThePoint) {
  Draw(MarkerState::Shown, 120);  // 20 less is the top itself
  ExpectItem(0, K::Line, {{500, 120}, {500, 130}});
  ExpectItem(1, K::Text, {{493, 130}});
  EXPECT_EQ(marker.LabelY, 135);
}

TEST_F(Symbol, ActiveHasABox) {
  Draw(MarkerState::Active, 300);
  ExpectItem(0, K::Line, {{500, 300}, {500, 292}});
  ExpectItem(1, K::Rectangle, {{494, 281}, {510, 293}});  // 292.5 and 509.6
  ExpectItem(2, K::Text, {{493, 282}});
  EXPECT_EQ(marker.LabelY, 287);
}

TEST_F(Symbol, ActiveBelowThePoint) {
  Draw(MarkerState::Active, 110);
  ExpectItem(0, K::Line, {{500, 110}, {500, 118}});
  ExpectItem(1, K::Rectangle, {{493, 119}, {508, 128}});
  ExpectItem(2, K::Text, {{493, 118}});
  EXPECT_EQ(marker.LabelY, 123);
}

TEST_F(Symbol, AReferenceHasATriangle) {
  Draw(MarkerState::Reference, 300);
  ExpectItem(0, K::Line, {{500, 300}, {500, 292}});
  ExpectItem(1, K::Polyline, {{506, 281}, {494, 281}, {500, 275}, {506, 281}});
  ExpectItem(2, K::Text, {{493, 282}});
  EXPECT_EQ(marker.LabelY, 287);
}

TEST_F(Symbol, AReferenceBelowThePoint) {
  Draw(MarkerState::Reference, 125);  // 25 less is the top itself
  ExpectItem(0, K::Line, {{500, 125}, {500, 133}});
  ExpectItem(1, K::Polyline, {{506, 150}, {494, 150}, {500, 144}, {506, 150}});
  ExpectItem(2, K::Text, {{492, 134}});
  EXPECT_EQ(marker.LabelY, 139);
}

TEST_F(Symbol, AFixedReferenceHasTwoBars) {
  Draw(MarkerState::Fixed, 300);
  ExpectItem(0, K::Line, {{500, 300}, {500, 292}});
  ExpectItem(1, K::Line, {{506, 281}, {494, 281}});
  ExpectItem(2, K::Line, {{506, 279}, {494, 279}});
  ExpectItem(3, K::Text, {{493, 282}});
  EXPECT_EQ(marker.LabelY, 287);
}

TEST_F(Symbol, AFixedReferenceBelowThePoint) {
  Draw(MarkerState::Fixed, 120);
  ExpectItem(1, K::Line, {{506, 142}, {494, 142}});
  ExpectItem(2, K::Line, {{506, 140}, {494, 140}});
  ExpectItem(3, K::Text, {{492, 129}});
  EXPECT_EQ(marker.LabelY, 134);
}

TEST_F(Symbol, NeedsMoreRoomAboveAsAReference) {
  Draw(MarkerState::Shown, 121);
  EXPECT_LT(marker.LabelY, 121);
  Draw(MarkerState::Active, 121);
  EXPECT_LT(marker.LabelY, 121);
  Draw(MarkerState::Reference, 121);
  EXPECT_GT(marker.LabelY, 121);
  Draw(MarkerState::Reference, 126);
  EXPECT_LT(marker.LabelY, 126);
}

TEST_F(Symbol, IsInThePenOfItsTrace) {
  Draw(MarkerState::Shown, 300);
  EXPECT_EQ(canvas.Items[0].Colour, 0xD0u);
  EXPECT_EQ(canvas.Items[1].Colour, 0xD0u);
  marker.Trace = MarkerTrace::Memory;
  Draw(MarkerState::Shown, 300);
  EXPECT_EQ(canvas.Items[0].Colour, 0xE0u);
  EXPECT_EQ(canvas.Items[1].Colour, 0xE0u);
}

}  // namespace
}  // namespace qk
