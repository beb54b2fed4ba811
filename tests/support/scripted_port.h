// SPDX-License-Identifier: MIT
// A serial port scripted by the test: the reply to each write, and faults at given bytes; and an
// instrument with fixed replies. Both use the clock that the test controls.
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

// A fault in one byte on its way to the program.
struct Fault {
  FaultKind Kind = FaultKind::Cut;
  std::size_t Position = 0;  // counted from 0 over all received bytes
  int LateMs = 0;            // Late: delays this byte and the rest of the same reply
  bool AllFrom = false;      // affects every byte from Position on
};

class ScriptedPort : public SerialPort {
 public:
  explicit ScriptedPort(FakeClock& clock) : clock_(clock) {}

  // ---- the other end -------------------------------------------------------------------------
  std::set<int> Coms{1};                      // numbers that can be opened
  std::function<void(const Bytes&)> OnWrite;  // called for each write to an open port
  // The reply to the next write that equals request and has no reply yet; several are used in
  // order.
  void Reply(std::string_view request, const Bytes& reply, int delayMs = 0);
  void Reply(std::string_view request, std::string_view reply, int delayMs = 0);
  // Bytes that arrive after delayMs, gapMs apart.
  void Feed(const Bytes& bytes, int delayMs = 0, int gapMs = 0);
  void Unplug();
  void UnplugAtWrite(std::size_t number) { unplugAtWrite_ = number; }  // from 1; that write is lost
  void PlugIn(int com) { Coms.insert(com); }

  std::optional<qk::test::Fault> Fault;

  // ---- recorded calls -------------------------------------------------------------------------
  std::vector<Bytes> Writes;        // one entry per write, including lost ones
  std::vector<int> Opened;          // numbers, in order
  std::vector<LineSettings> Lines;  // active at each opening
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

// Answers every command at once from its stored data. Parses the stream like the instrument,
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
  std::vector<Bytes> Commands;  // complete commands with their data, in order
  bool Silent = false;

  // Discards an incomplete command.
  void PowerUp() { pending_.clear(); }

  // The commands as text; "W" and "N" without their data, and without the link checks.
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
