// SPDX-License-Identifier: MIT
// From a corrected complex point to the number that a channel plots: memory math, the gate, the
// graph-type formula, the unit scale, smoothing, the time response.
#pragma once

#include "core/session.h"
#include "trace/point_sink.h"

namespace qk {

// The delay in seconds of a phase that goes from previousDeg to phaseDeg (both wrapped) in one step
// of frequency: -dphi / domega, with a difference beyond 180 degrees taken the short way round.
double StepDelay(float previousDeg, float phaseDeg, double stepHz);

// What a channel of an impedance type shows for z at point pointIndex (from 1), in the plain unit;
// not a number where the formula has no value.
double ComponentOf(const Session& session, const ChannelSettings& settings, Complex z,
                   int pointIndex);

// Formats point pointIndex (from 1) into every displayed channel that shows the parameter, in
// ascending order, and hands the plotted points to the sink.
void DispatchPoint(Session& session, PointSink& sink, Complex z, int pointIndex,
                   Parameter parameter);
// The same for one channel, whatever is displayed.
void DispatchPointToChannel(Session& session, PointSink& sink, int channel, Complex z,
                            int pointIndex, Parameter parameter);

// The two formatters: z into Value[pointIndex] (and Value2 on a Smith chart) of the channel by its
// own graph type, and on to the sink. They differ in that transmission knows no "Smith" and no
// "SWR" (nothing is written or plotted there), and in the previous phase that group delay uses.
// Group delay: one sweep step of aperture; point 1 only notes the phase, and repeats point 2.
void FormatReflectionPoint(Session& session, PointSink& sink, int channel, Complex z,
                           int pointIndex);
void FormatTransmissionPoint(Session& session, PointSink& sink, int channel, Complex z,
                             int pointIndex);

}  // namespace qk
