// SPDX-License-Identifier: MIT
// The program's surroundings when it is run from lines of text: message boxes and dialogs are
// events that wait for an answer, windows are events, plus timers and the message loop that reads
// the commands.
//
// Commands are numbered from 1 in the order they are read. Each is closed, innermost first, by one
// line, "ok N" or "error N: REASON". A command whose handler lets events run stays open meanwhile;
// commands read then run nested in it. A waiting command stops the reading, except while a message
// box or dialog is open.
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

  // The result of a command. Waiting: it is closed later, when its condition is met.
  struct Outcome {
    enum class Kind { Done, Refused, Waiting } What = Kind::Done;
    std::string Reason;
    static Outcome Done() { return {}; }
    static Outcome Refused(std::string reason) { return {Kind::Refused, std::move(reason)}; }
    static Outcome Waiting() { return {Kind::Waiting, {}}; }
  };

  // Thrown from the message loop to end the process; unwinds the running handlers.
  struct ProcessEnd {
    int Code;
  };

  ConsoleHost(FormRegistry& registry, LineSource& lines, Output output, ConsoleClock clock);

  Host host() { return {*this, *this, *this}; }

  std::function<Outcome(const std::string& line)> OnCommand;
  std::function<void(TimerId)> OnTick;
  std::function<void(const Message&)> OnPrompt;  // called before a box is shown; may be empty
  std::function<void()> OnEvents;  // handles the toolkit's own events, if any; may be empty
  std::function<bool()> OnSignal;  // true if the process was asked to end; may be empty
  std::function<void()> OnLeave;   // then ends the program, like Exit without a question

  // Runs start, then the message loop until the process ends. During start no command is read, only
  // answers to its boxes. Writes "! exit CODE" and returns the exit code.
  int Run(const std::function<void()>& start);

  // ---- for commands --------------------------------------------------------------------------
  void Reply(std::string_view text) { Write("= ", text); }
  struct Condition {
    std::function<bool()> Done;
    std::optional<std::int64_t> UntilMs = {};
    bool NeedsSweep = false;  // cannot be met while a modal window delays the sweep
    // True while only another command can meet the condition; may be empty.
    std::function<bool()> NeedsInput = {};
  };
  // Keeps the running command open, and stops the reading, until the condition is met or its
  // deadline has passed.
  void Wait(Condition condition);
  // The innermost open message box or dialog; nullptr if there is none.
  const Message* Box() const;
  const Dialog* DialogUp() const;
  void Answered(Answer answer);
  void Chosen(std::optional<std::string> choice);
  // The modal window that blocks the other windows; nullptr if there is none.
  Form* ModalWindow() const { return modal_.empty() ? nullptr : modal_.back(); }
  // Ends the process at once.
  [[noreturn]] void Quit();
  // The window with an operation that must finish first; nullptr if there is none.
  const Form* MustEndFirst();

  // ---- the interfaces ------------------------------------------------------------------------
  Answer Ask(const Message& message) override;
  std::optional<std::string> Choose(const Dialog& dialog) override;
  void PanelChanged(Panel panel, const std::string& text) override;
  // A text front panel does not show documents.
  void OpenDocument(const std::string&) override {}
  void Beep() override { Write("! ", "beep"); }
  void EndProcess(int code) override;
  std::int64_t NowMs() override { return clock_.NowMs(); }
  void SetInterval(TimerId timer, int ms) override;
  void Enable(TimerId timer, bool on) override;
  bool Enabled(TimerId timer) override { return Timer(timer).On; }
  void LetEventsRun() override;
  void Breathe() override {}  // nothing to repaint
  // Handles the next line if it clicks that button; any other line waits.
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

  // Timer1 may show a prompt itself, so its tick waits until an open box has been answered.
  bool Holds(TimerId timer) const { return timer == TimerId::Timer1 && !prompts_.empty(); }
  TimerState& Timer(TimerId timer) { return timers_[static_cast<std::size_t>(timer) - 1]; }
  void Write(std::string_view head, std::string_view text);
  void AwaitAnswer(Prompt& prompt);
  bool Reading() const;
  void LeaveIfRequested();
  // The input has ended, so no answer can come: open boxes and dialogs return as if closed, later
  // ones return at once (a box is still reported), and no further line is read.
  void LeavePrompts();
  // Handles everything that is due, without waiting: toolkit events, timers, the end of a wait, the
  // end of the process.
  void RunDue();
  // One iteration of the outermost message loop: waits for the next event.
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
  std::vector<Prompt*> prompts_;  // open prompts, innermost last
  std::vector<Form*> modal_;
  std::vector<Command> open_;  // commands not yet closed, outermost first
  std::optional<PendingWait> wait_;
  std::optional<std::string> held_;  // a line that was read and must wait
  std::optional<int> exitCode_;
  int commands_ = 0;
  bool starting_ = false;
  bool leaving_ = false;
};

}  // namespace qk
