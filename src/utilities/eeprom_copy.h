// SPDX-License-Identifier: MIT
// Reads and writes the instrument's whole EEPROM in 256 blocks of 128 bytes.
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

// Low 8 bits of the sum of bytes 0 to 32766; an image is valid if its last byte equals this.
std::uint8_t EepromChecksum(const EepromImage& image);
inline bool ChecksumHolds(const EepromImage& image) {
  return EepromChecksum(image) == image[kEepromChecksumAt];
}

// Called between two blocks; handles events. The back-up ends if it returns false.
using BetweenBlocks = std::function<bool()>;

// Empty after a failure, which has been shown, or if between ended it.
[[nodiscard]] std::optional<EepromImage> ReadEepromImage(Rig& rig, const Complaint& complaint,
                                                         const Progress& progress,
                                                         const BetweenBlocks& between);
// Before each block, waits until the instrument has processed the previous one; the end waits for
// the last one. Incomplete after a failure: the EEPROM is then partly written, up to the blocks
// sent.
struct EepromWritten {
  int Blocks = 0;  // number of blocks sent, of 256
  bool Whole = false;
};

// A restore, block by block, so that it can continue while a message box is open. Complaint and
// image must outlive it.
class EepromWriting {
 public:
  EepromWriting(Rig& rig, const Complaint& complaint, const EepromImage& image, Progress progress);
  // Sends the next block; false if there is none to send: all are written or one failed.
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
