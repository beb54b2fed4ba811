// SPDX-License-Identifier: MIT
#include "console/console_host.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "console/words.h"

namespace qk {

namespace {
// The longest sleep while the toolkit may have its own events (a serial adaptor unplugged).
constexpr int kToolkitSliceMs = 50;
constexpr int kLinesPerRound = 4;
}  // namespace

ConsoleClock SteadyConsoleClock() {
  using namespace std::chrono;
  return {
      [] { return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count(); },
      [](std::int64_t ms) { std::this_thread::sleep_for(milliseconds(ms)); }};
}

ConsoleHost::ConsoleHost(FormRegistry& registry, LineSource& lines, Output output,
                         ConsoleClock clock)
    : RegistryWindows(registry),
      lines_(lines),
      output_(std::move(output)),
      clock_(std::move(clock)) {}

void ConsoleHost::Write(std::string_view head, std::string_view text) {
  output_(std::string(head) + console::OneLine(text));
}

// ---- the message loop ----------------------------------------------------------------------

int ConsoleHost::Run(const std::function<void()>& start) {
  int code = 0;
  try {
    starting_ = true;
    start();
    starting_ = false;
    for (;;) Turn();
  } catch (const ProcessEnd& end) {
    code = end.Code;
  }
  while (!open_.empty()) {
    const std::size_t last = open_.size() - 1;
    End(last, open_[last].Ended
                  ? open_[last].Closing
                  : "error " + std::to_string(open_[last].Number) + ": the program ended");
  }
  Write("! exit ", std::to_string(code));
  return code;
}

bool ConsoleHost::Reading() const {
  if (leaving_) return false;
  return !prompts_.empty() || (!starting_ && !wait_);
}

void ConsoleHost::RunDue() {
  if (OnEvents) OnEvents();
  LeaveIfRequested();
  if (exitCode_ && MustEndFirst() == nullptr) throw ProcessEnd{*exitCode_};
  for (const TimerId id : {TimerId::Timer1, TimerId::Timer2, TimerId::Timer3}) {
    TimerState& timer = Timer(id);
    const std::int64_t now = clock_.NowMs();
    if (Holds(id) || !timer.On || timer.IntervalMs <= 0 || timer.DueMs > now) continue;
    timer.DueMs = now + timer.IntervalMs;  // missed periods are not repeated
    if (OnTick) OnTick(id);
  }
  FinishWait();
}

void ConsoleHost::LeaveIfRequested() {
  if (leaving_ || !OnSignal || !OnSignal()) return;
  LeavePrompts();
  if (OnLeave) OnLeave();
}

void ConsoleHost::LeavePrompts() {
  leaving_ = true;
  for (Prompt* prompt : prompts_) prompt->Done = true;
}

const Form* ConsoleHost::MustEndFirst() {
  for (const Form* form : registry().All())
    if (!form->MayBeCutOff()) return form;
  return nullptr;
}

void ConsoleHost::LetEventsRun() {
  RunDue();
  // Limited, so that continuous commands do not block the sweep.
  for (int line = 0; line < kLinesPerRound && Reading() && TakeLine(0); ++line) RunDue();
}

void ConsoleHost::Turn() {
  RunDue();
  const int ms = MsToNextEvent();
  if (Reading())
    TakeLine(ms);
  else
    clock_.Sleep(ms < 0 ? kToolkitSliceMs : ms);
}

int ConsoleHost::MsToNextEvent() {
  constexpr std::int64_t kNever = 86'400'000;
  const std::int64_t now = clock_.NowMs();
  std::int64_t ms = kNever;
  for (const TimerId id : {TimerId::Timer1, TimerId::Timer2, TimerId::Timer3})
    if (const TimerState& timer = Timer(id); timer.On && timer.IntervalMs > 0 && !Holds(id))
      ms = std::min(ms, timer.DueMs - now);
  if (wait_ && wait_->For.UntilMs) ms = std::min(ms, *wait_->For.UntilMs - now);
  if (OnEvents) ms = std::min<std::int64_t>(ms, kToolkitSliceMs);
  return ms == kNever ? -1 : static_cast<int>(std::max<std::int64_t>(0, ms));
}

LineSource::Got ConsoleHost::NextLine(int waitMs, std::string& line) {
  if (!held_) return lines_.Next(waitMs, line);
  line = std::move(*held_);
  held_.reset();
  return LineSource::Got::Line;
}

void ConsoleHost::BreatheBut(std::string_view window, std::string_view control) {
  if (held_ || leaving_) return;
  std::string line;
  if (lines_.Next(0, line) != LineSource::Got::Line) return;
  const auto words = console::Words(line);
  const bool clicks = words.size() == 2 && words[0] == "click" &&
                      words[1] == std::string(window) + "." + std::string(control);
  held_ = std::move(line);
  if (clicks) TakeLine(0);
}

bool ConsoleHost::TakeLine(int waitMs) {
  std::string line;
  switch (NextLine(waitMs, line)) {
    case LineSource::Got::Nothing:
      return false;
    case LineSource::Got::End:
      // Like "quit": no further input can arrive.
      exitCode_ = lines_.Broken().empty() ? 0 : 2;
      if (MustEndFirst() == nullptr) throw ProcessEnd{*exitCode_};
      LeavePrompts();
      return false;
    case LineSource::Got::Line:
      break;
  }
  if (!line.empty() && line.back() == '\r') line.pop_back();
  const std::size_t first = line.find_first_not_of(" \t");
  if (first == std::string::npos || line[first] == '#') return true;
  RunCommand(line.substr(first));
  return true;
}

// ---- commands ------------------------------------------------------------------------------

void ConsoleHost::RunCommand(const std::string& line) {
  const std::size_t index = open_.size();
  open_.push_back({++commands_, false, {}});
  const std::string number = std::to_string(open_[index].Number);
  const Outcome outcome = OnCommand ? OnCommand(line) : Outcome::Refused("no program");
  switch (outcome.What) {
    case Outcome::Kind::Done:
      End(index, "ok " + number);
      break;
    case Outcome::Kind::Refused:
      End(index, "error " + number + ": " + console::OneLine(outcome.Reason));
      break;
    case Outcome::Kind::Waiting:
      FinishWait();
      break;
  }
}

// Closing lines are written innermost first: a command that ended before a command nested in it is
// closed after that one.
void ConsoleHost::End(std::size_t command, std::string closing) {
  open_[command].Ended = true;
  open_[command].Closing = std::move(closing);
  while (!open_.empty() && open_.back().Ended) {
    output_(open_.back().Closing);
    open_.pop_back();
  }
}

void ConsoleHost::Wait(Condition condition) {
  wait_ = PendingWait{open_.size() - 1, std::move(condition)};
}

void ConsoleHost::FinishWait() {
  if (!wait_) return;
  const Condition& condition = wait_->For;
  const bool late = condition.UntilMs && clock_.NowMs() >= *condition.UntilMs;
  if (late || condition.Done()) {
    const std::size_t command = wait_->Command;
    wait_.reset();
    End(command, "ok " + std::to_string(open_[command].Number));
  } else if (condition.NeedsInput && condition.NeedsInput() && !held_ && lines_.AtEnd()) {
    RefuseWait("the input has ended, so no command can stop the sweep");
  }
}

void ConsoleHost::RefuseWait(const std::string& reason) {
  const std::size_t command = wait_->Command;
  wait_.reset();
  End(command, "error " + std::to_string(open_[command].Number) + ": " + reason);
}

void ConsoleHost::Quit() {
  open_.back().Ended = true;
  open_.back().Closing = "ok " + std::to_string(open_.back().Number);
  throw ProcessEnd{0};
}

void ConsoleHost::EndProcess(int code) {
  exitCode_ = code;
}

// ---- boxes and dialogs -----------------------------------------------------------------------

void ConsoleHost::AwaitAnswer(Prompt& prompt) {
  prompts_.push_back(&prompt);
  bool working = prompt.Box != nullptr && prompt.Box->BackgroundWork;
  while (!prompt.Done) {
    if (!working) {
      Turn();
      continue;
    }
    working = prompt.Box->BackgroundWork();
    RunDue();
    if (!prompt.Done && Reading()) TakeLine(0);
  }
  std::erase(prompts_, &prompt);
}

Answer ConsoleHost::Ask(const Message& message) {
  const Answer least = message.Choice == Buttons::YesNo ? Answer::No : Answer::Cancel;
  if (OnPrompt && !leaving_) OnPrompt(message);
  Write("! message ", message.Title + " | " + message.Text + " | " +
                          std::string(console::IconWord(message.MessageIcon)) + " | " +
                          std::string(console::ButtonsWord(message.Choice)));
  if (leaving_) return least;
  Prompt prompt;
  prompt.Box = &message;
  prompt.Given = least;
  AwaitAnswer(prompt);
  return prompt.Given;
}

std::optional<std::string> ConsoleHost::Choose(const Dialog& dialog) {
  if (leaving_) return std::nullopt;
  Write("! dialog ", std::string(console::DialogWord(dialog.Kind)) + " | " + dialog.Title + " | " +
                         dialog.Folder + " | " + dialog.Filter);
  Prompt prompt;
  prompt.Choice = &dialog;
  AwaitAnswer(prompt);
  return prompt.Chosen;
}

const Message* ConsoleHost::Box() const {
  return prompts_.empty() ? nullptr : prompts_.back()->Box;
}

const Dialog* ConsoleHost::DialogUp() const {
  return prompts_.empty() ? nullptr : prompts_.back()->Choice;
}

void ConsoleHost::Answered(Answer answer) {
  prompts_.back()->Given = answer;
  prompts_.back()->Done = true;
}

void ConsoleHost::Chosen(std::optional<std::string> choice) {
  prompts_.back()->Chosen = std::move(choice);
  prompts_.back()->Done = true;
}

// ---- windows, panels, timers -----------------------------------------------------------------

void ConsoleHost::DoModal(Form& form) {
  modal_.push_back(&form);
  while (form.Shown && !leaving_) {
    Turn();
    // A sweep is paused under a modal window: waiting for it would never end.
    if (form.Shown && wait_ && wait_->For.NeedsSweep && modal_.back() == &form)
      RefuseWait("the sweep is paused while " + form.Name() + " is up");
  }
  std::erase(modal_, &form);
}

void ConsoleHost::PanelChanged(Panel panel, const std::string& text) {
  const auto n = static_cast<std::size_t>(panel);
  std::string& shown = panels_[n];
  if (shown == text) return;
  shown = text;
  Write("! panel ", std::to_string(n) + " " + text);
}

void ConsoleHost::SetInterval(TimerId timer, int ms) {
  Timer(timer).IntervalMs = ms;
  Timer(timer).DueMs = clock_.NowMs() + ms;
}

void ConsoleHost::Enable(TimerId timer, bool on) {
  TimerState& state = Timer(timer);
  if (on && !state.On) state.DueMs = clock_.NowMs() + state.IntervalMs;
  state.On = on;
}

}  // namespace qk
