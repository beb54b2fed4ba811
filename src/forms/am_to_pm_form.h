// SPDX-License-Identifier: MIT
// "AM to PM Utility": the phase change of a device per decibel of drive level.
#pragma once

#include "forms/power_test_form.h"
#include "utilities/am_to_pm.h"

namespace qk {

class AMtoPM : public PowerTestForm {
 public:
  explicit AMtoPM(Controller& controller);
  // The last measurement; a default AmToPmResult until one is made.
  const AmToPmResult& Measured() const { return result_; }

 protected:
  void Measure() override;
  void KeepCalibration(const PowerSweep& through) override { calPhase_ = PhasesOf(through); }
  void ForgetCalibration() override { calPhase_ = {}; }
  void ForgetResult() override;
  std::string SavedText() const override;

 private:
  void ShowResult();
  // Remarks on the measurement that the mark does not show; empty if there are none.
  std::string Note() const;

  Handle readout_, amPm_;
  PowerSeries calPhase_{};  // degrees
  AmToPmResult result_;
  RegressionObject regression_;
};

}  // namespace qk
