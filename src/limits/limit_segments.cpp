// SPDX-License-Identifier: MIT
#include "limits/limit_segments.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include "core/instrument_limits.h"
#include "core/quantity_text.h"
#include "core/text.h"
#include "core/typed_value.h"
#include "display/remarks.h"
#include "limits/limit_test.h"

namespace qk {

namespace {

using PointLimits = ChannelSettings::PerPoint<float>;

// A frequency as typed, and in 32 bits for comparison, so that the typed end of the sweep is inside
// the sweep.
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

// The point at or below a frequency, from 1. A frequency within 1 Hz of a point is that point: grid
// frequencies are typed in steps of 100 Hz.
int PointBelow(const PlanGrid& plan, double hertz) {
  const double steps = std::floor((hertz + 1 - plan.StartFreq) / plan.StepFreq);
  return static_cast<int>(std::clamp<double>(steps + 1, 1, plan.NumPoints));
}

std::string PointMegahertz(const PlanGrid& plan, int point) {
  return MegahertzNumber(plan.Frequency(point - 1));
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
  if (segment.EnteredStart.empty()) segment.EnteredStart = segment.Start;
  if (segment.EnteredStop.empty()) segment.EnteredStop = segment.Stop;
  segment.Start = PointMegahertz(plan, first);
  segment.Stop = PointMegahertz(plan, last);
  if (segment.Upper.empty() || segment.Lower.empty())
    return Refused(number, "Invalid Limit Value(s)");
  const auto typedUpper = TypedWhole(channel.Units, segment.Upper);
  const auto typedLower = TypedWhole(channel.Units, segment.Lower);
  if (!typedUpper || !typedLower) return Refused(number, "Invalid Limit Value(s)");
  const float upper = LimitFrequency::Narrow(*typedUpper);
  const float lower = LimitFrequency::Narrow(*typedLower);
  // Intentional: "Seg1" for all six.
  if (!(lower < upper)) return Refused(number, "Invalid Seg1 Limit Values(s)");
  for (int i = first; i <= last; ++i) {
    channel.UpperLimit[static_cast<std::size_t>(i)] = upper;
    channel.LowerLimit[static_cast<std::size_t>(i)] = lower;
  }
  return Done{};
}

// The limits of a point; None if it has none.
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

// Represents runs by segments, where later segments override earlier ones. The runs begin and end
// with a gap, which represents the state before the first segment. Let Cost(i, j) be the smallest
// number of segments for the runs i to j. The segment of run i ends there, or continues to a later
// run k with the same limits, with the runs between drawn over it:
// Cost(i, j) = min(1 + Cost(i + 1, j), Cost(i + 1, k - 1) + Cost(k, j)).
class LimitLayers {
 public:
  // Six segments have twelve ends, so with the gaps at both sides there are thirteen runs.
  static constexpr std::size_t kMostRuns = 2 * kLimitSegments + 1;

  // gapCost is the cost of a segment that puts a gap over wider limits.
  LimitLayers(const std::vector<Run>& runs, int gapCost)
      : runs_(runs), all_{0, runs.size()}, gapCost_(gapCost) {
    for (std::size_t first = all_.End; first-- > 0;)
      for (std::size_t end = first + 1; end <= all_.End; ++end) Solve({first, end});
  }

  int Count() const { return Cost(all_) - gapCost_; }

  // The segments, wider ones before those that override them.
  std::vector<Run> Segments() const {
    std::vector<Run> segments;
    std::vector<Span> spans{all_};
    for (std::size_t s = 0; s < spans.size(); ++s) {
      const std::size_t end = spans[s].End;
      for (std::size_t first = spans[s].First; first < end;) {
        std::size_t last = first;
        for (std::size_t next = Next({last, end}); next != last; next = Next({last, end})) {
          spans.push_back({last + 1, next});
          last = next;
        }
        segments.push_back({runs_[first].First, runs_[last].Last, runs_[first].Limits});
        first = last + 1;
      }
    }
    segments.erase(segments.begin());  // the state before the first segment
    return segments;
  }

 private:
  // Runs from First up to, but not including, End.
  struct Span {
    std::size_t First, End;
  };
  using Table = std::array<std::array<std::size_t, kMostRuns + 1>, kMostRuns + 1>;

  int Cost(const Span& span) const { return static_cast<int>(cost_[span.First][span.End]); }
  // The run to which the segment of the first run continues; the first itself if it ends there.
  std::size_t Next(const Span& span) const { return next_[span.First][span.End]; }

