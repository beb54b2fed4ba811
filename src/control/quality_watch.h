// SPDX-License-Identifier: MIT
// Evaluates the quality of the measurement at the end of each sweep.
#pragma once

#include <array>
#include <span>

#include "link/instrument_link.h"
#include "quality/quality_state.h"

namespace qk {

// Discards checks, hints and repeated sweeps that belong to another calibration than the active
// one.
void FollowCalibration(QualityState& quality, const Session& session);

// Processes a complete sweep: updates the hints and the statistics of repeated sweeps. Notifies the
// windows if anything they show has changed. overloaded: number of points at port 1 and port 2.
void TakeWholeSweep(Rig& rig, QualityState& quality, std::span<const Parameter> delivered,
                    std::array<int, 2> overloaded);

}  // namespace qk
