// SPDX-License-Identifier: MIT
// The sweep plan that remote clients have requested and that no sweep has used yet. The rules of
// the sweep entry are applied to it, so that a client reads exactly what the next sweep will use.
#pragma once

#include <optional>

#include "core/session.h"

namespace qk::scpi {

class PendingPlan {
 public:
  explicit PendingPlan(const Session& session) : session_(session) {}

  // Hertz, within the range of the instrument, which the caller checks. A start above the stop also
  // moves the stop, and the reverse.
  void SetStart(double hertz);
  void SetStop(double hertz);
  // The span is kept if it fits around the centre, and the centre is kept if the span fits, also
  // when the grid widens or rounds the span.
  void SetCentre(double hertz);
  void SetSpan(double hertz);
  // A number that is not selectable is replaced by the next larger one. False: there is none.
  bool SetPoints(double points);
  void SetLevel(int dbm);  // 0 to -20

  // The plan of the next sweep.
  PlanGrid Grid() const;
  int Level() const;
  // The session's plan with the wanted grid and level; the entry unit is MHz.
  SweepPlan Plan() const;
  // The grid differs from the session's.
  bool OtherGrid() const;

 private:
  // Discards the requests if the plan has been changed elsewhere since.
  void Follow();
  bool Stale() const;
  PlanGrid Typed() const;

  const Session& session_;
  std::optional<double> start_, stop_;
  std::optional<double> centre_;  // start and stop follow from centre and span
  std::optional<std::int16_t> points_;
  std::optional<int> level_;
  PlanGrid seen_;
  int seenLevel_ = 0;
};

}  // namespace qk::scpi
