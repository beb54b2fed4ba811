// SPDX-License-Identifier: MIT
// START and STOP, and the switches that act during a sweep.
#include "control/controller.h"

#include <optional>

#include "control/quality_watch.h"
#include "control/verbs.h"
#include "core/status.h"
#include "core/text.h"
#include "core/window_names.h"
#include "sweep/settings.h"

namespace qk {

Controller::Controller(Rig& rig, Graphs& graphs)
    : rig_(rig),
      graphs_(graphs),
      measurement_(rig, graphs),
      recent_(rig.session.InstallFolder),
      files_(rig, graphs, recent_),
      bands_(rig.session, quality_),
      undo_(rig, graphs),
      notice_(rig.host) {
  graphs_.Bands = &bands_;
  graphs_.Untested = [this, &rig](int graph) {
    return kept_.UntestedLimits(rig.session, graph + 1);
  };
  files_.OnSaved = [this](const std::string& path) { notice_.ShowSaved(path); };
  files_.OnLoaded = [this] {
    undo_.Forget();
    quality_.Hints.Forget();
    rig_.host.windows.SessionChanged();
  };
  measurement_.OnWhole = [this](std::span<const Parameter> delivered,
                                std::array<int, 2> overloaded) {
    TakeWholeSweep(rig_, quality_, delivered, overloaded);
  };
  graphs_.OnComputingTimeDomain = [&rig](bool on) {
    SetPanel(rig.session, rig.host.windows, Panel::Sweep,
             on ? "Computing TD" : rig.session.SweepStatusText);
  };
  measurement_.OnSweepEnded = [this](bool complete) {
    return !OnSweepEnded || OnSweepEnded(complete);
  };
  graphs_.OnSplineDataError = [&rig] {
    rig.host.prompts.ShowMessage("TD Computation", "Cubic Spline Data Error", Icon::None);
  };
}

void Controller::StartMeasurement() {
  SweepFlags& flags = rig_.session.Flags;
  if (startingUp_ || ended_ || !flags.Idle()) return;
  if (OnStart) OnStart();
  if (flags.SigGenActive) {
    flags.SigGenActive = flags.SigGenWave = false;
    rig_.host.windows.SessionChanged();
    ResumeTimer1(rig_);
  }
  const std::optional<SweepMode> mode = ModeInForce(rig_.session.Cal);
  if (!mode) {
    rig_.host.prompts.ShowMessage("Start Measurement", "No Calibration", Icon::Exclamation);
    return;
  }
  flags.SweepIdle = false;
  measurement_.Run(*mode);
  if (OnMeasurementEnded) OnMeasurementEnded();
  // The only place that can finish an exit or a re-start requested during a sweep: the loop is off
  // the stack and the line is free.
  if (flags.ExitPending) {
    rig_.host.windows.Hide(window::kShuttingDown);
    ShutDown();
  } else if (restartPending_) {
    StartAnew();
  }
}

void Controller::SingleSweep() {
  if (!rig_.session.Flags.Idle()) return;
  measurement_.EndAfterOneSweep(true);
  StartMeasurement();
  measurement_.EndAfterOneSweep(false);
}

void Controller::StopMeasurement() {
  SweepFlags& flags = rig_.session.Flags;
  flags.SweepRunning = false;
  if (flags.SweepIdle) return;
  Windows& windows = rig_.host.windows;
  windows.Hide(window::kUpdating);
  windows.Refresh(window::kUpdating);
  // Intentional: this firmware may abort nevertheless (an abort only needs a value above 1).
  if (Val(rig_.session.Id.FirmwareVersion) < 1.1) {
    windows.Show(window::kSweepStopping);
    windows.Refresh(window::kSweepStopping);
  }
}

void Controller::AverOn() {
  Session& session = rig_.session;
  session.Averaging.AverOn = true;
  if (session.Flags.SweepIdle) {
    SetAveragesWhileIdle(rig_, session.Averaging.AveragesSet);
    return;
  }
  session.Flags.AveragesChangeDue = true;
  if (session.Averaging.AveragesSet == 1)
    rig_.host.prompts.ShowMessage("Set Averages", "Averages currently set to 1", Icon::None);
  else
    AnnounceUpdate();
}

void Controller::AverOff() {
  SweepFlags& flags = rig_.session.Flags;
  rig_.session.Averaging.AverOn = false;
  if (flags.SweepIdle) {
    SetAveragesWhileIdle(rig_, 1);
    return;
  }
  flags.AveragesOffDue = true;
  flags.AveragesChangeDue = true;
  AnnounceUpdate();
}

void Controller::AnnounceUpdate() {
  rig_.host.windows.Show(window::kUpdating);
  rig_.host.windows.Refresh(window::kUpdating);
}

void Controller::SmoothChanged() {
  graphs_.ReplotAll();
}

}  // namespace qk
