// SPDX-License-Identifier: MIT
// The step response of a "TD" channel, or the corresponding impedance of a "TD Z" channel. The 1024
// points of a sweep are rotated by a fixed phase, which places time 0 on the axis, and become a
// one-sided spectrum with a computed dc term. Its inverse transform is summed to a step response
// and interpolated with a spline. The transform treats point i as harmonic i of one fixed step,
// whatever the sweep plan is.
#pragma once

#include <array>

#include "core/session.h"
#include "trace/point_sink.h"

namespace qk {

// Stores point pointIndex (from 1) of the time-domain channel, after memory math, in TdInRe and
// TdInIm.
void TakeSpectrumPoint(Session& session, Complex z, int pointIndex);

// Computes the response from TdInRe and TdInIm and plots its 1024 points between TdT1 and TdT2 on
// the channel.
void PlotTimeResponse(Session& session, PointSink& sink, int channel);

// The true delay of a step that is shown at a time of the axis. The axis is kept as it is for
// compatibility, although it shows a step 1.5 samples minus 0.15 ns early, and is stretched in
// proportion for any frequency step other than its own (2.997 MHz).
double StepSeconds(const PlanGrid& plan, double axisSeconds);
// The distance in metres from the reference plane for a time of the axis in ns: half the path of
// the wave for a reflection, the whole path for a transmission.
double MetresAt(const Session& session, Parameter parameter, double axisNs);
// The dc term: that of an open, a short or a resistance in ohms. TdDcTerm::Auto extrapolates a
// parabola through the real parts of the three lowest points to 0, limited to -1 to 1.
double DcTermOf(const std::array<double, 3>& lowest, TdDcTerm dcTerm, double resistance);

// Computes TdStepResponse from TdInRe and TdInIm. resistance in ohms is for TdDcTerm::Res;
// kaiserOrder, 1 to 10, is for TdWindow::KaiserB.
void ComputeTimeDomain(TimeDomainArrays& td, TdWindow window, TdDcTerm dcTerm, int kaiserOrder,
                       double resistance);

// The spectrum with dc term, window and normalisation: the first half of ComputeTimeDomain.
void BuildSpectrum(TimeDomainArrays& td, TdWindow window, TdDcTerm dcTerm, int kaiserOrder,
                   double resistance);

// Computes the spline through TdStepResponse. Intentional: only 2027 of its 2047 knots have a
// second derivative; from about 325.07 ns on it is linear between knots.
void PrepareTdSpline(TimeDomainArrays& td);
// The spline value at a time in seconds. dataError as in splint2; these knots never cause it.
double TdValueAt(const TimeDomainArrays& td, double seconds, bool& dataError);

// The modified Bessel function I0(x), from 21 terms of its series, plus 1. Intentional: the first
// term is counted twice, in both numerator and denominator of the window.
double Bessel0Plus1(double x);

}  // namespace qk
