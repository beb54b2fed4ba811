// SPDX-License-Identifier: MIT
// A port with a sweeping instrument, on a clock that the test controls. It answers every command of
// the controller, streams a sweep point by point as time passes, and records every byte that it
// receives while streaming: only an abort is allowed.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "link/serial_port.h"
#include "support/fake_host.h"

namespace qk::test {

class SweepingPort : public SerialPort {
 public:
  using Bytes = std::vector<std::uint8_t>;

  explicit SweepingPort(FakeClock& clock) : clock_(clock) {}

  // ---- the instrument --------------------------------------------------------------------------
  bool Silent = false;  // switched off
  bool Plugged = true;  // the adaptor is connected
  std::string Status = "R";
  std::string Identity = "QK47-20-0901";
  std::string Serial = "0147";
  std::string Firmware = "1.2";
  int NumPoints = 51;
  std::int64_t PointUs = 2000;           // from trigger to the first point, and from point to point
  std::int64_t ByteUs = 0;               // from byte to byte of a point
  std::int64_t AbortUs = 300;            // from "O" to the rest of the stream
  std::int64_t EndMarkUs = 0;            // from that to "XX"
  bool OversleepsToTheNextByte = false;  // a busy machine: a sleep lasts until the next byte
  bool EndMark = true;                   // an abort is answered with "XX"
  Bytes AbortTail;                       // sample data between "O" and "XX"
  int PointsInStream = -1;               // fewer or more than NumPoints; -1 as many
  Bytes Surplus;                         // after a complete sweep
  std::size_t DropByteAt = SIZE_MAX;     // of the next stream, counted from 0
  std::size_t Averages = 1;
  bool DwellOn = false;
  // Volts of the samples of point p (from 0), in their order on the wire.
  std::function<std::vector<double>(int p, int samples)> Volts;

  // ---- what happened ---------------------------------------------------------------------------
  std::vector<std::string> Commands;    // complete commands; "W" and "N" without data
  std::vector<std::string> Intrusions;  // commands received while streaming
  std::size_t BytesWritten = 0, BytesStreamed = 0;
  long Triggers = 0, WholeSweeps = 0;

  bool Streaming() const { return streaming_; }
  // Points that have left the instrument in the present sweep.
  int Sent() const { return next_; }
  // Bytes that the program has taken since the last trigger.
  std::size_t Taken() const { return taken_; }
  // Called for each complete command.
  std::function<void(const std::string&)> OnCommand;
  // The commands since the last call, joined by blanks.
  std::string TakeAllCommands() {
    std::string joined;
    for (const std::string& c : Commands) joined += (joined.empty() ? "" : " ") + c;
    Commands.clear();
    return joined;
  }
  void SendUnasked(const Bytes& bytes) {
    for (std::uint8_t b : bytes) out_.push_back({clock_.NowUs(), b});
  }
  void Unplug() {
    Plugged = false;
    Close();
  }
  // The red button: a stream stops at once, and the settings are those after power-on.
  void Reset() {
    streaming_ = false;
    Averages = 1;
    DwellOn = false;
  }
  // Ends every fault and any stream.
  void Mend() {
    Silent = false;
    Plugged = true;
    Status = "R";
    EndMark = true;
    AbortTail.clear();
    PointsInStream = -1;
    Surplus.clear();
    DropByteAt = SIZE_MAX;
    streaming_ = false;
    out_.clear();
  }

  // ---- the port --------------------------------------------------------------------------------
  void SetPort(int com) override { com_ = com; }
  void SetLine(const LineSettings& settings) override { Line = settings; }
  bool Open() override {
    open_ = open_ || (Plugged && com_ == Com);
    return open_;
  }
  void Close() override {
    open_ = false;
    out_.clear();
  }
  bool IsOpen() const override { return open_; }
  void Write(std::span<const std::uint8_t> bytes) override {
    Advance();
    BytesWritten += bytes.size();
    if (!open_) return;
    for (std::uint8_t b : bytes) Take(b);
  }
  std::size_t InBufferCount() override {
    Advance();
    const auto arrived = [now = clock_.NowUs()](const Due& due) { return due.AtUs <= now; };
    return static_cast<std::size_t>(std::ranges::partition_point(out_, arrived) - out_.begin());
  }
  std::size_t Input(std::vector<std::uint8_t>& bytes) override {
    const std::size_t n = InBufferCount();
    for (std::size_t i = 0; i < n; ++i) bytes.push_back(out_[i].Byte);
    out_.erase(out_.begin(), out_.begin() + static_cast<std::ptrdiff_t>(n));
    taken_ += n;
    return n;
  }
  bool WaitForInput(int ms) override {
    ++Waits;
    Advance();
    std::int64_t until = clock_.NowUs() + ms * 1000;
    if (OversleepsToTheNextByte && streaming_) until = std::max(until, nextUs_);
    if (open_ && !out_.empty()) until = std::min(until, std::max(clock_.NowUs(), out_[0].AtUs));
    if (open_ && streaming_ && next_ < Last())
      until = std::min(until, std::max(clock_.NowUs(), nextUs_));
    clock_.AdvanceUs(until - clock_.NowUs());
    return InBufferCount() > 0;
  }

  int Com = 1;
  LineSettings Line;
  long Waits = 0;

 private:
  struct Due {
    std::int64_t AtUs;
    std::uint8_t Byte;
  };

