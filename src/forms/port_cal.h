// SPDX-License-Identifier: MIT
// The modal windows of the non-insertable calibration: one standard on one port at a time.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "cal/standards.h"
#include "core/form.h"
#include "core/host.h"
#include "core/session.h"
#include "forms/live_standard.h"

namespace qk {

// A window that measures a standard in several sweeps: its buttons, and the state of its steps.
struct PortCal {
  struct Sweep {
    std::string Caption;  // "Port 1 Open"
    char Key;
    Standard Measured;
  };
  std::string_view Name;
  std::string Title;
  std::vector<Sweep> Sweeps;
  std::span<CalStep> Steps;  // one per sweep
  StandardKind Kind = StandardKind::Open;
  bool AsksToLeave = true;  // ask before leaving with a sweep missing
};
PortCal OpenCal(CalSteps& steps);
PortCal ShortCal(CalSteps& steps);
PortCal MatchCal(CalSteps& steps);
PortCal ThruCal(CalSteps& steps);

// OpenCal, ShortCal, MatchCal and ThruCalForm: one button per sweep, and "Exit".
class PortCalForm : public Form {
 public:
  PortCalForm(Rig& rig, LiveStandard& live, PortCal what);

  void OnOpen() override;
  void OnSessionChanged() override;
  bool OnCloseBox() override { return MayLeave(); }

 private:
  void Measure(std::size_t sweep);
  bool MayLeave();

  Rig& rig_;
  LiveStandard& live_;
  PortCal what_;
  Handle cancel_;
  std::vector<Handle> buttons_;
};

}  // namespace qk
