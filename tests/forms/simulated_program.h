// SPDX-License-Identifier: MIT
// The complete program with the simulated instrument after start-up, the calibration window open.
#pragma once

#include <string>
#include <utility>

#include "support/program_fixture.h"

namespace qk::test {

// Only sleeping advances the clock.
struct SimulatedProgram : ProgramFixture<SimulatedLine> {
  explicit SimulatedProgram(sim::Pace pace = sim::Pace::Unpaced) : ProgramFixture(pace) {
    Bench("offsets 4 -3");
    Bench("temperature 31");
    fake.OnAsk = [this](const Message& message) { instrument.FollowPrompt(message.Text); };
    program.StartUp();
    Click("Form1.SetCal");
  }

  void SetSweep(const char* start, const char* stop, const char* points) {
    Type("Calibration.Text1", start);
    Type("Calibration.Text2", stop);
    Pick("Calibration.PntsCombo", points);
    Click("Calibration.Command1");
  }
  void Choose(const char* option) { Click(std::string("Calibration.") + option); }
  void Press(std::initializer_list<const char*> buttons) {
    for (const char* button : buttons) EXPECT_TRUE(Click(std::string("Calibration.") + button));
  }
  // Applies, connects the device again, and runs one complete sweep.
  void ApplyAndMeasure(const std::string& device) {
    Click("Calibration.App_Cal");
    instrument.BackToDevice();
    Bench(device);
    Measure();
  }
  void Measure() {
    const long target = program.controller().SweepsEnded() + 1;
    fake.OnEvents = [this, target] {
      if (program.controller().SweepsEnded() < target || !session.Flags.SweepRunning) return;
      Click("Form1.StopMeasurement");
    };
    Click("Form1.StartMeasurement");
    fake.OnEvents = nullptr;
    EXPECT_TRUE(program.controller().Idle());
  }
  Texts Troubles() {
    Texts troubles;
    for (const Message& m : fake.Messages)
      if (m.MessageIcon != Icon::Information) troubles.push_back(m.Title + ": " + m.Text);
    return troubles;
  }
};

}  // namespace qk::test
