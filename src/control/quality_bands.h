// SPDX-License-Identifier: MIT
// The bands around the traces: uncertainty from the calibration checks, and mean and spread of the
// repeated sweeps.
#pragma once

#include "display/band_source.h"
#include "quality/quality_state.h"

namespace qk {

class QualityBands final : public BandSource {
 public:
  QualityBands(const Session& session, const QualityState& quality)
      : session_(session), quality_(quality) {}

  std::optional<Region> RegionAt(BandKind kind, int channel, int k) const override;
  std::vector<std::string> Words(BandKind kind, int channel) const override;

 private:
  std::optional<Region> Uncertain(int channel, int k) const;
  std::optional<Region> Repeated(int channel, int k) const;
  // Why the channel shows no statistics; empty if it does.
  std::string WhyNoSpread(int channel) const;

  const Session& session_;
  const QualityState& quality_;
};

}  // namespace qk
