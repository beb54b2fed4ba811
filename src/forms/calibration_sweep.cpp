// The sweep entry of the calibration window: typed frequencies to a plan in the instrument.
#include <tuple>

#include "cal/error_terms.h"
#include "core/scopes.h"
#include "core/status.h"
#include "core/text.h"
#include "forms/cal_progress.h"
#include "forms/calibration.h"
#include "forms/plan_entry.h"
#include "sweep/frequency_plan.h"

namespace qk {

void Calibration::ApplySweep() {
  if (!MayAct()) return;
  busy_ = true;
  CalState& cal = session_.Cal;
  cal.CalInterpolated = KeepCalibration();

  SweepPlan& plan = session_.Plan;
  plan.FreqUnit = At("Option1").Checked ? 1e6 : 1000;
  plan.NumPoints = kPointChoices[static_cast<std::size_t>(At("PntsCombo").Index)];
  plan.Port1Level = static_cast<std::int16_t>(-At("LvlCombo").Index);
  TakeFrequencies();
  SettleStep();
  SettleGrid(plan);
  ShowPlan();
  ResetSteps();
  ClearMemory();
  if (cal.CalInterpolated) CheckSavedSpan();
  ShowStep(session_, host_.windows);
  if (session_.Id.PortNumber != 0)
    LoadIntoInstrument();
  else
    host_.prompts.Tell("Sweep Freq Set", "No Instrument Connected", Icon::Exclamation);
  busy_ = false;
  ShowNextStep();
}

bool Calibration::KeepCalibration() {
  session_.Cal.CalInterpolated = false;
  if (!session_.Cal.AnyKind()) return false;
  if (host_.prompts.Ask({"Test Signals", "Keep existing Cal (interpolate new points)?",
                         Icon::Question, Buttons::YesNo}) == Answer::Yes)
    return true;
  session_.Flags.SweepRunning = false;
  DropCal(session_, host_.windows);
  return false;
}

void Calibration::TakeFrequencies() {
  SweepPlan& plan = session_.Plan;
  const auto take = [this](LimitedFreq limited) {
    if (!limited.Message.empty())
      host_.prompts.Tell("Sweep Freq Set", limited.Message, Icon::Exclamation);
    return limited.Hz;
  };
  plan.StartFreq = take(LimitStart(Val(At("Text1").Text) * plan.FreqUnit));
  plan.StopFreq = take(LimitStop(Val(At("Text2").Text) * plan.FreqUnit, plan.StartFreq));
}

void Calibration::SettleStep() {
  SweepPlan& plan = session_.Plan;
  plan.StepFreq = (plan.StopFreq - plan.StartFreq) / (plan.NumPoints - 1);
  if (!StepTooSmall(plan)) return;
  const bool widen =
      host_.prompts.Ask({"Test Signals",
                         "The freq step required is too small. Click YES to increase the span or "
                         "NO to reduce number of sweep points.",
                         Icon::Question, Buttons::YesNo}) == Answer::Yes;
  if (widen) {
    WidenSpan(plan);
    return;
  }
  Control& points = (*this)["PntsCombo"];
  points.Index = FewerPoints(points.Index, plan.StepFreq);
  plan.NumPoints = kPointChoices[static_cast<std::size_t>(points.Index)];
}

void Calibration::CheckSavedSpan() {
  SweepPlan& plan = session_.Plan;
  CalState& cal = session_.Cal;
  const PlanGrid& saved = plan.SavedPlan;
  const auto refuse = [&](const char* text) {
    host_.prompts.Tell("Test Signals", text, Icon::Exclamation);
    cal.CalInterpolated = false;
  };
  if (plan.StartFreq < saved.StartFreq)
    refuse(
        "Start frequency outside existing calibration span. Calibration values will be restored");
  else if (plan.StopFreq > saved.StopFreq)
    refuse("Stop frequency outside existing calibration span. Calibration values will be restored");
  else if (plan.StartFreq == saved.StartFreq && plan.StopFreq == saved.StopFreq &&
           plan.NumPoints == saved.NumPoints)
    cal.CalInterpolated = false;

  if (cal.CalInterpolated) {
    InterpolateCal(session_);
    return;
  }
  RestoreCal(session_);
  plan.FreqUnit = 1e6;
  ShowPlan();
}

void Calibration::LoadIntoInstrument() {
  {
    const Timer1Pause pause(host_.time);
    // A failure is told; SweepLoaded then stands as it did.
    std::ignore = LoadFreqSweep(controller_.rig(), Bar(host_));
  }
  controller_.graphs().RedrawAll(true);
  enhance_.FollowLevel();
  ShowLevel(session_, host_.windows);
}

void Calibration::ShowPlan() {
  const SweepPlan& plan = session_.Plan;
  Choose(plan.FreqUnit == 1000 ? "Option2" : "Option1");
  (*this)["Text1"].Text = FreqText(plan.StartFreq, plan.FreqUnit);
  (*this)["Text2"].Text = FreqText(plan.StopFreq, plan.FreqUnit);
  (*this)["Text3"].Text = StepText(plan.StepFreq, plan.FreqUnit);
  (*this)["PntsCombo"].Index = IndexOfPoints(plan.NumPoints);
}

void Calibration::ClearMemory() {
  for (ChannelSettings& channel : session_.Channels) channel.MemoryValid = false;
  session_.Display.MemoryInUse = false;
  session_.Display.DisplayMode = DisplayMode::Data;
}

}  // namespace qk
