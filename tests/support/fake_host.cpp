// SPDX-License-Identifier: MIT
#include "support/fake_host.h"

#include <algorithm>
#include <utility>

namespace qk::test {

namespace {
const char* IconName(Icon icon) {
  switch (icon) {
    case Icon::None:
      return "none";
    case Icon::Information:
      return "information";
    case Icon::Question:
      return "question";
    case Icon::Exclamation:
      return "exclamation";
    case Icon::Critical:
      return "critical";
  }
  return "";
}

const char* ButtonsName(Buttons buttons) {
  switch (buttons) {
    case Buttons::Ok:
      return "ok";
    case Buttons::OkCancel:
      return "ok/cancel";
    case Buttons::YesNo:
      return "yes/no";
    case Buttons::RetryCancel:
      return "retry/cancel";
  }
  return "";
}
}  // namespace

FakeHost::FakeHost(FakeClock& clock) : RegistryWindows(registry_), clock_(clock) {
  for (TimerId id : {TimerId::Timer1, TimerId::Timer2, TimerId::Timer3}) timers_[id];
}

std::vector<std::string> FakeHost::MessageTexts() const {
  std::vector<std::string> texts;
  for (const Message& m : Messages)
    texts.push_back(m.Title + "|" + m.Text + "|" + IconName(m.MessageIcon) + "|" +
                    ButtonsName(m.Choice));
  return texts;
}

bool FakeHost::IsShown(const std::string& window) const {
  const auto it = ShownWindows.find(window);
  return it != ShownWindows.end() && it->second;
}

void FakeHost::At(std::int64_t nowMs, std::function<void()> action) {
  due_.push_back({nowMs, std::move(action)});
}

void FakeHost::FireDue() {
  const std::int64_t now = clock_.NowMs();
  for (;;) {
    const auto it =
        std::find_if(due_.begin(), due_.end(), [now](const Due& d) { return d.AtMs <= now; });
    if (it == due_.end()) break;
    const auto action = std::move(it->Action);
    due_.erase(it);
    action();
  }
  for (TimerId id : {TimerId::Timer1, TimerId::Timer2, TimerId::Timer3}) {
    TimerState& t = timers_[id];
    if (!t.On || t.IntervalMs <= 0 || t.DueMs > clock_.NowMs()) continue;
    t.DueMs = clock_.NowMs() + t.IntervalMs;  // missed periods are not repeated
    if (OnTick) OnTick(id);
  }
}

void FakeHost::RunFor(std::int64_t ms) {
  const std::int64_t end = clock_.NowMs() + ms;
  for (;;) {
    FireDue();
    std::int64_t next = end;
    for (const auto& [id, t] : timers_)
      if (t.On && t.IntervalMs > 0) next = std::min(next, t.DueMs);
    for (const Due& d : due_) next = std::min(next, d.AtMs);
    const std::int64_t now = clock_.NowMs();
    if (now >= end) break;
    clock_.AdvanceMs(std::max<std::int64_t>(1, next - now));
  }
}

Answer FakeHost::Ask(const Message& message) {
  Messages.push_back(message);
  Answer answer = Answer::Ok;
  if (message.Choice != Buttons::Ok) {
    if (!Answers.empty()) {
      answer = Answers.front();
      Answers.pop_front();
    } else if (!message.AsksToConnect) {
      answer = message.Choice == Buttons::YesNo ? Answer::No : Answer::Cancel;
    }
  }
  if (OnAsk) OnAsk(message);
  if (message.BackgroundWork) {
    while (message.BackgroundWork()) {
    }
  }
  return answer;
}

std::optional<std::string> FakeHost::Choose(const Dialog& dialog) {
  Dialogs.push_back(dialog);
  if (Choices.empty()) return std::nullopt;
  auto choice = Choices.front();
  Choices.pop_front();
  return choice;
}

void FakeHost::Show(std::string_view window) {
  bool& shown = ShownWindows[std::string(window)];
  if (!shown) Events.push_back("show " + std::string(window));
  shown = true;
  if (HasForms()) RegistryWindows::Show(window);
}

void FakeHost::Hide(std::string_view window) {
  bool& shown = ShownWindows[std::string(window)];
  if (shown) Events.push_back("hide " + std::string(window));
  shown = false;
  if (HasForms()) RegistryWindows::Hide(window);
}

void FakeHost::Refresh(std::string_view window) {
  if (HasForms()) RegistryWindows::Refresh(window);
}

void FakeHost::Progress(std::string_view window, std::string_view bar, int percent) {
  Progresses[std::string(window)].push_back(percent);
  if (HasForms()) RegistryWindows::Progress(window, bar, percent);
}

void FakeHost::PanelChanged(Panel panel, const std::string& text) {
  const auto n = static_cast<std::size_t>(panel);
  Panels[n] = text;
  Events.push_back("panel " + std::to_string(n) + " " + text);
}

void FakeHost::Beep() {
  ++Beeps;
  Events.push_back("beep");
}

void FakeHost::EndProcess(int code) {
  ExitCode = code;
  Events.push_back("exit " + std::to_string(code));
}

void FakeHost::SetInterval(TimerId timer, int ms) {
  TimerState& t = timers_[timer];
  t.IntervalMs = ms;
  t.DueMs = clock_.NowMs() + ms;
}

void FakeHost::Enable(TimerId timer, bool on) {
  TimerState& t = timers_[timer];
  if (on && !t.On) t.DueMs = clock_.NowMs() + t.IntervalMs;
  t.On = on;
}

bool FakeHost::Enabled(TimerId timer) {
  return timers_[timer].On;
}

void FakeHost::LetEventsRun() {
  ++EventRuns;
  if (OnEvents) OnEvents();
  FireDue();
}

void FakeHost::Breathe() {
  if (OnBreathe) OnBreathe();
}

void FakeHost::DoModal(Form& form) {
  if (OnModal) OnModal(form);
  if (form.Shown) Hide(form.Name());
}

}  // namespace qk::test
