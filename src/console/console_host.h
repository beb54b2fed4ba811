// SPDX-License-Identifier: MIT
// The surroundings of the program when it is run from lines of text: message boxes and dialogs as
// events that wait for an answer, windows as events, timers, and the message loop that reads the
// commands.
//
// Commands are numbered from 1 as they are read, and closed from the innermost outward by one line
// each, "ok N" or "error N: REASON". A command whose handler lets events run stays open meanwhile;
// what is read then runs nested in it. A waiting command holds the reading back, except while a
// message box or dialog is up.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "console/line_source.h"
#include "forms/form_registry.h"

namespace qk {

struct ConsoleClock {
  std::function<std::int64_t()> NowMs;  // monotonic
  std::function<void(std::int64_t ms)> Sleep;
};

// Steady clock and real sleep.
ConsoleClock SteadyConsoleClock();

class ConsoleHost : public Prompts, public RegistryWindows, public EventLoop {
 public:
  using Output = std::function<void(const std::string& line)>;

  // What a command came to. Waiting: it is closed later, when its condition holds.
  struct Outcome {
    enum class Kind { Done, Refused, Waiting } What = Kind::Done;
    std::string Reason;
    static Outcome Done() { return {}; }
    static Outcome Refused(std::string reason) { return {Kind::Refused, std::move(reason)}; }
    static Outcome Waiting() { return {Kind::Waiting, {}}; }
  };

  // Thrown out of the message loop when the process is to end; unwinds the handlers that run.
  struct ProcessEnd {
    int Code;
  };

  ConsoleHost(FormRegistry& registry, LineSource& lines, Output output, ConsoleClock clock);

  Host host() { return {*this, *this, *this}; }

  std::function<Outcome(const std::string& line)> OnCommand;
  std::function<void(TimerId)> OnTick;
  std::function<void(const Message&)> OnPrompt;  // a box is about to be shown; may be empty
  std::function<void()> OnEvents;  // the toolkit's own events, if it has any; may be empty
  std::function<bool()> OnSignal;  // true when the process is told to end; may be empty
  std::function<void()> OnLeave;   // ends the program then, as its Exit does without asking

  // Runs start (no command is read meanwhile, but answers to its boxes), then the message loop,
  // until the process is to end. Gives the exit code, having written "! exit CODE".
  int Run(const std::function<void()>& start);

  // ---- for commands --------------------------------------------------------------------------
  void Reply(std::string_view text) { Write("= ", text); }
  struct Condition {
    std::function<bool()> Done;
    std::optional<std::int64_t> UntilMs = {};
    bool NeedsSweep = false;  // cannot come while the sweep is held up by a modal window
    // True while it cannot come without a further command; may be empty.
    std::function<bool()> NeedsInput = {};
  };
  // Holds the running command open, and the reading back, until the condition is done or its moment
  // has come.
  void Wait(Condition condition);
  // The message box or dialog that is up, innermost; nullptr when none is.
  const Message* Box() const;
  const Dialog* DialogUp() const;
  void Answered(Answer answer);
  void Chosen(std::optional<std::string> choice);
  // The modal window that other windows wait for; nullptr when none is up.
  Form* ModalWindow() const { return modal_.empty() ? nullptr : modal_.back(); }
  // Ends the process at once.
  [[noreturn]] void Quit();
  // The window whose work must come to its end first; nullptr when none is at such work.
  const Form* MustEndFirst();

  // ---- the interfaces ------------------------------------------------------------------------
  Answer Ask(const Message& message) override;
  std::optional<std::string> Choose(const Dialog& dialog) override;
  void PanelChanged(Panel panel, const std::string& text) override;
  // A text front panel shows no documents.
  void OpenDocument(const std::string&) override {}
  void Beep() override { Write("! ", "beep"); }
  void EndProcess(int code) override;
  std::int64_t NowMs() override { return clock_.NowMs(); }
  void SetInterval(TimerId timer, int ms) override;
  void Enable(TimerId timer, bool on) override;
  bool Enabled(TimerId timer) override { return Timer(timer).On; }
  void LetEventsRun() override;
  void Breathe() override {}  // nothing to repaint
  // Takes the next line when it clicks that button; any other one waits.
  void BreatheBut(std::string_view window, std::string_view control) override;

 protected:
  void DoShow(Form& form) override { Write("! show ", form.Name()); }
  void DoHide(Form& form) override { Write("! hide ", form.Name()); }
  void DoModal(Form& form) override;
  void DoRefresh(Form&) override {}

 private:
  struct Prompt {
    const Message* Box = nullptr;
    const Dialog* Choice = nullptr;
    bool Done = false;
    Answer Given = Answer::Ok;
    std::optional<std::string> Chosen;
  };
  struct Command {
    int Number;
    bool Ended;
    std::string Closing;
  };
  struct PendingWait {
    std::size_t Command;
    Condition For;
  };
  struct TimerState {
    int IntervalMs = 0;
    bool On = false;
    std::int64_t DueMs = 0;
  };

  // Timer1 may ask something itself, so its tick waits until a box that is up has been answered.
  bool Holds(TimerId timer) const { return timer == TimerId::Timer1 && !prompts_.empty(); }
  TimerState& Timer(TimerId timer) { return timers_[static_cast<std::size_t>(timer) - 1]; }
  void Write(std::string_view head, std::string_view text);
  void AwaitAnswer(Prompt& prompt);
  bool Reading() const;
  void LeaveWhenTold();
  // Nobody is left who could answer: boxes and dialogs that are up return as if they had been
  // closed, later ones at once (a box is reported all the same), and no line is read any more.
  void LeavePrompts();
  // What is due without waiting: toolkit events, timers, the end of a wait, the end of the process.
  void RunDue();
  // One turn of a message loop that has nothing beneath it to return to: waits for the next event.
  void Turn();
  int MsToNextEvent();
  bool TakeLine(int waitMs);
  LineSource::Got NextLine(int waitMs, std::string& line);
  void RunCommand(const std::string& line);
  void End(std::size_t command, std::string closing);
  void FinishWait();
  void RefuseWait(const std::string& reason);

  LineSource& lines_;
  Output output_;
  ConsoleClock clock_;
  std::array<TimerState, 3> timers_;
  std::array<std::string, 8> panels_;
  std::vector<Prompt*> prompts_;  // that are up, innermost last
  std::vector<Form*> modal_;
  std::vector<Command> open_;  // commands not closed yet, outermost first
  std::optional<PendingWait> wait_;
  std::optional<std::string> held_;  // a line that was read and has to wait
  std::optional<int> exitCode_;
  int commands_ = 0;
  bool starting_ = false;
  bool leaving_ = false;
};

}  // namespace qk
