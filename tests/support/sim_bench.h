// The simulated instrument on COM 1 at the pace of its line, with everything that a routine of the
// link needs before it, on the clock that the test moves.
#pragma once

#include <memory>
#include <utility>

#include "link/instrument_link.h"
#include "sim/instrument.h"
#include "sim/simulated_port.h"
#include "support/fake_host.h"

namespace qk::test {

struct SimBench {
  explicit SimBench(sim::Pace pace = sim::Pace::Baud115200) : port(instrument, Clock(), pace) {
    InitSession(*session);
  }

  FakeClock clock;
  FakeHost fake{clock};
  sim::Instrument instrument{Quiet()};
  sim::SimulatedPort port;
  std::unique_ptr<Session> session = MakeSession();
  Host host = fake.host();
  InstrumentLink link{port, *session, host};
  Rig rig{*session, host, link};
  std::function<void()> OnSleep;  // before each wait of the port

  std::int64_t ElapsedMs() const { return clock.NowMs() - start_; }
  void StartWatch() { start_ = clock.NowMs(); }
  // As start-up does: the scan, then the port with its session settings.
  void Connect() {
    session->Id.PortNumber = link.FindInstrument();
    link.SetUpSessionPort();
  }

  // The cable is in again. A controller that was cut off within a command takes what follows for
  // the rest of it; polls fill that up (on the bench, the red button on the rear panel does it).
  void Replug() {
    OnSleep = {};
    instrument.Bench("fault replugged");
    link.EnsurePortOpen();
    for (int i = 0; i < 130; ++i) link.SendCommand("Q");
    clock.AdvanceMs(200);
    fake.Messages.clear();
  }

 private:
  static sim::InstrumentOptions Quiet() {
    sim::InstrumentOptions options;
    options.Noise = false;
    return options;
  }
  sim::PortClock Clock() {
    return {[this] { return clock.NowUs(); },
            [this](std::int64_t us) {
              if (OnSleep) OnSleep();
              clock.AdvanceUs(us);
            }};
  }

  std::int64_t start_ = clock.NowMs();
};

}  // namespace qk::test
