// SPDX-License-Identifier: MIT
#include "display/label.h"

#include <gtest/gtest.h>

#include "display/layout.h"
#include "graphs_fixture.h"

namespace qk {
namespace {

using test::Drawn;

class Label : public test::GraphsFixture {
 protected:
  Label() {
    session->Panels[3] = "12 Term Cal";
    session->Panels[4] = "P1 Level: 0dBm";
    session->Panels[5] = "Temp 25.0 degC";
  }
  std::string Composed(bool status, bool date) {
    session->Label.Status = status;
    session->Label.Date = date;
    return ComposeLabel(*session, "Filter", "2026-11-21");
  }
  using Five = std::array<std::string, 5>;
};

TEST_F(Label, IsTheBareTextWithNeitherDateNorStatus) {
  EXPECT_EQ(Composed(false, false), "Filter");
}

TEST_F(Label, CarriesStatusAndDateInBrackets) {
  EXPECT_EQ(Composed(true, false), "Filter  (12 Term Cal  P1 Level: 0dBm  Temp 25.0 degC)");
  EXPECT_EQ(Composed(false, true), "Filter  (2026-11-21)");
  EXPECT_EQ(Composed(true, true),
            "Filter  (12 Term Cal  P1 Level: 0dBm  Temp 25.0 degC  2026-11-21)");
}

TEST_F(Label, TheFiveTextsAreABlankEachAtFirst) {
  EXPECT_EQ(session->Label.GraphicsLabels, (Five{" ", " ", " ", " ", " "}));
}

TEST_F(Label, ANewTextGoesToTheFrontAndTheOldestFallsOff) {
  for (const char* text : {"a", "b", "c", "d", "e"}) RememberLabel(session->Label, text);
  EXPECT_EQ(session->Label.GraphicsLabels, (Five{"e", "d", "c", "b", "a"}));
  RememberLabel(session->Label, "f");
  EXPECT_EQ(session->Label.GraphicsLabels, (Five{"f", "e", "d", "c", "b"}));
}

TEST_F(Label, ATextThatIsThereAlreadyMovesToTheFront) {
  session->Label.GraphicsLabels = {"e", "d", "c", "b", "a"};
  RememberLabel(session->Label, "c");
  EXPECT_EQ(session->Label.GraphicsLabels, (Five{"c", "e", "d", "b", "a"}));
  RememberLabel(session->Label, "c");
  EXPECT_EQ(session->Label.GraphicsLabels, (Five{"c", "e", "d", "b", "a"}));
}

TEST_F(Label, StandsByTheLastGraphOrTheWholeArea) {
  // All graphs, no table: the last graph is 444 wide. "XX" is 12 by 10.
  const struct {
    DisplaySet Set;
    bool Table;
    int Width;
    int X;
  } cases[] = {{DisplaySet::All, false, 444, 238},  // 244.2 - 6
               {DisplaySet::All, true, 1000, 198},
               {DisplaySet::One, false, 926, 401},  // 407.44 - 6
               {DisplaySet::OneTwo, true, 1000, 409}};
  for (const auto& c : cases) {
    const CanvasPoint at = LabelAt(c.Set, c.Table, c.Width, {12, 10});
    EXPECT_EQ(at.x, c.X);
    EXPECT_EQ(at.y, 1);
    session->Display.DisplaySet = c.Set;
    session->Display.MarkersOn = c.Table;
    graphs.RedrawAll(true);
    graphs.DrawGraphicsLabel("XX");
    const Drawn* drawn = test::FindText(surface.Overlay(), "XX");
    ASSERT_NE(drawn, nullptr);
    EXPECT_EQ(drawn->Points[0].x, c.X);
    EXPECT_EQ(drawn->Points[0].y, 1);
    EXPECT_EQ(drawn->Colour, session->Colour.TextColour);
  }
}

TEST_F(Label, ThatIsTooLongForItsPlaceBeginsAtTheLeftEdgeSoThatNothingIsCut) {
  EXPECT_EQ(LabelAt(DisplaySet::All, true, 1000, {450, 10}).x, 0);
  EXPECT_EQ(LabelAt(DisplaySet::All, false, 444, {480, 10}).x, 4);
  EXPECT_EQ(LabelAt(DisplaySet::All, false, 444, {600, 10}).x, 0);
}

TEST_F(Label, StandsBesideTheTitlesThatItWouldCover) {
  const Rect titles[] = {{20, 5, 120, 15}, {520, 5, 620, 15}, {20, 300, 120, 310}};
  const auto x = [&](int at, int width, int y = 1) {
    return ClearOf(titles, {at, y}, {width, 10}, 5, 0, 1000).x;
  };
  EXPECT_EQ(x(200, 100), 200) << "clear as it is";
  EXPECT_EQ(x(110, 100), 125) << "to the right";
  EXPECT_EQ(x(450, 100), 415) << "to the left, which is nearer";
  EXPECT_EQ(x(110, 400), 110) << "no room between them, nor behind the second";
  EXPECT_EQ(x(600, 100), 625) << "behind the second";
  EXPECT_EQ(x(110, 100, 100), 110) << "a line of its own";
}

TEST_F(Label, KeepsClearOfATitleInASmallPicture) {
  surface.canvas().Resize({420, 200});
  graphs.RedrawAll(true);
  graphs.DrawGraphicsLabel("a label of this length over the graph");
  const Drawn* label = test::FindText(surface.Overlay(), "a label of this length over the graph");
  const Drawn* title = test::FindText(surface.Background(), "S11 LogMag");
  ASSERT_NE(label, nullptr);
  ASSERT_NE(title, nullptr);
  EXPECT_GE(label->Points[0].x, title->Points[0].x + 60);
}

TEST_F(Label, StandsOverTheNewestTraceAlsoWhereItsDrawingWasPutOff) {
  graphs.RedrawAll(true);
  surface.PutsOff = true;
  Sweep(1, 10);
  graphs.LiveChanged();
  const int now = graphs.Trace(0, kDataTrace).Pixel[1].y;
  ASSERT_NE(FlatAt(Traces(surface.Overlay(), kData).at(0)), now);
  graphs.DrawGraphicsLabel("XX");
  EXPECT_NE(test::FindText(surface.Overlay(), "XX"), nullptr);
  EXPECT_EQ(FlatAt(Traces(surface.Overlay(), kData).at(0)), now);
}

TEST_F(Label, GoesWithTheNextRedraw) {
  graphs.RedrawAll(true);
  graphs.DrawGraphicsLabel("XX");
  EXPECT_EQ(test::FindText(surface.Background(), "XX"), nullptr);
  graphs.RedrawAll(true);
  EXPECT_EQ(test::FindText(surface.Overlay(), "XX"), nullptr);
}

// ---- the picture on another canvas -------------------------------------------------------------

// What is drawn, for comparison: kind, points, colour, text.
std::vector<std::string> Lines(const std::vector<Drawn>& items) {
  std::vector<std::string> lines;
  for (const Drawn& item : items) {
    std::string line = std::to_string(static_cast<int>(item.What)) + " " +
                       std::to_string(item.Colour) + " " + item.Text + " " +
                       (item.What == Drawn::Kind::Text ? std::to_string(item.FontSize) : "");
    for (const CanvasPoint p : item.Points)
      line += " " + std::to_string(p.x) + "," + std::to_string(p.y);
    lines.push_back(line);
  }
  return lines;
}

TEST_F(Label, PaintDrawsThePictureAsItStandsAndChangesNothing) {
  session->Display.DisplaySet = DisplaySet::All;
  session->Display.DisplayMode = DisplayMode::DataAndMemory;
  session->Display.MarkersOn = true;
  session->Impedance.ZoConvertOn = true;
  session->Markers.Set(0) = {true, true, false, 5};
  session->Markers.Set(1) = {true, false, true, 9};
  session->Display.ShowLimits = Channel(2).LimitsOn = true;
  Channel(3).GraphType = GraphType::LinMag;
  Channel(4).GraphType = GraphType::Smith;
  StoreMemory(1, {0.5, 0});
  graphs.RedrawAll(true);
  for (int n = 1; n <= 4; ++n) Sweep(n, n * 3);
  graphs.RedrawAll(false);
  ToggleFixed(session->Markers);
  Sweep(1, -7);
  graphs.Wipe();
  graphs.DrawOverlay();
  std::vector<std::string> onScreen = Lines(surface.Background());
  for (const std::string& line : Lines(surface.Overlay())) onScreen.push_back(line);
  test::RecordingCanvas canvas(surface.canvas().Size());
  graphs.Paint(canvas, "");
  // The stored traces are drawn once on paper, and once more on the screen with the limits.
  std::sort(onScreen.begin(), onScreen.end());
  onScreen.erase(std::unique(onScreen.begin(), onScreen.end()), onScreen.end());
  auto painted = Lines(canvas.Items);
  std::sort(painted.begin(), painted.end());
  painted.erase(std::unique(painted.begin(), painted.end()), painted.end());
  EXPECT_EQ(painted, onScreen);
  EXPECT_EQ(session->Markers.Of(0, 0).State, MarkerState::Fixed);
  EXPECT_EQ(session->Markers.Of(0, 0).Value, 3);
  graphs.Paint(canvas, "XX");
  EXPECT_NE(test::FindText(canvas.Items, "XX"), nullptr);
}

}  // namespace
}  // namespace qk