  static int SamplesOf(const std::string& trigger) {
    return trigger == "A" ? 12 : trigger == "YO" ? 6 : 4;
  }

  int Last() const { return PointsInStream < 0 ? NumPoints : PointsInStream; }

  // Sends the points that are due.
  void Advance() {
    const int last = Last();
    while (streaming_ && next_ < last && nextUs_ <= clock_.NowUs()) {
      const auto volts = Volts ? Volts(next_, samples_) : std::vector<double>(12, 1.0);
      inPoint_ = 0;
      for (int s = 0; s < samples_; ++s) Sample(volts[static_cast<std::size_t>(s)]);
      ++next_;
      nextUs_ += PointUs;
    }
    if (streaming_ && next_ >= last && last >= NumPoints) {
      streaming_ = false;
      ++WholeSweeps;
      for (std::uint8_t b : Surplus) Stream(b);
    }
  }

  void Sample(double volts) {
    const auto counts = static_cast<std::uint32_t>(
        std::lround((volts + 2.5) / 4.999924 * 65535 * static_cast<double>(Averages)));
    Stream(static_cast<std::uint8_t>(counts >> 16));
    Stream(static_cast<std::uint8_t>(counts >> 8));
    Stream(static_cast<std::uint8_t>(counts));
  }

  void Stream(std::uint8_t byte) {
    if (streamed_++ == DropByteAt) return;
    ++BytesStreamed;
    out_.push_back({nextUs_ + static_cast<std::int64_t>(inPoint_++) * ByteUs, byte});
  }

  void Send(const std::string& text) {
    for (char c : text) out_.push_back({clock_.NowUs(), static_cast<std::uint8_t>(c)});
  }

  std::size_t LengthOf(const std::string& c) const {
    const auto byte = [&c](std::size_t i) { return static_cast<std::uint8_t>(c[i]); };
    switch (c[0]) {
      case '*':
        return 5;
      case 'P':
        return 4;
      case 'W':
        return c.size() < 4 ? 4 : 4u + byte(1);
      case 'N':
        return 1u + static_cast<std::size_t>(NumPoints);
      case 'D':
        return 2;
      case 'Y':
        return c.size() < 2 ? 2 : c[1] == '8' ? 3 : 2;
      default:
        return 1;
    }
  }

  void Take(std::uint8_t byte) {
    pending_.push_back(static_cast<char>(byte));
    if (pending_.size() < LengthOf(pending_)) return;
    std::string command;
    command.swap(pending_);
    Execute(command);
  }

  void Execute(const std::string& c) {
    const bool bulk = c[0] == 'W' || c[0] == 'N' || c[0] == 'P';
    Commands.push_back(c == "Y8" || (c[0] == 'Y' && c.size() == 3)
                           ? "Y8:" + std::to_string(static_cast<std::uint8_t>(c[2]))
                       : c[0] == 'D' ? "D:" + std::to_string(c[1])
                       : bulk        ? c.substr(0, 1)
                                     : c);
    if (streaming_ && c != "O") Intrusions.push_back(Commands.back());
    if (OnCommand) OnCommand(Commands.back());
    if (Silent) return;
    if (c == "Q") Send(Status);
    if (c == "*IDN?") Send(Identity);
    if (c == "V") Send(Firmware);
    if (c == "C") Send(std::string("\x80\0\0\x80\0\0", 6));
    if (c == "T") Send(std::string("\x02\xE6", 2));
    if (c[0] == 'P') SendEeprom(c);
    if (c[0] == 'Y' && c.size() == 3) Averages = static_cast<std::uint8_t>(c[2]);
    if (c[0] == 'D') DwellOn = c[1] != 0;
    if (c == "M" || c == "S" || c == "YO" || c == "A") StartSweep(c);
    if (c == "O" && streaming_) StopSweep();
  }

  void SendEeprom(const std::string& c) {
    const int address = static_cast<std::uint8_t>(c[2]) * 256 + static_cast<std::uint8_t>(c[3]);
    for (int i = 0; i < static_cast<std::uint8_t>(c[1]); ++i) {
      const int at = address + i - 10;
      const bool serial = at >= 0 && at < static_cast<int>(Serial.size());
      out_.push_back(
          {clock_.NowUs(), serial ? static_cast<std::uint8_t>(Serial[static_cast<std::size_t>(at)])
                                  : std::uint8_t{128}});
    }
  }

  void StartSweep(const std::string& trigger) {
    ++Triggers;
    streaming_ = true;
    samples_ = SamplesOf(trigger);
    next_ = 0;
    streamed_ = 0;
    nextUs_ = clock_.NowUs() + PointUs;
    taken_ = 0;
  }

  void StopSweep() {
    streaming_ = false;
    while (!out_.empty() && out_.back().AtUs > clock_.NowUs()) out_.pop_back();
    const std::int64_t at = clock_.NowUs() + AbortUs;
    for (std::uint8_t b : AbortTail) out_.push_back({at, b});
    if (EndMark)
      for (int i = 0; i < 2; ++i) out_.push_back({at + EndMarkUs, 'X'});
  }

  FakeClock& clock_;
  int com_ = 0;
  bool open_ = false;
  std::string pending_;
  std::deque<Due> out_;
  bool streaming_ = false;
  int samples_ = 4, next_ = 0;
  std::size_t streamed_ = 0, inPoint_ = 0, taken_ = 0;
  std::int64_t nextUs_ = 0;
};

}  // namespace qk::test
