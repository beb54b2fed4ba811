// SPDX-License-Identifier: MIT
// Everything that can be shown with the traces at once: numbers at the axes, remarks, tested limits
// with points that fail, markers, hints, the bands of uncertainty and of repeated sweeps.
#pragma once

#include "core/session.h"
#include "display/records.h"
#include "quality/quality_state.h"

namespace qk::benchmarks {

inline constexpr ViewState kAllAdditions{
    .AxisNumbers = true, .Remarks = true, .Uncertainty = true, .Spread = true};

// Four markers; limits that some points of each channel fail; averages, smoothing and planes for
// the remarks.
void AddAll(Session& session);

// Every term found by a check of the active calibration, and an unfinished run of repeated sweeps
// with two sweeps of the session's data.
void CheckAll(QualityState& quality, const Session& session);

}  // namespace qk::benchmarks
