// SPDX-License-Identifier: MIT
// The simulated instrument: the controller's command interpreter on sweep RAM and EEPROM, the
// decoder of synthesiser records, and the analog hardware. It shares no arithmetic with the
// program: it decodes the bytes independently, so that the two check each other.
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

// Unpaced: neither the line nor the hardware takes any time.
enum class Pace { Unpaced, Baud115200 };

// Bytes sent by the instrument, with the time (microseconds) of their first start bit; the others
// follow without a gap. Together: delivered in one piece, when the last has arrived.
struct Outgoing {
  std::int64_t NotBeforeUs = 0;
  std::vector<std::uint8_t> Bytes;
  bool Together = false;
};

// The result of a bench command: done or refused, and a text to show (the reason, or the requested
// value).
struct BenchReply {
  bool Ok = true;
  std::string Text;
};

class Instrument {
 public:
  explicit Instrument(const InstrumentOptions& options = {});
  ~Instrument();

  static constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

  // Receives bytes from the program, in chunks of any size, at time nowUs (microseconds). The first
  // time ever passed is the time of power-on.
  void Receive(const std::uint8_t* bytes, std::size_t count, std::int64_t nowUs);
  // Returns the replies that are ready to be sent and empties the queue. The points of a sweep
  // appear one by one as the hardware measures them, so an abort prevents the rest from being sent.
  std::vector<Outgoing> Poll(std::int64_t nowUs);
  // The next time at which Poll may return something without receiving a byte first: kNever if
  // nothing is in progress.
  std::int64_t NextUs() const;

  void SetPace(Pace pace);
  Pace CurrentPace() const;

  // Executes one bench command ("port1 short", "device FILE.s2p", "fault stall", "noise off",
  // "truth 1e9"): changes what is connected, or reports a value.
  BenchReply Bench(std::string_view line);
  // Describes what is currently connected, for display.
  std::string Describe() const;
  // Connects the standards that a prompt of the program names ("Short Circuit on Port 1"). Returns
  // false if the text names none, or if following is off ("follow off").
  bool FollowPrompt(std::string_view text);
  // Reconnects the device that was connected before the first followed prompt; no effect if a bench
  // command has connected something since.
  void BackToDevice();

  // The S-parameters of the connected device itself at f hertz, port 1 to port 2 (no front end, no
  // noise, small signal): S11, S21, S12, S22.
  std::array<std::complex<double>, 4> Truth(double f) const;
  // The same with a wave of inputDbm incident on port 1.
  std::array<std::complex<double>, 4> Driven(double f, double inputDbm) const;

  // The cable is unplugged ("fault unplugged"): the port becomes closed.
  bool Unplugged() const;
  // How often the cable has been unplugged so far.
  int Unpluggings() const;
  // Bytes sent since power-on, without those lost by a fault.
  std::uint64_t BytesSent() const;

  struct State;
  State& state() { return *state_; }

 private:
  std::unique_ptr<State> state_;
};

}  // namespace qk::sim
