// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "graphs_fixture.h"

namespace qk {
namespace {

using test::Drawn;
using test::OfKind;

class Overlay : public test::GraphsFixture {
 protected:
  Overlay() {
    session->Display.DisplaySet = DisplaySet::All;
    graphs.RedrawAll(true);
    session->Flags.SweepIdle = false;
    session->Display.SweepCounted = true;
    session->Display.PointCounter = 40;
  }
  // Redraws the overlay and gives the graphs (0 to 3) that carry a sweep tick.
  std::vector<int> Ticks() {
    graphs.Wipe();
    graphs.DrawOverlay();
    std::vector<int> ticks;
    int graph = -1;
    for (const Drawn& item : surface.Overlay()) {
      if (item.What == Drawn::Kind::Polyline) ++graph;
      if (item.What == Drawn::Kind::Line) ticks.push_back(graph);
    }
    return ticks;
  }
  using Ints = std::vector<int>;
};

TEST_F(Overlay, IsOnePolylineAGraphInTheDataColour) {
  graphs.Wipe();
  graphs.DrawOverlay();
  EXPECT_EQ(surface.Overlay().size(), 4u);
  EXPECT_EQ(Traces(surface.Overlay(), kData).size(), 4u);
}

TEST_F(Overlay, ShowsThePointsPlottedSinceTheLastOne) {
  graphs.PlotPoint(1, 10, 20, 0);
  graphs.Wipe();
  graphs.DrawOverlay();
  const auto traces = Traces(surface.Overlay(), kData);
  ASSERT_EQ(traces.size(), 4u);
  EXPECT_LT(traces[0].Points[9].y, traces[0].Points[8].y);
  EXPECT_EQ(traces[0].Points[8].y, traces[0].Points[10].y);
}

TEST_F(Overlay, NeitherMeasuresTextNorTouchesTheBackground) {
  session->Cal.Cal12Term = true;
  const int measured = surface.canvas().TextsMeasured;
  const std::size_t background = surface.Background().size();
  surface.ClearLog();
  graphs.Wipe();
  graphs.DrawOverlay();
  EXPECT_EQ(surface.canvas().TextsMeasured, measured);
  EXPECT_EQ(surface.Background().size(), background);
  EXPECT_EQ(surface.Log(),
            (std::vector<std::string>{"wipe", "polyline 101", "line", "polyline 101", "line",
                                      "polyline 101", "line", "polyline 101", "line"}));
}

TEST_F(Overlay, NeverWipesByItself) {
  surface.ClearLog();
  graphs.DrawOverlay();
  graphs.DrawOverlay();
  for (const std::string& entry : surface.Log()) EXPECT_EQ(entry, "polyline 101");
}

TEST_F(Overlay, DrawsNothingBeforeTheFirstFullRedraw) {
  Graphs fresh(*session, surface);
  surface.ClearLog();
  fresh.DrawOverlay();
  EXPECT_TRUE(surface.Log().empty());
}

TEST_F(Overlay, TheSweepTickRisesFromTheLastPointByHalfTheHeightOfAnI) {
  session->Display.DisplaySet = DisplaySet::One;
  graphs.RedrawAll(true);
  session->Cal.CalS11 = true;
  graphs.Wipe();
  graphs.DrawOverlay();
  const auto lines = OfKind(surface.Overlay(), Drawn::Kind::Line);
  ASSERT_EQ(lines.size(), 1u);
  const CanvasPoint at = graphs.Trace(0, kDataTrace).Pixel[40];
  EXPECT_EQ(lines[0].Points[0].x, at.x);
  EXPECT_EQ(lines[0].Points[0].y, at.y);
  EXPECT_EQ(lines[0].Points[1].x, at.x);
  EXPECT_EQ(lines[0].Points[1].y, at.y - 5);  // 10 point text
  EXPECT_EQ(lines[0].Colour, kData);
}

// A surface that can keep its picture.
struct Keeping : test::RecordingSurface {
  bool Keep() override { return true; }
  void Return() override { ++Returned; }
  int Returned = 0;
};

TEST_F(Overlay, AMovedMarkerDrawsTheTracesOnlyIfTheyHaveChanged) {
  Keeping kept;
  Graphs shown(*session, kept);
  session->Display.MarkersOn = true;
  session->Markers.Set(0) = {true, false, true, 50};
  shown.RedrawAll(false);
  const auto drawn = [&](int point) {
    MoveMarker(*session, 0, point);
    const std::size_t before = Traces(kept.Overlay(), kData).size();
    const int returned = kept.Returned;
    shown.RedrawMarkers();
    EXPECT_EQ(session->Markers.Of(0, 0).X, shown.Trace(0, kDataTrace).Pixel[std::size_t(point)].x);
    return kept.Returned == returned || Traces(kept.Overlay(), kData).size() > before;
  };
  EXPECT_TRUE(drawn(51)) << "the first time";
  EXPECT_FALSE(drawn(52));
  EXPECT_FALSE(drawn(53));
  shown.PlotPoint(1, 7, 3, 0);
  EXPECT_TRUE(drawn(54)) << "a point came";
  EXPECT_FALSE(drawn(55));
  shown.RedrawOverlay();
  EXPECT_TRUE(drawn(56)) << "drawn in between";
  EXPECT_FALSE(drawn(57));
  shown.TakeVerdicts({});
  EXPECT_TRUE(drawn(58)) << "other failing points";
  shown.TracesChanged();
  EXPECT_TRUE(drawn(59));
  shown.View.AxisNumbers = true;
  shown.RedrawAll(true);
  EXPECT_TRUE(drawn(60));
  EXPECT_FALSE(drawn(61));
  EXPECT_TRUE(drawn(1)) << "a number below the traces goes";
}

// The background covers them where an axis number is left out.
TEST_F(Overlay, LimitsAndMemoriesAreDrawnAgainOverANumberThatIsLeftOut) {
  graphs.View.AxisNumbers = true;
  session->Display.MarkersOn = true;
  session->Channel(1).LimitsOn = session->Display.ShowLimits = true;
  session->Channel(1).UpperLimit.fill(1);
  session->Markers.Set(0) = {true, false, true, 1};
  MoveMarker(*session, 0, 1);
  graphs.RedrawAll(true);
  const auto& items = surface.Overlay();
  const auto filled = std::ranges::find(items, Drawn::Kind::Fill, &Drawn::What);
  ASSERT_NE(filled, items.end());
  EXPECT_TRUE(std::any_of(filled, items.end(), [&](const Drawn& item) {
    return item.What == Drawn::Kind::Polyline && item.Colour == session->Colour.LimitColour;
  }));
}

TEST_F(Overlay, APictureThatIsKeptHasNoSweepTick) {
  session->Cal.CalS11 = true;
  const auto ticks = [](const std::vector<Drawn>& items) {
    return OfKind(items, Drawn::Kind::Line).size();
  };
  graphs.RedrawOverlay();
  ASSERT_EQ(ticks(surface.Overlay()), 1u);
  graphs.DrawGraphicsLabel("");
  EXPECT_EQ(ticks(surface.Overlay()), 0u);
  EXPECT_EQ(Traces(surface.Overlay(), kData).size(), 4u) << "all else is there";
  graphs.RedrawOverlay();
  EXPECT_EQ(ticks(surface.Overlay()), 1u) << "on the screen again";
  const auto lines = [&](auto paint) {
    test::RecordingCanvas canvas({1000, 600});
    paint(canvas);
    return ticks(canvas.Items);
  };
  const auto paint = [&](Canvas& canvas) { graphs.Paint(canvas, ""); };
  const auto page = [&](Canvas& canvas) { graphs.PaintPage(canvas, "", 1); };
  const std::size_t painted = lines(paint), onPage = lines(page);
  session->Flags.SweepIdle = true;
  EXPECT_EQ(lines(paint), painted);
  EXPECT_EQ(lines(page), onPage);
}

TEST_F(Overlay, TheCalibrationInForceReportsWhichChannelsTakePart) {
  EXPECT_EQ(Ticks(), Ints{});  // no calibration
  session->Cal.CalS11 = true;
  EXPECT_EQ(Ticks(), (Ints{0}));
  session->Cal.CalS11 = false;
  session->Cal.CalS21 = true;
  EXPECT_EQ(Ticks(), (Ints{1}));
  session->Cal.CalS21 = false;
  session->Cal.CalS11S21 = true;
  EXPECT_EQ(Ticks(), (Ints{0, 1}));
  session->Cal.CalS11S21 = false;
  session->Cal.Cal12Term = true;
  EXPECT_EQ(Ticks(), (Ints{0, 1, 2, 3}));
}

TEST_F(Overlay, ATickNeedsARunningSweepBetweenItsFirstAndItsLastPoint) {
  session->Cal.Cal12Term = true;
  session->Display.PointCounter = 100;
  EXPECT_EQ(Ticks().size(), 4u);
  session->Display.PointCounter = 101;
  EXPECT_EQ(Ticks(), Ints{});
  session->Display.PointCounter = 0;
  EXPECT_EQ(Ticks(), Ints{});
  session->Display.PointCounter = 40;
  session->Flags.SweepIdle = true;
  EXPECT_EQ(Ticks(), Ints{});
  session->Flags.SweepIdle = false;
  session->Display.SweepCounted = false;
  EXPECT_EQ(Ticks(), Ints{});
}

}  // namespace
}  // namespace qk
