// SPDX-License-Identifier: MIT
// "Sweep Statistics": mean and spread of repeated sweeps of one device, and the outlier sweeps.
#pragma once

#include "control/controller.h"
#include "core/form.h"

namespace qk {

class SweepStats : public Form {
 public:
  explicit SweepStats(Controller& controller);

  void OnOpen() override { OnSessionChanged(); }
  void OnSessionChanged() override;

 private:
  void Start();
  void LeaveOut();
  void Save();
  std::string StateText() const;
  std::string OutlierText() const;
  std::string SpreadText() const;

  Controller& controller_;
  Host& host_;
  Handle sweeps_, state_, outliers_, spread_, leaveOut_, save_;
  bool stopAtEnd_ = false;  // this window started the sweeps
};

}  // namespace qk
