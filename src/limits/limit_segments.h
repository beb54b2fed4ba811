// SPDX-License-Identifier: MIT
// Limit lines: from the typed segments of a channel to its limits per point, and back; and what of
// them is shown and tested.
#pragma once

#include "core/host.h"
#include "core/result.h"
#include "core/session.h"

namespace qk {

// Puts the channel's segments (1 to 6, a later one over an earlier) into its limits, after taking
// all former ones off. Frequencies move down to their grid point, in the typed fields too. The
// first segment that cannot be used ends it, with the message for the user; those before it stand.
Result<Done> ApplyLimits(Session& session, int channel);

// Shows the limits of the channels that are ticked and applied, and arms the alarm, as the switches
// of "Limit Lines Set Up" stand. Intended: a channel whose tick was taken off keeps its limits on
// until its segments are applied anew, and shows them while those of any channel are shown.
void ShowLimitsAsSwitched(Session& session, Host& host);

// The segments of all channels from their limits per point, as after a session file was loaded,
// then ShowLimitsAsSwitched. At most six a channel; a pair of 1000 and -1000 is none. A segment
// ends where its run of equal limits ends; only where that makes more than six, a run inside a
// wider one is a later segment over it. Applied again, segments that came from typed ones make the
// same limits.
void RebuildSegments(Session& session, Host& host);

}  // namespace qk
