// SPDX-License-Identifier: MIT
// The step response of a "TD" channel, or the impedance that it means on a "TD Z" one: 1024 points
// of a sweep become, after a fixed turn that puts time 0 where the axis wants it, a one-sided
// spectrum with a dc term of its own; its inverse transform is summed up and read through a spline.
// The transform takes point i for harmonic i of one fixed step, whatever the sweep plan says.
#pragma once

#include <array>

#include "core/session.h"
#include "trace/point_sink.h"

namespace qk {

// Takes point pointIndex (from 1) of the time-domain channel, memory math done, into TdInRe and
// TdInIm.
void TakeSpectrumPoint(Session& session, Complex z, int pointIndex);

// Computes the response of what TdInRe and TdInIm hold and plots its 1024 points between TdT1 and
// TdT2 on the channel.
void PlotTimeResponse(Session& session, PointSink& sink, int channel);

// The true delay of a step that stands at a time of the axis. The axis is kept as it is although a
// step stands on it 1.5 samples less 0.15 ns early, and at any other step of the plan than that of
// the axis' own (2.997 MHz) by so much too long.
double StepSeconds(const PlanGrid& plan, double axisSeconds);
// The distance at a time of the axis in ns, in metres from the reference plane: half the way of the
// wave for a reflection, all of it for a transmission.
double MetresAt(const Session& session, Parameter parameter, double axisNs);
// The dc term: that of an open, a short or a resistance in ohms, or for TdDcTerm::Auto the parabola
// through the real parts of the three lowest points, at 0, limited to -1 to 1.
double DcTermOf(const std::array<double, 3>& lowest, TdDcTerm dcTerm, double resistance);

// TdInRe and TdInIm to TdStepResponse. The resistance in ohms is that of TdDcTerm::Res, and
// kaiserOrder, 1 to 10, that of TdWindow::KaiserB.
void ComputeTimeDomain(TimeDomainArrays& td, TdWindow window, TdDcTerm dcTerm, int kaiserOrder,
                       double resistance);

// Spectrum with dc term, window and norm: the first half of ComputeTimeDomain.
void BuildSpectrum(TimeDomainArrays& td, TdWindow window, TdDcTerm dcTerm, int kaiserOrder,
                   double resistance);

// The spline through TdStepResponse. Meant: of its 2047 knots only 2027 bend; from about 325.07 ns
// on it is straight from knot to knot.
void PrepareTdSpline(TimeDomainArrays& td);
// Its value at a time in seconds. dataError as in splint2; the knots give no cause for it.
double TdValueAt(const TimeDomainArrays& td, double seconds, bool& dataError);

// The modified Bessel function I0(x), by 21 terms of its series, plus 1. Meant: the sum counts its
// first term twice, in numerator and denominator of the window alike.
double Bessel0Plus1(double x);

}  // namespace qk
