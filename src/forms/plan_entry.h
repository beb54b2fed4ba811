// SPDX-License-Identifier: MIT
// The arithmetic of the sweep entry: converts the typed values to a valid grid, step by step. Pure
// functions on hertz; the window shows the messages.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/instrument_limits.h"
#include "core/session.h"

namespace qk {

// The list index for a number of points; 0 if it is not in the list.
int IndexOfPoints(int points);

// x rounded to the nearest multiple of grid, halves upward.
double RoundToGrid(double x, double grid);

// A frequency clamped to its limits, and the message to the user; no message if it was within them.
struct LimitedFreq {
  double Hz;
  std::string_view Message;
};
LimitedFreq LimitStart(double typedHz);
LimitedFreq LimitStop(double typedHz, double startHz);

// True if the points between start and stop are less than 100 Hz apart (never for the time-domain
// number of points).
bool StepTooSmall(const PlanGrid& plan);
// The list index of the reduced number of points for such a step; 0 if the step is 0.
int FewerPoints(int listIndex, double stepHz);
// Widens the span around its centre to 100 Hz per point, within the instrument's range.
void WidenSpan(PlanGrid& plan);

// Rounds the step to a multiple of 100 Hz and sets the stop frequency that the grid reaches; 1024
// points have 3 MHz steps from 3 MHz. A span too small for 100 Hz steps gets them anyway; its start
// moves down if the grid would end above the instrument's range. Intentional: a larger step may
// round up and exceed the range (801 points from 3 to 3080 MHz end at 3080.04 MHz).
void SettleGrid(PlanGrid& plan);

// A start, stop or step frequency as the fields show it in the entry unit (1e6 or 1000 Hz).
std::string FreqText(double hz, double unit);
std::string StepText(double hz, double unit);

}  // namespace qk
