// SPDX-License-Identifier: MIT
// "AM to PM Utility": how far the phase of a device moves for a decibel of drive.
#pragma once

#include "forms/power_test_form.h"
#include "utilities/am_to_pm.h"

namespace qk {

class AMtoPM : public PowerTestForm {
 public:
  explicit AMtoPM(Controller& controller);
  // The last measurement; the defaults of AmToPmResult before one.
  const AmToPmResult& Measured() const { return result_; }

 protected:
  void Measure() override;
  void KeepCalibration(const PowerSweep& through) override { calPhase_ = PhasesOf(through); }
  void ForgetCalibration() override { calPhase_ = {}; }
  void ForgetResult() override;
  std::string SavedText() const override;

 private:
  void ShowResult();
  // What the mark does not say of the measurement; empty when there is nothing to say.
  std::string Note() const;

  Handle readout_, amPm_;
  PowerSeries calPhase_{};  // degrees
  AmToPmResult result_;
  RegressionObject regression_;
};

}  // namespace qk
