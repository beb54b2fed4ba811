// SPDX-License-Identifier: MIT
// Applies a valid sweep plan to session, instrument and windows, and handles the effect on the
// active calibration and on earlier measured data.
#pragma once

#include <functional>

#include "control/controller.h"

namespace qk {

struct PlanLoad {
  // Keep the active calibration: interpolate it to the new points or, outside its span, restore it
  // with its own plan, which is reported. False: it becomes invalid.
  bool KeepCal = false;
  // Called when the session's plan is valid, before and after its message (if any); may be empty.
  std::function<void()> OnSettled = {};
  // Called before and after the transfer to the instrument; may be empty.
  std::function<void(bool on)> OnTransfer = {};
};

// Discards stored traces and, on another grid, the last sweep. True if the instrument has the plan;
// a failure is shown, and SweepLoaded is then unchanged.
bool PutPlanInForce(Controller& controller, const SweepPlan& plan, const PlanLoad& load);

// Discards data that were measured on another grid: the last sweep and the stored traces, also in
// the graphs.
void ForgetMeasured(Controller& controller);

}  // namespace qk
