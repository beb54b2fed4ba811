// SPDX-License-Identifier: MIT
// A look at the reflection standards as they were measured: which of them cannot be what the user
// was asked to connect. It is advisory only, and is shown beside what is still to measure.
#pragma once

#include <string>
#include <vector>

#include "core/session.h"

namespace qk {

// What has been measured so far, on port 1 and, with BothPorts, on port 2 as well.
struct ReflectionsMeasured {
  bool Load = false, Short = false, Open = false;
  bool BothPorts = false;
};

// One text a doubt, e.g. "Load on port 1 reflects like a short". Judged are raw ratios, which a
// front end moves by some decibels, so the limits are wide: an open or short is one that reflects
// from a quarter to four times the whole, a load what reflects less than 0.7 of that, an open and a
// short what differ by a quarter at least.
std::vector<std::string> StandardDoubts(const Session& session,
                                        const ReflectionsMeasured& measured);

}  // namespace qk
