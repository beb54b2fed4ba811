// SPDX-License-Identifier: MIT
// The menu of a graph, and the items of the View menu.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "control/graph_verbs.h"
#include "control/verbs.h"
#include "core/window_names.h"
#include "display/read_out.h"
#include "forms/graph_menu.h"
#include "forms/graph_verbs_fixture.h"
#include "limits/limit_segments.h"
#include "limits/limit_test.h"

namespace qk {
namespace {

using test::GraphVerbs;
using test::Texts;

// What the mouse reads over the badge.
TEST_F(GraphVerbs, TheMenuBeginsWithTheChannelAndTheWorstMargin) {
  const MenuEntry title = program.MenuOf(2).front();
  EXPECT_EQ(title.Caption, "CH2");
  EXPECT_FALSE(title.Enabled);
  EXPECT_FALSE(title.Run);
  EXPECT_EQ(program.MenuOf(1)[1].Caption, "") << "a separator";
  session.Cal.CalS11 = true;
  session.Limits.Of(1).Segments[0] = {"3", "103", "-1", "-3"};
  ASSERT_TRUE(ApplyLimits(session, 1).Ok());
  session.Limits.Enabled = session.Limits.Alarm = session.Limits.Of(1).Show = true;
  Host host = fake.host();
  ShowLimitsAsSwitched(session, host);
  Measure(1, [](int i) { return i == 48 ? -0.5 : -2; });
  program.graphs().View.Remarks = true;
  const std::array<Parameter, 1> measured{Parameter::S11};
  program.graphs().TakeVerdicts(LimitVerdicts(session, measured));
  const MenuEntry line = program.MenuOf(1)[1];
  EXPECT_EQ(line.Caption, "FAIL, worst margin -0.500 dB at 50.0000 MHz");
  EXPECT_FALSE(line.Enabled);
  EXPECT_FALSE(line.Run);
  EXPECT_EQ(program.MenuOf(1)[2].Caption, "") << "a separator";
  EXPECT_EQ(program.MenuOf(2)[2].Word, "parameter") << "without limits";
}

TEST_F(GraphVerbs, TheMenuIsThatOfTheGraphUnderTheHand) {
  const CanvasPoint at = Middle(1);
  const std::vector<MenuEntry> menu = program.MenuAt(at.x, at.y);
  ASSERT_FALSE(menu.empty());
  EXPECT_TRUE(FindEntry(menu, "parameter.S21")->Checked);
  EXPECT_FALSE(FindEntry(menu, "type.Smith")->Enabled) << "a transmission";
  EXPECT_FALSE(FindEntry(menu, "type.TD")->Enabled) << "101 points";
  EXPECT_FALSE(FindEntry(menu, "autoscale")->Enabled) << "no data";
  EXPECT_EQ(FindEntry(menu, "parameter"), nullptr) << "a submenu is no item";
  FindEntry(menu, "parameter.S11")->Run();
  EXPECT_EQ(Channel(2).Parameter, Parameter::S11);
  EXPECT_TRUE(program.MenuAt(1, 1).empty());
}

TEST_F(GraphVerbs, EachItemOfTheMenuWorks) {
  Measure(1, [](int i) { return -0.1 * i; });
  const CanvasPoint at = Middle(0);
  const auto run = [&](const char* word) {
    const std::vector<MenuEntry> menu = program.MenuAt(at.x, at.y);
    const MenuEntry* entry = FindEntry(menu, word);
    ASSERT_NE(entry, nullptr) << word;
    ASSERT_TRUE(entry->Enabled) << word;
    entry->Run();
  };
  run("autoscale");
  EXPECT_DOUBLE_EQ(Channel(1).Scale, 2);
  run("marker");
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 51);
  run("peak");
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 1);
  run("minimum");
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 101);
  run("store");
  EXPECT_TRUE(Channel(1).MemoryValid);
  run("scale");
  EXPECT_TRUE(Window("DisplayPara").Shown);
  run("limits");
  EXPECT_TRUE(Window("NewLimitsSet").Shown);
  EXPECT_EQ(Window("NewLimitsSet").TakeFocusRequest(), "Text1");
  fake.Choices.push_back(folder.Text() + "/x.png");
  run("save");
  EXPECT_EQ(surface.SavedFiles.size(), 1u);
  run("copy");
  EXPECT_EQ(surface.Copies, 1);
  run("type.SWR");
  EXPECT_EQ(Channel(1).GraphType, GraphType::Swr);
  EXPECT_EQ(TakeMessages(), Texts{});
}

