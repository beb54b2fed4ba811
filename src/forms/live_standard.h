// SPDX-License-Identifier: MIT
// The standard that is being measured, as its bytes come: a small picture of the raw trace, with
// what is expected of it. One is shared by the windows that measure standards. It judges nothing.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cal/standard_sweeps.h"
#include "core/host.h"
#include "display/canvas.h"

namespace qk {

// What is connected, by what is expected of it.
enum class StandardKind { Open, Short, Load, Through, Isolation };

// What its raw trace looks like, which the front end moves by some decibels. In one sentence.
std::string ExpectationText(StandardKind kind);

class LiveStandard {
 public:
  explicit LiveStandard(Host& host) : host_(host) {}

  // The next sweeps, of so many points, are of this standard. The button of the window ends them.
  SweepWatch Watch(StandardKind kind, int points, const Progress& bar, std::string_view window,
                   std::string_view button);
  // The button was pressed. False when nothing is being measured.
  bool Cancel();
  bool Cancelled() const { return cancelled_; }
  // The sweeps are over.
  void Ended();
  // Nothing has been measured.
  void Clear();

  // The standard whose trace is drawn.
  std::optional<StandardKind> Shown() const {
    return measured_ ? std::optional(kind_) : std::nullopt;
  }
  void Draw(Canvas& canvas) const;
  // "Open: S11 about -1 dB", the median of each trace; empty before the first sweep.
  std::string Text() const;

 private:
  struct Trace {
    Complex RawPoint::*From = nullptr;
    const char* Name = "";
    std::vector<float> Db;  // by point, from 0
  };
  void Begins(const StandardSweep& sweep);

  Host& host_;
  StandardKind kind_ = StandardKind::Open;
  int points_ = 0;
  bool measured_ = false;   // something can be drawn
  bool measuring_ = false;  // a sweep runs
  bool cancelled_ = false;
  std::array<Trace, 2> traces_;
};

}  // namespace qk
