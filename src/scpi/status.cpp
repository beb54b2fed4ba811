// SPDX-License-Identifier: MIT
#include "scpi/status.h"

namespace qk::scpi {

void ClientStatus::Push(const Error& error) {
  if (const int bit = EventBitOf(error.Number); bit >= 0) events_ |= 1 << bit;
  if (errors_.size() < kLongestQueue) {
    errors_.push_back(error);
  } else {
    errors_.back() = {kQueueOverflow, {}};
    Raise(Event::DeviceError);
  }
}

Error ClientStatus::Pop() {
  if (errors_.empty()) return {};
  Error first = errors_.front();
  errors_.pop_front();
  return first;
}

void ClientStatus::Clear() {
  errors_.clear();
  events_ = 0;
  Operation.ClearEvent();
  Questionable.ClearEvent();
}

int ClientStatus::StatusByte() const {
  int byte = 0;
  if (!errors_.empty()) byte |= 1 << 2;
  if (Questionable.Summary()) byte |= 1 << 3;
  if ((events_ & EventEnable) != 0) byte |= 1 << 5;
  if (Operation.Summary()) byte |= 1 << 7;
  if ((byte & ServiceEnable) != 0) byte |= 1 << 6;
  return byte;
}

}  // namespace qk::scpi
