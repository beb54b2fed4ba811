// SPDX-License-Identifier: MIT
// The sweep entry of the calibration window: typed frequencies to a plan in the instrument.
#include <algorithm>
#include <cmath>

#include "core/busy.h"
#include "core/instrument_limits.h"
#include "core/measured_sweep.h"
#include "core/text.h"
#include "forms/calibration.h"
#include "forms/plan_entry.h"
#include "forms/sweep_load.h"

namespace qk {

namespace {
constexpr const char* kSweepTitle = "Sweep Freq Set";

// True if the fields of the sweep entry would be equal.
bool SameEntry(const SweepPlan& a, const SweepPlan& b) {
  return SameGrid(a, b) && a.FreqUnit == b.FreqUnit && a.Port1Level == b.Port1Level;
}
std::string FrequencyText(double value) {
  return FormatNumber(value, "###0.0000");
}
}  // namespace

// The program may be asked to end while one of the boxes is open, and then saves its session. Until
// the new plan is valid, the session therefore keeps the old one with all that belongs to it.
void Calibration::ApplySweep() {
  if (!MayAct()) return;
  const BusyScope busy(*this, host_.windows);
  if (!ConfirmDiscard(kSweepTitle, Discards::Standards)) return;
  const std::optional<bool> keep = KeepCalibration();
  if (!keep) return;
  loaded_.reset();
  SweepPlan plan = TypedPlan();
  TakeFrequencies(plan);
  SettleStep(plan);
  SettleGrid(plan);
  const auto settled = [this] {
    ShowPlan();
    ResetSteps();
  };
  const auto transfer = [this](bool on) {
    if (on) bar_.Percent(0);
    bar_.Shown(on);
  };
  PutPlanInForce(controller_, plan,
                 {.KeepCal = *keep, .OnSettled = settled, .OnTransfer = transfer});
}

std::optional<bool> Calibration::KeepCalibration() {
  if (!session_.Cal.AnyKind()) {
    session_.Cal.CalInterpolated = false;
    return false;
  }
  bool keep = false;
  if (const std::string why = askFirst_->Checked ? CannotKeepText() : std::string(); !why.empty()) {
    if (host_.prompts.Ask({.Title = kSweepTitle,
                           .Text = why + ". Drop it?",
                           .MessageIcon = Icon::Question,
                           .Choice = Buttons::YesNo,
                           .NoByDefault = true}) != Answer::Yes)
      return std::nullopt;
    session_.Cal.CalInterpolated = false;
  } else {
    session_.Cal.CalInterpolated = false;
    keep = host_.prompts.Ask({.Title = "Test Signals",
                              .Text = "Keep existing Cal (interpolate new points)?",
                              .MessageIcon = Icon::Question,
                              .Choice = Buttons::YesNo,
                              .NoActs = true}) == Answer::Yes;
  }
  if (keep) return true;
  session_.Flags.SweepRunning = false;
  DropCal(session_, host_.windows);
  // They described the dropped calibration and its sweep.
  controller_.quality().Hints.Forget();
  host_.windows.SessionChanged();
  return false;
}

std::string Calibration::CannotKeepText() const {
  SweepPlan plan = TypedPlan();
  if (StepTooSmall(plan)) return {};  // a later question handles this
  SettleGrid(plan);
  const PlanGrid& saved = session_.Plan.SavedPlan;
  if (plan.StartFreq >= saved.StartFreq && plan.StopFreq <= saved.StopFreq) return {};
  const auto megahertz = [](double hertz) { return FormatNumber(hertz / 1e6, "###0.0###"); };
  return "The calibration covers " + megahertz(saved.StartFreq) + " to " +
         megahertz(saved.StopFreq) + " MHz only and cannot be kept for this sweep";
}

SweepPlan Calibration::TypedPlan() const {
  SweepPlan plan = session_.Plan;
  plan.FreqUnit = unit_.Chosen() == 0 ? 1e6 : 1000;
  plan.NumPoints = kPointCounts[static_cast<std::size_t>(points_->Index)];
  plan.Port1Level = static_cast<std::int16_t>(kHighestLevelDbm - level_->Index);
  plan.StartFreq = LimitStart(Val(start_->Text) * plan.FreqUnit).Hz;
  plan.StopFreq = LimitStop(Val(stop_->Text) * plan.FreqUnit, plan.StartFreq).Hz;
  plan.StepFreq = (plan.StopFreq - plan.StartFreq) / (plan.NumPoints - 1);
  return plan;
}

void Calibration::TakeFrequencies(SweepPlan& plan) {
  const auto take = [this](LimitedFreq limited) {
    if (!limited.Message.empty())
      host_.prompts.ShowMessage(kSweepTitle, limited.Message, Icon::Exclamation);
    return limited.Hz;
  };
  plan.StartFreq = take(LimitStart(Val(start_->Text) * plan.FreqUnit));
  plan.StopFreq = take(LimitStop(Val(stop_->Text) * plan.FreqUnit, plan.StartFreq));
}

void Calibration::SettleStep(SweepPlan& plan) {
  plan.StepFreq = (plan.StopFreq - plan.StartFreq) / (plan.NumPoints - 1);
  if (!StepTooSmall(plan)) return;
  const bool widen =
      host_.prompts.Ask({.Title = "Test Signals",
                         .Text = "The freq step required is too small. Click YES to increase the "
                                 "span or NO to reduce number of sweep points.",
                         .MessageIcon = Icon::Question,
                         .Choice = Buttons::YesNo,
                         .NoActs = true}) == Answer::Yes;
  if (widen) {
    WidenSpan(plan);
    return;
  }
  points_.Index(FewerPoints(points_->Index, plan.StepFreq));
  plan.NumPoints = kPointCounts[static_cast<std::size_t>(points_->Index)];
}

void Calibration::ShowPlan() {
  const SweepPlan& plan = session_.Plan;
  unit_.Choose(plan.FreqUnit == 1000 ? 1 : 0);
  start_.Text(FreqText(plan.StartFreq, plan.FreqUnit));
  stop_.Text(FreqText(plan.StopFreq, plan.FreqUnit));
  step_.Text(StepText(plan.StepFreq, plan.FreqUnit));
  ShowCentreAndSpan(&Handle::Text);
  points_.Index(IndexOfPoints(plan.NumPoints));
  level_.Index(-plan.Port1Level);
  ShowUnits();
  step_.Unit(start_->Unit);  // a computed value keeps the unit in which it was computed
  if (loaded_ && SameEntry(*loaded_, plan)) ShowLoadedPlan();
}

void Calibration::ShowCentreAndSpan(PutText put) {
  const double start = Val(start_->Text), stop = Val(stop_->Text);
  (centre_.*put)(FrequencyText((start + stop) / 2));
  (span_.*put)(FrequencyText(stop - start));
}

void Calibration::FollowStartAndStop() {
  ShowCentreAndSpan(&Handle::EnterText);
  FollowStep();
}

void Calibration::TakeCentreAndSpan() {
  const double centre = Val(centre_->Text), span = std::fabs(Val(span_->Text));
  start_.EnterText(FrequencyText(centre - span / 2));
  stop_.EnterText(FrequencyText(centre + span / 2));
  FollowStep();
}

// A step that is too small is a question of Apply.
void Calibration::FollowStep() {
  SweepPlan plan = TypedPlan();
  const bool tooSmall = StepTooSmall(plan);
  SettleGrid(plan);
  step_.EnterText((tooSmall ? "< " : "") + StepText(plan.StepFreq, plan.FreqUnit));
  step_.Unit(start_->Unit);
}

// Shows the plan of a session file. Intentional: four decimals in kHz too, and the step has its own
// unit.
void Calibration::ShowLoadedPlan() {
  const SweepPlan& plan = session_.Plan;
  const bool khz = plan.StepFreq < 1e6;
  start_.Text(FrequencyText(plan.StartFreq / plan.FreqUnit));
  stop_.Text(FrequencyText(plan.StopFreq / plan.FreqUnit));
  step_.Text(FrequencyText(plan.StepFreq / (khz ? 1e3 : 1e6)) + (khz ? " kHz" : " MHz"));
  step_.Unit("");
  ShowCentreAndSpan(&Handle::Text);
}

void Calibration::ShowUnits() {
  const std::string unit = unit_[std::max(0, unit_.Chosen())]->Caption;
  for (const Handle& field : {start_, stop_, centre_, span_}) field.Unit(unit);
}

}  // namespace qk
