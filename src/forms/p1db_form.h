// SPDX-License-Identifier: MIT
// "P1dB Utility": the 1 dB compression point of an amplifier at one frequency of the sweep.
#pragma once

#include "forms/power_test_form.h"

namespace qk {

class P1dBForm : public PowerTestForm {
 public:
  explicit P1dBForm(Controller& controller);
  // The last measurement; a default CompressionResult until one is made.
  const CompressionResult& Measured() const { return result_; }

 protected:
  void TakePads() override;
  void Measure() override;
  void KeepCalibration(const PowerSweep& through) override;
  void ForgetCalibration() override { through_ = {}; }
  void ForgetResult() override;
  std::string SavedText() const override;

 private:
  void ShowResult();
  // Remarks on the measurement at a point that the marks do not show; empty if there are none.
  std::string NoteOn(int point) const;

  Handle lossField_, p1db_, gain_;
  float cableLoss_ = 0;  // dB
  std::array<Complex, kPowerLevels> through_{};
  CompressionResult result_;
  RegressionObject regression_;
};

}  // namespace qk
