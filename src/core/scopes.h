// SPDX-License-Identifier: MIT
// RAII scopes that restore a state on every exit from a routine: Timer1 paused during an exchange
// with the instrument, and a flag set while a window or routine is active.
#pragma once

#include "core/host.h"

namespace qk {

// Disables Timer1, so that no periodic measurement interrupts. Restores its previous state at the
// end of the scope. Pauses nest: if a window already disabled Timer1, it stays disabled.
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

// Sets a flag and clears it at the end of the scope. The flag must be clear before.
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
