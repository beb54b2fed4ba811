// SPDX-License-Identifier: MIT
// Shows the standard being measured, as its bytes arrive: a small picture of the raw trace, with
// the expected result. Shared by the windows that measure standards. Shows no verdict.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cal/standard_sweeps.h"
#include "core/host.h"
#include "display/canvas.h"

namespace qk {

// The kind of standard, which determines the expected trace.
enum class StandardKind { Open, Short, Load, Through, Isolation };

// The expected raw trace in one sentence. The front end changes it by some decibels.
std::string ExpectationText(StandardKind kind);

class LiveStandard {
 public:
  explicit LiveStandard(Host& host) : host_(host) {}

  // Prepares for the next sweeps with this number of points of this standard. The given button of
  // the window cancels them.
  SweepWatch Watch(StandardKind kind, int points, const Progress& bar, std::string_view window,
                   std::string_view button);
  // Called when the button is pressed. False if nothing is being measured.
  bool Cancel();
  bool Cancelled() const { return cancelled_; }
  // Called when the sweeps have ended.
  void Ended();
  // Resets to the state before any measurement.
  void Clear();

  // The standard whose trace is drawn.
  std::optional<StandardKind> Shown() const {
    return measured_ ? std::optional(kind_) : std::nullopt;
  }
  // background: the colour behind the graphs, which decides between light and dark.
  void Draw(Canvas& canvas, std::uint32_t background = 0xFFFFFF) const;
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
  bool measured_ = false;   // there is something to draw
  bool measuring_ = false;  // a sweep runs
  bool cancelled_ = false;
  std::array<Trace, 2> traces_;
};

}  // namespace qk
