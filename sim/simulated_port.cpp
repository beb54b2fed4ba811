// SPDX-License-Identifier: MIT
#include "sim/simulated_port.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "sim/wire.h"

namespace qk::sim {

PortClock RealClock() {
  return {[] {
            return std::chrono::duration_cast<std::chrono::microseconds>(
                       std::chrono::steady_clock::now().time_since_epoch())
                .count();
          },
          [](std::int64_t us) { std::this_thread::sleep_for(std::chrono::microseconds(us)); }};
}

struct SimulatedPort::State {
  State(Instrument& instrument, PortClock clock, int com)
      : Box(instrument),
        Line(instrument),
        Clock(std::move(clock)),
        OwnCom(com),
        Com(com),
        Unpluggings(instrument.Unpluggings()) {}

  Instrument& Box;
  Wire Line;
  PortClock Clock;
  int OwnCom;
  int Com;
  int Unpluggings;
  bool Opened = false;
  LineSettings Settings;
  bool KeepsWritten = false;
  std::vector<std::uint8_t> Written;

  // Unplugging the cable closes the port permanently: plugging it in again does not open it.
  void Look() {
    if (Box.Unpluggings() == Unpluggings) return;
    Unpluggings = Box.Unpluggings();
    Opened = false;
    Line.Clear();
  }
  // Advances the line; bytes that arrive at a closed port are lost.
  void Advance() {
    Look();
    Line.Advance(Clock.NowUs());
    if (!Opened) Discard();
  }
  void Discard() {
    std::vector<std::uint8_t> lost;
    Line.Take(lost);
  }
};

SimulatedPort::SimulatedPort(Instrument& instrument, PortClock clock, Pace pace, int com)
    : state_(std::make_unique<State>(instrument, std::move(clock), com)) {
  instrument.SetPace(pace);
}

SimulatedPort::~SimulatedPort() = default;

void SimulatedPort::SetPort(int com) {
  if (!state_->Opened) state_->Com = com;
}

void SimulatedPort::SetLine(const LineSettings& settings) {
  state_->Settings = settings;
}

bool SimulatedPort::Open() {
  state_->Advance();
  if (state_->Com == state_->OwnCom && !state_->Box.Unplugged()) state_->Opened = true;
  return state_->Opened;
}

void SimulatedPort::Close() {
  state_->Opened = false;
  state_->Discard();
}

bool SimulatedPort::IsOpen() const {
  state_->Look();
  return state_->Opened;
}

void SimulatedPort::Write(std::span<const std::uint8_t> bytes) {
  state_->Advance();
  if (!state_->Opened) return;
  if (state_->KeepsWritten)
    state_->Written.insert(state_->Written.end(), bytes.begin(), bytes.end());
  state_->Line.Write(bytes, state_->Clock.NowUs());
}

std::size_t SimulatedPort::InBufferCount() {
  state_->Advance();
  return state_->Line.Waiting();
}

std::size_t SimulatedPort::Input(std::vector<std::uint8_t>& out) {
  state_->Advance();
  return state_->Line.Take(out);
}

bool SimulatedPort::WaitForInput(int ms) {
  const std::int64_t deadline = state_->Clock.NowUs() + std::int64_t{ms} * 1000;
  for (;;) {
    state_->Advance();
    if (state_->Line.Waiting() > 0) return true;
    const std::int64_t now = state_->Clock.NowUs();
    if (now >= deadline) return false;
    const std::int64_t next =
        state_->Opened ? std::min(deadline, state_->Line.NextUs(now)) : deadline;
    state_->Clock.SleepUs(next - now);
  }
}

std::vector<std::uint8_t> SimulatedPort::TakeWritten() {
  state_->KeepsWritten = true;
  return std::exchange(state_->Written, {});
}

const LineSettings& SimulatedPort::Line() const {
  return state_->Settings;
}

}  // namespace qk::sim
