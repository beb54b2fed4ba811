// SPDX-License-Identifier: MIT
#include "sim/eeprom_image.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "sim/source_levels.h"

namespace qk::sim {

namespace {

constexpr int kCodes = 32;
constexpr int kColumns = 149;

// The centre of a column: 20 MHz wide, starting at 3 MHz.
double ColumnHz(int column) {
  return 3e6 + 2e7 * column + 1e7;
}

// Two columns of 32 codes per block of 64 bytes; the second half of the last block stays erased.
template <typename LevelOf>
void WriteLevelTable(Eeprom& eeprom, std::size_t address, LevelOf levelOf) {
  for (int column = 0; column < kColumns; ++column)
    for (int code = 0; code < kCodes; ++code) {
      const long level = std::clamp(std::lround(levelOf(code, ColumnHz(column))), -128L, 127L);
      eeprom[address + static_cast<std::size_t>(column * kCodes + code)] =
          static_cast<std::uint8_t>(level + 128);
    }
}

// One entry per MHz: the test voltage in tenths of a millivolt for a known power at port 2.
void WriteReceiverData(Eeprom& eeprom) {
  for (std::size_t i = 0; i < kReceiverDataEntries; ++i) {
    const double f = 3e6 + 1e6 * static_cast<double>(i);
    const int powerByte = static_cast<int>(std::lround(127 + 40 * std::sin(f / 4e8)));
    const double powerDbm = powerByte * 4.0 / 255 - 18;
    const double millivolts = 1000 * std::pow(10.0, (powerDbm + ReceiverGainDb(f)) / 20);
    const long tenths = std::lround(millivolts * 10);
    const std::size_t at = kReceiverDataAddress + 3 * i;
    eeprom[at] = static_cast<std::uint8_t>(tenths / 256);
    eeprom[at + 1] = static_cast<std::uint8_t>(tenths % 256);
    eeprom[at + 2] = static_cast<std::uint8_t>(powerByte);
  }
}

}  // namespace

void SetIdentityField(Eeprom& eeprom, int k, std::string_view text) {
  const std::size_t at = kIdentityFieldSize * static_cast<std::size_t>(k - 1);
  for (std::size_t i = 0; i < kIdentityFieldSize; ++i)
    eeprom[at + i] = static_cast<std::uint8_t>(i < text.size() ? text[i] : ' ');
}

std::uint8_t Checksum(const Eeprom& eeprom) {
  return static_cast<std::uint8_t>(
      std::accumulate(eeprom.begin(), eeprom.begin() + kChecksumAddress, 0u) & 0xFF);
}

Eeprom FactoryEeprom(std::string_view model, std::string_view serialNumber,
                     std::string_view firmware) {
  Eeprom eeprom;
  eeprom.fill(0xFF);
  const std::array<std::string_view, 12> identity = {
      model,      serialNumber, "20-09-001", "C",      "RX-0212", "SYA-0188",
      "SYB-0191", "20-09-040",  "B",         firmware, "PS-0305", "14 Mar 09"};
  for (int k = 1; k <= 12; ++k)
    SetIdentityField(eeprom, k, identity[static_cast<std::size_t>(k - 1)]);
  WriteLevelTable(eeprom, kPort1LevelTableAddress, SourceLevelDbm);
  WriteLevelTable(eeprom, kPort2LevelTableAddress, ReceiverDriveDbm);
  WriteReceiverData(eeprom);
  eeprom[kCalTemperatureAddress] =
      static_cast<std::uint8_t>(std::lround((kReceiverCalDegC - 15) * 10));
  eeprom[kDcCorrectionAddress] = 131;  // +0.3
  eeprom[kChecksumAddress] = Checksum(eeprom);
  return eeprom;
}

}  // namespace qk::sim
