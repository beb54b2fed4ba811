// SPDX-License-Identifier: MIT
// The modal windows of the non-insertable calibration, one standard on one port at a time.
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

// A window that measures a standard sweep by sweep: its buttons, and where it stands which of them
// have been measured.
struct PortCal {
  struct Sweep {
    std::string Caption;  // "Port 1 Open"
    char Key;
    Standard Measured;
  };
  std::string_view Name;
  std::string Title;
  std::vector<Sweep> Sweeps;
  std::span<CalStep> Steps;  // as many
  StandardKind Kind = StandardKind::Open;
  bool AsksToLeave = true;  // leaving with a sweep missing is a question
};
PortCal OpenCal(CalSteps& steps);
PortCal ShortCal(CalSteps& steps);
PortCal MatchCal(CalSteps& steps);
PortCal ThruCal(CalSteps& steps);

// OpenCal, ShortCal, MatchCal and ThruCalForm: a button a sweep, and "Exit".
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
