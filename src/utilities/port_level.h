// SPDX-License-Identifier: MIT
// The session's port 1 level, kept over a run that steps it.
#pragma once

#include "core/session.h"

namespace qk {

// Puts Port1Level back, on every way out, to what it was at the scope's begin.
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
