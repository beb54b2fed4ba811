// SPDX-License-Identifier: MIT
// Smoothing: a moving weighted average over plotted values, in display units.
#pragma once

#include "core/session.h"
#include "trace/point_sink.h"

namespace qk {

// True if the channel plots smoothed values; its graph then shows SmoothValue.
bool IsSmoothed(const Session& session, const ChannelSettings& channel);

// The number of points in the window: percent of numPoints, rounded down, at least 1; an even
// number above 3 is reduced by one.
int SmoothingAperture(int percent, int numPoints);

// The weight of position 0 to aperture - 1 in the window: 1 for up to 3 points; from 5 points on, a
// triangle with edges of 0.2, limited to 1 (a flat top of three points).
double SmoothingWeight(int position, int aperture);

// Adds point pointIndex (from 1) of the channel's Value and Value2. With a window of A points
// nothing is plotted before point A; from then on point pointIndex - A/2 is. At both ends, the
// first and the last smoothed value fill the A/2 points on which no window can be centred.
void SmoothPoint(Session& session, PointSink& sink, int channel, int pointIndex);

}  // namespace qk
