// SPDX-License-Identifier: MIT
#include "sim/wire.h"

#include <algorithm>

#include "sim/transmitter.h"

namespace qk::sim {

std::int64_t Wire::Batch::ArrivalUs(std::size_t i) const {
  return Paced ? StartUs + (LineNs(i + 1) + 999) / 1000 : StartUs;
}

std::int64_t Wire::Batch::NextUs() const {
  return ArrivalUs(Together ? Bytes.size() - 1 : Taken);
}

void Wire::Write(std::span<const std::uint8_t> bytes, std::int64_t nowUs) {
  if (bytes.empty()) return;
  const bool paced = instrument_.CurrentPace() == Pace::Baud115200;
  Batch batch{std::max(nowUs, writeFreeUs_), paced, false, {bytes.begin(), bytes.end()}, 0};
  writeFreeUs_ = batch.ArrivalUs(batch.Bytes.size() - 1);
  toInstrument_.push_back(std::move(batch));
  Advance(nowUs);
}

void Wire::Advance(std::int64_t nowUs) {
  Deliver(nowUs);
  Collect(nowUs);
  Arrive(nowUs);
}

void Wire::Deliver(std::int64_t nowUs) {
  while (!toInstrument_.empty()) {
    Batch& batch = toInstrument_.front();
    while (!batch.Done() && batch.NextUs() <= nowUs) {
      // Without pacing the whole batch arrives at once.
      const std::size_t count = batch.Paced ? 1 : batch.Bytes.size() - batch.Taken;
      instrument_.Receive(batch.Bytes.data() + batch.Taken, count, batch.NextUs());
      batch.Taken += count;
    }
    if (!batch.Done()) return;
    toInstrument_.pop_front();
  }
}

void Wire::Collect(std::int64_t nowUs) {
  const bool paced = instrument_.CurrentPace() == Pace::Baud115200;
  for (Outgoing& o : instrument_.Poll(nowUs))
    toProgram_.push_back({o.NotBeforeUs, paced, o.Together, std::move(o.Bytes), 0});
}

void Wire::Arrive(std::int64_t nowUs) {
  while (!toProgram_.empty()) {
    Batch& batch = toProgram_.front();
    std::size_t count = 0;
    const std::size_t left = batch.Bytes.size() - batch.Taken;
    if (batch.NextUs() <= nowUs) {
      if (!batch.Paced || batch.Together)
        count = left;
      else
        while (count < left && batch.ArrivalUs(batch.Taken + count) <= nowUs) ++count;
    }
    const auto first = batch.Bytes.begin() + static_cast<std::ptrdiff_t>(batch.Taken);
    arrived_.insert(arrived_.end(), first, first + static_cast<std::ptrdiff_t>(count));
    batch.Taken += count;
    if (!batch.Done()) return;
    toProgram_.pop_front();
  }
}

std::size_t Wire::Take(std::vector<std::uint8_t>& out) {
  const std::size_t count = arrived_.size();
  out.insert(out.end(), arrived_.begin(), arrived_.end());
  arrived_.clear();
  return count;
}

std::int64_t Wire::NextUs(std::int64_t nowUs) const {
  std::int64_t next = instrument_.NextUs();
  if (!toInstrument_.empty()) next = std::min(next, toInstrument_.front().NextUs());
  if (!toProgram_.empty()) next = std::min(next, toProgram_.front().NextUs());
  return next == Instrument::kNever ? next : std::max(next, nowUs + 1);
}

void Wire::Clear() {
  toInstrument_.clear();
  toProgram_.clear();
  arrived_.clear();
  writeFreeUs_ = 0;
}

}  // namespace qk::sim
