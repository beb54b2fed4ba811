// SPDX-License-Identifier: MIT
// What was done to a trace, in a line beside its title; and what a limit test found, as a badge.
#pragma once

#include <string>
#include <vector>

#include "core/session.h"
#include "display/canvas.h"
#include "display/records.h"

namespace qk {

// Of a channel (1 to 4), the shortest word for each: "not measured", "Avg 8", "Smo 5 %", "D/M",
// "Plane 12.0 mm", "De-embedded", "Zo 75". What is not in force is left out.
std::vector<std::string> RemarksOf(const Session& session, int channel, bool measured);

// "PASS" or "FAIL", as it stands in the upper right corner of its graph.
constexpr std::uint32_t kPassColour = 0x2EA043, kFailColour = 0xD03A3A, kBadgeText = 0xFFFFFF;
// A trace that the sweep does not measure.
constexpr std::uint32_t kNotMeasuredColour = 0xA0A0A0;

// A point (from 1) without limits of a graph type whose values may reach 1000: it is not tested.
bool IsExempt(const ChannelSettings& channel, int point);

// The value passes the channel's limits at a point (from 1). A value equal to its limit passes; one
// that is no number fails.
bool PassesLimits(const ChannelSettings& channel, float value, int point);

std::string VerdictWord(const LimitVerdict& verdict);
// "FAIL, worst margin -2.310 dB at 843.0000 MHz".
std::string VerdictText(const Session& session, int channel, const LimitVerdict& verdict);

}  // namespace qk
