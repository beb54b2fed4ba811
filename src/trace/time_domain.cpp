// SPDX-License-Identifier: MIT
#include "trace/time_domain.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "core/instrument_limits.h"
#include "numeric/rotation.h"
#include "numeric/series_sum.h"
#include "numeric/spline.h"
#include "trace/units.h"

namespace qk {

namespace {

constexpr double kSampleSeconds = 1.629194e-10;  // interval of the 2048 samples, in any sweep
constexpr double kFirstSeconds = -5e-9;
constexpr double kTurnSeconds = 5.15e-9;  // puts the response of time 0 after the start of the grid
constexpr double kTurn = 6.2831853;       // two pi, to the precision used in the whole program
constexpr double kPi = 3.14159265;
constexpr std::size_t kTop = kTimeDomainPoints;  // the highest harmonic
constexpr std::size_t kKnots = 2 * kTop - 1;
constexpr std::size_t kBentKnots = 2027;
static_assert(kTimeDomainPoints <= kMaxPoints, "the response is kept in a channel's points");
static_assert(kSeriesTerms == kTop + 1 && kSeriesSums == 2 * kTop);
static_assert(kBentKnots <= kKnots && kKnots <= kMaxKnots);

// The time of each knot; knot k of 1 to 2047 is at index k - 1 and belongs to sample k.
constexpr auto kKnotSeconds = [] {
  std::array<double, kKnots> seconds{};
  for (std::size_t k = 0; k < kKnots; ++k)
    seconds[k] = static_cast<double>(k) * kSampleSeconds + kFirstSeconds;
  return seconds;
}();

// Metres between port and reflector, per second of delay.
double MetresPerSecond(const Session& session, Parameter parameter) {
  const double passages = RowOf(parameter).Reflection ? 2 : 1;
  return kSpeedOfLight * session.TimeDomain.VelocityFactor / passages;
}

}  // namespace

double StepSeconds(const PlanGrid& plan, double axisSeconds) {
  // Sample k of the response, k samples after the rotated time 0, is at knot k - 1; the running sum
  // puts the middle of a step half a sample earlier.
  const double delay = axisSeconds - kFirstSeconds + 1.5 * kSampleSeconds;
  return delay / (2048 * kSampleSeconds * plan.StepFreq) - kTurnSeconds;
}

double MetresAt(const Session& session, Parameter parameter, double axisNs) {
  return MetresPerSecond(session, parameter) * StepSeconds(session.Plan, axisNs * 1e-9);
}

double DcTermOf(const std::array<double, 3>& lowest, TdDcTerm dcTerm, double resistance) {
  switch (dcTerm) {
    case TdDcTerm::Open:
      return 1;
    case TdDcTerm::Short:
      return -1;
    case TdDcTerm::Res: {
      double sum = resistance + kInstrumentOhms;
      if (std::fabs(sum) < kDivisionFloor) sum = kDivisionFloor;
      return (resistance - kInstrumentOhms) / sum;
    }
    case TdDcTerm::Auto:
      break;
  }
  return std::clamp(3 * lowest[0] + lowest[2] - 3 * lowest[1], -1.0, 1.0);
}

namespace {

// The weights of points 0 to 1024; a rectangular window has no weights.
void ComputeWeights(TimeDomainArrays& td, TdWindow window, int kaiserOrder) {
  const double order = kaiserOrder;
  for (std::size_t k = 0; k <= kTop; ++k) {
    const double at = static_cast<double>(k);
    if (window == TdWindow::RaisedCos) {
      // Intentional: only a quarter of the cosine, so that the last weight is 0.854.
      td.TdWeight[k] = std::cos(at * kPi / (2 * kTop) / 2) * 0.5 + 0.5;
    } else {
      td.TdKaiserArg[k] = order * std::sqrt(1 - (at / kTop) * (at / kTop));
      td.TdWeight[k] = Bessel0Plus1(td.TdKaiserArg[k]) / Bessel0Plus1(order);
    }
  }
}

}  // namespace

void TakeSpectrumPoint(Session& session, Complex z, int pointIndex) {
  if (pointIndex > kTimeDomainPoints) return;
  const Complex turned = Rotate(z, kTurnSeconds, session.Plan.Frequency(pointIndex - 1));
  session.TdArrays.TdInRe[static_cast<std::size_t>(pointIndex)] = turned.re;
  session.TdArrays.TdInIm[static_cast<std::size_t>(pointIndex)] = turned.im;
}

void PlotTimeResponse(Session& session, PointSink& sink, int channel) {
  const TimeDomainState& state = session.TimeDomain;
  TimeDomainArrays& td = session.TdArrays;
  sink.ComputingTimeDomain(true);
  ComputeTimeDomain(td, state.TdWindow, state.TdDcTerm, state.TdKaiserOrder,
                    static_cast<double>(state.TdResistance));
  PrepareTdSpline(td);
  ChannelSettings& settings = session.Channel(channel);
  const GraphTypeRow& type = RowOf(settings.GraphType);
  const auto zo = static_cast<double>(session.Impedance.SystemZo);
  const double scale = settings.Units == Unit::MilliU ? 1000 : 1;
  bool dataError = false;
  for (int k = 1; k <= kTimeDomainPoints; ++k) {
    // 32-bit, so that responses compare equal with earlier ones.
    const auto seconds = static_cast<float>(((k - 1) * state.TdStep + state.TdT1) * 1e-9);
    double value = TdValueAt(td, static_cast<double>(seconds), dataError);
    if (type.HasGaps())
      value =
          InUnits(settings,
                  type.OfImpedance(component::ImpedanceOf(Element::Reflection, {value, 0}, zo), 0));
    else
      value *= scale;
    settings.Value[static_cast<std::size_t>(k)] = value;
    sink.PlotPoint(channel, k, value, settings.Value2[static_cast<std::size_t>(k)]);
  }
  if (dataError) sink.SplineDataError();
  sink.ComputingTimeDomain(false);
}

void BuildSpectrum(TimeDomainArrays& td, TdWindow window, TdDcTerm dcTerm, int kaiserOrder,
                   double resistance) {
  std::copy(td.TdInRe.begin() + 1, td.TdInRe.end(), td.TdSpecRe.begin() + 1);
  std::copy(td.TdInIm.begin() + 1, td.TdInIm.end(), td.TdSpecIm.begin() + 1);
  td.TdSpecRe[0] = DcTermOf({td.TdSpecRe[1], td.TdSpecRe[2], td.TdSpecRe[3]}, dcTerm, resistance);
  td.TdSpecIm[0] = 0;
  if (window != TdWindow::Rect) {
    ComputeWeights(td, window, kaiserOrder);
    for (std::size_t k = 0; k <= kTop; ++k) {
      td.TdSpecRe[k] *= td.TdWeight[k];
      td.TdSpecIm[k] *= td.TdWeight[k];
    }
  }
  for (std::size_t k = 0; k <= kTop; ++k) {
    td.TdSpecRe[k] /= kTop;
    td.TdSpecIm[k] = -td.TdSpecIm[k] / kTop;
  }
  td.TdSpecRe[0] /= 2;
  td.TdSpecRe[kTop] /= 2;
}

void ComputeTimeDomain(TimeDomainArrays& td, TdWindow window, TdDcTerm dcTerm, int kaiserOrder,
                       double resistance) {
  BuildSpectrum(td, window, dcTerm, kaiserOrder, resistance);
  SumSeries(td.TdSpecRe, td.TdSpecIm, kTurn, td.TdImpulse);
  double sum = 0;
  for (std::size_t n = 0; n < td.TdImpulse.size(); ++n) {
    sum += td.TdImpulse[n];
    td.TdStepResponse[n] = sum;
  }
}

// Sample 0 of the response is never used; entries beyond the last knot with a second derivative
// stay 0.
void PrepareTdSpline(TimeDomainArrays& td) {
  spline2(std::span(kKnotSeconds).first(kBentKnots),
          std::span(td.TdStepResponse).subspan(1, kBentKnots),
          std::span(td.TdSplineY2).subspan(1, kBentKnots));
}

double TdValueAt(const TimeDomainArrays& td, double seconds, bool& dataError) {
  return splint2(kKnotSeconds, std::span(td.TdStepResponse).subspan(1),
                 std::span(td.TdSplineY2).subspan(1), seconds, dataError);
}

double Bessel0Plus1(double x) {
  double sum = 0, power = 1, factorial = 1;
  for (int j = 0; j <= 20; ++j) {
    if (j > 0) {
      power *= (x / 2) * (x / 2);
      factorial *= j;
    }
    sum += power / (factorial * factorial);
  }
  return sum + 1;
}

}  // namespace qk
