// SPDX-License-Identifier: MIT
// A serial port that a test scripts: what comes back for which write, and what goes wrong at which
// byte; and an instrument of fixed answers to put behind it. Both run on the clock that the test
// moves.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "link/instrument_link.h"
#include "link/serial_port.h"
#include "support/fake_host.h"

namespace qk::test {

Bytes BytesOf(std::string_view text);

enum class FaultKind { Cut, Double, Garble, Late, Unplug };

// What happens to one byte on its way to the program.
struct Fault {
  FaultKind Kind = FaultKind::Cut;
  std::size_t Position = 0;  // counted from 0 over all bytes that come in
  int LateMs = 0;            // Late: this byte, and what follows it in the same reply
  bool AllFrom = false;      // strikes every byte from Position on
};

class ScriptedPort : public SerialPort {
 public:
  explicit ScriptedPort(FakeClock& clock) : clock_(clock) {}

  // ---- the other end -------------------------------------------------------------------------
  std::set<int> Coms{1};                      // numbers that can be opened
  std::function<void(const Bytes&)> OnWrite;  // called for each write to an open port
  // The reply to the next write that equals request and has none yet; several are used in order.
  void Reply(std::string_view request, const Bytes& reply, int delayMs = 0);
  void Reply(std::string_view request, std::string_view reply, int delayMs = 0);
  // Bytes that come in after delayMs, gapMs apart.
  void Feed(const Bytes& bytes, int delayMs = 0, int gapMs = 0);
  void Unplug();
  void UnplugAtWrite(std::size_t number) { unplugAtWrite_ = number; }  // from 1; that write is lost
  void PlugIn(int com) { Coms.insert(com); }

  std::optional<qk::test::Fault> Fault;

  // ---- what happened -------------------------------------------------------------------------
  std::vector<Bytes> Writes;        // one entry a write, lost ones too
  std::vector<int> Opened;          // numbers, in order
  std::vector<LineSettings> Lines;  // in force at each opening
  LineSettings Line;
  int Com = 0;
  std::size_t FedBytes = 0;

  std::size_t CountOf(std::string_view request) const;

  // ---- the interface -------------------------------------------------------------------------
  void SetPort(int com) override { Com = com; }
  void SetLine(const LineSettings& settings) override { Line = settings; }
  bool Open() override;
  void Close() override;
  bool IsOpen() const override { return open_; }
  void Write(std::span<const std::uint8_t> bytes) override;
  std::size_t InBufferCount() override;
  std::size_t Input(std::vector<std::uint8_t>& out) override;
  bool WaitForInput(int ms) override;

 private:
  struct Incoming {
    std::int64_t AtUs;
    std::uint8_t Byte;
  };
  struct Scripted {
    Bytes Request, Reply;
    int DelayMs;
  };
  void Arrive(std::int64_t atUs, std::uint8_t byte);

  FakeClock& clock_;
  bool open_ = false;
  std::deque<Incoming> incoming_;
  std::deque<Scripted> script_;
  std::optional<std::size_t> unplugAtWrite_;
};

// Answers every command at once with what it holds. Takes the stream as the instrument does,
// however it is split.
class ScriptedInstrument {
 public:
  explicit ScriptedInstrument(ScriptedPort& port);

  std::vector<std::uint8_t> Eeprom;    // 32768 bytes, seeded pattern
  std::vector<std::uint8_t> SweepRam;  // 32768 bytes
  std::string Status = "R";
  std::string Identity = "QK47-20-0901";
  std::string Firmware = "1.2";
  Bytes Offsets{0x80, 0x00, 0x00, 0x80, 0x00, 0x00};
  Bytes Temperature{0x02, 0xE6};
  std::vector<Bytes> Commands;  // whole commands with their data, in order
  bool Silent = false;

  // Forgets a command that was cut off.
  void PowerUp() { pending_.clear(); }

  // The commands as text, "W" and "N" with their data left out, without the link checks.
  std::vector<std::string> Names() const;
  std::size_t CountOf(std::string_view letters) const;

 private:
  std::size_t LengthOf(const Bytes& command) const;
  void Take(std::uint8_t byte);
  void Execute(const Bytes& command);

  ScriptedPort& port_;
  Bytes pending_;
};

}  // namespace qk::test
