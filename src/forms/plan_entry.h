// SPDX-License-Identifier: MIT
// The arithmetic of the sweep entry: what the user typed becomes a legal grid, step by step. Pure
// functions on hertz; the window shows messages.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/instrument_limits.h"
#include "core/session.h"

namespace qk {

// The list index of a number of points, 0 when it is no choice.
int IndexOfPoints(int points);

// x to the nearest multiple of grid, halves upward.
double RoundToGrid(double x, double grid);

// A frequency within its limits, and the message to the user; none when it was within them.
struct LimitedFreq {
  double Hz;
  std::string_view Message;
};
LimitedFreq LimitStart(double typedHz);
LimitedFreq LimitStop(double typedHz, double startHz);

// True when the points between start and stop lie closer than 100 Hz (never with the points of the
// time domain).
bool StepTooSmall(const PlanGrid& plan);
// The list index to which the number of points falls back for such a step; 0 when the step is 0.
int FewerPoints(int listIndex, double stepHz);
// Start and stop spread around their middle to 100 Hz a point, inside the instrument's range.
void WidenSpan(PlanGrid& plan);

// Step to 100 Hz and the stop that the grid reaches; 1024 points are 3 MHz steps from 3 MHz. A span
// too small for 100 Hz steps takes them all the same, its start moved down where the grid would end
// above the instrument's range. Intended: a larger step may round up and reach above it (801 points
// from 3 to 3080 MHz end at 3080.04 MHz).
void SettleGrid(PlanGrid& plan);

// Start or stop, and step, as the fields show them in the entry unit (1e6 or 1000 Hz).
std::string FreqText(double hz, double unit);
std::string StepText(double hz, double unit);

}  // namespace qk
