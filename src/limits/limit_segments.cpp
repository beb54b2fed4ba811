// SPDX-License-Identifier: MIT
#include "limits/limit_segments.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "core/instrument_limits.h"
#include "core/quantity_text.h"
#include "core/text.h"
#include "limits/limit_test.h"

namespace qk {

namespace {

using PointLimits = ChannelSettings::PerPoint<float>;

// A frequency as typed, and in the 32 bits in which it is compared: the end of the sweep, typed, is
// inside the sweep.
struct LimitFrequency {
  explicit LimitFrequency(const std::string& megahertz)
      : Hertz(Val(megahertz) * 1e6), Compared(Narrow(Hertz)) {}
  static float Narrow(double value) {
    constexpr double kLargest = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(value, -kLargest, kLargest));
  }
  bool Inside(const PlanGrid& plan) const {
    return Compared >= Narrow(plan.StartFreq) && Compared <= Narrow(plan.StopFreq);
  }

  double Hertz;
  float Compared;
};

// The point at or below a frequency, from 1. Within 1 Hz of a point it is that one: grid
// frequencies are typed in steps of 100 Hz.
int PointBelow(const PlanGrid& plan, double hertz) {
  const double steps = std::floor((hertz + 1 - plan.StartFreq) / plan.StepFreq);
  return static_cast<int>(std::clamp<double>(steps + 1, 1, plan.NumPoints));
}

std::string MegahertzText(const PlanGrid& plan, int point) {
  return FormatNumber(plan.Frequency(point - 1) / 1e6, "###0.0000");
}

Failure Refused(int segment, const char* text) {
  return {"Seg " + std::to_string(segment) + ": " + text, {}};
}

Result<Done> ApplySegment(const PlanGrid& plan, int number, LimitSegment& segment,
                          ChannelSettings& channel) {
  const LimitFrequency start(segment.Start), stop(segment.Stop);
  if (start.Hertz < 0 || start.Hertz > stop.Hertz)
    return Refused(number, "Stop Freq must be > Start Freq");
  if (!start.Inside(plan)) return Refused(number, "Invalid Start Freq");
  if (!stop.Inside(plan)) return Refused(number, "Invalid StopFreq");
  const int first = PointBelow(plan, start.Hertz);
  const int last = PointBelow(plan, stop.Hertz);
  segment.Start = MegahertzText(plan, first);
  segment.Stop = MegahertzText(plan, last);
  if (segment.Upper.empty() || segment.Lower.empty())
    return Refused(number, "Invalid Limit Value(s)");
  const auto typedUpper = TypedIn(channel.Units, segment.Upper);
  const auto typedLower = TypedIn(channel.Units, segment.Lower);
  if (!typedUpper || !typedLower) return Refused(number, "Invalid Limit Value(s)");
  const float upper = LimitFrequency::Narrow(*typedUpper);
  const float lower = LimitFrequency::Narrow(*typedLower);
  // Intended: "Seg1" for all six.
  if (!(lower < upper)) return Refused(number, "Invalid Seg1 Limit Values(s)");
  for (int i = first; i <= last; ++i) {
    channel.UpperLimit[static_cast<std::size_t>(i)] = upper;
    channel.LowerLimit[static_cast<std::size_t>(i)] = lower;
  }
  return Done{};
}

// The limits of a point; None when it has none.
struct Pair {
  float Upper, Lower;
  bool None() const { return Upper >= kNoUpperLimit && Lower <= kNoLowerLimit; }
  bool operator==(const Pair& other) const { return Upper == other.Upper && Lower == other.Lower; }
};

Pair PairAt(const ChannelSettings& channel, int point) {
  const auto i = static_cast<std::size_t>(point);
  return {channel.UpperLimit[i], channel.LowerLimit[i]};
}

// Consecutive points, from 1, with the same limits.
struct Run {
  int First, Last;
  Pair Limits;
};

std::vector<Run> RunsOf(const ChannelSettings& channel, int numPoints) {
  std::vector<Run> runs;
  for (int i = 1; i <= numPoints; ++i) {
    const Pair pair = PairAt(channel, i);
    if (!runs.empty() && (pair == runs.back().Limits || (pair.None() && runs.back().Limits.None())))
      runs.back().Last = i;
    else
      runs.push_back({i, i, pair});
  }
  return runs;
}

// The first run that lies inside other limits, equal on its left and right: a later segment over an
// earlier, wider one. The end when there is none.
std::vector<Run>::iterator RunInsideOthers(std::vector<Run>& runs) {
  for (std::size_t i = 1; i + 1 < runs.size(); ++i)
    if (runs[i - 1].Limits == runs[i + 1].Limits && !runs[i - 1].Limits.None() &&
        !runs[i].Limits.None())
      return runs.begin() + static_cast<std::ptrdiff_t>(i);
  return runs.end();
}

std::ptrdiff_t CountLimited(const std::vector<Run>& runs) {
  return std::count_if(runs.begin(), runs.end(), [](const Run& run) { return !run.Limits.None(); });
}

// The runs of a channel as segments that make them again. Where there are more runs than segments,
// a run inside a wider one becomes a segment behind it.
std::vector<Run> SegmentsOf(std::vector<Run> runs) {
  std::vector<Run> inside;  // innermost first
  while (CountLimited(runs) + static_cast<std::ptrdiff_t>(inside.size()) > kLimitSegments) {
    const auto run = RunInsideOthers(runs);
    if (run == runs.end()) break;
    inside.push_back(*run);
    (run - 1)->Last = (run + 1)->Last;
    runs.erase(run, run + 2);
  }
  runs.erase(
      std::remove_if(runs.begin(), runs.end(), [](const Run& run) { return run.Limits.None(); }),
      runs.end());
  runs.insert(runs.end(), inside.rbegin(), inside.rend());
  return runs;
}

void RebuildChannel(const PlanGrid& plan, const ChannelSettings& channel, ChannelLimits& limits) {
  limits.Segments.fill({});
  std::size_t used = 0;
  for (const Run& run : SegmentsOf(RunsOf(channel, plan.NumPoints))) {
    if (used == limits.Segments.size()) break;
    limits.Segments[used++] = {MegahertzText(plan, run.First), MegahertzText(plan, run.Last),
                               PlainNumber(run.Limits.Upper), PlainNumber(run.Limits.Lower)};
  }
  limits.Applied = used > 0;
}

}  // namespace

