// SPDX-License-Identifier: MIT
#include "control/quality_watch.h"

namespace qk {

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
  quality.Hints.SweepEnded(
      {rig.session, delivered, overloaded, rig.host.loop.Now(), rig.host.loop.UnixSeconds()});
  quality.Run.SweepEnded(rig.session, delivered);
  if (hints != quality.Hints.Revision() || run != quality.Run.Revision() ||
      running != quality.Run.Running())
    rig.host.windows.SessionChanged();
}

}  // namespace qk
