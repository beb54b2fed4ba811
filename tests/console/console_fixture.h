// SPDX-License-Identifier: MIT
// A console host whose lines come from the test and whose time is the test's clock, over one small
// window.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "console/front_panel.h"
#include "support/fake_host.h"

namespace qk::test {

using Texts = std::vector<std::string>;

// Lines that become available at given times; the input ends after the last one. Waiting advances
// the clock.
class TestLines : public LineSource {
 public:
  explicit TestLines(FakeClock& clock) : clock_(clock) {}

  void Add(std::string line, std::int64_t atMs = 0) { lines_.push_back({std::move(line), atMs}); }
  Got Next(int waitMs, std::string& line) override {
    if (lines_.empty()) return Got::End;
    if (lines_.front().AtMs > clock_.NowMs() && waitMs != 0) {
      const std::int64_t ahead = lines_.front().AtMs - clock_.NowMs();
      clock_.AdvanceMs(waitMs < 0 ? ahead : std::min<std::int64_t>(ahead, waitMs));
    }
    if (lines_.front().AtMs > clock_.NowMs()) return Got::Nothing;
    line = lines_.front().Text;
    lines_.pop_front();
    return Got::Line;
  }
  bool AtEnd() override { return lines_.empty(); }

 private:
  struct Line {
    std::string Text;
    std::int64_t AtMs;
  };
  FakeClock& clock_;
  std::deque<Line> lines_;
};

// One control of each kind, and buttons with actions from the test.
class TestForm : public Form {
 public:
  explicit TestForm(std::string name = "Panel", WindowStyle style = {})
      : Form(std::move(name), "Test panel", style) {
    AddButton("Go", "Go", [this] { Act(OnGo); });
    AddButton("Also", "Also", [this] { Act(OnAlso); });
    AddButton("Dead", "Dead", {}).Enabled(false);
    AddButton("Away", "Away", {}).Shown(false);
    AddMenuItem("File", "Item", "Item", [this] { Act(OnGo); });
    AddText("Field", "Value").Text("7");
    AddText("Fixed", "Fixed").ReadOnly();
    AddCheck("Tick", "Tick");
    AddOption("One", "One", 1);
    AddOption("Two", "Two", 1);
    AddList("List", "Choice", {"51", "101", "1024 (TD)"});
    AddLabel("Told", "Told").Text("two\nlines");
    AddProgress("Bar").Percent(40);
    AddPicture("PicGraph");
    AddPicture("Plot").Picture(56, 40, [](Canvas&) {});
    Choose("One");
  }
  bool OnCloseBox() override {
    Act(OnClose);
    return MayClose;
  }
  bool MayBeCutOff() const override { return !Writing; }

  std::function<void()> OnGo, OnAlso, OnClose;
  bool MayClose = true;
  bool Writing = false;

 private:
  static void Act(const std::function<void()>& action) {
    if (action) action();
  }
};

struct ConsoleFixture {
  explicit ConsoleFixture(WindowStyle otherStyle = {}) : other("Other", otherStyle) {
    registry.Add(form);
    registry.Add(other);
    registry.Add(main);
    reach.SweepsEnded = [this] { return sweepsEnded; };
    reach.PictureSize = [] { return Extent{200, 100}; };
    reach.Mouse = [this](Program::MouseAction action, bool left, int x, int y) {
      done.push_back("mouse " + std::to_string(static_cast<int>(action)) +
                     (left ? " left " : " right ") + std::to_string(x) + " " + std::to_string(y));
    };
    reach.Resize = [this](int width, int height) {
      done.push_back("resize " + std::to_string(width) + " " + std::to_string(height));
    };
    reach.WritePicture = [this](const std::string& path) {
      done.push_back("picture " + path);
      return path == "bad" ? std::string("no format") : std::string();
    };
    reach.WriteDrawing = [this](Extent size, const std::function<void(Canvas&)>&,
                                const std::string& path) {
      done.push_back("drawing " + std::to_string(size.width) + " by " +
                     std::to_string(size.height) + " " + path);
      return path == "bad" ? std::string("no format") : std::string();
    };
    host.OnTick = [this](TimerId id) {
      done.push_back("tick " + std::to_string(static_cast<int>(id)));
      if (onTick) onTick();
    };
  }

  // Runs the lines with the windows Panel and Form1 shown; gives everything written, without the
  // first two events and without the last line, which is in exitLine.
  Texts Run(const Texts& script) {
    for (const std::string& line : script) lines.Add(line);
    return RunAdded();
  }
  Texts RunAdded() {
    const FrontPanel panel(host, reach);
    code = host.Run([this] {
      if (start) start();
      host.Show("Panel");
      host.Show("Form1");
      output.clear();
    });
    exitLine = output.back();
    output.pop_back();
    return output;
  }

  FakeClock clock;
  TestLines lines{clock};
  Texts output;
  std::string exitLine;
  int code = -1;
  Texts done;
  std::function<void()> start, onTick;
  long sweepsEnded = 0;
  FormRegistry registry;
  TestForm form;
  TestForm other;
  TestForm main{"Form1"};
  std::unique_ptr<Session> session = MakeSession();
  ConsoleHost host{registry, lines, [this](const std::string& line) { output.push_back(line); },
                   ConsoleClock{[this] { return clock.NowMs(); },
                                [this](std::int64_t ms) { clock.AdvanceMs(ms); }}};
  FrontPanelReach reach{registry, *session, {}, {}, {}, {}, {}, {}, {}, {}, {}};
};

}  // namespace qk::test
