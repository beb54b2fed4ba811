// SPDX-License-Identifier: MIT
// Conversion of a corrected complex point to the number that a channel plots: memory math, the
// gate, the graph type's formula, the unit scale, smoothing, the time response.
#pragma once

#include "core/session.h"
#include "trace/point_sink.h"

namespace qk {

// The delay in seconds for a phase change from previousDeg to phaseDeg (both wrapped) over one
// frequency step: -dphi / domega. A difference above 180 degrees is taken the short way round.
double StepDelay(float previousDeg, float phaseDeg, double stepHz);

// What a channel with an impedance type shows for z at point pointIndex (from 1), in the plain
// unit; NaN where the formula has no value.
double ComponentOf(const Session& session, const ChannelSettings& settings, Complex z,
                   int pointIndex);

// Formats point pointIndex (from 1) for every displayed channel that shows the parameter, in
// ascending order, and passes the plotted points to the sink.
void DispatchPoint(Session& session, PointSink& sink, Complex z, int pointIndex,
                   Parameter parameter);
// The same for one channel, displayed or not.
void DispatchPointToChannel(Session& session, PointSink& sink, int channel, Complex z,
                            int pointIndex, Parameter parameter);

// The two formatters: each writes z to Value[pointIndex] (and Value2 on a Smith chart) of the
// channel by its graph type, and passes it to the sink. They differ in two ways: for transmission,
// "Smith" and "SWR" write and plot nothing; and each keeps its own previous phase for group delay.
// Group delay has an aperture of one sweep step: point 1 only stores the phase, and shows the value
// of point 2.
void FormatReflectionPoint(Session& session, PointSink& sink, int channel, Complex z,
                           int pointIndex);
void FormatTransmissionPoint(Session& session, PointSink& sink, int channel, Complex z,
                             int pointIndex);

}  // namespace qk
