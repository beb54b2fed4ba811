// SPDX-License-Identifier: MIT
// Scopes for what must be put back on every way out of a routine: Timer1 paused around an exchange
// with the instrument, and the mark of a window or routine that is at work.
#pragma once

#include "core/host.h"

namespace qk {

// Timer1 off, so that no periodic measurement comes between; at the scope's end it is what it was
// before. Pauses nest: inside a window that keeps Timer1 off for long it stays off.
class Timer1Pause {
 public:
  explicit Timer1Pause(EventLoop& loop) : loop_(loop), ticking_(loop.Enabled(TimerId::Timer1)) {
    loop_.Enable(TimerId::Timer1, false);
  }
  ~Timer1Pause() { loop_.Enable(TimerId::Timer1, ticking_); }
  Timer1Pause(const Timer1Pause&) = delete;
  Timer1Pause& operator=(const Timer1Pause&) = delete;

 private:
  EventLoop& loop_;
  bool ticking_;
};

// Sets a mark, and takes it back at the scope's end. Only for a mark that is not set.
class FlagScope {
 public:
  explicit FlagScope(bool& mark) : mark_(mark) { mark_ = true; }
  ~FlagScope() { mark_ = false; }
  FlagScope(const FlagScope&) = delete;
  FlagScope& operator=(const FlagScope&) = delete;

 private:
  bool& mark_;
};

}  // namespace qk
