// SPDX-License-Identifier: MIT
#include "display/frame.h"

#include <gtest/gtest.h>

#include "support/recording_canvas.h"

namespace qk {
namespace {

using test::Drawn;
using test::FindText;
using test::OfKind;
using test::RecordingCanvas;
using Numbers = std::vector<std::pair<int, int>>;

Numbers Of(const std::vector<CanvasPoint>& points) {
  Numbers numbers;
  for (const CanvasPoint p : points) numbers.push_back({p.x, p.y});
  return numbers;
}

class Frame : public testing::Test {
 protected:
  Frame() {
    graph.Left = 37;
    graph.Top = 50;
    graph.Right = 963;
    graph.Bottom = 573;
    graph.RefPosition = 4;
    canvas.SetFontSize(10);
  }
  Numbers At(std::string_view text) {
    const Drawn* item = FindText(canvas.Items, text);
    return item ? Of(item->Points) : Numbers{};
  }

  std::unique_ptr<Session> session = MakeSession();
  ChannelSettings& channel = session->Channel(1);
  GraphRecord graph;
  RecordingCanvas canvas{{1000, 600}};
};

TEST_F(Frame, ScaleAndReferenceReadWithTheirUnits) {
  EXPECT_EQ(ScaleText(channel), "10.0 dB/DIV");
  EXPECT_EQ(ReferenceText(channel), "0.0 dB");
  channel.Units = Unit::MilliU;
  channel.Scale = 0.25;
  channel.Reference = -12.345;
  EXPECT_EQ(ScaleText(channel), "0.25 mU/DIV");
  EXPECT_EQ(ReferenceText(channel), "-12.35 mU");
}

TEST_F(Frame, HugeScalesAndReferencesAreShownInTheEForm) {
  channel.Units = Unit::Db;
  channel.Scale = 3e38;
  channel.Reference = -1e308;
  EXPECT_EQ(ScaleText(channel), "3.0E+38 dB/DIV");
  EXPECT_EQ(ReferenceText(channel), "-1.0E+308 dB");
  channel.Scale = 1e9;
  channel.Reference = -999999999.94;
  EXPECT_EQ(ScaleText(channel), "1.0E+09 dB/DIV");
  EXPECT_EQ(ReferenceText(channel), "-999999999.94 dB");
}

TEST_F(Frame, TheTitleNamesParameterAndGraphType) {
  EXPECT_EQ(TitleText(channel, session->TimeDomain), "S11 LogMag");
  channel.Parameter = Parameter::S21;
  channel.GraphType = GraphType::GroupDelay;
  EXPECT_EQ(TitleText(channel, session->TimeDomain), "S21 Group Delay");
  channel.Parameter = Parameter::S22;
  channel.GraphType = GraphType::Smith;
  EXPECT_EQ(TitleText(channel, session->TimeDomain), "S22 Reflection Z");
}

// Intentional: no blank between parameter and "TD (".
TEST_F(Frame, TheTitleOfATimeDomainChannelNamesItsWindow) {
  channel.GraphType = GraphType::Td;
  TimeDomainState& td = session->TimeDomain;
  EXPECT_EQ(TitleText(channel, td), "S11TD (Rect)");
  td.TdWindow = TdWindow::RaisedCos;
  EXPECT_EQ(TitleText(channel, td), "S11TD (Hann)");
  td.TdWindow = TdWindow::KaiserB;
  td.TdKaiserOrder = 7;
  EXPECT_EQ(TitleText(channel, td), "S11TD (KB  7)");
}

TEST_F(Frame, StartAndStopReadInMegahertzOrNanoseconds) {
  EXPECT_EQ(StartText(*session, graph), "3.0000 MHz");
  EXPECT_EQ(StopText(*session, graph), "3000.0000 MHz");
  session->Plan.StartFreq = 10.00005e6;
  EXPECT_EQ(StartText(*session, graph), "10.0001 MHz");
  graph.IsTime = true;
  EXPECT_EQ(StartText(*session, graph), "-5.0000 ns");
  EXPECT_EQ(StopText(*session, graph), "161.6670 ns");
}

TEST_F(Frame, TheGridIsTenByEightDivisionsInsideAnOutline) {
  session->Colour.OutlineColour = 0x112233;
  session->Colour.GridColour = 0x445566;
  DrawRectangularFrame(canvas, graph, session->Colour);
  ASSERT_EQ(canvas.Items.size(), 17u);
  const Drawn& outline = canvas.Items[0];
  EXPECT_EQ(outline.What, Drawn::Kind::Rectangle);
  EXPECT_EQ(Of(outline.Points), (Numbers{{37, 50}, {963, 573}}));
  EXPECT_EQ(outline.Colour, 0x112233u);
  EXPECT_EQ(outline.Style, PenStyle::Solid);
  for (std::size_t i = 1; i <= 16; ++i) {
    EXPECT_EQ(canvas.Items[i].What, Drawn::Kind::Line);
    EXPECT_EQ(canvas.Items[i].Colour, 0x445566u);
    EXPECT_EQ(canvas.Items[i].Style, PenStyle::Dotted);
    EXPECT_EQ(canvas.Items[i].Width, 1);
  }
  EXPECT_EQ(Of(canvas.Items[1].Points), (Numbers{{130, 50}, {130, 573}}));  // 129.6
  EXPECT_EQ(Of(canvas.Items[5].Points), (Numbers{{500, 50}, {500, 573}}));
  EXPECT_EQ(Of(canvas.Items[9].Points), (Numbers{{870, 50}, {870, 573}}));   // 870.4
  EXPECT_EQ(Of(canvas.Items[10].Points), (Numbers{{37, 115}, {963, 115}}));  // 115.375
  EXPECT_EQ(Of(canvas.Items[16].Points), (Numbers{{37, 508}, {963, 508}}));  // 507.625
}

TEST_F(Frame, ScaleReferenceAndTheirTrianglesStandAtTheGraph) {
  session->Colour.TextColour = 0xABCDEF;
  DrawReference(canvas, graph, channel, session->Colour);
  const auto triangles = OfKind(canvas.Items, Drawn::Kind::Polyline);
  ASSERT_EQ(triangles.size(), 2u);
  EXPECT_EQ(Of(triangles[0].Points), (Numbers{{37, 42}, {37, 48}, {43, 45}, {37, 42}}));
  EXPECT_EQ(Of(triangles[1].Points), (Numbers{{30, 309}, {30, 315}, {35, 312}, {30, 309}}));
  for (const Drawn& triangle : triangles) {
    EXPECT_EQ(triangle.Colour, 0xABCDEFu);
    EXPECT_EQ(triangle.Style, PenStyle::Solid);
  }
  EXPECT_EQ(At("10.0 dB/DIV"), (Numbers{{897, 40}}));  // 66 pixels wide, ends at the right
  EXPECT_EQ(At("0.0 dB"), (Numbers{{49, 40}}));        // "Re" is 12 pixels wide
  EXPECT_EQ(FindText(canvas.Items, "0.0 dB")->Colour, 0xABCDEFu);
}

TEST_F(Frame, TheReferenceTriangleFollowsTheReferencePosition) {
  graph.RefPosition = 8;
  DrawReference(canvas, graph, channel, session->Colour);
  EXPECT_EQ(OfKind(canvas.Items, Drawn::Kind::Polyline)[1].Points[2].y, 573);
  graph.RefPosition = 0;
  canvas.Items.clear();
  DrawReference(canvas, graph, channel, session->Colour);
  EXPECT_EQ(OfKind(canvas.Items, Drawn::Kind::Polyline)[1].Points[2].y, 50);
}

TEST_F(Frame, TitleStartAndStopStandAtTheRectanglesCorners) {
  DrawGraphText(canvas, graph, channel, *session);
  EXPECT_EQ(At("S11 LogMag"), (Numbers{{37, 29}}));
  EXPECT_EQ(At("3.0000 MHz"), (Numbers{{37, 573}}));
  EXPECT_EQ(At("3000.0000 MHz"), (Numbers{{885, 573}}));
}

TEST_F(Frame, OnASmithChartTheyStandAtTheChart) {
  graph.IsSmith = true;
  channel.GraphType = GraphType::Smith;
  DrawGraphText(canvas, graph, channel, *session);
  // 0.4 * 926 - 0.5 * 523 = 108.9 inside the rectangle.
  EXPECT_EQ(At("S11 Reflection Z"), (Numbers{{146, 29}}));
  EXPECT_EQ(At("3.0000 MHz"), (Numbers{{146, 573}}));
  EXPECT_EQ(At("3000.0000 MHz"), (Numbers{{776, 573}}));
}

TEST_F(Frame, OnANarrowSmithChartTheyBeginInItsMargin) {
  graph.IsSmith = true;
  channel.GraphType = GraphType::Smith;
  graph.Left = 400;
  graph.Right = 600;  // 200 by 523: 0.4 * 200 - 0.5 * 523 would be 181 outside
  DrawGraphText(canvas, graph, channel, *session);
  EXPECT_EQ(At("S11 Reflection Z"), (Numbers{{392, 29}}));
  EXPECT_EQ(At("3.0000 MHz"), (Numbers{{392, 573}}));
  EXPECT_EQ(At("3000.0000 MHz"), (Numbers{{530, 573}}));
}

TEST_F(Frame, TheImpedanceTagStandsInTheUpperRightCorner) {
  session->Impedance.SystemZo = 75;
  DrawZoTag(canvas, *session);
  EXPECT_EQ(At("[Zo=75]"), (Numbers{{954, 1}}));
  session->Impedance.SystemZo = 49.6f;
  EXPECT_EQ(ZoText(session->Impedance), "[Zo=50]");
}

}  // namespace
}  // namespace qk
