// SPDX-License-Identifier: MIT
// Limit lines: conversion between the typed segments of a channel and its limits per point, and
// which limits are shown and tested.
#pragma once

#include <string>

#include "core/host.h"
#include "core/result.h"
#include "core/session.h"

namespace qk {

// Clears the channel's limits and applies its segments (1 to 6; later ones override earlier ones).
// Frequencies are rounded down to their grid point, in the typed fields too. Stops at the first
// unusable segment, with a message for the user; the segments before it stay applied. Refused
// without a change if a file contained limits that six segments cannot represent and the segments
// are still those from RebuildSegments.
Result<Done> ApplyLimits(Session& session, int channel);

// Shows the limits of the channels that are selected and applied, and arms the alarm, by the
// switches of "Limit Lines Set Up". Intentional: a deselected channel keeps its limits on until its
// segments are applied again, and shows them while the limits of any channel are shown.
void ShowLimitsAsSwitched(Session& session, Host& host);

// The segments of all channels from their limits per point, as after a session file was loaded,
// then ShowLimitsAsSwitched. At most six a channel; a pair of 1000 and -1000 is none. A segment
// ends where its run of equal limits ends; only where that makes more than six, later
// segments stand over wider ones, as few as can be. Applied again, segments that came from typed
// ones make the same limits. Of limits that no six segments make, the first six runs are shown.
// A segment from before that makes the same run keeps its frequencies as they were typed.
void RebuildSegments(Session& session, Host& host);

// One line per channel whose limits six segments cannot represent; empty if there is none.
std::string LimitsBeyondSegments(const Session& session);

}  // namespace qk
