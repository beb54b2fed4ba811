// SPDX-License-Identifier: MIT
// The complete program, operated by window and control name like a user does. The instrument is
// scripted or simulated.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "forms/program.h"
#include "support/fake_host.h"
#include "support/link_fixture.h"
#include "support/recording_canvas.h"
#include "support/scratch_folder.h"
#include "support/scripted_port.h"

namespace qk::test {

using Texts = std::vector<std::string>;

// User actions on the windows of a program.
class Hands {
 public:
  explicit Hands(FakeHost& fake) : fake_(fake) {}

  Form& Window(std::string_view name) {
    Form* form = fake_.registry().Find(name);
    if (form == nullptr) throw std::runtime_error("no window " + std::string(name));
    return *form;
  }
  const Control& At(std::string_view path) {
    const auto [window, control] = Split(path);
    const Control* found = Window(window).Find(control);
    if (found == nullptr) throw std::runtime_error("no control " + std::string(path));
    return *found;
  }
  std::string Value(std::string_view path) { return At(path).Value(); }

  // Each returns false if the control cannot be operated: missing, disabled, no such entry.
  bool Click(std::string_view path) {
    const auto [window, control] = Split(path);
    return Window(window).Click(control);
  }
  bool Type(std::string_view path, std::string_view text) {
    const auto [window, control] = Split(path);
    return Window(window).Type(control, text);
  }
  bool Pick(std::string_view path, std::string_view entry) {
    const auto [window, control] = Split(path);
    return Window(window).SelectText(control, entry);
  }

 private:
  static std::pair<std::string_view, std::string_view> Split(std::string_view path) {
    const std::size_t dot = path.find('.');
    return {path.substr(0, dot), path.substr(dot + 1)};
  }
  FakeHost& fake_;
};

template <class Line>
struct ProgramFixture : Line, Hands {
  template <class... Arguments>
  explicit ProgramFixture(Arguments&&... arguments)
      : Line(std::forward<Arguments>(arguments)...), Hands(fake) {
    fake.OnTick = [this](TimerId timer) { program.Tick(timer); };
  }

  using Line::clock;
  using Line::port;
  FakeHost fake{clock};
  RecordingSurface surface;
  ScratchFolder folder;
  Program program{fake.registry(), fake.host(), port, surface, ProgramOptions{folder.Text(), 1}};
  Session& session = program.session();

  // Returns all messages so far and clears the list.
  Texts TakeMessages() {
    auto texts = fake.MessageTexts();
    fake.Messages.clear();
    return texts;
  }
};

// An instrument with fixed replies on COM 1, already found; no sweep plan, no calibration.
struct ScriptedProgram : ProgramFixture<ScriptedLine> {
  ScriptedInstrument instrument{port};

  ScriptedProgram() {
    port.SetPort(1);
    session.Id.PortNumber = 1;
    session.Id.FirmwareVersion = "1.2";
    fake.Show("Form1");
  }

  void OpenCalibration() { fake.Show("Calibration"); }
  void OpenDisplay() { Click("Form1.SetDisplay"); }
  void OpenEnhancement() { Click("Form1.SetEnhancement"); }

  // Sets the state of a running, or of a stopping, sweep.
  void PretendSweep() {
    session.Flags.SweepIdle = false;
    session.Flags.SweepRunning = true;
  }
  void PretendStopping() {
    session.Flags.SweepIdle = false;
    session.Flags.SweepRunning = false;
  }
};

}  // namespace qk::test
