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

namespace qk {

class Calibration : public Form {
 public:
  explicit Calibration(Controller& controller);

  void OnOpen() override;
  // After a session file: plan and kind are those of the file, the steps begin anew.
  void OnSessionLoaded() override;
  void OnSessionChanged() override;
  // Stars stand for measured standards, which closing would lose: Escape does not do that.
  bool EscapeCloses() const override;

 private:
  enum StepIndex { kLoad, kShort, kOpen, kIso, kThru, kSteps };
  struct StepTexts {
    const char* Button;
    const char* Plain;
    const char* Title;
    char Key;
  };
  static const std::array<StepTexts, kSteps> kStepTexts;
  struct KindRow;
  static const std::array<KindRow, 5> kKinds;

  void AddSweepEntry();
  void AddKinds();
  void AddStandards();
  void AddStandard(StepIndex step);

  // The sweep entry (calibration_sweep.cpp).
  void ApplySweep();
  bool KeepCalibration();
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
  Progress BarOf(StepIndex step);
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
  Session& session_;
  Host& host_;
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