Result<Done> ApplyLimits(Session& session, int number) {
  ChannelSettings& channel = session.Channel(number);
  ChannelLimits& limits = session.Limits.Of(number);
  channel.LimitsOn = false;
  channel.UpperLimit.fill(kNoUpperLimit);
  channel.LowerLimit.fill(kNoLowerLimit);
  limits.Applied = false;
  for (int s = 0; s < kLimitSegments; ++s) {
    LimitSegment& segment = limits.Segments[static_cast<std::size_t>(s)];
    if (segment.Stop.empty()) continue;
    if (Result<Done> applied = ApplySegment(session.Plan, s + 1, segment, channel); !applied)
      return applied;
    limits.Applied = true;
  }
  return Done{};
}

void ShowLimitsAsSwitched(Session& session, Host& host) {
  const LimitRecords& limits = session.Limits;
  session.Display.ShowLimits = false;
  session.Display.LimitAlarmOn = limits.Enabled && limits.Alarm;
  if (!session.Display.LimitAlarmOn) ClearLimitFailure(session, host);
  if (!limits.Enabled) return;
  for (int n = 1; n <= kChannels; ++n) {
    if (!limits.Of(n).Show || !limits.Of(n).Applied) continue;
    session.Channel(n).LimitsOn = true;
    session.Display.ShowLimits = true;
  }
}

void RebuildSegments(Session& session, Host& host) {
  for (int n = 1; n <= kChannels; ++n)
    RebuildChannel(session.Plan, session.Channel(n), session.Limits.Of(n));
  ShowLimitsAsSwitched(session, host);
}

}  // namespace qk
