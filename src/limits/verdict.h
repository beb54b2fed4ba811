// SPDX-License-Identifier: MIT
// The distance of a channel's points from its limits, for the limit test, the remarks of a graph,
// batches and reports.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "core/session.h"
#include "display/records.h"
#include "display/remarks.h"

namespace qk {

// The channel's value at a point (from 1) as its graph shows it, in 32 bits, because limits are
// compared in 32 bits.
float ShownValue(const Session& session, const ChannelSettings& channel, std::size_t point);

// True if the channel's limits are tested at the end of a sweep of these parameters: its limits are
// on, and it is not a Smith chart.
bool IsTested(const ChannelSettings& channel, std::span<const Parameter> measured);

// The worst point of a channel in its current state. Points without a limit have no margin; NaN has
// the worst possible margin.
LimitVerdict VerdictOf(const Session& session, const ChannelSettings& channel);

// The worst point of a channel: the largest failure, or the smallest pass margin.
struct LimitMargin {
  int Channel = 1;
  qk::Parameter Parameter = qk::Parameter::S11;
  Unit Units = Unit::Db;
  double Margin = 0;  // in that unit; negative if the limit is exceeded, -inf for NaN
  int Point = 0;      // from 1; 0 if no point of the sweep was tested
  bool Failed = false;
  // The parts of its limits outside the sweep, "1036.0000 to 1075.0000 MHz"; empty if all of them
  // were tested.
  std::string Untested = {};
};

// One entry per displayed channel whose limits are on and shown, in order; the alarm may be off. A
// value equal to its limit passes with a margin of 0.
std::vector<LimitMargin> LimitMargins(const Session& session, std::span<const Parameter> measured);

// True if a displayed channel has a limit at any point, for a sweep that measures these parameters.
bool AnyLimits(const Session& session, std::span<const Parameter> measured);
bool AnyFailed(const std::vector<LimitMargin>& margins);
Verdict OutcomeOf(const std::vector<LimitMargin>& margins);

// "0.35 dB", "-1.2 dB" or "no number".
std::string MarginText(const LimitMargin& margin);
// "CH1 S21 passes by 0.350 dB at 843.0000 MHz", "... fails by 1.200 dB ..." or "... is no number
// ..."; without "at" if the position is empty.
std::string OutcomeAt(const LimitMargin& margin, const std::string& position);
// The same with the position on the channel's axis: in ns or m in the time domain.
std::string OutcomeText(const LimitMargin& margin, const Session& session);
// "not tested: CH1 1036.0000 to 1075.0000 MHz", the channels with commas; empty if all limits were
// tested.
std::string UntestedText(const std::vector<LimitMargin>& margins);

}  // namespace qk
