// SPDX-License-Identifier: MIT
// The road from an uncalibrated instrument to a set of error terms: the sweep plan entry, the kind
// of calibration, a button a standard, and "Apply Cal".
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>

#include "cal/apply.h"
#include "cal/standards.h"
#include "control/controller.h"
#include "core/form.h"
#include "core/progress.h"
#include "forms/live_standard.h"

namespace qk {

class Calibration : public Form {
 public:
  Calibration(Controller& controller, LiveStandard& live);

  void OnOpen() override;
  // After a session file: plan and kind are those of the file, the steps begin anew.
  void OnSessionLoaded() override;
  void OnSessionChanged() override;
  // Stars stand for measured standards, which closing would lose: Escape does not do that.
  bool EscapeCloses() const override;
  bool OnCloseBox() override;

 private:
  enum StepIndex { kLoad, kShort, kOpen, kIso, kThru, kSteps };
  struct StepTexts {
    const char* Button;
    const char* Plain;
    const char* Title;
    char Key;
    StandardKind Kind;
  };
  static const std::array<StepTexts, kSteps> kStepTexts;
  // In which they are told and measured best.
  static constexpr std::array<StepIndex, kSteps> kOrder{kOpen, kShort, kLoad, kThru, kIso};
  struct KindRow;
  static const std::array<KindRow, 5> kKinds;

  void AddSweepEntry();
  void AddKinds();
  void AddStandards();
  void AddStandard(StepIndex step);
  void AddGuide();

  // The sweep entry (calibration_sweep.cpp).
  void ApplySweep();
  // Whether the calibration is kept; nothing when the user leaves all as it is.
  std::optional<bool> KeepCalibration();
  // Why the typed sweep cannot keep the calibration; empty when it can, as far as can be told.
  std::string CannotKeepText() const;
  void TakeFrequencies(SweepPlan& plan);
  void SettleStep(SweepPlan& plan);
  void ShowPlan();
  // Start and stop follow a typed centre or span, and the other way round.
  void TakeCentreAndSpan();
  void ShowCentreAndSpan();
  void ShowLoadedPlan();
  void ShowUnits();

  // Kinds and standards.
  const KindRow& Kind() const;
  void ChooseKind(std::size_t kind);
  void KindClicked();
  void ResetSteps();
  void PressStandard(StepIndex step);
  // The bar of a standard; once its prompt is answered the line under the standards says so.
  SweepWatch WatchOf(StepIndex step);
  void Close();
  // The user agrees that the stars go; no question without stars or where none are asked.
  bool MayDrop(std::string_view what);
  // Each step with what became of it.
  std::string GuideText() const;
  std::string ExpectedText() const;
  // The first step that is to be measured, in the order of the guide; kSteps for none.
  StepIndex NextStep() const;
  // Measures by the kind's routine or window; false when it came to nothing whole.
  bool MeasureStep(StepIndex step);
  bool MeasurePorts(std::string_view window, std::span<const CalStep> ports);
  bool MeasureIsolation();
  void WarnOfImpedance();
  void ApplyCal();
  bool MayApply();
  bool Missing(StepIndex step) const { return !steps_[step].Done; }
  void ShowNextStep();
  std::string DoubtsText() const;
  std::string NextStepText() const;
  CalChoice Choice() const;
  // False while a sweep runs or is stopping (and told), and during a start-up.
  bool MayAct();
  void Measuring(bool on);

  Controller& controller_;
  LiveStandard& live_;
  Session& session_;
  Host& host_;
  Handle guide_, expected_, picture_, cancel_, askFirst_;
  Handle start_, stop_, step_, centre_, span_, points_, level_;
  OptionGroup unit_, kinds_;
  EntryGroup plan_;  // what Apply makes the sweep of
  Handle kit1_, kit2_, bar_, nextStep_;
  std::array<Handle, kSteps> buttons_;
  std::array<CalStep, kSteps> steps_;
  PlanGrid stepsGrid_;    // at which they were measured
  std::size_t kind_ = 0;  // row of kKinds
  bool zoWarnPending_ = true;
  bool applied_ = false;
  std::optional<SweepPlan> loaded_;  // the plan that came with a session file, until Apply
};

}  // namespace qk
