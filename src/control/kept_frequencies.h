// SPDX-License-Identifier: MIT
// Markers and limits belong to frequencies. Where another sweep takes the place of the one before,
// they go to the same frequencies of the new one; what lies outside waits, and comes back with a
// sweep that holds it.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "core/host.h"
#include "core/session.h"

namespace qk {

class KeptFrequencies {
 public:
  // session.Plan has taken the place of before. Markers go to the nearest point; one outside is
  // switched off. Limits stand at the points inside their frequencies and nowhere else. The outcome
  // of a test at the old frequencies goes.
  void Follow(Session& session, Host& host, const PlanGrid& before);
  // What waits, a line each; empty when nothing does.
  std::string WaitingMarkers() const;
  std::string WaitingLimits(const Session& session) const;

 private:
  struct KeptMarker {
    double Hertz = 0;
    int Point = 0;  // where it was put
    bool Waits = false;
  };
  // Limits from one frequency to another, both included.
  struct KeptLimits {
    double From, To;
    float Upper, Lower;
  };
  using PerPoint = ChannelSettings::PerPoint<float>;
  struct KeptChannel {
    std::vector<KeptLimits> Runs;
    PerPoint Upper{}, Lower{};  // as they were put
  };

  void FollowMarker(Session& session, const PlanGrid& before, int index);
  void FollowLimits(const PlanGrid& plan, const PlanGrid& before, ChannelSettings& channel,
                    KeptChannel& kept) const;

  PlanGrid grid_;  // for which they were put; without points before the first change
  std::array<KeptMarker, kMarkers> markers_;
  std::array<KeptChannel, kChannels> channels_;
};

}  // namespace qk
