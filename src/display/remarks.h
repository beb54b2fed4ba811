// SPDX-License-Identifier: MIT
// Remarks about the processing of a trace, in a line next to its title; and the limit test result
// as a badge.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/session.h"
#include "display/canvas.h"
#include "display/records.h"

namespace qk {

// The remarks of a channel (1 to 4), in short form: "not measured", "Limits for S11 SWR in U"
// (where the graph shows something else), "Avg 8", "Smo 5 %", "D/M", "Plane 12.0 mm",
// "De-embedded", "Zo 75", "Cal interpolated". Only those that apply.
std::vector<std::string> RemarksOf(const Session& session, int channel, bool measured);

// "PASS" or "FAIL", in the upper right corner of the graph.
constexpr std::uint32_t kPassColour = 0x2EA043, kFailColour = 0xD03A3A, kBadgeText = 0xFFFFFF;
// The colour of a trace that the sweep does not measure.
constexpr std::uint32_t kNotMeasuredColour = 0xA0A0A0;

// True if the channel shows the parameter, graph type and unit for which its limits were applied;
// another type only where both show the same numbers (a unit of one family alone).
bool LimitsSuit(const ChannelSettings& channel, const ChannelLimits& limits);
// True if the channel (1 to 4) shows limits that do not suit it. A chart shows none.
bool ShowsUnsuitableLimits(const Session& session, int channel);
// What the limits were applied for: "S11 LogMag in dB".
std::string BasisText(const ChannelLimits& limits);

// True if a point (from 1) is not tested: it has no limits, and the values of its graph type may
// reach 1000.
bool IsExempt(const ChannelSettings& channel, int point);

// True if the value passes the channel's limits at a point (from 1). A value equal to its limit
// passes; NaN fails.
bool PassesLimits(const ChannelSettings& channel, float value, int point);

// The result of a limit test. PassPart: a part of the limits was not tested, because the sweep does
// not contain it. Error: nothing could be judged.
enum class Verdict : std::uint8_t { Pass, PassPart, Fail, Error };
inline constexpr std::array<Verdict, 4> kVerdicts{Verdict::Pass, Verdict::PassPart, Verdict::Fail,
                                                  Verdict::Error};
// "PASS", "PASS (part)", "FAIL", "ERROR".
std::string_view WordOf(Verdict verdict);
constexpr Verdict Judged(bool passed, bool partly) {
  if (!passed) return Verdict::Fail;
  return partly ? Verdict::PassPart : Verdict::Pass;
}
constexpr bool IsPass(Verdict verdict) {
  return verdict == Verdict::Pass || verdict == Verdict::PassPart;
}
// The position of a point (from 1) on the channel's axis: "843.0000 MHz", or in ns or m on a time
// axis.
std::string PointText(const Session& session, const ChannelSettings& channel, int point);
// "FAIL, worst margin -2.310 dB at 843.0000 MHz"; then, if a part of the limits was not tested,
// "; not tested: 1036.0000 to 1075.0000 MHz".
std::string VerdictText(const Session& session, int channel, const LimitVerdict& verdict,
                        const std::string& untested = {});

}  // namespace qk
