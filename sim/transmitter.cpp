// SPDX-License-Identifier: MIT
#include "sim/transmitter.h"

#include <algorithm>
#include <utility>

namespace qk::sim {

namespace {
constexpr std::uint8_t kAddedByte = 0xA5;
constexpr std::uint8_t kGarbleMask = 0x5A;
}  // namespace

void Transmitter::Send(const std::uint8_t* bytes, std::size_t count, std::int64_t readyUs,
                       Sending what, bool together) {
  if (what != Sending::SweepRest) readyUs += faults_.LateUs;
  if (what == Sending::SweepBegin) {
    sweepBytes_ = 0;
    for (ByteFault& f : faults_.Bytes)
      if (f.InSweep) f.Armed = true;
  }
  const bool paced = pace_ == Pace::Baud115200;
  // Unpaced bytes keep their order too: a late reply delays those after it.
  const std::int64_t startNs = std::max(readyUs * 1000, freeNs_);
  const std::int64_t startUs = (startNs + 999) / 1000;
  const bool contiguous = !together && !queue_.empty() && !queue_.back().Together &&
                          (paced ? startNs == freeNs_ : queue_.back().NotBeforeUs == startUs);
  if (!contiguous) queue_.push_back({startUs, {}, together});
  const std::size_t before = queue_.back().Bytes.size();
  for (std::size_t i = 0; i < count; ++i) PutByte(bytes[i], what != Sending::Reply);
  const std::size_t put = queue_.back().Bytes.size() - before;
  if (queue_.back().Bytes.empty()) queue_.pop_back();
  freeNs_ = startNs + (paced ? LineNs(put) : 0);
}

void Transmitter::PutByte(std::uint8_t byte, bool sweep) {
  if (sweep && faults_.StallAfter && sweepBytes_ >= *faults_.StallAfter) return;
  if (sweep) ++sweepBytes_;
  bool dropped = false;
  int added = 0, doubled = 0;
  for (ByteFault& f : faults_.Bytes) {
    if (f.InSweep && (!sweep || !f.Armed)) continue;
    const std::uint64_t position = f.Seen++;
    if (position < f.At || position >= f.At + f.Count) continue;
    switch (f.What) {
      case ByteFault::Kind::Drop:
        dropped = true;
        break;
      case ByteFault::Kind::Add:
        ++added;
        break;
      case ByteFault::Kind::Double:
        ++doubled;
        break;
      case ByteFault::Kind::Garble:
        byte ^= kGarbleMask;
        break;
    }
  }
  for (int i = 0; i < added; ++i) Put(kAddedByte);
  if (!dropped)
    for (int i = 0; i <= doubled; ++i) Put(byte);
}

void Transmitter::Put(std::uint8_t byte) {
  if (faults_.CutAfter) {
    if (faults_.CutSeen >= *faults_.CutAfter) return;
    ++faults_.CutSeen;
  }
  ++sent_;
  queue_.back().Bytes.push_back(byte);
}

std::vector<Outgoing> Transmitter::Take() {
  return std::exchange(queue_, {});
}

}  // namespace qk::sim
