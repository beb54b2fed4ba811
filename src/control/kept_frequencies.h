// SPDX-License-Identifier: MIT
// Markers and limits belong to frequencies. When the sweep changes, they move to the same
// frequencies of the new sweep. Those outside the new sweep are kept and return with a sweep that
// contains them.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "core/host.h"
#include "core/session.h"

namespace qk {

class KeptFrequencies {
 public:
  // session.Plan has replaced before. Markers move to the nearest point; a marker outside is
  // switched off. Limits apply only to points inside their frequency ranges. The limit test result
  // for the old frequencies is cleared.
  void Follow(Session& session, Host& host, const PlanGrid& before);
  // Puts the marker (from 0) at this frequency and shows it: on the nearest point of the current
  // sweep, or, outside it, from the first sweep on that contains the frequency.
  void Place(Session& session, int index, double hertz);
  // A marker (from 0) that waits does so no longer.
  void Forget(int index) { markers_[static_cast<std::size_t>(index)] = {}; }
  // The frequency at which the marker (from 0) waits for a sweep; empty if it does not wait.
  std::optional<double> WaitsAt(const Session& session, int index) const;
  // What is kept outside the current sweep, one line each; empty if there is nothing.
  std::string WaitingMarkers(const Session& session) const;
  std::string WaitingLimits(const Session& session) const;
  // The parts of a channel's limits outside the current sweep, "1036.0000 to 1075.0000 MHz", in
  // order and with commas; empty if there are none.
  std::string UntestedLimits(const Session& session, int channel) const;

 private:
  struct KeptMarker {
    double Hertz = 0;
    int Point = 0;  // the point it was moved to
    bool Waits = false;
    PlanGrid Grid;  // of the sweep that has this point
  };
  // A run of equal limits over a frequency range, both ends included.
  struct KeptLimits {
    double From, To;
    float Upper, Lower;
  };
  using PerPoint = ChannelSettings::PerPoint<float>;
  struct KeptChannel {
    std::vector<KeptLimits> Runs;
    PerPoint Upper{}, Lower{};  // as last written to the channel
  };

  // True if the channel still has the limits that were kept at the last change of the sweep.
  bool HoldsKept(const Session& session, std::size_t channel) const;
  void FollowMarker(Session& session, const PlanGrid& before, int index);
  void FollowLimits(const PlanGrid& plan, const PlanGrid& before, ChannelSettings& channel,
                    KeptChannel& kept) const;

  PlanGrid grid_;  // the grid that the limits were written for
  std::array<KeptMarker, kMarkers> markers_;
  std::array<KeptChannel, kChannels> channels_;
};

}  // namespace qk
