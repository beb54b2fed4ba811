// The road from an uncalibrated instrument to a set of error terms: the sweep plan entry, the kind
// of calibration, a button a standard, and "Apply Cal".
#pragma once

#include <array>
#include <string>

#include "cal/apply.h"
#include "cal/standards.h"
#include "control/controller.h"
#include "core/form.h"
#include "forms/enhance_para.h"
#include "forms/port_cal.h"

namespace qk {

class Calibration : public Form {
 public:
  // The modal windows that a standard's button opens.
  struct Windows {
    PortCalForm& OpenCal;
    PortCalForm& ShortCal;
    PortCalForm& MatchCal;
    ThruCalForm& Thru;
  };
  Calibration(Controller& controller, Form& mainWindow, EnhancePara& enhance, Windows windows);

  void OnOpen() override;
  void OnRefresh() override;
  bool OnCloseBox() override { return !busy_; }

 private:
  enum StepIndex { kLoad, kShort, kOpen, kIso, kThru, kSteps };
  struct Step {
    bool Done = false;    // the button has been pressed: the star
    bool Failed = false;  // ... and its last sweep did not come in whole, or a port was left out
  };
  struct StepTexts {
    const char* Button;
    const char* Plain;
    const char* Title;
  };
  static const std::array<StepTexts, kSteps> kStepTexts;
  struct KindRow;
  static const std::array<KindRow, 5> kKinds;

  void AddSweepEntry();
  void AddKinds();
  void AddStandards();

  // The sweep entry (calibration_sweep.cpp).
  void ApplySweep();
  bool KeepCalibration();
  void TakeFrequencies();
  void SettleStep();
  void CheckSavedSpan();
  void LoadIntoInstrument();
  void ShowPlan();
  void ClearMemory();

  // Kinds and standards.
  const KindRow& Kind() const;
  void ChooseKind(const KindRow& kind);
  void KindClicked(std::size_t index);
  void ResetSteps();
  void PressStandard(StepIndex step);
  // Measures by the kind's routine or window; false when it came to nothing whole.
  bool MeasureStep(StepIndex step);
  bool MeasureIsolation();
  void WarnOfImpedance();
  void ApplyCal();
  bool MayApply();
  bool Missing(StepIndex step) const { return !steps_[step].Done; }
  void ShowNextStep();
  std::string DoubtsText() const;
  std::string NextStepText() const;
  CalChoice Choice() const;
  // False while a sweep runs or is stopping (and told), during a start-up, and while another
  // handler of this window is at work.
  bool MayAct();
  void EnableStart(bool on);

  Controller& controller_;
  Session& session_;
  Host& host_;
  Form& mainWindow_;
  EnhancePara& enhance_;
  Windows windows_;
  std::array<Step, kSteps> steps_;
  std::size_t kind_ = 0;  // row of kKinds
  bool zoWarnPending_ = true;
  bool applied_ = false;
  bool busy_ = false;  // a handler of this window is at work (a prompt or a modal window is up)
};

}  // namespace qk
