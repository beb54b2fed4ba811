// Averages and dwell, sent with Timer1 off so that no periodic measurement comes between.
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
  // One byte on the wire; more would divide the samples by what the instrument never added up.
  averages = std::clamp<std::int16_t>(averages, 1, kMostAverages);
  rig.link.SendCommand(command::SetAverages(averages));
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

bool SendDwell(Rig& rig) {
  const Timer1Pause pause(rig.host.loop);
  return Send(rig, "Dwell Time Set", command::Dwell(rig.session.Flags.DwellOn));
}

}  // namespace qk
