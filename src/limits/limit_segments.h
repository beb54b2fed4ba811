// SPDX-License-Identifier: MIT
// Limit lines: from the typed segments of a channel to its limits per point, and back; and what of
// them is shown and tested.
#pragma once

#include <string>

#include "core/host.h"
#include "core/result.h"
#include "core/session.h"

namespace qk {

// Puts the channel's segments (1 to 6, a later one over an earlier) into its limits, after taking
// all former ones off. Frequencies move down to their grid point, in the typed fields too. The
// first segment that cannot be used ends it, with the message for the user; those before it stand.
// Refused, and nothing changes, where a file brought limits that no six segments make and the
// segments are still those that RebuildSegments has put there.
Result<Done> ApplyLimits(Session& session, int channel);

// Shows the limits of the channels that are ticked and applied, and arms the alarm, as the switches
// of "Limit Lines Set Up" stand. Intended: a channel whose tick was taken off keeps its limits on
// until its segments are applied anew, and shows them while those of any channel are shown.
void ShowLimitsAsSwitched(Session& session, Host& host);

// The segments of all channels from their limits per point, as after a session file was loaded,
// then ShowLimitsAsSwitched. At most six a channel; a pair of 1000 and -1000 is none. A segment
// ends where its run of equal limits ends; only where that makes more than six, later
// segments stand over wider ones, as few as can be. Applied again, segments that came from typed
// ones make the same limits. Of limits that no six segments make, the first six runs are shown.
// A segment from before that makes the same run keeps its frequencies as they were typed.
void RebuildSegments(Session& session, Host& host);

// A line for each channel whose limits no six segments make; empty when there is none.
std::string LimitsBeyondSegments(const Session& session);

}  // namespace qk
