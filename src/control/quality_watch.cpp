// SPDX-License-Identifier: MIT
#include "control/quality_watch.h"

#include <algorithm>
#include <cmath>

#include "cal/kit_reflection.h"

namespace qk {

namespace {
// S11 is the open of the kit of port 1, at some fifty points over the sweep. A bare connector is
// not: its stray capacitance is larger.
bool IsOpenAtPort1(const Session& session, std::span<const Parameter> delivered) {
  constexpr double kSame = 0.01;
  constexpr int kLooks = 51;
  if (std::ranges::find(delivered, Parameter::S11) == delivered.end()) return false;
  const auto away = [](Complex a, Complex b) {
    return std::hypot(a.re - b.re, a.im - b.im) > kSame;
  };
  const auto reflects = [&](int k) {
    return std::hypot(session.Data.S11[k].re, session.Data.S11[k].im) > 0.5;
  };
  if (!reflects(0)) return false;  // as most devices
  LoadTable table(session.Kit1);
  bool open = true;
  const int step = (session.Plan.NumPoints + kLooks - 1) / kLooks;
  for (int k = 0; k < session.Plan.NumPoints && open; k += step) {
    const Complex s11 = session.Data.S11[k];
    const KitReflections kit = ReflectionsOf(session.Kit1, table, session.Plan.Frequency(k),
                                             static_cast<double>(session.Impedance.SystemZo));
    open = !away(s11, kit.Open);
  }
  return open;
}
}  // namespace

void FollowCalibration(QualityState& quality, const Session& session) {
  const CalIdentity now = IdentityOf(session);
  if (now == quality.Calibration) return;
  quality.Calibration = now;
  quality.Hints.Forget();
  quality.Check.Forget();
  quality.Run.Forget();
}

void TakeWholeSweep(Rig& rig, QualityState& quality, std::span<const Parameter> delivered,
                    std::array<int, 2> overloaded) {
  const unsigned hints = quality.Hints.Revision(), run = quality.Run.Revision();
  const bool running = quality.Run.Running();
  FollowCalibration(quality, rig.session);
  quality.Hints.SweepEnded({rig.session, delivered, overloaded, rig.host.loop.Now(),
                            rig.host.loop.UnixSeconds(), IsOpenAtPort1(rig.session, delivered)});
  quality.Run.SweepEnded(rig.session, delivered);
  if (hints != quality.Hints.Revision() || run != quality.Run.Revision() ||
      running != quality.Run.Running())
    rig.host.windows.SessionChanged();
}

}  // namespace qk
