// The surroundings for benchmarks: a real clock, nobody at the screen, nothing drawn.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "core/host.h"
#include "display/canvas.h"

namespace qk::benchmarks {

class IdleHost : public Prompts, public Windows, public Time {
 public:
  Host host() { return {*this, *this, *this}; }
  // Called whenever the program lets events run.
  std::function<void()> OnEvents;
  int MessagesSeen = 0;

  Answer Ask(const Message&) override {
    ++MessagesSeen;
    return Answer::Ok;
  }
  std::optional<std::string> Choose(const Dialog&) override { return std::nullopt; }
  void Show(std::string_view) override {}
  void ShowModal(std::string_view) override {}
  void Hide(std::string_view) override {}
  void HideForRestart() override {}
  void Refresh(std::string_view) override {}
  void SessionChanged() override {}
  void OpenDocument(const std::string&) override {}
  void Progress(std::string_view, std::string_view, int) override {}
  void PanelChanged(int, const std::string&) override {}
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

// A picture area of 1000 by 640 pixels that draws nothing.
class IdleSurface : public PictureSurface, public Canvas {
 public:
  Canvas& Picture() override { return *this; }
  void Commit() override {}
  void Wipe() override {}
  void Present() override {}
  Extent Size() const override { return {1000, 640}; }
  void SetPen(std::uint32_t, PenStyle, int) override {}
  void SetFontSize(int) override {}
  Extent TextExtent(std::string_view text) const override {
    return {static_cast<int>(text.size()) * 7, 12};
  }
  void DrawLine(CanvasPoint, CanvasPoint) override {}
  void DrawRectangle(CanvasPoint, CanvasPoint) override {}
  void FillRectangle(CanvasPoint, CanvasPoint, std::uint32_t) override {}
  void DrawEllipse(CanvasPoint, CanvasPoint) override {}
  void DrawArc(CanvasPoint, CanvasPoint, double, double) override {}
  void DrawPolyline(std::span<const CanvasPoint>) override {}
  void DrawText(CanvasPoint, std::string_view, std::uint32_t) override {}
};

}  // namespace qk::benchmarks
