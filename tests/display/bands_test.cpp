// SPDX-License-Identifier: MIT
// Bands behind the data traces, their words beside the title, and read-outs with a band.
#include <cmath>
#include <limits>
#include <map>
#include <memory>

#include "display/read_out.h"
#include "display/remarks.h"
#include "graphs_fixture.h"

namespace qk {
namespace {

using test::Drawn;
using test::OfKind;

// Regions as the test wants them.
class FakeBands : public BandSource {
 public:
  std::optional<Region> RegionAt(BandKind kind, int channel, int k) const override {
    ++Asked;
    if (channel != 1 || Gaps.contains(k)) return std::nullopt;
    return kind == BandKind::Uncertainty ? Uncertain : Repeated;
  }
  std::vector<std::string> Words(BandKind kind, int channel) const override {
    if (kind == BandKind::Spread) return {"mean of 20"};
    return channel == 1 ? std::vector<std::string>{"U k=2", "by Through"}
                        : std::vector<std::string>{"no U"};
  }
  std::map<int, bool> Gaps;
  std::optional<Region> Uncertain = Region{{0.1, 0}, 0.01};
  std::optional<Region> Repeated = Region{{0.2, 0}, 0.02};
  mutable int Asked = 0;
};

class BandGraphs : public test::GraphsFixture {
 protected:
  BandGraphs() {
    session->Cal.CalS11 = true;
    graphs.Bands = &source;
    graphs.View.Uncertainty = true;
    Channel(1).Scale = 1;
    Channel(1).Reference = -20;
    graphs.RedrawAll(true);  // as START does; the source has been asked for nothing before
    source.Asked = 0;
    Sweep(1, -20);
  }
  void Draw() { graphs.RedrawAll(true); }
  std::vector<Drawn> Polygons() { return OfKind(surface.Overlay(), Drawn::Kind::Polygon); }
  int Y(double db) {
    const GraphRecord& g = graphs.Graph(0);
    const double pixels = g.Height() / 8.0;
    return static_cast<int>(std::lround(g.Top + (g.RefPosition + (-20 - db)) * pixels));
  }
  FakeBands source;
};

TEST_F(BandGraphs, LieBehindTheTraceFromEndToEnd) {
  Draw();
  const auto polygons = Polygons();
  ASSERT_EQ(polygons.size(), 1u);
  const Drawn& band = polygons[0];
  ASSERT_EQ(band.Points.size(), 2u * 101);
  EXPECT_EQ(band.Colour, kData);
  EXPECT_LT(band.Opacity, 0.5) << "the grid shows through";
  // Upper edge forward, lower edge back.
  EXPECT_NEAR(band.Points[0].y, Y(-20 + 20 * std::log10(1.1)), 1);
  EXPECT_NEAR(band.Points[201].y, Y(-20 + 20 * std::log10(0.9)), 1);
  EXPECT_EQ(band.Points[0].x, graphs.Graph(0).Left);
  EXPECT_EQ(band.Points[100].x, graphs.Graph(0).Right);
  EXPECT_EQ(band.Points[201].x, graphs.Graph(0).Left);
  // Before the trace, in the live layer.
  std::size_t bandAt = 0, traceAt = 0;
  for (std::size_t i = 0; i < surface.Overlay().size(); ++i) {
    if (surface.Overlay()[i].What == Drawn::Kind::Polygon) bandAt = i;
    if (surface.Overlay()[i].What == Drawn::Kind::Polyline && traceAt == 0) traceAt = i;
  }
  EXPECT_LT(bandAt, traceAt);
  EXPECT_TRUE(OfKind(surface.Background(), Drawn::Kind::Polygon).empty());
}

TEST_F(BandGraphs, AreNotDrawnUnlessSwitchedOn) {
  graphs.View.Uncertainty = false;
  Draw();
  EXPECT_TRUE(Polygons().empty());
  EXPECT_EQ(source.Asked, 0);
  EXPECT_TRUE(test::TextsOf(surface.Overlay()).empty());
}

TEST_F(BandGraphs, HaveGapsWhereNothingIsKnownAndWhereThereIsNoValue) {
  source.Gaps = {{30, true}, {32, true}};
  graphs.PlotPoint(1, 81, std::nan(""), 0);  // k = 80
  Draw();
  const auto polygons = Polygons();
  ASSERT_EQ(polygons.size(), 3u);
  EXPECT_EQ(polygons[0].Points.size(), 2u * 30);
  EXPECT_EQ(polygons[1].Points.size(), 2u * 47);  // 33 to 79
  EXPECT_EQ(polygons[2].Points.size(), 2u * 20);  // 81 to 100
  // The point alone between two gaps is an upright line.
  bool alone = false;
  for (const Drawn& line : OfKind(surface.Overlay(), Drawn::Kind::Line))
    alone = alone || (line.Colour == kData && line.Points[0].x == line.Points[1].x &&
                      line.Points[0].y < line.Points[1].y);
  EXPECT_TRUE(alone);
}

TEST_F(BandGraphs, WithoutALeastValueReachTheLowerEdge) {
  source.Uncertain = Region{{0.1, 0}, 0.1};
  Draw();
  const auto polygons = Polygons();
  ASSERT_EQ(polygons.size(), 1u);
  EXPECT_EQ(polygons[0].Points[201].y, graphs.Graph(0).Bottom);
}

TEST_F(BandGraphs, OfAParameterThatIsNotMeasuredAreNone) {
  session->Cal.CalS11 = false;
  session->Cal.CalS21 = true;
  Draw();
  EXPECT_TRUE(Polygons().empty());
}

TEST_F(BandGraphs, OnASmithChartAreDiscs) {
  Channel(1).GraphType = GraphType::Smith;
  for (int i = 1; i <= 101; ++i) graphs.PlotPoint(1, i, 0.3, 0.4);
  source.Uncertain = Region{{0.3, 0.4}, 0.05};
  Draw();
  const auto discs = Polygons();
  ASSERT_FALSE(discs.empty());
  EXPECT_LE(discs.size(), 40u);
  const double radius = 0.05 * graphs.Graph(0).Height() / 2;
  const CanvasPoint at = graphs.Trace(0, kDataTrace).Pixel[1];
  for (const CanvasPoint p : discs[0].Points)
    EXPECT_NEAR(std::hypot(p.x - at.x, p.y - at.y), radius, 1);
}

TEST_F(BandGraphs, OfStatisticsStandAboutTheirOwnMean) {
  graphs.View = {.Spread = true};
  Draw();
  const auto polygons = Polygons();
  ASSERT_EQ(polygons.size(), 1u);
  EXPECT_EQ(polygons[0].Colour, kMemory);
  const double mean = 20 * std::log10(0.2);
  EXPECT_NEAR(polygons[0].Points[0].y,
              std::max(graphs.Graph(0).Top, Y(mean + 20 * std::log10(1.1))), 1);
  EXPECT_EQ(Traces(surface.Overlay(), kMemory).size(), 1u) << "the mean";
  EXPECT_NE(test::FindText(surface.Overlay(), "mean of 20"), nullptr);
}

// 1024 points on fewer columns of pixels: one edge a column, about all of its points.
TEST_F(BandGraphs, OfManyPointsHaveOneEdgeAColumnAndAMeanInStretches) {
  session->Plan.NumPoints = kMaxPoints;
  graphs.View = {.Uncertainty = true, .Spread = true};
  Draw();
  for (int i = 1; i <= kMaxPoints; ++i) graphs.PlotPoint(1, i, i % 2 == 0 ? -20 : -22, 0);
  Draw();
  const auto polygons = Polygons();
  ASSERT_EQ(polygons.size(), 2u);
  const int width = graphs.Graph(0).Width();
  for (const Drawn& band : polygons) {
    EXPECT_LE(static_cast<int>(band.Points.size()), 2 * (width + 1));
    for (std::size_t i = 1; i < band.Points.size() / 2; ++i)
      EXPECT_LT(band.Points[i - 1].x, band.Points[i].x);
  }
  EXPECT_EQ(polygons[1].Points.front().x, graphs.Graph(0).Left);
  EXPECT_EQ(polygons[1].Points[polygons[1].Points.size() / 2 - 1].x, graphs.Graph(0).Right);
  // The mean: about half of the way, in pieces, from end to end.
  int drawn = 0, pieces = 0, last = 0;
  for (const Drawn& item : surface.Overlay())
    if (item.What == Drawn::Kind::Polyline && item.Colour == kMemory) {
      EXPECT_EQ(item.Style, PenStyle::Solid);
      drawn += item.Points.back().x - item.Points.front().x;
      last = item.Points.back().x;
      ++pieces;
    }
  EXPECT_GT(pieces, 50);
  EXPECT_NEAR(drawn, 3 * width / 8, width / 20);
  EXPECT_GT(last, graphs.Graph(0).Right - 12);
}

TEST_F(BandGraphs, SayBesideTheTitleWhatTheyRestOnAlsoWithoutRemarks) {
  session->Averaging.Averages = 8;
  Draw();
  EXPECT_NE(test::FindText(surface.Overlay(), "U k=2  by Through"), nullptr);
  graphs.View.Remarks = true;
  Draw();
  EXPECT_NE(test::FindText(surface.Overlay(), "Avg 8  U k=2  by Through"), nullptr);
}

TEST_F(BandGraphs, AreInReadOuts) {
  const CanvasPoint at = (Draw(), graphs.Trace(0, kDataTrace).Pixel[11]);
  EXPECT_EQ(ReadOutAt(graphs, 50, at), "CH1  302.7000 MHz\n-20.00 \xC2\xB1 0.92 dB");
  graphs.View.Uncertainty = false;
  EXPECT_EQ(ReadOutAt(graphs, 50, at), "CH1  302.7000 MHz\n-20.000 dB");
}

TEST_F(BandGraphs, AreInTheMarkerTableButNotOfFixedAndStoredMarkers) {
  session->Display.MarkersOn = true;
  session->Markers.Set(0) = {true, false, true, 10};
  graphs.RedrawAll(false);
  EXPECT_NE(test::FindText(surface.Overlay(), "-20.00 \xC2\xB1 0.92 dB"), nullptr);
  Marker marker = session->Markers.Of(0, 0);
  marker.State = MarkerState::Fixed;
  EXPECT_EQ(graphs.ValueText(0, marker, 50), "-20.000 dB");
  marker.State = MarkerState::Shown;
  marker.Trace = MarkerTrace::Memory;
  EXPECT_EQ(graphs.ValueText(0, marker, 50), "-20.000 dB");
}

// The picture beside a docked page: 440 pixels leave 66 for the column of the table.
TEST_F(BandGraphs, StandBelowTheValueInLettersOfTheSameSizeWhereTheTableIsNarrow) {
  test::RecordingSurface narrow({440, 400});
  Graphs small{*session, narrow};
  small.Bands = &source;
  small.View.Uncertainty = true;
  session->Display.MarkersOn = true;
  session->Markers.Set(0) = {true, false, true, 10};
  small.RedrawAll(false);
  for (int i = 1; i <= session->Plan.NumPoints; ++i) small.PlotPoint(1, i, -20, 0);
  small.RedrawAll(false);
  EXPECT_EQ(test::FindText(narrow.Overlay(), "-20.00 \xC2\xB1 0.92 dB"), nullptr);
  const Drawn* value = test::FindText(narrow.Overlay(), "-20.00");
  const Drawn* band = test::FindText(narrow.Overlay(), "\xC2\xB1 0.92 dB");
  ASSERT_NE(value, nullptr);
  ASSERT_NE(band, nullptr);
  EXPECT_EQ(band->FontSize, value->FontSize);
  EXPECT_EQ(band->Points[0].y, value->Points[0].y + value->FontSize);
}

TEST_F(BandGraphs, ReadAnImpedanceWithItsBandOnASmithChart) {
  Channel(1).GraphType = GraphType::Smith;
  for (int i = 1; i <= 101; ++i) graphs.PlotPoint(1, i, 0.2, 0);
  source.Uncertain = Region{{0.2, 0}, 0.008};
  Draw();
  Marker marker;
  marker.Point = 5;
  marker.Value = 0.2;
  // 2 Zo U / |1 - S|^2
  EXPECT_EQ(graphs.ValueText(0, marker, 50), "75.0,  0.0 j  \xC2\xB1 1.2");
  Channel(1).Grid = ChartGrid::Admittance;
  Draw();
  // 1000 * 2 U / (Zo |1 + S|^2)
  EXPECT_EQ(graphs.ValueText(0, marker, 50), "13.33,  0.00 j mS  \xC2\xB1 0.22");
}

}  // namespace
}  // namespace qk
