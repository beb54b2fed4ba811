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

// Switches the display and test of limits off that do not suit their channel. Returns what was
// switched off, "CH1: limits for S11 LogMag in dB"; empty if nothing was. A chart has no test:
// there they stay.
std::string SwitchOffUnsuitable(Session& session, int channel);

// Reconstructs the segments of all channels from their limits per point, for example after loading
// a session file, then calls ShowLimitsAsSwitched. At most six per channel; the pair 1000 and -1000
// means no limit. A segment ends where its run of equal limits ends; only if that needs more than
// six, later segments overlap wider ones, as few as possible. Applying segments that were
// reconstructed from typed ones gives the same limits. If six segments cannot represent the limits,
// the first six runs are shown. An existing segment that gives the same run keeps its typed
// frequencies.
void RebuildSegments(Session& session, Host& host);

// One line per channel whose limits six segments cannot represent; empty if there is none.
std::string LimitsBeyondSegments(const Session& session);

// One line per channel that shows and tests limits for something else: "CH1 shows S11 SWR in U:
// limits are for S11 LogMag in dB". Empty if there is none.
std::string UnsuitableLimits(const Session& session);

// One line per time-domain channel with limits: "CH1 shows time: limits from 925.0000 MHz to
// 1075.0000 MHz apply from 71.2350 ns to 92.1350 ns". Limits are stored per point, so the position
// on that axis follows from the point. Empty if there is none.
std::string LimitsOnTimeAxis(const Session& session);

// One line per applied segment whose limits are 1000 and -1000, which are drawn along the frame:
// "CH1 Seg 2: 1000 and -1000 set no limit, nothing is tested there". Empty if there is none.
std::string SegmentsWithoutLimit(const Session& session);

}  // namespace qk
