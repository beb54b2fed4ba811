// SPDX-License-Identifier: MIT
// "Set Main Display Colours" and "Add Label".
#include "forms/colours_form.h"

#include <gtest/gtest.h>

#include "core/window_names.h"
#include "support/program_fixture.h"

namespace qk {
namespace {

using test::Texts;

struct ColoursWindow : testing::Test, test::ScriptedProgram {
  ColoursWindow() { fake.Show(window::kColours); }
  std::uint32_t Box(const char* name) {
    return At(std::string("Colours.") + name).Swatch.value_or(1);
  }
};

TEST_F(ColoursWindow, ShowsTheSevenColours) {
  EXPECT_EQ(Window("Colours").Caption(), "Set Main Display Colours");
  const std::uint32_t defaults[] = {0xFFFFFF, 0x808080, 0x000080, 0x808000, 0, 0, 0x800000};
  const char* captions[] = {"Background",   "Grid lines",   "Data trace / mkr readout",
                            "Memory trace", "General text", "Outlines",
                            "Limit lines"};
  for (int i = 0; i < 7; ++i) {
    EXPECT_EQ(Box(("Picture" + std::to_string(i + 1)).c_str()), defaults[i]);
    EXPECT_EQ(At("Colours.Label" + std::to_string(i + 1)).Caption, captions[i]);
  }
}

TEST_F(ColoursWindow, EachBoxSetsItsOwnColourAtOnce) {
  std::uint32_t Colours::*const all[] = {
      &Colours::BackColour, &Colours::GridColour,    &Colours::DataColour, &Colours::MemoryColour,
      &Colours::TextColour, &Colours::OutlineColour, &Colours::LimitColour};
  for (int i = 0; i < 7; ++i) {
    session.Colour = {};
    const Colours before;
    fake.Choices.push_back("#12aB3c");
    const int presented = surface.Presented;
    Click("Colours.Picture" + std::to_string(i + 1));
    for (int k = 0; k < 7; ++k)
      EXPECT_EQ(session.Colour.*all[k], k == i ? 0x12AB3Cu : before.*all[k]) << i << " " << k;
    EXPECT_GT(surface.Presented, presented);
  }
}

TEST_F(ColoursWindow, TheDialogOpensOnTheColourThatStands) {
  session.Colour.GridColour = 0x010203;
  fake.Choices.push_back(std::nullopt);
  Click("Colours.Picture2");
  ASSERT_EQ(fake.Dialogs.size(), 1u);
  EXPECT_EQ(fake.Dialogs[0].Kind, DialogKind::Colour);
  EXPECT_EQ(fake.Dialogs[0].Folder, "#010203");
}

TEST_F(ColoursWindow, ACancelledDialogChangesAndSaysNothing) {
  fake.Choices.push_back(std::nullopt);
  Click("Colours.Picture1");
  EXPECT_EQ(session.Colour.BackColour, 0xFFFFFFu);
  EXPECT_TRUE(TakeMessages().empty());
}

TEST_F(ColoursWindow, AnAnswerThatIsNoColourIsReported) {
  for (const char* answer : {"red", "#12", "#GGGGGG", "#1234567", ""}) {
    fake.Choices.push_back(answer);
    Click("Colours.Picture1");
    EXPECT_EQ(TakeMessages(), Texts{"Error|Error 13 selecting color.\nType mismatch|none|ok"});
  }
  EXPECT_EQ(session.Colour.BackColour, 0xFFFFFFu);
}

TEST_F(ColoursWindow, SetDefaultsRestoresThemAll) {
  session.Colour.BackColour = session.Colour.LimitColour = 7;
  Click("Colours.Command1");
  EXPECT_EQ(session.Colour.BackColour, 0xFFFFFFu);
  EXPECT_EQ(session.Colour.LimitColour, 0x800000u);
  EXPECT_EQ(Box("Picture1"), 0xFFFFFFu);
  EXPECT_EQ(surface.Background().at(0).Colour, 0xFFFFFFu);
}

TEST_F(ColoursWindow, TheTickChoosesTheDefaultColoursForPrinting) {
  Window("Colours").Tick("Check1", true);
  EXPECT_TRUE(session.Print.PrintDefaultColours);
  Click("Colours.Command2");
  EXPECT_FALSE(fake.IsShown("Colours"));
}

struct LabelWindow : testing::Test, test::ScriptedProgram {
  LabelWindow() {
    session.Panels[3] = "UNCAL";
    session.Panels[4] = "P1 Level: 0dBm";
    session.Panels[5] = "Temp 25.0 degC";
    fake.Show(window::kLabelGraphics);
  }
  void Add(const char* text) {
    Type("LabelGraphics.LabList", text);
    Click("LabelGraphics.Command1");
  }
};

TEST_F(LabelWindow, AnAddedTextIsThePreviewAndTheFirstOfTheList) {
  EXPECT_EQ(Window("LabelGraphics").Caption(), "Add Label");
  Add("one");
  Add("two");
  EXPECT_EQ(Value("LabelGraphics.Text1"), "two");
  EXPECT_EQ(At("LabelGraphics.LabList").Entries, (Texts{"two", "one", " ", " ", " "}));
  EXPECT_EQ(session.Label.Composed, "two");
}

TEST(LabelList, IsOneOfFiveTextsBeforeItsWindowIsFirstShown) {
  test::ScriptedProgram vna;  // windows are laid out by then
  EXPECT_EQ(vna.At("LabelGraphics.LabList").Entries, Texts(5, " "));
}

TEST_F(LabelWindow, StatusAndDateJoinIt) {
  Window("LabelGraphics").Tick("Check2", true);
  Add("two");
  EXPECT_EQ(Value("LabelGraphics.Text1"), "two  (UNCAL  P1 Level: 0dBm  Temp 25.0 degC)");
  Window("LabelGraphics").Tick("Check2", false);
  Window("LabelGraphics").Tick("Check1", true);
  Add("two");
  EXPECT_EQ(Value("LabelGraphics.Text1"), "two  (" + DateText(program.host().loop.Now()) + ")");
}

TEST_F(LabelWindow, ShowAndExit) {
  Window("LabelGraphics").Tick("Check3", true);
  EXPECT_TRUE(session.Label.Show);
  Click("LabelGraphics.Command2");
  EXPECT_FALSE(fake.IsShown("LabelGraphics"));
}

}  // namespace
}  // namespace qk
