// SPDX-License-Identifier: MIT
// Commands with arguments as bytes, and the check of short replies.
#include "link/command_set.h"

namespace qk::command {

namespace {
std::uint8_t Byte(int value) {
  return static_cast<std::uint8_t>(value);
}

Bytes Addressed(std::string_view letters, int count, int address) {
  Bytes bytes(letters.begin(), letters.end());
  bytes.push_back(Byte(count));
  bytes.push_back(Byte(HighByte(address)));
  bytes.push_back(Byte(LowByte(address)));
  return bytes;
}
}  // namespace

Bytes ReadEeprom(int count, int address) {
  return Addressed("P", count, address);
}

Bytes WriteEeprom(int count, int address) {
  return Addressed("EE", count, address);
}

Bytes WriteSweepRam(int count, int address) {
  return Addressed("W", count, address);
}

Bytes Dwell(bool on) {
  return {'D', Byte(on ? 1 : 0)};
}

Bytes SetAverages(int count) {
  return {'Y', '8', Byte(count)};
}

Bytes ContinuousWave() {
  return {'Z', 0};
}

bool IsSignOfLife(std::span<const std::uint8_t> reply) {
  return !reply.empty() && (reply[0] == 'R' || reply[0] == 'S');
}

}  // namespace qk::command
