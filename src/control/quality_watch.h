// SPDX-License-Identifier: MIT
// What the end of a sweep tells of the trust in its numbers.
#pragma once

#include <array>
#include <span>

#include "link/instrument_link.h"
#include "quality/quality_state.h"

namespace qk {

// Forgets what was found on another calibration than the one in force: checks, hints, repeated
// sweeps.
void FollowCalibration(QualityState& quality, const Session& session);

// A sweep has come whole: hints and the run of repeated sweeps take it. Windows hear of it when
// something that they show has changed. overloaded: points at port 1 and port 2.
void TakeWholeSweep(Rig& rig, QualityState& quality, std::span<const Parameter> delivered,
                    std::array<int, 2> overloaded);

}  // namespace qk
