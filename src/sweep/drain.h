// SPDX-License-Identifier: MIT
// The rest of a sweep's stream behind its end or an abort: taken and forgotten.
#pragma once

#include <cstddef>
#include <functional>

#include "link/instrument_link.h"

namespace qk {

struct Drained {
  std::size_t Bytes = 0;
  bool EndMark = false;  // "XX" came last
};

// Takes what comes until the line has been quiet for kStreamQuiet, kDrainTimeout at most; with
// untilEndMark the last two bytes must be "XX" besides. turn runs between two looks at the line,
// and ends the wait by false.
Drained DrainLine(Rig& rig, bool untilEndMark, const std::function<bool()>& turn);

// True when the instrument's firmware ends a sweep on request.
bool KnowsAbort(const Session& session);

// An abort in the middle of a sweep of which received of expected bytes have come, and the wait for
// its end. Where no end mark came, nothing is known of what the instrument holds.
void AbortSweep(Rig& rig, std::size_t received, std::size_t expected,
                const std::function<bool()>& turn);

}  // namespace qk
