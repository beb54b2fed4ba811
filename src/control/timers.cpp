// SPDX-License-Identifier: MIT
// The actions of the three timers. They tick only in the message loop, so never inside an exchange.
#include "control/controller.h"
#include "control/due_changes.h"
#include "core/cal_arrays.h"
#include "core/scopes.h"
#include "core/status.h"

namespace qk {

namespace {
// Ticks are 10 s apart while the instrument warms up, then 60 s.
constexpr std::int16_t kWarmUpTicks = 60;
constexpr int kWarmIntervalMs = 60000;
}  // namespace

void Controller::Tick(TimerId timer) {
  switch (timer) {
    case TimerId::Timer1:
      OffsetTick();
      break;
    case TimerId::Timer2:
      RestoreStatusTick();
      break;
    case TimerId::Timer3:
      AlarmTick();
      break;
  }
}

void Controller::OffsetTick() {
  SweepFlags& flags = rig_.session.Flags;
  if (ticking_ || rig_.session.Id.PortNumber == 0) return;
  const FlagScope ticking(ticking_);
  flags.OffsetUpdateDue = true;
  if (flags.SweepIdle) UpdateOffsets(rig_);
  std::int16_t& ticks = rig_.session.Receiver.OffsetTicks;
  if (ticks < kWarmUpTicks) {
    if (ticks > kWarmUpTicks - 2) rig_.host.loop.SetInterval(TimerId::Timer1, kWarmIntervalMs);
    ++ticks;
  }
}

void Controller::RestoreStatusTick() {
  std::string text = CalInForceText(rig_.session);
  // Intentional: no blank before the mark, and no mark for another level.
  if (rig_.session.Cal.CalInterpolated) text += "?";
  SetPanel(rig_.session, rig_.host.windows, Panel::Calibration, text);
  rig_.host.loop.Enable(TimerId::Timer2, false);
}

void Controller::AlarmTick() {
  if (rig_.session.Flags.SweepRunning) rig_.host.windows.Beep();
}

}  // namespace qk
