// SPDX-License-Identifier: MIT
// The factory contents of the 32768-byte EEPROM: identity, level tables, receiver data, dc byte and
// checksum.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace qk::sim {

inline constexpr std::size_t kEepromSize = 32768;
using Eeprom = std::array<std::uint8_t, kEepromSize>;

inline constexpr std::size_t kIdentityFieldSize = 10;
inline constexpr std::size_t kPort1LevelTableAddress = 1024;
inline constexpr std::size_t kPort2LevelTableAddress = 5888;
inline constexpr std::size_t kReceiverDataAddress = 11008;
inline constexpr std::size_t kReceiverDataEntries = 3070;
inline constexpr std::size_t kCalTemperatureAddress = 20218;
inline constexpr std::size_t kDcCorrectionAddress = 20219;
inline constexpr std::size_t kChecksumAddress = 32767;

// Sets field k (1 to 12) of the identity; text is cut or padded with blanks to 10 characters.
void SetIdentityField(Eeprom& eeprom, int k, std::string_view text);
// Low 8 bits of the sum of bytes 0 to 32766.
std::uint8_t Checksum(const Eeprom& eeprom);
Eeprom FactoryEeprom(std::string_view model, std::string_view serialNumber,
                     std::string_view firmware);

}  // namespace qk::sim
