// SPDX-License-Identifier: MIT
// The sweep plan that remote clients have asked for and that no sweep has used yet. It is settled
// by the rules of the sweep entry, so that what is read is what the next sweep will have.
#pragma once

#include <optional>

#include "core/session.h"

namespace qk::scpi {

class WantedPlan {
 public:
  explicit WantedPlan(const Session& session) : session_(session) {}

  // Hertz, inside the range of the instrument: the caller checks that. A start above the stop takes
  // the stop along, and the other way round.
  void SetStart(double hertz);
  void SetStop(double hertz);
  // The span stays where it fits around the centre, and the centre where the span fits.
  void SetCentre(double hertz);
  void SetSpan(double hertz);
  // A number that is no choice takes the next larger one. False: there is none.
  bool SetPoints(double points);
  void SetLevel(int dbm);  // 0 to -20

  // What the next sweep will have.
  PlanGrid Grid() const;
  int Level() const;
  // The session's plan with both; frequencies are entered in MHz.
  SweepPlan Plan() const;
  // The grid is not the session's.
  bool OtherGrid() const;

 private:
  // A plan that came from elsewhere since puts the wishes out.
  void Follow();
  bool Stale() const;
  PlanGrid Typed() const;

  const Session& session_;
  std::optional<double> start_, stop_;
  std::optional<std::int16_t> points_;
  std::optional<int> level_;
  PlanGrid seen_;
  int seenLevel_ = 0;
};

}  // namespace qk::scpi
