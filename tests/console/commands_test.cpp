// SPDX-License-Identifier: MIT
// Every command and every refusal, over one small window.
#include <gtest/gtest.h>

#include "console_fixture.h"

namespace qk::test {
namespace {

Texts Lines(const Texts& script) {
  ConsoleFixture vna;
  return vna.Run(script);
}

TEST(ConsoleCommands, AreNumberedFromOneAndBlankLinesAndCommentsAreNotCounted) {
  EXPECT_EQ(Lines({"", "# a comment", "get Panel.Field", "   ", "  # another", "get Panel.Field"}),
            (Texts{"= 7", "ok 1", "= 7", "ok 2"}));
}

TEST(ConsoleCommands, CarriageReturnsAtLineEndsAreLeftOut) {
  EXPECT_EQ(Lines({"set Panel.Field 5\r", "get Panel.Field\r", "\r"}),
            (Texts{"ok 1", "= 5", "ok 2"}));
}

TEST(ConsoleCommands, AnUnknownCommandIsRefusedByName) {
  EXPECT_EQ(Lines({"measure now"}), (Texts{"error 1: no command \"measure\""}));
}

// ---- drop ------------------------------------------------------------------------------------

TEST(ConsoleCommands, DropDragsAFileOntoTheMainWindow) {
  ConsoleFixture vna;
  vna.reach.Drop = [&vna](const std::string& path) { vna.done.push_back("drop " + path); };
  EXPECT_EQ(vna.Run({"drop /tmp/my filter.s2p", "drop"}), (Texts{"ok 1", "error 2: drop FILE"}));
  EXPECT_EQ(vna.done, Texts{"drop /tmp/my filter.s2p"});
}

TEST(ConsoleCommands, DropWithoutAMainWindowIsRefused) {
  EXPECT_EQ(Lines({"drop a.s2p"}), Texts{"error 1: no main window"});
}

// ---- click -----------------------------------------------------------------------------------

TEST(ConsoleCommands, ClickPressesButtonsAndMenuItems) {
  ConsoleFixture vna;
  int clicks = 0;
  vna.form.OnGo = [&clicks] { ++clicks; };
  EXPECT_EQ(vna.Run({"click Panel.Go", "click Panel.Item"}), (Texts{"ok 1", "ok 2"}));
  EXPECT_EQ(clicks, 2);
}

TEST(ConsoleCommands, ClickChoosesAnOption) {
  EXPECT_EQ(Lines({"click Panel.Two", "get Panel.One", "get Panel.Two"}),
            (Texts{"ok 1", "= off", "ok 2", "= on", "ok 3"}));
}

TEST(ConsoleCommands, ClickReportsWhyItCannot) {
  EXPECT_EQ(
      Lines({"click Nowhere.Go", "click Panel.Nothing", "click Panel.Dead", "click Panel.Away",
             "click Other.Go", "click Panel", "click", "click Panel.Go now", "click Panel.Field"}),
      (Texts{"error 1: no window Nowhere", "error 2: no control Nothing in Panel",
             "error 3: Panel.Dead is disabled", "error 4: Panel.Away is hidden",
             "error 5: Other is not shown", "error 6: WINDOW.CONTROL is missing",
             "error 7: click WINDOW.CONTROL", "error 8: click WINDOW.CONTROL",
             "error 9: Panel.Field is a TextField and cannot be clicked"}));
}

// ---- set and get -------------------------------------------------------------------------------

TEST(ConsoleCommands, SetTypesTheRestOfTheLineAsItStands) {
  EXPECT_EQ(
      Lines({"set Panel.Field  3, 5 x ", "get Panel.Field", "set Panel.Field", "get Panel.Field"}),
      (Texts{"ok 1", "=  3, 5 x ", "ok 2", "ok 3", "= ", "ok 4"}));
}

TEST(ConsoleCommands, SetTicksAndClears) {
  EXPECT_EQ(Lines({"set Panel.Tick on", "get Panel.Tick", "set Panel.Tick off", "get Panel.Tick",
                   "set Panel.Two on", "get Panel.One"}),
            (Texts{"ok 1", "= on", "ok 2", "ok 3", "= off", "ok 4", "ok 5", "= off", "ok 6"}));
}

TEST(ConsoleCommands, SetSelectsAListEntryByItsText) {
  EXPECT_EQ(Lines({"set Panel.List 1024 (TD)", "get Panel.List"}),
            (Texts{"ok 1", "= 1024 (TD)", "ok 2"}));
}

TEST(ConsoleCommands, SetReportsWhyItCannot) {
  EXPECT_EQ(Lines({"set Panel.Fixed 3", "set Panel.Tick yes", "set Panel.Two off",
                   "set Panel.List 55", "set Panel.Go on", "set Panel.Told x", "set Panel.Bar 3",
                   "set Nowhere.A 1", "set Panel.B 1", "set Other.Field 1", "set"}),
            (Texts{"error 1: Panel.Fixed is read only", "error 2: Panel.Tick is set on or off",
                   "error 3: Panel.Two is switched off by choosing another option",
                   "error 4: no entry \"55\" in Panel.List",
                   "error 5: Panel.Go is a Button and cannot be set",
                   "error 6: Panel.Told is a Label and cannot be set",
                   "error 7: Panel.Bar is a ProgressBar and cannot be set",
                   "error 8: no window Nowhere", "error 9: no control B in Panel",
                   "error 10: Other is not shown", "error 11: WINDOW.CONTROL is missing"}));
}

TEST(ConsoleCommands, GetReportsTheValueOfAnyKindAndOfHiddenWindows) {
  EXPECT_EQ(Lines({"get Panel.Bar", "get Panel.Told", "get Other.Field", "get Panel.Go"}),
            (Texts{"= 40", "ok 1", "= two\\nlines", "ok 2", "= 7", "ok 3", "= ", "ok 4"}));
}

TEST(ConsoleCommands, GetReportsWhyItCannot) {
  EXPECT_EQ(Lines({"get Nowhere.Go", "get Panel.Nothing", "get", "get Panel.Go x"}),
            (Texts{"error 1: no window Nowhere", "error 2: no control Nothing in Panel",
                   "error 3: get WINDOW.CONTROL", "error 4: get WINDOW.CONTROL"}));
}

TEST(ConsoleCommands, ControlsListsKindStateCaptionAndValue) {
  EXPECT_EQ(
      Lines({"controls Panel"}),
      (Texts{
          "= Go Button enabled shown Go | ", "= Also Button enabled shown Also | ",
          "= Dead Button disabled shown Dead | ", "= Away Button enabled hidden Away | ",
          "= Item MenuItem enabled shown Item | ", "= Field TextField enabled shown Value | 7",
          "= Fixed TextField enabled shown Fixed | ", "= Tick CheckBox enabled shown Tick | off",
          "= One OptionButton enabled shown One | on", "= Two OptionButton enabled shown Two | off",
          "= List ListField enabled shown Choice | 51",
          "= Told Label enabled shown Told | two\\nlines", "= Bar ProgressBar enabled shown  | 40",
          "= PicGraph Picture enabled shown  | ", "= Plot Picture enabled shown  | ", "ok 1"}));
}

TEST(ConsoleCommands, ControlsOfNoWindowAreRefused) {
  EXPECT_EQ(Lines({"controls Nowhere", "controls"}),
            (Texts{"error 1: no window Nowhere", "error 2: controls WINDOW"}));
}

// ---- windows and panels ------------------------------------------------------------------------

TEST(ConsoleCommands, WindowsListsThoseThatAreShown) {
  ConsoleFixture vna;
  vna.form.OnGo = [&vna] { vna.host.Show("Other"); };
  EXPECT_EQ(vna.Run({"windows", "click Panel.Go", "windows", "windows all"}),
            (Texts{"= Panel", "= Form1", "ok 1", "! show Other", "ok 2", "= Panel", "= Other",
                   "= Form1", "ok 3", "error 4: windows takes no arguments"}));
}

TEST(ConsoleCommands, PanelsListsAllSeven) {
  ConsoleFixture vna;
  vna.session->Panels[1] = "SN. 147";
  vna.session->Panels[7] = "7.4925 MHz";
  EXPECT_EQ(vna.Run({"panels", "panels 3"}),
            (Texts{"= 1 SN. 147", "= 2 ", "= 3 ", "= 4 ", "= 5 ", "= 6 ", "= 7 7.4925 MHz", "ok 1",
                   "error 2: panels takes no arguments"}));
}

TEST(ConsoleCommands, CloseIsTheTitleBarOfAWindow) {
  ConsoleFixture vna;
  vna.form.MayClose = false;
  vna.host.Show("Other");
  EXPECT_EQ(vna.Run({"close Other", "close Other", "close Panel", "close Nowhere", "close"}),
            (Texts{"! hide Other", "ok 1", "error 2: Other is not shown",
                   "error 3: Panel has no close control", "error 4: no window Nowhere",
                   "error 5: close WINDOW"}));
}

TEST(ConsoleCommands, CloseOfAWindowThatHidesItselfIsDone) {
  ConsoleFixture vna;
  vna.other.OnClose = [&] { vna.host.Hide("Other"); };
  vna.other.MayClose = false;
  vna.host.Show("Other");
  EXPECT_EQ(vna.Run({"close Other"}), (Texts{"! hide Other", "ok 1"}));
}

TEST(ConsoleCommands, ClosingTheMainWindowEndsTheProcess) {
  ConsoleFixture vna;
  EXPECT_EQ(vna.Run({"close Form1", "panels"}), (Texts{"ok 1"}));
  EXPECT_EQ(vna.exitLine, "! exit 0");
}

TEST(ConsoleCommands, DataIsReadWithThePictureUpToDate) {
  ConsoleFixture vna;
  int caughtUp = 0;
  vna.reach.CatchUp = [&] { ++caughtUp; };
  EXPECT_EQ(vna.Run({"windows", "data markers"}).back(), "ok 2");
  EXPECT_EQ(caughtUp, 1);
}

// ---- picture area ------------------------------------------------------------------------------

TEST(ConsoleCommands, TheMouseGoesToThePictureArea) {
  ConsoleFixture vna;
  EXPECT_EQ(vna.Run({"mouse down left 10 20", "mouse move right 199 99", "mouse up left 0 0"}),
            (Texts{"ok 1", "ok 2", "ok 3"}));
  EXPECT_EQ(vna.done, (Texts{"mouse 0 left 10 20", "mouse 1 right 199 99", "mouse 2 left 0 0"}));
}

TEST(ConsoleCommands, AMouseThatIsNoneIsRefused) {
  ConsoleFixture vna;
  const std::string use = "mouse down|move|up left|right X Y";
  EXPECT_EQ(vna.Run({"mouse", "mouse click left 1 1", "mouse down middle 1 1", "mouse down left 1",
                     "mouse down left 1 y", "mouse down left 200 5", "mouse down left 5 -1"}),
            (Texts{"error 1: " + use, "error 2: " + use, "error 3: " + use, "error 4: " + use,
                   "error 5: " + use, "error 6: outside the picture area of 200 by 100",
                   "error 7: outside the picture area of 200 by 100"}));
  EXPECT_TRUE(vna.done.empty());
}

TEST(ConsoleCommands, ResizeGivesThePictureAreaAnotherSize) {
  ConsoleFixture vna;
  EXPECT_EQ(
      vna.Run({"resize 640 480", "resize 63 480", "resize 640 8193", "resize 640", "resize a b"}),
      (Texts{"ok 1", "error 2: W and H are 64 to 8192 pixels",
             "error 3: W and H are 64 to 8192 pixels", "error 4: resize W H",
             "error 5: resize W H"}));
  EXPECT_EQ(vna.done, (Texts{"resize 640 480"}));
}

TEST(ConsoleCommands, PictureWritesTheFileNamedByTheRestOfTheLine) {
  ConsoleFixture vna;
  EXPECT_EQ(vna.Run({"picture a b.png", "picture bad", "picture"}),
            (Texts{"ok 1", "error 2: no format", "error 3: picture FILE"}));
  EXPECT_EQ(vna.done, (Texts{"picture a b.png", "picture bad"}));
}

TEST(ConsoleCommands, PictureWritesThePlotOfAWindowThatItsFirstWordNames) {
  ConsoleFixture vna;
  EXPECT_EQ(vna.Run({"picture Panel.Plot a b.png", "picture Panel.Plot bad", "picture Panel.Plot",
                     "picture Panel.Field b.png"}),
            (Texts{"ok 1", "error 2: no format", "ok 3", "ok 4"}));
  EXPECT_EQ(vna.done, (Texts{"drawing 56 by 40 a b.png", "drawing 56 by 40 bad",
                             "picture Panel.Plot", "picture Panel.Field b.png"}));
}

TEST(ConsoleCommands, WithoutAPictureAreaItsCommandsAreRefused) {
  ConsoleFixture vna;
  vna.reach.Mouse = nullptr;
  vna.reach.Resize = nullptr;
  vna.reach.WritePicture = nullptr;
  EXPECT_EQ(
      vna.Run({"mouse down left 1 1", "resize 100 100", "picture x.png"}),
      (Texts{"error 1: no picture area", "error 2: no picture area", "error 3: no picture area"}));
}

// ---- bench -------------------------------------------------------------------------------------

TEST(ConsoleCommands, BenchHandsOnTheRestOfTheLineAndReplies) {
  ConsoleFixture vna;
  vna.reach.Bench = [&vna](std::string_view line, std::string& text) {
    vna.done.emplace_back(line);
    text = line == "show" ? "one\ntwo" : line == "bad" ? "no such thing" : "";
    return line != "bad";
  };
  EXPECT_EQ(vna.Run({"bench port1 short", "bench show", "bench bad"}),
            (Texts{"ok 1", "= one", "= two", "ok 2", "error 3: no such thing"}));
  EXPECT_EQ(vna.done, (Texts{"port1 short", "show", "bad"}));
}

TEST(ConsoleCommands, BenchWithoutADemonstrationIsRefused) {
  EXPECT_EQ(Lines({"bench port1 short"}),
            (Texts{"error 1: no bench: the program was not started with --demo"}));
}

// ---- the end -----------------------------------------------------------------------------------

TEST(ConsoleCommands, QuitEndsAtOnceAndWhatFollowsIsNotRead) {
  ConsoleFixture vna;
  EXPECT_EQ(vna.Run({"quit now", "quit", "panels"}),
            (Texts{"error 1: quit takes no arguments", "ok 2"}));
  EXPECT_EQ(vna.exitLine, "! exit 0");
  EXPECT_EQ(vna.code, 0);
}

TEST(ConsoleCommands, TheEndOfTheInputIsAsQuit) {
  ConsoleFixture vna;
  EXPECT_EQ(vna.Run({}), Texts{});
  EXPECT_EQ(vna.exitLine, "! exit 0");
}

}  // namespace
}  // namespace qk::test
