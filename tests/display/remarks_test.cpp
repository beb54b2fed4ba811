// SPDX-License-Identifier: MIT
// Remarks on a trace beside the title of its graph; numbers at the axes.
#include "display/remarks.h"
#include "core/text.h"

#include <algorithm>
#include <cmath>

#include "display/fail_mark.h"
#include "display/layout.h"
#include "display/marker_symbol.h"
#include "graphs_fixture.h"
#include "trace/time_domain.h"

namespace qk {
namespace {

using test::Drawn;
using test::FindText;
using test::TextsOf;

using Words = std::vector<std::string>;

class Remarks : public test::GraphsFixture {
 protected:
  Remarks() {
    session->Cal.CalS11 = true;
    graphs.View = {.AxisNumbers = false, .Remarks = true};
  }
  bool Drawn(const char* text) { return FindText(surface.Overlay(), text) != nullptr; }
  // Limits of -10 to 10 on channel 1, tested with this outcome.
  void Tested(const LimitVerdict& verdict) {
    Channel(1).UpperLimit.fill(10);
    Channel(1).LowerLimit.fill(-10);
    Channel(1).LimitsOn = session->Display.ShowLimits = session->Display.LimitAlarmOn = true;
    std::array<LimitVerdict, 4> verdicts{};
    verdicts[0] = verdict;
    Sweep(1, 0);
    graphs.TakeVerdicts(verdicts);
  }
};

TEST_F(Remarks, EachThingThatWasDoneHasAWord) {
  EXPECT_EQ(RemarksOf(*session, 1, true), Words{});
  session->Averaging.Averages = 8;
  session->Averaging.SmoothOn = true;
  session->Averaging.SmoothingPercent = 5;
  session->Display.DisplayMode = DisplayMode::MemoryMath;
  session->Display.MemoryFunction = MemoryFunction::Divide;
  Channel(1).MemoryValid = true;
  session->Planes.PlaneS11 = 0.012f;
  session->Impedance.DeEmbedOn = session->Impedance.ZoConvertOn = true;
  session->Impedance.SystemZo = 75;
  EXPECT_EQ(RemarksOf(*session, 1, true),
            (Words{"Avg 8", "Smo 5 %", "D/M", "Plane 12.0 mm", "De-embedded", "Zo 75"}));
  EXPECT_EQ(RemarksOf(*session, 2, false),
            (Words{"not measured", "Avg 8", "Smo 5 %", "De-embedded", "Zo 75"}))
      << "no memory of its own, and a plane of another parameter";
  session->Display.MemoryFunction = MemoryFunction::Subtract;
  EXPECT_EQ(RemarksOf(*session, 1, true)[2], "D-M");
  session->Display.DisplayMode = DisplayMode::DataAndMemory;
  EXPECT_EQ(RemarksOf(*session, 1, true)[2], "Plane 12.0 mm") << "shown beside, not computed with";
}

TEST_F(Remarks, AnInterpolatedCalibrationIsSaidAndWithoutOneNothing) {
  session->Averaging.Averages = 8;
  session->Cal = {};
  session->Cal.CalInterpolated = true;
  EXPECT_EQ(RemarksOf(*session, 1, true), Words{"Avg 8"}) << "UNCAL";
  session->Cal.CalS11 = true;
  EXPECT_EQ(RemarksOf(*session, 1, true), (Words{"Cal interpolated", "Avg 8"}));
  session->Cal.CalInterpolated = false;
  EXPECT_EQ(RemarksOf(*session, 1, true), Words{"Avg 8"});
}

// Display Set Up keeps the limits of another quantity: the graph says what they are for.
TEST_F(Remarks, SayWhatLimitsAreForWhereTheGraphShowsSomethingElse) {
  ChannelLimits& limits = session->Limits.Of(1);
  limits.ForParameter = Parameter::S22;
  limits.ForType = GraphType::Swr;
  limits.ForUnits = Unit::U;
  EXPECT_EQ(RemarksOf(*session, 1, true), Words{}) << "they are not shown";
  Channel(1).LimitsOn = session->Display.ShowLimits = true;
  session->Averaging.Averages = 8;
  const Words warned{"Limits for S22 SWR in U", "Avg 8"};
  EXPECT_EQ(RemarksOf(*session, 1, true), warned) << "first, because the rest may not fit";
  EXPECT_EQ(RemarksOf(*session, 2, true), Words{"Avg 8"});
  limits.ForType = Channel(1).GraphType;
  limits.ForUnits = Channel(1).Units;
  EXPECT_EQ(RemarksOf(*session, 1, true)[0], "Limits for S22 LogMag in dB") << "of S11";
  limits.ForParameter = Channel(1).Parameter;
  EXPECT_EQ(RemarksOf(*session, 1, true), Words{"Avg 8"}) << "they suit";
  limits.ForUnits = Unit::U;
  Channel(1).GraphType = GraphType::Smith;
  EXPECT_EQ(RemarksOf(*session, 1, true), Words{"Avg 8"}) << "a chart shows none";
}

TEST_F(Remarks, StandBesideTheTitleInTheLiveLayer) {
  Sweep(1, -3);
  session->Averaging.Averages = 16;
  graphs.RedrawAll(true);
  const test::Drawn* words = FindText(surface.Overlay(), "Avg 16");
  const test::Drawn* title = FindText(surface.Background(), "S11 LogMag");
  ASSERT_NE(words, nullptr);
  ASSERT_NE(title, nullptr);
  EXPECT_EQ(words->Points[0].y, title->Points[0].y);
  EXPECT_GE(words->Points[0].x, title->Points[0].x + 60);
  // They change with a sweep's end, without a full redraw.
  session->Averaging.Averages = 1;
  graphs.RedrawOverlay();
  EXPECT_FALSE(Drawn("Avg 16"));
}

TEST_F(Remarks, ThatDoNotFitAreLeftOutWhole) {
  surface.canvas().Resize({300, 200});
  Sweep(1, -3);
  session->Averaging.Averages = 16;
  session->Impedance.DeEmbedOn = true;
  session->Planes.PlaneS11 = 1.2345f;
  graphs.RedrawAll(true);
  const Words texts = TextsOf(surface.Overlay());
  ASSERT_EQ(texts.size(), 1u);
  EXPECT_EQ(texts[0], "Avg 16  Plane 1234.5 mm");
}

TEST_F(Remarks, AreOffUnlessSwitchedOn) {
  graphs.View.Remarks = false;
  session->Averaging.Averages = 16;
  Tested({true, false, -3, 7});
  graphs.RedrawAll(true);
  EXPECT_EQ(TextsOf(surface.Overlay()), Words{});
  for (const test::Drawn& item : surface.Overlay()) EXPECT_NE(item.Colour, kFailColour);
}

TEST_F(Remarks, WhatIsNotMeasuredIsGreyAndSaysSo) {
  session->Display.DisplaySet = DisplaySet::OneTwo;
  graphs.RedrawAll(true);
  EXPECT_EQ(Traces(surface.Overlay(), kNotMeasuredColour).size(), 2u) << "before the first sweep";
  Sweep(1, -3);
  graphs.RedrawAll(true);
  EXPECT_EQ(Traces(surface.Overlay(), kData).size(), 1u) << "S11, which the sweep measures";
  EXPECT_EQ(Traces(surface.Overlay(), kNotMeasuredColour).size(), 1u) << "S21";
  EXPECT_TRUE(Drawn("not measured"));
  session->Cal.CalS11 = false;
  session->Cal.Cal12Term = true;
  graphs.RedrawOverlay();
  EXPECT_EQ(Traces(surface.Overlay(), kData).size(), 1u) << "the next sweep measures S21";
  Sweep(2, -3);
  graphs.RedrawOverlay();
  EXPECT_EQ(Traces(surface.Overlay(), kData).size(), 2u);
  EXPECT_FALSE(Drawn("not measured"));
}

TEST_F(Remarks, ReadOutsOfAParameterThatTheSweepBroughtUnseenAreValues) {
  session->Cal = {};
  session->Cal.Cal12Term = true;
  graphs.RedrawAll(true);
  Sweep(1, -3);  // channel 1 shows S11; the sweep brings all four
  Channel(1).Parameter = Parameter::S22;
  EXPECT_TRUE(graphs.HoldsData(0));
}

TEST_F(Remarks, ReadOutsOfAChannelWithoutDataAreDashes) {
  session->Display.MarkersOn = true;
  session->Markers.Set(0) = {true, false, true, 10};
  graphs.RedrawAll(false);
  EXPECT_TRUE(Drawn("---"));
  Sweep(1, -3);
  graphs.RedrawOverlay();
  EXPECT_FALSE(Drawn("---"));
  EXPECT_TRUE(Drawn("-3.000 dB"));
  graphs.View.Remarks = false;
  graphs.Reset();
  graphs.RedrawAll(false);
  EXPECT_FALSE(Drawn("---")) << "as it is told without remarks";
}

TEST_F(Remarks, AVerdictIsABadgeInTheCorner) {
  Tested({true, true, 1.5, 7});
  graphs.RedrawAll(true);
  EXPECT_TRUE(Drawn("PASS"));
  const auto fills = test::OfKind(surface.Overlay(), test::Drawn::Kind::Fill);
  ASSERT_EQ(fills.size(), 1u);
  EXPECT_EQ(fills[0].Colour, kPassColour);
  EXPECT_LT(fills[0].Points[1].x, graphs.Graph(0).Right);
  EXPECT_GT(fills[0].Points[0].y, graphs.Graph(0).Top);
  Tested({true, false, -1.5, 7});
  graphs.RedrawOverlay();
  EXPECT_TRUE(Drawn("FAIL"));
  EXPECT_EQ(graphs.SpotAt({fills[0].Points[0].x + 2, fills[0].Points[0].y + 2}).Kind,
            Graphs::SpotKind::Badge);
  EXPECT_EQ(VerdictText(*session, 1, graphs.Verdict(0)),
            "FAIL, worst margin -1.500 dB at 182.8200 MHz");
}

TEST_F(Remarks, TheBadgeLeavesRoomForWhatFailsAndForMarkers) {
  const GraphRecord& graph = graphs.Graph(0);
  const auto badge = [this] {
    graphs.RedrawOverlay();
    const auto fills = test::OfKind(surface.Overlay(), test::Drawn::Kind::Fill);
    EXPECT_FALSE(fills.empty());
    const auto& corners = fills.back().Points;
    EXPECT_EQ(graphs.SpotAt({corners[0].x + 1, corners[0].y + 1}).Kind, Graphs::SpotKind::Badge);
    return Rect{corners[0].x, corners[0].y, corners[1].x, corners[1].y};
  };
  Channel(1).Reference = 0;
  Channel(1).RefPosition = 2;
  Channel(1).Scale = 10;
  Tested({true, false, -1.5, 7});
  graphs.RedrawAll(true);
  const Rect corner = badge();
  EXPECT_EQ(corner.right, graph.Right - 4);
  // The last points fail at the upper edge.
  for (int i = 90; i <= 101; ++i) graphs.PlotPoint(1, i, 18, 0);
  const Rect beside = badge();
  const auto pixel = [this](int i) {
    return graphs.Trace(0, kDataTrace).Pixel[static_cast<std::size_t>(i)];
  };
  ASSERT_GT(pixel(95).y, corner.top);
  ASSERT_LT(pixel(95).y, corner.bottom);
  EXPECT_LT(beside.right, pixel(90).x);
  EXPECT_GT(beside.left, graph.Left);
  EXPECT_EQ(beside.top, corner.top);
  // The curl at the last of them reaches higher and wider than the point.
  Sweep(1, 0);
  for (int i = 90; i <= 101; ++i) graphs.PlotPoint(1, i, 16, 0);
  EXPECT_EQ(badge().right, corner.right) << "below the badge";
  session->Limits.LimitFailed = session->Limits.Of(1).Failed = true;
  session->Limits.Of(1).FailPoint = 100;
  const Rect mark = FailMarkBounds(surface.canvas(), pixel(100));
  ASSERT_TRUE(Overlap(mark, corner));
  EXPECT_FALSE(Overlap(mark, badge()));
  session->Limits.LimitFailed = false;
  // A marker there.
  Sweep(1, 0);
  graphs.PlotPoint(1, 98, 16, 0);
  session->Markers.Of(0, 0).State = MarkerState::Active;
  session->Markers.Of(0, 0).Point = 98;
  session->Display.MarkersOn = true;
  graphs.RedrawOverlay();
  const Rect number = MarkerBounds(surface.canvas(), graph, session->Markers.Of(0, 0));
  ASSERT_TRUE(Overlap(number, corner));
  EXPECT_FALSE(Overlap(number, badge()));
  session->Display.MarkersOn = false;
  // No room anywhere: the corner.
  Sweep(1, 18);
  EXPECT_EQ(badge().right, corner.right);
}

TEST_F(Remarks, AVerdictDoesNotOutliveItsSweepNorItsSwitches) {
  Tested({true, false, -1.5, 7});
  graphs.RedrawAll(true);
  ASSERT_TRUE(graphs.HasVerdict(0));
  session->Plan.StartFreq += 1e6;
  EXPECT_FALSE(graphs.HasVerdict(0)) << "another sweep";
  session->Plan.StartFreq -= 1e6;
  session->Display.LimitAlarmOn = false;
  EXPECT_FALSE(graphs.HasVerdict(0));
  session->Display.LimitAlarmOn = true;
  graphs.TakeChannels();
  EXPECT_FALSE(graphs.HasVerdict(0)) << "another session";
}

TEST_F(Remarks, AVerdictGoesWithTheMeasurementOfItsTrace) {
  Tested({true, true, 1.5, 7});
  graphs.RedrawAll(true);
  ASSERT_TRUE(Drawn("PASS"));
  session->Cal.CalS11 = false;
  session->Cal.CalS21 = true;  // another kind of sweep
  graphs.RedrawAll(true);
  EXPECT_TRUE(Drawn("not measured"));
  EXPECT_FALSE(Drawn("PASS"));
  EXPECT_FALSE(graphs.HasVerdict(0));
}

TEST_F(Remarks, AVerdictOnAPartOfTheLimitsSaysSo) {
  std::string untested = "300.0000 to 340.0000 MHz";
  graphs.Untested = [&untested](int graph) { return graph == 0 ? untested : std::string(); };
  Tested({true, true, 1.5, 7});
  graphs.RedrawAll(true);
  const test::Drawn* word = FindText(surface.Overlay(), "PASS (part)");
  ASSERT_NE(word, nullptr);
  const auto fills = test::OfKind(surface.Overlay(), test::Drawn::Kind::Fill);
  ASSERT_EQ(fills.size(), 1u);
  EXPECT_GT(word->Points[0].x, fills[0].Points[0].x);
  EXPECT_LE(word->Points[0].x + surface.canvas().TextExtent("PASS (part)").width,
            fills[0].Points[1].x);
  EXPECT_LT(fills[0].Points[1].x, graphs.Graph(0).Right);
  EXPECT_EQ(graphs.SpotAt({fills[0].Points[0].x + 1, fills[0].Points[0].y + 2}).Kind,
            Graphs::SpotKind::Badge);
  EXPECT_EQ(VerdictText(*session, 1, graphs.Verdict(0), graphs.UntestedText(0)),
            "PASS (part), worst margin 1.500 dB at 182.8200 MHz; not tested: 300.0000 to 340.0000 "
            "MHz");
  EXPECT_EQ(VerdictText(*session, 1, {true, false, -2, 7}, untested).substr(0, 5), "FAIL,");
  untested.clear();
  graphs.RedrawAll(true);
  EXPECT_TRUE(Drawn("PASS"));
}

TEST_F(Remarks, AVerdictOnATimeAxisStandsAtATimeOrADistance) {
  Channel(1).GraphType = GraphType::Td;
  session->TimeDomain.TdT1 = -5;
  session->TimeDomain.TdStep = 0.5;
  EXPECT_EQ(VerdictText(*session, 1, {true, false, -1.5, 31}),
            "FAIL, worst margin -1.500 dB at 10.0000 ns");
  session->TimeDomain.Axis = TimeAxis::Distance;
  session->Plan.StepFreq = 2.997e6;  // the axis is true there
  const std::string metres = VerdictText(*session, 1, {true, false, -1.5, 31});
  const double expected = MetresAt(*session, Parameter::S11, 10);
  EXPECT_EQ(metres,
            "FAIL, worst margin -1.500 dB at " + FormatNumber(expected, "###0.0000") + " m");
  EXPECT_NEAR(expected, 1.5, 0.05) << "there and back";
}

TEST_F(Remarks, EveryFailingPointIsColoured) {
  Tested({true, false, -2, 30});
  graphs.RedrawAll(true);
  for (int i = 1; i <= 101; ++i)
    graphs.PlotPoint(1, i, i >= 30 && i <= 34 ? 12 : i == 50 ? -11 : 10, 0);
  graphs.RedrawOverlay();
  std::vector<test::Drawn> failing;
  for (const test::Drawn& item : surface.Overlay())
    if (item.What == test::Drawn::Kind::Polyline && item.Colour == kFailColour)
      failing.push_back(item);
  ASSERT_EQ(failing.size(), 2u);
  EXPECT_EQ(failing[0].Points.size(), 5u);
  EXPECT_EQ(failing[0].Points[0].x, graphs.Trace(0, kDataTrace).Pixel[30].x);
  EXPECT_EQ(failing[1].Points.size(), 1u) << "a dot";
}

// The number has its own background, at the same place as without.
TEST_F(Remarks, NoTraceRunsThroughTheNumberOfAMarker) {
  session->Display.MarkersOn = true;
  session->Markers.Set(0) = {true, false, true, 50};
  const auto drawn = [&](bool remarks) {
    graphs.View.Remarks = remarks;
    graphs.RedrawAll(false);
    return surface.Overlay();
  };
  const std::vector<test::Drawn> plain = drawn(false), now = drawn(true);
  const test::Drawn* number = FindText(now, " 1");
  ASSERT_NE(number, nullptr);
  EXPECT_EQ(number->Points[0].x, FindText(plain, " 1")->Points[0].x);
  EXPECT_EQ(number->Points[0].y, FindText(plain, " 1")->Points[0].y);
  const auto fill = [&](const std::vector<test::Drawn>& items) {
    return std::ranges::find_if(items, [&](const test::Drawn& item) {
      return item.What == test::Drawn::Kind::Fill && item.Points[1].x > item.Points[0].x &&
             item.Points[1].y < session->Markers.Of(0, 0).Y &&
             item.Points[1].y > number->Points[0].y;
    });
  };
  EXPECT_EQ(fill(plain), plain.end());
  // The whole box of an active marker, before it is drawn.
  ASSERT_NE(fill(now), now.end());
  EXPECT_EQ(fill(now)->Colour, session->Colour.BackColour);
  const auto box = std::find_if(fill(now), now.end(), [](const test::Drawn& item) {
    return item.What == test::Drawn::Kind::Rectangle;
  });
  ASSERT_NE(box, now.end());
  for (std::size_t corner : {0u, 1u}) {
    EXPECT_EQ(box->Points[corner].x, fill(now)->Points[corner].x);
    EXPECT_EQ(box->Points[corner].y, fill(now)->Points[corner].y);
  }
  // The digit of one that is only shown; the first half of its text is a blank.
  session->Markers.Set(0).IsActive = false;
  const std::vector<test::Drawn> shown = drawn(true);
  number = FindText(shown, " 1");
  ASSERT_NE(fill(shown), shown.end());
  const CanvasPoint from = fill(shown)->Points[0], to = fill(shown)->Points[1];
  const int wide = 12 * number->FontSize / 10;
  EXPECT_NEAR(from.x, number->Points[0].x + wide * 0.3, 1.01);
  EXPECT_GE(to.x, number->Points[0].x + wide);
  EXPECT_EQ(from.y, number->Points[0].y);
  EXPECT_EQ(to.y, number->Points[0].y + number->FontSize);
}

// ---- the axes ----------------------------------------------------------------------------------

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
