// The simulated instrument: the controller's command interpreter over sweep RAM and EEPROM, the
// decoder of synthesiser records, and the analog world behind it. It shares no arithmetic with the
// program: it decodes the bytes by its own knowledge, so that the two check each other.
#pragma once

#include <array>
#include <complex>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qk::sim {

struct InstrumentOptions {
  std::string Firmware = "1.2";
  std::uint64_t Seed = 1;
  bool Noise = true;
  std::string Model = "QK47-20-09";
  std::string SerialNumber = "0147";
};

// Bytes that leave the instrument, with the earliest moment (microseconds) at which each batch may
// start on the line.
struct Outgoing {
  std::int64_t NotBeforeUs = 0;
  std::vector<std::uint8_t> Bytes;
};

// What a bench line came to: done or refused, and a text to show (the reason, or what was asked).
struct BenchReply {
  bool Ok = true;
  std::string Text;
};

class Instrument {
 public:
  explicit Instrument(const InstrumentOptions& options = {});
  ~Instrument();

  // Bytes from the program, as split as they come, at time nowUs (microseconds).
  void Receive(const std::uint8_t* bytes, std::size_t count, std::int64_t nowUs);
  // Replies that are ready to be sent; empties the queue. A sweep's points come one by one as the
  // hardware measures them, so an abort finds the rest unsent.
  std::vector<Outgoing> Poll(std::int64_t nowUs);

  // One line of bench language ("port1 short", "device FILE.s2p", "fault stall", "noise off",
  // "truth 1e9"): changes what is connected, or tells.
  BenchReply Bench(std::string_view line);
  // What is connected now, for people.
  std::string Describe() const;
  // Connects the standards that a prompt of the program names ("Short Circuit on Port 1"); false
  // when the text names none.
  bool FollowPrompt(std::string_view text);
  // Puts the device back that was connected before the first followed prompt.
  void BackToDevice();

  // The S-parameters of what is connected now, at f hertz, port 1 to port 2, as the device itself
  // has them (no front end, no noise, small signal): S11, S21, S12, S22.
  std::array<std::complex<double>, 4> Truth(double f) const;

  struct State;
  State& state() { return *state_; }

 private:
  std::unique_ptr<State> state_;
};

}  // namespace qk::sim