// On the flank the nearest point of the trace is not the one straight above or below the mouse.
TEST_F(GraphVerbs, AMarkerHereIsAtThePointOfTheReadOut) {
  session.Display.DisplaySet = DisplaySet::One;
  Channel(1).RefPosition = 0;  // from 0 to -80 dB
  Measure(1, [](int i) { return i <= 50 ? -10.0 : i == 51 ? -45.0 : -80.0; });
  program.graphs().RedrawAll(true);
  const auto put = [&](CanvasPoint at) {
    const std::vector<MenuEntry> menu = program.MenuAt(at.x, at.y);
    FindEntry(menu, "marker")->Run();
    for (int m = kMarkers - 1; m >= 0; --m)
      if (session.Markers.Set(m).IsActive) return static_cast<int>(session.Markers.Of(0, m).Point);
    return 0;
  };
  const auto pixel = [&](int i) {
    return program.graphs().Trace(0, kDataTrace).Pixel[static_cast<std::size_t>(i)];
  };
  const CanvasPoint beside{pixel(51).x + (pixel(52).x - pixel(51).x) * 3 / 4, pixel(51).y};
  ASSERT_EQ(program.graphs().PointAt(0, beside), 52);
  const std::optional<std::string> read = ReadOutAt(program.graphs(), 50, beside);
  ASSERT_TRUE(read);
  EXPECT_NE(read->find("53.0000 MHz"), std::string::npos) << *read;
  EXPECT_EQ(put(beside), 51);
  const CanvasPoint away{pixel(53).x, pixel(53).y - 40};
  EXPECT_FALSE(ReadOutAt(program.graphs(), 50, away));
  EXPECT_EQ(put(away), 53) << "away from the trace the axis counts";
}

TEST_F(GraphVerbs, AMarkerUnderTheHandKeepsItsOwnWindow) {
  PutMarker(controller(), 1, 51);
  const Marker& marker = session.Markers.Of(0, 0);
  EXPECT_TRUE(program.MenuAt(marker.X, marker.LabelY).empty());
  program.Mouse(Program::MouseAction::Down, false, marker.X, marker.LabelY);
  EXPECT_TRUE(Window("AdjMarkers").Shown);
}

TEST_F(GraphVerbs, TheMenuKeyOpensThatOfTheActiveChannel) {
  SelectActiveChannel(session, fake, 4);
  EXPECT_TRUE(FindEntry(program.MenuOf(program.ChannelOfMenu()), "parameter.S22")->Checked);
  session.Display.DisplaySet = DisplaySet::OneTwo;
  EXPECT_TRUE(FindEntry(program.MenuOf(program.ChannelOfMenu()), "parameter.S11")->Checked)
      << "4 is not displayed";
}

TEST_F(GraphVerbs, TheViewMenuWorksOnTheActiveChannel) {
  SelectActiveChannel(session, fake, 2);
  Click("Form1.ScaleFiner");
  EXPECT_DOUBLE_EQ(Channel(2).Scale, 5);
  Click("Form1.ScaleCoarser");
  Click("Form1.ScaleCoarser");
  EXPECT_DOUBLE_EQ(Channel(2).Scale, 20);
  Click("Form1.ReferenceUp");
  EXPECT_DOUBLE_EQ(Channel(2).Reference, 20);
  Click("Form1.ReferenceDown");
  EXPECT_DOUBLE_EQ(Channel(2).Reference, 0);
  EXPECT_EQ(Value("Form1.AxisNumbers"), "off");
  Click("Form1.AxisNumbers");
  EXPECT_EQ(Value("Form1.AxisNumbers"), "on");
  EXPECT_TRUE(program.graphs().View.AxisNumbers);
  Click("Form1.Remarks");
  EXPECT_TRUE(program.graphs().View.Remarks);
  Click("Form1.Remarks");
  EXPECT_FALSE(program.graphs().View.Remarks);
}

}  // namespace
}  // namespace qk
