// SPDX-License-Identifier: MIT
// The simulated instrument: the controller's command interpreter over sweep RAM and EEPROM, the
// decoder of synthesiser records, and the analog world behind it. It shares no arithmetic with the
// program: it decodes the bytes by its own knowledge, so that the two check each other.
#pragma once

#include <array>
#include <complex>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qk::sim {

struct InstrumentOptions {
  // "0.9", "1.0", "1.05", "1.1" or "1.2"; above 1.0 a sweep can be aborted.
  std::string Firmware = "1.2";
  std::uint64_t Seed = 1;
  bool Noise = true;
  std::string Model = "QK47-20-09";
  std::string SerialNumber = "0147";
};

// Unpaced: no time passes on the line nor in the hardware.
enum class Pace { Unpaced, Baud115200 };

// Bytes that leave the instrument, with the moment (microseconds) at which their first start bit
// goes out; the others follow without a gap. Together: read in one piece, when the last has come.
struct Outgoing {
  std::int64_t NotBeforeUs = 0;
  std::vector<std::uint8_t> Bytes;
  bool Together = false;
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

  static constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

  // Bytes from the program, as split as they come, at time nowUs (microseconds). The first moment
  // that is ever given is that of power-on.
  void Receive(const std::uint8_t* bytes, std::size_t count, std::int64_t nowUs);
  // Replies that are ready to be sent; empties the queue. A sweep's points come one by one as the
  // hardware measures them, so an abort finds the rest unsent.
  std::vector<Outgoing> Poll(std::int64_t nowUs);
  // When Poll may next have something without a byte received before: kNever when nothing is under
  // way.
  std::int64_t NextUs() const;

  void SetPace(Pace pace);
  Pace CurrentPace() const;

  // One line of bench language ("port1 short", "device FILE.s2p", "fault stall", "noise off",
  // "truth 1e9"): changes what is connected, or tells.
  BenchReply Bench(std::string_view line);
  // What is connected now, for people.
  std::string Describe() const;
  // Connects the standards that a prompt of the program names ("Short Circuit on Port 1"); false
  // when the text names none, or when following is off ("follow off").
  bool FollowPrompt(std::string_view text);
  // Puts the device back that was connected before the first followed prompt; nothing when a bench
  // line has connected something since.
  void BackToDevice();

  // The S-parameters of what is connected now, at f hertz, port 1 to port 2, as the device itself
  // has them (no front end, no noise, small signal): S11, S21, S12, S22.
  std::array<std::complex<double>, 4> Truth(double f) const;
  // The same with a wave of inputDbm running into port 1.
  std::array<std::complex<double>, 4> Driven(double f, double inputDbm) const;

  // The cable is out ("fault unplugged"): the port falls to not open.
  bool Unplugged() const;
  // How often it has been pulled out so far.
  int Unpluggings() const;
  // Bytes sent since power-on, those lost on purpose not counted.
  std::uint64_t BytesSent() const;

  struct State;
  State& state() { return *state_; }

 private:
  std::unique_ptr<State> state_;
};

}  // namespace qk::sim
