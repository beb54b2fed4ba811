// SPDX-License-Identifier: MIT
// "Check Calibration": measures known devices with the active calibration and shows the residual
// errors over frequency, a verdict, and the trend over the last checks.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "control/check_calibration.h"
#include "control/controller.h"
#include "core/form.h"
#include "display/power_plot.h"

namespace qk {

class CheckCal : public Form {
 public:
  explicit CheckCal(Controller& controller);

  void OnOpen() override;
  void OnSessionChanged() override;
  void OnSweepEnded() override;
  bool OnCloseBox() override { return !Busy(); }  // while busy, Escape ends the sweep

  // The contents of the pictures.
  const PowerPlot& Residuals() const { return residuals_; }
  const PowerPlot& Trend() const { return trend_; }

 private:
  CheckMethod Method() const { return static_cast<CheckMethod>(std::max(0, methods_.Chosen())); }
  void ShowMethod();
  void ShowBasis();
  void Check();
  // The sweeps of a check; Cancel ends them.
  SweepWatch Watch();
  void ShowFound();
  void ShowTrend();

  Controller& controller_;
  Rig& rig_;
  OptionGroup methods_;
  bool cancelled_ = false;
  std::string whyNoTrend_;
  Handle length_, bar_, cancel_, verdict_, note_, basis_, residualPicture_, trendPicture_;
  PowerPlot residuals_, trend_;
};

}  // namespace qk
