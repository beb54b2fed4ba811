// SPDX-License-Identifier: MIT
// "Check Calibration": measures known devices with the active calibration and derives the residual
// error terms, and records the trend over all checks.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cal/standards.h"
#include "link/instrument_link.h"
#include "quality/quality_state.h"

namespace qk {

struct CheckRequest {
  CheckMethod Method = CheckMethod::Standards;
  double LineMm = 300;  // of the air line, if one is used
};

struct CheckReport {
  CheckSummary Summary;
  CheckVerdict Verdict;
  std::string Note;  // limits of the method; empty if there is nothing to say
};

// Prompts for each device, measures it like a calibration standard, and corrects it with the active
// calibration (PortMatch: uses raw values). All methods but Standards2 measure from port 1.
// Reference planes, de-embedding and impedance conversion are not applied. The result is stored in
// quality.Check and appended as a line to the trend file. The measured data of the session are not
// changed. Empty if it failed (a message was shown) or if the watch cancelled a sweep (no message);
// earlier results are then kept.
std::optional<CheckReport> CheckCalibration(Rig& rig, QualityState& quality,
                                            const CheckRequest& request,
                                            const SweepWatch& watch = {});

// The last check of each term of the active calibration, from this run of the program or, by the
// trend file, from earlier runs. The trend file identifies a calibration by the time it was made.
struct TermChecked {
  CheckMethod By = CheckMethod::Standards;
  bool SameKit = false;  // as TermFound has it
  std::int64_t Utc = 0;
  WorstTerm Worst;
};
using LastChecks = std::array<std::optional<TermChecked>, kCheckTerms>;
LastChecks LastChecksOf(const Session& session, const QualityState& quality);

// Why the active calibration cannot be checked with this method; empty if it can.
std::optional<std::string> WhyNoCheck(const Session& session, CheckMethod method);

}  // namespace qk
