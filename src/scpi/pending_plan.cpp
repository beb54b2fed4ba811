// SPDX-License-Identifier: MIT
#include "scpi/pending_plan.h"

#include <algorithm>

#include "core/instrument_limits.h"
#include "core/measured_sweep.h"
#include "forms/plan_entry.h"

namespace qk::scpi {

bool PendingPlan::Stale() const {
  return !SameGrid(seen_, session_.Plan) || seenLevel_ != session_.Plan.Port1Level;
}

void PendingPlan::Follow() {
  if (Stale()) {
    start_ = stop_ = centre_ = std::nullopt;
    points_ = std::nullopt;
    level_ = std::nullopt;
  }
  seen_ = session_.Plan;
  seenLevel_ = session_.Plan.Port1Level;
}

PlanGrid PendingPlan::Typed() const {
  PlanGrid grid = session_.Plan;
  if (Stale()) return grid;
  grid.StartFreq = start_.value_or(grid.StartFreq);
  grid.StopFreq = stop_.value_or(grid.StopFreq);
  grid.NumPoints = points_.value_or(grid.NumPoints);
  return grid;
}

void PendingPlan::SetStart(double hertz) {
  Follow();
  const double stop = Typed().StopFreq;
  centre_.reset();
  start_ = hertz;
  stop_ = std::max(stop, hertz);
}

void PendingPlan::SetStop(double hertz) {
  Follow();
  const double start = Typed().StartFreq;
  centre_.reset();
  stop_ = hertz;
  start_ = std::min(start, hertz);
}

void PendingPlan::SetCentre(double hertz) {
  Follow();
  const PlanGrid now = Typed();
  const double half =
      std::min({(now.StopFreq - now.StartFreq) / 2, hertz - kLowestFreq, kHighestFreq - hertz});
  start_ = hertz - half;
  stop_ = hertz + half;
  centre_ = hertz;
}

void PendingPlan::SetSpan(double hertz) {
  Follow();
  const PlanGrid now = Typed();
  const double centre = std::clamp(centre_.value_or((now.StartFreq + now.StopFreq) / 2),
                                   kLowestFreq + hertz / 2, kHighestFreq - hertz / 2);
  centre_ = centre;
  start_ = centre - hertz / 2;
  stop_ = centre + hertz / 2;
}

bool PendingPlan::SetPoints(double points) {
  const auto choice = std::ranges::find_if(
      kPointCounts, [points](std::int16_t n) { return static_cast<double>(n) >= points; });
  if (choice == kPointCounts.end()) return false;
  Follow();
  points_ = *choice;
  return true;
}

void PendingPlan::SetLevel(int dbm) {
  Follow();
  level_ = dbm;
}

PlanGrid PendingPlan::Grid() const {
  PlanGrid grid = Typed();
  if (Stale() || (!start_ && !stop_ && !points_)) return grid;
  grid.StartFreq = std::clamp(RoundToGrid(grid.StartFreq, 100), kLowestFreq, kHighestFreq);
  grid.StopFreq = std::clamp(RoundToGrid(grid.StopFreq, 1000), grid.StartFreq, kHighestFreq);
  SettleGrid(grid);
  if (!centre_ || grid.NumPoints == kTimeDomainPoints) return grid;
  // The span is now a whole number of steps: put it around the centre again.
  const double span = grid.StopFreq - grid.StartFreq;
  const double start = RoundToGrid(*centre_ - span / 2, kSmallestStep);
  grid.StartFreq = std::max(std::min(start, kHighestFreq - span), kLowestFreq);
  grid.StopFreq = grid.StartFreq + span;
  return grid;
}

int PendingPlan::Level() const {
  return Stale() ? session_.Plan.Port1Level : level_.value_or(session_.Plan.Port1Level);
}

SweepPlan PendingPlan::Plan() const {
  SweepPlan plan = session_.Plan;
  static_cast<PlanGrid&>(plan) = Grid();
  plan.Port1Level = static_cast<std::int16_t>(Level());
  return plan;
}

bool PendingPlan::OtherGrid() const {
  return !SameGrid(Grid(), session_.Plan);
}

}  // namespace qk::scpi