  void Solve(const Span& span) {
    const Run& run = runs_[span.First];
    int least = (run.Limits.None() ? gapCost_ : 1) + Cost({span.First + 1, span.End});
    std::size_t next = span.First;
    for (std::size_t k = span.First + 1; k < span.End; ++k) {
      if (!(runs_[k].Limits == run.Limits)) continue;
      const int cost = Cost({span.First + 1, k}) + Cost({k, span.End});
      if (cost > least) continue;
      least = cost;
      next = k;
    }
    cost_[span.First][span.End] = static_cast<std::size_t>(least);
    next_[span.First][span.End] = next;
  }

  const std::vector<Run>& runs_;
  Span all_;
  int gapCost_;
  Table cost_{}, next_{};
};

// The runs with a gap at both ends; all gaps are equal.
std::vector<Run> BetweenGaps(std::vector<Run> runs) {
  constexpr Pair kGap{kNoUpperLimit, kNoLowerLimit};
  for (Run& run : runs)
    if (run.Limits.None()) run.Limits = kGap;
  if (!runs.front().Limits.None()) runs.insert(runs.begin(), {0, 0, kGap});
  if (!runs.back().Limits.None()) runs.push_back({0, 0, kGap});
  return runs;
}

// Segments that reproduce the limits of a channel: one per run; if that is more than six, with
// segments over wider ones; a segment without limits over a wider one only if six do not suffice
// otherwise. If no six segments reproduce the limits, more than six, one per run.
std::vector<Run> SegmentsOf(const ChannelSettings& channel, int numPoints) {
  const std::vector<Run> runs = RunsOf(channel, numPoints);
  std::vector<Run> limited;
  std::ranges::copy_if(runs, std::back_inserter(limited),
                       [](const Run& run) { return !run.Limits.None(); });
  if (limited.size() <= kLimitSegments) return limited;
  const std::vector<Run> between = BetweenGaps(runs);
  if (between.size() > LimitLayers::kMostRuns) return limited;
  constexpr int kNever = 100;
  for (const int gapCost : {kNever, 1})
    if (const LimitLayers layers(between, gapCost); layers.Count() <= kLimitSegments)
      return layers.Segments();
  return limited;
}

std::array<LimitSegment, kLimitSegments> Typed(const PlanGrid& plan,
                                               const std::vector<Run>& segments) {
  std::array<LimitSegment, kLimitSegments> typed;
  for (std::size_t s = 0; s < std::min(segments.size(), typed.size()); ++s) {
    const Run& run = segments[s];
    typed[s] = {PointMegahertz(plan, run.First),
                PointMegahertz(plan, run.Last),
                PlainNumber(run.Limits.Upper),
                PlainNumber(run.Limits.Lower),
                {},
                {}};
  }
  return typed;
}

// True if the segment, as typed, gives this run.
bool MakesRun(const PlanGrid& plan, const LimitSegment& typed, const Run& run) {
  if (typed.Stop.empty()) return false;
  return PointBelow(plan, Val(typed.StartAsEntered()) * 1e6) == run.First &&
         PointBelow(plan, Val(typed.StopAsEntered()) * 1e6) == run.Last &&
         LimitFrequency::Narrow(Val(typed.Upper)) == run.Limits.Upper &&
         LimitFrequency::Narrow(Val(typed.Lower)) == run.Limits.Lower;
}

// The limits are for what the channel shows now.
void TakeBasis(const ChannelSettings& channel, ChannelLimits& limits) {
  limits.ForParameter = channel.Parameter;
  limits.ForType = channel.GraphType;
  limits.ForUnits = channel.Units;
}

void RebuildChannel(const PlanGrid& plan, const ChannelSettings& channel, ChannelLimits& limits) {
  const std::vector<Run> segments = SegmentsOf(channel, plan.NumPoints);
  const auto before = limits.Segments;
  limits.Segments = Typed(plan, segments);
  for (std::size_t s = 0; s < std::min<std::size_t>(segments.size(), kLimitSegments); ++s)
    for (const LimitSegment& typed : before)
      if (MakesRun(plan, typed, segments[s])) {
        limits.Segments[s].EnteredStart = typed.StartAsEntered();
        limits.Segments[s].EnteredStop = typed.StopAsEntered();
      }
  limits.Applied = !segments.empty();
  TakeBasis(channel, limits);
}

// True if the channel has limits that its segments do not reproduce, and the segments have not been
// edited since they were rebuilt.
bool SegmentsFallShort(const PlanGrid& plan, const ChannelSettings& channel,
                       const ChannelLimits& limits) {
  const std::vector<Run> segments = SegmentsOf(channel, plan.NumPoints);
  return segments.size() > kLimitSegments &&
         std::ranges::equal(limits.Segments, Typed(plan, segments),
                            [](const LimitSegment& a, const LimitSegment& b) {
                              return a.Start == b.Start && a.Stop == b.Stop && a.Upper == b.Upper &&
                                     a.Lower == b.Lower;
                            });
}

}  // namespace

Result<Done> ApplyLimits(Session& session, int number) {
  ChannelSettings& channel = session.Channel(number);
  ChannelLimits& limits = session.Limits.Of(number);
  if (SegmentsFallShort(session.Plan, channel, limits))
    return Failure{"The limits of CH" + std::to_string(number) +
                       " need more than six segments: they are kept. Change a segment to replace "
                       "them by those shown",
                   {}};
  channel.LimitsOn = false;
  channel.UpperLimit.fill(kNoUpperLimit);
  channel.LowerLimit.fill(kNoLowerLimit);
  limits.Applied = false;
  TakeBasis(channel, limits);
  for (int s = 0; s < kLimitSegments; ++s) {
    LimitSegment& segment = limits.Segments[static_cast<std::size_t>(s)];
    if (segment.Stop.empty()) continue;
    if (Result<Done> applied = ApplySegment(session.Plan, s + 1, segment, channel); !applied)
      return applied;
    limits.Applied = true;
  }
  return Done{};
}

std::string SwitchOffUnsuitable(Session& session, int number) {
  ChannelSettings& channel = session.Channel(number);
  ChannelLimits& limits = session.Limits.Of(number);
  if (RowOf(channel.GraphType).Form == PointForm::Chart || LimitsSuit(channel, limits)) return {};
  if (!channel.LimitsOn && !(limits.Show && limits.Applied)) return {};
  channel.LimitsOn = limits.Show = false;
  return "CH" + std::to_string(number) + ": limits for " + BasisText(limits);
}

std::string UnsuitableLimits(const Session& session) {
  std::string lines;
  for (int n = 1; n <= kChannels; ++n) {
    if (!ShowsUnsuitableLimits(session, n)) continue;
    const ChannelSettings& channel = session.Channel(n);
    lines += (lines.empty() ? "" : "\n") + std::string("CH") + std::to_string(n) + " shows " +
             std::string(NameOf(channel.Parameter)) + " " + std::string(NameOf(channel.GraphType)) +
             " in " + std::string(NameOf(channel.Units)) + ": limits are for " +
             BasisText(session.Limits.Of(n));
  }
  return lines;
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

std::string LimitsBeyondSegments(const Session& session) {
  std::string text;
  for (int n = 1; n <= kChannels; ++n)
    if (SegmentsOf(session.Channel(n), session.Plan.NumPoints).size() > kLimitSegments)
      text += (text.empty() ? "CH" : "\nCH") + std::to_string(n) +
              ": more limits than six segments can hold; Apply after a change removes the others";
  return text;
}

std::string LimitsOnTimeAxis(const Session& session) {
  std::string text;
  for (int n = 1; n <= kChannels; ++n) {
    const ChannelSettings& channel = session.Channel(n);
    if (RowOf(channel.GraphType).Form != PointForm::Spectrum) continue;
    for (const Run& run : RunsOf(channel, session.Plan.NumPoints)) {
      if (run.Limits.None()) continue;
      const auto megahertz = [&session](int point) {
        return MegahertzText(session.Plan.Frequency(point - 1));
      };
      text += (text.empty() ? "CH" : "\nCH") + std::to_string(n) + " shows time: limits from " +
              megahertz(run.First) + " to " + megahertz(run.Last) + " apply from " +
              PointText(session, channel, run.First) + " to " +
              PointText(session, channel, run.Last);
    }
  }
  return text;
}

std::string SegmentsWithoutLimit(const Session& session) {
  std::string text;
  for (int n = 1; n <= kChannels; ++n) {
    const ChannelLimits& limits = session.Limits.Of(n);
    for (std::size_t s = 0; limits.Applied && s < kLimitSegments; ++s) {
      const LimitSegment& segment = limits.Segments[s];
      const Pair pair{LimitFrequency::Narrow(Val(segment.Upper)),
                      LimitFrequency::Narrow(Val(segment.Lower))};
      if (segment.Stop.empty() || !pair.None()) continue;
      text += (text.empty() ? "CH" : "\nCH") + std::to_string(n) + " Seg " + std::to_string(s + 1) +
              ": 1000 and -1000 set no limit, nothing is tested there";
    }
  }
  return text;
}

}  // namespace qk
