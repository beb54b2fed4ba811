// SPDX-License-Identifier: MIT
// "Calibration": from an uncalibrated instrument to a set of error terms. Contains the sweep plan
// entry, the kind of calibration, one button per standard, and "Apply Cal".
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
  // After a session file: takes plan and kind from the file and resets the steps.
  void OnSessionLoaded() override;
  void OnSessionChanged() override;
  // Stars mark measured standards, which closing would discard, so Escape does not close the window
  // then.
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
  // The order in which steps are listed and best measured.
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
  // Whether to keep the calibration; empty if the user cancels.
  std::optional<bool> KeepCalibration();
  // Why the typed sweep cannot keep the calibration; empty if it can, as far as known.
  std::string CannotKeepText() const;
  void TakeFrequencies(SweepPlan& plan);
  void SettleStep(SweepPlan& plan);
  void ShowPlan();
  // The plan of the entries, before its grid is settled.
  SweepPlan TypedPlan() const;
  // Start and stop follow a typed centre or span, and the reverse; the step follows all entries.
  void TakeCentreAndSpan();
  using PutText = const Handle& (Handle::*)(std::string) const;
  void ShowCentreAndSpan(PutText put);
  void FollowStartAndStop();
  void FollowStep();
  void ShowLoadedPlan();
  void ShowUnits();

  // Calibration kinds and standards.
  const KindRow& Kind() const;
  void ChooseKind(std::size_t kind);
  void KindClicked();
  void ResetSteps();
  void PressStandard(StepIndex step);
  // The progress callbacks for a standard; when its prompt is answered, the line below the
  // standards shows it.
  SweepWatch WatchOf(StepIndex step);
  void Close();
  // Asks before an action, which the title names, discards measured standards or, with everything,
  // also a calibration that is in no session file. True without a question if there is nothing to
  // lose or if questions are off. A new calibration replaces the one before it without a question.
  enum class Discards { Standards, Everything };
  bool ConfirmDiscard(std::string_view title, Discards what);
  // Each step with its status.
  std::string GuideText() const;
  std::string ExpectedText() const;
  // The first step still to measure, in the order of the guide; kSteps if none.
  StepIndex NextStep() const;
  // Measures with the kind's routine or window; false if the measurement was incomplete.
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
  // False while a sweep is running or stopping (shows a message), and during start-up.
  bool MayAct();
  void Measuring(bool on);

  Controller& controller_;
  LiveStandard& live_;
  Session& session_;
  Host& host_;
  Handle guide_, expected_, picture_, cancel_, askFirst_;
  Handle start_, stop_, step_, centre_, span_, points_, level_;
  OptionGroup unit_, kinds_;
  EntryGroup plan_;  // the fields that Apply turns into the sweep plan
  Handle kit1_, kit2_, bar_, nextStep_;
  std::array<Handle, kSteps> buttons_;
  std::array<CalStep, kSteps> steps_;
  PlanGrid stepsGrid_;    // the grid they were measured at
  std::size_t kind_ = 0;  // row of kKinds
  bool zoWarnPending_ = true;
  std::optional<StepIndex> asked_;  // the standard being asked for or measured
  bool applied_ = false;
  std::optional<SweepPlan> loaded_;  // the plan loaded with a session file, until Apply
};

}  // namespace qk
