// SPDX-License-Identifier: MIT
// "Isolation Calibration": the three ways to find the isolation of an insertable device, each with
// a text and a picture of what is connected to the ports.
#pragma once

#include <vector>

#include "core/form.h"
#include "core/session.h"
#include "display/canvas.h"
#include "link/instrument_link.h"

namespace qk {

// What is connected to the ports during one sweep of a method.
struct PortScheme {
  const char *Port1, *Port2;
};

// The instrument with its two ports and what stands on them, a picture beneath the other for each
// sweep, numbered where there are several.
void DrawPortSchemes(Canvas& canvas, const std::vector<PortScheme>& sweeps);

// Opening it chooses the basic method.
class IsoMethodForm : public Form {
 public:
  explicit IsoMethodForm(Rig& rig);
  void OnOpen() override { rig_.session.Cal.IsoMethod = IsoMethod::Basic; }

 private:
  void Take(IsoMethod method);

  Rig& rig_;
};

}  // namespace qk
