// SPDX-License-Identifier: MIT
// Limits, rounding and number formats of the sweep entry.
#include "forms/plan_entry.h"

#include <algorithm>
#include <cmath>

#include "core/instrument_limits.h"
#include "core/text.h"

namespace qk {

int IndexOfPoints(int points) {
  const auto it = std::find(kPointCounts.begin(), kPointCounts.end(), points);
  return it == kPointCounts.end() ? 0 : static_cast<int>(it - kPointCounts.begin());
}

double RoundToGrid(double x, double grid) {
  return std::floor(x / grid + 0.5) * grid;
}

static_assert(kLowestFreq == 3e6 && kHighestFreq == 3.08e9, "the messages name the range");

LimitedFreq LimitStart(double typedHz) {
  const double start = RoundToGrid(typedHz, kSmallestStep);
  if (start < kLowestFreq) return {kLowestFreq, "Start Freq < 3MHz"};
  // Intentional: a start above the range becomes 3.08 MHz, not GHz.
  if (start > kHighestFreq) return {3.08e6, "Start Freq > 3.08GHz"};
  return {start, ""};
}

LimitedFreq LimitStop(double typedHz, double startHz) {
  const double stop = RoundToGrid(typedHz, 1000);
  if (stop < startHz) return {kHighestFreq, "Stop Frequency < Start Frequency"};
  if (stop > kHighestFreq) return {kHighestFreq, "Stop Freq > 3.08GHz"};
  return {stop, ""};
}

bool StepTooSmall(const PlanGrid& plan) {
  return plan.StepFreq < kSmallestStep && plan.NumPoints != kTimeDomainPoints;
}

int FewerPoints(int listIndex, double stepHz) {
  if (stepHz <= 0) return 0;
  const double want = std::floor(std::sqrt(kSmallestStep / stepHz) + 0.5);
  return listIndex >= want ? listIndex - static_cast<int>(want) : 0;
}

void WidenSpan(PlanGrid& plan) {
  const int n = plan.NumPoints;
  const int half = n / 2;
  const double middle = (plan.StopFreq + plan.StartFreq) / 2;
  plan.StartFreq = std::max(RoundToGrid(middle - half * kSmallestStep, kSmallestStep), kLowestFreq);
  plan.StopFreq = n * kSmallestStep + plan.StartFreq;
  if (plan.StopFreq > kHighestFreq) {
    plan.StopFreq = kHighestFreq;
    plan.StartFreq = kHighestFreq - n * kSmallestStep;
  }
}

void SettleGrid(PlanGrid& plan) {
  const int intervals = plan.NumPoints - 1;
  if (plan.NumPoints == kTimeDomainPoints) {
    plan.StepFreq = kTimeDomainStep;
    plan.StartFreq = kTimeDomainStart;
  } else {
    const double step = (plan.StopFreq - plan.StartFreq) / intervals;
    plan.StepFreq = std::max(RoundToGrid(step, kSmallestStep), kSmallestStep);
    if (step < kSmallestStep)
      plan.StartFreq = std::min(plan.StartFreq, kHighestFreq - intervals * kSmallestStep);
  }
  plan.StopFreq = intervals * plan.StepFreq + plan.StartFreq;
}

std::string FreqText(double hz, double unit) {
  return FormatNumber(hz / unit, unit == 1000 ? "#######.0" : "###0.0000");
}

std::string StepText(double hz, double unit) {
  return FormatNumber(hz / unit, unit == 1000 ? "#######0.0" : "###0.0000");
}

}  // namespace qk
