// SPDX-License-Identifier: MIT
// The operation of remote control that is pending: sweeps, continuous sweeping, other work with the
// instrument; from its request to its end.
#include <algorithm>
#include <utility>

#include "control/verbs.h"
#include "core/sweep_mode.h"
#include "forms/sweep_load.h"
#include "scpi/remote.h"

namespace qk::scpi {

namespace {
constexpr int kMostDisturbed = 5;  // consecutive sweeps with surplus bytes
}  // namespace

std::optional<Error> Remote::SweepObstacle() {
  const Session& s = session();
  if (s.Id.PortNumber == 0) return Error{kHardware, "no instrument"};
  if (!s.Cal.AnyKind()) return Error{kSettingsConflict, "no calibration"};
  if (!wanted_.OtherGrid()) return std::nullopt;
  const PlanGrid grid = wanted_.Grid();
  const PlanGrid& saved = s.Plan.SavedPlan;
  if (grid.StartFreq < saved.StartFreq || grid.StopFreq > saved.StopFreq)
    return Error{kSettingsConflict, "the plan is outside the calibration"};
  return std::nullopt;
}

void Remote::ExpectSweep(Client& by) {
  by.Own = nullptr;
  by.Fresh = 0;
  by.FreshComputed = 0;
  by.AwaitsOwn = true;
}

void Remote::StartSweeps(Client& by, int sweeps) {
  ExpectSweep(by);
  operation_ = {};
  operation_.At = Stage::Posted;
  operation_.Serial = ++serials_;
  operation_.By = by.Number();
  operation_.Asked = operation_.Left = sweeps;
  PostBegin();
}

void Remote::StartContinuous(Client& by) {
  continue_ = true;
  continueFor_ = by.Number();
  // After an operation it continues by itself, and after a stop when that has finished.
  if (operation_.At == Stage::None && !stopping_ && !Sweeping()) PostContinuous();
}

// Starts like an operation, but nothing waits for it.
void Remote::PostContinuous() {
  post_([this, alive = alive_, number = continueFor_] {
    if (!*alive || !continue_ || operation_.At != Stage::None || !controller().Idle()) return;
    if (const std::string why = Obstacle(); !why.empty()) {
      continue_ = false;
      ReportError(number, {kExecution, why});
      ServeSoon();
      return;
    }
    const PromptGate::Unattended unattended(
        gate_, [this, number](const Message& box) { ReportBox(number, box); });
    const int ended = measurementsEnded_;
    if (LoadWanted()) controller().StartMeasurement();
    if (measurementsEnded_ == ended) continue_ = false;  // no sweep was started
    UpdateConditions();
    ServeSoon();
  });
}

void Remote::StartWork(Client& by, std::function<void(Client*)> work) {
  operation_ = {};
  operation_.At = Stage::Posted;
  operation_.Serial = ++serials_;
  operation_.By = by.Number();
  operation_.Work = std::move(work);
  PostBegin();
}

void Remote::ArmContinuous(Client& by) {
  if (operation_.At != Stage::None)
    continue_ = false;
  else if (!controller().Idle() || continue_)
    Stop(by);
  ContinuousArmed = true;
}

TraceForm Remote::FormOfTrace(int trace) {
  auto& own = OwnForms[static_cast<std::size_t>(trace - 1)];
  const GraphType shown = session().Channel(trace).GraphType;
  if (own && own->Shown != shown) own.reset();
  return own ? own->Form : FormOf(shown);
}

bool Remote::Continuous() const {
  if (continue_ || ContinuousArmed) return true;
  return operation_.At == Stage::None && !stopping_ && program_.session().Flags.SweepRunning;
}

void Remote::Stop(Client& by) {
  continue_ = ContinuousArmed = false;
  const bool givenUp = std::exchange(givenUp_, false);
  const bool measuring = operation_.At != Stage::None && !operation_.Work;
  if (measuring) {
    if (operation_.By != by.Number() && !givenUp)
      ReportError(operation_.By, {kExecution, "another client stopped it"});
    operation_ = {};
  }
  if (!controller().Idle()) {
    stopping_ = true;
    controller().StopMeasurement();
  } else {
    ServeSoon();
  }
}

void Remote::PostBegin() {
  post_([this, alive = alive_] {
    if (*alive) Begin();
  });
}

void Remote::Begin() {
  if (operation_.At != Stage::Posted || stopping_) return;  // starts when the stop has finished
  const int serial = operation_.Serial;
  const int by = operation_.By;
  if (givenUp_) return Finish();
  if (!controller().Idle()) {
    ReportError(by, {kInitIgnored, "a sweep runs"});
    return Finish();
  }
  if (const std::string why = Obstacle(); !why.empty()) {
    ReportError(by, {kExecution, why});
    return Finish();
  }
  operation_.At = Stage::Running;
  {
    const PromptGate::Unattended unattended(gate_,
                                            [this, by](const Message& box) { ReportBox(by, box); });
    if (operation_.Work) {
      const auto work = operation_.Work;
      work(ByNumber(by));
    } else {
      BeginSweeps();
    }
  }
  if (operation_.Serial != serial) return;
  if (operation_.At == Stage::Running || operation_.At == Stage::Ending) {
    const bool refused =
        !operation_.Work && operation_.At == Stage::Running && !operation_.Reported;
    if (refused) ReportError(by, {kExecution, "no sweep began"});
    Finish();
  }
}

// Returns when the sweeps have ended.
void Remote::BeginSweeps() {
  if (const std::optional<Error> why = SweepObstacle(); why) {
    operation_.Reported = true;
    ReportError(operation_.By, *why);
    return;
  }
  if (LoadWanted()) controller().StartMeasurement();
}

void Remote::Finish() {
  operation_.At = Stage::None;
  givenUp_ = false;
  if (controller().Idle() && !stopping_) continue_ = false;
  operation_.Work = {};
  UpdateConditions();
  ServeSoon();
}

bool Remote::LoadWanted() {
  const SweepPlan plan = wanted_.Plan();
  if (!wanted_.OtherGrid() && session().Flags.SweepLoaded && !instrumentInDoubt_) {
    if (plan.Port1Level == session().Plan.Port1Level) return true;
    session().Flags.ReplyTimedOut = false;
    SetPort1Level(rig(), plan.Port1Level);
    return !session().Flags.ReplyTimedOut;
  }
  instrumentInDoubt_ = true;
  const bool loaded = PutPlanInForce(controller(), plan, {.KeepCal = true});
  if (loaded) instrumentInDoubt_ = false;
  return loaded;
}

bool Remote::SweepEnded(bool complete) {
  const Session& s = session();
  const std::int64_t now = host().loop.NowMs();
  const std::optional<SweepMode> mode = ModeInForce(s.Cal);
  const bool whole = complete && mode && s.Display.PointCounter >= s.Plan.NumPoints;
  graphsWhole_ = whole;
  if (whole) {
    whole_ = KeepSweep(s, *mode);
    wholeSinceStart_ = true;
    lastSeconds_ = static_cast<double>(now - sweepBeganMs_) / 1000;
    lastGrid_ = s.Plan;
    lastAverages_ = s.Averaging.Averages;
    for (const Slot& slot : clients_) slot.Who->AwaitsOwn = false;
    // What is left of an INITiate whose sweep is gone gives way to the client's own continuous
    // sweeps.
    Client* by = continue_ ? ByNumber(continueFor_) : nullptr;
    if (by != nullptr && by->Own == nullptr) by->Fresh = by->FreshComputed = 0;
  }
  sweepBeganMs_ = now;
  UpdateConditions();
  // Surplus bytes: the sweep is repeated, but a client does not wait forever.
  const bool disturbed = !complete && s.Flags.SweepRunning;
  disturbed_ = disturbed ? disturbed_ + 1 : 0;
  if (operation_.At == Stage::None && !stopping_) givenUp_ = disturbed_ >= kMostDisturbed;
  if (operation_.At != Stage::Running || operation_.Work) {
    ServeSoon();  // clients that read continuous sweeps waited for a whole one
    return true;
  }
  if (disturbed_ >= kMostDisturbed) {
    operation_.Reported = true;
    ReportError(operation_.By, {kHardware, "the line to the instrument is disturbed"});
    return false;
  }
  if (!whole) return true;
  if (givenUp_) {
    operation_.At = Stage::Ending;
    return false;
  }
  if (--operation_.Left > 0) return true;
  if (Client* by = ByNumber(operation_.By); by != nullptr) {
    by->Own = whole_;
    by->FreshComputed = ~std::uint32_t{0};
    by->Fresh = 0;
    for (std::size_t i = 0; i < kParameters.size(); ++i)
      if (whole_->Holds(static_cast<Parameter>(i))) by->Fresh |= 1u << i;
  }
  if (continue_) {
    Finish();
    return true;
  }
  operation_.At = Stage::Ending;
  return false;
}

void Remote::MeasurementEnded() {
  const bool stopped = std::exchange(stopping_, false);
  ++measurementsEnded_;
  disturbed_ = 0;
  if (operation_.At == Stage::None) givenUp_ = false;
  const bool cutShort = operation_.At == Stage::Running && !operation_.Work;
  // For every client: the earlier sweep may be of another device.
  if (cutShort || !wholeSinceStart_ || session().Flags.ReplyTimedOut) whole_ = nullptr;
  if (cutShort) {
    if (!operation_.Reported) ReportError(operation_.By, {kExecution, "the sweep was stopped"});
    continue_ = false;
    Finish();
  } else if (operation_.At == Stage::Ending) {
    Finish();
  } else if (operation_.At == Stage::Posted) {
    PostBegin();
  } else if (stopped && continue_) {
    PostContinuous();  // requested since the stop
  } else {
    continue_ = false;
  }
  UpdateConditions();
  ServeSoon();
}

}  // namespace qk::scpi
