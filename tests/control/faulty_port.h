// SPDX-License-Identifier: MIT
// A line that fails at an exact byte, between the program and the simulated instrument.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <utility>

#include "control/simulated_control.h"

namespace qk::test {

enum class Strike { Silence, Drop, Late, Unplug };
inline constexpr Strike kStrikes[] = {Strike::Silence, Strike::Drop, Strike::Late, Strike::Unplug};
inline constexpr const char* kStrikeNames[] = {"silence", "drop", "late", "unplug"};

// A port between the program and the instrument that counts the bytes in each direction. When a
// written byte is lost the port stays open, like a loose cable without handshake.
class FaultyPort : public SerialPort {
 public:
  FaultyPort(SerialPort& to, FakeClock& clock) : to_(to), clock_(clock) {}

  struct ReplyFault {
    Strike Kind = Strike::Silence;
    std::size_t At = 0;  // counted as Replied; Drop strikes it alone, the others it and all
                         // behind it
    int LateMs = 0;
  };
  std::size_t Written = 0, Replied = 0;
  std::optional<std::size_t> ClosesAt;  // loses every written byte from this one on
  std::optional<std::size_t> LosesAt;   // loses this one alone
  std::optional<ReplyFault> Fault;
  std::optional<std::pair<std::size_t, int>> Garbles;  // a byte, and the bits of it that turn over
  bool Struck = false;                                 // the fault has come to its byte

  void Mend() {
    ClosesAt.reset();
    LosesAt.reset();
    Fault.reset();
    Garbles.reset();
    unplugged_ = Struck = false;
  }

  void SetPort(int com) override { to_.SetPort(com); }
  void SetLine(const LineSettings& settings) override { to_.SetLine(settings); }
  bool Open() override { return !unplugged_ && to_.Open(); }
  void Close() override { to_.Close(); }
  bool IsOpen() const override { return to_.IsOpen(); }
  void Write(std::span<const std::uint8_t> bytes) override {
    if (!ClosesAt && !LosesAt) {
      Written += bytes.size();
      to_.Write(bytes);
      return;
    }
    for (const std::uint8_t byte : bytes) {
      const std::size_t at = Written++;
      if ((ClosesAt && at >= *ClosesAt) || LosesAt == at)
        Struck = true;
      else
        to_.Write({&byte, 1});
    }
  }
  std::size_t InBufferCount() override {
    TakeReplies();
    const auto come = [this](const Reply& reply) { return reply.AtUs <= clock_.NowUs(); };
    return static_cast<std::size_t>(std::ranges::count_if(replies_, come));
  }
  std::size_t Input(std::vector<std::uint8_t>& out) override {
    const std::size_t count = InBufferCount();
    for (std::size_t i = 0; i < count; ++i) out.push_back(replies_[i].Byte);
    replies_.erase(replies_.begin(), replies_.begin() + static_cast<std::ptrdiff_t>(count));
    return count;
  }
  bool WaitForInput(int ms) override {
    if (!replies_.empty()) {
      const auto until = (replies_.front().AtUs - clock_.NowUs() + 999) / 1000;
      if (until <= 0) return true;
      ms = static_cast<int>(std::min<std::int64_t>(ms, until));
    }
    if (!to_.WaitForInput(ms) && replies_.empty()) return false;
    return InBufferCount() > 0;
  }

 private:
  struct Reply {
    std::int64_t AtUs;
    std::uint8_t Byte;
  };

  void TakeReplies() {
    taken_.clear();
    to_.Input(taken_);
    for (const std::uint8_t byte : taken_) {
      const std::size_t at = Replied++;
      std::int64_t due = clock_.NowUs();
      if (!replies_.empty()) due = std::max(due, replies_.back().AtUs);
      if (Fault && at >= Fault->At && !Strikes(at == Fault->At, due)) continue;
      const int turned = Garbles && Garbles->first == at ? Garbles->second : 0;
      replies_.push_back({due, static_cast<std::uint8_t>(byte ^ turned)});
    }
  }
  // False: the byte is lost.
  bool Strikes(bool first, std::int64_t& due) {
    Struck = true;
    switch (Fault->Kind) {
      case Strike::Silence:
        return false;
      case Strike::Drop:
        return !first;
      case Strike::Late:
        due = std::max(due, clock_.NowUs() + std::int64_t{Fault->LateMs} * 1000);
        return true;
      case Strike::Unplug:
        if (!unplugged_) to_.Close();
        unplugged_ = true;
        return false;
    }
    return true;
  }

  SerialPort& to_;
  FakeClock& clock_;
  std::vector<std::uint8_t> taken_;
  std::deque<Reply> replies_;
  bool unplugged_ = false;
};

}  // namespace qk::test
