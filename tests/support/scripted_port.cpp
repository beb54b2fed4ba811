// SPDX-License-Identifier: MIT
#include "support/scripted_port.h"

#include <algorithm>

namespace qk::test {

Bytes BytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

void ScriptedPort::Reply(std::string_view request, const Bytes& reply, int delayMs) {
  script_.push_back({BytesOf(request), reply, delayMs});
}

void ScriptedPort::Reply(std::string_view request, std::string_view reply, int delayMs) {
  Reply(request, BytesOf(reply), delayMs);
}

void ScriptedPort::Arrive(std::int64_t atUs, std::uint8_t byte) {
  incoming_.push_back({atUs, byte});
}

void ScriptedPort::Feed(const Bytes& bytes, int delayMs, int gapMs) {
  std::int64_t at = clock_.NowUs() + delayMs * 1000;
  const std::size_t first = FedBytes;
  FedBytes += bytes.size();
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const std::uint8_t byte = bytes[i];
    const bool struck =
        Fault && (Fault->Position == first + i || (Fault->AllFrom && Fault->Position < first + i));
    if (struck && Fault->Kind == FaultKind::Cut) return;
    if (struck && Fault->Kind == FaultKind::Unplug) return Unplug();
    if (struck && Fault->Kind == FaultKind::Late) at += Fault->LateMs * 1000;
    if (struck && Fault->Kind == FaultKind::Double) Arrive(at, byte);
    const bool garbled = struck && Fault->Kind == FaultKind::Garble;
    Arrive(at, garbled ? static_cast<std::uint8_t>(byte ^ 0x5A) : byte);
    at += gapMs * 1000;
  }
}

void ScriptedPort::Unplug() {
  Coms.erase(Com);
  Close();
}

std::size_t ScriptedPort::CountOf(std::string_view request) const {
  return static_cast<std::size_t>(std::count(Writes.begin(), Writes.end(), BytesOf(request)));
}

bool ScriptedPort::Open() {
  if (open_) return true;
  if (!Coms.contains(Com)) return false;
  open_ = true;
  Opened.push_back(Com);
  Lines.push_back(Line);
  return true;
}

void ScriptedPort::Close() {
  open_ = false;
  incoming_.clear();
}

void ScriptedPort::Write(std::span<const std::uint8_t> bytes) {
  Writes.emplace_back(bytes.begin(), bytes.end());
  if (unplugAtWrite_ == Writes.size()) Unplug();
  if (!open_) return;
  const auto it = std::find_if(script_.begin(), script_.end(),
                               [this](const Scripted& s) { return s.Request == Writes.back(); });
  if (it != script_.end()) {
    const Scripted scripted = *it;
    script_.erase(it);
    Feed(scripted.Reply, scripted.DelayMs);
  }
  if (OnWrite) OnWrite(Bytes(bytes.begin(), bytes.end()));
}

std::size_t ScriptedPort::InBufferCount() {
  std::size_t count = 0;
  while (count < incoming_.size() && incoming_[count].AtUs <= clock_.NowUs()) ++count;
  return count;
}

std::size_t ScriptedPort::Input(std::vector<std::uint8_t>& out) {
  std::size_t count = 0;
  for (; !incoming_.empty() && incoming_.front().AtUs <= clock_.NowUs(); ++count) {
    out.push_back(incoming_.front().Byte);
    incoming_.pop_front();
  }
  return count;
}

bool ScriptedPort::WaitForInput(int ms) {
  const std::int64_t now = clock_.NowUs();
  std::int64_t until = now + std::max(ms, 0) * 1000;
  if (open_ && !incoming_.empty()) until = std::min(until, std::max(now, incoming_.front().AtUs));
  clock_.AdvanceUs(until - now);
  return InBufferCount() > 0;
}

ScriptedInstrument::ScriptedInstrument(ScriptedPort& port)
    : Eeprom(32768), SweepRam(32768), port_(port) {
  std::uint32_t seed = 12345;
  for (std::uint8_t& byte : Eeprom) {
    seed = seed * 1664525u + 1013904223u;
    byte = static_cast<std::uint8_t>(seed >> 24);
  }
  const std::string_view model = "QK47-20-09", serial = "0147      ";
  std::copy(model.begin(), model.end(), Eeprom.begin());
  std::copy(serial.begin(), serial.end(), Eeprom.begin() + 10);
  port_.OnWrite = [this](const Bytes& bytes) {
    for (const std::uint8_t byte : bytes) Take(byte);
  };
}

std::vector<std::string> ScriptedInstrument::Names() const {
  std::vector<std::string> names;
  for (const Bytes& c : Commands) {
    if (c[0] == 'Q') continue;
    if (c[0] == 'W') {
      names.push_back("W " + std::to_string(c[1]) + " " + std::to_string(c[2] * 256 + c[3]));
    } else if (c[0] == 'N') {
      names.push_back("N");
    } else {
      names.emplace_back(c.begin(), c.end());
    }
  }
  return names;
}

std::size_t ScriptedInstrument::CountOf(std::string_view letters) const {
  return static_cast<std::size_t>(
      std::count_if(Commands.begin(), Commands.end(), [letters](const Bytes& c) {
        return c.size() >= letters.size() && std::equal(letters.begin(), letters.end(), c.begin());
      }));
}

// The length of a command in bytes, as far as its beginning determines it.
std::size_t ScriptedInstrument::LengthOf(const Bytes& c) const {
  switch (c[0]) {
    case '*':
      return 5;
    case 'P':
      return 4;
    case 'W':
      return c.size() < 2 ? 4 : 4u + c[1];
    case 'E':
      return c.size() < 3 ? 5 : 5u + c[2];
    case 'N':
      return 1u + SweepRam[0] * 256u + SweepRam[1];
    case 'D':
    case 'Z':
      return 2;
    case 'Y':
      if (c.size() < 2) return 2;
      return c[1] == '8' ? 3 : c[1] == 'K' ? 5 : c[1] == 'I' ? 4 : 2;
    default:
      return 1;
  }
}

void ScriptedInstrument::Take(std::uint8_t byte) {
  pending_.push_back(byte);
  if (pending_.size() < LengthOf(pending_)) return;
  const Bytes command = std::move(pending_);
  pending_.clear();
  Commands.push_back(command);
  Execute(command);
}

void ScriptedInstrument::Execute(const Bytes& c) {
  if (c[0] == 'W') std::copy(c.begin() + 4, c.end(), SweepRam.begin() + (c[2] * 256 + c[3]));
  if (c[0] == 'E') std::copy(c.begin() + 5, c.end(), Eeprom.begin() + (c[3] * 256 + c[4]));
  if (Silent) return;
  switch (c[0]) {
    case 'Q':
      return port_.Feed(BytesOf(Status));
    case '*':
      return port_.Feed(BytesOf(Identity));
    case 'V':
      return port_.Feed(BytesOf(Firmware));
    case 'C':
      return port_.Feed(Offsets);
    case 'T':
      return port_.Feed(Temperature);
    case 'P': {
      const auto from = Eeprom.begin() + (c[2] * 256 + c[3]);
      return port_.Feed(Bytes(from, from + c[1]));
    }
    default:
      return;
  }
}

}  // namespace qk::test
