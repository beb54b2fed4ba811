// SPDX-License-Identifier: MIT
// Sessions that benchmarks start from: a plan, a smooth error box, raw data, four channels.
#pragma once

#include <memory>

#include "core/session.h"

namespace qk::benchmarks {

// numPoints from 3 MHz to 3 GHz on a 100 Hz grid; terms of a plausible front end; raw ratios of a
// plausible device; channels 1 to 4 show S11 LogMag, S21 Phase, S12 LinMag, S22 LogMag.
std::unique_ptr<Session> MakeMeasuringSession(int numPoints);

// Raw standards (load, short, open at both ports, through, isolation) as measured through that
// front end, for the compute routines.
void FillStandards(Session& session);

}  // namespace qk::benchmarks
