// SPDX-License-Identifier: MIT
// A plausibility check of the measured reflection standards: finds those that cannot be what the
// user was asked to connect. Advisory only; shown next to the list of steps still to do.
#pragma once

#include <string>
#include <vector>

#include "core/session.h"

namespace qk {

// What has been measured so far, on port 1 and, with BothPorts, also on port 2.
struct ReflectionsMeasured {
  bool Load = false, Short = false, Open = false;
  bool BothPorts = false;
};

// One text per doubt, for example "Load on port 1 reflects like a short". The check uses raw
// ratios, which the front end changes by some decibels, so the limits are wide: an open or short
// must reflect between 0.25 and 4 times the whole, a load less than 0.7 of the whole, and open and
// short must differ by at least a quarter of the larger of the two.
std::vector<std::string> StandardDoubts(const Session& session,
                                        const ReflectionsMeasured& measured);

}  // namespace qk
