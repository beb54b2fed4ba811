// SPDX-License-Identifier: MIT
// Restores the session's port 1 level after a run that steps it.
#pragma once

#include "core/session.h"

namespace qk {

// Restores Port1Level on every exit from the scope to its value at the start.
class Port1LevelKept {
 public:
  explicit Port1LevelKept(SweepPlan& plan) : plan_(plan), level_(plan.Port1Level) {}
  ~Port1LevelKept() { Restore(); }
  Port1LevelKept(const Port1LevelKept&) = delete;
  Port1LevelKept& operator=(const Port1LevelKept&) = delete;
  void Restore() { plan_.Port1Level = level_; }

 private:
  SweepPlan& plan_;
  std::int16_t level_;
};

}  // namespace qk
