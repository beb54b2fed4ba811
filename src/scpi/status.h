// SPDX-License-Identifier: MIT
// The status of one client: error queue, standard event register, the two condition groups and the
// status byte, as defined by IEEE 488.2 and SCPI-1999.
#pragma once

#include <cstdint>
#include <deque>

#include "scpi/errors.h"

namespace qk::scpi {

// Bits of the standard event register.
enum class Event {
  OperationComplete = 0,
  QueryError = 2,
  DeviceError = 3,
  ExecutionError = 4,
  CommandError = 5,
  UserRequest = 6,
  PowerOn = 7
};

// Bits of the operation status.
inline constexpr int kCalibrating = 1 << 0;
inline constexpr int kSweeping = 1 << 3;
inline constexpr int kPowerTest = 1 << 4;

// Bits of the questionable status.
inline constexpr int kOverload = 1 << 3;
inline constexpr int kTemperature = 1 << 4;
inline constexpr int kCalibration = 1 << 8;
inline constexpr int kLimitsFailed = 1 << 9;
inline constexpr int kLinkLost = 1 << 10;

// A condition register with an event register, which latches rising bits until it is read.
class StatusGroup {
 public:
  void SetCondition(int condition) {
    event_ |= condition & ~condition_;
    condition_ = condition;
  }
  int Condition() const { return condition_; }
  int TakeEvent() {
    const int event = event_;
    event_ = 0;
    return event;
  }
  void ClearEvent() { event_ = 0; }
  bool Summary() const { return (event_ & Enable) != 0; }

  int Enable = 0;

 private:
  int condition_ = 0;
  int event_ = 0;
};

class ClientStatus {
 public:
  // Appends an error, at most 32; if there are more, the last one becomes "Queue overflow".
  void Push(const Error& error);
  Error Pop();  // number 0 if the queue is empty
  std::size_t Errors() const { return errors_.size(); }

  void Raise(Event event) { events_ |= 1 << static_cast<int>(event); }
  int TakeEvents() {
    const int events = events_;
    events_ = 0;
    return events;
  }
  // "*CLS": clears queue, events and the events of both groups; masks are kept.
  void Clear();
  // "STATus:PRESet": resets the masks of both groups.
  void Preset() { Operation.Enable = Questionable.Enable = 0; }
  // Bit 2 error queue not empty, 3 questionable, 5 standard events, 6 service request, 7 operation.
  // Bit 4 (message available) is always 0: replies are sent at once.
  int StatusByte() const;

  StatusGroup Operation, Questionable;
  int EventEnable = 0;
  int ServiceEnable = 0;

 private:
  static constexpr std::size_t kLongestQueue = 32;
  std::deque<Error> errors_;
  int events_ = 1 << static_cast<int>(Event::PowerOn);
};

}  // namespace qk::scpi
