// SPDX-License-Identifier: MIT
// The search for a peak or a minimum on a trace, and for the edges of the band around it.
#pragma once

#include <optional>

#include "core/session.h"

namespace qk {

enum class Extreme { Peak, Minimum };

// The first of the highest (or lowest) points, from 1; by magnitude on a Smith chart.
int FindExtreme(const ChannelSettings& channel, int numPoints, Extreme which);

struct BandEdges {
  int Lower, Upper;
};

// The points below and above the extreme whose distance from it is nearest to bandDb (negative
// around a peak), on a logarithmic or linear magnitude. The search ends behind the first point that
// is half as far again off. Intended: a candidate beside a peak lies below it, beside a minimum any
// point is one; and an upper edge without a candidate is that of the lower, or the extreme itself.
BandEdges FindBand(const ChannelSettings& channel, int numPoints, int extreme, Extreme which,
                   double bandDb);

// A search on the active channel as "Markers Set Up" runs it: sets MarkersOn and the markers'
// settings; the markers move by the next full redraw that does not keep them. Without a band the
// chosen marker (from 0) becomes the active one and goes to the extreme. With one, and a magnitude
// shown: marker 1 to the extreme, 2 as the reference and 3 as the active one to the edges; other
// types take no band (false).
bool SearchMarkers(Session& session, Extreme which, std::optional<double> bandDb, int chosen);

}  // namespace qk
