// SPDX-License-Identifier: MIT
// Smoothing: a moving weighted mean over plotted values, in display units.
#pragma once

#include "core/session.h"
#include "trace/point_sink.h"

namespace qk {

// The channel plots smoothed values: SmoothValue holds what its graph shows.
bool IsSmoothed(const Session& session, const ChannelSettings& channel);

// Points under the window: the whole part of percent of numPoints, at least 1; an even number
// above 3 is made odd by one less.
int SmoothingAperture(int percent, int numPoints);

// Weight of position 0 to aperture - 1 in the window: 1 up to 3 points; from 5 points on a
// triangle with edges of 0.2, cut off at 1 (a flat top of three points).
double SmoothingWeight(int position, int aperture);

// Takes in point pointIndex (from 1) of the channel's Value and Value2. With a window of A points
// nothing is plotted before point A; from then on point pointIndex - A/2 is, and at both ends the
// first and the last smoothed value fill the A/2 points that no window is centred on.
void SmoothPoint(Session& session, PointSink& sink, int channel, int pointIndex);

}  // namespace qk
