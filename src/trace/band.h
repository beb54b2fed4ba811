// SPDX-License-Identifier: MIT
// A band around a trace: converts a region around a complex value to the smallest and largest value
// that the channel's graph type shows for it.
#pragma once

#include <optional>
#include <string>

#include "core/session.h"

namespace qk {

// All complex values within Radius (linear, no unit) of Centre.
struct Region {
  Complex Centre;
  double Radius = 0;
  // A centre within this distance of zero leaves open whether the value is zero; not below Radius.
  double ZeroRadius = 0;

  bool ReachesZero() const;
};

// In the channel's unit. High is infinite if there is no upper bound; Low is -infinite if a
// logarithm has no lower bound.
struct BandEnds {
  double Low = 0, High = 0;
};

// The band around the trace value for the centre at point pointIndex (from 1), smoothed or not. For
// impedances, first order in the radius. Empty where that is not valid (a radius above a quarter of
// |1 - S|, or of |S| for a series element) and for graph types that WhyNoBand refuses.
std::optional<BandEnds> EndsOf(const Session& session, const ChannelSettings& channel,
                               const Region& region, int pointIndex, double shown);

// What the channel's graph type shows for a value at point pointIndex (from 1), without smoothing.
// An unwrapped phase is the one nearest to the trace. NaN for a type without a band.
double ShownFor(const Session& session, const ChannelSettings& channel, Complex z, int pointIndex);

// Radius in ohms of the impedance that corresponds to the region, to first order; empty where that
// is not valid.
std::optional<double> ImpedanceRadius(Element element, const Region& region, double zo);

// True if the trace cannot have a band: its graph type has none, or memory math or a gate has
// changed the data.
bool HasNoBand(const Session& session, int channel);
// Why the trace has no band, in a word or two: "memory math", "gate", "Group Delay"; empty if it
// may have one.
std::string WhyNoBand(const Session& session, int channel);

// A value with its band as a read-out shows it, the band to two digits and the value to the same
// decimal place: "-20.13 ± 0.21 dB". Edges that differ by more than a tenth are shown separately:
// "-9.4 +3.5 -6.0 dB". Without a lower or an upper bound: "-63.1 dB, at most -57.2".
std::string BandReadOut(double value, const BandEnds& edges, Unit unit);
// The picture that gives half the width with two digits: "#0.00" of 0.21.
const char* BandPicture(double halfWidth);

}  // namespace qk
