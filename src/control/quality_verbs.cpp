// SPDX-License-Identifier: MIT
#include "control/quality_verbs.h"

#include "files/provenance.h"
#include "files/statistics_csv.h"
#include "files/whole_file.h"

namespace qk {

namespace {
QualityState& Quality(Controller& controller) {
  return controller.quality();
}
void NotifyWindows(Controller& controller) {
  controller.rig().host.windows.SessionChanged();
}
}  // namespace

void SwitchHints(Controller& controller, bool on) {
  Quality(controller).Hints.SwitchOn(on);
  NotifyWindows(controller);
}

void SilenceHint(Controller& controller, HintKind kind) {
  Quality(controller).Hints.Silence(kind);
  NotifyWindows(controller);
}

void ListenToHints(Controller& controller) {
  Quality(controller).Hints.Listen();
  NotifyWindows(controller);
}

void ExplainHint(Controller& controller, HintKind kind) {
  controller.rig().host.windows.OpenDocument("manual:68-trust.md#" + std::string(HintTopic(kind)));
}

Result<Done> SaveStatistics(Controller& controller, const std::string& path) {
  const SweepRun& run = controller.quality().Run;
  if (run.Counted() < SweepRun::kLeastSweeps)
    return Failure{"no repeated sweeps (Sweep Statistics, Start)", {}};
  const Rig& rig = controller.rig();
  return WriteWhole(path,
                    StatisticsCsv(run, ProvenanceOf(rig.session, rig.host.loop.UnixSeconds())));
}

}  // namespace qk
