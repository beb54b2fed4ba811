// SPDX-License-Identifier: MIT
// A link to an instrument with everything that a routine of the lower layers needs, on a clock that
// the test controls. The instrument is scripted or simulated.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "link/instrument_link.h"
#include "sim/instrument.h"
#include "sim/simulated_port.h"
#include "support/fake_host.h"
#include "support/scripted_port.h"

namespace qk::test {

// ---- possible instruments ----------------------------------------------------------------------

struct ScriptedLine {
  FakeClock clock;
  ScriptedPort port{clock};
};

// The simulated instrument, without noise.
struct SimulatedLine {
  explicit SimulatedLine(sim::Pace pace = sim::Pace::Baud115200)
      : port(instrument, Clock(), pace) {}

  FakeClock clock;
  sim::Instrument instrument{Quiet()};
  sim::SimulatedPort port;
  std::function<void()> OnSleep;  // called before each wait of the port

  // A bench command: changes what is connected, or injects a fault.
  void Bench(const std::string& line) {
    const sim::BenchReply reply = instrument.Bench(line);
    if (!reply.Ok) ADD_FAILURE() << line << ": " << reply.Text;
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
};

// ---- the program's end -------------------------------------------------------------------------

template <class Line>
struct LinkFixture : Line {
  template <class... Arguments>
  explicit LinkFixture(Arguments&&... arguments) : Line(std::forward<Arguments>(arguments)...) {}

  using Line::clock;
  using Line::port;
  FakeHost fake{clock};
  std::unique_ptr<Session> session = MakeSession();
  Host host = fake.host();
  InstrumentLink link{port, *session, host};
  Rig rig{*session, host, link};

  std::int64_t ElapsedMs() const { return clock.NowMs() - start_; }
  void StartWatch() { start_ = clock.NowMs(); }

 private:
  std::int64_t start_ = clock.NowMs();
};

// The scan has already found COM 1; only scripted commands are answered.
struct ScriptedLink : LinkFixture<ScriptedLine> {
  ScriptedLink() {
    session->Id.PortNumber = 1;
    port.Com = 1;
  }
};

struct SimulatedLink : LinkFixture<SimulatedLine> {
  using LinkFixture::LinkFixture;

  // Connects like start-up: the scan, then the port with its session settings.
  void Connect() {
    session->Id.PortNumber = link.FindInstrument();
    link.SetUpSessionPort();
  }
  // Plugs the cable in again. A controller that was cut off within a command takes what follows as
  // the rest of it; link checks complete that command (on the bench, the red button on the rear
  // panel does it).
  void Replug() {
    OnSleep = {};
    Bench("fault replugged");
    link.EnsurePortOpen();
    for (int i = 0; i < 130; ++i) link.SendCommand("Q");
    clock.AdvanceMs(200);
    fake.Messages.clear();
  }
};

}  // namespace qk::test
