// SPDX-License-Identifier: MIT
// Searches a trace for a maximum or a minimum, and for the edges of the band around it.
#pragma once

#include <optional>

#include "core/session.h"

namespace qk {

enum class Extreme { Peak, Minimum };

// The first of the highest (or lowest) points, from 1; on a Smith chart by magnitude.
int FindExtreme(const ChannelSettings& channel, int numPoints, Extreme which);

struct BandEdges {
  int Lower, Upper;
};

// The points below and above the extreme whose distance from it is nearest to bandDb (negative
// around a maximum), on a logarithmic or linear magnitude. The search stops after the first point
// that is more than 1.5 times bandDb away. Intentional: next to a maximum only lower points
// qualify, next to a minimum any point does; and if no point qualifies as upper edge, it equals the
// lower edge, or the extreme itself.
BandEdges FindBand(const ChannelSettings& channel, int numPoints, int extreme, Extreme which,
                   double bandDb);

// Searches on the active channel for "Markers Set Up": sets MarkersOn and the markers' settings;
// the markers move at the next full redraw that does not keep them. Without a band, the chosen
// marker (from 0) becomes active and moves to the extreme. With a band, on a magnitude trace:
// marker 1 moves to the extreme, marker 2 (reference) and marker 3 (active) to the edges. Returns
// false for a band on any other type.
bool SearchMarkers(Session& session, Extreme which, std::optional<double> bandDb, int chosen);

}  // namespace qk
