// SPDX-License-Identifier: MIT
#include "benchmarks/all_additions.h"

#include <array>
#include <vector>

#include "control/quality_watch.h"

namespace qk::benchmarks {

void AddAll(Session& session) {
  session.Display.MarkersOn = true;
  for (int m = 0; m < kMarkers; ++m) session.Markers.Set(m) = {true, m == 1, m == 0, 0};
  session.Display.ShowLimits = session.Display.LimitAlarmOn = true;
  for (int n = 1; n <= kChannels; ++n) {
    ChannelSettings& channel = session.Channel(n);
    channel.LimitsOn = true;
    for (int i = 1; i <= session.Plan.NumPoints; ++i) {
      // A third of the points fail, in runs.
      channel.UpperLimit[static_cast<std::size_t>(i)] = i / 20 % 3 == 0 ? -500.0f : 500.0f;
      channel.LowerLimit[static_cast<std::size_t>(i)] = -900.0f;
    }
  }
  session.Averaging.SmoothOn = true;
  session.Averaging.SmoothingPercent = 2;
  session.Planes.PlaneS11 = 0.012f;
}

void CheckAll(QualityState& quality, const Session& session) {
  constexpr std::array<Parameter, 4> kFour{Parameter::S11, Parameter::S21, Parameter::S12,
                                           Parameter::S22};
  FollowCalibration(quality, session);
  const std::vector<double> sizes(kMaxPoints, 0.01);
  for (std::size_t i = 0; i < kCheckTerms; ++i)
    quality.Check.Take(static_cast<CheckTerm>(i), session.Plan, 0, session.Plan.NumPoints - 1,
                       sizes, CheckMethod::Standards, 0);
  quality.Run.Start(SweepRun::kMostSweeps);
  for (int sweep = 0; sweep < 2; ++sweep) quality.Run.SweepEnded(session, kFour);
}

}  // namespace qk::benchmarks
