// SPDX-License-Identifier: MIT
#include "utilities/eeprom_copy.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "link/command_set.h"

namespace qk {

namespace {
constexpr int kBlocks = 256;
constexpr int kBlockLength = 128;

// Reports progress at every fifth block, as a percentage.
void ReportBlockDone(const Progress& progress, int block) {
  if (block % 5 == 0) ReportProgress(progress, 100 * block / kBlocks);
}
}  // namespace

std::uint8_t EepromChecksum(const EepromImage& image) {
  return static_cast<std::uint8_t>(
      std::accumulate(image.begin(), image.begin() + kEepromChecksumAt, 0u));
}

std::optional<EepromImage> ReadEepromImage(Rig& rig, const Complaint& complaint,
                                           const Progress& progress, const BetweenBlocks& between) {
  EepromImage image;
  ReportProgress(progress, 0);
  for (int i = 1; i <= kBlocks; ++i) {
    const int address = (i - 1) * kBlockLength;
    const auto block = Exchange(rig, complaint, command::ReadEeprom(kBlockLength, address),
                                kBlockLength, command::kEepromBackupTimeout);
    if (!block) return std::nullopt;
    std::copy(block->begin(), block->end(), image.begin() + address);
    ReportBlockDone(progress, i);
    if (!between()) return std::nullopt;
  }
  return image;
}

EepromWriting::EepromWriting(Rig& rig, const Complaint& complaint, const EepromImage& image,
                             Progress progress)
    : rig_(rig), complaint_(complaint), image_(image), progress_(std::move(progress)) {
  ReportProgress(progress_, 0);
}

bool EepromWriting::Next() {
  if (over_) return false;
  if (written_.Blocks == kBlocks) {
    written_.Whole = InstrumentAnswers(rig_, complaint_);
    over_ = true;
    return false;
  }
  const int address = written_.Blocks * kBlockLength;
  if (!Send(rig_, complaint_, command::WriteEeprom(kBlockLength, address))) {
    over_ = true;
    return false;
  }
  for (int j = 0; j < kBlockLength; ++j)
    rig_.link.SendByte(image_[static_cast<std::size_t>(address + j)]);
  ReportBlockDone(progress_, ++written_.Blocks);
  return true;
}

}  // namespace qk
