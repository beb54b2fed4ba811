// SPDX-License-Identifier: MIT
#include "control/quality_bands.h"

#include "core/measured_sweep.h"

namespace qk {

std::optional<Region> QualityBands::RegionAt(BandKind kind, int channel, int k) const {
  return kind == BandKind::Uncertainty ? Uncertain(channel, k) : Repeated(channel, k);
}

std::optional<Region> QualityBands::Uncertain(int n, int k) const {
  const Parameter parameter = session_.Channel(n).Parameter;
  if (HasNoBand(session_, n)) return std::nullopt;
  const auto u = UncertaintyAt(quality_, session_, parameter, k);
  if (!u) return std::nullopt;
  const double radius = kCoverage * *u;
  return Region{ArrayOf(session_.Data, parameter)[k], radius, kZeroReach * radius};
}

std::optional<Region> QualityBands::Repeated(int n, int k) const {
  if (HasNoBand(session_, n) || !SameGrid(quality_.Run.Grid(), session_.Plan)) return std::nullopt;
  const PointStatistics* statistics = quality_.Run.Of(session_.Channel(n).Parameter);
  if (statistics == nullptr) return std::nullopt;
  return Region{statistics->Mean(k), statistics->Deviation(k)};
}

std::string QualityBands::WhyNoSpread(int n) const {
  const Parameter parameter = session_.Channel(n).Parameter;
  if (quality_.Run.Of(parameter) == nullptr) return "no repeated sweeps";
  if (!SameGrid(quality_.Run.Grid(), session_.Plan)) return "repeated sweeps of another plan";
  return WhyNoBand(session_, n);
}

std::vector<std::string> QualityBands::Words(BandKind kind, int n) const {
  if (kind == BandKind::Spread) {
    const std::string why = WhyNoSpread(n);
    if (!why.empty()) return {"no statistics: " + why};
    return {"mean ± s of " + std::to_string(quality_.Run.Counted()) + " sweeps", "s of one sweep"};
  }
  if (const std::string why = WhyNoBand(session_, n); !why.empty()) return {"no ±U: " + why};
  return UncertaintyWords(quality_, session_, session_.Channel(n).Parameter);
}

}  // namespace qk
