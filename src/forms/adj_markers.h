// SPDX-License-Identifier: MIT
// "Trace Markers": the markers of the graph that was clicked on with the right button: their
// frequencies, the trace they are on, and whether the reference is fixed.
#pragma once

#include <array>

#include "control/controller.h"
#include "core/form.h"

namespace qk {

class AdjMarkers : public Form {
 public:
  explicit AdjMarkers(Controller& controller);

  void OnOpen() override { ShowMarkers(true); }
  // Another graph was clicked on, or the markers were moved.
  void OnSessionChanged() override;
  void OnHidden() override;

 private:
  // Also over what the user has typed and not applied yet.
  void ShowMarkers(bool overTyped);
  void ApplyFrequencies();
  void ToggleFix();
  void FlipTrace(int marker);
  void RedrawOverlay();

  Controller& controller_;
  Session& session_;
  Host& host_;
  int shownGraph_ = 0;  // from 0
  std::array<Handle, kMarkers> value_, trace_, fix_;
};

}  // namespace qk
