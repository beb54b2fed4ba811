// SPDX-License-Identifier: MIT
// The plot of the power tests: round ticks, and the places of the texts.
#include "display/power_plot.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "support/recording_canvas.h"

namespace qk::test {
namespace {

TEST(RoundTicks, AreMultiplesOf1Or2Or5) {
  EXPECT_EQ(RoundTicks(-22, 1, 12).Values,
            (std::vector<double>{-22, -20, -18, -16, -14, -12, -10, -8, -6, -4, -2, 0}));
  EXPECT_EQ(RoundTicks(-22, 1, 6).Values, (std::vector<double>{-20, -15, -10, -5, 0}));
  EXPECT_EQ(RoundTicks(-22, 1, 3).Values, (std::vector<double>{-20, -10, 0}));
  EXPECT_EQ(RoundTicks(0, 100, 3).Values, (std::vector<double>{0, 50, 100}));
}

TEST(RoundTicks, SayHowManyDecimalsTheirLabelsNeed) {
  const Ticks ticks = RoundTicks(-0.5, 0.5, 6);
  EXPECT_EQ(ticks.Values.size(), 5u);
  EXPECT_NEAR(ticks.Values.front(), -0.4, 1e-12);
  EXPECT_EQ(ticks.Decimals, 1);
  EXPECT_EQ(RoundTicks(0, 0.03, 4).Decimals, 2);
  EXPECT_EQ(RoundTicks(0, 30, 4).Decimals, 0);
}

TEST(RoundTicks, LieInsideAndAreNeverMoreThanAsked) {
  for (const double low : {-1e6, -21.7, -0.5, 0.0, 3e-4})
    for (const double length : {1e-3, 0.7, 1.0, 23.0, 5e5})
      for (const int most : {1, 2, 5, 11}) {
        const Ticks ticks = RoundTicks(low, low + length, most);
        EXPECT_LE(ticks.Values.size(), static_cast<std::size_t>(most));
        for (const double value : ticks.Values) {
          EXPECT_GE(value, low - 1e-6 * length);
          EXPECT_LE(value, low + length * (1 + 1e-6));
        }
      }
}

TEST(RoundTicks, AnAxisWithoutLengthHasNone) {
  const double none = std::numeric_limits<double>::quiet_NaN();
  EXPECT_TRUE(RoundTicks(1, 1, 5).Values.empty());
  EXPECT_TRUE(RoundTicks(2, 1, 5).Values.empty());
  EXPECT_TRUE(RoundTicks(none, 1, 5).Values.empty());
  EXPECT_TRUE(RoundTicks(0, std::numeric_limits<double>::infinity(), 5).Values.empty());
}

PowerPlot Sample() {
  PowerPlot plot;
  plot.Title = "Lot 7";
  plot.XLabel = "Pin (dBm)";
  plot.YLabel = "(dB/dBm)";
  plot.Range = {-22, 1, -11, 21};
  plot.Curves = {{.Name = "Gain", .Colour = 0x0000FF, .X = {-20, 0}, .Y = {10, 9}},
                 {.Name = "Pout", .Colour = 0xFF0000, .X = {-20, 0}, .Y = {-10, 9}}};
  return plot;
}

bool Says(const RecordingCanvas& canvas, std::string_view text) {
  return FindText(canvas.Items, text) != nullptr;
}

TEST(PowerPlot, MarksAPointThatIsDoubtfulWithAQuestionMarkBesideIt) {
  PowerPlot plot = Sample();
  RecordingCanvas canvas({560, 400});
  DrawPowerPlot(canvas, plot);
  EXPECT_EQ(FindText(canvas.Items, "?"), nullptr);
  plot.Curves[0].Doubtful = {false, true};
  plot.Curves[0].Y = {10, 21};  // at the top of the frame, where nothing fits above it
  RecordingCanvas marked({560, 400});
  DrawPowerPlot(marked, plot);
  const auto* mark = FindText(marked.Items, "?");
  ASSERT_NE(mark, nullptr);
  EXPECT_EQ(std::ranges::count_if(marked.Items, [](const auto& item) { return item.Text == "?"; }),
            1);
  EXPECT_GT(mark->Points[0].x, 500);
  EXPECT_GT(mark->Points[0].y, 20);
  EXPECT_LT(mark->Points[0].y, 60);
}

TEST(PowerPlot, SaysTitleLabelsNamesAndTicks) {
  RecordingCanvas canvas({560, 400});
  DrawPowerPlot(canvas, Sample());
  for (const char* text : {"Lot 7", "Pin (dBm)", "(dB/dBm)", "Gain", "Pout", "-20", "0", "10"})
    EXPECT_TRUE(Says(canvas, text)) << text;
}

TEST(PowerPlot, ManyNamesTakeMoreLinesInsideThePicture) {
  RecordingCanvas canvas({420, 240});
  PowerPlot plot{"T", "MHz", "dB", {0, 1, 0, 1}, {}};
  for (const char* name : {"Directivity", "Source match", "Reflection tracking", "Load match",
                           "Transmission tracking", "Isolation"}) {
    PlotCurve curve{name, 0, {0, 1}, {0, 1}};
    curve.Marks = false;
    plot.Curves.push_back(curve);
  }
  DrawPowerPlot(canvas, plot);
  std::vector<int> rows;
  for (const PlotCurve& curve : plot.Curves) {
    const Drawn* name = FindText(canvas.Items, curve.Name);
    ASSERT_NE(name, nullptr);
    EXPECT_GE(name->Points[0].x, 0) << curve.Name;
    if (std::ranges::find(rows, name->Points[0].y) == rows.end()) rows.push_back(name->Points[0].y);
  }
  EXPECT_EQ(rows.size(), 2u);
  const auto frames = OfKind(canvas.Items, Drawn::Kind::Rectangle);
  ASSERT_EQ(frames.size(), 1u);
  for (const int y : rows) EXPECT_LT(y, frames[0].Points[0].y);
  EXPECT_EQ(OfKind(canvas.Items, Drawn::Kind::Fill).size(), 1u) << "the paper, no marks";
}

TEST(PowerPlot, OneCurveNeedsNoName) {
  RecordingCanvas canvas({560, 400});
  PowerPlot plot = Sample();
  plot.Curves.pop_back();
  DrawPowerPlot(canvas, plot);
  EXPECT_FALSE(Says(canvas, "Gain"));
}

// Everything drawn inside the area; curves in their colours inside the frame.
void ExpectInside(const PowerPlot& plot, Extent area) {
  RecordingCanvas canvas(area);
  DrawPowerPlot(canvas, plot);
  const auto frames = OfKind(canvas.Items, Drawn::Kind::Rectangle);
  ASSERT_EQ(frames.size(), 1u) << area.width;
  const CanvasPoint topLeft = frames[0].Points[0], bottomRight = frames[0].Points[1];
  int lines = 0;
  for (const Drawn& line : OfKind(canvas.Items, Drawn::Kind::Line)) {
    if (line.Colour != 0x0000FF && line.Colour != 0xFF0000) continue;
    if (line.Points[0].y < topLeft.y) continue;  // the names' strokes above the frame
    ++lines;
    for (const CanvasPoint p : line.Points) {
      EXPECT_TRUE(p.x >= topLeft.x && p.x <= bottomRight.x) << p.x;
      EXPECT_TRUE(p.y >= topLeft.y && p.y <= bottomRight.y) << p.y;
    }
  }
  EXPECT_GT(lines, 0);
  for (const Drawn& text : OfKind(canvas.Items, Drawn::Kind::Text)) {
    EXPECT_GE(text.Points[0].x, 0) << text.Text;
    EXPECT_GE(text.Points[0].y, 0) << text.Text;
    EXPECT_LE(text.Points[0].y + text.FontSize, area.height) << text.Text;
  }
}

TEST(PowerPlot, StaysInsideAreasOfEverySizeAndShape) {
  for (const Extent area : {Extent{560, 400}, Extent{280, 200}, Extent{1600, 500},
                            Extent{700, 1400}, Extent{6000, 4000}})
    ExpectInside(Sample(), area);
}

TEST(PowerPlot, CurvesBeyondTheAxesEndAtTheFrame) {
  PowerPlot plot = Sample();
  plot.Curves[0].X = {-60, -10, 40};
  plot.Curves[0].Y = {-400, 5, 1e9};
  ExpectInside(plot, {560, 400});
}

TEST(PowerPlot, ACurveGoesFromCornerToCornerWithItsAxes) {
  PowerPlot plot = Sample();
  plot.Curves = {{.Name = "A", .Colour = 0x0000FF, .X = {-22, 1}, .Y = {-11, 21}}};
  RecordingCanvas canvas({560, 400});
  DrawPowerPlot(canvas, plot);
  const auto frame = OfKind(canvas.Items, Drawn::Kind::Rectangle).at(0);
  bool found = false;
  for (const Drawn& line : OfKind(canvas.Items, Drawn::Kind::Line))
    found =
        found || (line.Colour == 0x0000FF && line.Points[0].x == frame.Points[0].x &&
                  line.Points[0].y == frame.Points[1].y && line.Points[1].x == frame.Points[1].x &&
                  line.Points[1].y == frame.Points[0].y);
  EXPECT_TRUE(found);
}

TEST(PowerPlot, WhatIsNoNumberIsLeftOut) {
  PowerPlot plot = Sample();
  const double none = std::numeric_limits<double>::quiet_NaN();
  plot.Curves = {{.Name = "A", .Colour = 0x0000FF, .X = {-20, -10, none, 0}, .Y = {1, 2, 3, 4}}};
  RecordingCanvas canvas({560, 400});
  DrawPowerPlot(canvas, plot);
  int lines = 0, marks = 0;
  for (const Drawn& item : canvas.Items) {
    if (item.Colour != 0x0000FF) continue;
    lines += item.What == Drawn::Kind::Line ? 1 : 0;
    marks += item.What == Drawn::Kind::Fill ? 1 : 0;
  }
  EXPECT_EQ(lines, 1);
  EXPECT_EQ(marks, 3);
}

TEST(PowerPlot, AnAreaTooSmallForItsTextIsLeftEmpty) {
  RecordingCanvas canvas({20, 20});
  DrawPowerPlot(canvas, Sample());
  EXPECT_TRUE(OfKind(canvas.Items, Drawn::Kind::Rectangle).empty());
}

}  // namespace
}  // namespace qk::test
