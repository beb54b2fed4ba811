// SPDX-License-Identifier: MIT
// The line below the standards: the steps still to measure, and measurements that look wrong.
// Advisory only.
#include <string>

#include "cal/standard_doubts.h"
#include "forms/calibration.h"

namespace qk {

void Calibration::ShowNextStep() {
  if (!session_.Steps.Measuring) nextStep_.Text(DoubtsText() + NextStepText());
  guide_.Text(GuideText());
  expected_.Text(ExpectedText());
}

Calibration::StepIndex Calibration::NextStep() const {
  for (const StepIndex step : kOrder)
    if (buttons_[step]->Enabled && (Missing(step) || steps_[step].Failed)) return step;
  return kSteps;
}

// "\u2713 Open", "\u25B6 Short: next", "\u25CB Load".
std::string Calibration::GuideText() const {
  constexpr const char *kDone = "\u2713 ", *kNow = "\u25B6 ", *kToDo = "\u25CB ";
  const bool set = session_.Flags.SweepLoaded;
  const StepIndex next = set && !applied_ ? NextStep() : kSteps;
  std::string text =
      set ? std::string(kDone) + "Sweep set" : std::string(kNow) + "Set the sweep: next";
  for (const StepIndex step : kOrder) {
    if (!buttons_[step]->Enabled) continue;
    const std::string name = kStepTexts[step].Plain;
    const bool whole = applied_ || (!Missing(step) && !steps_[step].Failed);
    text += "\n";
    if (whole)
      text += kDone + name;
    else if (step == next)
      text += kNow + name + (steps_[step].Failed ? ": measure again" : ": next");
    else
      text += kToDo + name + (steps_[step].Failed ? ": measure again" : "");
  }
  text += "\n";
  if (applied_) return text + kDone + "Applied";
  return text + (set && next == kSteps ? std::string(kNow) + "Apply Cal: next"
                                       : std::string(kToDo) + "Apply Cal");
}

// The expected trace of the standard being asked for or measured, otherwise of the one that is
// drawn or of the next one.
std::string Calibration::ExpectedText() const {
  if (asked_) return ExpectationText(kStepTexts[*asked_].Kind);
  if (const auto kind = live_.Shown()) return ExpectationText(*kind);
  const StepIndex next = session_.Flags.SweepLoaded && !applied_ ? NextStep() : kSteps;
  return next == kSteps ? " " : ExpectationText(kStepTexts[next].Kind);
}

// "Doubtful: Load on port 1 reflects like a short. ", or empty.
std::string Calibration::DoubtsText() const {
  const bool bothPorts = Choice() == CalChoice::Insertable || Choice() == CalChoice::NonInsertable;
  // A step that must be measured again anyway needs no doubt text.
  const auto judged = [this](StepIndex step) { return steps_[step].Done && !steps_[step].Failed; };
  std::string text;
  for (const std::string& doubt : StandardDoubts(session_, {.Load = judged(kLoad),
                                                           .Short = judged(kShort),
                                                           .Open = judged(kOpen),
                                                           .BothPorts = bothPorts}))
    text += (text.empty() ? "Doubtful: " : ", ") + doubt;
  return text.empty() ? "" : text + ". ";
}

std::string Calibration::NextStepText() const {
  if (!session_.Flags.SweepLoaded) return "Set the sweep first";
  if (applied_) return "Calibration applied: START measures";
  std::string failed, missing;
  const auto append = [](std::string& list, const char* name) {
    if (!list.empty()) list += ", ";
    list += name;
  };
  for (const StepIndex step : kOrder) {
    if (!buttons_[step]->Enabled) continue;
    if (steps_[step].Failed) append(failed, kStepTexts[step].Plain);
    if (Missing(step)) append(missing, kStepTexts[step].Plain);
  }
  if (!failed.empty()) return "Incomplete, measure again: " + failed;
  if (missing.empty()) return "All standards measured: click Apply Cal";
  if (Choice() == CalChoice::S21 && missing == "Isolation")
    return "Still to measure: Isolation (or click Apply Cal without it)";
  if (session_.Cal.AnyKind() && EscapeCloses())
    return "Calibration in force: START measures. A new one needs: " + missing;
  return "Still to measure: " + missing;
}

}  // namespace qk
