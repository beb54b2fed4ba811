// SPDX-License-Identifier: MIT
// "Isolation Calibration": the three methods to measure the isolation for an insertable device,
// each with a text and a picture of the port connections.
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

// Draws the instrument with its two ports and what is connected to them: one picture per sweep,
// from top to bottom, numbered if there are several.
void DrawPortSchemes(Canvas& canvas, const std::vector<PortScheme>& sweeps);

// Opening the window selects the basic method.
class IsoMethodForm : public Form {
 public:
  explicit IsoMethodForm(Rig& rig);
  void OnOpen() override { rig_.session.Cal.IsoMethod = IsoMethod::Basic; }

 private:
  void Take(IsoMethod method);

  Rig& rig_;
};

}  // namespace qk
