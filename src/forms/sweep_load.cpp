// SPDX-License-Identifier: MIT
#include "forms/sweep_load.h"

#include "cal/error_terms.h"
#include "core/measured_sweep.h"
#include "core/scopes.h"
#include "core/status.h"
#include "forms/cal_progress.h"
#include "sweep/frequency_plan.h"
#include "trace/memory.h"

namespace qk {

namespace {

void Call(const std::function<void()>& hook) {
  if (hook) hook();
}

void ClearMemory(Session& session) {
  ForgetMemories(session);
  session.Display.MemoryInUse = false;
  session.Display.DisplayMode = DisplayMode::Data;
}

void CheckSavedSpan(Session& session, Host& host, const PlanLoad& load) {
  SweepPlan& plan = session.Plan;
  const PlanGrid& saved = plan.SavedPlan;
  const char* outside = nullptr;
  if (plan.StartFreq < saved.StartFreq)
    outside =
        "Start frequency outside existing calibration span. Calibration values will be restored";
  else if (plan.StopFreq > saved.StopFreq)
    outside =
        "Stop frequency outside existing calibration span. Calibration values will be restored";
  const bool same = plan.StartFreq == saved.StartFreq && plan.StopFreq == saved.StopFreq &&
                    plan.NumPoints == saved.NumPoints;
  if (outside == nullptr && !same) {
    InterpolateCal(session);
    return;
  }
  session.Cal.CalInterpolated = false;
  RestoreCal(session);
  plan.FreqUnit = 1e6;
  if (outside != nullptr) host.prompts.ShowMessage("Test Signals", outside, Icon::Exclamation);
  Call(load.OnSettled);
}

bool LoadIntoInstrument(Controller& controller, const PlanLoad& load) {
  Host& host = controller.rig().host;
  bool loaded = false;
  {
    const Timer1Pause pause(host.loop);
    if (load.OnTransfer) load.OnTransfer(true);
    // A failure is shown; SweepLoaded is then unchanged.
    loaded = LoadFreqSweep(controller.rig(), Bar(host));
    if (load.OnTransfer) load.OnTransfer(false);
  }
  controller.graphs().RedrawAll(true);
  ShowLevel(controller.rig().session, host.windows);
  return loaded;
}

}  // namespace

void ForgetMeasured(Controller& controller) {
  ClearMemory(controller.rig().session);
  ForgetSweep(controller.rig().session);
  controller.graphs().TakeChannels();
}

bool PutPlanInForce(Controller& controller, const SweepPlan& plan, const PlanLoad& load) {
  Session& session = controller.rig().session;
  Host& host = controller.rig().host;
  const PlanGrid before = session.Plan;
  session.Plan = plan;
  session.Cal.CalInterpolated = load.KeepCal;
  Call(load.OnSettled);
  ClearMemory(session);
  if (load.KeepCal) CheckSavedSpan(session, host, load);
  if (!SameGrid(session.Plan, before)) {
    // Data measured at other frequencies are discarded.
    ForgetSweep(session);
    controller.kept().Follow(session, host, before);
    controller.graphs().TakeChannels();
  }
  ShowStep(session, host.windows);
  bool loaded = false;
  if (session.Id.PortNumber != 0)
    loaded = LoadIntoInstrument(controller, load);
  else
    host.prompts.ShowMessage("Sweep Freq Set", "No Instrument Connected", Icon::Exclamation);
  host.windows.SessionChanged();
  return loaded;
}

}  // namespace qk
