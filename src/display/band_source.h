// SPDX-License-Identifier: MIT
// The source of the bands around the traces: the uncertainty of a measured parameter, and mean and
// spread of repeated sweeps.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "trace/band.h"

namespace qk {

enum class BandKind { Uncertainty, Spread };

class BandSource {
 public:
  virtual ~BandSource() = default;
  // The region around point k (from 0) of the parameter that the channel (1 to 4) shows; empty if
  // there is no band. Called for each point of each redraw.
  virtual std::optional<Region> RegionAt(BandKind kind, int channel, int k) const = 0;
  // The texts shown next to the title while the band is enabled: its basis, or what is missing. The
  // most important first.
  virtual std::vector<std::string> Words(BandKind kind, int channel) const = 0;
};

}  // namespace qk
