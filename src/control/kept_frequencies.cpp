// SPDX-License-Identifier: MIT
#include "control/kept_frequencies.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "core/measured_sweep.h"
#include "core/quantity_text.h"
#include "display/markers.h"
#include "limits/limit_test.h"

namespace qk {

namespace {

constexpr double kSlack = 1;  // hertz: frequencies are typed in steps of 100

bool Inside(const PlanGrid& plan, double hertz) {
  return hertz >= plan.StartFreq - kSlack && hertz <= plan.StopFreq + kSlack;
}

int NearestPoint(const PlanGrid& plan, double hertz) {
  const auto steps = std::lround((hertz - plan.StartFreq) / plan.StepFreq);
  return static_cast<int>(std::clamp<long>(steps + 1, 1, plan.NumPoints));
}

}  // namespace

void KeptFrequencies::Follow(Session& session, Host& host, const PlanGrid& before) {
  const PlanGrid& plan = session.Plan;
  if (SameGrid(plan, before)) return;
  for (int m = 0; m < kMarkers; ++m) FollowMarker(session, before, m);
  for (int n = 1; n <= kChannels; ++n)
    FollowLimits(plan, before, session.Channel(n), channels_[static_cast<std::size_t>(n - 1)]);
  grid_ = plan;
  ClearLimitFailure(session, host);
}

void KeptFrequencies::FollowMarker(Session& session, const PlanGrid& before, int index) {
  const PlanGrid& plan = session.Plan;
  KeptMarker& kept = markers_[static_cast<std::size_t>(index)];
  MarkerSettings& set = session.Markers.Set(index);
  const int point = session.Markers.Of(session.Display.ActiveChannel - 1, index).Point;
  const bool untouched = SameGrid(kept.Grid, before) && point == kept.Point;
  // Changed meanwhile, or an unknown sweep: a session was loaded.
  if (kept.Waits && (set.Shown || !SameGrid(kept.Grid, before))) kept = {};
  if (!kept.Waits && (!untouched || kept.Hertz == 0)) {
    if (point < 1 || point > before.NumPoints)
      return;  // no position yet: stays at the middle of any sweep
    kept.Hertz = before.Frequency(point - 1);
  }
  if (!kept.Waits && !set.Shown) {
    kept = {};
    return;
  }
  kept.Grid = plan;
  if (!Inside(plan, kept.Hertz)) {
    kept.Waits = true;
    kept.Point = point;
    set.Shown = false;
    return;
  }
  kept.Point = NearestPoint(plan, kept.Hertz);
  set.Point = static_cast<std::int16_t>(kept.Point);
  MoveMarker(session, index, kept.Point);
  if (kept.Waits) set.Shown = true;
  kept.Waits = false;
}

void KeptFrequencies::Place(Session& session, int index, double hertz) {
  const PlanGrid& plan = session.Plan;
  KeptMarker& kept = markers_[static_cast<std::size_t>(index)];
  MarkerSettings& set = session.Markers.Set(index);
  const int now = session.Markers.Of(session.Display.ActiveChannel - 1, index).Point;
  kept = {hertz, now, !Inside(plan, hertz), plan};
  set.Shown = !kept.Waits;
  if (kept.Waits) return;
  kept.Point = NearestPoint(plan, hertz);
  set.Point = static_cast<std::int16_t>(kept.Point);
  MoveMarker(session, index, kept.Point);
}

std::optional<double> KeptFrequencies::WaitsAt(const Session& session, int index) const {
  const KeptMarker& kept = markers_[static_cast<std::size_t>(index)];
  const bool waits =
      kept.Waits && !session.Markers.Set(index).Shown && SameGrid(kept.Grid, session.Plan);
  return waits ? std::optional(kept.Hertz) : std::nullopt;
}

void KeptFrequencies::FollowLimits(const PlanGrid& plan, const PlanGrid& before,
                                   ChannelSettings& channel, KeptChannel& kept) const {
  const bool untouched = SameGrid(grid_, before) && channel.UpperLimit == kept.Upper &&
                         channel.LowerLimit == kept.Lower;
  if (!untouched) {
    kept.Runs.clear();
    bool goesOn = false;
    for (int i = 1; i <= before.NumPoints; ++i) {
      const auto k = static_cast<std::size_t>(i);
      const float upper = channel.UpperLimit[k], lower = channel.LowerLimit[k];
      const bool none = upper >= kNoUpperLimit && lower <= kNoLowerLimit;
      const double hertz = before.Frequency(i - 1);
      if (goesOn && !none && kept.Runs.back().Upper == upper && kept.Runs.back().Lower == lower)
        kept.Runs.back().To = hertz;
      else if (!none)
        kept.Runs.push_back({hertz, hertz, upper, lower});
      goesOn = !none;
    }
  }
  channel.UpperLimit.fill(kNoUpperLimit);
  channel.LowerLimit.fill(kNoLowerLimit);
  for (int i = 1; i <= plan.NumPoints; ++i) {
    const double hertz = plan.Frequency(i - 1);
    for (const KeptLimits& run : kept.Runs) {
      if (hertz < run.From - kSlack || hertz > run.To + kSlack) continue;
      channel.UpperLimit[static_cast<std::size_t>(i)] = run.Upper;
      channel.LowerLimit[static_cast<std::size_t>(i)] = run.Lower;
    }
  }
  kept.Upper = channel.UpperLimit;
  kept.Lower = channel.LowerLimit;
}

std::string KeptFrequencies::WaitingMarkers(const Session& session) const {
  std::string text;
  for (int m = 0; m < kMarkers; ++m)
    if (const std::optional<double> hertz = WaitsAt(session, m))
      text += (text.empty() ? "Marker " : "\nMarker ") + std::to_string(m + 1) + " waits at " +
              MegahertzText(*hertz);
  return text;
}

bool KeptFrequencies::HoldsKept(const Session& session, std::size_t channel) const {
  const KeptChannel& kept = channels_[channel];
  const ChannelSettings& now = session.Channels[channel];
  return SameGrid(grid_, session.Plan) && now.UpperLimit == kept.Upper &&
         now.LowerLimit == kept.Lower;
}

std::string KeptFrequencies::UntestedLimits(const Session& session, int channel) const {
  const auto c = static_cast<std::size_t>(channel - 1);
  std::string text;
  if (!HoldsKept(session, c)) return text;
  const PlanGrid& plan = session.Plan;
  const auto add = [&text](double from, double to) {
    text += (text.empty() ? "" : ", ") + MegahertzNumber(from) + " to " + MegahertzText(to);
  };
  for (const KeptLimits& run : channels_[c].Runs) {
    if (run.From < plan.StartFreq - kSlack) add(run.From, std::min(run.To, plan.StartFreq));
    if (run.To > plan.StopFreq + kSlack) add(std::max(run.From, plan.StopFreq), run.To);
  }
  return text;
}

std::string KeptFrequencies::WaitingLimits(const Session& session) const {
  std::string text;
  for (std::size_t c = 0; c < channels_.size(); ++c) {
    if (!HoldsKept(session, c)) continue;
    for (const KeptLimits& run : channels_[c].Runs)
      if (!Inside(session.Plan, run.From) || !Inside(session.Plan, run.To))
        text += (text.empty() ? "CH" : "\nCH") + std::to_string(c + 1) + ": limits from " +
                MegahertzText(run.From) + " to " + MegahertzText(run.To) +
                " extend outside the sweep";
  }
  return text;
}

}  // namespace qk
