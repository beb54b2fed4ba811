// The whole program on the simulated instrument, worked by window and control name.
#pragma once

#include <string>
#include <utility>

#include "forms_bench.h"
#include "sim/instrument.h"
#include "sim/simulated_port.h"

namespace qk::test {

// The program on the simulated instrument, started up, on a clock that only sleeping moves.
struct SimBench : Hands {
  FakeClock clock;
  FakeHost fake{clock};
  sim::Instrument instrument{[] {
    sim::InstrumentOptions options;
    options.Noise = false;
    return options;
  }()};
  sim::SimulatedPort port{
      instrument,
      {[this] { return clock.NowUs(); }, [this](std::int64_t us) { clock.AdvanceUs(us); }},
      sim::Pace::Unpaced};
  RecordingSurface surface;
  ScratchFolder folder;
  Program program{fake.desk(), fake.host(), port, surface, ProgramOptions{folder.Text(), 1}};
  Session& session = program.session();

  SimBench() : Hands(fake) {
    Bench("offsets 4 -3");
    Bench("temperature 31");
    fake.OnTick = [this](TimerId timer) { program.Tick(timer); };
    fake.OnAsk = [this](const Message& message) { instrument.FollowPrompt(message.Text); };
    program.StartUp();
    Click("Form1.SetCal");
  }

  void Bench(const std::string& line) {
    const sim::BenchReply reply = instrument.Bench(line);
    if (!reply.Ok) ADD_FAILURE() << line << ": " << reply.Text;
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
  // Applies, connects the device again, and runs one whole sweep.
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
