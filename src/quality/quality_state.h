// SPDX-License-Identifier: MIT
// All that the program knows of the trust in its numbers. It goes with a session and is in no file
// of it: a new session, a loaded one and another calibration begin anew.
#pragma once

#include "quality/cal_check.h"
#include "quality/hints.h"
#include "quality/sweep_run.h"

namespace qk {

// Tells one calibration from another.
struct CalIdentity {
  CalRecord Made;
  std::optional<SweepMode> Mode;
  double StartFreq = 0, StepFreq = 0;  // of the calibration's own plan
  Complex Directivity, Tracking;       // its first point

  bool operator==(const CalIdentity&) const = default;
};
CalIdentity IdentityOf(const Session& session);

struct QualityState {
  CalIdentity Calibration;  // that everything else belongs to
  HintWatch Hints;
  CalCheck Check;  // of the calibration in force
  SweepRun Run;    // the last run of repeated sweeps
};

// Standard uncertainty u (linear, coverage 1) of S11 or S21 at point k (from 0) of the sweep, by
// what the checks have found and the spread of the run of repeated sweeps, or else of the last
// sweeps. Nothing for the other parameters, which no check looks at, and before a check has found
// the directivity (S11) or the transmission tracking (S21).
std::optional<double> UncertaintyAt(const QualityState& quality, const Session& session,
                                    Parameter parameter, int k);

}  // namespace qk
