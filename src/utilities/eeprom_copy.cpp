// SPDX-License-Identifier: MIT
#include "utilities/eeprom_copy.h"

#include <algorithm>
#include <numeric>

#include "link/command_set.h"

namespace qk {

namespace {
constexpr int kBlocks = 256;
constexpr int kBlockLength = 128;

// Told at every fifth block, as a percentage of them all.
void TellBlock(const Progress& progress, int block) {
  if (block % 5 == 0) TellProgress(progress, 100 * block / kBlocks);
}
}  // namespace

std::uint8_t EepromChecksum(const EepromImage& image) {
  return static_cast<std::uint8_t>(
      std::accumulate(image.begin(), image.begin() + kEepromChecksumAt, 0u));
}

std::optional<EepromImage> ReadEepromImage(Rig& rig, const Complaint& complaint,
                                           const Progress& progress, const BetweenBlocks& between) {
  EepromImage image;
  TellProgress(progress, 0);
  for (int i = 1; i <= kBlocks; ++i) {
    const int address = (i - 1) * kBlockLength;
    const auto block = Exchange(rig, complaint, command::ReadEeprom(kBlockLength, address),
                                kBlockLength, command::kEepromBackupTimeout);
    if (!block) return std::nullopt;
    std::copy(block->begin(), block->end(), image.begin() + address);
    TellBlock(progress, i);
    if (!between()) return std::nullopt;
  }
  return image;
}

EepromWritten WriteEepromImage(Rig& rig, const Complaint& complaint, const EepromImage& image,
                               const Progress& progress, const BetweenBlocks& between) {
  TellProgress(progress, 0);
  for (int i = 1; i <= kBlocks; ++i) {
    const int address = (i - 1) * kBlockLength;
    if (!Send(rig, complaint, command::WriteEeprom(kBlockLength, address)))
      return {.Blocks = i - 1};
    for (int j = 0; j < kBlockLength; ++j)
      rig.link.SendByte(image[static_cast<std::size_t>(address + j)]);
    TellBlock(progress, i);
    if (!between()) return {.Blocks = i};
  }
  return {.Blocks = kBlocks, .Whole = InstrumentAnswers(rig, complaint)};
}

}  // namespace qk
