// SPDX-License-Identifier: MIT
// The remarks next to the title of a graph, and the result of a limit test as a badge.
#include "display/remarks.h"

#include <algorithm>
#include <cmath>

#include "core/text.h"
#include "display/fail_mark.h"
#include "display/layout.h"
#include "display/marker_symbol.h"
#include "remarks_fixture.h"
#include "trace/time_domain.h"

namespace qk {
namespace {

using test::Drawn;
using test::FindText;
using test::Remarks;
using test::TextsOf;

using Words = std::vector<std::string>;

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
  EXPECT_EQ(RemarksOf(*session, 1, true), (Words{"Avg 8", "Cal interpolated"}));
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
  EXPECT_EQ(texts[0], "Avg 16  Plane 1234.5 mm ...");
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

}  // namespace
}  // namespace qk
