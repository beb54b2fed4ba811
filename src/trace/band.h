// SPDX-License-Identifier: MIT
// A band about a trace: from a region about a complex value to the least and the largest value that
// the channel's graph type shows for it.
#pragma once

#include <optional>
#include <string>

#include "core/session.h"

namespace qk {

// All complex values no further than Radius (linear, no unit) from Centre.
struct Region {
  Complex Centre;
  double Radius = 0;
};

// In the channel's unit. High is infinite where there is no largest value, Low is -infinite where a
// logarithm has no least one.
struct BandEnds {
  double Low = 0, High = 0;
};

// About what the trace shows for the centre at point pointIndex (from 1), smoothed or not. To first
// order in the radius for impedances; nothing where that does not hold (a radius above a quarter of
// |1 - S|, or of |S| of a series element), and for graph types that WhyNoBand refuses.
std::optional<BandEnds> EndsOf(const Session& session, const ChannelSettings& channel,
                               const Region& region, int pointIndex, double shown);

// What the channel's graph type shows for a value at point pointIndex (from 1), unsmoothed; an
// unwrapped phase is that nearest to the trace. Not a number for a type without a band.
double ShownFor(const Session& session, const ChannelSettings& channel, Complex z, int pointIndex);

// Radius in ohms of the impedance that a channel makes of the region, to first order; nothing where
// that does not hold.
std::optional<double> ImpedanceRadius(Element element, const Region& region, double zo);

// The channel's trace is no measured parameter with a band about it: its graph type has none, or
// memory math or a gate has changed it.
bool HasNoBand(const Session& session, int channel);
// Why the channel's trace has no band, in a word or two: "memory math", "gate", "Group Delay";
// empty when it may have one.
std::string WhyNoBand(const Session& session, int channel);

// A value with its band as a read-out gives it, the band to two digits and the value to the same
// place: "-20.13 ± 0.21 dB". Edges that differ by more than a tenth are told apart:
// "-9.4 +3.5 -6.0 dB"; without a least or a largest value: "-63.1 dB, at most -57.2".
std::string BandReadOut(double value, const BandEnds& edges, Unit unit);
// Half the width alone: "0.21".
std::string BandWidthText(double halfWidth);

}  // namespace qk
