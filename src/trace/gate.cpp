// SPDX-License-Identifier: MIT
#include "trace/gate.h"

#include <cmath>
#include <numbers>

#include "core/instrument_limits.h"
#include "trace/time_domain.h"

namespace qk {

namespace {

constexpr std::size_t kN = GateArrays::kSamples;
constexpr double kBeta = 8;
constexpr double kEdgeSeconds = 0.25e-9;

// The half Kaiser window of harmonics 0 to 1024.
const std::array<double, kTimeDomainPoints + 1>& Window() {
  static const auto weights = [] {
    std::array<double, kTimeDomainPoints + 1> w{};
    const double whole = Bessel0Plus1(kBeta) - 1;
    for (std::size_t k = 0; k <= kTimeDomainPoints; ++k) {
      const double at = static_cast<double>(k) / static_cast<double>(kTimeDomainPoints);
      w[k] = (Bessel0Plus1(kBeta * std::sqrt(1 - at * at)) - 1) / whole;
    }
    return w;
  }();
  return weights;
}

// 0 well before the edge, 1 well after it, half a cosine around it.
double Edge(double seconds) {
  const double at = seconds / kEdgeSeconds + 0.5;
  if (at <= 0) return 0;
  if (at >= 1) return 1;
  return 0.5 - 0.5 * std::cos(std::numbers::pi * at);
}

// The gate's gain for an echo that arrives at a given time; true delays in seconds.
double Opening(double seconds, double start, double stop) {
  return Edge(seconds - start) * Edge(stop - seconds);
}

}  // namespace

bool MayGate(const Session& session) {
  return session.TimeDomain.Gate != GateKind::Off && session.Plan.NumPoints == kTimeDomainPoints;
}

bool GateActs(const Session& session, const ChannelSettings& channel) {
  return channel.Gated && MayGate(session) && RowOf(channel.GraphType).Form != PointForm::Spectrum;
}

void ApplyGate(Session& session, std::span<const Complex, kMaxPoints + 1> points) {
  const TimeDomainState& td = session.TimeDomain;
  GateArrays& gates = session.Gates;
  const auto& window = Window();
  Spectrum<kN>& s = gates.Response;
  s.re.fill(0);
  s.im.fill(0);
  s.re[0] = DcTermOf({points[1].re, points[2].re, points[3].re}, td.TdDcTerm,
                     static_cast<double>(td.TdResistance));
  for (std::size_t k = 1; k <= kTimeDomainPoints; ++k) {
    s.re[k] = s.re[kN - k] = window[k] * points[k].re;
    s.im[k] = window[k] * points[k].im;
    s.im[kN - k] = -s.im[k];
  }
  Transform(s);

  const double start = StepSeconds(session.Plan, td.GateStart * 1e-9);
  const double stop = StepSeconds(session.Plan, td.GateStop * 1e-9);
  const double period = 1 / session.Plan.StepFreq;
  const double sample = period / static_cast<double>(kN);
  for (std::size_t n = 0; n < kN; ++n) {
    // The response is periodic: its last samples represent times before 0, which a gate that starts
    // there needs.
    double t = static_cast<double>(n) * sample;
    if (t > stop + kEdgeSeconds && t - period >= start - kEdgeSeconds) t -= period;
    s.re[n] *= Opening(t, start, stop);
    s.im[n] = 0;
  }
  Transform(s);

  for (std::size_t k = 1; k <= kTimeDomainPoints; ++k) {
    const double factor = 1 / (static_cast<double>(kN) * window[k]);
    const Complex gate{s.re[k] * factor, -s.im[k] * factor};
    gates.Work[k] = td.Gate == GateKind::Notch ? points[k] - gate : gate;
  }
}

}  // namespace qk
