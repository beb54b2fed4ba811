// Averages and dwell, sent with Timer1 off so that no periodic measurement comes between.
#include "sweep/settings.h"

#include <algorithm>

#include "link/command_set.h"

namespace qk {

namespace {
bool AnswersFor(Rig& rig, const char* title) {
  rig.link.EnsurePortOpen();
  return LinkAnswers(rig, title);
}
}  // namespace

bool SetAverages(Rig& rig) {
  rig.host.time.Enable(TimerId::Timer1, false);
  const bool good = AnswersFor(rig, "Set Averages");
  if (good) {
    std::int16_t& averages = rig.session.Averaging.Averages;
    // One byte on the wire; more would divide the samples by what the instrument never added up.
    averages = std::clamp<std::int16_t>(averages, 1, 255);
    rig.link.SendCommand(command::SetAverages(averages));
    rig.session.Flags.AveragesChangeDue = false;
  }
  rig.host.time.Enable(TimerId::Timer1, true);
  return good;
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
  rig.host.time.Enable(TimerId::Timer1, false);
  const bool good = AnswersFor(rig, "Dwell Time Set");
  if (good) rig.link.SendCommand(command::Dwell(rig.session.Flags.DwellOn));
  rig.host.time.Enable(TimerId::Timer1, true);
  return good;
}

}  // namespace qk
