// SPDX-License-Identifier: MIT
// A settled sweep plan into session, instrument and windows, with what a change of the plan does to
// the calibration in force and to what was measured before.
#pragma once

#include <functional>

#include "control/controller.h"

namespace qk {

struct PlanLoad {
  // The calibration in force stays: interpolated to the new points or, outside its span, put back
  // with its own plan, which is shown. False: it no longer counts.
  bool KeepCal = false;
  // The session's plan is settled, before its message (if any) and after; may be empty.
  std::function<void()> OnSettled = {};
  // Around the transfer to the instrument; may be empty.
  std::function<void(bool on)> OnTransfer = {};
};

// Stored traces are forgotten, and on another grid the last sweep. True when the instrument holds
// the plan; a failure is shown, and SweepLoaded then stays as it was.
bool PutPlanInForce(Controller& controller, const SweepPlan& plan, const PlanLoad& load);

// What was measured at another grid is no measurement at the session's: the last sweep and the
// stored traces are forgotten, and the graphs with them.
void ForgetMeasured(Controller& controller);

}  // namespace qk
