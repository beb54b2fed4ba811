// SPDX-License-Identifier: MIT
// Boxes, nesting, waiting, modal windows, timers and the end, in the order of their lines.
#include <gtest/gtest.h>

#include <stdexcept>

#include "console_fixture.h"

namespace qk::test {
namespace {

// ---- message boxes and dialogs ---------------------------------------------------------------

TEST(ConsoleBoxes, TheBoxIsReportedAndItsCommandClosesAfterTheAnswer) {
  ConsoleFixture vna;
  Answer given = Answer::Ok;
  vna.form.OnGo = [&] {
    given = vna.host.Ask({"Re-Start Program", "Sure?\nReally?", Icon::Question, Buttons::YesNo});
  };
  EXPECT_EQ(vna.Run({"click Panel.Go", "answer yes", "panels"})[0],
            "! message Re-Start Program | Sure?\\nReally? | question | yes/no");
  EXPECT_EQ(vna.output[1], "ok 2");
  EXPECT_EQ(vna.output[2], "ok 1");
  EXPECT_EQ(given, Answer::Yes);
}

TEST(ConsoleBoxes, EveryIconAndEverySetOfButtonsIsReported) {
  ConsoleFixture vna;
  vna.form.OnGo = [&] {
    vna.host.Ask({"A", "a", Icon::None, Buttons::Ok});
    vna.host.Ask({"B", "b", Icon::Information, Buttons::OkCancel});
    vna.host.Ask({"C", "c", Icon::Exclamation, Buttons::RetryCancel});
    vna.host.Ask({"", "d", Icon::Critical, Buttons::YesNo});
  };
  EXPECT_EQ(
      vna.Run({"click Panel.Go", "answer ok", "answer cancel", "answer retry", "answer no"}),
      (Texts{"! message A | a | none | ok", "ok 2", "! message B | b | information | ok/cancel",
             "ok 3", "! message C | c | exclamation | retry/cancel", "ok 4",
             "! message  | d | critical | yes/no", "ok 5", "ok 1"}));
}

TEST(ConsoleBoxes, AnAnswerThatIsNotOfferedLeavesTheBoxUp) {
  ConsoleFixture vna;
  vna.form.OnGo = [&] { vna.host.Ask({"T", "t", Icon::Question, Buttons::RetryCancel}); };
  EXPECT_EQ(
      vna.Run({"click Panel.Go", "answer ok", "answer", "answer retry now", "answer maybe",
               "answer cancel"}),
      (Texts{"! message T | t | question | retry/cancel", "error 2: the box offers retry/cancel",
             "error 3: the box offers retry/cancel", "error 4: the box offers retry/cancel",
             "error 5: the box offers retry/cancel", "ok 6", "ok 1"}));
}

TEST(ConsoleBoxes, AnAnswerWithNothingUpIsRefused) {
  ConsoleFixture vna;
  EXPECT_EQ(vna.Run({"answer ok"}), (Texts{"error 1: no message box or dialog is up"}));
}

TEST(ConsoleBoxes, WhileOneIsUpOnlyAnswerAndTheQueriesAreAccepted) {
  ConsoleFixture vna;
  vna.reach.Bench = [](std::string_view, std::string&) { return true; };
  vna.form.OnGo = [&] { vna.host.Ask({"T", "t", Icon::None, Buttons::Ok}); };
  const std::string up = ": a message box is up, answer it first";
  EXPECT_EQ(
      vna.Run({"click Panel.Go", "click Panel.Also", "set Panel.Field 1", "mouse down left 1 1",
               "resize 100 100", "wait ms 5", "bench show", "close Panel", "quit",
               "get Panel.Field", "windows", "data limits 9", "picture x.png", "answer ok"}),
      (Texts{"! message T | t | none | ok", "error 2" + up, "error 3" + up, "error 4" + up,
             "error 5" + up, "error 6" + up, "error 7" + up, "error 8" + up, "error 9" + up, "= 7",
             "ok 10", "= Panel", "= Form1", "ok 11", "error 12: no channel 9: 1 to 4", "ok 13",
             "ok 14", "ok 1"}));
}

TEST(ConsoleBoxes, AFileDialogIsAnsweredByAPathOrCancel) {
  ConsoleFixture vna;
  std::optional<std::string> first, second;
  vna.form.OnGo = [&] {
    first = vna.host.Choose({DialogKind::Open, "Load Cal", "/home/x", "Cal (*.cal)|*.cal|", 1});
    second = vna.host.Choose({DialogKind::Save, "Save", "", "", 1});
  };
  EXPECT_EQ(vna.Run({"click Panel.Go", "answer", "answer a b.cal", "answer cancel"}),
            (Texts{"! dialog open | Load Cal | /home/x | Cal (*.cal)|*.cal|",
                   "error 2: the dialog takes a path or cancel", "ok 3",
                   "! dialog save | Save |  | ", "ok 4", "ok 1"}));
  EXPECT_EQ(first, "a b.cal");
  EXPECT_EQ(second, std::nullopt);
}

TEST(ConsoleBoxes, AColourDialogTakesSixHexadecimalDigits) {
  ConsoleFixture vna;
  std::optional<std::string> colour;
  vna.form.OnGo = [&] { colour = vna.host.Choose({DialogKind::Colour, "Colour", "", "", 1}); };
  const std::string use = "the dialog takes #RRGGBB or cancel";
  EXPECT_EQ(vna.Run({"click Panel.Go", "answer red", "answer #12345", "answer #12345G",
                     "answer #1a2B3c"}),
            (Texts{"! dialog colour | Colour |  | ", "error 2: " + use, "error 3: " + use,
                   "error 4: " + use, "ok 5", "ok 1"}));
  EXPECT_EQ(colour, "#1a2B3c");
}

TEST(ConsoleBoxes, WhileADialogIsUpOnlyAnswerAndTheQueriesAreAccepted) {
  ConsoleFixture vna;
  vna.form.OnGo = [&] { vna.host.Choose({DialogKind::Print, "Print", "", "", 1}); };
  EXPECT_EQ(vna.Run({"click Panel.Go", "click Panel.Also", "get Panel.Field", "answer page.pdf"}),
            (Texts{"! dialog print | Print |  | ", "error 2: a dialog is up, answer it first",
                   "= 7", "ok 3", "ok 4", "ok 1"}));
}

TEST(ConsoleBoxes, ABoxRaisedByATimerOverAnotherIsAnsweredFirst) {
  ConsoleFixture vna;
  vna.onTick = [&] {
    vna.host.Enable(TimerId::Timer2, false);
    vna.host.Ask({"Inner", "i", Icon::None, Buttons::Ok});
  };
  vna.form.OnGo = [&] {
    vna.host.SetInterval(TimerId::Timer2, 100);
    vna.host.Enable(TimerId::Timer2, true);
    vna.host.Ask({"Outer", "o", Icon::None, Buttons::Ok});
  };
  vna.lines.Add("click Panel.Go");
  vna.lines.Add("answer ok", vna.clock.NowMs() + 200);
  vna.lines.Add("answer ok");
  EXPECT_EQ(vna.RunAdded(), (Texts{"! message Outer | o | none | ok",
                                   "! message Inner | i | none | ok", "ok 2", "ok 3", "ok 1"}));
}

TEST(ConsoleBoxes, TheBenchHearsOfAPromptBeforeItIsShown) {
  ConsoleFixture vna;
  vna.host.OnPrompt = [&vna](const Message& message) { vna.done.push_back(message.Text); };
  vna.form.OnGo = [&] {
    vna.host.Ask({"Open Cal", "Open Circuit on Port 1 (0.00mm)", Icon::Information, Buttons::Ok});
  };
  vna.Run({"click Panel.Go", "answer ok"});
  EXPECT_EQ(vna.done, (Texts{"Open Circuit on Port 1 (0.00mm)"}));
}

// ---- nesting -----------------------------------------------------------------------------------

TEST(ConsoleNesting, CommandsReadWhileAHandlerLetsEventsRunAreClosedFirst) {
  ConsoleFixture vna;
  vna.form.OnGo = [&] { vna.host.LetEventsRun(); };
  vna.form.OnAlso = [&] { vna.host.LetEventsRun(); };
  for (const char* line : {"click Panel.Go", "get Panel.Field", "click Panel.Also", "panels x"})
    vna.lines.Add(line);
  vna.lines.Add("get Panel.Bar", vna.clock.NowMs() + 1000);
  EXPECT_EQ(vna.RunAdded(), (Texts{"= 7", "ok 2", "error 4: panels takes no arguments", "ok 3",
                                   "ok 1", "= 40", "ok 5"}));
}

TEST(ConsoleNesting, AHandlerThatOnlyBreathesReadsNothing) {
  ConsoleFixture vna;
  vna.form.OnGo = [&] { vna.host.Breathe(); };
  EXPECT_EQ(vna.Run({"click Panel.Go", "get Panel.Field"}), (Texts{"ok 1", "= 7", "ok 2"}));
}

TEST(ConsoleNesting, LettingEventsRunDoesNotWaitForALine) {
  ConsoleFixture vna;
  vna.form.OnGo = [&] { vna.host.LetEventsRun(); };
  const std::int64_t before = vna.clock.NowMs();
  vna.lines.Add("click Panel.Go");
  vna.lines.Add("panels x", before + 1000);
  EXPECT_EQ(vna.RunAdded(), (Texts{"ok 1", "error 2: panels takes no arguments"}));
}

TEST(ConsoleNesting, ACommandThatEndsBelowAWaitIsClosedAfterIt) {
  ConsoleFixture vna;
  vna.form.OnGo = [&] { vna.host.LetEventsRun(); };
  EXPECT_EQ(vna.Run({"click Panel.Go", "wait ms 50", "get Panel.Field"}),
            (Texts{"ok 2", "ok 1", "= 7", "ok 3"}));
}

// ---- waiting -----------------------------------------------------------------------------------

TEST(ConsoleWaiting, MillisecondsPassAndTimersTickMeanwhile) {
  ConsoleFixture vna;
  vna.host.SetInterval(TimerId::Timer3, 2000);
  vna.host.Enable(TimerId::Timer3, true);
  const std::int64_t before = vna.clock.NowMs();
  EXPECT_EQ(vna.Run({"wait ms 5000"}), (Texts{"ok 1"}));
  EXPECT_EQ(vna.clock.NowMs(), before + 5000);
  EXPECT_EQ(vna.done, (Texts{"tick 3", "tick 3"}));
}

TEST(ConsoleWaiting, ZeroMillisecondsLetEventsRunAndEnd) {
  ConsoleFixture vna;
  const std::int64_t before = vna.clock.NowMs();
  EXPECT_EQ(vna.Run({"wait ms 0"}), (Texts{"ok 1"}));
  EXPECT_EQ(vna.clock.NowMs(), before);
}

TEST(ConsoleWaiting, WithNoSweepRunningSweepsAndIdleEndAtOnce) {
  ConsoleFixture vna;
  EXPECT_EQ(vna.Run({"wait sweeps 3", "wait idle"}), (Texts{"ok 1", "ok 2"}));
}

// A handler like START's: sweeps of ten points, events after each, until it is stopped.
void Sweep(ConsoleFixture& vna, int sweeps) {
  vna.session->Flags.SweepIdle = false;
  vna.session->Flags.SweepRunning = true;
  for (int point = 0; vna.session->Flags.SweepRunning && point < 10 * sweeps; ++point) {
    if (point % 10 == 9) ++vna.sweepsEnded;
    vna.clock.AdvanceMs(1);
    vna.host.LetEventsRun();
  }
  vna.session->Flags.SweepIdle = true;
  vna.session->Flags.SweepRunning = false;
}

TEST(ConsoleWaiting, SweepsAreCountedFromTheCommandWhileTheClickIsOpen) {
  ConsoleFixture vna;
  vna.sweepsEnded = 5;
  long seen = 0;
  vna.form.OnGo = [&] { Sweep(vna, 100); };
  vna.form.OnAlso = [&] {
    seen = vna.sweepsEnded;
    vna.session->Flags.SweepRunning = false;
  };
  EXPECT_EQ(vna.Run({"click Panel.Go", "wait sweeps 2", "click Panel.Also", "wait idle"}),
            (Texts{"ok 2", "ok 3", "ok 4", "ok 1"}));
  EXPECT_EQ(seen, 7);
}

TEST(ConsoleWaiting, AWaitForSweepsEndsWhenTheSweepDoes) {
  ConsoleFixture vna;
  vna.form.OnGo = [&] { Sweep(vna, 1); };
  EXPECT_EQ(vna.Run({"click Panel.Go", "wait sweeps 50", "get Panel.Field"}),
            (Texts{"ok 2", "ok 1", "= 7", "ok 3"}));
}

TEST(ConsoleWaiting, IdlenessThatNobodyIsLeftToBringAboutIsRefused) {
  ConsoleFixture vna;
  vna.form.OnGo = [&] { Sweep(vna, 100); };
  EXPECT_EQ(vna.Run({"click Panel.Go", "wait idle"}),
            (Texts{"error 2: the input has ended, so no command can stop the sweep",
                   "error 1: the program ended"}));
}

TEST(ConsoleNesting, CommandsThatComeWithoutAPauseLeaveTheSweepItsTurn) {
  ConsoleFixture vna;
  int rounds = 0;
  vna.form.OnGo = [&] {
    while (rounds < 100 && !vna.lines.AtEnd()) {
      vna.host.LetEventsRun();
      ++rounds;
    }
  };
  vna.Run({"click Panel.Go", "panels", "panels", "panels", "panels", "panels", "panels", "panels",
           "panels", "panels", "panels", "panels", "panels"});
  EXPECT_EQ(rounds, 3);
}

TEST(ConsoleTimers, TheTickOfTimer1WaitsUntilTheBoxIsAnswered) {
  ConsoleFixture vna;
  vna.host.SetInterval(TimerId::Timer1, 100);
  vna.host.Enable(TimerId::Timer1, true);
  vna.host.SetInterval(TimerId::Timer2, 100);
  vna.host.Enable(TimerId::Timer2, true);
  vna.form.OnGo = [&] {
    vna.host.Ask({"T", "t", Icon::None, Buttons::Ok});
    vna.done.push_back("answered");
  };
  vna.lines.Add("click Panel.Go");
  const std::int64_t start = vna.clock.NowMs();
  vna.lines.Add("answer ok", start + 250);
  vna.lines.Add("panels", start + 260);
  vna.RunAdded();
  EXPECT_EQ(vna.done, (Texts{"tick 2", "tick 2", "answered", "tick 1"}));
}

TEST(ConsoleWaiting, ABoxThatComesUpDuringAWaitCanBeAnswered) {
  ConsoleFixture vna;
  vna.form.OnGo = [&] {
    Sweep(vna, 1);
    vna.session->Flags.SweepIdle = false;
    vna.host.Ask({"Measure S11", "No Response", Icon::Exclamation, Buttons::Ok});
    vna.session->Flags.SweepIdle = true;
  };
  EXPECT_EQ(vna.Run({"click Panel.Go", "wait idle", "click Panel.Also", "answer ok"}),
            (Texts{"! message Measure S11 | No Response | exclamation | ok",
                   "error 3: a message box is up, answer it first", "ok 4", "ok 2", "ok 1"}));
}

TEST(ConsoleWaiting, WhatCannotBeWaitedForIsRefused) {
  ConsoleFixture vna;
  const std::string use = "wait sweeps N, wait idle or wait ms N";
  EXPECT_EQ(vna.Run({"wait", "wait sweeps", "wait ms", "wait ms -1", "wait ms 1.5",
                     "wait sweeps two", "wait idle 3", "wait long 3", "wait ms 99999999999"}),
            (Texts{"error 1: " + use, "error 2: " + use, "error 3: " + use, "error 4: " + use,
                   "error 5: " + use, "error 6: " + use, "error 7: " + use, "error 8: " + use,
                   "error 9: " + use}));
}

TEST(ConsoleBoxes, WorkContinuesBehindABoxUntilItIsAnswered) {
  ConsoleFixture vna;
  int blocks = 0;
  vna.form.OnGo = [&] {
    vna.host.Ask({.Title = "T", .Text = "Wait", .BackgroundWork = [&] {
                    vna.clock.AdvanceMs(10);
                    return ++blocks < 20;
                  }});
  };
  vna.lines.Add("click Panel.Go");
  vna.lines.Add("answer ok", 1100);  // ten blocks later
  EXPECT_EQ(vna.RunAdded(), (Texts{"! message T | Wait | none | ok", "ok 2", "ok 1"}));
  EXPECT_EQ(blocks, 10);
}

TEST(ConsoleBoxes, ABoxStaysWhenTheWorkBehindItIsDone) {
  ConsoleFixture vna;
  int blocks = 0;
  vna.form.OnGo = [&] {
    vna.host.Ask({.Title = "T", .Text = "Wait", .BackgroundWork = [&] { return ++blocks < 3; }});
  };
  vna.lines.Add("click Panel.Go");
  vna.lines.Add("get Panel.Field", 1100);
  vna.lines.Add("answer ok", 1200);
  EXPECT_EQ(vna.RunAdded(),
            (Texts{"! message T | Wait | none | ok", "= 7", "ok 2", "ok 3", "ok 1"}));
  EXPECT_EQ(blocks, 3);
}

// ---- modal windows
// -------------------------------------------------------------------------------

TEST(ConsoleModal, OtherWindowsCannotBeReachedUntilItIsHidden) {
  ConsoleFixture vna({.Modal = true});
  vna.form.OnGo = [&] { vna.host.Show("Other"); };
  vna.other.OnGo = [&] { vna.host.Hide("Other"); };
  EXPECT_EQ(
      vna.Run({"click Panel.Go", "click Panel.Also", "set Panel.Field 1", "mouse down left 1 1",
               "close Panel", "get Panel.Field", "click Other.Go", "click Panel.Also"}),
      (Texts{"! show Other", "error 2: Panel cannot be reached while Other is up",
             "error 3: Panel cannot be reached while Other is up",
             "error 4: Form1 cannot be reached while Other is up",
             "error 5: Panel cannot be reached while Other is up", "= 7", "ok 6", "! hide Other",
             "ok 7", "ok 1", "ok 8"}));
}

TEST(ConsoleModal, TheTitleBarClosesIt) {
  ConsoleFixture vna({.Modal = true});
  vna.form.OnGo = [&] { vna.host.Show("Other"); };
  EXPECT_EQ(vna.Run({"click Panel.Go", "close Other"}),
            (Texts{"! show Other", "! hide Other", "ok 2", "ok 1"}));
}

TEST(ConsoleModal, AWaitForASweepBeneathItIsRefusedInsteadOfLastingForEver) {
  ConsoleFixture vna({.Modal = true});
  vna.form.OnGo = [&] {
    vna.session->Flags.SweepIdle = false;
    vna.host.Show("Other");
    vna.session->Flags.SweepIdle = true;
  };
  EXPECT_EQ(vna.Run({"click Panel.Go", "wait sweeps 1", "wait ms 10", "close Other"}),
            (Texts{"! show Other", "error 2: the sweep is paused while Other is up", "ok 3",
                   "! hide Other", "ok 4", "ok 1"}));
}

// ---- events
// --------------------------------------------------------------------------------------

TEST(ConsoleEvents, WindowsAreReportedOnceWhenShownAndHidden) {
  ConsoleFixture vna;
  vna.form.OnGo = [&] {
    vna.host.Show("Other");
    vna.host.Show("Other");
    vna.host.Refresh("Other");
    EXPECT_THROW(vna.host.Show("Nowhere"), std::logic_error);
    vna.host.Hide("Other");
    vna.host.Hide("Other");
  };
  EXPECT_EQ(vna.Run({"click Panel.Go"}), (Texts{"! show Other", "! hide Other", "ok 1"}));
}

TEST(ConsoleEvents, APanelIsReportedWhenItChanges) {
  ConsoleFixture vna;
  vna.form.OnGo = [&] {
    vna.host.PanelChanged(Panel::Calibration, "UNCAL");
    vna.host.PanelChanged(Panel::Calibration, "UNCAL");
    vna.host.PanelChanged(Panel::Calibration, "S11 Cal");
    vna.host.PanelChanged(Panel::Calibration, "");
  };
  EXPECT_EQ(vna.Run({"click Panel.Go"}),
            (Texts{"! panel 3 UNCAL", "! panel 3 S11 Cal", "! panel 3 ", "ok 1"}));
}

TEST(ConsoleEvents, ABeepIsReported) {
  ConsoleFixture vna;
  vna.form.OnGo = [&] { vna.host.Beep(); };
  EXPECT_EQ(vna.Run({"click Panel.Go"}), (Texts{"! beep", "ok 1"}));
}

// ---- timers
// --------------------------------------------------------------------------------------

TEST(ConsoleTimers, ATimerThatWasOffStartsItsPeriodAnewWhenEnabled) {
  ConsoleFixture vna;
  vna.host.SetInterval(TimerId::Timer1, 1000);
  vna.form.OnGo = [&] { vna.host.Enable(TimerId::Timer1, true); };
  EXPECT_EQ(vna.Run({"wait ms 800", "click Panel.Go", "wait ms 900"}).size(), 3u);
  EXPECT_TRUE(vna.done.empty());
  EXPECT_TRUE(vna.host.Enabled(TimerId::Timer1));
  EXPECT_FALSE(vna.host.Enabled(TimerId::Timer2));
}

TEST(ConsoleTimers, EnablingARunningTimerLeavesItsPeriodAlone) {
  ConsoleFixture vna;
  vna.host.SetInterval(TimerId::Timer1, 1000);
  vna.host.Enable(TimerId::Timer1, true);
  vna.form.OnGo = [&] { vna.host.Enable(TimerId::Timer1, true); };
  vna.Run({"wait ms 800", "click Panel.Go", "wait ms 300"});
  EXPECT_EQ(vna.done, (Texts{"tick 1"}));
}

TEST(ConsoleTimers, ANewIntervalStartsThePeriodAnew) {
  ConsoleFixture vna;
  vna.host.SetInterval(TimerId::Timer1, 1000);
  vna.host.Enable(TimerId::Timer1, true);
  vna.form.OnGo = [&] { vna.host.SetInterval(TimerId::Timer1, 60000); };
  vna.Run({"wait ms 800", "click Panel.Go", "wait ms 59000"});
  EXPECT_TRUE(vna.done.empty());
}

TEST(ConsoleTimers, ATimerWithoutAnIntervalNeverTicks) {
  ConsoleFixture vna;
  vna.host.Enable(TimerId::Timer1, true);
  vna.Run({"wait ms 100000"});
  EXPECT_TRUE(vna.done.empty());
}

TEST(ConsoleTimers, TicksMissedWhileAHandlerWorkedAreNotMadeUpFor) {
  ConsoleFixture vna;
  vna.host.SetInterval(TimerId::Timer1, 10);
  vna.host.Enable(TimerId::Timer1, true);
  vna.form.OnGo = [&] {
    vna.clock.AdvanceMs(1000);
    vna.host.LetEventsRun();
    vna.host.Enable(TimerId::Timer1, false);
  };
  vna.lines.Add("click Panel.Go");
  vna.lines.Add("panels", vna.clock.NowMs() + 5000);
  vna.RunAdded();
  EXPECT_EQ(vna.done, (Texts{"tick 1"}));
}

// ---- start and end
// -------------------------------------------------------------------------------

TEST(ConsoleStart, NoCommandIsReadWhileTheProgramStarts) {
  ConsoleFixture vna;
  vna.start = [&] { vna.host.LetEventsRun(); };
  EXPECT_EQ(vna.Run({"click Panel.Go"}), (Texts{"ok 1"}));
}

TEST(ConsoleStart, ABoxOfTheStartIsAnsweredByTheFirstLines) {
  ConsoleFixture vna;
  Answer given = Answer::Ok;
  vna.start = [&] {
    given = vna.host.Ask({"VNA Control", "No instrument", Icon::None, Buttons::RetryCancel});
  };
  EXPECT_EQ(vna.Run({"answer cancel", "get Panel.Field"}), (Texts{"= 7", "ok 2"}));
  EXPECT_EQ(given, Answer::Cancel);
}

TEST(ConsoleStart, WithoutInputABoxOfTheStartEndsTheProcess) {
  ConsoleFixture vna;
  bool passed = false;
  vna.start = [&] {
    vna.host.Ask({"VNA Control", "No instrument", Icon::None, Buttons::RetryCancel});
    passed = true;
  };
  EXPECT_EQ(vna.Run({}), (Texts{"! message VNA Control | No instrument | none | retry/cancel"}));
  EXPECT_EQ(vna.exitLine, "! exit 0");
  EXPECT_FALSE(passed);
}

TEST(ConsoleEnd, QuitInsideAHandlerLeavesItWhereItStands) {
  ConsoleFixture vna;
  bool passed = false;
  vna.form.OnGo = [&] {
    vna.host.LetEventsRun();
    passed = true;
  };
  EXPECT_EQ(vna.Run({"click Panel.Go", "quit", "panels"}),
            (Texts{"ok 2", "error 1: the program ended"}));
  EXPECT_EQ(vna.exitLine, "! exit 0");
  EXPECT_FALSE(passed);
}

TEST(ConsoleEnd, AProcessThatEndsItselfFirstFinishesTheHandler) {
  ConsoleFixture vna;
  vna.form.OnGo = [&] {
    vna.host.EndProcess(3);
    vna.host.Beep();
  };
  EXPECT_EQ(vna.Run({"click Panel.Go", "panels"}), (Texts{"! beep", "ok 1"}));
  EXPECT_EQ(vna.exitLine, "! exit 3");
  EXPECT_EQ(vna.code, 3);
}

TEST(ConsoleEnd, ASignalLeavesWithoutAskingAndBoxesReturnAsIfClosed) {
  ConsoleFixture vna;
  bool signal = false;
  Answer given = Answer::Yes;
  vna.host.OnSignal = [&] { return signal; };
  vna.host.OnLeave = [&] {
    vna.done.push_back("leave");
    vna.host.EndProcess(0);
  };
  vna.host.OnPrompt = [&](const Message&) { signal = true; };
  vna.form.OnGo = [&] { given = vna.host.Ask({"T", "Keep?", Icon::Question, Buttons::YesNo}); };
  EXPECT_EQ(vna.Run({"click Panel.Go", "answer yes"}),
            (Texts{"! message T | Keep? | question | yes/no", "error 1: the program ended"}));
  EXPECT_EQ(vna.done, Texts{"leave"});
  EXPECT_EQ(vna.exitLine, "! exit 0");
}

// A window that writes what half written would spoil the instrument: in four blocks, with events
// between them.
struct Writer : ConsoleFixture {
  Writer() {
    form.OnGo = [this] {
      form.Writing = true;
      for (blocks = 0; blocks < 4; ++blocks) {
        if (blocks == 1 && box) host.Ask(*box);
        host.LetEventsRun();
      }
      form.Writing = false;
    };
  }
  std::optional<Message> box;  // comes up in the middle
  int blocks = 0;
};
constexpr const char* kBox = "! message T | No Response | critical | ok";

TEST(ConsoleEnd, TheEndOfTheInputWaitsForWorkThatMustNotBeCutOff) {
  Writer vna;
  EXPECT_EQ(vna.Run({"click Panel.Go"}), (Texts{"ok 1"}));
  EXPECT_EQ(vna.blocks, 4);
  EXPECT_EQ(vna.exitLine, "! exit 0");
}

TEST(ConsoleEnd, ABoxInSuchWorkIsReportedAndReturnsByItselfWhenTheInputHasEnded) {
  Writer vna;
  vna.box = Message{"T", "No Response", Icon::Critical, Buttons::Ok};
  EXPECT_EQ(vna.Run({"click Panel.Go"}), (Texts{kBox, "ok 1"}));
  EXPECT_EQ(vna.blocks, 4);
}

TEST(ConsoleEnd, QuitIsRefusedDuringSuchWork) {
  Writer vna;
  EXPECT_EQ(vna.Run({"click Panel.Go", "quit", "get Panel.Field"}),
            (Texts{"error 2: Panel writes to the instrument and cannot be interrupted", "= 7",
                   "ok 3", "ok 1"}));
  EXPECT_EQ(vna.blocks, 4);
}

TEST(ConsoleEnd, ASignalWaitsForSuchWorkToo) {
  Writer vna;
  vna.host.OnSignal = [&] { return vna.blocks == 2; };
  vna.host.OnLeave = [&] { vna.host.EndProcess(0); };
  EXPECT_EQ(vna.Run({"click Panel.Go", "wait ms 50", "panels"}),
            (Texts{"error 2: the program ended", "ok 1"}));
  EXPECT_EQ(vna.blocks, 4);
}

TEST(ConsoleEnd, AProcessEndsFromNestedMessageLoopsToo) {
  ConsoleFixture vna({.Modal = true});
  vna.form.OnGo = [&] { vna.host.Show("Other"); };
  vna.other.OnGo = [&] { vna.host.EndProcess(0); };
  EXPECT_EQ(vna.Run({"click Panel.Go", "click Other.Go", "panels"}),
            (Texts{"! show Other", "ok 2", "error 1: the program ended"}));
}

TEST(ConsoleEnd, TheEndOfTheInputDuringAWaitComesAfterTheWait) {
  ConsoleFixture vna;
  const std::int64_t before = vna.clock.NowMs();
  EXPECT_EQ(vna.Run({"wait ms 700"}), (Texts{"ok 1"}));
  EXPECT_EQ(vna.clock.NowMs(), before + 700);
}

}  // namespace
}  // namespace qk::test
