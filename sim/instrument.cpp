// SPDX-License-Identifier: MIT
#include "sim/instrument.h"

#include "sim/bench_language.h"
#include "sim/instrument_state.h"
#include "sim/prompts.h"

namespace qk::sim {

Instrument::Instrument(const InstrumentOptions& options)
    : state_(std::make_unique<State>(options)) {}

Instrument::~Instrument() = default;

void Instrument::Receive(const std::uint8_t* bytes, std::size_t count, std::int64_t nowUs) {
  state_->Commands.Receive(bytes, count, nowUs);
}

std::vector<Outgoing> Instrument::Poll(std::int64_t nowUs) {
  state_->Commands.RunUntil(nowUs);
  return state_->Sender.Take();
}

std::int64_t Instrument::NextUs() const {
  return state_->Commands.NextUs();
}

void Instrument::SetPace(Pace pace) {
  state_->Sender.SetPace(pace);
}

Pace Instrument::CurrentPace() const {
  return state_->Sender.pace();
}

BenchReply Instrument::Bench(std::string_view line) {
  return RunBenchLine(*this, line);
}

std::string Instrument::Describe() const {
  return state_->Analog.Connected().Describe();
}

bool Instrument::FollowPrompt(std::string_view text) {
  if (!state_->Follow) return false;
  if (NamesDevice(text)) {
    BackToDevice();
    return true;
  }
  const Connection now = state_->Analog.Connected();
  const Connection device = state_->DeviceUnderTest.value_or(now);
  const auto wanted = ConnectionOfPrompt(text, now, device, state_->ThroughStandard);
  if (!wanted) return false;
  if (!state_->DeviceUnderTest) state_->DeviceUnderTest = now;
  state_->Analog.Connect(*wanted);
  return true;
}

void Instrument::BackToDevice() {
  if (!state_->DeviceUnderTest) return;
  state_->Analog.Connect(*state_->DeviceUnderTest);
  state_->DeviceUnderTest.reset();
}

std::array<std::complex<double>, 4> Instrument::Truth(double f) const {
  const TwoPort s = state_->Analog.Connected().At(f);
  return {s.S11, s.S21, s.S12, s.S22};
}

std::array<std::complex<double>, 4> Instrument::Driven(double f, double inputDbm) const {
  const Connection& connected = state_->Analog.Connected();
  const TwoPort s = connected.Between ? connected.Between->Driven(f, inputDbm) : connected.At(f);
  return {s.S11, s.S21, s.S12, s.S22};
}

bool Instrument::Unplugged() const {
  return state_->Fault.Unplugged;
}

int Instrument::Unpluggings() const {
  return state_->Unpluggings;
}

std::uint64_t Instrument::BytesSent() const {
  return state_->Sender.BytesSent();
}

}  // namespace qk::sim
