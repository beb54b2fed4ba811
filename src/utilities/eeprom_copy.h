// SPDX-License-Identifier: MIT
// The instrument's whole EEPROM, read and written in 256 blocks of 128 bytes.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>

#include "core/progress.h"
#include "link/exchange.h"

namespace qk {

using EepromImage = std::array<std::uint8_t, 32768>;
inline constexpr std::size_t kEepromChecksumAt = 32767;

// Low 8 bits of the sum of bytes 0 to 32766; an image is good when its last byte is that.
std::uint8_t EepromChecksum(const EepromImage& image);
inline bool ChecksumHolds(const EepromImage& image) {
  return EepromChecksum(image) == image[kEepromChecksumAt];
}

// Called between two blocks; events run in it. The back-up ends when it gives false.
using BetweenBlocks = std::function<bool()>;

// Nothing after a complaint, which has been told, or when between ended it.
[[nodiscard]] std::optional<EepromImage> ReadEepromImage(Rig& rig, const Complaint& complaint,
                                                         const Progress& progress,
                                                         const BetweenBlocks& between);
// Each block waits for the instrument to have digested the one before, and the end for the last
// one. Not whole after a complaint: the EEPROM is then written in part, up to the blocks sent.
struct EepromWritten {
  int Blocks = 0;  // sent, of 256
  bool Whole = false;
};

// A restore, block by block, so that it can continue behind a message box. Complaint and image must
// outlive it.
class EepromWriting {
 public:
  EepromWriting(Rig& rig, const Complaint& complaint, const EepromImage& image, Progress progress);
  // Sends the next block; false when there is none to send: all are written or one failed.
  bool Next();
  const EepromWritten& Written() const { return written_; }

 private:
  Rig& rig_;
  const Complaint& complaint_;
  const EepromImage& image_;
  Progress progress_;
  EepromWritten written_;
  bool over_ = false;
};

}  // namespace qk
