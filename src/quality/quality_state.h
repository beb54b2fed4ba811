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

// Why the value of an uncertainty is not passed to other programs, which would not see its
// limitations: as above, or "noise not known: four sweeps of the device are needed". Empty if it is
// known completely.
std::string WhyNoWholeUncertainty(const QualityState& quality, const Session& session,
                                  Parameter parameter);

// The basis of a known uncertainty and its limitations, as sentences: coverage, each check with its
// time and terms and whether it used the calibration's own kit, the terms above their limits, the
// terms that no check has found,
// the device parameters that are assumed because they are not measured, unknown noise, and effects
// that no check can detect.
std::string UncertaintyBasis(const QualityState& quality, const Session& session,
                             Parameter parameter);
// The same in words for a graph, the most important first: "±U k=2", "same kit", "without load
// match, linearity, cables", "too large: directivity -30.1 dB", "Three standards 2026-11-22 07:31".
std::vector<std::string> UncertaintyWords(const QualityState& quality, const Session& session,
                                          Parameter parameter);

// Standard uncertainty u (linear, coverage factor 1) of S11 or S21 at point k (from 0) of the
// sweep, from the check results and the spread of the repeated sweeps of this device, or otherwise
// of its last sweeps; widened by Student's factor if these are few, so that 2 u covers 95.45 %.
// Empty in the cases that WhyNoUncertainty describes: for the other parameters, which no check
// covers; for parameters that the sweep does not measure; after de-embedding or impedance
// conversion; and until checks have found the directivity (S11) or the transmission tracking (S21),
// and each match that the calibration does not correct (for S11+S21 the load match, for S21 alone
// both). Device parameters that are not measured are assumed: |S12| = |S21|, at most 1,
// and the largest |S22| of a passive device with these.
std::optional<double> UncertaintyAt(const QualityState& quality, const Session& session,
                                    Parameter parameter, int k);

}  // namespace qk
