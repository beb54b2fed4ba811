// SPDX-License-Identifier: MIT
// What a sweep has measured, and the frequencies at which it did.
#pragma once

#include "core/session.h"

namespace qk {

// The same points at the same frequencies.
bool SameGrid(const PlanGrid& a, const PlanGrid& b);

// Data and channel values as before the first sweep.
void ForgetSweep(Session& session);

}  // namespace qk
