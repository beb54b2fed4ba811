// SPDX-License-Identifier: MIT
// All information about measurement quality. It belongs to a session but is not saved in its files:
// a new session, a loaded session and another calibration reset it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "quality/cal_check.h"
#include "quality/hints.h"
#include "quality/sweep_run.h"

namespace qk {

// Identifies a calibration.
struct CalIdentity {
  CalRecord Made;
  std::optional<SweepMode> Mode;
  double StartFreq = 0, StepFreq = 0;  // the calibration's own plan
  Complex Directivity, Tracking;       // at its first point

  bool operator==(const CalIdentity&) const = default;
};
CalIdentity IdentityOf(const Session& session);

struct QualityState {
  CalIdentity Calibration;  // everything else in this record belongs to it
  HintWatch Hints;
  CalCheck Check;  // of the active calibration
  SweepRun Run;    // the last run of repeated sweeps
};

// Why the uncertainty of a parameter is unknown, as part of a sentence: "S12 is not checked" or "no
// check of the directivity"; empty if it is known.
std::string WhyNoUncertainty(const QualityState& quality, const Session& session,
                             Parameter parameter);

// Why the number of an uncertainty is not handed to other programs, where no words stand beside it:
// as above, or "noise not known: four sweeps of the device are needed". Empty when it is
// known with all that belongs to it.
std::string WhyNoWholeUncertainty(const QualityState& quality, const Session& session,
                                  Parameter parameter);

// What an uncertainty that is known rests on and what it leaves out, as sentences: coverage, each
// check with its moment and terms and whether it used the kit that calibrated, the terms that no
// check has found, the parameters of the device that are not measured and assumed, noise before it
// is known, and what no check can find.
std::string UncertaintyBasis(const QualityState& quality, const Session& session,
                             Parameter parameter);
// The same in words for a graph, the most important first: "±U k=2", "same kit", "without load
// match, linearity, cables", "Three standards 2026-11-22 07:31".
std::vector<std::string> UncertaintyWords(const QualityState& quality, const Session& session,
                                          Parameter parameter);

// Standard uncertainty u (linear, coverage 1) of S11 or S21 at point k (from 0) of the sweep, by
// what the checks have found and the spread of the run of repeated sweeps, or else of the last
// sweeps. Nothing where WhyNoUncertainty says why: for the other parameters, which no check looks
// at; for what the sweep does not measure; after de-embedding or impedance conversion; and before
// checks have found the directivity (S11) or the transmission tracking (S21), and each match that
// the calibration does not correct (of S11+S21 the load match, of S21 alone both). The tracking of
// S21 alone holds both matches M and L as the through saw them, so M L counts there. Of the device,
// parameters that are not measured are assumed: |S12| = |S21|, at most 1, and |S22|^2 = 1 -
// |S21|^2, at least |S11|^2.
std::optional<double> UncertaintyAt(const QualityState& quality, const Session& session,
                                    Parameter parameter, int k);

}  // namespace qk
