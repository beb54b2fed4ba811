// SPDX-License-Identifier: MIT
// The program's surroundings for tests: a clock that the test controls, prompts answered from a
// list, windows that record the calls.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/host.h"
#include "forms/form_registry.h"

namespace qk::test {

// Time in microseconds, advanced by sleeping or by the test.
class FakeClock {
 public:
  std::int64_t NowUs() const { return us_; }
  std::int64_t NowMs() const { return us_ / 1000; }
  void AdvanceUs(std::int64_t us) { us_ += us; }
  void AdvanceMs(std::int64_t ms) { us_ += ms * 1000; }

 private:
  std::int64_t us_ = 1'000'000;
};

class FakeHost : public Prompts, public RegistryWindows, public EventLoop {
 public:
  explicit FakeHost(FakeClock& clock);

  Host host() { return {*this, *this, *this}; }
  FormRegistry& registry() { return registry_; }

  // ---- recorded calls -------------------------------------------------------------------------
  std::vector<Message> Messages;
  std::vector<Dialog> Dialogs;
  std::vector<std::string> Events;  // "show X", "hide X", "panel 3 ...", "beep", "exit 0"
  std::array<std::string, 8> Panels;
  int Beeps = 0;
  std::optional<int> ExitCode;
  // Includes windows without a form: tests of lower layers register no forms, and then any name is
  // accepted.
  std::map<std::string, bool> ShownWindows;
  std::map<std::string, std::vector<int>> Progresses;  // by window name
  std::vector<std::string> Documents;                  // opened with the system's viewer
  int DroppedInputs = 0;                               // how often waiting input was discarded

  // The texts of all messages, for comparing complete lists: "Title|Text|icon|buttons".
  std::vector<std::string> MessageTexts() const;
  bool IsShown(const std::string& window) const;

  // ---- scripted answers -----------------------------------------------------------------------
  // Answers to boxes with a choice, in order; an OK box is answered automatically. When the list is
  // empty, boxes are answered No or Cancel. The work of a box finishes before the answer.
  std::deque<Answer> Answers;
  std::deque<std::optional<std::string>> Choices;
  std::function<void(const Message&)> OnAsk;  // while the box is open
  std::function<void(Form&)> OnModal;         // while a modal form is open; it must hide it
  std::function<void(TimerId)> OnTick;        // receives timer ticks

  // ---- time ----------------------------------------------------------------------------------
  // Runs action at the first LetEventsRun at or after that time.
  void At(std::int64_t nowMs, std::function<void()> action);
  // Called in every LetEventsRun, before timers.
  std::function<void()> OnEvents;
  std::function<void()> OnBreathe;
  // Simulates an idle message loop for ms milliseconds: moves the clock from event to event.
  void RunFor(std::int64_t ms);
  int EventRuns = 0;
  LocalTime Wall{2026, 3, 9, 14, 5, 30};  // constant
  std::int64_t UnixStart = 1773065130;    // 2026-03-09T14:05:30Z, when the fake clock is at 0

  // ---- the interfaces ------------------------------------------------------------------------
  Answer Ask(const Message& message) override;
  std::optional<std::string> Choose(const Dialog& dialog) override;
  void Show(std::string_view window) override;
  void Hide(std::string_view window) override;
  void Refresh(std::string_view window) override;
  void DropInput() override { ++DroppedInputs; }
  void OpenDocument(const std::string& path) override { Documents.push_back(path); }
  void Progress(std::string_view window, std::string_view bar, int percent) override;
  void PanelChanged(Panel panel, const std::string& text) override;
  void Beep() override;
  void EndProcess(int code) override;
  std::int64_t NowMs() override { return clock_.NowMs(); }
  LocalTime Now() override { return Wall; }
  std::int64_t UnixSeconds() override { return UnixStart + clock_.NowMs() / 1000; }
  void SetInterval(TimerId timer, int ms) override;
  void Enable(TimerId timer, bool on) override;
  bool Enabled(TimerId timer) override;
  int Interval(TimerId timer) const { return timers_.at(timer).IntervalMs; }
  void LetEventsRun() override;
  void Breathe() override;

 protected:
  void DoShow(Form&) override {}
  void DoHide(Form&) override {}
  void DoModal(Form& form) override;
  void DoRefresh(Form&) override {}

 private:
  struct TimerState {
    int IntervalMs = 0;
    bool On = false;
    std::int64_t DueMs = 0;
  };
  struct Due {
    std::int64_t AtMs;
    std::function<void()> Action;
  };
  void FireDue();

  bool HasForms() const { return !registry_.All().empty(); }

  FakeClock& clock_;
  FormRegistry registry_;
  std::map<TimerId, TimerState> timers_;
  std::vector<Due> due_;
};

}  // namespace qk::test
