// Boxes, nesting, waiting, modal windows, timers and the end, in the order of their lines.
#include <gtest/gtest.h>

#include <stdexcept>

#include "console_fixture.h"

namespace qk::test {
namespace {

// ---- message boxes and dialogs ---------------------------------------------------------------

TEST(ConsoleBoxes, TheBoxIsToldAndItsCommandClosesAfterTheAnswer) {
  ConsoleFixture bench;
  Answer given = Answer::Ok;
  bench.form.OnGo = [&] {
    given = bench.host.Ask({"Re-Start Program", "Sure?\nReally?", Icon::Question, Buttons::YesNo});
  };
  EXPECT_EQ(bench.Run({"click Panel.Go", "answer yes", "panels"})[0],
            "! message Re-Start Program | Sure?\\nReally? | question | yes/no");
  EXPECT_EQ(bench.output[1], "ok 2");
  EXPECT_EQ(bench.output[2], "ok 1");
  EXPECT_EQ(given, Answer::Yes);
}

TEST(ConsoleBoxes, EveryIconAndEverySetOfButtonsIsTold) {
  ConsoleFixture bench;
  bench.form.OnGo = [&] {
    bench.host.Ask({"A", "a", Icon::None, Buttons::Ok});
    bench.host.Ask({"B", "b", Icon::Information, Buttons::OkCancel});
    bench.host.Ask({"C", "c", Icon::Exclamation, Buttons::RetryCancel});
    bench.host.Ask({"", "d", Icon::Critical, Buttons::YesNo});
  };
  EXPECT_EQ(
      bench.Run({"click Panel.Go", "answer ok", "answer cancel", "answer retry", "answer no"}),
      (Texts{"! message A | a | none | ok", "ok 2", "! message B | b | information | ok/cancel",
             "ok 3", "! message C | c | exclamation | retry/cancel", "ok 4",
             "! message  | d | critical | yes/no", "ok 5", "ok 1"}));
}

TEST(ConsoleBoxes, AnAnswerThatIsNotOfferedLeavesTheBoxUp) {
  ConsoleFixture bench;
  bench.form.OnGo = [&] { bench.host.Ask({"T", "t", Icon::Question, Buttons::RetryCancel}); };
  EXPECT_EQ(
      bench.Run({"click Panel.Go", "answer ok", "answer", "answer retry now", "answer maybe",
                 "answer cancel"}),
      (Texts{"! message T | t | question | retry/cancel", "error 2: the box offers retry/cancel",
             "error 3: the box offers retry/cancel", "error 4: the box offers retry/cancel",
             "error 5: the box offers retry/cancel", "ok 6", "ok 1"}));
}

TEST(ConsoleBoxes, AnAnswerWithNothingUpIsRefused) {
  ConsoleFixture bench;
  EXPECT_EQ(bench.Run({"answer ok"}), (Texts{"error 1: no message box or dialog is up"}));
}

TEST(ConsoleBoxes, WhileOneIsUpOnlyAnswerAndTheQueriesAreAccepted) {
  ConsoleFixture bench;
  bench.reach.Bench = [](std::string_view, std::string&) { return true; };
  bench.form.OnGo = [&] { bench.host.Ask({"T", "t", Icon::None, Buttons::Ok}); };
  const std::string up = ": a message box is up, answer it first";
  EXPECT_EQ(
      bench.Run({"click Panel.Go", "click Panel.Also", "set Panel.Field 1", "mouse down left 1 1",
                 "resize 100 100", "wait ms 5", "bench show", "close Panel", "quit",
                 "get Panel.Field", "windows", "data limits 9", "picture x.png", "answer ok"}),
      (Texts{"! message T | t | none | ok", "error 2" + up, "error 3" + up, "error 4" + up,
             "error 5" + up, "error 6" + up, "error 7" + up, "error 8" + up, "error 9" + up, "= 7",
             "ok 10", "= Panel", "= Form1", "ok 11", "error 12: no channel 9: 1 to 4", "ok 13",
             "ok 14", "ok 1"}));
}

TEST(ConsoleBoxes, AFileDialogIsAnsweredByAPathOrCancel) {
  ConsoleFixture bench;
  std::optional<std::string> first, second;
  bench.form.OnGo = [&] {
    first = bench.host.Choose({DialogKind::Open, "Load Cal", "/home/x", "Cal (*.cal)|*.cal|", 1});
    second = bench.host.Choose({DialogKind::Save, "Save", "", "", 1});
  };
  EXPECT_EQ(bench.Run({"click Panel.Go", "answer", "answer a b.cal", "answer cancel"}),
            (Texts{"! dialog open | Load Cal | /home/x | Cal (*.cal)|*.cal|",
                   "error 2: the dialog takes a path or cancel", "ok 3",
                   "! dialog save | Save |  | ", "ok 4", "ok 1"}));
  EXPECT_EQ(first, "a b.cal");
  EXPECT_EQ(second, std::nullopt);
}

TEST(ConsoleBoxes, AColourDialogTakesSixHexadecimalDigits) {
  ConsoleFixture bench;
  std::optional<std::string> colour;
  bench.form.OnGo = [&] { colour = bench.host.Choose({DialogKind::Colour, "Colour", "", "", 1}); };
  const std::string use = "the dialog takes #RRGGBB or cancel";
  EXPECT_EQ(bench.Run({"click Panel.Go", "answer red", "answer #12345", "answer #12345G",
                       "answer #1a2B3c"}),
            (Texts{"! dialog colour | Colour |  | ", "error 2: " + use, "error 3: " + use,
                   "error 4: " + use, "ok 5", "ok 1"}));
  EXPECT_EQ(colour, "#1a2B3c");
}

TEST(ConsoleBoxes, WhileADialogIsUpOnlyAnswerAndTheQueriesAreAccepted) {
  ConsoleFixture bench;
  bench.form.OnGo = [&] { bench.host.Choose({DialogKind::Print, "Print", "", "", 1}); };
  EXPECT_EQ(bench.Run({"click Panel.Go", "click Panel.Also", "get Panel.Field", "answer page.pdf"}),
            (Texts{"! dialog print | Print |  | ", "error 2: a dialog is up, answer it first",
                   "= 7", "ok 3", "ok 4", "ok 1"}));
}

TEST(ConsoleBoxes, ABoxRaisedByATimerOverAnotherIsAnsweredFirst) {
  ConsoleFixture bench;
  bench.onTick = [&] {
    bench.host.Enable(TimerId::Timer2, false);
    bench.host.Ask({"Inner", "i", Icon::None, Buttons::Ok});
  };
  bench.form.OnGo = [&] {
    bench.host.SetInterval(TimerId::Timer2, 100);
    bench.host.Enable(TimerId::Timer2, true);
    bench.host.Ask({"Outer", "o", Icon::None, Buttons::Ok});
  };
  bench.lines.Add("click Panel.Go");
  bench.lines.Add("answer ok", bench.clock.NowMs() + 200);
  bench.lines.Add("answer ok");
  EXPECT_EQ(bench.RunAdded(), (Texts{"! message Outer | o | none | ok",
                                     "! message Inner | i | none | ok", "ok 2", "ok 3", "ok 1"}));
}

TEST(ConsoleBoxes, TheBenchHearsOfAPromptBeforeItIsShown) {
  ConsoleFixture bench;
  bench.host.OnPrompt = [&bench](const Message& message) { bench.done.push_back(message.Text); };
  bench.form.OnGo = [&] {
    bench.host.Ask({"Open Cal", "Open Circuit on Port 1 (0.00mm)", Icon::Information, Buttons::Ok});
  };
  bench.Run({"click Panel.Go", "answer ok"});
  EXPECT_EQ(bench.done, (Texts{"Open Circuit on Port 1 (0.00mm)"}));
}

// ---- nesting -----------------------------------------------------------------------------------

TEST(ConsoleNesting, CommandsReadWhileAHandlerLetsEventsRunAreClosedFirst) {
  ConsoleFixture bench;
  bench.form.OnGo = [&] { bench.host.LetEventsRun(); };
  bench.form.OnAlso = [&] { bench.host.LetEventsRun(); };
  for (const char* line : {"click Panel.Go", "get Panel.Field", "click Panel.Also", "panels x"})
    bench.lines.Add(line);
  bench.lines.Add("get Panel.Bar", bench.clock.NowMs() + 1000);
  EXPECT_EQ(bench.RunAdded(), (Texts{"= 7", "ok 2", "error 4: panels takes nothing behind it",
                                     "ok 3", "ok 1", "= 40", "ok 5"}));
}

TEST(ConsoleNesting, AHandlerThatOnlyBreathesReadsNothing) {
  ConsoleFixture bench;
  bench.form.OnGo = [&] { bench.host.Breathe(); };
  EXPECT_EQ(bench.Run({"click Panel.Go", "get Panel.Field"}), (Texts{"ok 1", "= 7", "ok 2"}));
}

TEST(ConsoleNesting, LettingEventsRunDoesNotWaitForALine) {
  ConsoleFixture bench;
  bench.form.OnGo = [&] { bench.host.LetEventsRun(); };
  const std::int64_t before = bench.clock.NowMs();
  bench.lines.Add("click Panel.Go");
  bench.lines.Add("panels x", before + 1000);
  EXPECT_EQ(bench.RunAdded(), (Texts{"ok 1", "error 2: panels takes nothing behind it"}));
}

TEST(ConsoleNesting, ACommandThatEndsBelowAWaitIsClosedAfterIt) {
  ConsoleFixture bench;
  bench.form.OnGo = [&] { bench.host.LetEventsRun(); };
  EXPECT_EQ(bench.Run({"click Panel.Go", "wait ms 50", "get Panel.Field"}),
            (Texts{"ok 2", "ok 1", "= 7", "ok 3"}));
}

// ---- waiting -----------------------------------------------------------------------------------

TEST(ConsoleWaiting, MillisecondsPassAndTimersTickMeanwhile) {
  ConsoleFixture bench;
  bench.host.SetInterval(TimerId::Timer3, 2000);
  bench.host.Enable(TimerId::Timer3, true);
  const std::int64_t before = bench.clock.NowMs();
  EXPECT_EQ(bench.Run({"wait ms 5000"}), (Texts{"ok 1"}));
  EXPECT_EQ(bench.clock.NowMs(), before + 5000);
  EXPECT_EQ(bench.done, (Texts{"tick 3", "tick 3"}));
}

TEST(ConsoleWaiting, ZeroMillisecondsLetEventsRunAndEnd) {
  ConsoleFixture bench;
  const std::int64_t before = bench.clock.NowMs();
  EXPECT_EQ(bench.Run({"wait ms 0"}), (Texts{"ok 1"}));
  EXPECT_EQ(bench.clock.NowMs(), before);
}

TEST(ConsoleWaiting, WithNoSweepRunningSweepsAndIdleEndAtOnce) {
  ConsoleFixture bench;
  EXPECT_EQ(bench.Run({"wait sweeps 3", "wait idle"}), (Texts{"ok 1", "ok 2"}));
}

// A handler like START's: sweeps of ten points, events after each, until somebody stops it.
void Sweep(ConsoleFixture& bench, int sweeps) {
  bench.session->Flags.SweepIdle = false;
  bench.session->Flags.SweepRunning = true;
  for (int point = 0; bench.session->Flags.SweepRunning && point < 10 * sweeps; ++point) {
    if (point % 10 == 9) ++bench.sweepsEnded;
    bench.clock.AdvanceMs(1);
    bench.host.LetEventsRun();
  }
  bench.session->Flags.SweepIdle = true;
  bench.session->Flags.SweepRunning = false;
}

TEST(ConsoleWaiting, SweepsAreCountedFromTheCommandWhileTheClickIsOpen) {
  ConsoleFixture bench;
  bench.sweepsEnded = 5;
  long seen = 0;
  bench.form.OnGo = [&] { Sweep(bench, 100); };
  bench.form.OnAlso = [&] {
    seen = bench.sweepsEnded;
    bench.session->Flags.SweepRunning = false;
  };
  EXPECT_EQ(bench.Run({"click Panel.Go", "wait sweeps 2", "click Panel.Also", "wait idle"}),
            (Texts{"ok 2", "ok 3", "ok 4", "ok 1"}));
  EXPECT_EQ(seen, 7);
}

TEST(ConsoleWaiting, AWaitForSweepsEndsWhenTheSweepDoes) {
  ConsoleFixture bench;
  bench.form.OnGo = [&] { Sweep(bench, 1); };
  EXPECT_EQ(bench.Run({"click Panel.Go", "wait sweeps 50", "get Panel.Field"}),
            (Texts{"ok 2", "ok 1", "= 7", "ok 3"}));
}

TEST(ConsoleWaiting, IdlenessThatNobodyIsLeftToBringAboutIsRefused) {
  ConsoleFixture bench;
  bench.form.OnGo = [&] { Sweep(bench, 100); };
  EXPECT_EQ(bench.Run({"click Panel.Go", "wait idle"}),
            (Texts{"error 2: the input has ended, nobody is left to stop the sweep",
                   "error 1: the program ended"}));
}

TEST(ConsoleNesting, CommandsThatComeWithoutAPauseLeaveTheSweepItsTurn) {
  ConsoleFixture bench;
  int rounds = 0;
  bench.form.OnGo = [&] {
    while (rounds < 100 && !bench.lines.AtEnd()) {
      bench.host.LetEventsRun();
      ++rounds;
    }
  };
  bench.Run({"click Panel.Go", "panels", "panels", "panels", "panels", "panels", "panels", "panels",
             "panels", "panels", "panels", "panels", "panels"});
  EXPECT_EQ(rounds, 3);
}

TEST(ConsoleTimers, TheTickOfTimer1WaitsUntilTheBoxIsAnswered) {
  ConsoleFixture bench;
  bench.host.SetInterval(TimerId::Timer1, 100);
  bench.host.Enable(TimerId::Timer1, true);
  bench.host.SetInterval(TimerId::Timer2, 100);
  bench.host.Enable(TimerId::Timer2, true);
  bench.form.OnGo = [&] {
    bench.host.Ask({"T", "t", Icon::None, Buttons::Ok});
    bench.done.push_back("answered");
  };
  bench.lines.Add("click Panel.Go");
  const std::int64_t start = bench.clock.NowMs();
  bench.lines.Add("answer ok", start + 250);
  bench.lines.Add("panels", start + 260);
  bench.RunAdded();
  EXPECT_EQ(bench.done, (Texts{"tick 2", "tick 2", "answered", "tick 1"}));
}

TEST(ConsoleWaiting, ABoxThatComesUpDuringAWaitCanBeAnswered) {
  ConsoleFixture bench;
  bench.form.OnGo = [&] {
    Sweep(bench, 1);
    bench.session->Flags.SweepIdle = false;
    bench.host.Ask({"Measure S11", "No Response", Icon::Exclamation, Buttons::Ok});
    bench.session->Flags.SweepIdle = true;
  };
  EXPECT_EQ(bench.Run({"click Panel.Go", "wait idle", "click Panel.Also", "answer ok"}),
            (Texts{"! message Measure S11 | No Response | exclamation | ok",
                   "error 3: a message box is up, answer it first", "ok 4", "ok 2", "ok 1"}));
}

TEST(ConsoleWaiting, WhatCannotBeWaitedForIsRefused) {
  ConsoleFixture bench;
  const std::string use = "wait sweeps N, wait idle or wait ms N";
  EXPECT_EQ(bench.Run({"wait", "wait sweeps", "wait ms", "wait ms -1", "wait ms 1.5",
                       "wait sweeps two", "wait idle 3", "wait long 3", "wait ms 99999999999"}),
            (Texts{"error 1: " + use, "error 2: " + use, "error 3: " + use, "error 4: " + use,
                   "error 5: " + use, "error 6: " + use, "error 7: " + use, "error 8: " + use,
                   "error 9: " + use}));
}

// ---- modal windows
// -------------------------------------------------------------------------------

TEST(ConsoleModal, OtherWindowsCannotBeReachedUntilItIsHidden) {
  ConsoleFixture bench;
  bench.form.OnGo = [&] { bench.host.ShowModal("Other"); };
  bench.other.OnGo = [&] { bench.host.Hide("Other"); };
  EXPECT_EQ(
      bench.Run({"click Panel.Go", "click Panel.Also", "set Panel.Field 1", "mouse down left 1 1",
                 "close Panel", "get Panel.Field", "click Other.Go", "click Panel.Also"}),
      (Texts{"! show Other", "error 2: Panel cannot be reached while Other is up",
             "error 3: Panel cannot be reached while Other is up",
             "error 4: Form1 cannot be reached while Other is up",
             "error 5: Panel cannot be reached while Other is up", "= 7", "ok 6", "! hide Other",
             "ok 7", "ok 1", "ok 8"}));
}

TEST(ConsoleModal, TheTitleBarClosesIt) {
  ConsoleFixture bench;
  bench.form.OnGo = [&] { bench.host.ShowModal("Other"); };
  EXPECT_EQ(bench.Run({"click Panel.Go", "close Other"}),
            (Texts{"! show Other", "! hide Other", "ok 2", "ok 1"}));
}

TEST(ConsoleModal, AWaitForASweepBeneathItIsRefusedInsteadOfLastingForEver) {
  ConsoleFixture bench;
  bench.form.OnGo = [&] {
    bench.session->Flags.SweepIdle = false;
    bench.host.ShowModal("Other");
    bench.session->Flags.SweepIdle = true;
  };
  EXPECT_EQ(bench.Run({"click Panel.Go", "wait sweeps 1", "wait ms 10", "close Other"}),
            (Texts{"! show Other", "error 2: the sweep stands still while Other is up", "ok 3",
                   "! hide Other", "ok 4", "ok 1"}));
}

// ---- events
// --------------------------------------------------------------------------------------

TEST(ConsoleEvents, WindowsAreToldOnceWhenShownAndHidden) {
  ConsoleFixture bench;
  bench.form.OnGo = [&] {
    bench.host.Show("Other");
    bench.host.Show("Other");
    bench.host.Refresh("Other");
    EXPECT_THROW(bench.host.Show("Nowhere"), std::logic_error);
    bench.host.Hide("Other");
    bench.host.Hide("Other");
  };
  EXPECT_EQ(bench.Run({"click Panel.Go"}), (Texts{"! show Other", "! hide Other", "ok 1"}));
}

TEST(ConsoleEvents, APanelIsToldWhenItChanges) {
  ConsoleFixture bench;
  bench.form.OnGo = [&] {
    bench.host.PanelChanged(3, "UNCAL");
    bench.host.PanelChanged(3, "UNCAL");
    bench.host.PanelChanged(3, "S11 Cal");
    bench.host.PanelChanged(3, "");
  };
  EXPECT_EQ(bench.Run({"click Panel.Go"}),
            (Texts{"! panel 3 UNCAL", "! panel 3 S11 Cal", "! panel 3 ", "ok 1"}));
}

TEST(ConsoleEvents, ABeepIsTold) {
  ConsoleFixture bench;
  bench.form.OnGo = [&] { bench.host.Beep(); };
  EXPECT_EQ(bench.Run({"click Panel.Go"}), (Texts{"! beep", "ok 1"}));
}

// ---- timers
// --------------------------------------------------------------------------------------

TEST(ConsoleTimers, ATimerThatWasOffStartsItsPeriodAnewWhenEnabled) {
  ConsoleFixture bench;
  bench.host.SetInterval(TimerId::Timer1, 1000);
  bench.form.OnGo = [&] { bench.host.Enable(TimerId::Timer1, true); };
  EXPECT_EQ(bench.Run({"wait ms 800", "click Panel.Go", "wait ms 900"}).size(), 3u);
  EXPECT_TRUE(bench.done.empty());
  EXPECT_TRUE(bench.host.Enabled(TimerId::Timer1));
  EXPECT_FALSE(bench.host.Enabled(TimerId::Timer2));
}

TEST(ConsoleTimers, EnablingARunningTimerLeavesItsPeriodAlone) {
  ConsoleFixture bench;
  bench.host.SetInterval(TimerId::Timer1, 1000);
  bench.host.Enable(TimerId::Timer1, true);
  bench.form.OnGo = [&] { bench.host.Enable(TimerId::Timer1, true); };
  bench.Run({"wait ms 800", "click Panel.Go", "wait ms 300"});
  EXPECT_EQ(bench.done, (Texts{"tick 1"}));
}

TEST(ConsoleTimers, ANewIntervalStartsThePeriodAnew) {
  ConsoleFixture bench;
  bench.host.SetInterval(TimerId::Timer1, 1000);
  bench.host.Enable(TimerId::Timer1, true);
  bench.form.OnGo = [&] { bench.host.SetInterval(TimerId::Timer1, 60000); };
  bench.Run({"wait ms 800", "click Panel.Go", "wait ms 59000"});
  EXPECT_TRUE(bench.done.empty());
}

TEST(ConsoleTimers, ATimerWithoutAnIntervalNeverTicks) {
  ConsoleFixture bench;
  bench.host.Enable(TimerId::Timer1, true);
  bench.Run({"wait ms 100000"});
  EXPECT_TRUE(bench.done.empty());
}

TEST(ConsoleTimers, TicksMissedWhileAHandlerWorkedAreNotMadeUpFor) {
  ConsoleFixture bench;
  bench.host.SetInterval(TimerId::Timer1, 10);
  bench.host.Enable(TimerId::Timer1, true);
  bench.form.OnGo = [&] {
    bench.clock.AdvanceMs(1000);
    bench.host.LetEventsRun();
    bench.host.Enable(TimerId::Timer1, false);
  };
  bench.lines.Add("click Panel.Go");
  bench.lines.Add("panels", bench.clock.NowMs() + 5000);
  bench.RunAdded();
  EXPECT_EQ(bench.done, (Texts{"tick 1"}));
}

// ---- start and end
// -------------------------------------------------------------------------------

TEST(ConsoleStart, NoCommandIsReadWhileTheProgramStarts) {
  ConsoleFixture bench;
  bench.start = [&] { bench.host.LetEventsRun(); };
  EXPECT_EQ(bench.Run({"click Panel.Go"}), (Texts{"ok 1"}));
}

TEST(ConsoleStart, ABoxOfTheStartIsAnsweredByTheFirstLines) {
  ConsoleFixture bench;
  Answer given = Answer::Ok;
  bench.start = [&] {
    given = bench.host.Ask({"VNA Control", "No instrument", Icon::None, Buttons::RetryCancel});
  };
  EXPECT_EQ(bench.Run({"answer cancel", "get Panel.Field"}), (Texts{"= 7", "ok 2"}));
  EXPECT_EQ(given, Answer::Cancel);
}

TEST(ConsoleStart, WithoutInputABoxOfTheStartEndsTheProcess) {
  ConsoleFixture bench;
  bool passed = false;
  bench.start = [&] {
    bench.host.Ask({"VNA Control", "No instrument", Icon::None, Buttons::RetryCancel});
    passed = true;
  };
  EXPECT_EQ(bench.Run({}), (Texts{"! message VNA Control | No instrument | none | retry/cancel"}));
  EXPECT_EQ(bench.exitLine, "! exit 0");
  EXPECT_FALSE(passed);
}

TEST(ConsoleEnd, QuitInsideAHandlerLeavesItWhereItStands) {
  ConsoleFixture bench;
  bool passed = false;
  bench.form.OnGo = [&] {
    bench.host.LetEventsRun();
    passed = true;
  };
  EXPECT_EQ(bench.Run({"click Panel.Go", "quit", "panels"}),
            (Texts{"ok 2", "error 1: the program ended"}));
  EXPECT_EQ(bench.exitLine, "! exit 0");
  EXPECT_FALSE(passed);
}

TEST(ConsoleEnd, AProcessThatEndsItselfFirstFinishesTheHandler) {
  ConsoleFixture bench;
  bench.form.OnGo = [&] {
    bench.host.EndProcess(3);
    bench.host.Beep();
  };
  EXPECT_EQ(bench.Run({"click Panel.Go", "panels"}), (Texts{"! beep", "ok 1"}));
  EXPECT_EQ(bench.exitLine, "! exit 3");
  EXPECT_EQ(bench.code, 3);
}

TEST(ConsoleEnd, ASignalLeavesWithoutAskingAndBoxesReturnAsIfClosed) {
  ConsoleFixture bench;
  bool signal = false;
  Answer given = Answer::Yes;
  bench.host.OnSignal = [&] { return signal; };
  bench.host.OnLeave = [&] {
    bench.done.push_back("leave");
    bench.host.EndProcess(0);
  };
  bench.host.OnPrompt = [&](const Message&) { signal = true; };
  bench.form.OnGo = [&] { given = bench.host.Ask({"T", "Keep?", Icon::Question, Buttons::YesNo}); };
  EXPECT_EQ(bench.Run({"click Panel.Go", "answer yes"}),
            (Texts{"! message T | Keep? | question | yes/no", "error 1: the program ended"}));
  EXPECT_EQ(bench.done, Texts{"leave"});
  EXPECT_EQ(bench.exitLine, "! exit 0");
}

TEST(ConsoleEnd, AProcessEndsFromNestedMessageLoopsToo) {
  ConsoleFixture bench;
  bench.form.OnGo = [&] { bench.host.ShowModal("Other"); };
  bench.other.OnGo = [&] { bench.host.EndProcess(0); };
  EXPECT_EQ(bench.Run({"click Panel.Go", "click Other.Go", "panels"}),
            (Texts{"! show Other", "ok 2", "error 1: the program ended"}));
}

TEST(ConsoleEnd, TheEndOfTheInputDuringAWaitComesAfterTheWait) {
  ConsoleFixture bench;
  const std::int64_t before = bench.clock.NowMs();
  EXPECT_EQ(bench.Run({"wait ms 700"}), (Texts{"ok 1"}));
  EXPECT_EQ(bench.clock.NowMs(), before + 700);
}

}  // namespace
}  // namespace qk::test
