// SPDX-License-Identifier: MIT
#include "sweep/up_to_date.h"

#include "core/scopes.h"
#include "sweep/frequency_plan.h"
#include "sweep/receiver.h"
#include "sweep/settings.h"

namespace qk {

namespace {

// What must still be sent to the instrument.
struct Missing {
  bool Averages = false, Dwell = false;
  bool Plan = false, FirstPoint = false, Level = false;
  bool Path = false;

  bool Any() const { return Averages || Dwell || Plan || FirstPoint || Level || Path; }
};

Missing Compare(const Session& session, const InstrumentHolds& holds) {
  const std::int16_t averages = WantedAverages(session);
  Missing missing;
  missing.Averages = averages != session.Averaging.Averages || !holds.Averages.Is(averages);
  missing.Dwell = !holds.Dwell.Is(session.Flags.DwellOn);
  missing.Path = holds.PathLost;
  // A plan is required once one was set or came with a calibration.
  const SweepPlan& plan = session.Plan;
  if (!session.Flags.SweepLoaded && !session.Cal.AnyKind()) return missing;
  missing.Plan = !holds.Grid.Is(WantedGrid(plan));
  if (missing.Plan) return missing;  // loading it sets the first point and the codes
  missing.FirstPoint = !holds.FirstHz.Is(plan.StartFreq);
  missing.Level = !holds.Level.Is(plan.Port1Level) || holds.LentPoint;
  return missing;
}

bool PutAverages(Rig& rig) {
  if (!PutAveragesInForce(rig, WantedAverages(rig.session))) return false;
  rig.session.Flags.AveragesOffDue = false;
  return true;
}

}  // namespace

bool BringUpToDate(Rig& rig, const Complaint& complaint) {
  rig.link.EnsurePortOpen();
  const Missing missing = Compare(rig.session, rig.link.Holds());
  if (!missing.Any()) return true;
  const Timer1Pause pause(rig.host.loop);
  if (missing.Averages && !PutAverages(rig)) return false;
  if (missing.Dwell && !SendDwell(rig)) return false;
  if (missing.Plan && !LoadFreqSweep(rig)) return false;
  if (missing.FirstPoint && !SendFirstPoint(rig, complaint, rig.session.Plan.StartFreq))
    return false;
  if (missing.Level && !SendLevelTable(rig)) return false;
  if (missing.Path) RestorePath(rig);
  // Most of these commands have no reply. A later failure has cleared the known state again.
  return InstrumentAnswers(rig, complaint) && !Compare(rig.session, rig.link.Holds()).Any();
}

}  // namespace qk
