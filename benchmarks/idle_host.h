// SPDX-License-Identifier: MIT
// The host for benchmarks: a real clock, no user.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "core/host.h"

namespace qk::benchmarks {

class IdleHost : public Prompts, public Windows, public EventLoop {
 public:
  Host host() { return {*this, *this, *this}; }
  // Called whenever the program lets events run.
  std::function<void()> OnEvents;

  Answer Ask(const Message&) override { return Answer::Ok; }
  std::optional<std::string> Choose(const Dialog&) override { return std::nullopt; }
  void Show(std::string_view) override {}
  void Hide(std::string_view) override {}
  void HideForRestart() override {}
  void Refresh(std::string_view) override {}
  void SessionChanged() override {}
  void SessionLoaded() override {}
  void SweepEnded() override {}
  void OpenDocument(const std::string&) override {}
  void Progress(std::string_view, std::string_view, int) override {}
  void PanelChanged(Panel, const std::string&) override {}
  void Beep() override {}
  void EndProcess(int) override {}
  std::int64_t NowMs() override {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
  }
  void SetInterval(TimerId, int) override {}
  void Enable(TimerId, bool) override {}
  bool Enabled(TimerId) override { return false; }
  void LetEventsRun() override {
    if (OnEvents) OnEvents();
  }
  void Breathe() override {}
};

}  // namespace qk::benchmarks
