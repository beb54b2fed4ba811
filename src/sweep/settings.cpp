// SPDX-License-Identifier: MIT
// Averages and dwell, sent with Timer1 off so that no periodic measurement interrupts.
#include "sweep/settings.h"

#include <algorithm>

#include "core/instrument_limits.h"
#include "core/scopes.h"
#include "link/command_set.h"
#include "link/exchange.h"

namespace qk {

bool SetAverages(Rig& rig) {
  const Timer1Pause pause(rig.host.loop);
  if (!InstrumentAnswers(rig, "Set Averages")) return false;
  std::int16_t& averages = rig.session.Averaging.Averages;
  // One byte on the wire; a larger value would divide the samples by more readings than the
  // instrument has summed.
  averages = std::clamp<std::int16_t>(averages, 1, kMostAverages);
  rig.link.SendCommand(command::SetAverages(averages));
  rig.link.Holds().Averages.Set(averages);
  rig.session.Flags.AveragesChangeDue = false;
  return true;
}

bool PutAveragesInForce(Rig& rig, std::int16_t count) {
  std::int16_t& averages = rig.session.Averaging.Averages;
  const std::int16_t before = averages;
  averages = count;
  if (SetAverages(rig)) return true;
  averages = before;
  return false;
}

void SetAveragesWhileIdle(Rig& rig, std::int16_t count) {
  SweepFlags& flags = rig.session.Flags;
  if (PutAveragesInForce(rig, count)) return;
  flags.AveragesChangeDue = true;
  flags.AveragesOffDue = !rig.session.Averaging.AverOn;
}

bool SendDwell(Rig& rig) {
  const Timer1Pause pause(rig.host.loop);
  const bool on = rig.session.Flags.DwellOn;
  if (!Send(rig, "Dwell Time Set", command::Dwell(on))) return false;
  rig.link.Holds().Dwell.Set(on);
  return true;
}

std::int16_t WantedAverages(const Session& session) {
  const AveragingState& averaging = session.Averaging;
  if (!session.Flags.AveragesChangeDue) return averaging.Averages;
  const std::int16_t chosen = averaging.AverOn ? averaging.AveragesSet : std::int16_t{1};
  return std::clamp<std::int16_t>(chosen, 1, kMostAverages);
}

}  // namespace qk
