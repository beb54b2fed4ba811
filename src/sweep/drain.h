// SPDX-License-Identifier: MIT
// Reads and discards the rest of a sweep's stream after its end or an abort.
#pragma once

#include <cstddef>
#include <functional>

#include "link/instrument_link.h"

namespace qk {

struct Drained {
  std::size_t Bytes = 0;
  bool EndMark = false;  // the last bytes were "XX"
};

// Reads until the line has been quiet for kStreamQuiet, at most kDrainTimeout; with untilEndMark
// the last two bytes must also be "XX". turn runs between two checks of the line; returning false
// ends the wait.
Drained DrainLine(Rig& rig, bool untilEndMark, const std::function<bool()>& turn);

// True if the instrument's firmware can abort a sweep.
bool KnowsAbort(const Session& session);

// Aborts a sweep after received of expected bytes, and waits for its end. Without an end mark the
// state of the instrument is then unknown.
void AbortSweep(Rig& rig, std::size_t received, std::size_t expected,
                const std::function<bool()>& turn);

}  // namespace qk
